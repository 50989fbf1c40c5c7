// The calendar by numbers, for operations that ask it often.

#pragma once

#include <kestrion/error_numbers.h>

#include <stdint.h>

namespace kestrion {

inline constexpr unsigned char daymon[] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// A year that 25 divides is a leap year when 16 does, any other when 4 does.
inline constexpr bool is_leap_year(int year) { return (year & (year % 25 == 0 ? 15 : 3)) == 0; }

// Days of a month, 1..12; 0 for any other.
inline constexpr int month_length(int month, bool leap_year) {
    if (month < 1 || month > 12)
        return 0;
    return daymon[month] + (month == 2 && leap_year ? 1 : 0);
}

// Years are counted from 1 March, so that the leap day is the last one of a year, and from 1 March
// of year 0, so that all counts are positive.
inline constexpr int32_t days_before_date_0 = 693900;

// Stores the day number of a date. Returns 0, err_date_year, err_date_month or err_date_day.
inline int day_number(int month, int day, int year, int32_t *date) {
    if (year < 1 || year > 9999)
        return err_date_year;
    if (month < 1 || month > 12)
        return err_date_month;
    if (day < 1 || (day > 28 && day > month_length(month, is_leap_year(year))))
        return err_date_day;
    const auto march_year = static_cast<uint32_t>(month < 3 ? year - 1 : year);
    const auto march_month = static_cast<uint32_t>(month < 3 ? month + 9 : month - 3);
    const uint32_t century = march_year / 100;
    // A month begins (153 * month + 2) / 5 days after its year.
    const uint32_t days = march_year * 1461 / 4 - century + century / 4 +
                          (153 * march_month + 2) / 5 + static_cast<uint32_t>(day) - 1;
    *date = static_cast<int32_t>(days) - days_before_date_0;
    return 0;
}

struct civil_date {
    int month;
    int day;
    int year;
};

// The date of a day number that is in range.
inline civil_date civil_of(int32_t date) {
    // In quarters of a day: a century has 146097, a year 1461. The remainders are those of the
    // quotients' products, found by one multiplication each.
    const uint32_t of_days = 4 * static_cast<uint32_t>(date + days_before_date_0) + 3;
    const uint32_t century = of_days / 146097;
    const uint32_t of_years = of_days % 146097 | 3;
    const uint64_t years = uint64_t{2939745} * of_years; // of 2^32 for each year
    const auto year = static_cast<uint32_t>(years >> 32);
    const uint32_t day_of_year = static_cast<uint32_t>(years) / 2939745 / 4;
    const uint32_t of_months = 2141 * day_of_year + 197913; // of 2^16 for each month, from 3
    const auto month = static_cast<int>(of_months >> 16);
    const bool next_year = day_of_year >= 306; // January and February
    return {.month = next_year ? month - 12 : month,
            .day = static_cast<int>((of_months & 0xFFFF) / 2141) + 1,
            .year = static_cast<int>(century * 100 + year + (next_year ? 1 : 0))};
}

} // namespace kestrion
