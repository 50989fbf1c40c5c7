// Datetimes and intervals worked out plainly: fields as integers, moments as counts of 1/100000 s.

#pragma once

#include <kestrion/datetime.h>
#include <kestrion/datetime_text.h>
#include <kestrion/interval_text.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace plain {

using ticks = __int128; // of 1/100000 second, or months

struct words {
    int start;
    int end;
    int width; // digits of the first field

    int word() const { return ((width + end - start) << 8) + (start << 4) + end; }
    int last() const { return end > unit_second ? +unit_second : end; }
    int decimals() const { return end > unit_second ? end - unit_second : 0; }
};

inline std::vector<words> datetimes() {
    std::vector<words> all;
    for (int start = 0; start <= 12; start += 2) {
        for (int end : {0, 2, 4, 6, 8, 10, 11, 12, 13, 14, 15}) {
            if (start <= end || (start == 12 && end == 11))
                all.push_back({start, end, start == 0 ? 4 : 2});
        }
    }
    return all;
}

inline std::vector<words> intervals(int most_digits) {
    std::vector<words> all;
    for (const words &q : datetimes()) {
        for (int width = 1; width <= most_digits && width + q.end - q.start < 25; ++width) {
            if ((q.start > 2 || q.end < 4) && (q.start != 12 || width == 2))
                all.push_back({q.start, q.end, width});
        }
    }
    return all;
}

// How many ticks a unit has; months for years and months.
inline ticks ticks_of(int unit) {
    static constexpr int64_t counts[] = {12, 1, 8640000000, 360000000, 6000000, 100000, 1};
    return counts[unit / 2];
}

struct fields {
    int at[7] = {1, 1, 1, 0, 0, 0, 0}; // year, month, day, hour, minute, second, 1/100000

    std::string text(const words &q) const {
        std::string out;
        char piece[24];
        for (int unit = q.start; unit <= q.last(); unit += 2) {
            snprintf(piece, sizeof piece, unit == 0 ? "%04d" : "%02d", at[unit / 2]);
            out += piece;
            if (unit < q.last())
                out += "-- :: "[unit / 2];
        }
        snprintf(piece, sizeof piece, ".%05d", at[6]);
        if (q.decimals() > 0)
            out.append(piece, static_cast<size_t>(q.decimals()) + 1);
        return out;
    }

    int64_t time_of_day() const { return ((at[3] * 60LL + at[4]) * 60 + at[5]) * 100000 + at[6]; }
    std::chrono::year_month_day date() const { return std::chrono::year{at[0]} / at[1] / at[2]; }
};

inline fields moment(std::chrono::sys_days date, int64_t time_of_day) {
    const std::chrono::year_month_day civil{date};
    fields made;
    made.at[0] = static_cast<int>(civil.year());
    made.at[1] = static_cast<int>(static_cast<unsigned>(civil.month()));
    made.at[2] = static_cast<int>(static_cast<unsigned>(civil.day()));
    made.at[6] = static_cast<int>(time_of_day % 100000);
    made.at[5] = static_cast<int>(time_of_day / 100000 % 60);
    made.at[4] = static_cast<int>(time_of_day / 6000000 % 60);
    made.at[3] = static_cast<int>(time_of_day / 360000000);
    return made;
}

// Sets what the qualifier doesn't have to the least.
inline fields cut(fields value, const words &q) {
    for (int unit = 0; unit <= 10; unit += 2) {
        if (unit < q.start || unit > q.end)
            value.at[unit / 2] = unit == unit_month || unit == unit_day ? 1 : 0;
    }
    int step = 100000;
    for (int i = 0; i < q.decimals(); ++i)
        step /= 10;
    value.at[6] -= value.at[6] % step;
    return value;
}

inline std::string digits_of(ticks number) {
    std::string text;
    do {
        text.insert(text.begin(), static_cast<char>('0' + static_cast<int>(number % 10)));
    } while ((number /= 10) != 0);
    return text;
}

// The text of an interval, cut to its last unit; empty when it doesn't fit.
inline std::string interval_text(ticks total, const words &q) {
    const bool negative = total < 0;
    ticks left = negative ? -total : total;
    const bool all_fraction = q.start == unit_fraction;
    std::string first = all_fraction ? "" : digits_of(left / ticks_of(q.start));
    if (all_fraction
            ? left >= 100000
            : first.size() > static_cast<size_t>(q.width) || left / ticks_of(q.start) > 2147483647)
        return "";
    std::string text;
    if (!all_fraction) {
        text = std::string(static_cast<size_t>(q.width) - first.size() + 1, ' ') + first;
        left %= ticks_of(q.start);
    } else {
        text = " ";
    }
    // The sign of a value that is all zero after the cut is gone.
    ticks kept = total;
    std::string rest;
    for (int unit = q.start + 2; unit <= q.last(); unit += 2) {
        char piece[8];
        snprintf(piece, sizeof piece, "%c%02d", "-- ::."[unit / 2 - 1],
                 static_cast<int>(left / ticks_of(unit)));
        rest += piece;
        left %= ticks_of(unit);
    }
    if (q.decimals() > 0) {
        char piece[8];
        snprintf(piece, sizeof piece, ".%05d", static_cast<int>(left));
        rest.append(piece, static_cast<size_t>(q.decimals()) + 1);
    }
    text += rest;
    if (negative && kept != 0 && text.find_first_not_of(" 0-:.") != std::string::npos)
        text[text.find_first_not_of(' ') - 1] = '-';
    return text;
}

// A count from 0 that is small as often as large.
inline int64_t any_count(std::mt19937_64 &random, int64_t limit) {
    const int bits = static_cast<int>(random() % 63) + 1;
    return static_cast<int64_t>(random() >> (64 - bits)) % limit;
}

inline fields any_moment(std::mt19937_64 &random) {
    using namespace std::chrono;
    const int first = sys_days{1y / January / 1}.time_since_epoch().count();
    const int count = sys_days{10000y / January / 1}.time_since_epoch().count() - first;
    const int day = first + static_cast<int>(random() % static_cast<unsigned>(count));
    // Often where months and years end.
    year_month_day date{sys_days{days{day}}};
    if (random() % 3 == 0)
        date = year_month_day{date.year() / date.month() / last};
    if (random() % 5 == 0)
        date = year_month_day{date.year() / February / last};
    int64_t time = static_cast<int64_t>(random() % 8640000000u);
    if (random() % 4 == 0)
        time = random() % 2 == 0 ? 0 : 8639999999;
    return moment(date, time);
}

inline dtime_value datetime(const fields &value, const words &q) {
    dtime_value made = {.qualifier = static_cast<int16_t>(q.word()), .value = {}};
    dtcvasc(value.text(q).c_str(), &made);
    return made;
}

inline std::string text_of(const dtime_value &value) {
    char text[rdtimestr_size];
    dttoasc(&value, text);
    return text;
}

inline std::string text_of(const intv_value &value) {
    char text[rinvstr_size];
    intoasc(&value, text);
    return text;
}

} // namespace plain
