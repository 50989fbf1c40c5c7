#include <kestrion/date.h>

#include <kestrion/error_numbers.h>

#include <chrono>
#include <gtest/gtest.h>

namespace {

using namespace std::chrono;

constexpr sys_days day_zero = 1899y / December / 31;

TEST(Date, EveryDayAgreesWithTheCalendarBothWays) {
    EXPECT_EQ((day_zero + days{date_first}), sys_days{1y / January / 1});
    EXPECT_EQ((day_zero + days{date_last}), sys_days{9999y / December / 31});
    for (int32_t date = date_first; date <= date_last; ++date) {
        const year_month_day civil{day_zero + days{date}};
        const int16_t wanted[] = {static_cast<int16_t>(static_cast<unsigned>(civil.month())),
                                  static_cast<int16_t>(static_cast<unsigned>(civil.day())),
                                  static_cast<int16_t>(static_cast<int>(civil.year()))};
        int16_t mdy[3];
        int32_t back;
        ASSERT_EQ(rjulmdy(date, mdy), 0) << date;
        ASSERT_TRUE(mdy[0] == wanted[0] && mdy[1] == wanted[1] && mdy[2] == wanted[2]) << date;
        ASSERT_EQ(rmdyjul(mdy, &back), 0) << date;
        ASSERT_EQ(back, date);
    }
    for (int y = 1; y <= 9999; ++y)
        ASSERT_EQ(rleapyear(y) != 0, year{y}.is_leap()) << y;
}

TEST(Date, RefusesWhatTheCalendarHasNot) {
    const struct {
        int16_t mdy[3];
        int wanted;
    } rows[] = {
        {{1, 1, 0}, err_date_year},     {{1, 1, 10000}, err_date_year},
        {{13, 32, -1}, err_date_year}, // the year is looked at first, then the month
        {{0, 1, 2024}, err_date_month}, {{13, 40, 2024}, err_date_month},
        {{2, 30, 2024}, err_date_day},  {{2, 29, 2023}, err_date_day},
        {{2, 29, 1900}, err_date_day},  {{4, 31, 2024}, err_date_day},
        {{1, 0, 2024}, err_date_day},   {{1, -1, 2024}, err_date_day},
        {{1, mdy_null, 2024}, 0},
    };
    for (const auto &row : rows) {
        int32_t date = 1;
        EXPECT_EQ(rmdyjul(row.mdy, &date), row.wanted) << row.mdy[0] << ' ' << row.mdy[2];
        EXPECT_EQ(date, date_null);
    }
    for (int32_t date : {INT32_MIN + 1, date_first - 1, date_last + 1, INT32_MAX, +date_null}) {
        int16_t mdy[3] = {1, 1, 1};
        EXPECT_EQ(rjulmdy(date, mdy), date == date_null ? 0 : err_date_range) << date;
        EXPECT_EQ(mdy[2], mdy_null);
    }
}

} // namespace
