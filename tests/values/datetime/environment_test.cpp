// What the environment decides: each row is a process of its own.

#include "support/in_child.h"
#include "values/datetime/plain_values.h"
#include <kestrion/date_format.h>
#include <kestrion/date_text.h>
#include <kestrion/datetime_arithmetic.h>
#include <kestrion/datetime_format.h>
#include <kestrion/datetime_now.h>
#include <kestrion/dbcentury.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gls_env.h>
#include <kestrion/startup.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <string.h>
#include <time.h>

namespace {

std::string now_as(int word) {
    dtime_value now = {.qualifier = static_cast<int16_t>(word), .value = {}};
    const int code = dtcurrent(&now);
    return code == 0 ? plain::text_of(now) : std::to_string(code);
}

std::string read_and_written(const char *text, int word) {
    dtime_value value = {.qualifier = static_cast<int16_t>(word), .value = {}};
    const int code = dtcvasc(text, &value);
    return code == 0 ? plain::text_of(value) : std::to_string(code);
}

std::string date_of(const char *text) {
    int32_t date;
    const int code = rstrdate(text, &date);
    char written[rdatestr_size] = "";
    if (code == 0)
        rdatestr(date, written);
    return code == 0 ? written : std::to_string(code);
}

// The day of the process's clock, by the C library.
std::string clock_day() {
    const time_t now = time(nullptr);
    tm local;
    char text[64];
    localtime_r(&now, &local);
    strftime(text, sizeof text, "%Y-%m-%d", &local);
    return text;
}

std::string bracketed(std::string text) {
    text.insert(text.begin(), '[');
    text.push_back(']');
    return text;
}

constexpr int y_s = qualifier_year_to_second;
constexpr int y_d = qualifier_year_to_day;
constexpr int y_f5 = qualifier_year_to_fraction5;

struct environment_row {
    const char *what;
    assignments variables;
    std::function<std::string()> act;
    const char *wanted;
};

void expect_rows(const std::vector<environment_row> &rows) {
    for (const environment_row &row : rows)
        EXPECT_EQ(in_child(row.variables, row.act), row.wanted) << row.what;
}

TEST(DatetimeEnvironment, DbTodayMovesTheClock) {
    const auto today = [] { return now_as(y_d); };
    const auto runs = [] { // the clock goes on from the given moment
        const std::string first = now_as(y_s);
        timespec wait = {.tv_sec = 1, .tv_nsec = 100000000};
        nanosleep(&wait, nullptr);
        return std::string(first < now_as(y_s) ? "runs" : "stands");
    };
    const auto real = [] { return now_as(y_d) == clock_day() ? "the clock" : now_as(y_d); };
    expect_rows({
        {"set", {{"DBTODAY", "1995-06-01 00:00:00"}}, today, "1995-06-01"},
        {"runs", {{"DBTODAY", "1995-06-01 12:34:56"}}, runs, "runs"},
        {"not set", {}, real, "the clock"},
        {"bad", {{"DBTODAY", "yesterday"}}, real, "the clock"},
        {"empty", {{"DBTODAY", ""}}, real, "the clock"},
        {"no time", {{"DBTODAY", "1995-06-01"}}, real, "the clock"},
        {"dates follow",
         {{"DBTODAY", "1995-06-01 00:00:00"}},
         [] {
             int32_t date;
             rtoday(&date);
             initdbtoday();
             return std::to_string(date);
         },
         "34850"},
        {"centuries follow",
         {{"DBTODAY", "1995-06-01 00:00:00"}, {"DBCENTURY", "C"}},
         [] { return read_and_written("50-01-01", y_d) + " " + date_of("1/1/50"); },
         "1950-01-01 01/01/1950"},
        {"the program's present stands, whatever was read first",
         {{"DBTODAY", "1995-06-01 00:00:00"}},
         [] {
             dtime_value set = {.qualifier = y_f5, .value = {}};
             dtcvasc("2001-02-03 04:05:06.00000", &set);
             rdtsetcurr(&set.value);
             const std::string text = now_as(y_s);
             rdtsetcurr(nullptr);
             return text + " " + now_as(y_d);
         },
         "2001-02-03 04:05:06 1995-06-01"},
        {"beyond the last year",
         {{"DBTODAY", "9999-12-31 23:59:59"}},
         [] {
             now_as(y_s);
             timespec wait = {.tv_sec = 1, .tv_nsec = 100000000};
             nanosleep(&wait, nullptr);
             return bracketed(now_as(y_s));
         },
         "[]"},
    });
}

TEST(DatetimeEnvironment, DbCenturyIsOneOfFourLetters) {
    const auto century = [] {
        return read_and_written("90-01-01", y_d) +
               std::string(1, static_cast<char>(getdbcentury()));
    };
    const auto later = [] {
        const int first = getdbcentury();
        setenv("DBCENTURY", "F", 1);
        return std::string{static_cast<char>(first), static_cast<char>(getdbcentury())};
    };
    const std::string today = "2024-06-01 00:00:00";
    expect_rows({
        {"none", {{"DBTODAY", today}}, century, "2090-01-01R"},
        {"P", {{"DBTODAY", today}, {"DBCENTURY", "P"}}, century, "1990-01-01P"},
        {"F", {{"DBTODAY", today}, {"DBCENTURY", "F"}}, century, "2090-01-01F"},
        {"C", {{"DBTODAY", today}, {"DBCENTURY", "C"}}, century, "1990-01-01C"},
        {"two letters", {{"DBTODAY", today}, {"DBCENTURY", "PP"}}, century, "2090-01-01R"},
        {"what is read stays", {{"DBCENTURY", "C"}}, later, "CC"},
        {"what is not read is looked at again", {{"DBCENTURY", "Z"}}, later, "RF"},
    });
}

TEST(DatetimeEnvironment, GlDatetimeWritesAndUseDtenvReads) {
    const auto both = [] { return read_and_written("2024-02-29 12:34:56", y_s); };
    const auto german = [] { return read_and_written("29.02.2024 12:34", 0x0c08); };
    const char *format = "%d.%m.%iY %H:%M";
    expect_rows({
        {"alone it only writes", {{"GL_DATETIME", format}}, both, "29.02.2024 12:34"},
        {"both", {{"GL_DATETIME", format}, {"USE_DTENV", "1"}}, german, "29.02.2024 12:34"},
        {"both, another text", {{"GL_DATETIME", format}, {"USE_DTENV", "1"}}, both, "-1262"},
        {"text after it",
         {{"GL_DATETIME", format}, {"USE_DTENV", "1"}},
         [] { return read_and_written("29.02.2024 12:34:56", 0x0c08); },
         "-1264"},
        {"no such day",
         {{"GL_DATETIME", format}, {"USE_DTENV", "1"}},
         [] { return read_and_written("30.02.2024 12:34", 0x0c08); },
         "-1263"},
        {"only 1 counts", {{"GL_DATETIME", format}, {"USE_DTENV", "10"}}, both, "29.02.2024 12:34"},
        {"the default format", {{"USE_DTENV", "1"}}, both, "2024-02-29 12:34:56"},
        {"a part of it",
         {{"GL_DATETIME", format}, {"USE_DTENV", "1"}},
         [] { return read_and_written("29.02.", 0x0424) + read_and_written("29.02", 0x0424); },
         "-126429.02"},
        {"fractions alone",
         {{"USE_DTENV", "1"}},
         [] { return read_and_written("567", 973); },
         ".567"},
        {"years of two digits",
         {{"GL_DATETIME", "%d.%m.%iy"},
          {"USE_DTENV", "1"},
          {"DBCENTURY", "P"},
          {"DBTODAY", "01.06.24"}}, // which is read by the format as well
         [] {
             dtime_value value = {.qualifier = y_d, .value = {}};
             const int code = dtcvasc("02.06.24", &value);
             return code == 0 ? std::to_string(value.value.digits[0]) : std::to_string(code);
         },
         "19"},
        {"a format that cannot be", {{"GL_DATETIME", "%d %"}, {"USE_DTENV", "1"}}, both, "-1268"},
        {"kept for each qualifier",
         {{"GL_DATETIME", "%d.%m.%iY %H:%M:%S.%F5"}, {"USE_DTENV", "1"}},
         [] {
             chkglsinit();
             const auto &kept = gls_env.dt_fmt;
             return std::string(kept[1][2]) + "|" + kept[5][8] + "|" + kept[8][8] + "|" +
                    (kept[0][6] == nullptr ? "-" : kept[0][6]);
         },
         "%d.%m|%S.%F3|%F3|-"},
    });
}

TEST(DatetimeEnvironment, TimeZonesMayChangeWhileRunning) {
    const auto local = [](int64_t seconds, int word) {
        dtime_value value = {.qualifier = static_cast<int16_t>(word), .value = {}};
        rdatetime(seconds, word, &value.value);
        return plain::text_of(value);
    };
    const char *berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
    expect_rows({
        {"changes",
         {{"TZ", "UTC0"}},
         [&] {
             std::string text = local(1709210096, y_s);
             setenv("TZ", berlin, 1);
             text.append("|").append(local(1709210096, y_s));
             setenv("TZ", "EST5", 1);
             return text + "|" + local(1709210096, 0x0a46);
         },
         "2024-02-29 12:34:56|2024-02-29 13:34:56|"},
        {"the hour that comes twice",
         {{"TZ", berlin}},
         [&] {
             // Two minutes before the clocks go back, and an hour later.
             return local(1729990680, y_s) + "|" + local(1729990680 + 3600, y_s) + "|" +
                    local(1729990680 + 7200, y_s);
         },
         "2024-10-27 02:58:00|2024-10-27 02:58:00|2024-10-27 03:58:00"},
        {"the hour that doesn't",
         {{"TZ", berlin}},
         [&] { return local(1711846799, y_s) + "|" + local(1711846800, y_s); },
         "2024-03-31 01:59:59|2024-03-31 03:00:00"},
        {"beyond the years",
         {{"TZ", "UTC0"}},
         [&] {
             return bracketed(local(253402300799, y_s) + local(253402300800, y_s) +
                              local(-62135596800, y_s) + local(-62135596801, y_s) +
                              local(INT64_MAX, y_s));
         },
         "[9999-12-31 23:59:590001-01-01 00:00:00]"},
    });
}

TEST(DateEnvironment, FormatsComeFromTheVariables) {
    expect_rows({
        {"default", {}, [] { return date_of("2/29/2024"); }, "02/29/2024"},
        {"blank is NULL", {}, [] { return bracketed(date_of(" ")); }, "[]"},
        {"blanks around", {}, [] { return date_of("  2/29/2024 "); }, "02/29/2024"},
        {"another separator", {}, [] { return date_of("2-29.2024"); }, "02/29/2024"},
        {"a name", {}, [] { return date_of("FEBRUARY 29 2024"); }, "02/29/2024"},
        {"an abbreviated one", {}, [] { return date_of("feb29,2024"); }, "02/29/2024"},
        {"no separator", {}, [] { return date_of("02292024"); }, "-1218"},
        {"three digits are a year", {}, [] { return date_of("2/28/999"); }, "02/28/0999"},
        {"no year 0", {}, [] { return date_of("2/28/0000"); }, "-1204"},
        {"no month 13", {}, [] { return date_of("13/28/2024"); }, "-1205"},
        {"no such day", {}, [] { return date_of("2/29/2023"); }, "-1206"},
        {"more text", {}, [] { return date_of("2/28/2023 x"); }, "-1218"},
        {"five digits", {}, [] { return date_of("2/28/20230"); }, "-1218"},
        {"DBDATE", {{"DBDATE", "DMY4."}}, [] { return date_of("29/2/2024"); }, "29.02.2024"},
        {"by the century",
         {{"DBDATE", "Y2MD-"}, {"DBCENTURY", "P"}, {"DBTODAY", "2024-06-01 00:00:00"}},
         [] { return date_of("24-06-01") + " " + std::to_string(getcentury(6, 1, 24)); },
         "24-06-01 19"},
        {"no separator in DBDATE",
         {{"DBDATE", "Y4MD0"}},
         [] { return date_of("20240229"); },
         "20240229"},
        {"too few digits", {{"DBDATE", "Y4MD0"}}, [] { return date_of("20242"); }, "-1218"},
        {"the year is today's",
         {{"DBDATE", "MD"}, {"DBTODAY", "1996-06-01 00:00:00"}},
         [] {
             int32_t date;
             rstrdate("2/29", &date);
             return std::to_string(date);
         },
         "35123"},
        {"GL_DATE",
         {{"GL_DATE", "%d. %B %iY"}},
         [] { return date_of("29. february 2024"); },
         "29. February 2024"},
        {"GL_DATE without a match",
         {{"GL_DATE", "%d. %B %iY"}},
         [] { return date_of("29.2.2024"); },
         "-1218"},
        {"GL_DATE of two digits",
         {{"GL_DATE", "%iy%m%d"}, {"DBCENTURY", "F"}, {"DBTODAY", "2024-06-01 00:00:00"}},
         [] {
             int32_t date;
             rstrdate("240531", &date);
             return std::to_string(date);
         },
         "81966"},
        {"the locale's",
         {{"CLIENT_LOCALE", "de_DE.8859-1"}},
         [] { return date_of("29.02.2024"); },
         "29.02.2024"},
        {"its names",
         {{"CLIENT_LOCALE", "de_DE.8859-1"}, {"DBDATE", "DMY4 "}},
         [] { return date_of("1. M\xC4RZ 2024") + date_of("1 march 2024"); },
         "01/03/202401/03/2024"},
        {"no start",
         {{"CLIENT_LOCALE", "xx_XX.819"}},
         [] { return date_of("2/29/2024"); },
         "-23101"},
    });
}

// -- All that DBDATE can mean --------------------------------------------------------------------

std::vector<std::string> every_dbdate() {
    std::vector<std::string> all;
    std::vector<std::string> orders;
    std::string letters = "DMY";
    std::sort(letters.begin(), letters.end());
    do {
        for (size_t count = 1; count <= 3; ++count) {
            if (const std::string order = letters.substr(0, count);
                std::find(orders.begin(), orders.end(), order) == orders.end())
                orders.push_back(order);
        }
    } while (std::next_permutation(letters.begin(), letters.end()));
    for (const std::string &order : orders) {
        for (const char *digits : {"", "2", "3", "4", "Y"}) {
            for (const char *prefix : {"", "E", "G", "N"}) {
                for (const char *separator : {"", ",", "-", ".", "/", "0"}) {
                    for (const char *suffix : {"", "C1", "C2", "J1", "J2"}) {
                        std::string text;
                        const std::string year = std::string(prefix).append("Y").append(digits);
                        for (char letter : order)
                            text += letter == 'Y' ? year : std::string(1, letter);
                        dbdate_format format;
                        if (parse_dbdate((text + separator + suffix).c_str(), &format) == 0)
                            all.push_back(text + separator + suffix);
                    }
                }
            }
        }
    }
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

// A date that the format can show: what it lacks is as reading completes it.
int32_t date_for(const std::string &dbdate, bool eras, std::mt19937_64 &random) {
    using namespace std::chrono;
    const bool year_known = dbdate.find('Y') != std::string::npos;
    dbdate_format format;
    parse_dbdate(dbdate.c_str(), &format);
    const bool two_digits = strstr(format.text, "%iy") != nullptr;
    const auto has = [&](int32_t field) {
        return std::find(format.order, format.order + 3, field) != format.order + 3;
    };
    year_month_day date = plain::any_moment(random).date();
    int y = static_cast<int>(date.year());
    unsigned m = static_cast<unsigned>(date.month());
    unsigned d = static_cast<unsigned>(date.day());
    if (eras) // the year of an era is read in up to four digits
        y = random() % 4 == 0 ? 1 + y % 9400 : 1860 + static_cast<int>(random() % 180);
    if (two_digits)
        y = 2000 + y % 100;
    if (!year_known)
        y = 2024;
    if (!has(gls_date_month))
        m = year_known ? 1 : 3;
    if (!has(gls_date_day))
        d = 1;
    d = std::min(d, static_cast<unsigned>((year{y} / month{m} / last).day()));
    const int16_t mdy[] = {static_cast<int16_t>(m), static_cast<int16_t>(d),
                           static_cast<int16_t>(y)};
    int32_t made;
    return rmdyjul(mdy, &made) == 0 ? made : 0;
}

std::string round_trips(bool eras) {
    std::mt19937_64 random(12);
    dtime_value now = {.qualifier = y_f5, .value = {}};
    dtcvasc("2024-03-15 00:00:00.00000", &now);
    rdtsetcurr(&now.value);
    if (const int code = chkglsinit(); code != 0)
        return "no start: " + std::to_string(code);
    int count = 0;
    for (const std::string &dbdate : every_dbdate()) {
        setenv("DBDATE", dbdate.c_str(), 1);
        if (initdatetime() != 0)
            return dbdate + " is refused";
        for (int i = 0; i < 8; ++i, ++count) {
            const int32_t date = date_for(dbdate, eras, random);
            int32_t back;
            char text[rdatestr_size];
            const int written = rdatestr(date, text);
            const int read = rstrdate(text, &back);
            if (written != 0 || read != 0 || back != date) {
                return dbdate + ": " + std::to_string(date) + " is written '" + text + "' (" +
                       std::to_string(written) + ") and read " + std::to_string(back) + " (" +
                       std::to_string(read) + ")";
            }
        }
    }
    return count > 10000 ? "" : "only " + std::to_string(count);
}

TEST(DateEnvironment, EveryDbDateReadsWhatItWrites) {
    const auto plainly = [] { return round_trips(false); };
    const auto with_eras = [] { return round_trips(true); };
    expect_rows({
        {"en_US", {}, plainly, ""},
        {"de_DE, multibyte", {{"CLIENT_LOCALE", "de_DE.utf8"}}, plainly, ""},
        {"ja_JP, with eras", {{"CLIENT_LOCALE", "ja_JP.utf8"}}, with_eras, ""},
        {"ja_JP.sjis", {{"CLIENT_LOCALE", "ja_JP.sjis"}}, with_eras, ""},
        {"th_TH", {{"CLIENT_LOCALE", "th_TH.utf8"}}, with_eras, ""},
        {"zh_TW", {{"CLIENT_LOCALE", "zh_TW.utf8"}}, with_eras, ""},
    });
}

} // namespace
