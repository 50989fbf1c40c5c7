// Directives of number formats where no other library can be the witness.

#include "gls/numbers/locales.h"
#include "support/guarded_bytes.h"
#include <kestrion/number_format.h>

#include <gtest/gtest.h>
#include <limits.h>
#include <math.h>
#include <stdarg.h>
#include <stdio.h>

// Formats come from tables.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

template <class... values>
std::string formatted(locale_rec *lc, const std::string &format, values... v) {
    char text[512];
    const int32_t count = gl_mbsprintf(lc, text, sizeof text, format.c_str(), v...);
    if (count >= 0)
        return {text, static_cast<size_t>(count)};
    EXPECT_STREQ(text, "") << "what a failed call leaves";
    return "error " + std::to_string(taken_error(lc));
}

// Worked by hand: where the result is not that of C.
constexpr struct {
    const char *format;
    int64_t value;
    const char *en_us, *de_de;
} integers[] = {
    {"%'ld", -1234567, "-1,234,567", "-1.234.567"},
    {"%'012ld", 1234567, "0001,234,567", "0001.234.567"},
    {"%'.9ld", 1088030, "001,088,030", "001.088.030"},
    {"%08.5ld", -42, "-0000042", "-0000042"},
    {"%.0ld", 0, "0", "0"},
    {"%#lo", 0, "00", "00"},
    {"%#lo", 8, "010", "010"},
    {"%#lx", 0, "0x0", "0x0"},
    {"%#lX", 255, "0XFF", "0XFF"},
    {"%#010lx", 255, "0x000000ff", "0x000000ff"},
    {"%+lu", 7, "+7", "+7"},
    {"% lx", 255, " ff", " ff"},
    {"%lq", 27, "123", "123"},
    {"%lb", -5, "-101", "-101"},
    {"%'lb", 255, "11,111,111", "11.111.111"},
    {"%p", 255, "00000000000000FF", "00000000000000FF"},
    {"%4p", 255, "  FF", "  FF"},
    {"%Ld|%%", -3, "-3|%", "-3|%"},
    {"%hhd", 511, "-1", "-1"},
    {"%hu", 65537, "1", "1"},
    {"%-+6ldx", 5, "+5    x", "+5    x"},
};

} // namespace

TEST(NumberFormat, IntegersWhereTheyAreNotThoseOfC) {
    const shipped_object en("en_us/e01c.lco"), de("de_de/0333.lco");
    for (const auto &row : integers) {
        EXPECT_EQ(formatted(en, row.format, row.value), row.en_us) << row.format;
        EXPECT_EQ(formatted(de, row.format, row.value), row.de_de) << row.format;
    }
}

TEST(NumberFormat, TextsArePaddedByColumns) {
    const shipped_object ja("ja_jp/e006.lco"); // two columns and two bytes a character
    const std::string word = "\x93\xfa\x96\x7b";
    EXPECT_EQ(formatted(ja, "%6s|%-6s|%.1s|", word.c_str(), word.c_str(), word.c_str()),
              "  " + word + "|" + word + "  |\x93\xfa|");
    const gl_wchar wide_word[] = {0x93fa, 0x967b, 0};
    EXPECT_EQ(formatted(ja, "%5ls%3lc%c", wide_word, 0x93fau, 'x'), " " + word + " \x93\xfax");
    // Not terminated, but long enough for the precision.
    const char tail[] = {'a', 'b', 'c'};
    EXPECT_EQ(formatted(nullptr, "%.3s", tail), "abc");
}

TEST(NumberFormat, NumberedValuesInAnyOrder) {
    EXPECT_EQ(formatted(nullptr, "%2$s %1$d %2$s", 4, "xy"), "xy 4 xy");
    EXPECT_EQ(formatted(nullptr, "%2$*1$d|%3$.*1$f", 3, 7, 0.5), "  7|0.500");
    EXPECT_EQ(formatted(nullptr, "%1$f %2$ld %3$lc", 1.5, 2L, 'z'), "1.500000 2 z");
}

