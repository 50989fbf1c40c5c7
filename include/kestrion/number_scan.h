// Numbers and texts out of text of a locale, by scanf-like formats: what kestrion/number_format.h
// writes, read back.
//
// White space in a format skips white space in the source; other characters must be the same there.
// A directive is "%", optional "N$", optional "*" (scan, but store nothing), flags, width,
// ".precision", length and a conversion; "%%" is a percent sign. Of the flags "'" allows group
// separators, the others change nothing; so does the precision of a number. The width is the most
// characters that a directive uses, white space before it not counted.
//
//   conversion  stores to                                    example, en_US
//   d i         int *                                        "%'d" of "-1,234" -> -1234
//   b           int *, binary with a sign                    "%b" of "-101" -> -5
//   u o q x X   unsigned *, base 10, 8, 4, 16                "%x" of "0xff" -> 255
//   f e E g G   float *, with l or L double *                "%'lf" of "1,234.5" -> 1234.5
//   c           char *: one character, or width of them, not terminated
//   s           char *: up to white space or width or precision, terminated
//   lc ls       gl_wchar *: the same as wide characters
//
// Lengths of integers: hh char, h short, l or L long, ll or Ll long long. A char array must have
// room for all bytes of its characters (up to 4 each) and of a terminator. "N$" (1 to 32) chooses
// the pointer: then all directives must be numbered, and every number up to the highest be used.
//
// Operations return the count of directives that stored a value; that is less than the format has
// when the source ends, and with the error word set when something is wrong: GLS_ERR_FORMAT for a
// source that does not match, a bad conversion, bad numbering, or "c" with a width above 1 and a
// precision; GLS_ERR_RANGE for a number that does not fit what it is stored to; GLS_ERR_FLOAT_RANGE
// for one that no double holds; GLS_ERR_NO_ROOM for a float of more than 255 characters;
// GLS_ERR_BAD_CHARACTER for bytes that are no character; GLS_ERR_NO_REGISTRY (15) when the format
// ends inside a directive; GLS_ERR_PRECISION; GLS_ERR_NULL_ARGUMENT. The one failing result is -1,
// with GLS_ERR_NO_MEMORY.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdarg.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

int32_t gl_wcsscanf(locale_rec *lc, const gl_wchar *source, const gl_wchar *format, ...);
int32_t gl_wcspnum(locale_rec *lc, const gl_wchar *source, const gl_wchar *format, ...);
int32_t gl_wcspnum1(locale_rec *lc, const gl_wchar *source, const gl_wchar *format,
                    va_list pointers);

// Example  double amount; gl_mbspnum(lc, "1.234,50", "%'lf", &amount) -> 1, amount 1234.5 in de_DE
int32_t gl_mbsscanf(locale_rec *lc, const char *source, const char *format, ...);
int32_t gl_mbspnum(locale_rec *lc, const char *source, const char *format, ...);
int32_t gl_mbsscanf1(locale_rec *lc, const char *source, const char *format, va_list pointers);

#ifdef __cplusplus
}
#endif
