// Eras: lookup, years and the way back, at the days where they change.

#include "gls/time/time_locale.h"
#include <kestrion/era_lookup.h>

#include <gtest/gtest.h>
#include <string>

namespace {

gl_tm date(int year, int month, int day) {
    return {.day = day, .month = month - 1, .month_name = month - 1, .year = year - 1900};
}

} // namespace

TEST(Eras, EachDayHasItsEraAndYear) {
    const time_locale japanese("ja_jp/e01c.lco"), thai("th_th/e01c.lco"), taiwan("zh_tw/e01c.lco");
    const struct {
        const time_locale &locale;
        int year, month, day, era, number;
    } rows[] = {
        {japanese, 2024, 2, 29, 0, 6},
        {japanese, 2020, 1, 1, 0, 2},
        {japanese, 2019, 12, 31, 1, 1},
        {japanese, 2019, 5, 1, 1, 1},
        {japanese, 2019, 4, 30, 2, 31},
        {japanese, 1989, 1, 7, 4, 64},
        {japanese, 1912, 7, 29, 8, 45},
        {japanese, 1, 1, 1, 9, 1},
        {japanese, 0, 12, 31, 10, 1}, // the year before 1 is 0
        {japanese, 0, 1, 1, 10, 1},
        {japanese, -1, 12, 31, 10, 2},
        {thai, 2024, 2, 29, 0, 2567},
        {thai, -542, 1, 1, 0, 1},
        {thai, -543, 12, 31, -1, 0},
        {taiwan, 1912, 1, 1, 1, 1},
        // An era that runs backward counts whole years of the calendar.
        {taiwan, 1872, 1, 1, 2, 40},
        {taiwan, 1872, 6, 15, 2, 40},
        {taiwan, 1872, 12, 31, 2, 40},
        {taiwan, 1911, 1, 1, 2, 1},
        {taiwan, 1911, 6, 15, 2, 1},
        {taiwan, 1911, 12, 31, 2, 1},
    };
    for (const auto &row : rows) {
        const gl_tm day = date(row.year, row.month, row.day);
        ASSERT_EQ(current_era(row.locale.lc, &day), row.era) << row.year;
        if (row.era >= 0) {
            EXPECT_EQ(era_offset(&row.locale.lc->time_cat.eras[row.era], &day), row.number)
                << row.year << "-" << row.month << "-" << row.day;
        }
    }
    EXPECT_EQ(gl_get_era_count(japanese.lc), 11);
    EXPECT_EQ(gl_get_era_count(nullptr), 0);
}

TEST(Eras, BoundsGoByTheDirection) {
    const era_rec forward = {.direction = 1,
                             .offset = 1,
                             .start_day = 8,
                             .start_month = 1,
                             .start_year = 1989,
                             .end_day = 30,
                             .end_month = 4,
                             .end_year = 2019};
    era_rec backward = forward;
    backward.direction = -1; // from 1989 back to 2019: no day
    era_rec open = forward;
    open.open_end = 1;
    era_rec open_backward = {.direction = -1,
                             .offset = 1,
                             .start_day = 31,
                             .start_month = 12,
                             .start_year = 1911,
                             .open_end = -1};
    const struct {
        const era_rec &era;
        int32_t day, month;
        int64_t year;
        int32_t within;
    } rows[] = {
        {forward, 8, 1, 1989, 1},
        {forward, 7, 1, 1989, 0},
        {forward, 31, 12, 1988, 0},
        {forward, 30, 4, 2019, 1},
        {forward, 1, 5, 2019, 0},
        {forward, 1, 1, INT64_MAX, 0},
        {backward, 8, 1, 1989, 0},
        {backward, 1, 1, 2000, 0},
        {open, 1, 1, INT64_MAX, 1},
        {open, 1, 1, INT64_MIN, 0},
        {open_backward, 31, 12, 1911, 1},
        {open_backward, 1, 1, 1912, 0},
        {open_backward, 1, 1, INT64_MIN, 1},
    };
    for (const auto &row : rows)
        EXPECT_EQ(check_bounds(&row.era, row.day, row.month, row.year), row.within)
            << row.year << " " << row.month;
    const gl_tm last = {.day = 1, .month = INT32_MAX, .year = INT32_MAX};
    EXPECT_EQ(era_offset(&open, &last), INT32_MAX - 1988 + 1900 - 1 + 1);
}

TEST(Eras, EveryDateOfTwoCenturiesIsReadBack) {
    for (const char *object : {"ja_jp/e01c.lco", "ja_jp/e006.lco", "zh_tw/e01c.lco"}) {
        const time_locale locale(object);
        for (int64_t day = -62091; day < 21915; ++day) { // 1800 to 2029
            const gl_alt_tm time = moment_on_day(day, 0).engine;
            for (const char *format : {"%EY%m%d", "%EC%Ey/%m/%d"}) {
                gl_alt_tm scanned = {};
                const std::string text = locale.text(format, time);
                ASSERT_EQ(locale.scan(text, format, scanned), 0) << text;
                ASSERT_EQ(scanned.year, time.year) << text;
                ASSERT_EQ(scanned.month, time.month) << text;
                ASSERT_EQ(scanned.day, time.day) << text;
            }
        }
    }
}
