// Single integers and floats read from text of a locale.
//
// A number begins after white space (the locale's class "space"). Its sign is a sign text of the
// locale's NUMERIC category, or "+" or "-". With `group` not 0 the group separator may stand
// between any two digits of the integer part. Operations take the locale first; a null locale has
// the point ".", the signs "+" and "-" and no separator.
//
//     const char *end;
//     int64_t value = gl_mbstol(lc, "1.234.567 Stk", &end, 10, 1); // de_DE: 1234567, end at " Stk"
//
// *end is the first character not used; it may be null. Where there is no number it is `text`, and
// the result is 0. The error word is left alone unless the number is wrong in itself: GLS_ERR_RANGE
// for an integer that does not fit, GLS_ERR_FLOAT_RANGE for a float, GLS_ERR_NO_ROOM for a float of
// more than 255 characters, GLS_ERR_ARGUMENT for a bad base.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// ---- Integers
//
// base     2 to 36, or 0: 16 after "0x", 8 after "0", else 10. Base 16 allows "0x", too.
// Returns  the value; out of range the nearest limit, with GLS_ERR_RANGE. As in C, the unsigned
//          operations negate after a negative sign: "-1" is the largest value.
int64_t gl_wcstol(locale_rec *lc, const gl_wchar *text, const gl_wchar **end, int32_t base,
                  int32_t group);
uint64_t gl_wcstoul(locale_rec *lc, const gl_wchar *text, const gl_wchar **end, int32_t base,
                    int32_t group);
uint64_t gl_wcstoull(locale_rec *lc, const gl_wchar *text, const gl_wchar **end, int32_t base,
                     int32_t group);
int64_t gl_mbstol(locale_rec *lc, const char *text, const char **end, int32_t base, int32_t group);
uint64_t gl_mbstoul(locale_rec *lc, const char *text, const char **end, int32_t base,
                    int32_t group);

// Scan one integer that begins at `text` itself, white space not skipped.
// width     elements to look at, or -1 for no limit.
// base      2 to 36, or 0.
// flags     gl_flag_group of kestrion/number_format.h.
// negative  1 when a negative sign was read.
// value     the value with its sign, for `ull` the magnitude; the nearest limit when out of range.
// Returns   the elements used, 0 when there is no integer; GLS_ERR_RANGE is set beside a result.
int32_t _gl_scan_decimal(locale_rec *lc, const gl_wchar *text, int32_t width, int32_t base,
                         uint32_t flags, int32_t *negative, int64_t *value);
int32_t _gl_scan_decimalull(locale_rec *lc, const gl_wchar *text, int32_t width, int32_t base,
                            uint32_t flags, int32_t *negative, uint64_t *value);

// ---- Floats
//
// Sign, digits, the locale's decimal point, digits, and an exponent as in C. There must be a digit
// before or after the point. "inf", "nan" and hexadecimal floats are no numbers here.
// Returns  the value; with GLS_ERR_FLOAT_RANGE what the C library's strtod gives: an infinity, zero
//          or a value that has lost digits.
double gl_wcstod(locale_rec *lc, const gl_wchar *text, const gl_wchar **end, int32_t group);
double gl_mbstod(locale_rec *lc, const char *text, const char **end, int32_t group);

// The same; with `monetary` not 0 by the MONETARY category: its decimal point and sign texts, no
// exponent, and as separator its own or else that of NUMERIC, which amounts are written with.
double gl_wcstod_num_mon(locale_rec *lc, const gl_wchar *text, const gl_wchar **end, int32_t group,
                         int32_t monetary);

// Returns 2 when `text` begins with "e" or "E" and then "-" or "+", 1 when with "e" or "E" alone,
// else 0.
int32_t gl_iswcexponent(locale_rec *lc, const gl_wchar *text);

// Returns the elements of the group separator that stands at `text` (direction 1) or ends before it
// (direction -1), or 0. Backward, as many elements as the longer separator has must be readable
// before `text`. With `monetary` not 0 the separator is MONETARY's, or else NUMERIC's.
int32_t gl_iswgrpsymb(locale_rec *lc, const gl_wchar *text, int32_t direction, int32_t monetary);

#ifdef __cplusplus
}
#endif
