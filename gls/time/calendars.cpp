#include <kestrion/calendars.h>

#include "gls/base/engine_error.h"
#include "gls/time/calendars.h"
#include "gls/time/day_number.h"

using namespace kestrion;

namespace {

constexpr int32_t base_year = 1900; // what a record's year is less of

// The years and days of a calendar; months are walked by their lengths.
struct calendar {
    int64_t first_day, last_day;          // Gregorian days that have a date
    int64_t first_year;                   // of the first day
    int64_t days_in_1000_years;           // on the average
    int64_t (*days_before)(int64_t year); // the day before its first, as a day number
    int32_t (*month_count)(int64_t year);
    int32_t (*month_days)(int64_t year, int32_t month); // month from 0
    int32_t (*name_of_month)(int64_t year, int32_t month);
};

// ---- The Gregorian calendar

int32_t twelve_months(int64_t) { return 12; }

int32_t gregorian_days(int64_t year, int32_t month) { return days_in_month(year, month + 1); }

int32_t same_name(int64_t, int32_t month) { return month; }

// ---- The Hebrew calendar

constexpr int64_t hebrew_origin = 3744; // hebrew_size_in_days counts the years from here
constexpr int64_t hebrew_first_tishri = -6306;
constexpr int32_t adar_1 = 5;

// The days from a fixed day to the new year `y` years after the origin. The new year is the day of
// the mean new moon of Tishri, put off when the moon or the weekday say so.
constexpr int64_t hebrew_size_in_days(int64_t y) {
    const int64_t a = 7 * y + 1;
    const int64_t s = a % 19; // the place in the cycle of leap years
    const int64_t months = a / 19 + 12 * y;
    const int64_t parts = 39673 * months + 8339; // 25920 a day, above 28 days a month
    const int64_t day = 28 * months + parts / 25920;
    const int64_t weekday = parts % 181440 / 25920;
    const int64_t rest = parts % 181440 % 25920;
    const bool put_off =
        (s < 12 && weekday == 3 && rest > 16403) || (s <= 6 && weekday == 2 && rest >= 23269);
    if (put_off)
        return weekday == 0 || weekday == 3 || weekday == 5 ? day : day - 1;
    return weekday == 1 || weekday == 4 || weekday == 6 ? day - 1 : day - 2;
}

int64_t hebrew_days_before(int64_t year) {
    return hebrew_size_in_days(year - hebrew_origin) + hebrew_first_tishri - 1;
}

int32_t hebrew_year_days(int64_t year) {
    return static_cast<int32_t>(hebrew_days_before(year + 1) - hebrew_days_before(year));
}

bool is_hebrew_leap_year(int64_t year) { return (7 * year + 1) % 19 < 7; }

int32_t hebrew_months(int64_t year) { return is_hebrew_leap_year(year) ? 13 : 12; }

int32_t hebrew_name(int64_t year, int32_t month) {
    return month >= adar_1 && !is_hebrew_leap_year(year) ? month + 1 : month;
}

int32_t hebrew_days(int64_t year, int32_t month) {
    constexpr int8_t by_name[] = {30, 29, 30, 29, 30, 30, 29, 30, 29, 30, 29, 30, 29};
    constexpr int32_t heshvan = 1, kislev = 2;
    const int32_t length = month == heshvan || month == kislev ? hebrew_year_days(year) % 10 : 0;
    if (month == heshvan && length == 5) // 355 or 385 days
        return 30;
    if (month == kislev && length == 3) // 353 or 383 days
        return 29;
    return by_name[hebrew_name(year, month)];
}

// ---- The Islamic calendar

constexpr int64_t islamic_first_day = day_number({622, 7, 18});

constexpr bool is_islamic_leap_year(int64_t year) { return (11 * year + 14) % 30 < 11; }

// Years of 354 days, and 11 of 355 among every 30: cycles of 10631 days.
int64_t islamic_days_before(int64_t year) {
    const int64_t whole = year - 1;
    return islamic_first_day - 1 + whole * 354 + (11 * whole + 14) / 30;
}

int32_t islamic_days(int64_t year, int32_t month) {
    return month == 11 && is_islamic_leap_year(year) ? 30 : 30 - month % 2;
}

// ---- Conversion

// The limits are bare days, not ends of years.
constexpr int64_t last_hebrew_day = day_number({10000, 1, 24});
constexpr int64_t last_islamic_day = day_number({10323, 9, 21});

constexpr calendar gregorian = {
    .first_day = 1,
    .last_day = last_islamic_day,
    .first_year = 1,
    .days_in_1000_years = 365243,
    .days_before = days_before_year,
    .month_count = twelve_months,
    .month_days = gregorian_days,
    .name_of_month = same_name,
};
constexpr calendar hebrew = {
    .first_day = 1,
    .last_day = last_hebrew_day,
    .first_year = 3761,
    .days_in_1000_years = 365247,
    .days_before = hebrew_days_before,
    .month_count = hebrew_months,
    .month_days = hebrew_days,
    .name_of_month = hebrew_name,
};
constexpr calendar islamic = {
    .first_day = islamic_first_day,
    .last_day = last_islamic_day,
    .first_year = 1,
    .days_in_1000_years = 354367,
    .days_before = islamic_days_before,
    .month_count = twelve_months,
    .month_days = islamic_days,
    .name_of_month = same_name,
};

// The day number of a record's date; 0 or the error that the date means.
int32_t day_of_date(const calendar &in, const gl_tm &date, int64_t &day) {
    const int64_t year = int64_t{date.year} + base_year;
    if (year < in.first_year || in.days_before(year) >= in.last_day)
        return GLS_ERR_YEAR;
    if (date.month < 0 || date.month >= in.month_count(year))
        return GLS_ERR_MONTH;
    if (date.day < 1 || date.day > in.month_days(year, date.month))
        return GLS_ERR_DAY;
    day = in.days_before(year) + date.day;
    for (int32_t month = 0; month < date.month; ++month)
        day += in.month_days(year, month);
    return GLS_OK;
}

// Fills the date of a day that the calendar has.
void set_date(const calendar &in, int64_t day, gl_tm &date) {
    int64_t year = in.first_year + (day - in.first_day) * 1000 / in.days_in_1000_years;
    while (in.days_before(year) >= day)
        --year;
    while (in.days_before(year + 1) < day)
        ++year;
    auto left = static_cast<int32_t>(day - in.days_before(year));
    date.day_of_year = left - 1;
    int32_t month = 0;
    for (; left > in.month_days(year, month); ++month)
        left -= in.month_days(year, month);
    date.day = left;
    date.month = month;
    date.month_name = in.name_of_month(year, month);
    date.year = static_cast<int32_t>(year - base_year);
    date.weekday = weekday_of_day(day);
}

bool has_day(const calendar &in, int64_t day) { return day >= in.first_day && day <= in.last_day; }

int32_t convert(const calendar &from_calendar, const gl_tm *from, const calendar &to_calendar,
                gl_tm *to) {
    if (from == nullptr || to == nullptr)
        return GLS_ERR_NULL_ARGUMENT;
    int64_t day = 0;
    const int32_t error = day_of_date(from_calendar, *from, day);
    if (error != GLS_OK)
        return error;
    if (!has_day(from_calendar, day) || !has_day(to_calendar, day))
        return GLS_ERR_YEAR;
    *to = *from;
    set_date(to_calendar, day, *to);
    return GLS_OK;
}

// The result of an operation that ends with `error`.
int32_t answer(locale_rec *lc, int32_t error) { return error == GLS_OK ? 0 : fail(lc, error); }

int32_t copy(const gl_tm *from, gl_tm *to) {
    if (from == nullptr || to == nullptr)
        return GLS_ERR_NULL_ARGUMENT;
    *to = *from;
    return GLS_OK;
}

} // namespace

