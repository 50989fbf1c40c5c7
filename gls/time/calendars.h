// What formatting and scanning need of a locale's calendar besides its conversions.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

// The calendar's number; a null locale is Gregorian.
inline int32_t calendar_of(const locale_rec *lc) {
    return lc == nullptr ? CALENDAR_GREGORIAN : lc->time_cat.calendar;
}

// Between a month and the index of its name in a year of the calendar. month_of_name gives -1 for
// the leap month's name in a common year.
int32_t month_of_name(int32_t calendar, int32_t name, int64_t year);
int32_t name_of_month(int32_t calendar, int32_t month, int64_t year);

} // namespace kestrion
