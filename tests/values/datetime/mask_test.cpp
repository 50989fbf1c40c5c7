// Texts under masks.

#include <kestrion/format_mask.h>

#include "values/datetime/plain_values.h"
#include <kestrion/date_text.h>
#include <kestrion/datetime_format.h>
#include <kestrion/datetime_now.h>
#include <kestrion/error_numbers.h>
#include <kestrion/interval_mask.h>
#include <kestrion/startup.h>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

namespace {

using plain::words;

class Masks : public testing::Test {
protected:
    void SetUp() override {
        setenv("KESTRIONDIR", INSTALLATION, 1);
        ASSERT_EQ(chkglsinit(), 0);
        dtime_value now = {.qualifier = qualifier_year_to_fraction5, .value = {}};
        ASSERT_EQ(dtcvasc("2024-03-15 10:20:30.12345", &now), 0);
        rdtsetcurr(&now.value);
    }
};

TEST_F(Masks, FormatsAreCutToTheQualifier) {
    const char *usual = "%iY-%m-%d %H:%M:%S.%F5";
    const struct {
        int word;
        const char *format;
        const char *wanted; // null: refused
    } rows[] = {
        {qualifier_year_to_day, usual, "%iY-%m-%d"},
        {1128, usual, "%H:%M"},
        {973, usual, "%F3"},
        {4879, usual, usual},
        {4365, "%S.%F %M", "%S.%F %M"},
        {0x04ab, "%S.%F", "%S.%F1"}, // no more digits than the value has
        {4879, "%S.%F1", "%S.%F1"},
        {0x0424, "<%d/%m at %iY>", "%d/%m"},
        {0x0602, "%d-%m (%iY)", "%m (%iY"},
        {1128, "%T", ""}, // it would need seconds
        {1128, "%R%%%n%Od", "%R"},
        {qualifier_year_to_second, "%c|%x|%A", "%c|%x|%A"},
        {0x0644, "%A %d", "%d"},
        {0x0848, "%d%%%H%t%M", "%d%%%H%t%M"},
        {qualifier_year_to_day, "%02.2Ey%EC", "%02.2Ey%EC"},
        {qualifier_year_to_day, "%d %", nullptr},
        {qualifier_year_to_day, "%d %Q", nullptr},
        {qualifier_year_to_day, "%i", nullptr},
    };
    for (const auto &row : rows) {
        char text[datetime_format_size];
        const int32_t length = qualtofmt(row.word, row.format, text, sizeof text);
        EXPECT_STREQ(text, row.wanted != nullptr ? row.wanted : "") << row.format;
        EXPECT_EQ(length, row.wanted != nullptr ? static_cast<int32_t>(strlen(text)) : -1);
        if (length > 0) {
            EXPECT_EQ(qualtofmt(row.word, row.format, text, length + 1), length);
            EXPECT_EQ(qualtofmt(row.word, row.format, text, length), -1);
        }
    }
    EXPECT_STREQ(getdatetimefmt(), usual);
}

// Beside the C library in its own locale, for every day that is different in some way.
TEST_F(Masks, DatetimesAreWrittenLikeStrftimeAndReadBack) {
    const struct {
        const char *ours;
        size_t (*library)(char *, const tm *);
        bool reads_back;
    } masks[] = {
        {"%d.%m.%iY %H:%M:%S",
         [](char *to, const tm *from) { return strftime(to, 100, "%d.%m.%Y %H:%M:%S", from); },
         true},
        {"%A, %d %B %iY %I:%M:%S %p",
         [](char *to, const tm *from) {
             return strftime(to, 100, "%A, %d %B %Y %I:%M:%S %p", from);
         },
         true},
        {"%j %u %w %e %R",
         [](char *to, const tm *from) { return strftime(to, 100, "%j %u %w %e %R", from); }, false},
    };
    std::mt19937_64 random(9);
    for (const auto &mask : masks) {
        for (int i = 0; i < 2000; ++i) {
            const words q{unit_year, unit_second, 4};
            const plain::fields value = plain::cut(plain::any_moment(random), q);
            tm library = {};
            library.tm_year = value.at[0] - 1900;
            library.tm_mon = value.at[1] - 1;
            library.tm_mday = value.at[2];
            library.tm_hour = value.at[3];
            library.tm_min = value.at[4];
            library.tm_sec = value.at[5];
            timegm(&library); // weekday and day of the year
            if (value.at[0] < 1000)
                continue; // the library writes "%Y" without zeros
            char wanted[100];
            char text[100];
            mask.library(wanted, &library);
            const dtime_value moment = plain::datetime(value, q);
            ASSERT_EQ(dttofmtasc(&moment, text, sizeof text, mask.ours), 0);
            ASSERT_STREQ(text, wanted);
            const auto length = static_cast<int32_t>(strlen(wanted));
            EXPECT_EQ(dttofmtasc(&moment, text, length + 1, mask.ours), 0);
            EXPECT_EQ(dttofmtasc(&moment, text, length, mask.ours), err_result_size);
            if (mask.reads_back) {
                dtime_value back = {.qualifier = moment.qualifier, .value = {}};
                ASSERT_EQ(dtcvfmtasc(wanted, mask.ours, &back), 0) << wanted;
                ASSERT_EQ(plain::text_of(back), value.text(q));
            }
        }
    }
}

TEST_F(Masks, DatetimesCompleteWhatTheMaskLacks) {
    const struct {
        int word;
        int code;
        const char *text;
        const char *mask;
        const char *wanted;
    } rows[] = {
        {qualifier_year_to_second, 0, "29 Feb", "%d %b", "2024-02-29 00:00:00"},
        {qualifier_year_to_second, 0, "17:05", "%H:%M", "2024-03-15 17:05:00"},
        {qualifier_year_to_second, 0, "1999", "%iY", "1999-01-01 00:00:00"},
        {qualifier_year_to_day, 0, "99-12-31", "%iy-%m-%d", "2099-12-31"},
        {qualifier_year_to_day, 0, "12/31/99", "%D", "2099-12-31"},
        {qualifier_year_to_day, 0, "31.12.1999 ", "%d.%m.%iY", "1999-12-31"},
        {qualifier_year_to_day, 0, "", "%d.%m.%iY", ""},
        {qualifier_year_to_day, err_dt_extra, "31.12.1999 x", "%d.%m.%iY", ""},
        {qualifier_year_to_day, err_dt_character, "31/12/1999", "%d.%m.%iY", ""},
        {qualifier_year_to_day, err_dt_field_range, "30.02.1999", "%d.%m.%iY", ""},
        {qualifier_year_to_day, err_dt_field_range, "31.13.1999", "%d.%m.%iY", ""},
        {qualifier_year_to_day, err_dt_qualifier, "31", "%d%", ""},
        {0x0844, err_dt_qualifier, "31", "%d", ""},
        {1128, 0, "12:34:56", "%T", "12:34"}, // what the value hasn't is cut
        {973, 0, "0.98765", "0.%F5", ".987"},
    };
    for (const auto &row : rows) {
        dtime_value value = {.qualifier = static_cast<int16_t>(row.word), .value = {}};
        EXPECT_EQ(dtcvfmtasc(row.text, row.mask, &value), row.code) << row.text << row.mask;
        EXPECT_EQ(plain::text_of(value), row.wanted) << row.text;
    }
    const dtime_value time = plain::datetime({{1, 1, 1, 9, 8, 0, 0}}, {unit_hour, unit_minute, 2});
    char text[100];
    EXPECT_EQ(dttofmtasc(&time, text, sizeof text, "%d.%m.%iY %H:%M:%S.%F5"), 0);
    EXPECT_STREQ(text, "15.03.2024 09:08:00.00000");
    EXPECT_EQ(dttofmtasc(&time, text, sizeof text, nullptr), 0);
    EXPECT_STREQ(text, "09:08");
    EXPECT_EQ(dttofmtasc(&time, text, sizeof text, "%Q"), err_dt_qualifier);
    EXPECT_EQ(dttofmtasc(&time, text, 0, "%H"), err_result_size);
}

TEST_F(Masks, IntervalsHaveTheirOwn) {
    const struct {
        int word;
        int code;
        const char *text;
        const char *mask;
        const char *written;
    } rows[] = {
        {0x094a, 0, "-5 01:02:03", "%d days %H:%M:%S", "-5 days 01:02:03"},
        {0x094a, 0, "100 01:02:03", "%%%d %H %M %S", "%100 01 02 03"},
        {0x0602, 0, "2-03", "%m months, %Y years", "03 months, 2 years"},
        {0x0602, 0, "-2-03", "%m months, %Y years", "-03 months, 2 years"},
        {973, 0, "-.25", "0.%F", "0.-250"},
        {0x04ab, 0, "7.5", "%S,%F", "7,5"},
        {0x14aa, 0, "12345678901234567890", "%S", "12345678901234567890"},
        {0x0344, 0, "0", "[%d]", "[0]"},
        {0x0344, err_dt_qualifier, "0", "[%H]", ""},
        {0x0344, err_dt_qualifier, "0", "%F", ""},
        {0x0344, err_dt_qualifier, "0", "%y", ""},
        {0x0344, err_dt_qualifier, "0", "%", ""},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row.text) + " under " + row.mask);
        intv_value value = {.qualifier = static_cast<int16_t>(row.word), .value = {}};
        ASSERT_EQ(incvasc(row.text, &value), 0);
        char text[100];
        EXPECT_EQ(intofmtasc(&value, text, sizeof text, row.mask), row.code);
        EXPECT_STREQ(text, row.written);
        intv_value back = {.qualifier = value.qualifier, .value = {}};
        if (row.code == 0) {
            EXPECT_EQ(incvfmtasc(text, row.mask, &back), 0);
            EXPECT_EQ(plain::text_of(back), plain::text_of(value));
            const auto length = static_cast<int32_t>(strlen(row.written));
            EXPECT_EQ(intofmtasc(&value, text, length + 1, row.mask), 0);
            EXPECT_EQ(intofmtasc(&value, text, length, row.mask), err_result_size);
        }
    }
    const struct {
        const char *text;
        int code;
    } refused[] = {{"1000 01", err_dt_first_field}, {"1 24", err_dt_field_range},
                   {"1-01", err_dt_character},      {"x 01", err_dt_character},
                   {"1 01x", err_dt_extra},         {"", 0}};
    for (const auto &row : refused) {
        intv_value value = {.qualifier = 1350, .value = {}};
        EXPECT_EQ(incvfmtasc(row.text, "%d %H", &value), row.code) << row.text;
        EXPECT_EQ(value.value.sign, dec_null_sign);
    }
}

