// Numbers out of text: single ones beside the C library's, and by formats.

#include "gls/numbers/locales.h"
#include "support/random_cases.h"
#include <kestrion/number_format.h>
#include <kestrion/number_scan.h>
#include <kestrion/number_text.h>

#include <errno.h>
#include <gtest/gtest.h>
#include <math.h>
#include <random>
#include <stdarg.h>
#include <stdlib.h>

#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

// Texts that are nearly numbers.
std::string random_text(std::mt19937_64 &random, std::string_view alphabet) {
    std::string text;
    for (size_t length = random() % 24; length > 0; --length)
        text += alphabet[random() % alphabet.size()];
    return text;
}

} // namespace

TEST(NumberText, IntegersAreThoseOfStrtol) {
    std::mt19937_64 random(21);
    for (long i = 0; i < random_cases(2'000'000); ++i) {
        const std::string text =
            random_text(random, i % 2 == 0 ? " +-0123456789xXabz" : "-1234567890");
        const int bases[] = {0, 2, 8, 10, 16, 36, 7};
        const int base = bases[random() % std::size(bases)];
        errno = 0;
        char *their_end;
        const char *end;
        const long theirs = strtol(text.c_str(), &their_end, base);
        ASSERT_EQ(gl_mbstol(nullptr, text.c_str(), &end, base, 0), theirs)
            << text << " base " << base;
        ASSERT_EQ(end, their_end) << text << " base " << base;
        ASSERT_EQ(taken_error(nullptr), errno == ERANGE ? GLS_ERR_RANGE : 0) << text;
        errno = 0;
        const unsigned long unsigned_theirs = strtoul(text.c_str(), &their_end, base);
        ASSERT_EQ(gl_mbstoul(nullptr, text.c_str(), &end, base, 0), unsigned_theirs)
            << text << " base " << base;
        ASSERT_EQ(taken_error(nullptr), errno == ERANGE ? GLS_ERR_RANGE : 0) << text;
        const auto elements = wide(text);
        const gl_wchar *wide_end;
        ASSERT_EQ(gl_wcstoull(nullptr, elements.data(), &wide_end, base, 0), unsigned_theirs);
        ASSERT_EQ(wide_end - elements.data(), their_end - text.c_str()) << text;
        taken_error(nullptr);
    }
}

TEST(NumberText, FloatsAreThoseOfStrtod) {
    std::mt19937_64 random(22);
    const shipped_object de("de_de/0333.lco");
    for (long i = 0; i < random_cases(2'000'000); ++i) {
        std::string text = random_text(random, i % 2 == 0 ? " +-0123456789.eE" : "123456789.e-");
        errno = 0;
        char *their_end;
        const double theirs = strtod(text.c_str(), &their_end);
        const bool out_of_range = errno == ERANGE;
        std::replace(text.begin(), text.end(), '.', ',');
        const char *end;
        const double own = gl_mbstod(de, text.c_str(), &end, 0);
        ASSERT_EQ(own, theirs) << text;
        ASSERT_EQ(signbit(own), signbit(theirs)) << text;
        ASSERT_EQ(end - text.c_str(), their_end - text.c_str()) << text;
        ASSERT_EQ(taken_error(de), out_of_range ? GLS_ERR_FLOAT_RANGE : 0) << text;
    }
}

TEST(NumberText, SignsSeparatorsAndPointOfTheLocale) {
    const shipped_object de("de_de/e01c.lco"), fr("fr_fr/e01c.lco");
    const loaded odd(
        latin1(),
        conventions{.point = "pt", .separator = "''", .plus = "add ", .minus = "less "}.object(
            latin1()));
    const struct {
        locale_rec *lc;
        const char *text;
        int32_t group;
        double value;
        size_t used;
    } rows[] = {
        {de, "1.234.567,25 x", 1, 1234567.25, 12},
        {de, "1.234", 0, 1, 1},
        {de, "1.,5", 1, 1, 1},
        {de, "1..2", 1, 1, 1},
        {de, " -,5", 0, -0.5, 4},
        {de, ",", 0, 0, 0},
        {de, "-", 0, 0, 0},
        {de, "", 0, 0, 0},
        {de, "1,5e", 0, 1.5, 3},
        {de, "1,5e+", 0, 1.5, 3},
        {de, "1,5E-2", 0, 0.015, 6},
        {de, "inf", 0, 0, 0},
        {de, "0x10", 0, 0, 1},
        {fr, "-1\u202f234,5", 1, -1234.5, 10},
        {fr, "1\u202f234", 0, 1, 1},
        {odd, "less 1''234pt5", 1, -1234.5, 14},
        {odd, "add 7", 0, 7, 5},
        {odd, "+7", 0, 7, 2},
        {odd, "less ", 0, 0, 0},
        {odd, "1''pt5", 1, 1, 1},
    };
    for (const auto &row : rows) {
        const char *end;
        EXPECT_EQ(gl_mbstod(row.lc, row.text, &end, row.group), row.value) << row.text;
        EXPECT_EQ(end - row.text, static_cast<long>(row.used)) << row.text;
        EXPECT_EQ(taken_error(row.lc), 0) << row.text;
    }
    EXPECT_EQ(gl_mbstol(fr, "1\u202f234\u202fx", nullptr, 10, 1), 1234);
    EXPECT_EQ(gl_wcstod(odd, wide("2pt5").data(), nullptr, 0), 2.5);
}

