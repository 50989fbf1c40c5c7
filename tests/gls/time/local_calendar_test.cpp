// Locales whose calendar is not the Gregorian one, compiled by option: dates are written in it and
// read back from it.

#include "compilers/mklco/mklco.h"
#include "gls/time/time_locale.h"
#include "support/temp_dir.h"
#include <kestrion/calendars.h>
#include <kestrion/time_names.h>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>
#include <vector>

namespace {

constexpr char hebrew_source[] =
    "comment_char %\nescape_char /\nLC_CTYPE\ncopy \"he_IL\"\nEND LC_CTYPE\n"
    "LC_NUMERIC\ncopy \"he_IL\"\nEND LC_NUMERIC\nLC_MONETARY\ncopy \"he_IL\"\nEND LC_MONETARY\n"
    "LC_MESSAGES\ncopy \"he_IL\"\nEND LC_MESSAGES\nLC_TIME\n"
    "day \"d0\";\"d1\";\"d2\";\"d3\";\"d4\";\"d5\";\"d6\"\n"
    "abday \"0\";\"1\";\"2\";\"3\";\"4\";\"5\";\"6\"\n"
    "mon \"Tishri\";\"Heshvan\";\"Kislev\";\"Tevet\";\"Shevat\";\"Adar I\";\"Adar\";\"Nisan\";/\n"
    "\"Iyar\";\"Sivan\";\"Tamuz\";\"Av\";\"Elul\"\n"
    "abmon \"a\";\"b\";\"c\";\"d\";\"e\";\"f\";\"g\";\"h\";\"i\";\"j\";\"k\";\"l\";\"m\"\n"
    "d_t_fmt \"%d %B %Y %T\"\nd_fmt \"%d %B %Y\"\nt_fmt \"%T\"\nEND LC_TIME\n";

// A locale of the calendar, made from one of the system's sources or from the text above.
class calendar_locale {
public:
    calendar_locale(const std::string &source, const std::string &calendar) {
        directory_.write("locales/hebrew_months", hebrew_source);
        directory_.write("xx_xx/e01c.lco", "");
        const std::string output = "-o" + directory_.at("xx_xx/e01c.lco");
        const std::string include = "-I" + directory_.path(), option = "--calendar=" + calendar;
        std::vector<std::string> words = {"mklco", include, "-fUTF-8", "-cutf8",
                                          output,  option,  source};
        std::vector<char *> argv;
        for (std::string &word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        FILE *said = fopen("/dev/null", "w");
        EXPECT_LT(kestrion::mklco_main(static_cast<int>(words.size()), argv.data(), said), 2);
        fclose(said);
    }
    time_locale load() const { return time_locale("xx_xx/e01c.lco", directory_.path()); }

private:
    temp_dir directory_;
};

void every_date_is_read_back(const time_locale &locale, const std::string &format) {
    for (int64_t day = -135140; day < 157419; day += 7) {
        const gl_alt_tm time = moment_on_day(day, 45296).engine;
        gl_alt_tm scanned = {};
        const std::string text = locale.text(format, time);
        ASSERT_EQ(locale.scan(text, format, scanned), 0) << text;
        ASSERT_TRUE(same_time(scanned, time)) << text;
    }
}

} // namespace

TEST(LocalCalendar, HebrewDatesAreWrittenAndRead) {
    const time_locale hebrew = calendar_locale("hebrew_months", "hebrew").load();
    const gl_alt_tm leap = moment_of(2024, 2, 29).engine, common = moment_of(2025, 2, 20).engine;
    EXPECT_EQ(hebrew.text("%x|%m %j %a %D", leap), "20 Adar I 5784|06 167 4 06/20/84");
    EXPECT_EQ(hebrew.text("%x|%m", common), "22 Shevat 5785|05");
    EXPECT_EQ(hebrew.text("%d %B %m", moment_of(2025, 3, 1).engine), "01 Adar 06");
    EXPECT_EQ(hebrew.text("%m", moment_of(2024, 9, 20).engine), "13");
    EXPECT_EQ(hebrew.text("%d", moment_of(0, 12, 31).engine), "error 31");
    every_date_is_read_back(hebrew, "%c");
    every_date_is_read_back(hebrew, "%Y %m %d %T");
    every_date_is_read_back(hebrew, "%b %e, %Y %T");

    gl_alt_tm time = leap;
    EXPECT_EQ(hebrew.scan("1 Adar I 5785", "%x", time), GLS_ERR_MONTH) << "a common year";
    EXPECT_EQ(hebrew.scan("30 Elul 5784", "%x", time), GLS_ERR_DAY);
    EXPECT_EQ(hebrew.scan("13:14", "%R", time), 0);
    EXPECT_EQ(hebrew.scan("21", "%d", time), 0) << "the caller's month and year stay";
    EXPECT_EQ(hebrew.text("%c", time), "21 Adar I 5784 13:14:00");
    EXPECT_EQ(time.day, 1);
    EXPECT_EQ(time.month, 2);

    gl_tm local = {};
    ASSERT_NE(gl_mbsptime_internal(hebrew.lc, "21 Adar 5785", "%x", &local), nullptr);
    EXPECT_EQ(local.year, 3885) << "the inner form does not convert";
    EXPECT_EQ(local.month, 5);
    EXPECT_EQ(local.month_name, 6);
}

TEST(LocalCalendar, IslamicDatesAreWrittenAndRead) {
    const time_locale islamic = calendar_locale("ar_SA", "islamic").load();
    EXPECT_EQ(islamic.text("%Y-%m-%d %j", moment_of(2024, 2, 29).engine), "1445-08-20 227");
    EXPECT_EQ(islamic.text("%Y", moment_of(622, 7, 17).engine), "error 31");
    every_date_is_read_back(islamic, "%Y-%m-%d %T");
    every_date_is_read_back(islamic, "%d %B %Y %X");
}

TEST(LocalCalendar, TheFourthCalendarConvertsNothing) {
    const time_locale arabic = calendar_locale("ar_SA", "arabic").load();
    gl_alt_tm time = moment_of(2024, 2, 29).engine;
    EXPECT_EQ(arabic.text("%Y", time), "error 50");
    EXPECT_EQ(arabic.scan("2024", "%Y", time), GLS_ERR_CALENDAR);
    gl_tm local = {};
    EXPECT_EQ(gl_cal_gregorian_to_local(arabic.lc, &local, &local), -1);
    EXPECT_EQ(gl_cal_local_to_gregorian(arabic.lc, &local, &local), -1);
}

TEST(LocalCalendar, NamesAreHandedOut) {
    const time_locale hebrew = calendar_locale("hebrew_months", "hebrew").load();
    const struct {
        int32_t kind, count;
        const char *first, *last;
    } rows[] = {{GL_NAMES_DAY, 7, "d0", "d6"},
                {GL_NAMES_ABDAY, 7, "0", "6"},
                {GL_NAMES_MON, 13, "Tishri", "Elul"},
                {GL_NAMES_ABMON, 13, "a", "m"}};
    for (const auto &row : rows) {
        char **names;
        int32_t count;
        ASSERT_EQ(gl_mbstimeinfo_ext(hebrew.lc, row.kind, malloc, &names, &count), 0);
        ASSERT_EQ(count, row.count);
        EXPECT_STREQ(names[0], row.first);
        EXPECT_STREQ(names[count - 1], row.last);
        free(names);
    }
}
