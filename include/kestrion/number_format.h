// Numbers and texts to text of a locale, by printf-like formats.
//
// A format is text and directives. A directive is "%", optional "N$", flags, width, ".precision",
// length and a conversion; "%%" is a percent sign. Decimal point, group separator and signs are
// those of the locale's NUMERIC category. Widths count display columns, not bytes: a character of
// two columns fills two of them, one that is not printable one.
//
//   flag   bit                      length       argument of d i b | u o q x X
//   '      1    group the digits    (none)       int       | unsigned int
//   -      2    left-justify        hh           signed char | unsigned char, passed as int
//   +      4    positive sign       h            short     | unsigned short, passed as int
//   blank  8    blanks for it       l or L       long      | unsigned long
//   0     16    pad with zeros      ll or Ll     long long | unsigned long long
//   #    256    alternate form
//
//   conversion  argument        writes                         en_US example
//   d i         signed          decimal                        "%'d" of -1234567 -> -1,234,567
//   u           unsigned        decimal                        "%u" of 7 -> 7
//   o           unsigned        octal; "#": one more 0         "%#o" of 8 -> 010
//   q           unsigned        base 4                         "%q" of 27 -> 123
//   b           signed          binary                         "%b" of -5 -> -101
//   x X         unsigned        hexadecimal; "#": 0x or 0X     "%#x" of 255 -> 0xff
//   p           void *          hexadecimal, 16 digits         "%p" of 255 -> 00000000000000FF
//   c           int             a character of one byte        "%c" of 'a' -> a
//   lc          gl_wchar        a wide character
//   s           const char *    text; precision: characters    "%.2s" of "abc" -> ab
//   ls          const gl_wchar * wide text
//   f           double          with point; ' groups           "%'.2f" of 1234.5 -> 1,234.50
//   e E g G     double          as in C, with the point        "%.1e" of 0.5 -> 5.0e-01
//
// "0" ends the flags and "-" overrides it. Width and precision may be "*", an int argument; a
// negative width sets "-", a negative precision is none. "N$" (1 to 32, also in "*N$") chooses the
// argument: then all directives must be numbered, and every number up to the highest be used.
//
// Where this is not C: "0" pads also with a precision; zeros of the precision are not grouped
// ("%'.9d" of 1088030 -> 001,088,030); "#" adds its prefix to 0 as well; "+" and blank act on
// unsigned conversions too; a value of 0 always has a digit; "L" is long. As in C, the zeros of "0"
// come after sign and prefix.
//
// Operations take the locale first; a null locale has the point ".", the signs "+" and "-" and no
// groups. They return -1 and leave the cause in the error word: GLS_ERR_NO_ROOM when the result
// does not fit with its terminator, a float's width is above 99 or a number takes more than 255
// elements; GLS_ERR_NO_REGISTRY (15) when the format ends inside a directive; GLS_ERR_FORMAT for a
// bad conversion or bad numbering; GLS_ERR_PRECISION for a "." before a character that is neither a
// digit nor a letter; GLS_ERR_NULL_ARGUMENT for a null text; GLS_ERR_BAD_CHARACTER for text that
// the code set does not have; GLS_ERR_ARGUMENT for a bad base; GLS_ERR_NO_MEMORY. A failed call
// leaves an empty text when the size is above 0.

#pragma once

#include <kestrion/format_modifiers.h>
#include <kestrion/integer_format.h>
#include <kestrion/locale_rec.h>

#include <stdarg.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// ---- By a format

// Write the values to dst[0..size) and terminate them; both names are the same operation.
// size     elements, terminator included.
// Returns  the elements written without the terminator, or -1.
// Example  gl_wcsprintf(lc, dst, 16, L"%'d" as gl_wchar, 1234567) -> 9, "1,234,567"
int32_t gl_wcsprintf(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format, ...);
int32_t gl_wcsfnum(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format, ...);
int32_t gl_wcsfnum1(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format,
                    va_list values);

// The same in the locale's code set; size and result are in bytes.
int32_t gl_mbsprintf(locale_rec *lc, char *dst, int32_t size, const char *format, ...);
int32_t gl_mbsfnum(locale_rec *lc, char *dst, int32_t size, const char *format, ...);
int32_t gl_mbsprintf1(locale_rec *lc, char *dst, int32_t size, const char *format, va_list values);

// ---- Kinds of floats

// What a float is. The first gives 2 for plus infinity, 1 for minus infinity, else 0; the second 2
// for a NaN, else 0.
int32_t CheckForInfinity(double value);
int32_t CheckForNaN(double value);

#ifdef __cplusplus
}
#endif