TEST(NumberText, TheMonetaryFormHasItsOwnConventions) {
    const loaded lc(latin1(), conventions{.separator = "_",
                                          .money_point = ";",
                                          .money_separator = "'",
                                          .money_minus = "CR"}
                                  .object(latin1()));
    const gl_wchar *end;
    const auto text = wide("CR1'234_567;5e3");
    EXPECT_EQ(gl_wcstod_num_mon(lc, text.data(), &end, 1, 1), -1234567.5);
    EXPECT_EQ(end - text.data(), 13);
    EXPECT_EQ(gl_wcstod_num_mon(lc, text.data() + 2, &end, 1, 0), 1);
    const auto separators = wide("a'b_c");
    EXPECT_EQ(gl_iswgrpsymb(lc, &separators[1], 1, 1), 1);
    EXPECT_EQ(gl_iswgrpsymb(lc, &separators[2], -1, 1), 1);
    EXPECT_EQ(gl_iswgrpsymb(lc, &separators[1], 1, 0), 0);
    EXPECT_EQ(gl_iswgrpsymb(lc, &separators[3], 1, 1), 1);
    EXPECT_EQ(gl_iswgrpsymb(lc, &separators[4], -1, 0), 1);
    EXPECT_EQ(gl_iswcexponent(lc, wide("e+").data()), 2);
    EXPECT_EQ(gl_iswcexponent(lc, wide("E7").data()), 1);
    EXPECT_EQ(gl_iswcexponent(lc, wide("f-").data()), 0);
}

TEST(NumberText, WrongNumbersSayWhy) {
    const char *end;
    const std::string long_text = "0." + std::string(300, '1');
    EXPECT_EQ(gl_mbstod(nullptr, long_text.c_str(), &end, 0), 0);
    EXPECT_EQ(end, long_text.c_str());
    EXPECT_EQ(taken_error(nullptr), GLS_ERR_NO_ROOM);
    EXPECT_EQ(gl_mbstod(nullptr, "1e400", &end, 0), HUGE_VAL);
    EXPECT_EQ(taken_error(nullptr), GLS_ERR_FLOAT_RANGE);
    EXPECT_EQ(gl_mbstol(nullptr, "99999999999999999999", &end, 10, 0), INT64_MAX);
    EXPECT_EQ(taken_error(nullptr), GLS_ERR_RANGE);
    for (const int32_t base : {1, 37, -10}) {
        EXPECT_EQ(gl_mbstol(nullptr, "5", &end, base, 0), 0) << base;
        EXPECT_EQ(taken_error(nullptr), GLS_ERR_ARGUMENT);
        EXPECT_STREQ(end, "5");
    }
    EXPECT_EQ(gl_mbstol(nullptr, nullptr, &end, 10, 0), 0);
    EXPECT_EQ(taken_error(nullptr), GLS_ERR_NULL_ARGUMENT);
}

TEST(NumberText, OneIntegerWithinAWidth) {
    const shipped_object en("en_us/e01c.lco");
    int32_t negative;
    int64_t value;
    uint64_t magnitude;
    EXPECT_EQ(
        _gl_scan_decimal(en, wide("-1,234,567").data(), 6, 10, gl_flag_group, &negative, &value),
        6);
    EXPECT_EQ(value, -1234);
    EXPECT_EQ(negative, 1);
    EXPECT_EQ(_gl_scan_decimal(en, wide(" 5").data(), -1, 10, 0, &negative, &value), 0);
    EXPECT_EQ(_gl_scan_decimal(en, wide("5").data(), 0, 10, 0, &negative, &value), 0);
    EXPECT_EQ(_gl_scan_decimalull(en, wide("18446744073709551616").data(), -1, 10, 0, &negative,
                                  &magnitude),
              20);
    EXPECT_EQ(magnitude, UINT64_MAX);
    EXPECT_EQ(taken_error(en), GLS_ERR_RANGE);
}

// ---- By formats

