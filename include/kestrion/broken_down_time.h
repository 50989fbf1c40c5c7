// A moment, taken apart: the record that the operations on times read and fill.
//
// There are two forms of 64 bytes. gl_alt_tm is what programs keep; gl_tm also says which name the
// month has, because a calendar with a leap month has more names than a year has months:
//
//     20 February 2025 in the Hebrew calendar, a common year:  month 5, month_name 6 (Adar)
//     29 February 2024 in the same calendar, a leap year:      month 5, month_name 5 (Adar I)
//
// A year is stored less 1900 in every calendar: 2024 is 124, the Hebrew year 5784 is 3884.

#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct gl_tm {
    int64_t fraction;    // microseconds, 0 to 999999
    int32_t second;      // 0 to 61
    int32_t minute;      // 0 to 59
    int32_t hour;        // 0 to 23
    int32_t day;         // of the month, from 1
    int32_t month;       // from 0; the Hebrew calendar counts from Tishri
    int32_t month_name;  // index of the month's name
    int32_t year;        // less 1900
    int32_t weekday;     // 0 to 6, from Sunday
    int32_t day_of_year; // from 0
    int32_t daylight;    // above 0 in summer time
    int64_t utc_offset;  // this and the next: only copied
    int64_t zone;
} gl_tm;

typedef struct gl_alt_tm {
    int64_t fraction;
    int32_t second;
    int32_t minute;
    int32_t hour;
    int32_t day;
    int32_t month;
    int32_t year;
    int32_t weekday;
    int32_t day_of_year;
    int32_t daylight;
    int64_t utc_offset;
    int64_t zone;
} gl_alt_tm;

// Copy one form to the other. alt_tm_to_tm takes the month as the index of its name.
void tm_to_alt_tm(const gl_tm *from, gl_alt_tm *to);
void alt_tm_to_tm(const gl_alt_tm *from, gl_tm *to);

#ifdef __cplusplus
}

static_assert(sizeof(gl_tm) == 64 && sizeof(gl_alt_tm) == 64);
#else
_Static_assert(sizeof(gl_tm) == 64 && sizeof(gl_alt_tm) == 64, "both forms have 64 bytes");
#endif
