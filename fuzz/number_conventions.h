// A locale of ASCII for the fuzz targets of numbers, with conventions chosen by one byte.

#pragma once

#include "gls/text/char_walk.h"

#include <stdint.h>

inline locale_rec made_up_locale(uint8_t choice) {
    static gl_wchar texts[][3] = {{0},      {'.', 0},      {',', 0},     {'-', 0},
                                  {'+', 0}, {'$', ' ', 0}, {'#', '#', 0}};
    static constexpr uint32_t sizes[][3] = {{3, 0, 0}, {3, 2, 0}, {1, 0, 0}, {gl_group_end, 0, 0}};
    locale_rec lc = kestrion::ascii_locale;
    const bool odd = choice & 1;
    numeric_rec &numbers = lc.numeric_cat;
    numbers.wide_decimal_point = texts[odd ? 6 : 1];
    numbers.wide_thousands_sep = texts[choice & 2 ? 6 : 2];
    numbers.wide_positive_sign = texts[choice & 4 ? 0 : 4];
    numbers.wide_negative_sign = texts[choice & 8 ? 5 : 3];
    numbers.grouping.count = choice & 16 ? 3 : 2;
    for (int i = 0; i < 3; ++i)
        numbers.grouping.sizes[i] = sizes[choice >> 6][i];
    monetary_rec &money = lc.monetary_cat;
    money.wide_int_curr_symbol = money.wide_currency_symbol = texts[5];
    money.wide_mon_decimal_point = texts[odd ? 0 : 1];
    money.wide_mon_thousands_sep = texts[choice & 2 ? 6 : 2];
    money.wide_positive_sign = texts[choice & 4 ? 0 : 4];
    money.wide_negative_sign = texts[choice & 8 ? 0 : 3];
    money.mon_grouping = numbers.grouping;
    money.int_frac_digits = money.frac_digits = odd ? gl_money_unset : choice & 7;
    money.p_cs_precedes = choice >> 1 & 1;
    money.n_cs_precedes = choice >> 2 & 1;
    money.p_sep_by_space = (choice >> 3) % 3;
    money.n_sep_by_space = (choice >> 4) % 3;
    money.p_sign_posn = choice % 5;
    money.n_sign_posn = (choice >> 3) % 5;
    return lc;
}
