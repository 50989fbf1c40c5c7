// Amounts of money to text of a locale, by formats with "%i" and "%n".
//
// A format is text and directives. A directive is "%", flags, width, "#" and left precision, "."
// and right precision, and "i" (the international symbol, "USD ") or "n" (the local one, "$"); "%%"
// is a percent sign. The value is a double. en_US, de_DE:
//
//   %n    of 1234567.891   $1,234,567.89       1.234.567,89 EURO
//   %i    of 1234567.891   USD 1,234,567.89    1.234.567,89 EUR and a blank, which the symbol has
//   %n    of -1234.5       -$1,234.50          -1.234,50 EURO
//   %(n   of -1234.5       ($1,234.50)         (1.234,50 EURO)
//   %!n   of -0.004        -0.00               -0,00 and a blank
//   %#7n  of -1234.5       -$    1,234.50      -    1.234,50 EURO
//   %^=*#9.3n of 1234567.891  " $**1234567.891" " **1234567,891 EURO"
//
//   flag   effect
//   =f     fills up to the left precision with the character f instead of blanks
//   ^      no grouping
//   +      shows the positive sign; parentheses as the locale's signs become sign texts
//   (      puts negative amounts in parentheses
//   !      no currency symbol
//   -      left-justifies in the field
//   0      the scanner's alone: white space before the amount is not skipped
//
// Width is the least count of display columns; the left precision n makes room for n digits with
// their separators and the point, and for the longer of the positive and the negative layout, so
// that amounts stand in columns. The right precision is the count of digits after the point;
// without it the locale says, and where the locale does not, 2. A width or precision above 9999
// counts as 9999.
//
// The value is rounded half up on the six digits after the point that "%f" prints, so that 0.995
// gives 1.00; below 0 decides the sign, so that -0.004 gives -0.00 and -0.0 gives 0.00. The groups
// are those of MONETARY, their separator that of NUMERIC: other programs of the installation read
// amounts that way. An amount above 255 elements is cut there. A locale that does not say how
// amounts look (a null one, too) gives empty amounts.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdarg.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Write the values to dst[0..size) and terminate them.
// size     elements or bytes, terminator included.
// Returns  the elements or bytes written without the terminator; -1 with GLS_ERR_MONEY_FORMAT for a
//          bad conversion, GLS_ERR_NO_REGISTRY (15) when the format ends inside a directive,
//          GLS_ERR_NO_ROOM, GLS_ERR_BAD_CHARACTER, GLS_ERR_NULL_ARGUMENT, GLS_ERR_NO_MEMORY. The
//          destination then holds an empty text, if the size is above 0.
// Example  gl_mbsfmon(lc, dst, 32, "Total: %n", 1234.5) -> 16, "Total: $1,234.50"
int32_t gl_wcsfmon(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format, ...);
int32_t gl_wcsfmon1(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format,
                    va_list values);
int32_t gl_mbsfmon(locale_rec *lc, char *dst, int32_t size, const char *format, ...);

#ifdef __cplusplus
}
#endif
