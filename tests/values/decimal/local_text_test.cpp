// Texts of numbers and money under the conventions of an installation's locales, each test in an
// environment of its own.

#include <kestrion/conventions.h>
#include <kestrion/decimal_format.h>
#include <kestrion/decimal_text.h>
#include <kestrion/double_text.h>
#include <kestrion/environments.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_errors.h>
#include <kestrion/money_text.h>
#include <kestrion/startup.h>

#include <gtest/gtest.h>

#include <math.h>
#include <stdlib.h>

#include <random>
#include <string>

#include "support/random_cases.h"

namespace {

void start(const char *locale, const char *money = nullptr) {
    setenv("KESTRIONDIR", INSTALLATION, 1);
    setenv("CLIENT_LOCALE", locale, 1);
    if (money != nullptr)
        setenv("DBMONEY", money, 1);
    ASSERT_EQ(chkglsinit(), 0) << locale;
}

dec_value value_of(const char *text) {
    dec_value value;
    EXPECT_EQ(deccvasc_net(text, 40, &value), 0) << text;
    return value;
}

std::string money(const char *value, int length, int right) {
    const dec_value amount = value_of(value);
    std::string text(static_cast<size_t>(length), '#');
    const int answer = rdecmon(&amount, text.data(), length, right);
    EXPECT_EQ(answer, text.find('*') == std::string::npos ? 0 : -1207);
    return text;
}

std::string written_neutral(const dec_value &value) {
    std::string text(30, ' ');
    dectoasc_net(&value, text.data(), 30, -1);
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

// The amount that a text is read as, in the neutral form; "?" when it is refused.
std::string amount(const std::string &text) {
    dec_value value;
    if (rmondec(text.data(), static_cast<int>(text.size()), &value) != 0)
        return "?";
    return written_neutral(value);
}

TEST(LocalNumbers, FollowTheLocaleAndGoBackWithIt) {
    start("de_de.utf8");
    const lconv_rec &local = *CheckGlsEnv()->state->lconv;
    EXPECT_STREQ(local.radix, ",");
    EXPECT_STREQ(local.thousands_sep, ".");
    EXPECT_STREQ(local.negative_sign, "-");
    dec_value value;
    EXPECT_EQ(deccvasc("-1.234,5e1", 10, &value), 0);
    char text[12] = {};
    EXPECT_EQ(dectoasc(&value, text, 11, 2), 0);
    EXPECT_STREQ(text, "-12345,00  ");
    EXPECT_EQ(dectoasc_net(&value, text, 11, 2), 0);
    EXPECT_STREQ(text, "-12345.00  ");
    double number;
    EXPECT_EQ(rstod(" -1,5e3 \n?", &number), 0);
    EXPECT_EQ(number, -1500.0);
    EXPECT_EQ(rstod("1.5", &number), -1213);
    EXPECT_EQ(number, 0.0);
    char printed[81];
    EXPECT_EQ(_gnftoasc(0.1, printed), 0);
    EXPECT_STREQ(printed, "0,10000000000000001");
    freegls();
    EXPECT_STREQ(local.radix, ".");
    EXPECT_STREQ(local.thousands_sep, "");
}

TEST(LocalDoubles, AreTheNearestAndEndWhereTheyShould) {
    start("en_us.utf8");
    const struct {
        const char *text;
        int answer;
        double wanted;
    } rows[] = {
        {"1e400", 0, HUGE_VAL}, {"-1e400", 0, -HUGE_VAL}, {"1e-400", 0, 0.0},
        {"5e-324", 0, 5e-324},  {".5", 0, 0.5},           {"+5.", 0, 5.0},
        {"", -1213, 0.0},       {"   ", -1213, 0.0},      {".", -1213, 0.0},
        {"1 2", -1213, 0.0},    {"inf", -1213, 0.0},      {"0x10", -1213, 0.0},
        {"1e", 0, 1.0},         {"1,000", -1213, 0.0},    {"0e99999999999", 0, 0.0},
    };
    double got;
    for (const auto &row : rows) {
        EXPECT_EQ(rstod(row.text, &got), row.answer) << row.text;
        EXPECT_EQ(got, row.wanted) << row.text;
    }
    // A tie between two doubles, and what lies above it by its 900th digit.
    std::string tie("9007199254740993.");
    tie.append(900, '0');
    EXPECT_EQ(rstod(tie.c_str(), &got), 0);
    EXPECT_EQ(got, 9007199254740992.0);
    tie.push_back('1');
    EXPECT_EQ(rstod(tie.c_str(), &got), 0);
    EXPECT_EQ(got, 9007199254740994.0);

    std::mt19937_64 random(41);
    for (long i = random_cases(200000); i > 0; --i) {
        const double value = __builtin_bit_cast(double, random());
        char text[81];
        if (!isfinite(value))
            continue;
        ASSERT_EQ(_gnftoasc(value, text), 0);
        ASSERT_EQ(rstod(text, &got), 0) << text;
        ASSERT_EQ(got, value) << text;
    }
    char radix[4] = "1.5";
    EXPECT_EQ(rdecstr(radix, 3), -1207) << "the terminator needs its room, too";
    EXPECT_EQ(rdecstr(radix, 4), 0);
}

TEST(Money, StandsBetweenTheLocalesSymbols) {
    start("en_us.utf8");
    EXPECT_EQ(rfrontlen(), 1);
    EXPECT_EQ(rbacklen(), 0);
    EXPECT_EQ(genlcscale(), 2);
    EXPECT_EQ(money("1234.5", 12, 2), "$1234.50    ");
    EXPECT_EQ(money("-0.5", 6, 2), "$-0.50");
    EXPECT_EQ(money("123456", 4, 2), "****");
    EXPECT_EQ(money("123456", 7, 2), "$123456");
    EXPECT_EQ(money("1", 1, 0), "*");
    EXPECT_EQ(money("", 3, 2), "   ");
    EXPECT_EQ(amount(" $1,234.50 "), "1234.5");
    EXPECT_EQ(amount("1234.5$"), "1234.5");
    EXPECT_EQ(amount("$$5"), "?");
    EXPECT_EQ(amount("$"), "");
}

TEST(Money, HasTheRadixOfTheLocale) {
    start("de_de.utf8");
    EXPECT_EQ(money("-1234.5", 12, 2), "-1234,50\xe2\x82\xac ");
    EXPECT_EQ(amount("-1.234,50 \xe2\x82\xac"), "-1234.5");
}

TEST(Money, FollowsItsVariableBothWays) {
    start("en_us.utf8", "DM,-");
    EXPECT_EQ(rfrontlen(), 2);
    EXPECT_EQ(rbacklen(), 1);
    EXPECT_EQ(money("1234.5", 12, 2), "DM1234,50-  ");
    EXPECT_EQ(amount("DM1234,50-"), "1234.5");
    EXPECT_EQ(amount("$1234,50"), "1234.5") << "the locale's symbol, too";
    EXPECT_EQ(amount("DM1234.50-"), "?");
    std::mt19937 random(42);
    for (long i = random_cases(100000); i > 0; --i) {
        dec_value value, back;
        ASSERT_EQ(deccvlong(static_cast<int32_t>(random()), &value), 0);
        char text[30];
        ASSERT_EQ(rdecmon(&value, text, sizeof text, 2), 0);
        ASSERT_EQ(rmondec(text, sizeof text, &back), 0);
        ASSERT_EQ(deccmp(&back, &value), value.sign == -1 ? -2 : 0);
    }
}

TEST(Money, WithoutARadixInTheVariableHasTheLocales) {
    start("de_de.utf8", "DM");
    EXPECT_EQ(money("1.5", 8, 2), "DM1,50  ");
}

TEST(NumberFormats, KindsAreThoseOfTheFirstDirective) {
    const struct {
        const char *format;
        int kind;
    } rows[] = {
        {"%f", 1},     {"a%%b %'+-# 012.3G%%", 1},
        {"%d", 2},     {"%.5q", 2},
        {"", 0},       {"100%%", 0},
        {"%s", 0},     {"%lf", 0},
        {"%*d", 0},    {"%1$d", 0},
        {"%d %d", -1}, {"%d %", -1},
        {"%", 0},      {"%5", 0},
        {"%d %%", 2},
    };
    for (const auto &row : rows)
        EXPECT_EQ(get_num_fmt_type(row.format), row.kind) << row.format;
}

TEST(NumberFormats, ConvertBothWaysInTheLocale) {
    start("de_de.utf8");
    const struct {
        const char *text, *format, *value;
    } rows[] = {
        {"1.234,5", "%'f", "1234.5"}, {"1234,5", nullptr, "1234.5"},        {"-17", "%d", "-17.0"},
        {"ff", "%x", "255.0"},        {"0,1", "%e", "0.10000000000000001"}, {"-32768", "%d", ""},
        {"  ", nullptr, ""},          {"= 7 %", "= %i %%", "7.0"},
    };
    for (const auto &row : rows) {
        dec_value got;
        EXPECT_EQ(qvt_gl_convert_number(&got, row.text, row.format), 0) << row.text;
        EXPECT_EQ(written_neutral(got), row.value) << row.text;
    }
    dec_value got;
    EXPECT_EQ(qvt_gl_convert_number(&got, "x", "%f"), -1);
    EXPECT_EQ(get_glserror(), GLS_ERR_ARGUMENT);
    EXPECT_EQ(qvt_gl_convert_number(&got, "x", nullptr), -1);
    EXPECT_EQ(get_glserror(), GLS_ERR_ARGUMENT);
    EXPECT_EQ(qvt_gl_convert_number(&got, "1", "%s"), -1);
    EXPECT_EQ(get_glserror(), GLS_ERR_FORMAT);
    EXPECT_EQ(qvt_gl_convert_number(&got, "1", (std::string(300, ' ') + "%f").c_str()), -1);
    EXPECT_EQ(get_glserror(), GLS_ERR_FORMAT);

    const struct {
        const char *value, *format, *wanted; // null: refused
    } written[] = {
        {"1234.5", "%'.2f", "1.234,50"},
        {"1234.5", nullptr, "1234,5"},
        {"-7", "<%5d>", "<   -7>"},
        {"32768", "%d", nullptr},
        {"1", "%s", nullptr},
        {"", nullptr, ""},
        {"", "%f", nullptr},
        {"255", "%#x", "0xff"},
    };
    for (const auto &row : written) {
        char text[20];
        const dec_value value = value_of(row.value);
        EXPECT_EQ(qvt_gl_format_number(text, 20, &value, row.format), row.wanted ? 0 : -1);
        if (row.wanted != nullptr) {
            EXPECT_STREQ(text, row.wanted);
        } else {
            EXPECT_EQ(get_glserror(), GLS_ERR_ARGUMENT) << row.value;
        }
    }
    char small[3] = "ab";
    const dec_value value = value_of("12.5");
    EXPECT_EQ(qvt_gl_format_number(small, 0, &value, nullptr), -1);
    EXPECT_STREQ(small, "ab");
    EXPECT_EQ(qvt_gl_format_number(small, 3, &value, nullptr), 0);
    EXPECT_STREQ(small, "13");
}

} // namespace