TEST(NumberFormat, BadFormatsAreRefused) {
    constexpr struct {
        const char *format;
        int32_t error;
    } rows[] = {
        {"%", 15},
        {"abc %", 15},
        {"%l", 15},
        {"%5.", 15},
        {"%'+-#0", 15},
        {"%2$", 15},
        {"%.-d", 45},
        {"%.%", 45},
        {"%k", 22},
        {"%5%", 22},
        {"%n", 22},
        {"%[a]", 22},
        {"%0$d", 22},
        {"%33$d", 22},
        {"%1$d %d", 22},
        {"%d %1$d", 22},
        {"%2$d", 22},
        {"%1$d %3$d", 22},
        {"%1$d %1$s", 22},
        {"%1$*d", 22},
        {"%*1$d", 22},
        {"%1$*0$d", 22},
        {"%99999999999d", 14},
        {"%.2147483648d", 14},
        {"%300d", 14},
        {"%-300d", 14},
        {"%0256d", 14},
        {"%100f", 14},
        {"%.300f", 14},
        {"%.2147483648e", 14},
        {"%4294967296c", 14},
    };
    for (const auto &row : rows)
        EXPECT_EQ(formatted(nullptr, row.format, 0, 0, 0), "error " + std::to_string(row.error))
            << row.format;
    EXPECT_EQ(formatted(nullptr, "%s", static_cast<const char *>(nullptr)), "error 2");
    EXPECT_EQ(formatted(nullptr, "%ls", static_cast<const gl_wchar *>(nullptr)), "error 2");
    EXPECT_EQ(formatted(nullptr, "%*d", INT_MIN, 1), "error 14");
    EXPECT_EQ(formatted(nullptr, "%f", 1e300), "error 14");
    char text[4];
    EXPECT_EQ(gl_mbsprintf(nullptr, text, 4, nullptr), -1);
    EXPECT_EQ(taken_error(nullptr), GLS_ERR_NULL_ARGUMENT);
    EXPECT_EQ(gl_mbsprintf(nullptr, text, 0, "x"), -1);
    EXPECT_EQ(taken_error(nullptr), GLS_ERR_NO_ROOM);
}

TEST(NumberFormat, WhatTheCodeSetDoesNotHaveIsRefused) {
    const loaded utf8(four_byte());
    const gl_wchar strange[] = {'a', 0xe4b8, 0};
    EXPECT_EQ(formatted(utf8, "%ls", strange), "error 1");
    EXPECT_EQ(formatted(utf8, "%s", "a\xe4\xb8"), "error 1");
    EXPECT_EQ(formatted(utf8, "%c", 0xe4), "error 1");
    EXPECT_EQ(formatted(utf8, "%lc", 0xffffffffu), "error 1");
    EXPECT_EQ(formatted(utf8, "\xe4 %d", 1), "error 1");
}

TEST(NumberFormat, CodeSetsOfWideUnits) {
    const loaded units(wide_units(), wide_unit_object());
    const auto spelled = [](const std::string &text) {
        std::string units_of;
        for (const char c : text)
            units_of += std::string(1, '\0') + c;
        return units_of;
    };
    char text[64];
    const std::string format = spelled("%'ld") + std::string(2, '\0');
    const int32_t count = gl_mbsprintf(units, text, sizeof text, format.c_str(), 1234567L);
    EXPECT_EQ(std::string(text, static_cast<size_t>(count < 0 ? 0 : count)), spelled("1,234,567"));
    EXPECT_EQ(gl_mbsprintf(units, text, 20, format.c_str(), 1234567L), 18);
    EXPECT_EQ(gl_mbsprintf(units, text, 19, format.c_str(), 1234567L), -1);
    EXPECT_EQ(units.error(), GLS_ERR_NO_ROOM);
}

