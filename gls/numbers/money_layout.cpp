#include "gls/numbers/money_layout.h"

#include "gls/numbers/format_modifiers.h"

namespace kestrion {

namespace {

constexpr gl_wchar open_text[] = {'('};
constexpr gl_wchar close_text[] = {')'};
constexpr gl_wchar space_text[] = {' '};

uint32_t money_flag(gl_wchar element) {
    switch (element) {
    case '^':
        return money_no_groups;
    case '+':
        return money_plus;
    case '(':
        return money_parentheses;
    case '!':
        return money_no_symbol;
    case '-':
        return money_left;
    default:
        return 0;
    }
}

} // namespace

money_directive read_money_directive(const gl_wchar *&at) {
    money_directive d = {.fill = ' ',
                         .width = gl_modifier_unset,
                         .left_precision = gl_modifier_unset,
                         .right_precision = gl_modifier_unset};
    for (;; ++at) {
        if (*at == '=') {
            d.fill = *++at;
            if (d.fill == 0)
                return d;
        } else if (const uint32_t flag = money_flag(*at)) {
            d.flags |= flag;
        } else {
            break;
        }
    }
    if (*at == '0')
        d.flags |= money_zero;
    if (is_digit(*at))
        d.width = read_count(at);
    if (*at == '#')
        d.left_precision = read_count(++at);
    if (*at == '.')
        d.right_precision = read_count(++at);
    d.conversion = *at;
    at += *at != 0;
    return d;
}

money_layout layout_of(const locale_rec *lc, const money_directive &directive, bool negative) {
    const monetary_rec &own = monetary_of(lc);
    int32_t position = negative ? own.n_sign_posn : own.p_sign_posn;
    if ((directive.flags & money_plus) != 0 && position == 0)
        position = 1;
    if ((directive.flags & money_parentheses) != 0 && negative)
        position = 0;
    money_layout made = {.sign =
                             piece_of(negative ? own.wide_negative_sign : own.wide_positive_sign)};
    if ((directive.flags & money_no_symbol) == 0)
        made.symbol = piece_of(directive.conversion == 'i' ? own.wide_int_curr_symbol
                                                           : own.wide_currency_symbol);
    mon_mask(negative ? own.n_cs_precedes : own.p_cs_precedes, position,
             negative ? own.n_sep_by_space : own.p_sep_by_space, made.tokens);
    return made;
}

wide_piece token_text(const money_layout &layout, int32_t token) {
    switch (token) {
    case money_open:
        return {open_text, 1};
    case money_symbol:
        return layout.symbol;
    case money_sign:
        return layout.sign;
    case money_space:
        return {space_text, 1};
    case money_close:
        return {close_text, 1};
    default:
        return {};
    }
}

} // namespace kestrion
