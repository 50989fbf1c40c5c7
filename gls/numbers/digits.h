// Digits of integers and of floats, in ASCII. What is of usual size is computed here, exactly; the
// rest is the C library's.

#pragma once

#include <stdint.h>

namespace kestrion {

inline constexpr int32_t integer_digit_limit = 64; // digits of an integer in base 2
inline constexpr int32_t float_text_limit = 320;   // "%f" of the largest double takes 316

// Writes the digits of `value` so that they end at `end`; 0 has one.
// base     2 to 36.
// Returns  the first digit; they take at most integer_digit_limit.
char *integer_digits(char *end, uint64_t value, uint32_t base, bool upper_case);

// Writes "%.*f" of a value that is not negative; the text is not terminated.
// dst        float_text_limit bytes.
// precision  0 or more.
// Returns    its length, or a length of float_text_limit or more when it does not fit.
int32_t fixed_digits(char *dst, double value, int32_t precision);

// The double nearest to digits times ten to the power `exponent`, ties to even. False when it is
// not of usual size: then only the C library knows.
bool nearest_double(uint64_t digits, int32_t exponent, double &out);

} // namespace kestrion
