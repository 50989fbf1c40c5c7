// The room that a time format needs, whatever the time.
//
// A format is measured as <kestrion/time_format.h> writes it: numbers at their greatest (9999 for a
// year, 99 for two digits), names and the locale's own digits at their longest, eras at the longest
// of all. Nothing that the format writes is longer.
//
//     char *text = malloc((size_t)gl_mbsfmtexpand(lc, format, 1) + 4); // and the terminator

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Return the most elements, or bytes, that a format writes, without the terminator; -1 with the
// error word 9 for a mode other than 1, 14 for more than 32 bits hold, else as in formatting.
// Example  gl_mbsfmtexpand(lc, "%A %d", 1) in en_us -> 12, for "Wednesday 31"
int32_t gl_wcsfmtexpand(locale_rec *lc, const gl_wchar *format, int32_t mode);
int32_t gl_mbsfmtexpand(locale_rec *lc, const char *format, int32_t mode);

#ifdef __cplusplus
}
#endif
