// The time that the engine takes for the present one.
//
// While a program has set a time, scans start from it instead of the caller's record, so that what
// a format does not name comes from there, and centuries are chosen as if it were today. Each
// thread has its own; the locale is only where an error goes.

#pragma once

#include <kestrion/broken_down_time.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Sets the time, a Gregorian one. Returns 0; -1 with nothing changed and error 2 for null, 31, 30 or
// 27 for a year outside 1 to 9999, a month outside 0 to 11, a day outside 1 to 31.
int32_t gl_set_current_time(locale_rec *lc, const gl_tm *time);

// Goes back to the clock and the caller's records. Returns 0.
int32_t gl_reset_time(locale_rec *lc);

#ifdef __cplusplus
}
#endif
