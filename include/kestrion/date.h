// Dates: the days of the Gregorian calendar, counted.
//
//     day 0        31 December 1899
//     1             1 January 1900
//     -693594       1 January of year 1, the first one
//     2958464      31 December 9999, the last one
//     date_null    NULL
//
// The calendar holds for all of these years. A date taken apart is month, day, year, in this order,
// in 16 bits each; NULL has mdy_null in all three.
//
// Operations return 0 or a negative error number and then set their result to NULL. NULL in gives
// NULL out and 0.

#pragma once

#include <stdint.h>

enum {
    date_null = INT32_MIN,
    date_first = -693594,
    date_last = 2958464,
    mdy_null = INT16_MIN,
};

#ifdef __cplusplus
extern "C" {
#endif

// The date of month, day, year. A NULL in any of them is a NULL date.
// Returns err_date_year (-1204), err_date_month (-1205) or err_date_day (-1206), tested in this
// order.
// Example {2, 29, 2024} -> 45350.
int rmdyjul(const int16_t mdy[3], int32_t *date);

// The reverse. Returns err_date_range (-1210).
int rjulmdy(int32_t date, int16_t mdy[3]);

// 1 for a leap year, else 0.
int rleapyear(int year);

#ifdef __cplusplus
}
#endif