TEST(NumberFormat, ConventionsOfOddLocales) {
    struct odd {
        const char *what;
        conventions own;
        const char *format;
        double value;
        const char *text;
    };
    const std::vector<odd> rows = {
        {"groups 3 2 repeated", {.groups = "3 3 2 0"}, "%'.0f", 123456789, "12,34,56,789"},
        {"groups 3 2 without end", {.groups = "2 3 2"}, "%'.0f", 123456789, "1234,56,789"},
        {"one group", {.groups = "2 3 -1"}, "%'.0f", 123456789, "123456,789"},
        {"first size 0", {.groups = "2 0 3"}, "%'.0f", 123456789, "123456789"},
        {"15 sizes", {.groups = "15 1 1 1 1 1 1 1 1 1 1 1 1 1 1 0"}, "%'.0f", 123, "1,2,3"},
        {"no groups", {.groups = "0"}, "%'.0f", 123456789, "123456789"},
        {"huge size", {.groups = "2 4294967294 0"}, "%'.0f", 123456789, "123456789"},
        {"empty texts", {.point = "", .separator = "", .minus = ""}, "%'.1f", -1234.5, "12345"},
        {"long texts",
         {.point = "<point>", .separator = "::", .minus = "minus "},
         "%'.1f",
         -1234.5,
         "minus 1::234<point>5"},
        {"long texts padded",
         {.point = "<p>", .separator = "::", .minus = "- "},
         "%'015.1f",
         -1234.5,
         "- 0001::234<p>5"},
    };
    for (const odd &row : rows) {
        const loaded lc(latin1(), row.own.object(latin1()));
        EXPECT_EQ(formatted(lc, row.format, row.value), row.text) << row.what;
    }
    // 8 separators of 40 characters are more than a number may take.
    const loaded endless(
        latin1(),
        conventions{.separator = std::string(40, 'x'), .groups = "2 1 0"}.object(latin1()));
    EXPECT_EQ(formatted(endless, "%'d", 123456789), "error 14");
}

// A positive sign is measured by the negative one where characters may have several bytes.
TEST(NumberFormat, WidthOfAPositiveSign) {
    const conventions own = {.plus = "plus", .minus = "-"};
    const loaded single(latin1(), own.object(latin1())), multi(two_byte(), own.object(two_byte()));
    EXPECT_EQ(formatted(single, "%+6d|% 6d", 5, 5), " plus5|     5");
    EXPECT_EQ(formatted(multi, "%+6d|% 6d", 5, 5), "    plus5|        5");
}

TEST(NumberFormat, EveryFormOfAnOperationIsTheSame) {
    const shipped_object de("de_de/e01c.lco");
    const auto list_form = [](locale_rec *lc, char *dst, int32_t size, const char *format, ...) {
        va_list values;
        va_start(values, format);
        const int32_t count = gl_mbsprintf1(lc, dst, size, format, values);
        va_end(values);
        return count;
    };
    const auto wide_list_form = [](locale_rec *lc, gl_wchar *dst, int32_t size,
                                   const gl_wchar *format, ...) {
        va_list values;
        va_start(values, format);
        const int32_t count = gl_wcsfnum1(lc, dst, size, format, values);
        va_end(values);
        return count;
    };
    char text[32];
    const std::string wanted = "-1.234,50 x";
    EXPECT_EQ(gl_mbsfnum(de, text, 32, "%'.2f %s", -1234.5, "x"), 11);
    EXPECT_EQ(text, wanted);
    EXPECT_EQ(list_form(de, text, 32, "%'.2f %s", -1234.5, "x"), 11);
    EXPECT_EQ(text, wanted);
    gl_wchar elements[32];
    const auto format = wide("%'.2f %s");
    const auto wanted_elements = wide(wanted);
    const auto matches = [&] {
        return std::equal(wanted_elements.begin(), wanted_elements.end(), elements);
    };
    EXPECT_EQ(gl_wcsfnum(de, elements, 12, format.data(), -1234.5, "x"), 11);
    EXPECT_TRUE(matches());
    EXPECT_EQ(gl_wcsprintf(de, elements, 12, format.data(), -1234.5, "x"), 11);
    EXPECT_TRUE(matches());
    EXPECT_EQ(wide_list_form(de, elements, 12, format.data(), -1234.5, "x"), 11);
    EXPECT_TRUE(matches());
    EXPECT_EQ(gl_wcsprintf(de, elements, 11, format.data(), -1234.5, "x"), -1);
    EXPECT_EQ(taken_error(de), GLS_ERR_NO_ROOM);
    EXPECT_EQ(elements[0], 0u);
}

