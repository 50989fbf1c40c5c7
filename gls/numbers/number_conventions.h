// The number and money conventions of a locale, and what all of this folder asks about characters.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

// The conventions of `lc`. A null locale has the point ".", the signs "+" and "-", no groups and no
// money.
const numeric_rec &numeric_of(const locale_rec *lc);
const monetary_rec &monetary_of(const locale_rec *lc);

inline bool is_digit(gl_wchar element) { return element - '0' <= 9; }

// A text that is not terminated, or not only.
struct wide_piece {
    const gl_wchar *elements;
    int32_t length;
};

wide_piece piece_of(const gl_wchar *terminated);

// Display columns. A character that is not printable counts as one column, and the error word is
// left alone.
int64_t columns_of(locale_rec *lc, wide_piece text);

// Whether a character is of a class; one that the code set does not have is of none. Leaves the
// error word alone.
bool has_class(locale_rec *lc, gl_wchar character, uint32_t mask);

// Runs a number through the C library with its "C" conventions, whatever the host has set.
// length of the text, which is cut to size - 1; negative on failure.
int32_t library_number(char *dst, int32_t size, gl_wchar conversion, bool alternate,
                       int32_t precision, double value);

} // namespace kestrion
