// Times as text: what no C library writes, refusals, and data that no compiler would make.

#include "gls/time/time_locale.h"
#include <kestrion/ext_funcs.h>

#include <gtest/gtest.h>
#include <sstream>
#include <stdint.h>
#include <string.h>
#include <string>
#include <vector>

namespace {

gl_alt_tm leap_day() {
    gl_alt_tm time = moment_of(2024, 2, 29, 13 * 3600 + 5 * 60 + 9).engine;
    time.fraction = 123456;
    return time;
}

// A locale whose formats a test may replace; the record's own come back before it goes.
struct with_format {
    with_format(gl_wchar *&wide, char *&text, const char *format)
        : wide_(wide), text_(text), own_wide_(wide), own_text_(text), copy_(format) {
        for (const char *c = format; *c != 0; ++c)
            wide_copy_.push_back(static_cast<unsigned char>(*c));
        wide_copy_.push_back(0);
        wide = wide_copy_.data();
        text = copy_.data();
    }
    ~with_format() {
        wide_ = own_wide_;
        text_ = own_text_;
    }

private:
    gl_wchar *&wide_;
    char *&text_;
    gl_wchar *const own_wide_;
    char *const own_text_;
    std::string copy_;
    std::vector<gl_wchar> wide_copy_;
};

} // namespace

