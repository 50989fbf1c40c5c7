// Dates of the Hebrew and the Islamic calendar, day by day beside ICU's calendars.

#include "gls/time/moments.h"
#include <kestrion/calendars.h>
#include <kestrion/ext_funcs.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <stdint.h>
#include <string.h>
#include <unicode/ucal.h>

namespace {

constexpr int64_t day_1600 = -135140, day_2401 = 157419; // from 1 January 1970
constexpr double day_in_milliseconds = 86400000.0;

gl_tm record_of(const moment &m) {
    gl_tm made;
    alt_tm_to_tm(&m.engine, &made);
    return made;
}

gl_tm record_of(int year, int month, int day) {
    return {.day = day, .month = month, .month_name = month, .year = year - 1900};
}

bool operator==(const gl_tm &a, const gl_tm &b) { return memcmp(&a, &b, sizeof a) == 0; }

// A calendar of ICU, set to days.
class icu_calendar {
public:
    explicit icu_calendar(const char *locale) {
        UErrorCode status = U_ZERO_ERROR;
        const UChar utc[] = {'U', 'T', 'C', 0};
        calendar_ = ucal_open(utc, -1, locale, UCAL_TRADITIONAL, &status);
        EXPECT_TRUE(U_SUCCESS(status));
    }
    ~icu_calendar() { ucal_close(calendar_); }
    icu_calendar(const icu_calendar &) = delete;
    icu_calendar &operator=(const icu_calendar &) = delete;

    void set(int64_t day) {
        UErrorCode status = U_ZERO_ERROR;
        ucal_setMillis(calendar_, static_cast<double>(day) * day_in_milliseconds, &status);
    }
    int32_t get(UCalendarDateFields field) const {
        UErrorCode status = U_ZERO_ERROR;
        return ucal_get(calendar_, field, &status);
    }

private:
    UCalendar *calendar_;
};

// ICU puts four Hebrew new years a day late. In each the new moon of Tishri falls on a Sunday after
// 15 hours 589 parts, after a leap year; Sunday is put off to Monday, and ICU then applies the rule
// for a new moon on a Monday to the day that was put off. The published rule looks at the moon alone.
// Heshvan of the year before then has a day more and that of the late year one less, so that all
// dates from Kislev to the next Heshvan differ: 385 days.
constexpr int32_t icu_late_years[] = {5462, 5560, 5807, 6054};

bool icu_new_year_is_late(int32_t year) {
    return std::count(std::begin(icu_late_years), std::end(icu_late_years), year) != 0;
}

bool icu_is_late(const gl_tm &hebrew) {
    const int32_t year = hebrew.year + 1900;
    return (icu_new_year_is_late(year + 1) && hebrew.month_name >= 2) ||
           (icu_new_year_is_late(year) && hebrew.day_of_year < 60);
}

} // namespace

TEST(Calendars, EveryHebrewDateIsIcusBothWays) {
    icu_calendar icu("he_IL@calendar=hebrew");
    int differences = 0;
    for (int64_t day = day_1600; day < day_2401; ++day) {
        const gl_tm gregorian = record_of(moment_on_day(day, 0));
        gl_tm hebrew, back;
        ASSERT_EQ(gl_cal_gregorian_to_hebrew(&gregorian, &hebrew), 0);
        ASSERT_EQ(gl_cal_hebrew_to_gregorian(&hebrew, &back), 0);
        ASSERT_TRUE(back == gregorian) << day;
        ASSERT_EQ(hebrew.weekday, gregorian.weekday);
        icu.set(day);
        const bool same = hebrew.year + 1900 == icu.get(UCAL_YEAR) &&
                          hebrew.month_name == icu.get(UCAL_MONTH) &&
                          hebrew.day == icu.get(UCAL_DATE);
        differences += !same;
        ASSERT_NE(same, icu_is_late(hebrew)) << day;
        const bool late_year = icu_new_year_is_late(hebrew.year + 1900);
        if (same) {
            ASSERT_EQ(hebrew.day_of_year - late_year, icu.get(UCAL_DAY_OF_YEAR) - 1) << day;
        }
    }
    EXPECT_EQ(differences, 4 * 385);
}