TEST(NumberScan, StoresWhatTheFormatNames) {
    const shipped_object en("en_us/e01c.lco");
    int a = 0, b = 0;
    unsigned char small = 0;
    short medium = 0;
    double real = 0;
    float single = 0;
    char word[8], characters[3] = "";
    gl_wchar wide_word[8];
    EXPECT_EQ(
        gl_mbsscanf(en, "12,345 and -101: 0xfe 7", "%'d and %b:%hhx%hd", &a, &b, &small, &medium),
        4);
    EXPECT_EQ(a, 12345);
    EXPECT_EQ(b, -5);
    EXPECT_EQ(small, 0xfe);
    EXPECT_EQ(medium, 7);
    EXPECT_EQ(gl_mbsscanf(en, "1,234.5 2.5", "%'lf%f", &real, &single), 2);
    EXPECT_EQ(real, 1234.5);
    EXPECT_EQ(single, 2.5f);
    EXPECT_EQ(gl_mbsscanf(en, " ab cdef", "%s%2c%*c%ls", word, characters, wide_word), 3);
    EXPECT_STREQ(word, "ab");
    EXPECT_STREQ(characters, " c");
    EXPECT_EQ(wide_word[0], gl_wchar{'e'});
    EXPECT_EQ(wide_word[2], 0u);
    EXPECT_EQ(gl_mbsscanf(en, "1234567 50%", "%3d%2d%*d %hd%%", &a, &b, &medium), 3);
    EXPECT_EQ(a, 123);
    EXPECT_EQ(b, 45);
    EXPECT_EQ(gl_mbsscanf(en, "7 8", "%2$d %1$d", &a, &b), 2);
    EXPECT_EQ(a, 8);
    EXPECT_EQ(b, 7);
    EXPECT_EQ(gl_wcsscanf(en, wide("33 x").data(), wide("%q %4s").data(), &a, word), 2);
    EXPECT_EQ(a, 15);
    EXPECT_EQ(taken_error(en), 0);
}

TEST(NumberScan, StopsWithTheCountSoFar) {
    const shipped_object ja("ja_jp/e006.lco");
    const struct {
        const char *source, *format;
        int32_t count, error;
    } rows[] = {
        {"", "%d", 0, 0},
        {"1", "%d %d", 1, 0},
        {"1 ", "%d %d", 1, 0},
        {"1;2", "%d,%d", 1, 22},
        {"1 x", "%d %d", 1, 22},
        {"x", "%f", 0, 22},
        {"1 2", "%d %k", 1, 22},
        {"1 2", "%d %p", 1, 22},
        {"1 2", "%d %", 1, 15},
        {"1 2", "%d %.-d", 1, 45},
        {"1 2", "%1$d %d", 0, 22},
        {"1 2", "%d %1$d", 1, 22},
        {"1 2", "%2$d", 0, 22},
        {"ab", "%2.1c", 0, 22},
        {"ab", "%3c", 0, 0},
        {"2147483648", "%d", 0, 6},
        {"-1", "%u", 0, 6},
        {"300", "%hhu", 0, 6},
        {"1e39", "%f", 0, 6},
        {"1e400", "%lf", 0, 46},
        {"1 \x93", "%d%s", 1, 1},
        {"\x93", "a", 0, 1},
        {"99999999999999999999", "%ld", 0, 6},
    };
    for (const auto &row : rows) {
        char first[16], second[16];
        EXPECT_EQ(gl_mbsscanf(ja, row.source, row.format, first, second), row.count)
            << row.source << " by " << row.format;
        EXPECT_EQ(taken_error(ja), row.error) << row.source << " by " << row.format;
    }
    EXPECT_EQ(gl_mbsscanf(ja, "1", "%d", static_cast<int *>(nullptr)), 0);
    EXPECT_EQ(taken_error(ja), GLS_ERR_NULL_ARGUMENT);
    EXPECT_EQ(gl_mbsscanf(ja, nullptr, "%d"), 0);
    EXPECT_EQ(taken_error(ja), GLS_ERR_NULL_ARGUMENT);
    counting_allocator allocator;
    allocator.fail_call(0);
    EXPECT_EQ(gl_mbspnum(ja, "1", (std::string(40, ' ') + "%d").c_str(), nullptr), -1);
    EXPECT_EQ(taken_error(ja), GLS_ERR_NO_MEMORY);
}

TEST(NumberScan, ListFormsAreTheSame) {
    const auto list_form = [](const char *source, const char *format, ...) {
        va_list pointers;
        va_start(pointers, format);
        const int32_t count = gl_mbsscanf1(nullptr, source, format, pointers);
        va_end(pointers);
        return count;
    };
    const auto wide_list_form = [](const gl_wchar *source, const gl_wchar *format, ...) {
        va_list pointers;
        va_start(pointers, format);
        const int32_t count = gl_wcspnum1(nullptr, source, format, pointers);
        va_end(pointers);
        return count;
    };
    int a = 0, b = 0;
    EXPECT_EQ(list_form("3 4", "%d %d", &a, &b), 2);
    EXPECT_EQ(wide_list_form(wide("5 6").data(), wide("%d %d").data(), &b, &a), 2);
    EXPECT_EQ(gl_wcspnum(nullptr, wide("7").data(), wide("%d").data(), &a), 1);
    EXPECT_EQ(a, 7);
    EXPECT_EQ(b, 5);
}
