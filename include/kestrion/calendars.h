// Dates of the Gregorian calendar in the Hebrew and the Islamic one, and back.
//
// The Gregorian calendar is taken as if it had always been in use. Hebrew months count from Tishri:
// 0 to 11 in a common year, 0 to 12 in a leap year, whose month 5 is the added Adar I. The Islamic
// calendar is the arithmetical one: its first day is 18 July 622, the leap years are 2, 5, 7, 10,
// 13, 16, 18, 21, 24, 26 and 29 of every 30, and their twelfth month has 30 days.
//
//                      day  month  month_name  year, less 1900  day_of_year
//     29 February 2024  29      1           1              124           59
//     20 Adar I 5784    20      5           5             3884          166
//     20 Sha'ban 1445   20      7           7             -455          226
//
// A conversion reads day, month and year. It writes these, month_name, weekday and day_of_year, and
// copies everything else; source and destination may be the same record. It returns 0, or -1 with
// the destination unchanged and the error word 31, 30 or 27: the date is beyond the limits below,
// the year has no such month, the month no such day.

#pragma once

#include <kestrion/broken_down_time.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// From and to the locale's calendar. The Gregorian one is a plain copy, unchecked; -1 with error 50
// for one that converts no dates. A null locale is Gregorian.
int32_t gl_cal_gregorian_to_local(locale_rec *lc, const gl_tm *from, gl_tm *to);
int32_t gl_cal_local_to_gregorian(locale_rec *lc, const gl_tm *from, gl_tm *to);

// 1 January of the year 1 to 24 January 10000, in both directions. The error word is `temperr`,
// here and below.
int32_t gl_cal_gregorian_to_hebrew(const gl_tm *from, gl_tm *to);
int32_t gl_cal_hebrew_to_gregorian(const gl_tm *from, gl_tm *to);

// 18 July 622 to 21 September 10323, in both directions.
int32_t gl_cal_gregorian_to_islamic(const gl_tm *from, gl_tm *to);
int32_t gl_cal_islamic_to_gregorian(const gl_tm *from, gl_tm *to);

#ifdef __cplusplus
}
#endif
