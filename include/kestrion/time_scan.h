// Times from text, by the locale: the reverse of <kestrion/time_format.h>, with its directives.
//
// White space in a format, %n and %t match any white space, also none; other text must be equal. A
// number may follow white space and has at most as many digits as its directive writes: two; %Y and
// %iY four, %j three, %F its own, %Ey four; more when the directive has a width or precision. Names
// match without regard to case, the longest first, in full or abbreviated. %y alone means
// 1969 to 2068; with %C it is a year of that century. %I goes with %p, wherever it stands. An era's
// name and %Ey give the year once month and day are known, at the end of the scan.
//
//     gl_tm moment = {};
//     rest = gl_mbsptime_internal(lc, "29 Feb 2024 13:05, noon", "%d %b %Y %H:%M", &moment);
//     // rest is ", noon"; day 29, month 1, month_name 1, year 124, hour 13, minute 5
//
// What a format does not name keeps the caller's value: no weekday is computed, and in a locale
// with another calendar the caller's date is what the named parts replace. The record that is
// filled is Gregorian, but for the forms with `_internal`, which give and take the date as the
// locale's calendar has it.
//
// Operations return the first element that was not used. On failure they return null, the record
// is unchanged, and the error word says why:
//
//      2  a null argument
//      9  no era has this name and year, or holds the date
//     15  the format ends inside a directive
//     22  the text does not match; no such conversion; formats that stand for each other more than
//         8 deep
//     23 to 31  a field out of range, as in formatting
//     50  the locale's calendar converts no dates

#pragma once

#include <kestrion/broken_down_time.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

const gl_wchar *gl_wcsptime(locale_rec *lc, const gl_wchar *text, const gl_wchar *format,
                            gl_alt_tm *time);
const gl_wchar *gl_wcsptime1(locale_rec *lc, const gl_wchar *text, const gl_wchar *format,
                             gl_tm *time);
const gl_wchar *gl_wcsptime_internal(locale_rec *lc, const gl_wchar *text, const gl_wchar *format,
                                     gl_tm *time);
const char *gl_mbsptime(locale_rec *lc, const char *text, const char *format, gl_alt_tm *time);
const char *gl_mbsptime_internal(locale_rec *lc, const char *text, const char *format, gl_tm *time);

#ifdef __cplusplus
}
#endif