TEST(Calendars, EveryIslamicDateIsIcusBothWays) {
    icu_calendar icu("ar_SA@calendar=islamic-tbla");
    for (int64_t day = day_1600; day < day_2401; ++day) {
        const gl_tm gregorian = record_of(moment_on_day(day, 0));
        gl_tm islamic, back;
        ASSERT_EQ(gl_cal_gregorian_to_islamic(&gregorian, &islamic), 0);
        ASSERT_EQ(gl_cal_islamic_to_gregorian(&islamic, &back), 0);
        ASSERT_TRUE(back == gregorian) << day;
        icu.set(day);
        ASSERT_EQ(islamic.year + 1900, icu.get(UCAL_YEAR)) << day;
        ASSERT_EQ(islamic.month, icu.get(UCAL_MONTH)) << day;
        ASSERT_EQ(islamic.day, icu.get(UCAL_DATE)) << day;
        ASSERT_EQ(islamic.day_of_year, icu.get(UCAL_DAY_OF_YEAR) - 1) << day;
    }
}

TEST(Calendars, NewYearsAreOnTheirPublishedDays) {
    const struct {
        int32_t (*convert)(const gl_tm *, gl_tm *);
        int year, gregorian_year, month, day;
    } rows[] = {
        {gl_cal_hebrew_to_gregorian, 5708, 1947, 9, 15},
        {gl_cal_hebrew_to_gregorian, 5784, 2023, 9, 16},
        {gl_cal_hebrew_to_gregorian, 5785, 2024, 10, 3},
        {gl_cal_hebrew_to_gregorian, 5786, 2025, 9, 23},
        {gl_cal_islamic_to_gregorian, 1, 622, 7, 18},
        {gl_cal_islamic_to_gregorian, 1445, 2023, 7, 18},
        // Where ICU is a day late.
        {gl_cal_hebrew_to_gregorian, 5462, 1701, 10, 3},
        {gl_cal_hebrew_to_gregorian, 5560, 1799, 9, 30},
        {gl_cal_hebrew_to_gregorian, 5807, 2046, 10, 1},
        {gl_cal_hebrew_to_gregorian, 6054, 2293, 10, 2},
    };
    for (const auto &row : rows) {
        const gl_tm new_year = record_of(row.year, 0, 1);
        gl_tm found;
        ASSERT_EQ(row.convert(&new_year, &found), 0) << row.year;
        EXPECT_EQ(found.year + 1900, row.gregorian_year) << row.year;
        EXPECT_EQ(found.month + 1, row.month) << row.year;
        EXPECT_EQ(found.day, row.day) << row.year;
    }
}

