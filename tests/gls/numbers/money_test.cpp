// Amounts of money: layouts, and where they are not those of strfmon.

#include "gls/numbers/locales.h"
#include <kestrion/money_format.h>
#include <kestrion/money_pattern.h>
#include <kestrion/money_scan.h>

#include <gtest/gtest.h>
#include <limits.h>
#include <math.h>
#include <stdarg.h>

#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

std::string amount(locale_rec *lc, const std::string &format, double value) {
    char text[1200];
    const int32_t count = gl_mbsfmon(lc, text, sizeof text, format.c_str(), value);
    if (count >= 0)
        return {text, static_cast<size_t>(count)};
    EXPECT_STREQ(text, "") << "what a failed call leaves";
    return "error " + std::to_string(taken_error(lc));
}

// The layouts as they are published: sign position times ten plus separation, then the tokens with
// the symbol after the value and before it.
constexpr struct {
    int32_t key;
    const char *after, *before;
} published[] = {
    {0, "1326", "1236"},  {2, "1326", "1236"},  {1, "13526", "12536"}, {10, "432", "423"},
    {11, "4352", "4253"}, {12, "432", "4523"},  {20, "324", "234"},    {21, "3524", "2534"},
    {22, "3254", "234"},  {30, "342", "423"},   {31, "3542", "4253"},  {32, "3452", "4523"},
    {40, "324", "243"},   {41, "3524", "2453"}, {42, "3254", "2543"},
};

std::string pattern(int32_t cs_precedes, int32_t sign_posn, int32_t sep_by_space) {
    int32_t tokens[money_pattern_size];
    const int32_t result = mon_mask(cs_precedes, sign_posn, sep_by_space, tokens);
    std::string text;
    for (const int32_t token : tokens)
        if (token != money_end)
            text += std::to_string(token);
    EXPECT_EQ(result, text.empty() ? -1 : 0);
    return text;
}

} // namespace

TEST(MoneyPattern, IsThatOfTheTable) {
    for (const auto &row : published) {
        EXPECT_EQ(pattern(0, row.key / 10, row.key % 10), row.after) << row.key;
        EXPECT_EQ(pattern(1, row.key / 10, row.key % 10), row.before) << row.key;
    }
    for (const int32_t odd : {-1, 5, 7, INT_MAX, INT_MIN}) {
        EXPECT_EQ(pattern(1, 1, odd), "") << odd;
        EXPECT_EQ(pattern(1, odd, 1), "") << odd;
        EXPECT_EQ(pattern(odd, 1, 1), "") << odd;
    }
    EXPECT_EQ(pattern(1, 0, 11), pattern(1, 1, 1)) << "only the key counts";
}

