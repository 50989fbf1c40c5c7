// Single integers to text of a locale.
//
// Group sizes, separator and signs are those of the locale's NUMERIC category. Operations take the
// locale first; a null locale has the signs "+" and "-" and no groups. They return -1 with
// GLS_ERR_ARGUMENT for a base that is not 2 to 36, GLS_ERR_NO_ROOM when the text with its
// terminator does not fit or takes more than 255 elements, GLS_ERR_BAD_CHARACTER when the code set
// has no such text.

#pragma once

#include <kestrion/format_modifiers.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Write an integer in a base from 2 to 36, grouped when `group` is not 0.
// Return   the elements or bytes written, or -1.
// Example  gl_ltombs(lc, -1234567, dst, 16, 10, 1) -> 10, "-1,234,567"
int32_t gl_ltowcs(locale_rec *lc, int64_t value, gl_wchar *dst, int32_t size, int32_t base,
                  int32_t group);
int32_t gl_ultowcs(locale_rec *lc, uint64_t value, gl_wchar *dst, int32_t size, int32_t base,
                   int32_t group);
int32_t gl_ltombs(locale_rec *lc, int64_t value, char *dst, int32_t size, int32_t base,
                  int32_t group);
int32_t gl_ultombs(locale_rec *lc, uint64_t value, char *dst, int32_t size, int32_t base,
                   int32_t group);

// Writes one integer, without a terminator.
// value      the magnitude; `negative` not 0 puts the negative sign before it.
// base       2 to 36.
// room       elements from `start` on; afterwards the elements written.
// end        the element after the last one written.
// width      columns, precision digits, or gl_modifier_unset.
// Returns    0, or -1.
// Example    29, width 6, precision 3, flags gl_flag_left -> "029   "
int32_t _gl_format_decimal(locale_rec *lc, uint64_t value, int32_t negative, int32_t base,
                           int32_t *room, gl_wchar *start, gl_wchar **end, int32_t width,
                           int32_t precision, uint32_t flags);
int32_t _gl_format_decimalull(locale_rec *lc, uint64_t value, int32_t negative, int32_t base,
                              int32_t *room, gl_wchar *start, gl_wchar **end, int32_t width,
                              int32_t precision, uint32_t flags);

#ifdef __cplusplus
}
#endif
