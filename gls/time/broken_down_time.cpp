#include <kestrion/broken_down_time.h>

void tm_to_alt_tm(const gl_tm *from, gl_alt_tm *to) {
    *to = {.fraction = from->fraction,
           .second = from->second,
           .minute = from->minute,
           .hour = from->hour,
           .day = from->day,
           .month = from->month,
           .year = from->year,
           .weekday = from->weekday,
           .day_of_year = from->day_of_year,
           .daylight = from->daylight,
           .utc_offset = from->utc_offset,
           .zone = from->zone};
}

void alt_tm_to_tm(const gl_alt_tm *from, gl_tm *to) {
    *to = {.fraction = from->fraction,
           .second = from->second,
           .minute = from->minute,
           .hour = from->hour,
           .day = from->day,
           .month = from->month,
           .month_name = from->month,
           .year = from->year,
           .weekday = from->weekday,
           .day_of_year = from->day_of_year,
           .daylight = from->daylight,
           .utc_offset = from->utc_offset,
           .zone = from->zone};
}