namespace kestrion {

int32_t month_of_name(int32_t calendar, int32_t name, int64_t year) {
    const bool skips = calendar == CALENDAR_HEBREW && !is_hebrew_leap_year(year);
    if (skips && name == adar_1)
        return -1;
    return skips && name > adar_1 ? name - 1 : name;
}

int32_t name_of_month(int32_t calendar, int32_t month, int64_t year) {
    return calendar == CALENDAR_HEBREW ? hebrew_name(year, month) : month;
}

} // namespace kestrion

int32_t gl_cal_gregorian_to_hebrew(const gl_tm *from, gl_tm *to) {
    return answer(nullptr, convert(gregorian, from, hebrew, to));
}

int32_t gl_cal_hebrew_to_gregorian(const gl_tm *from, gl_tm *to) {
    return answer(nullptr, convert(hebrew, from, gregorian, to));
}

int32_t gl_cal_gregorian_to_islamic(const gl_tm *from, gl_tm *to) {
    return answer(nullptr, convert(gregorian, from, islamic, to));
}

int32_t gl_cal_islamic_to_gregorian(const gl_tm *from, gl_tm *to) {
    return answer(nullptr, convert(islamic, from, gregorian, to));
}

int32_t gl_cal_gregorian_to_local(locale_rec *lc, const gl_tm *from, gl_tm *to) {
    switch (calendar_of(lc)) {
    case CALENDAR_GREGORIAN:
        return answer(lc, copy(from, to));
    case CALENDAR_HEBREW:
        return answer(lc, convert(gregorian, from, hebrew, to));
    case CALENDAR_ISLAMIC:
        return answer(lc, convert(gregorian, from, islamic, to));
    default:
        return answer(lc, GLS_ERR_CALENDAR);
    }
}

int32_t gl_cal_local_to_gregorian(locale_rec *lc, const gl_tm *from, gl_tm *to) {
    switch (calendar_of(lc)) {
    case CALENDAR_GREGORIAN:
        return answer(lc, copy(from, to));
    case CALENDAR_HEBREW:
        return answer(lc, convert(hebrew, from, gregorian, to));
    case CALENDAR_ISLAMIC:
        return answer(lc, convert(islamic, from, gregorian, to));
    default:
        return answer(lc, GLS_ERR_CALENDAR);
    }
}
