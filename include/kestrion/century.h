// The century of a year in two digits.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Chooses among the last, this and the next century by the day that the engine takes for today
// (<kestrion/current_time.h>).
// month   1 to 12
// day     1 to 31; whether the month has that day is not looked at
// yy      0 to 99
// letter  'R' the present century; 'P' the latest date before today; 'F' the earliest date after
//         today; 'C' the date closest to today, the earlier of two that are equally close
// base_year  ignored
// Returns the century, 20 for 2024; -1 with error 30, 31 or 27 for the month, the year or the day
//         out of range, tested in this order, 9 for another letter, 8 when the clock fails.
// Example today 2024-06-01, 50-01-01 -> R 20, P 19, F 20, C 20 (2050 is closer than 1950)
int32_t gl_getcenturyloc(locale_rec *lc, int32_t month, int32_t day, int32_t yy, char letter,
                         int32_t base_year);

#ifdef __cplusplus
}
#endif
