#include <kestrion/conventions.h>

#include <kestrion/env_registry.h>
#include <kestrion/locale_rec.h>
#include <kestrion/strings.h>

#include <string.h>

namespace {

void take_symbol(char *target, const char *text, size_t length) {
    if (length >= gls_currency_size)
        length = gls_currency_size - 1;
    memcpy(target, text, length);
    target[length] = '\0';
}

} // namespace

constinit int32_t _gnorminit = 0;

void init_dflt_lconv_int(lconv_rec *block) {
    memset(block, 0, sizeof *block);
    block->radix[0] = '.';
    block->negative_sign[0] = '-';
}

void rmoninit(void) {
    const GlsEnv *env = CheckGlsEnv();
    new_gls_env_rec &state = *env->state;
    state.mon_front[0] = state.mon_back[0] = '\0';
    if (const char *given = ggetenv("DBMONEY"); given != nullptr) {
        const size_t front = strcspn(given, ".,");
        take_symbol(state.mon_front, given, front);
        if (given[front] != '\0')
            take_symbol(state.mon_back, given + front + 1, strlen(given + front + 1));
    } else if (env->cur_lc != nullptr && env->cur_lc->monetary_cat.currency_symbol != nullptr) {
        const monetary_rec &money = env->cur_lc->monetary_cat;
        char *side = money.p_cs_precedes == 0 ? state.mon_back : state.mon_front;
        take_symbol(side, money.currency_symbol, strlen(money.currency_symbol));
    }
    state.mon_ready = 1;
}
