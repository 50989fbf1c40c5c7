// Random moments for the tests of times, in the form of the engine and in that of the C library.

#pragma once

#include <kestrion/broken_down_time.h>

#include <chrono>
#include <random>
#include <stdint.h>
#include <string.h>
#include <time.h>
#include <vector>

// Random cases of the optimised run; a twentieth of them under sanitizers.
#if defined(__SANITIZE_ADDRESS__) || !defined(__OPTIMIZE__)
inline constexpr int random_moments = 100;
#else
inline constexpr int random_moments = 2000;
#endif

struct moment {
    gl_alt_tm engine;
    tm library;
};

// A day of the Gregorian calendar, counted from 1 January 1970, at a second of the day.
inline moment moment_on_day(int64_t day, int32_t second, int64_t fraction = 0) {
    const std::chrono::sys_days point{std::chrono::days(day)};
    const std::chrono::year_month_day date{point};
    const std::chrono::sys_days new_year = date.year() / std::chrono::January / 1;
    moment made = {};
    tm &t = made.library;
    t.tm_sec = second % 60;
    t.tm_min = second / 60 % 60;
    t.tm_hour = second / 3600;
    t.tm_mday = static_cast<int>(unsigned{date.day()});
    t.tm_mon = static_cast<int>(unsigned{date.month()}) - 1;
    t.tm_year = int{date.year()} - 1900;
    t.tm_wday = static_cast<int>(std::chrono::weekday(point).c_encoding());
    t.tm_yday = static_cast<int>((point - new_year).count());
    made.engine = {.fraction = fraction,
                   .second = t.tm_sec,
                   .minute = t.tm_min,
                   .hour = t.tm_hour,
                   .day = t.tm_mday,
                   .month = t.tm_mon,
                   .year = t.tm_year,
                   .weekday = t.tm_wday,
                   .day_of_year = t.tm_yday};
    return made;
}

inline moment moment_of(int year, unsigned month, unsigned day, int32_t second = 0) {
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                           std::chrono::day(day)};
    return moment_on_day(std::chrono::sys_days(date).time_since_epoch().count(), second);
}

// Whether all fields are equal; gl_alt_tm has a hole, gl_tm has none.
inline bool same_time(const gl_alt_tm &a, const gl_alt_tm &b) {
    gl_tm first, second;
    alt_tm_to_tm(&a, &first);
    alt_tm_to_tm(&b, &second);
    return memcmp(&first, &second, sizeof first) == 0;
}

// Half of them from 1800 to 2100, the others from the years 1 to 9999; always the same ones.
inline std::vector<moment> some_moments(int count) {
    std::mt19937 random(7);
    const auto in = [&](int64_t low, int64_t high) {
        return std::uniform_int_distribution<int64_t>(low, high)(random);
    };
    std::vector<moment> made;
    for (int i = 0; i < count; ++i) {
        const int64_t day = i % 2 == 0 ? in(-62091, 47846) : in(-719162, 2932896);
        made.push_back(moment_on_day(day, static_cast<int32_t>(in(0, 86399)), in(0, 999999)));
    }
    return made;
}
