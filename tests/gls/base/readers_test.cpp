#include "gls/engine_test.h"
#include <kestrion/char_desc.h>
#include <kestrion/readers.h>

#include <limits.h>
#include <locale.h>
#include <math.h>

namespace {

TEST(Readers, IntegersTakeAndLeaveExactlyTheirCharacters) {
    const struct {
        std::string text;
        int64_t value;
        std::string rest;
    } rows[] = {
        {"12 34", 12, " 34"},
        {" 12", 12, ""},
        {"  12", 12, ""}, // one blank is skipped, the other is the first character
        {"\n12", 12, ""},
        {"-12x", -12, "x"},
        {"+7\n", 7, "\n"},
        {"x12y", 0, "y"},
        {"-", 0, ""},
        {"--5", 0, "-5"},
        {"", 0, ""},
        {"9223372036854775807 ", INT64_MAX, " "},
        {"9223372036854775808", INT64_MAX, ""},
        {"-9223372036854775808", INT64_MIN, ""},
        {"-99999999999999999999", INT64_MIN, ""},
        {std::string(39, '0') + "7123456789,", 7, ","}, // 50 digits, of which 40 count
        {"4294967295", 4294967295, ""},
    };
    for (const auto &row : rows) {
        const memory_file file(row.text);
        EXPECT_EQ(_gl_get_int(file.file), row.value) << row.text;
        EXPECT_EQ(file.rest(), row.rest) << row.text;
    }
}

TEST(Readers, FloatingNumbersIgnoreTheHostsLocale) {
    setlocale(LC_ALL, "de_DE.UTF-8");
    const struct {
        std::string text;
        double value;
        std::string rest;
    } rows[] = {
        {"1.5\n", 1.5, "\n"},
        {"+2e3x", 2000, "x"},
        {"-0.25", -0.25, ""},
        {"1,5", 1, ",5"},
        {"", 0, ""},
        {"..", 0, ""},
        {"+-1", 0, ""},
        {"1e999", HUGE_VAL, ""},
        {"-1e999", -HUGE_VAL, ""},
        {"1e-999", 0, ""},
        {"0x10", 0, "x10"},
        {"1" + std::string(79, '0') + "5", 1e79, "5"},
    };
    for (const auto &row : rows) {
        const memory_file file(row.text);
        EXPECT_EQ(_gl_get_dbl(file.file), row.value) << row.text;
        EXPECT_EQ(file.rest(), row.rest) << row.text;
    }
}

TEST(Readers, HexadecimalFieldsHaveFixedWidth) {
    const memory_file file("fF0012345678abcdefg1");
    EXPECT_EQ(_gl_get_hex_byte(file.file), 0xFFu);
    EXPECT_EQ(_gl_get_hex(file.file, 4), 0x0012u);
    EXPECT_EQ(_gl_get_hex(file.file, 9), 0x345678abu) << "eight digits are the most";
    EXPECT_EQ(_gl_get_hex(file.file, 6), 0xcdef01u) << "other characters count as 0";
    EXPECT_EQ(_gl_get_hex(file.file, 2), 0u) << "and so does the end";
}

TEST(Readers, WordsEndAtWhiteSpaceOrAtTheBuffersEnd) {
    const std::string word127(127, 'w');
    const struct {
        std::string text;
        int result;
        std::string word;
        std::string rest;
    } rows[] = {
        {"name\nnext", 0, "name", "\nnext"},
        {"\tx", 0, "", "\tx"},
        {"name", -1, "name", ""},
        {word127 + " x", 0, word127, " x"},
        {word127 + "wx", -1, word127, "wx"},
        {word127, -1, word127, ""},
    };
    for (const auto &row : rows) {
        const memory_file file(row.text);
        char buffer[128];
        EXPECT_EQ(_gl_get_str(buffer, sizeof buffer, file.file), row.result);
        EXPECT_EQ(buffer, row.word);
        EXPECT_EQ(file.rest(), row.rest);
    }
}

TEST(Readers, SkippingTakesOnlyWhatItSays) {
    const memory_file file(" \t\n x");
    _gl_skip_space_if_needed(file.file);
    _gl_skip_space_if_needed(file.file);
    EXPECT_EQ(_gl_skip_nl(file.file), 0) << "a tab comes next";
    EXPECT_EQ(fgetc(file.file), '\t');
    EXPECT_EQ(_gl_skip_nl(file.file), 1);
    EXPECT_EQ(_gl_skip_whitespace(file.file), 'x');
    EXPECT_EQ(file.rest(), "x");
    EXPECT_EQ(_gl_skip_whitespace(file.file), -1);
}

TEST(CharDesc, OffsetsCarryAndBorrowWithinTheLength) {
    const struct {
        gl_char_desc desc;
        int32_t offset;
        gl_char_desc wanted;
    } rows[] = {
        {{2, {0xA1, 0xFF}}, 1, {2, {0xA2, 0x00}}},
        {{2, {0xA1, 0x00, 7}}, -1, {2, {0xA0, 0xFF, 7}}},
        {{1, {0xFF}}, 2, {1, {0x01}}},
        {{3, {0, 0, 0}}, -1, {3, {0xFF, 0xFF, 0xFF}}},
        {{4, {0xFF, 0xFF, 0xFF, 0xFF}}, INT_MAX, {4, {0x7F, 0xFF, 0xFF, 0xFE}}},
        {{4, {0x80, 0, 0, 0}}, INT_MIN, {4, {0, 0, 0, 0}}},
        {{5, {1, 2, 3, 4}}, 1, {5, {1, 2, 3, 4}}},
    };
    for (const auto &row : rows) {
        gl_char_desc out;
        _gl_desc_offset(&row.desc, row.offset, &out);
        EXPECT_EQ(out.length, row.wanted.length);
        EXPECT_EQ(memcmp(out.bytes, row.wanted.bytes, 4), 0) << row.offset;
    }
    const gl_char_desc one = {1, {0x41, 1}};
    const gl_char_desc same = {1, {0x41, 2}};
    const gl_char_desc longer = {2, {0x41, 1}};
    EXPECT_EQ(_gl_desc_eq(&one, &same), 1);
    EXPECT_EQ(_gl_desc_eq(&one, &longer), 0);
    EXPECT_EQ(_gl_desc_to_gl_wchar(&longer), 0x4101u);
}

TEST(CharDesc, DigitsAndPowers) {
    EXPECT_EQ(_gl_digits(0, 10), 1);
    EXPECT_EQ(_gl_digits(-99, 10), 2);
    EXPECT_EQ(_gl_digits(INT64_MIN, 16), 16);
    EXPECT_EQ(_gl_digits(5, 1), 0);
    EXPECT_EQ(_gl_udigits(UINT64_MAX, 2), 64);
    EXPECT_EQ(_gl_ipow(-3, 3), -27);
    EXPECT_EQ(_gl_ipow(5, -1), 1);
    EXPECT_EQ(_gl_fpow(3, 2.0), 8.0) << "the exponent comes first";
    EXPECT_EQ(_gl_fpow(-2, 2.0), 0.25);
}

} // namespace
