// Days of the Gregorian calendar, counted through: 1 January of the year 1 is day 1, a Monday.

#pragma once

#include <stdint.h>

namespace kestrion {

// A date of any calendar, with years and months as people count them.
struct calendar_date {
    int64_t year;
    int32_t month; // from 1
    int32_t day;   // from 1
};

constexpr bool is_leap_year(int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr int32_t days_in_month(int64_t year, int32_t month) {
    return month == 2 ? 28 + is_leap_year(year) : 30 + ((month ^ (month >> 3)) & 1);
}

// The days before a year, from the year 1 on.
constexpr int64_t days_before_year(int64_t year) {
    const int64_t whole = year - 1;
    return whole * 365 + whole / 4 - whole / 100 + whole / 400;
}

constexpr int32_t days_before_month(int64_t year, int32_t month) {
    constexpr int32_t before[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    return before[month - 1] + (month > 2 && is_leap_year(year));
}

constexpr int64_t day_number(const calendar_date &date) {
    return days_before_year(date.year) + days_before_month(date.year, date.month) + date.day;
}

// The date of a day from 1 on.
constexpr calendar_date date_of_day(int64_t number) {
    int64_t year = number * 400 / 146097 + 1; // the year, or the one after it
    if (days_before_year(year) >= number)
        --year;
    auto left = static_cast<int32_t>(number - days_before_year(year));
    int32_t month = 1;
    for (; left > days_in_month(year, month); ++month)
        left -= days_in_month(year, month);
    return {year, month, left};
}

constexpr int32_t weekday_of_day(int64_t number) { return static_cast<int32_t>(number % 7); }

} // namespace kestrion