TEST(TimeFormat, WhatTheLibraryDoesNotWrite) {
    const time_locale english("en_us/e01c.lco"), thai("th_th/e01c.lco"), taiwan("zh_tw/e01c.lco"),
        japanese("ja_jp/e01c.lco"), persian("fa_ir/e01c.lco");
    const struct {
        const time_locale &locale;
        const char *format, *text;
    } rows[] = {
        {english, "%F|%F0|%F1|%F5|%F6", "123||1|12345|1236"},
        {english, "%iF|%iF2|%iY|%iy", "123|12|2024|24"},
        {english, "%g|%C|%2.3C", "20|20|020"},
        {english, "%3d|%-4d|%.3d|%e|%+d|%'Y|%05H", " 29|29  |029|29|+29|2,024|00013"},
        {english, "%Ed|%Od|%EC%02.2Ey|%EY", "29|29|2024|2024"},
        {english, "%9B|%-9.1D|%09R", "February|02/29/24|13:05"},
        {thai, "%EC %Ey|%EY|%x|%02.5Ey", "พ.ศ. 2567|พ.ศ. 2567|29/02/2567|02567"},
        {taiwan, "%EY|%Eg|%EX", "民國113年|民國|13時05分09秒"},
        {japanese, "%Ex", "令和06年02月29日"},
        {japanese, "%OC%Oy %Om %Od", "二十二十四 二 二十九"},
        {japanese, "%OD %5OH|%Oj", "二/二十九/二十四 十三|六十"},
        {persian, "%OS|%Oj", "۰۹|۶۰"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(row.locale.text(row.format, leap_day()), row.text) << row.format;
    gl_alt_tm may_day = moment_of(2019, 5, 1).engine;
    EXPECT_EQ(japanese.text("%Oj|%6Oj|%.4Oj|%Ex", may_day),
              "一二一|   一二一|〇一二一|令和元年05月01日");
    EXPECT_EQ(english.text("%3e|%-3e|%03e|", may_day), "  1|1  |001|");
}

TEST(TimeFormat, FieldsOutOfRangeHaveTheirErrors) {
    const time_locale thai("th_th/e01d.lco");
    const struct {
        const char *formats; // separated by blanks
        int32_t error;
        void (*spoil)(gl_alt_tm &);
    } rows[] = {
        {"%F %iF", 23, [](gl_alt_tm &t) { t.fraction = 1000000; }},
        {"%F %iF", 23, [](gl_alt_tm &t) { t.fraction = -1; }},
        {"%S %T %OT", 24, [](gl_alt_tm &t) { t.second = 62; }},
        {"%M %R %T", 25, [](gl_alt_tm &t) { t.minute = 60; }},
        {"%H %I %p %R %r", 26, [](gl_alt_tm &t) { t.hour = 24; }},
        {"%H %I %p", 26, [](gl_alt_tm &t) { t.hour = INT32_MIN; }},
        {"%d %e %D %EC %EY", 27, [](gl_alt_tm &t) { t.day = 0; }},
        {"%d %Ey %Od", 27, [](gl_alt_tm &t) { t.day = 100; }},
        {"%A %a %u %w", 28, [](gl_alt_tm &t) { t.weekday = 7; }},
        {"%A %Ou", 28, [](gl_alt_tm &t) { t.weekday = -1; }},
        {"%j %Oj", 29, [](gl_alt_tm &t) { t.day_of_year = 366; }},
        {"%B %b %h %m %D %Eg", 30, [](gl_alt_tm &t) { t.month = 12; }},
        {"%B %b %m", 30, [](gl_alt_tm &t) { t.month = INT32_MAX; }},
        {"%C %g %D %Y %iY %Ey", 31, [](gl_alt_tm &t) { t.year = 10000 - 1900; }},
        {"%C %g %D %iY %EY", 31, [](gl_alt_tm &t) { t.year = -1901; }},
        {"%Y", 41, [](gl_alt_tm &t) { t.year = -1901; }},
        {"%Y", 41, [](gl_alt_tm &t) { t.year = INT32_MIN; }},
        // The year comes first, then the month, then the day.
        {"%EC", 31, [](gl_alt_tm &t) { t.year = 9999, t.month = 12, t.day = 0; }},
        {"%EC %D", 30, [](gl_alt_tm &t) { t.month = 12, t.day = 0; }},
    };
    for (const auto &row : rows) {
        gl_alt_tm time = leap_day();
        row.spoil(time);
        std::istringstream formats(row.formats);
        for (std::string format; formats >> format;)
            EXPECT_EQ(thai.text(format, time), "error " + std::to_string(row.error)) << format;
    }
    gl_alt_tm time = leap_day();
    time.second = 61;
    time.day = 99;
    EXPECT_EQ(thai.text("%S %d", time), "61 99");
    time.year = INT32_MIN;
    EXPECT_EQ(thai.text("%y %iy", time), "52 52") << "two digits of any year";
}

TEST(TimeFormat, BadFormatsHaveTheirErrors) {
    const time_locale english("en_us/e01c.lco"), japanese("ja_jp/e006.lco");
    const struct {
        const time_locale &locale;
        const char *format;
        int32_t error;
    } rows[] = {
        {english, "%", 15},
        {english, "abc%5", 15},
        {english, "%E", 15},
        {english, "%O", 15},
        {english, "%i", 15},
        {english, "%-", 15},
        {english, "%s", 22},
        {english, "%G", 22},
        {english, "%id", 22},
        {english, "%EOd", 22},
        {english, "%5-d", 22},
        {english, "%$", 22},
        {english, "%\xc3\xa4", 22},
        {english, "%*d", 22},
        {english, "%.%", 45},
        {english, "%.-d", 45},
        {english, "\xff", 1},
        {english, "%\xff", 1},
        {english, "a\xc3", 1},
        {japanese, "%Ed", 22},
        {japanese, "%EB", 22},
        {japanese, "%OY", 22},
        {japanese, "%OB", 22},
        {japanese, "%Op", 22},
        {japanese, "%Oi", 22},
        {english, "%OY", 0},
        {english, "%EB", 0},
        {english, "%2147483648d", 14},
        {english, "%.99999999999999999999d", 14},
    };
    for (const auto &row : rows) {
        const std::string text = row.locale.text(row.format, leap_day());
        EXPECT_EQ(text.rfind("error ", 0) == 0 ? atoi(text.c_str() + 6) : 0, row.error)
            << row.format << " " << text;
        const int32_t room = gl_mbsfmtexpand(row.locale.lc, row.format, 1);
        EXPECT_EQ(room < 0 ? row.locale.lc->err : 0, row.error) << row.format;
    }
    // More modifiers than anyone needs.
    EXPECT_EQ(english.text("%" + std::string(60, '0') + "d", leap_day()), "29");
    EXPECT_EQ(english.text("%" + std::string(61, '0') + "d", leap_day()), "error 22");
}

TEST(TimeFormat, ArgumentsAreTested) {
    const time_locale english("en_us/e01c.lco");
    const gl_alt_tm time = leap_day();
    char text[4] = "xyz";
    EXPECT_EQ(gl_mbsftime(english.lc, text, 4, "%Y", &time), 0);
    EXPECT_EQ(english.lc->err, GLS_ERR_NO_ROOM);
    EXPECT_STREQ(text, "") << "a failed call leaves an empty text";
    for (const int32_t size : {0, -1, INT32_MIN}) {
        text[0] = 'x';
        EXPECT_EQ(gl_mbsftime(english.lc, text, size, "", &time), 0);
        EXPECT_EQ(english.lc->err, GLS_ERR_NO_ROOM);
        EXPECT_EQ(text[0], 'x');
    }
    EXPECT_EQ(gl_mbsftime(english.lc, text, 4, nullptr, &time), 0);
    EXPECT_EQ(english.lc->err, GLS_ERR_NULL_ARGUMENT);
    EXPECT_EQ(gl_mbsftime(english.lc, nullptr, 4, "%d", &time), 0);
    EXPECT_EQ(gl_mbsftime1(english.lc, text, 4, "%d", nullptr), 0);
    EXPECT_EQ(gl_mbsfmtexpand(english.lc, "%d", 0), -1);
    EXPECT_EQ(english.lc->err, GLS_ERR_ARGUMENT);
    EXPECT_EQ(gl_mbsfmtexpand(english.lc, nullptr, 1), -1);
    EXPECT_EQ(english.lc->err, GLS_ERR_NULL_ARGUMENT);
    char *formats[3];
    ASSERT_EQ(gl_get_ltime_fmts(english.lc, formats), 0);
    EXPECT_STREQ(formats[0], "%m/%d/%Y");
    EXPECT_STREQ(formats[1], "%r");
    EXPECT_STREQ(formats[2], "%a %d %b %Y %r");
}

// Programs format before a locale is loaded: then there are numbers and no names.
TEST(TimeFormat, ANullLocaleHasNumbers) {
    const gl_alt_tm time = leap_day();
    char text[40];
    EXPECT_EQ(gl_mbsftime(nullptr, text, 40, "%iY-%m-%d %H:%M:%S.%F5 %Ey", &time), 28);
    EXPECT_STREQ(text, "2024-02-29 13:05:09.12345 24");
    gl_alt_tm scanned = {};
    EXPECT_NE(gl_mbsptime(nullptr, text, "%iY-%m-%d %H:%M:%S.%F5", &scanned), nullptr);
    EXPECT_EQ(scanned.year, 124);
    EXPECT_EQ(scanned.fraction, 123450);
    EXPECT_EQ(gl_mbsftime(nullptr, text, 40, "%B", &time), 0);
    EXPECT_EQ(temperr, GLS_ERR_MONTH);
}

TEST(TimeFormat, FormatsThatNameThemselvesEnd) {
    const time_locale japanese("ja_jp/e01c.lco");
    time_rec &data = japanese.lc->time_cat;
    gl_alt_tm scanned = {};
    {
        const with_format self(data.wide_d_t_fmt, data.d_t_fmt, "%c");
        EXPECT_EQ(japanese.text("%c", leap_day()), "error 22");
        EXPECT_EQ(gl_mbsfmtexpand(japanese.lc, "%c", 1), -1);
        EXPECT_EQ(japanese.scan("x", "%c", scanned), GLS_ERR_FORMAT);
    }
    {
        const with_format round(data.wide_d_t_fmt, data.d_t_fmt, "%x %X");
        const with_format about(data.wide_t_fmt, data.t_fmt, "%Ec");
        const with_format again(data.wide_era_d_t_fmt, data.era_d_t_fmt, "%c");
        EXPECT_EQ(japanese.text("%Ec", leap_day()), "error 22");
    }
    {
        const with_format own(data.eras[0].wide_format, data.eras[0].format, "%EY");
        EXPECT_EQ(japanese.text("%EY", leap_day()), "error 22");
        EXPECT_EQ(gl_mbsfmtexpand(japanese.lc, "%EY", 1), -1);
        EXPECT_EQ(japanese.scan("x", "%EY", scanned), GLS_ERR_FORMAT);
    }
    // Without a circle, but a thousand times as many formats at each step.
    std::string fan_out[4];
    for (int i = 0; i < 1000; ++i) {
        const char *steps[] = {"%x", "%X", "%r", "%Ec"};
        for (int step = 0; step < 4; ++step)
            fan_out[step] += steps[step];
    }
    const with_format a(data.wide_d_t_fmt, data.d_t_fmt, fan_out[0].c_str());
    const with_format b(data.wide_d_fmt, data.d_fmt, fan_out[1].c_str());
    const with_format c(data.wide_t_fmt, data.t_fmt, fan_out[2].c_str());
    const with_format d(data.wide_t_fmt_ampm, data.t_fmt_ampm, fan_out[3].c_str());
    const with_format e(data.wide_era_d_t_fmt, data.era_d_t_fmt, "");
    EXPECT_EQ(japanese.text("%c", leap_day()), "error 22");
    EXPECT_EQ(japanese.scan("", "%c", scanned), GLS_ERR_FORMAT);
}