// Worked by hand; EURO and YEN stand for the symbols.
TEST(MoneyFormat, AmountsOfThreeLocales) {
    const shipped_object en("en_us/e01c.lco"), de("de_de/e01c.lco"), ja("ja_jp/e01c.lco");
    const struct {
        double value;
        const char *format, *en_us, *de_de, *ja_jp;
    } rows[] = {
        {1234567.891, "%n", "$1,234,567.89", "1.234.567,89 EURO", "YEN1,234,568"},
        {1234567.891, "%i", "USD 1,234,567.89", "1.234.567,89 EUR ", "JPY 1,234,568"},
        {-1234.5, "%n", "-$1,234.50", "-1.234,50 EURO", "YEN-1,235"},
        {-1234.5, "%(n", "($1,234.50)", "(1.234,50 EURO)", "(YEN1,235)"},
        {-1234.5, "%#7n", "-$    1,234.50", "-    1.234,50 EURO", "YEN-    1,235"},
        {1234567.891, "%^=*#9.3n", " $**1234567.891", " **1234567,891 EURO", " YEN**1234567.891"},
        {0.995, "%n", "$1.00", "1,00 EURO", "YEN1"},
        {0.9949996, "%n", "$1.00", "1,00 EURO", "YEN1"},
        {0.9949994, "%n", "$0.99", "0,99 EURO", "YEN1"},
        {-0.004, "%!n", "-0.00", "-0,00 ", "-0"},
        {-0.0, "%n", "$0.00", "0,00 EURO", "YEN0"},
        {999999.9999, "%.0n", "$1,000,000", "1.000.000 EURO", "YEN1,000,000"},
        {0.1234567, "%.8n", "$0.12345700", "0,12345700 EURO", "YEN0.12345700"},
        {5, "%8n|%-8n", "   $5.00|", "  5,00 EURO|", "     YEN5|"},
        {INFINITY, "%n", "$inf", "inf EURO", "YENinf"},
        {-INFINITY, "%#5n", "-$   inf", "-   inf EURO", "YEN-   inf"},
        {5, "a%%b", "a%b", "a%b", "a%b"},
    };
    const auto spelled = [](std::string text) {
        for (const auto &[name, symbol] : {std::pair("EURO", "€"), std::pair("YEN", "￥")})
            if (const size_t at = text.find(name); at != text.npos)
                text.replace(at, strlen(name), symbol);
        return text;
    };
    for (const auto &row : rows) {
        const std::string format = row.format, only = format.substr(0, format.find('|') + 1);
        const std::string used = only.empty() ? format : only;
        EXPECT_EQ(amount(en, used, row.value), spelled(row.en_us)) << format;
        EXPECT_EQ(amount(de, used, row.value), spelled(row.de_de)) << format;
        EXPECT_EQ(amount(ja, used, row.value), spelled(row.ja_jp)) << format;
    }
}

TEST(MoneyFormat, BadFormatsAreRefused) {
    const shipped_object en("en_us/0333.lco");
    constexpr struct {
        const char *format;
        int32_t error;
    } rows[] = {
        {"%", 15},   {"%=", 15},    {"%=*", 15},   {"%5#", 15},  {"%d", 20},
        {"%5%", 20}, {"%5=*n", 20}, {"%0-5n", 20}, {"%.*n", 20}, {"%1$n", 20},
    };
    for (const auto &row : rows)
        EXPECT_EQ(amount(en, row.format, 1), "error " + std::to_string(row.error)) << row.format;
    char text[4];
    EXPECT_EQ(gl_mbsfmon(en, text, 4, "%n", 1.0), -1);
    EXPECT_EQ(taken_error(en), GLS_ERR_NO_ROOM);
    EXPECT_EQ(gl_mbsfmon(en, text, 4, nullptr, 1.0), -1);
    EXPECT_EQ(taken_error(en), GLS_ERR_NULL_ARGUMENT);
}

TEST(MoneyFormat, LongAmountsAreCutAt255Elements) {
    const shipped_object en("en_us/0333.lco");
    const std::string huge = amount(en, "%n", 1e308);
    EXPECT_EQ(huge.size(), 255u);
    EXPECT_EQ(huge.substr(0, 12), "$100,000,000");
    EXPECT_EQ(amount(en, "%2147483648n", 1), std::string(255, ' '));
    EXPECT_EQ(amount(en, "%#99999999999n", 1), std::string(1, ' ') + "$" + std::string(253, ' '));
    EXPECT_EQ(amount(en, "%-300n", 1), "$1.00" + std::string(250, ' '));
    EXPECT_EQ(amount(en, "%.9999n", 1), "$1." + std::string(252, '0'));
}

