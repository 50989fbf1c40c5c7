// Digit texts for the text forms of decimals.

#pragma once

#include <kestrion/decimal.h>
#include <kestrion/decimal_text.h>

#include <stdint.h>

namespace kestrion {

enum class digit_result {
    made,
    no_memory,       // for the block's usual size
    no_larger_block, // for the digits asked for; the block has its usual size
    count_negative,  // the last digit asked for lies left of the first
};

// The digits made last, in the block: not terminated, but with room for it.
struct made_digits {
    char *text;
    int64_t count;
};

// Makes the digits of `dec`, a well-formed record, as deccvt has them.
// ndigit  64 bits, so that callers may add to it.
digit_result make_digits(const dec_value *dec, int64_t ndigit, int *position, int *negative,
                         int mode, gentcb *block, made_digits *made);

} // namespace kestrion
