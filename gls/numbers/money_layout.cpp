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

money_layouts layouts_of(const locale_rec *lc, const money_directive &directive) {
    const monetary_rec &own = monetary_of(lc);
    int32_t positive_position = own.p_sign_posn;
    int32_t negative_position = own.n_sign_posn;
    if ((directive.flags & money_plus) != 0) {
        positive_position += positive_position == 0;
        negative_position += negative_position == 0;
    }
    if ((directive.flags & money_parentheses) != 0)
        negative_position = 0;
    wide_piece symbol = {};
    if ((directive.flags & money_no_symbol) == 0)
        symbol = piece_of(directive.conversion == 'i' ? own.wide_int_curr_symbol
                                                      : own.wide_currency_symbol);
    money_layouts made = {
        .positive = {.symbol = symbol, .sign = piece_of(own.wide_positive_sign)},
        .negative = {.symbol = symbol, .sign = piece_of(own.wide_negative_sign)},
    };
    const int32_t positive =
        mon_mask(own.p_cs_precedes, positive_position, own.p_sep_by_space, made.positive.tokens);
    const int32_t negative =
        mon_mask(own.n_cs_precedes, negative_position, own.n_sep_by_space, made.negative.tokens);
    made.complete = positive == 0 && negative == 0;
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