TEST(MoneyFormat, LocalesThatDoNotSayHow) {
    const int64_t unset = gl_money_unset;
    conventions own;
    own.places = {unset, unset, unset, unset, unset, unset, unset, unset};
    const loaded none(latin1(), own.object(latin1()));
    EXPECT_EQ(amount(none, "[%n][%5n]", 1.5),
              "[][     ]"); // one value for two directives is enough
    EXPECT_EQ(amount(nullptr, "[%i]", 1.5), "[]");
    own.places = {-1, 100, 1, 0, 1, 0, 1, 1}; // only the counts of digits are odd
    const loaded digits(latin1(), own.object(latin1()));
    EXPECT_EQ(amount(digits, "%i", 1.5), "USD 1.50");
    EXPECT_EQ(amount(digits, "%n", 1.5), "$1.50");
    own.places = {2, 2, 1, -1, 1, 0, 1, 1};
    const loaded half(latin1(), own.object(latin1()));
    EXPECT_EQ(amount(half, "%n", 1.5), "");
    EXPECT_EQ(amount(half, "%n", -1.5), "-$1.50");
    // An empty separator makes no room in the left precision.
    const loaded bare(latin1(), conventions{.separator = "", .money_minus = ""}.object(latin1()));
    EXPECT_EQ(amount(bare, "%#7n", -1234.5), "$   1234.50");
}

TEST(MoneyFormat, SeparatorOfNumbersAndSignsByTheFlags) {
    const loaded lc(latin1(), conventions{.separator = "_",
                                          .money_separator = "'",
                                          .money_plus = "plus",
                                          .places = {2, 2, 1, 0, 1, 0, 0, 0}}
                                  .object(latin1()));
    EXPECT_EQ(amount(lc, "%n", 1234567), "($1_234_567.00)");
    EXPECT_EQ(amount(lc, "%n", -1234567), "($1_234_567.00)");
    EXPECT_EQ(amount(lc, "%+n", 1234567), "plus$1_234_567.00");
    EXPECT_EQ(amount(lc, "%+n", -1234567), "-$1_234_567.00");
    EXPECT_EQ(amount(lc, "%+(n", -1234567), "($1_234_567.00)");
    EXPECT_EQ(amount(lc, "%+#4n", -5), "   -$    5.00");
}

TEST(MoneyFormat, MemoryThatRunsOutIsReported) {
    const loaded lc(latin1(), conventions{.symbol = std::string(300, '$')}.object(latin1()));
    counting_allocator allocator;
    for (int call = 0; call < 2; ++call) {
        allocator.fail_call(call);
        EXPECT_EQ(amount(lc, "%n", 1e300), "error 3");
    }
    allocator.fail_call(-1);
    EXPECT_EQ(amount(lc, "%n", 1), std::string(255, '$'));
}

TEST(MoneyFormat, EveryFormOfAnOperationIsTheSame) {
    const shipped_object de("de_de/0333.lco");
    const auto list_form = [](locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format,
                              ...) {
        va_list values;
        va_start(values, format);
        const int32_t count = gl_wcsfmon1(lc, dst, size, format, values);
        va_end(values);
        return count;
    };
    const auto format = wide("%n;%!n"), wanted = wide("1,50 EUR;-2,00 ");
    gl_wchar text[16];
    EXPECT_EQ(list_form(de, text, 16, format.data(), 1.5, -2.0), 15);
    EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), text));
    EXPECT_EQ(gl_wcsfmon(de, text, 16, format.data(), 1.5, -2.0), 15);
    EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), text));
    EXPECT_EQ(gl_wcsfmon(de, text, 15, format.data(), 1.5, -2.0), -1);
    EXPECT_EQ(taken_error(de), GLS_ERR_NO_ROOM);
}

// ---- From text