TEST(NumberFormat, LongFormatsAndRoomsComeFromTheEngineAllocator) {
    const std::string format = std::string(40, 'x') + "%d";
    for (int call = 0; call < 2; ++call) {
        counting_allocator allocator;
        char text[200];
        allocator.fail_call(call);
        EXPECT_EQ(gl_mbsprintf(nullptr, text, 200, format.c_str(), 5), -1);
        EXPECT_EQ(taken_error(nullptr), GLS_ERR_NO_MEMORY);
        EXPECT_STREQ(text, "");
        allocator.fail_call(-1);
        EXPECT_EQ(gl_mbsprintf(nullptr, text, 200, format.c_str(), 5), 41);
    }
    counting_allocator allocator;
    allocator.fail_call(0); // 31 elements and 126 bytes need none
    char text[127];
    EXPECT_EQ(gl_mbsprintf(nullptr, text, 127, "%-40d%s%c%c%c%c%c%c%c%c%c%c%c%c", 1,
                           "abcdefghijklmnopqrstuvwxyz", 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12),
              78);
    EXPECT_FALSE(allocator.failed());
}

TEST(IntegerFormat, TextsOfEveryBase) {
    const shipped_object de("de_de/e01c.lco");
    char text[128];
    EXPECT_EQ(gl_ltombs(de, -1234567, text, 11, 10, 1), 10);
    EXPECT_STREQ(text, "-1.234.567");
    EXPECT_EQ(gl_ltombs(de, INT64_MIN, text, sizeof text, 10, 0), 20);
    EXPECT_STREQ(text, "-9223372036854775808");
    EXPECT_EQ(gl_ultombs(de, UINT64_MAX, text, sizeof text, 2, 1), 64 + 21);
    EXPECT_EQ(gl_ultombs(de, UINT64_MAX, text, sizeof text, 36, 0), 13);
    EXPECT_STREQ(text, "3w5e11264sgsf");
    gl_wchar elements[8];
    EXPECT_EQ(gl_ltowcs(de, -77, elements, 5, 8, 0), 4);
    for (const int32_t base : {-1, 0, 1, 37}) {
        EXPECT_EQ(gl_ltombs(de, 1, text, sizeof text, base, 0), -1) << base;
        EXPECT_EQ(taken_error(de), GLS_ERR_ARGUMENT);
        EXPECT_EQ(gl_ultowcs(de, 1, elements, 8, base, 0), -1) << base;
        EXPECT_EQ(taken_error(de), GLS_ERR_ARGUMENT);
    }
    EXPECT_EQ(gl_ltombs(de, -1234567, text, 10, 10, 1), -1);
    EXPECT_EQ(taken_error(de), GLS_ERR_NO_ROOM);
}

TEST(FormatModifiers, AreReadUpToTheFirstOtherElement) {
    const struct {
        const char *text, *rest;
        int32_t width, precision;
        uint32_t flags;
    } rows[] = {
        {"-06.3Ey", "Ey", 6, 3, gl_flag_left | gl_flag_zero},
        {"'+ #0'd", "'d", -1, -1,
         gl_flag_group | gl_flag_plus | gl_flag_blank | gl_flag_alternate | gl_flag_zero},
        {"02.2y", "y", 2, 2, gl_flag_zero},
        {"5.d", "d", 5, 0, 0},
        {"99999999999.10000d", "d", 9999, 9999, 0},
        {"*d", "*d", -1, -1, 0},
        {"", "", -1, -1, 0},
    };
    for (const auto &row : rows) {
        const auto text = wide(row.text), rest = wide(row.rest);
        const gl_wchar *at = text.data();
        int32_t width = 0, precision = 0;
        uint32_t flags = 0;
        EXPECT_EQ(_gl_scan_format_modifiers(nullptr, &at, &width, &precision, &flags), 0)
            << row.text;
        EXPECT_EQ(text.data() + text.size() - at, static_cast<long>(rest.size())) << row.text;
        EXPECT_EQ(width, row.width) << row.text;
        EXPECT_EQ(precision, row.precision) << row.text;
        EXPECT_EQ(flags, row.flags) << row.text;
    }
}

TEST(FloatKinds, AreTold) {
    EXPECT_EQ(CheckForInfinity(INFINITY), 2);
    EXPECT_EQ(CheckForInfinity(-INFINITY), 1);
    EXPECT_EQ(CheckForInfinity(NAN), 0);
    EXPECT_EQ(CheckForNaN(-NAN), 2);
    EXPECT_EQ(CheckForNaN(INFINITY), 0);
}
