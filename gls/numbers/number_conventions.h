// The number and money conventions of a locale, and what all of this folder asks about characters.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

// Those of a null locale: the point ".", the signs "+" and "-", no groups and no money.
extern const numeric_rec plain_numeric;
extern const monetary_rec no_monetary;

// The conventions of `lc`.
inline const numeric_rec &numeric_of(const locale_rec *lc) {
    return lc != nullptr ? lc->numeric_cat : plain_numeric;
}
inline const monetary_rec &monetary_of(const locale_rec *lc) {
    return lc != nullptr ? lc->monetary_cat : no_monetary;
}

inline bool is_digit(gl_wchar element) { return element - '0' <= 9; }

// A text that is not terminated, or not only.
struct wide_piece {
    const gl_wchar *elements;
    int32_t length;
};

inline wide_piece piece_of(const gl_wchar *terminated) {
    int32_t length = 0;
    while (terminated[length] != 0)
        ++length;
    return {terminated, length};
}

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