TEST(MoneyScan, AmountsInTheirLayouts) {
    const shipped_object en("en_us/e01c.lco"), de("de_de/e01c.lco"), ja("ja_jp/e006.lco");
    const loaded separators(latin1(),
                            conventions{.separator = "_", .money_separator = "'"}.object(latin1()));
    const struct {
        locale_rec *lc;
        const char *source, *format;
        double value;
        const char *rest;
    } rows[] = {
        {en, "  $1,234.50 due", "%n", 1234.5, " due"},
        {en, "-$1,234.50", "%n", -1234.5, ""},
        {en, "($1,234.50)x", "%(n", -1234.5, "x"},
        {en, "1,234.50", "%n", 1234.5, ""}, // the symbol may be missing
        {en, "-7", "%n", -7, ""},
        {en, "USD 7.25", "%i", 7.25, ""},
        {en, "-7.25 $", "%!n", -7.25, " $"},
        {en, "total:   $5% of", "total: %n%d", 5, "% of"}, // the rest of the format is not read
        {en, "x$5", "%%%n", 5, ""},                        // "%%" is any one element
        {en, "$12345", "%4n", 123, "45"},
        {en, "$1e5", "%n", 1, "e5"},
        {en, "($5", "%(n", -5, ""}, // the end of the source ends the walk
        {de, "-1.234,50 €", "%n", -1234.5, ""},
        {de, "1.234,50", "%n", 1234.5, ""},
        {de, "1.234,50 €", "%=*^#5.1n", 1234.5, ""},
        {ja, "\x81\x8f-1,235 \x93\xfa", "%n", -1235, " \x93\xfa"},
        {separators, "$1_234'567.5", "%n", 1234567.5, ""},
    };
    for (const auto &row : rows) {
        double value = 99;
        const char *end = gl_mbspmon(row.lc, row.source, row.format, &value);
        ASSERT_NE(end, nullptr) << row.source << " by " << row.format << ": error " << row.lc->err;
        EXPECT_STREQ(end, row.rest) << row.source << " by " << row.format;
        EXPECT_EQ(value, row.value) << row.source << " by " << row.format;
        EXPECT_EQ(taken_error(row.lc), 0) << row.source;
    }
    double value = 0;
    const auto source = wide("-$2.50!"), format = wide("%n");
    EXPECT_EQ(gl_wcspmon(en, source.data(), format.data(), &value), source.data() + 6);
    EXPECT_EQ(value, -2.5);
    EXPECT_STREQ(gl_mbspmon(en, "abc", "ab"), "c");
}

TEST(MoneyScan, WhatDoesNotMatchLeavesTheValueAlone) {
    const shipped_object en("en_us/e01c.lco");
    const loaded none(latin1(), conventions{.places = {2, 2, 5, 0, 1, 0, 1, 1}}.object(latin1()));
    const struct {
        locale_rec *lc;
        const char *source, *format;
        int32_t error;
    } rows[] = {
        {en, "$", "%n", 9},
        {en, "", "%n", 9},
        {en, "abc", "%n", 9},
        {en, "$2147483647.00", "%n", 9},
        {en, "-$2147483647", "%n", 9},
        {en, " $5", "%-n", 9},
        {en, " $5", "%0n", 9},
        {en, "($5)", "%n", 9},
        {en, "$5", "x%n", 22},
        {en, "", "x", 22},
        {en, "", "%%", 22},
        {en, "$5", "%d", 22},
        {en, "$5", "%", 22},
        {en, "$5", "%=", 22},
        {en, "\xff", "x", 1},
        {en, "($5", "%n", 9},
        {none, "$5", "%n", 9},
        {nullptr, "5", "%n", 9},
        {en, "5", nullptr, 2},
        {en, nullptr, "%n", 2},
    };
    for (const auto &row : rows) {
        double value = 99;
        EXPECT_EQ(gl_mbspmon(row.lc, row.source, row.format, &value), nullptr)
            << row.source << " by " << row.format;
        EXPECT_EQ(value, 99);
        EXPECT_EQ(taken_error(row.lc), row.error) << row.source << " by " << row.format;
    }
}

TEST(MoneyScan, PositiveSignsMayBeMissing) {
    const loaded lc(latin1(), conventions{.money_plus = "plus "}.object(latin1()));
    for (const char *source : {"plus $5", "$5"}) {
        double value = 0;
        EXPECT_NE(gl_mbspmon(lc, source, "%n", &value), nullptr) << source;
        EXPECT_EQ(value, 5) << source;
    }
}
