#include <kestrion/conventions.h>

#include <kestrion/char_length.h>
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

// Copies a text of the locale, cut after the last character that fits.
template <size_t size> void take_text(char (&target)[size], locale_rec *lc, const char *text) {
    size_t length = 0;
    while (text != nullptr && text[length] != '\0') {
        const int32_t bytes =
            gl_full_mblen(lc, text + length, static_cast<int32_t>(strlen(text + length)));
        const size_t next = length + (bytes > 0 ? static_cast<size_t>(bytes) : 1);
        if (next >= size)
            break;
        length = next;
    }
    if (length > 0)
        memcpy(target, text, length);
    target[length] = '\0';
}

void take_groups(lconv_rec *block, const group_rec &grouping) {
    block->group_count = grouping.count;
    for (int32_t i = 0; i < grouping.count; ++i)
        block->groups[i] = static_cast<int32_t>(grouping.sizes[i]);
}

void set_default(char *text, char c) {
    if (text[0] == '\0') {
        text[0] = c;
        text[1] = '\0';
    }
}

} // namespace

constinit int32_t _gnorminit = 0;

void init_dflt_lconv_int(lconv_rec *block) {
    memset(block, 0, sizeof *block);
    block->radix[0] = '.';
    block->negative_sign[0] = '-';
}

void init_local_lconv(lconv_rec *block) {
    init_dflt_lconv_int(block);
    locale_rec *lc = CheckGlsEnv()->cur_lc;
    if (lc == nullptr)
        return;
    const numeric_rec &numbers = lc->numeric_cat;
    take_text(block->radix, lc, numbers.decimal_point);
    take_text(block->thousands_sep, lc, numbers.thousands_sep);
    take_text(block->positive_sign, lc, numbers.positive_sign);
    take_text(block->negative_sign, lc, numbers.negative_sign);
    take_groups(block, numbers.grouping);
    set_default(block->radix, '.');
    set_default(block->negative_sign, '-');
}

void rmoninit(void) {
    const GlsEnv *env = CheckGlsEnv();
    new_gls_env_rec &state = *env->state;
    char(&radix)[sizeof state.lconv->money_radix] = state.lconv->money_radix;
    state.mon_front[0] = state.mon_back[0] = radix[0] = '\0';
    if (env->cur_lc != nullptr)
        take_text(radix, env->cur_lc, env->cur_lc->monetary_cat.mon_decimal_point);
    set_default(radix, '.');
    if (const char *given = ggetenv("DBMONEY"); given != nullptr) {
        const size_t front = strcspn(given, ".,");
        take_symbol(state.mon_front, given, front);
        if (given[front] != '\0') {
            take_symbol(state.mon_back, given + front + 1, strlen(given + front + 1));
            radix[0] = given[front];
            radix[1] = '\0';
        }
    } else if (env->cur_lc != nullptr && env->cur_lc->monetary_cat.currency_symbol != nullptr) {
        const monetary_rec &money = env->cur_lc->monetary_cat;
        char *side = money.p_cs_precedes == 0 ? state.mon_back : state.mon_front;
        take_symbol(side, money.currency_symbol, strlen(money.currency_symbol));
    }
    state.mon_ready = 1;
}
