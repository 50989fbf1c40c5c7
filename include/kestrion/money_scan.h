// Amounts of money out of text of a locale, by the formats of <kestrion/money_format.h>.
//
// White space in a format skips white space in the source; "%%" skips one character; other
// characters must be the same in the source. The first amount read ends the scan: what the format
// has after it is not looked at.
//
// The symbol may be missing in the source, and the sign of positive amounts, too. A negative amount
// needs its sign text or its brackets. Separators may stand between any two digits: those of
// MONETARY or those of NUMERIC. With a width, so many columns of the source are looked at. "-" and
// "0" leave white space before the amount to the format. "^", "=f" and the precisions change
// nothing; so fills other than blanks and zeros can't be read. 2147483647 itself counts as no
// value.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdarg.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Read one amount to a double, which is left alone on failure.
// Returns  the first element not used; null with GLS_ERR_FORMAT for a source that does not match or
//          a bad or cut off directive, GLS_ERR_ARGUMENT when no pattern of the locale matches,
//          GLS_ERR_BAD_CHARACTER, GLS_ERR_NULL_ARGUMENT, GLS_ERR_NO_MEMORY.
// Example  double value; gl_mbspmon(lc, "($1,234.50) due", "%(n", &value) -> " due", value -1234.5
const gl_wchar *gl_wcspmon(locale_rec *lc, const gl_wchar *source, const gl_wchar *format, ...);
const gl_wchar *gl_wcspmon1(locale_rec *lc, const gl_wchar *source, const gl_wchar *format,
                            va_list pointers);
const char *gl_mbspmon(locale_rec *lc, const char *source, const char *format, ...);

#ifdef __cplusplus
}
#endif
