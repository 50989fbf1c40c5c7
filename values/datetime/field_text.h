// The plain text of fields: what datetimes and intervals have in common.

#pragma once

#include "values/datetime/field_layout.h"

#include <array>
#include <string.h>

namespace kestrion {

// The delimiter after a field, by unit / 2; the last is never used.
inline constexpr char dtdelim[] = "-- ::. ";

// The two digits of each byte.
inline constexpr auto digit_pairs = [] {
    std::array<std::array<char, 2>, 100> pairs = {};
    for (size_t i = 0; i < pairs.size(); ++i)
        pairs[i] = {static_cast<char>('0' + i / 10), static_cast<char>('0' + i % 10)};
    return pairs;
}();

inline char *put_two_digits(char *to, unsigned char byte) {
    memcpy(to, digit_pairs[byte].data(), 2);
    return to + 2;
}

// Write all digits of a first field, and of a fraction without its point. Return the end.
inline char *put_leading_field(char *to, const unsigned char *bytes, int digits) {
    if ((digits & 1) != 0)
        *to++ = static_cast<char>('0' + *bytes++ % 10);
    for (; digits > 1; digits -= 2)
        to = put_two_digits(to, *bytes++);
    return to;
}
inline char *put_fraction_digits(char *to, const unsigned char *bytes, int digits) {
    for (; digits > 1; digits -= 2)
        to = put_two_digits(to, *bytes++);
    if (digits == 1)
        *to++ = static_cast<char>('0' + *bytes / 10);
    return to;
}

// Write the digits and delimiters of a value's bytes, and of a datetime, without a terminator. Return
// the end.
char *put_fields(char *to, const unsigned char *bytes, const field_layout &q);
char *put_datetime(char *to, const operand &x, int qualifier);

// Reads the usual text of a datetime: every field in its full width and in its range, and nothing
// else. Returns false for any other text, which parse_fields() may read or refuse, and for a word
// that is not a datetime's.
bool parse_usual_text(const char *text, int qualifier, dec_value *value);

// rstrdinv without the checks of the word, with the letter for the century ('\0': as DBCENTURY says),
// and without a mask.
// value   is NULL after every failure but one: it is packed when a field is out of range only
//         against the others.
int parse_fields(const char *text, const field_layout &q, bool is_datetime, char century,
                 dec_value *value);

inline bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Skips white space as the process's table has it.
const char *skip_blanks(const char *text);

} // namespace kestrion
