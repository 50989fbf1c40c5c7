// The century of two digits, beside a plain search of the three candidates.

#include <kestrion/century.h>
#include <kestrion/current_time.h>
#include <kestrion/ext_funcs.h>

#include <chrono>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <stdlib.h>
#include <tuple>

namespace {

using namespace std::chrono;

void set_today(int year, int month, int day) {
    const gl_tm today = {.day = day, .month = month - 1, .year = year - 1900};
    ASSERT_EQ(gl_set_current_time(nullptr, &today), 0);
}

// The day of a date; one that its month lacks is the month's last.
int64_t days(int y, int m, int d) {
    const year_month_day_last last{year(y), month_day_last(month(static_cast<unsigned>(m)))};
    const unsigned day_of_month = std::min(static_cast<unsigned>(d), unsigned{last.day()});
    return sys_days(last.year() / last.month() / day(day_of_month)).time_since_epoch().count();
}

int32_t plain_search(std::tuple<int, int, int> today, int month, int day, int yy, char letter) {
    const auto [y, m, d] = today;
    int best = -1;
    for (int century = y / 100 - 1; century <= y / 100 + 1; ++century) {
        const std::tuple date(century * 100 + yy, month, day);
        const auto distance = [&](int c) {
            return std::abs(days(c * 100 + yy, month, day) - days(y, m, d));
        };
        if ((letter == 'R' && century == y / 100) || (letter == 'P' && date < today) ||
            (letter == 'F' && date > today && best < 0) ||
            (letter == 'C' && (best < 0 || distance(century) < distance(best))))
            best = century;
    }
    return best;
}

} // namespace

TEST(Century, IsTheOneThatTheLetterAsksFor) {
    const struct {
        int year, month, day; // today
        int in_month, in_day, yy;
        const char *centuries; // by R, P, F, C
    } rows[] = {
        {2024, 6, 1, 1, 1, 50, "20 19 20 20"},   // 2050 is closer than 1950
        {1995, 6, 1, 1, 1, 50, "19 19 20 19"},   // 1950 is closer than 2050
        {2024, 6, 1, 6, 1, 24, "20 19 21 20"},   // today is neither before nor after itself
        {2024, 6, 1, 5, 31, 24, "20 20 21 20"},  //
        {2024, 6, 1, 6, 31, 24, "20 19 20 20"},  // compared as written, counted as 30 June
        {2074, 7, 2, 7, 2, 24, "20 20 21 20"},   // as far from 2024 as from 2124, by a day
        {2001, 1, 1, 12, 31, 99, "20 19 20 19"}, //
    };
    for (const auto &row : rows) {
        set_today(row.year, row.month, row.day);
        std::ostringstream found;
        for (const char letter : {'R', 'P', 'F', 'C'})
            found << (letter == 'R' ? "" : " ")
                  << gl_getcenturyloc(nullptr, row.in_month, row.in_day, row.yy, letter, 0);
        EXPECT_EQ(found.str(), row.centuries) << row.year << " " << row.yy;
    }
    std::mt19937 random(3);
    for (int i = 0; i < 20000; ++i) {
        const auto in = [&](int low, int high) {
            return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
        };
        const std::tuple today(in(100, 9999), in(1, 12), in(1, 28));
        set_today(std::get<0>(today), std::get<1>(today), std::get<2>(today));
        const int month = in(1, 12), day = in(1, 31), yy = in(0, 99);
        for (const char letter : {'R', 'P', 'F', 'C'})
            ASSERT_EQ(gl_getcenturyloc(nullptr, month, day, yy, letter, in(0, 9999)),
                      plain_search(today, month, day, yy, letter))
                << letter << std::get<0>(today) << " " << yy << "-" << month << "-" << day;
    }
    gl_reset_time(nullptr);
    const int this_year = int{year_month_day(floor<std::chrono::days>(system_clock::now())).year()};
    EXPECT_EQ(gl_getcenturyloc(nullptr, 1, 1, 0, 'R', 0), this_year / 100);
}

TEST(Century, ArgumentsAreTestedInTheirOrder) {
    const struct {
        int month, day, yy;
        char letter;
        int32_t error;
    } rows[] = {
        {0, 0, 100, 'x', GLS_ERR_MONTH},  {13, 1, 1, 'R', GLS_ERR_MONTH},
        {1, 0, 100, 'x', GLS_ERR_YEAR},   {1, 1, -1, 'R', GLS_ERR_YEAR},
        {1, 0, 0, 'x', GLS_ERR_DAY},      {2, 32, 0, 'R', GLS_ERR_DAY},
        {1, 1, 0, 'r', GLS_ERR_ARGUMENT}, {1, 1, 0, 0, GLS_ERR_ARGUMENT},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(gl_getcenturyloc(nullptr, row.month, row.day, row.yy, row.letter, 0), -1);
        EXPECT_EQ(temperr, row.error) << row.month << " " << row.day << " " << row.yy;
    }
}