TEST_F(Masks, DatesUnderMasks) {
    const struct {
        const char *mask;
        const char *text;
        int code;
        int32_t date;
    } rows[] = {
        {"mm/dd/yyyy", "02/29/2024", 0, 45350},
        {"yyyy/mm/dd", "2024 2-29", 0, 45350}, // any run of other characters
        {"yyyymmdd", "20240229", 0, 45350},
        {"yymmdd", "240229", 0, 45350},
        {"mmm. dd, yyyy", "Feb. 29, 2024", 0, 45350},
        {"dddd dd mmmm yyyy", "thursday 29 FEBRUARY 2024", 0, 45350},
        {"dd mmm", "29 feb", 0, 45350}, // of the present year
        {"yyyy", "2024", 0, 45291},     // its first day
        {"(mm/yy)", "(02/24)", 0, 45322},
        {"mm/dd/yy", "2/29/24 ", 0, 45350},
        {"mm/dd/yyyy", " ", 0, date_null},
        {"mm/dd/yyyy", "13/01/2024", err_date_month, date_null},
        {"mm/dd/yyyy", "02/30/2024", err_date_day, date_null},
        {"mm/dd/yyyy", "02/30/0000", err_date_year, date_null},
        {"mm/dd/yyyy", "02/29", err_date_text, date_null},
        {"mm/dd/yyyy", "02/29/2024x", err_date_text, date_null},
        {"mm/dd/yyyy", "0a/29/2024", err_date_text, date_null},
        {"yyyymmdd", "2024022", err_date_text, date_null},
        {"mmm dd", "foo 29", err_date_text, date_null},
        {"mm/dd/yy", "02/29/2024", err_date_text, date_null},
    };
    for (const auto &row : rows) {
        int32_t date = 1;
        EXPECT_EQ(rdefmtdate(&date, row.mask, row.text), row.code) << row.mask << ' ' << row.text;
        EXPECT_EQ(date, row.date) << row.mask << ' ' << row.text;
    }
}

} // namespace
