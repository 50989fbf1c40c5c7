// Digits of integers and of floats, in ASCII. What is of usual size is computed here, exactly; the
// rest is the C library's.

#pragma once

#include "gls/numbers/grouping.h"

#include <stdint.h>

namespace kestrion {

inline constexpr int32_t integer_digit_limit = 64; // digits of an integer in base 2
inline constexpr int32_t float_text_limit = 320;   // "%f" of the largest double takes 316

// Writes the digits of `value` so that they end at `end`; 0 has one.
// base     2 to 36.
// Returns  the first digit; they take at most integer_digit_limit.
char *integer_digits(char *end, uint64_t value, uint32_t base, bool upper_case);

// "%.*f" of a finite value that is not negative, made in a buffer.
// precision  0 or more.
// Returns    where the text is, not terminated, with a place before it that is free to be written
// to;
//            a length of float_text_limit or more when it does not fit.
ascii_piece fixed_digits(char (&buffer)[float_text_limit], double value, int32_t precision);

// The double nearest to digits times ten to the power `exponent`, ties to even. False when it is
// not of usual size: then only the C library knows.
bool nearest_double(uint64_t digits, int32_t exponent, double &out);

} // namespace kestrion
