// Times as text, by the locale.
//
// A format is text with directives. A directive is "%", modifiers, maybe "E" or "O", and a
// conversion; everything else stands for itself. The examples show 29 February 2024,
// 13:05:09.123456, a Thursday:
//
//     %A %a      weekday in full, abbreviated          Thursday, Thu
//     %B %b %h   month in full, abbreviated (twice)    February, Feb
//     %C %g      century                               20
//     %c %x %X   the locale's date and time, date, time
//     %D         month/day/year                        02/29/24
//     %d %e      day, zero-filled, blank-filled        29
//     %F         fraction: %F0 to %F5 cut it to so     123, with %F5 12345
//                many digits; without a digit 3
//     %H %I      hour of 24, of 12                     13, 01
//     %iY %iy    year in four digits, in two           2024, 24
//     %iF        as %F
//     %j         day of the year from 1                060
//     %M %m      minute, month                         05, 02
//     %n %t %%   newline, tab, percent sign
//     %p %r      am or pm, the locale's 12-hour time
//     %R %T      hour:minute, hour:minute:second       13:05, 13:05:09
//     %S         second                                09
//     %u %w      weekday from Monday 1, from Sunday 0  4, 4
//     %Y %y      year, year in two digits              2024, 24
//
// With "E" the locale's eras count: %EC and %Eg the era's first and second name, %Ey the year in
// it, %EY the era's own form of both, %Ex %EX %Ec the era forms of date, time, date and time. With
// "O" the numbers of C D H I M R S T d e j m u w y are written in the locale's own digits. In a
// locale without eras the "E" is ignored, in one without digits of its own the "O": "%Ed" is "%d".
//
//     th_th  "%EC %Ey"  ->  B.E. 2567 (the name in Thai)
//     en_us  "%EC%Ey"   ->  2024
//
// Modifiers are those of numbers: flags "'", "-", "+", blank, "0", "#", a width, a point and a
// precision. They shape a number as the number formatter does and are ignored with names and with
// directives that stand for several pieces. Without them a number has at least two digits: %j
// three; %iY four; %u, %w and %Y one; %e is filled with a blank.
//
//     "%3d" -> " 29"    "%-4d|" -> "29  |"    "%.3d" -> "029"
//
// A locale whose calendar is Hebrew or Islamic writes the date of that calendar; the caller's
// record is Gregorian all the same.
//
// Operations return the count of elements or bytes without the terminator. On failure they return
// 0, leave an empty text in a destination that has room for one, and set the error word:
//
//      1  the multibyte format has an invalid character
//      2  a null argument
//      9  no era of the locale holds the date
//     14  the text and its terminator do not fit
//     15  the format ends inside a directive
//     22  no such conversion; formats that stand for each other more than 8 deep
//     23 to 31  a field out of range: fraction, second, minute, hour, day, weekday, day of the
//         year, month, year
//     41  %Y of a year before 0
//     50  the locale's calendar converts no dates
//
// A null locale formats numbers in ASCII and has no names.

#pragma once

#include <kestrion/broken_down_time.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Format a time into dst[0..size), terminated. size counts elements of the wide forms, bytes of the
// multibyte forms. The forms with a 1 take the month's name from the record.
// Example  gl_mbsftime(lc, text, sizeof text, "%d %b %Y", &moment) in en_us -> 11, "29 Feb 2024"
int32_t gl_wcsftime(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format,
                    const gl_alt_tm *time);
int32_t gl_wcsftime1(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format,
                     const gl_tm *time);
int32_t gl_mbsftime(locale_rec *lc, char *dst, int32_t size, const char *format,
                    const gl_alt_tm *time);
int32_t gl_mbsftime1(locale_rec *lc, char *dst, int32_t size, const char *format,
                     const gl_tm *time);

// Gives the locale's formats of date, time, date and time, in this order. They belong to the
// locale. Returns 0, or -1 with error 2 for a null argument.
int32_t gl_get_ltime_fmts(locale_rec *lc, char *out[3]);

#ifdef __cplusplus
}
#endif
