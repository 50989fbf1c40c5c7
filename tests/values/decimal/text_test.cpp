// Texts of decimals. The locale starts as each test says, without an installation.

#include <kestrion/decimal_text.h>

#include <kestrion/gentcb.h>
#include <kestrion/gls_env.h>

#include <gtest/gtest.h>

#include <math.h>

#include <memory>

#include "base/locale_start.h"
#include "support/failing_malloc.h"
#include "values/decimal/plain_reader.h"
#include "values/decimal/random_decimals.h"

namespace {

const plain::conventions neutral = {".", "", "", "-", {}};
const plain::conventions english = {".", ",", "+", "-", {3, 0}};
const plain::conventions all[] = {
    neutral,
    english,
    {",", " ", "", "-", {3, 0}},
    {",", ".", "", "-", {3, -1}},
    {"\xd9\xab", "\xd9\xac", "", "-", {3, 2, 0}},
    {".", ",", "p", "m", {2, 3, 1, 5}},
};

lconv_rec record_of(const plain::conventions &from) {
    lconv_rec made = {};
    strcpy(made.radix, from.radix.c_str());
    strcpy(made.thousands_sep, from.separator.c_str());
    strcpy(made.positive_sign, from.plus.c_str());
    strcpy(made.negative_sign, from.minus.c_str());
    made.group_count = static_cast<int32_t>(from.groups.size());
    for (size_t i = 0; i < from.groups.size(); ++i)
        made.groups[i] = from.groups[i];
    return made;
}

plain::read read(const plain::conventions &in, std::string_view text) {
    const lconv_rec record = record_of(in);
    plain::read result;
    result.answer =
        deccvasc_int(text.data(), static_cast<int>(text.size()), &result.value, &record);
    return result;
}

dec_value value_of(const char *text) {
    const plain::read result = plain::decimal(neutral, text);
    EXPECT_EQ(result.answer, 0) << text;
    return result.value;
}

std::string written(const dec_value &value, int length, int right) {
    std::string buffer(static_cast<size_t>(length) + 1, '#');
    const int answer = dectoasc_net(&value, buffer.data(), length, right);
    EXPECT_EQ(buffer.back(), '#') << "nothing past the length";
    buffer.pop_back();
    EXPECT_EQ(answer, length == 0 || buffer.find('*') != std::string::npos ? -1 : 0);
    return buffer;
}

// -- Reading -------------------------------------------------------------------------------------

// A text that is a number more often than not: digits, radix and separators of the conventions, now
// and then a piece of anything else.
std::string random_text(decimal_source &source, const plain::conventions &in) {
    static const char *const digits[] = {"0", "1", "5", "9", "00", "123", "456", "9999999"};
    static const char *const others[] = {"e",  "E", "e-", "e+", "-",  "+",    "p",
                                         "m",  " ", "0x", "0X", "x",  "a",    "F",
                                         "\n", ".", ",",  "1",  "\t", "\xd9", "e99"};
    std::string text;
    const unsigned noise = 3 + source.below(12);
    for (unsigned length = source.below(10); length > 0; --length) {
        if (source.below(noise) == 0)
            text += others[source.below(std::size(others))];
        else if (source.below(4) == 0)
            text += source.below(3) == 0 ? in.radix : in.separator;
        else
            text += digits[source.below(std::size(digits))];
        if (source.below(200) == 0)
            text += '\0';
    }
    return text;
}

TEST(DecimalReading, AcceptsAndRefusesWhatThePlainReaderDoes) {
    decimal_source source(11);
    long accepted = 0;
    const long cases = random_cases(1000000);
    for (long i = cases; i > 0; --i) {
        const plain::conventions &in = all[source.below(std::size(all))];
        const std::string text = random_text(source, in);
        const plain::read wanted = plain::decimal(in, text);
        const std::unique_ptr<char[]> exact(new char[text.size()]); // a byte past it is an error
        memcpy(exact.get(), text.data(), text.size());
        const plain::read got = read(in, {exact.get(), text.size()});
        ASSERT_TRUE(got.answer == wanted.answer && same(got.value, wanted.value))
            << "'" << text << "' with radix " << in.radix << ": " << got.answer << ' ' << got.value
            << ", wanted " << wanted.answer << ' ' << wanted.value;
        accepted += got.answer == 0;
    }
    EXPECT_GT(accepted, cases / 4);
    EXPECT_LT(accepted, cases * 3 / 4);
}

TEST(DecimalReading, NamedTexts) {
    const struct {
        const char *text;
        int answer;
        const char *wanted; // as dectoasc writes it; "" for NULL
    } rows[] = {
        {"   ", 0, ""},
        {"", 0, ""},
        {"-", -1213, "0.0"},
        {"- 5", -1213, "0.0"},
        {".", 0, "0.0"},
        {"-.", 0, "0.0"},
        {".5", 0, "0.5"},
        {"1e", 0, "1.0"},
        {"1 2", -1213, "0.0"},
        {"1 \nxyz", 0, "1.0"},
        {"1.2.3", -1213, "0.0"},
        {"0x10", 0, "16.0"},
        {"-0X10", 0, "-16.0"},
        {"0x", 0, "0.0"},
        {"0x80000000", 0, ""},
        {"-0x80000000", 0, ""},
        {"0x100000001", 0, "1.0"},
        {"0x1g", -1213, "0.0"},
        {"1234567890123456789012345678901299", 0, "1234567890123456789012345678901200.0"},
        {"123456789012345678901234567890199", 0, "123456789012345678901234567890100.0"},
        {"9999999999999999999999999999999999", 0, "9999999999999999999999999999999900.0"},
        {"1E125", 0, "1e125"},
        {"1E126", -1200, "0.0"},
        {"1E127", -1200, "0.0"},
        {"1E-130", 0, "1e-130"},
        {"1E-131", -1201, "0.0"},
        {"0e500", -1200, "0.0"},
        {"0e-500", -1201, "0.0"},
        {"1e99999999999999999999", -1200, "0.0"},
        {"1e-99999999999999999999", -1201, "0.0"},
        {"1,2,3", 0, "123.0"},
        {"1,,234", 0, "1234.0"},
        {"1,2,345", 0, "12345.0"},
        {"12,34", -1213, "0.0"},
        {"1,234e5", -1213, "0.0"},
        {"1,234 \n", -1213, "0.0"},
        {"1,234.0e5", 0, "123400000.0"},
        {"1.2,3", -1213, "0.0"},
        {"+5", 0, "5.0"},
    };
    for (const auto &row : rows) {
        const plain::read got = read(english, row.text);
        EXPECT_EQ(got.answer, row.answer) << row.text;
        std::string text = written(got.value, 40, -1);
        text.erase(text.find_last_not_of(' ') + 1);
        EXPECT_EQ(text, row.wanted) << row.text;
    }
    const std::string zeros(200, '0');
    EXPECT_TRUE(same(read(neutral, "0." + zeros).value, loops::zero()));
    EXPECT_EQ(read(neutral, "1" + zeros).answer, -1200);
    EXPECT_EQ(read(neutral, "0." + zeros + "1").answer, -1201);
    EXPECT_TRUE(same(read(all[2], "1,5 6").value, value_of("1.56"))) << "blank separators anywhere";
}

TEST(DecimalReading, SignTextsTakeThePlaceOfPlusAndMatchByTheirFirstBytes) {
    plain::conventions in = {".", "", "p", "\xe2\x88\x92", {}};
    EXPECT_EQ(read(in, "+5").answer, -1213);
    EXPECT_TRUE(same(read(in, "p5").value, value_of("5")));
    EXPECT_TRUE(same(read(in, "-5").value, value_of("-5")));
    in.minus = "";
    EXPECT_TRUE(same(read(in, "5").value, value_of("5"))) << "an empty sign is never there";
}

TEST(DecimalReading, StartFailuresComeAfterBlanksAndCheckCanBeSwitchedOff) {
    dec_value got;
    locale_start_result = -23101;
    EXPECT_EQ(deccvasc(" ", 1, &got), 0);
    EXPECT_EQ(got.sign, -1);
    EXPECT_EQ(deccvasc("5", 1, &got), -23101);
    EXPECT_TRUE(same(got, loops::zero()));
    char text[4];
    const dec_value five = value_of("5");
    EXPECT_EQ(dectoasc(&five, text, 4, 0), -23101);
    locale_start_result = 0;
    EXPECT_EQ(read(english, "12,34").answer, -1213);
    setenv("QVT_NOT_STRICT_THOUS_SEP", "1", 1);
    EXPECT_TRUE(same(read(english, "12,34").value, value_of("1234")));
}

TEST(DecimalReading, HelpersStopWhereTheyShould) {
    int32_t integer = 7;
    const char *text = "-12x";
    EXPECT_EQ(decstoi(text, &integer), text + 3);
    EXPECT_EQ(integer, -12);
    EXPECT_EQ(*decstoi("x", &integer), 'x');
    EXPECT_EQ(integer, 0);
    EXPECT_EQ(*decstoi("99999999999999", &integer), '\0');
    EXPECT_EQ(integer, 1000000);
    uint32_t hexadecimal;
    EXPECT_EQ(decxtoi("Ff  \nz", &hexadecimal), 0);
    EXPECT_EQ(hexadecimal, 255u);
    EXPECT_EQ(decxtoi("1 2", &hexadecimal), -1);
}

// -- Writing -------------------------------------------------------------------------------------

TEST(DecimalWriting, NamedTexts) {
    const struct {
        const char *value;
        int right, length;
        const char *wanted;
    } rows[] = {
        {"1234.56", 2, 7, "1234.56"},
        {"1234.56", 2, 6, "1234.6"},
        {"1234.56", 2, 5, "1235 "},
        {"1234.56", 2, 4, "1235"},
        {"1234.56", 2, 3, "***"},
        {"99.96", 2, 4, "100 "},
        {"-0.4", 0, 2, "0 "},
        {"-0.4", 0, 1, "*"},
        {"-0.001", 2, 5, "0.00 "},
        {"-0.001", 2, 4, "****"},
        {"9.96e99", -1, 5, "1e100"},
        {"9.96e99", -1, 6, "1e100 "},
        {"9.96e99", -1, 7, "9.96e99"},
        {"0.00000001", -1, 10, "0.00000001"},
        {"0.00000001", -1, 6, "1e-08 "},
        {"0.00000001", -1, 5, "*****"},
        {"0", -1, 4, "0.0 "},
        {"0", 3, 8, "0.000   "},
        {"1", 2147483647, 6, "1.0000"},
        {"-1e-130", -1, 8, "-1e-130 "},
        {"1e125", 0, 20, "1e125               "},
        {"12e120", -5, 9, "1.2e121  "},
        {"5", 0, 0, ""},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(written(value_of(row.value), row.length, row.right), row.wanted)
            << row.value << " in " << row.length;
    }
    const dec_value null = {.sign = -1}, bad = {.sign = 5};
    EXPECT_EQ(written(null, 3, 2), "   ");
    char text[4] = "abc";
    EXPECT_EQ(dectoasc_net(&bad, text, 3, 1), -1);
    EXPECT_EQ(dectoasc_net(&null, text, -1, 1), -1);
    EXPECT_STREQ(text, "abc");
}

// What is written reads back as the value rounded to the decimals that are shown, these are as many
// as fit, and stars come only when nothing fits.
TEST(DecimalWriting, EveryWidthShowsAsMuchAsItCan) {
    decimal_source source(12);
    for (long i = random_cases(500) + 25; i > 0; --i) {
        const dec_value value = source.any();
        if (value.ndigits < 1)
            continue;
        for (int right : {-1, 0, 1, 2, 7, 40}) {
            const int own = std::max(2 * (value.ndigits - value.exponent) -
                                         (value.digits[value.ndigits - 1] % 10 == 0),
                                     1);
            const int asked = right < 0 ? own : right;
            for (int length = 1; length <= 40; ++length) {
                std::string text = written(value, length, right);
                text.erase(text.find_last_not_of(' ') + 1);
                if (text.find('*') != std::string::npos) {
                    ASSERT_LT(length, 8 + (value.sign == 0)) << value << right;
                    continue;
                }
                const plain::read back = plain::decimal(neutral, text);
                ASSERT_EQ(back.answer, 0) << text;
                const size_t e = text.find('e'), point = text.find('.');
                const int decimals = point == std::string::npos
                                         ? 0
                                         : static_cast<int>(std::min(e, text.size()) - point - 1);
                dec_value wanted = value;
                if (e == std::string::npos) {
                    ASSERT_LE(decimals, asked);
                    ASSERT_TRUE(decimals == asked ||
                                length - static_cast<int>(text.size()) <= 1 + (value.sign == 0))
                        << text << " in " << length;
                    decround(&wanted, decimals);
                } else {
                    decround(&wanted, decimals - std::stoi(text.substr(e + 1)));
                }
                dec_value difference;
                decsub(&wanted, &back.value, &difference);
                ASSERT_EQ(dec_is_zero(&difference), 1)
                    << text << " of " << value << ' ' << right << ' ' << length;
            }
        }
    }
}

TEST(DecimalWriting, WhatIsPrintedReadsBack) {
    decimal_source source(13);
    for (long i = random_cases(1000000); i > 0; --i) {
        dec_value value = source.any(), back;
        char text[300];
        ASSERT_EQ(dectoasc_net(&value, text, sizeof text, -1), 0);
        ASSERT_EQ(deccvasc_net(text, sizeof text, &back), 0) << value;
        while (value.ndigits > 0 && value.digits[value.ndigits - 1] == 0)
            --value.ndigits; // what a rounding left is not in the text
        ASSERT_TRUE(same(back, value)) << value << ' ' << back;
    }
}

// The digits of a value by hand: its decimal text, rounded half up.
std::string rounded_digits(const dec_value &value, int mode, int ndigit, int *position) {
    std::string digits;
    for (int i = 0; i < value.ndigits; ++i) {
        digits += static_cast<char>('0' + value.digits[i] / 10);
        digits += static_cast<char>('0' + value.digits[i] % 10);
    }
    *position = value.ndigits == 0 ? 0 : value.exponent * 2;
    if (!digits.empty() && digits[0] == '0') {
        digits.erase(0, 1);
        --*position;
    }
    const int count = mode == 0                             ? std::max(ndigit, 0)
                      : mode == 2 && ndigit + *position < 0 ? ndigit - *position
                                                            : ndigit + *position;
    if (count < 0)
        return "none";
    const auto kept = static_cast<size_t>(count);
    const bool up = digits.size() > kept && digits[kept] >= '5';
    digits.resize(kept, '0');
    size_t at = kept;
    while (up && at > 0 && digits[at - 1] == '9')
        digits[--at] = '0';
    if (up && at > 0)
        ++digits[at - 1];
    if (up && at == 0) {
        digits.insert(digits.begin(), '1');
        digits.resize(kept + (mode != 0));
        ++*position;
    }
    if (mode == 2 && digits.empty())
        digits.push_back('0');
    return digits;
}

TEST(DigitTexts, AreTheRoundedDigitsInEveryMode) {
    decimal_source source(14);
    for (long i = random_cases(1000000); i > 0; --i) {
        const dec_value value = source.any();
        if (value.sign == -1)
            continue;
        const int mode = static_cast<int>(source.below(3)),
                  ndigit = static_cast<int>(source.below(i % 50 == 0 ? 400 : 50)) - 10;
        int position = 99, negative = 99, wanted_position;
        const std::string wanted = rounded_digits(value, mode, ndigit, &wanted_position);
        const char *text = deccvt(&value, ndigit, &position, &negative, mode);
        ASSERT_EQ(text != nullptr ? text : "none", wanted) << value << ' ' << mode << ' ' << ndigit;
        ASSERT_EQ(position, wanted_position) << value << ' ' << mode << ' ' << ndigit;
        ASSERT_EQ(negative, value.sign == 0);
        if (mode == 2)
            continue;
        char copy[600];
        const std::string copied = wanted == "none" ? "" : wanted;
        const int size = static_cast<int>(copied.size()) + 1;
        ASSERT_EQ(qvt_deccvt(&value, ndigit, &position, &negative, mode, copy, size), 0);
        ASSERT_EQ(copy, copied);
        ASSERT_EQ(qvt_deccvt(&value, ndigit, &position, &negative, mode, copy, size - 1), -1273);
    }
}

TEST(DigitTexts, NullIsBlanksAndLeavesTheOutValues) {
    const dec_value null = {.sign = -1};
    int position = 7, negative = 8;
    EXPECT_STREQ(deccvt(&null, 3, &position, &negative, 0), "   ");
    EXPECT_STREQ(deccvt(&null, -3, &position, &negative, 2), "0");
    EXPECT_EQ(position, 7);
    EXPECT_EQ(negative, 8);
    char text[4] = "abc";
    EXPECT_EQ(qvt_dececvt(&null, 2, &position, &negative, text, 0), -1273);
    EXPECT_STREQ(text, "abc");
}

TEST(DigitTexts, RefusedMemoryIsToldAndLeavesNothingHalfMade) {
    gentcb *block = CheckGenInit();
    const dec_value value = value_of("1e100");
    int position, negative;
    char text[300];
    const auto empty_block = [&] {
        free(block->digit_text);
        block->digit_text = nullptr;
        block->digit_capacity = 0;
    };
    for (size_t k = 1; k <= 2; ++k) {
        empty_block();
        failing_malloc::scope refused(k);
        strcpy(text, "as it was");
        EXPECT_EQ(qvt_decfcvt(&value, 60, &position, &negative, text, 300), k == 1 ? -1273 : 0);
        EXPECT_STREQ(text, k == 1 ? "as it was" : "");
        EXPECT_EQ(block->digit_text, nullptr);
        EXPECT_EQ(block->digit_capacity, 0);
    }
    {
        failing_malloc::scope refused(1);
        EXPECT_EQ(dececvt(&value, 5, &position, &negative), nullptr);
    }
    {
        failing_malloc::scope refused(1);
        EXPECT_EQ(dectoasc_net(&value, text, 10, 0), -1);
    }
    EXPECT_STREQ(dececvt(&value, 5, &position, &negative), "10000");
    EXPECT_EQ(deccvt(&value, INT32_MAX, &position, &negative, 1), nullptr);
    EXPECT_EQ(deccvt_int(&value, 5, &position, &negative, 0, nullptr), nullptr);
}

TEST(FloatTexts, CutTheirZerosBelowOneAndShowTheLocalesMinus) {
    lconv_rec mine = record_of({".", "", "", "--", {}});
    lconv_rec *before = CheckGlsEnv()->state->lconv;
    CheckGlsEnv()->state->lconv = &mine;
    const struct {
        const char *value;
        int length;
        const char *wanted;
    } rows[] = {
        {"0.1", 14, "0.1           "}, {"0", 14, "0.00          "}, {"1.5", 14, "1.500000000000"},
        {"-0.5", 6, "--0.5 "},         {"-1e-9", 8, "--1e-09 "},    {"0.001", 9, "0.001    "},
    };
    for (const auto &row : rows) {
        char text[15] = {};
        const dec_value value = value_of(row.value);
        EXPECT_EQ(dbltoasc(&value, text, row.length, 16), 0);
        EXPECT_STREQ(text, row.wanted) << row.value;
    }
    CheckGlsEnv()->state->lconv = before;
}

TEST(ExponentNotation, CutsZerosAndTakesThePositionOfTheRoundedDigits) {
    const struct {
        const char *value;
        int position, length;
        const char *wanted;
    } rows[] = {
        {"-0.00125", -2, 9, "-1.25e-03"}, {"-0.00125", -2, 8, "-1.3e-03"},
        {"120", 3, 9, "1.2e02"},          {"9.96e99", 100, 5, "1e100"},
        {"9.96e99", 100, 4, ""},          {"1e-100", -99, 7, "1e-100"},
    };
    for (const auto &row : rows) {
        char text[10] = {};
        const dec_value value = value_of(row.value);
        EXPECT_EQ(dectoexp_int(&value, text, row.length, row.position, value.sign == 0,
                               CheckGenInit(), nullptr),
                  *row.wanted == '\0');
        EXPECT_STREQ(text, row.wanted);
    }
}

TEST(ExponentNotation, HoldsItsSizeAlsoForAPositionThatIsNotTheValues) {
    const dec_value value = value_of("-9.96e-101");
    for (int length = 0; length < 16; ++length)
        for (int position : {-200, -99, 0, 1, 100, 200}) {
            std::string text(static_cast<size_t>(length) + 1, '#');
            dectoexp_int(&value, text.data(), length, position, 1, CheckGenInit(), nullptr);
            EXPECT_EQ(text.back(), '#') << length << ' ' << position;
        }
}

// -- Floating point ------------------------------------------------------------------------------

TEST(DecimalFloats, AreTheNearestBothWays) {
    decimal_source source(15);
    for (long i = random_cases(300000); i > 0; --i) {
        const dec_value value = source.any();
        if (value.sign == -1)
            continue;
        std::string text(value.sign == 0 ? "-0" : "0");
        for (int d = 0; d < value.ndigits; ++d) {
            text += static_cast<char>('0' + value.digits[d] / 10);
            text += static_cast<char>('0' + value.digits[d] % 10);
        }
        text += 'e';
        text += std::to_string(2 * (value.exponent - value.ndigits));
        double got;
        ASSERT_EQ(dectodbl(&value, &got), 0);
        ASSERT_EQ(got, strtod(text.c_str(), nullptr)) << text;
        dec_value back;
        double again;
        if (got != 0 && fabs(got) < 1e125) {
            ASSERT_EQ(deccvdbl(&back, got), 0) << text;
            ASSERT_EQ(dectodbl(&back, &again), 0);
            ASSERT_EQ(again, got) << "17 digits are enough";
        }
        float narrow;
        dectoflt(&value, &narrow);
        ASSERT_EQ(narrow, fabs(got) > 3.4028234663852886e38
                              ? static_cast<float>(copysign(INFINITY, got))
                              : static_cast<float>(got));
    }
}

TEST(DecimalFloats, NullsRangesAndDigits) {
    dec_value got;
    EXPECT_EQ(deccvdbl(&got, 0.1), 0);
    EXPECT_TRUE(same(got, value_of("0.10000000000000001")));
    EXPECT_EQ(deccvflt(&got, static_cast<double>(0.1F)), 0);
    EXPECT_TRUE(same(got, value_of("0.100000001")));
    EXPECT_EQ(deccvdbl(&got, -0.0), 0);
    EXPECT_TRUE(same(got, loops::zero()));
    for (double bad : {1e-131, 1.1e126, static_cast<double>(INFINITY), static_cast<double>(NAN)})
        EXPECT_EQ(deccvdbl(&got, bad), -1223) << bad;
    const double null = __builtin_bit_cast(double, UINT64_MAX);
    const double null_float = __builtin_bit_cast(double, UINT64_C(0xFFFFFFFFE0000000));
    EXPECT_EQ(deccvdbl(&got, null), 0);
    EXPECT_EQ(got.sign, -1);
    EXPECT_EQ(deccvflt(&got, null), -1223) << "not the float's null";
    EXPECT_EQ(deccvflt(&got, null_float), 0);
    EXPECT_EQ(got.sign, -1);
    double out;
    EXPECT_EQ(dectodbl(&got, &out), 0);
    EXPECT_EQ(__builtin_bit_cast(uint64_t, out), UINT64_MAX);
    float narrow;
    dectoflt(&got, &narrow);
    EXPECT_EQ(__builtin_bit_cast(uint32_t, narrow), UINT32_MAX);
}

TEST(DecimalFloats, SixteenDigitsWhenAskedFor) {
    setenv("QVT_USE_PREC_16", "1", 1);
    dec_value got;
    EXPECT_EQ(deccvdbl(&got, 0.1), 0);
    EXPECT_TRUE(same(got, value_of("0.1")));
    EXPECT_NE(get_useprec16(), 0);
    setenv("QVT_USE_PREC_16", "0", 1);
    EXPECT_NE(get_useprec16(), 0) << "asked for once";
}

} // namespace
