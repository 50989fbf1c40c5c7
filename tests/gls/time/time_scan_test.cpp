// Times from text: what is taken, what is refused, and what stays the caller's.

#include "gls/time/time_locale.h"
#include <kestrion/current_time.h>

#include <gtest/gtest.h>
#include <string>

TEST(TimeScan, TextsThatFit) {
    const time_locale english("en_us/e01c.lco"), japanese("ja_jp/e01c.lco"),
        taiwan("zh_tw/e01c.lco"), thai("th_th/e01c.lco");
    const struct {
        const time_locale &locale;
        const char *text, *format, *found; // as "%Y-%m-%d %H:%M:%S.%F5"
    } rows[] = {
        {english, "29 FEB 2024", "%d %b %Y", "2024-02-29 00:00:00.00000"},
        {english, "29february2024", "%d%b%Y", "2024-02-29 00:00:00.00000"},
        {english, "  5:7:9", "%H:%M:%S", "1999-11-22 05:07:09.00000"},
        {english, "12 am", "%I %p", "1999-11-22 00:00:00.00000"},
        {english, "PM 12", "%p %I", "1999-11-22 12:00:00.00000"},
        {english, "7 pm", "%H %p", "1999-11-22 07:00:00.00000"},
        {english, "68 1", "%y %m", "2068-01-22 00:00:00.00000"},
        {english, "69", "%y", "1969-11-22 00:00:00.00000"},
        {english, "18", "%C", "1899-11-22 00:00:00.00000"},
        {english, "1872", "%C%y", "1872-11-22 00:00:00.00000"},
        {english, "7218", "%iy%g", "1872-11-22 00:00:00.00000"},
        {english, "20240229", "%Y%m%d", "2024-02-29 00:00:00.00000"},
        {english, "1.5 2.25", "%H.%F1 %S.%F5", "1999-11-22 01:00:02.25000"},
        {english, " 2,024|0029|+1 ", "%'Y|%04d|%+-4H", "2024-11-29 01:00:00.00000"},
        {english, "\t\n100%", "%n100%%", "1999-11-22 00:00:00.00000"},
        {japanese, "平成31年4月30日", "%EY%m月%d日", "2019-04-30 00:00:00.00000"},
        {japanese, "大正元年12月31日", "%EY%m月%d日", "1912-12-31 00:00:00.00000"},
        {japanese, "令和元年", "%EY", "2019-11-22 00:00:00.00000"},
        {japanese, "平成 11", "%EC %Ey", "1999-11-22 00:00:00.00000"},
        {japanese, "明治", "%EC", "1873-11-22 00:00:00.00000"},
        {japanese, "平成", "%EC", "1999-11-22 00:00:00.00000"},
        {japanese, "二十四 二 29", "%Oy %Om %Od", "2024-02-29 00:00:00.00000"},
        {taiwan, "民前40年", "%EY", "1872-11-22 00:00:00.00000"},
        {thai, "2567", "%Ey", "2024-11-22 00:00:00.00000"},
    };
    for (const auto &row : rows) {
        gl_alt_tm time = moment_of(1999, 11, 22).engine;
        ASSERT_EQ(row.locale.scan(row.text, row.format, time), 0) << row.text;
        EXPECT_EQ(row.locale.text("%Y-%m-%d %H:%M:%S.%F5", time), row.found) << row.text;
    }
}

TEST(TimeScan, TextsThatDoNotFit) {
    const time_locale english("en_us/e01c.lco"), japanese("ja_jp/e01c.lco");
    const struct {
        const time_locale &locale;
        const char *text, *format;
        int32_t error;
    } rows[] = {
        {english, "", "%d", 22},           {english, "x", "%d", 22},
        {english, "-5", "%d", 22},         {english, "+5", "%d", 22},
        {english, "Fe", "%b", 22},         {english, "xm", "%p", 22},
        {english, "1-2", "%d/%m", 22},     {english, "5", "5%", 15},
        {english, "5", "%s", 22},          {english, "62", "%S", 24},
        {english, "60", "%M", 25},         {english, "24", "%H", 26},
        {english, "13", "%I", 26},         {english, "0", "%I", 26},
        {english, "32", "%d", 27},         {english, "00", "%e", 27},
        {english, "7", "%w", 28},          {english, "0", "%u", 28},
        {english, "367", "%j", 29},        {english, "13", "%m", 30},
        {english, "13/1/1", "%D", 30},     {english, "12345", "%5Y", 31},
        {english, "5", "%.%", 45},         {english, "\xff", "%d", 22},
        {english, "\xc3", "\xc3\xa4", 22}, {english, "\xe2\x82", "\xe2\x82\xac", 22},
        {english, "x", "\xff", 1},         {english, "1234567", "%07F5", 23},
        {japanese, "平成99年", "%EY", 9},  {japanese, "平成", "%EY", 22},
        {japanese, "x", "%Od", 22},        {japanese, "明治3", "%EC%Ey", 9},
        {japanese, "x", "%Ed", 22},
    };
    for (const auto &row : rows) {
        const gl_alt_tm before = moment_of(2024, 2, 29).engine;
        gl_alt_tm time = before;
        EXPECT_EQ(row.locale.scan(row.text, row.format, time), row.error)
            << row.text << " " << row.format;
        EXPECT_TRUE(same_time(time, before)) << "a failed scan changes nothing";
    }
    gl_alt_tm time = {};
    EXPECT_EQ(gl_mbsptime(english.lc, nullptr, "", &time), nullptr);
    EXPECT_EQ(english.lc->err, GLS_ERR_NULL_ARGUMENT);
    EXPECT_EQ(gl_mbsptime_internal(english.lc, "", "", nullptr), nullptr);
}

// A text without am and pm takes nothing and changes nothing.
TEST(TimeScan, HalvesOfTheDayWithoutNames) {
    const time_locale german("de_de/e01c.lco");
    gl_alt_tm time = {};
    EXPECT_EQ(german.scan("11", "%I%p", time), 0);
    EXPECT_EQ(time.hour, 11);
}

TEST(TimeScan, WhatIsNotNamedComesFromTheTimeThatWasSet) {
    const time_locale english("en_us/e01c.lco");
    const gl_tm set = {.hour = 7, .day = 3, .month = 4, .month_name = 4, .year = 95};
    gl_alt_tm time = moment_of(2024, 2, 29).engine;
    ASSERT_EQ(gl_set_current_time(english.lc, &set), 0);
    EXPECT_EQ(english.scan("30", "%M", time), 0);
    EXPECT_EQ(english.text("%Y-%m-%d %R", time), "1995-05-03 07:30");
    ASSERT_EQ(gl_reset_time(english.lc), 0);
    time = moment_of(2024, 2, 29).engine;
    EXPECT_EQ(english.scan("30", "%M", time), 0);
    EXPECT_EQ(english.text("%Y-%m-%d %R", time), "2024-02-29 00:30");
    EXPECT_EQ(gl_set_current_time(english.lc, nullptr), -1);
    const gl_tm no_date = {.day = 3, .month = 12, .year = 95};
    EXPECT_EQ(gl_set_current_time(english.lc, &no_date), -1);
    EXPECT_EQ(english.lc->err, GLS_ERR_MONTH);
}
