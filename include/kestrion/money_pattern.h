// The order of an amount's parts: which of sign, symbol, space and brackets stand where.

#pragma once

#include <stdint.h>

// What an amount is made of.
enum money_token {
    money_end = 0,
    money_open = 1,   // "("
    money_symbol = 2, // currency symbol
    money_value = 3,
    money_sign = 4,        // text of the sign
    money_space = 5,       // one space
    money_close = 6,       // ")"
    money_pattern_size = 7 // tokens of a pattern, its end included
};

#ifdef __cplusplus
extern "C" {
#endif

// Makes the pattern of an amount: which tokens, in which order, by three fields of MONETARY.
// Returns  0, or -1 and an empty pattern when the fields are not those of any layout.
// Example  1, 1, 0 -> sign, symbol, value: "-$1.00"
int32_t mon_mask(int32_t cs_precedes, int32_t sign_posn, int32_t sep_by_space,
                 int32_t tokens[money_pattern_size]);

#ifdef __cplusplus
}
#endif
