#include <kestrion/money_text.h>

#include <kestrion/conventions.h>
#include <kestrion/decimal_text.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/locale_rec.h>
#include <kestrion/startup.h>

#include "values/decimal/text_range.h"

using namespace kestrion;

namespace {

constexpr int default_scale = 2;
constexpr int greatest_scale = 99;

// The state whose currency texts and radix are settled.
const new_gls_env_rec &money_state() {
    const new_gls_env_rec *state = CheckGlsEnv()->state;
    if (state->mon_ready == 0)
        rmoninit();
    return *state;
}

// The conventions of numbers with the radix and the minus of amounts.
lconv_rec money_conventions(const new_gls_env_rec &state) {
    lconv_rec conventions = *state.lconv;
    memcpy(conventions.radix, conventions.money_radix, sizeof conventions.radix);
    return conventions;
}

int stars(char *buffer, int length) {
    memset(buffer, '*', static_cast<size_t>(length));
    return err_display_width;
}

const char *locale_symbol() {
    const locale_rec *lc = qvt_get_gl_locale_thread();
    const char *symbol = lc != nullptr ? lc->monetary_cat.currency_symbol : nullptr;
    return symbol != nullptr ? symbol : "";
}

void drop_front(text_range &text, const char *symbol, const char *other) {
    if (!text.at_text(symbol, strlen(symbol)))
        symbol = other;
    if (text.at_text(symbol, strlen(symbol)))
        text.at += strlen(symbol);
}

void drop_back(text_range &text, const char *symbol, const char *other) {
    if (!text.ends_with(symbol, strlen(symbol)))
        symbol = other;
    if (text.ends_with(symbol, strlen(symbol)))
        text.end -= strlen(symbol);
}

} // namespace

int rdecmon(const dec_value *dec, char *buffer, int length, int right) {
    if (length < 0 || decverify(dec) != 0)
        return -1;
    if (dec->sign == dec_null_sign) {
        memset(buffer, ' ', static_cast<size_t>(length));
        return 0;
    }
    if (const int failure = chkglsinit(); failure != 0)
        return failure;
    const new_gls_env_rec &state = money_state();
    lconv_rec conventions = money_conventions(state);
    strcpy(conventions.negative_sign, "-");
    const int front = static_cast<int>(strlen(state.mon_front));
    const int back = static_cast<int>(strlen(state.mon_back));
    const int room = length - front - back;
    char *amount = buffer + front;
    if (room < 1 || dectoasc_int(dec, amount, room, right, CheckGenInit(), &conventions) != 0)
        return stars(buffer, length);
    int written = room;
    while (amount[written - 1] == ' ')
        --written;
    memcpy(buffer, state.mon_front, static_cast<size_t>(front));
    memcpy(amount + written, state.mon_back, static_cast<size_t>(back));
    memset(amount + written + back, ' ', static_cast<size_t>(room - written));
    return 0;
}

int rmondec(const char *text, int length, dec_value *dec) {
    if (const int failure = chkglsinit(); failure != 0)
        return deccvasc(text, length, dec); // NULL for blanks, else the failure
    const new_gls_env_rec &state = money_state();
    const lconv_rec conventions = money_conventions(state);
    text_range rest = text_range::of(text, length);
    rest.skip_blanks();
    rest.cut_blanks();
    drop_front(rest, state.mon_front, locale_symbol());
    drop_back(rest, state.mon_back, locale_symbol());
    return deccvasc_int(rest.at, static_cast<int>(rest.end - rest.at), dec, &conventions);
}

int rfrontlen(void) {
    chkglsinit();
    return static_cast<int>(strlen(money_state().mon_front));
}

int rbacklen(void) {
    chkglsinit();
    return static_cast<int>(strlen(money_state().mon_back));
}

int genlcscale(void) {
    chkglsinit();
    const locale_rec *lc = qvt_get_gl_locale_thread();
    const int32_t digits = lc != nullptr ? lc->monetary_cat.frac_digits : -1;
    return digits < 0 || digits > greatest_scale ? default_scale : digits;
}