TEST(Calendars, DatesOutsideACalendarAreRefused) {
    const struct {
        int32_t (*convert)(const gl_tm *, gl_tm *);
        int year, month, day, error; // month from 0; 0: accepted
    } rows[] = {
        // The limits are bare days.
        {gl_cal_gregorian_to_hebrew, 1, 0, 1, 0},
        {gl_cal_gregorian_to_hebrew, 0, 11, 31, GLS_ERR_YEAR},
        {gl_cal_gregorian_to_hebrew, 10000, 0, 24, 0},
        {gl_cal_gregorian_to_hebrew, 10000, 0, 25, GLS_ERR_YEAR},
        {gl_cal_hebrew_to_gregorian, 13760, 2, 23, 0},
        {gl_cal_hebrew_to_gregorian, 13760, 2, 24, GLS_ERR_YEAR},
        {gl_cal_hebrew_to_gregorian, 3760, 12, 29, GLS_ERR_YEAR},
        {gl_cal_hebrew_to_gregorian, 3761, 0, 1, GLS_ERR_YEAR}, // autumn of the year 0
        {gl_cal_hebrew_to_gregorian, 3761, 11, 29, 0},
        {gl_cal_gregorian_to_islamic, 622, 6, 18, 0},
        {gl_cal_gregorian_to_islamic, 622, 6, 17, GLS_ERR_YEAR},
        {gl_cal_gregorian_to_islamic, 10323, 8, 21, 0},
        {gl_cal_gregorian_to_islamic, 10323, 8, 22, GLS_ERR_YEAR},
        {gl_cal_islamic_to_gregorian, 9999, 10, 30, 0},
        {gl_cal_islamic_to_gregorian, 9999, 11, 1, GLS_ERR_YEAR},
        {gl_cal_islamic_to_gregorian, 0, 11, 1, GLS_ERR_YEAR},
        // Months and days that a year does not have.
        {gl_cal_gregorian_to_hebrew, 2023, 1, 29, GLS_ERR_DAY},
        {gl_cal_gregorian_to_hebrew, 2024, 1, 29, 0},
        {gl_cal_gregorian_to_hebrew, 2024, 12, 1, GLS_ERR_MONTH},
        {gl_cal_gregorian_to_islamic, 2024, -1, 1, GLS_ERR_MONTH},
        {gl_cal_gregorian_to_islamic, 2024, 0, 0, GLS_ERR_DAY},
        {gl_cal_hebrew_to_gregorian, 5784, 12, 29, 0},            // 13 months
        {gl_cal_hebrew_to_gregorian, 5785, 12, 1, GLS_ERR_MONTH}, // 12 months
        {gl_cal_hebrew_to_gregorian, 5785, 1, 30, 0},             // 355 days: long Heshvan
        {gl_cal_hebrew_to_gregorian, 5786, 1, 30, GLS_ERR_DAY},   // 354 days
        {gl_cal_hebrew_to_gregorian, 5784, 2, 30, GLS_ERR_DAY},   // 383 days: short Kislev
        {gl_cal_islamic_to_gregorian, 1445, 11, 30, 0},           // the 5th of its cycle: leap
        {gl_cal_islamic_to_gregorian, 1446, 11, 30, GLS_ERR_DAY},
        // Fields that hold anything.
        {gl_cal_gregorian_to_hebrew, INT32_MAX, 0, 1, GLS_ERR_YEAR},
        {gl_cal_hebrew_to_gregorian, INT32_MAX, INT32_MIN, 1, GLS_ERR_YEAR},
        {gl_cal_islamic_to_gregorian, 1445, INT32_MAX, INT32_MAX, GLS_ERR_MONTH},
        {gl_cal_islamic_to_gregorian, 1445, 0, INT32_MIN, GLS_ERR_DAY},
    };
    for (const auto &row : rows) {
        gl_tm date = record_of(row.year, row.month, row.day);
        const gl_tm before = date;
        temperr = 0;
        EXPECT_EQ(row.convert(&date, &date), row.error == 0 ? 0 : -1)
            << row.year << " " << row.month << " " << row.day;
        EXPECT_EQ(temperr, row.error) << row.year << " " << row.month << " " << row.day;
        EXPECT_TRUE(row.error == 0 || date == before) << row.year;
    }
    EXPECT_EQ(gl_cal_gregorian_to_hebrew(nullptr, nullptr), -1);
    EXPECT_EQ(temperr, GLS_ERR_NULL_ARGUMENT);
}

TEST(Calendars, WhatIsNotADateIsCopied) {
    gl_tm time = record_of(2024, 1, 29);
    time.fraction = 123456;
    time.hour = 13;
    time.daylight = 1;
    time.utc_offset = 3600;
    time.zone = -7;
    ASSERT_EQ(gl_cal_gregorian_to_hebrew(&time, &time), 0);
    const gl_tm wanted = {.fraction = 123456,
                          .hour = 13,
                          .day = 20,
                          .month = 5,
                          .month_name = 5,
                          .year = 3884,
                          .weekday = 4,
                          .day_of_year = 166,
                          .daylight = 1,
                          .utc_offset = 3600,
                          .zone = -7};
    EXPECT_TRUE(time == wanted);
}
