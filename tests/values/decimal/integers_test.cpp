// Integers of 32 and 64 bits beside decimals, texts and doubles, by 128-bit arithmetic.

#include <kestrion/decimal_text.h>
#include <kestrion/int8.h>

#include <gtest/gtest.h>

#include <math.h>

#include <string>

#include "values/decimal/loops.h"
#include "values/decimal/random_decimals.h"

namespace {

constexpr int64_t null_bigint = INT64_MIN;

int64_t random_bigint(decimal_source &source) {
    const uint64_t high = source.below(UINT32_MAX), low = source.below(UINT32_MAX);
    if (source.below(16) == 0)
        return source.below(4) == 0 ? null_bigint
                                    : INT64_MAX - static_cast<int64_t>(source.below(3));
    return static_cast<int64_t>(high << 32 | low) >> source.below(64);
}

int8_value int8_of(int64_t value) {
    int8_value made;
    EXPECT_EQ(qvt_int8_from_bigint(value, &made), 0);
    return made;
}

int64_t bigint_of(const int8_value &value) {
    int64_t made;
    EXPECT_EQ(qvt_int8_to_bigint(&value, &made), 0);
    return made;
}

struct pair_row {
    int (*of_int8)(const int8_value *, const int8_value *, int8_value *);
    int (*of_bigint)(int64_t, int64_t, int64_t *);
    __int128 (*exact)(__int128, __int128);
};

TEST(EightByteIntegers, ArithmeticIsExactOrRefused) {
    const pair_row rows[] = {
        {qvt_int8_add, qvt_bigint_add, [](__int128 a, __int128 b) { return a + b; }},
        {qvt_int8_sub, qvt_bigint_sub, [](__int128 a, __int128 b) { return a - b; }},
        {qvt_int8_mul, qvt_bigint_mul, [](__int128 a, __int128 b) { return a * b; }},
        {qvt_int8_div, qvt_bigint_div, [](__int128 a, __int128 b) { return b == 0 ? 0 : a / b; }},
    };
    decimal_source source(31);
    for (long i = random_cases(1000000); i > 0; --i) {
        const pair_row &row = rows[i % 4];
        const int64_t a = random_bigint(source), b = random_bigint(source);
        const bool null = a == null_bigint || b == null_bigint;
        const __int128 exact = row.exact(a, b);
        const bool fits = exact <= INT64_MAX && exact >= -INT64_MAX;
        const int wanted = null ? 0 : i % 4 == 3 && b == 0 ? -1202 : fits ? 0 : -1200;
        const int64_t result = null || wanted != 0 ? null_bigint : static_cast<int64_t>(exact);
        int64_t got;
        ASSERT_EQ(row.of_bigint(a, b, &got), wanted) << a << ' ' << b << ' ' << i % 4;
        ASSERT_EQ(got, result) << a << ' ' << b << ' ' << i % 4;
        const int8_value x = int8_of(a);
        int8_value y = int8_of(b);
        ASSERT_EQ(row.of_int8(&x, &y, &y), wanted) << "the result may be an operand";
        ASSERT_EQ(bigint_of(y), result);
        ASSERT_EQ(qvt_bigint_cmp(a, b), null ? -2 : (a > b) - (a < b));
    }
}

TEST(EightByteIntegers, GoOverIntoEveryOtherFormAndBack) {
    decimal_source source(32);
    for (long i = random_cases(300000); i > 0; --i) {
        const int64_t value = random_bigint(source);
        int64_t back;
        dec_value dec;
        ASSERT_EQ(qvt_bigint_to_decimal(value, &dec), 0);
        ASSERT_EQ(qvt_bigint_from_decimal(&dec, &back), 0);
        ASSERT_EQ(back, value);

        char text[21] = {};
        const int8_value made = int8_of(value);
        ASSERT_EQ(qvt_int8tostr(&made, text, 20), 0);
        std::string wanted = value == null_bigint ? "" : std::to_string(value);
        wanted.resize(20, ' ');
        ASSERT_EQ(text, wanted);
        int8_value read;
        ASSERT_EQ(qvt_int8cvasc(text, 20, &read), 0);
        ASSERT_EQ(bigint_of(read), value);

        unsigned char bytes[int8_stored_bytes];
        stint8(&made, bytes);
        ASSERT_EQ(ldint8(bytes, &read), 0);
        ASSERT_EQ(bigint_of(read), value);
        stbigint(value, bytes);
        ASSERT_EQ(ldbigint(bytes), value);

        double narrow;
        ASSERT_EQ(qvt_int8_to_double(&made, &narrow), 0);
        if (value != null_bigint) {
            ASSERT_EQ(narrow, static_cast<double>(value));
        }
        const bool exact = fabs(static_cast<double>(value)) < 9e15 || value == null_bigint;
        if (exact) {
            ASSERT_EQ(qvt_int8_from_double(narrow, &read), 0);
            ASSERT_EQ(bigint_of(read), value);
        }
        int32_t small;
        const bool fits = value >= -INT32_MAX && value <= INT32_MAX;
        ASSERT_EQ(qvt_int8tolong(&made, &small), fits || value == null_bigint ? 0 : -1200);
        ASSERT_EQ(small, fits ? value : INT32_MIN);
    }
}

TEST(EightByteIntegers, NamedTextsAndForms) {
    const struct {
        const char *text;
        int answer;
        int64_t value;
    } rows[] = {
        {"-1.9", 0, -1},
        {"9223372036854775807", 0, INT64_MAX},
        {"9223372036854775807.9", 0, INT64_MAX},
        {"9223372036854775808", -1215, null_bigint},
        {"-9223372036854775808", -1215, null_bigint},
        {"1e30", -1215, null_bigint},
        {"1e200", -1213, null_bigint},
        {"x", -1213, null_bigint},
        {"  ", 0, null_bigint},
    };
    for (const auto &row : rows) {
        int64_t got = 7;
        EXPECT_EQ(bigintcvasc(row.text, 30, &got), row.answer) << row.text;
        EXPECT_EQ(got, row.value) << row.text;
    }
    char narrow[4] = {};
    EXPECT_EQ(qvt_bigint_to_text(-12345, narrow, 3), -1207);
    EXPECT_STREQ(narrow, "***");
    unsigned char bytes[int8_stored_bytes];
    const int8_value minus_five = int8_of(-5), null = {}, bad_sign = {{1, 0}, 2},
                     too_great = {{0, 0x80000000}, -1};
    stint8(&minus_five, bytes);
    EXPECT_EQ(memcmp(bytes, "\xff\xff\0\0\0\0\0\0\0\5", 10), 0);
    stint8(&null, bytes);
    EXPECT_EQ(memcmp(bytes, "\0\0\0\0\0\0\0\0\0\0", 10), 0);
    int8_value sum;
    for (const int8_value &bad : {bad_sign, too_great}) {
        EXPECT_EQ(qvt_int8_add(&bad, &minus_five, &sum), -1);
        EXPECT_EQ(sum.sign, 0);
        EXPECT_EQ(qvt_int8_cmp(&bad, &minus_five), -2);
    }
    EXPECT_EQ(ldint8("\0\2\0\0\0\0\0\0\0\5", &sum), -1);
    EXPECT_EQ(ldint8("\0\1\x80\0\0\0\0\0\0\5", &sum), -1);
    int64_t out;
    for (double beyond : {9223372036854775808.0, -9223372036854775808.0, HUGE_VAL, -HUGE_VAL,
                          static_cast<double>(NAN)})
        EXPECT_EQ(qvt_bigint_from_double(beyond, &out), -1200) << beyond;
    EXPECT_EQ(qvt_bigint_from_double(-1.9, &out), 0);
    EXPECT_EQ(out, -1);
}

TEST(Longs, RangesNullsAndFractions) {
    const struct {
        const char *text;
        int of_long, of_int;
        int32_t long_value, int_value;
    } rows[] = {
        {"2147483647", 0, -1200, 2147483647, 7},
        {"2147483647.5", -1200, -1200, 7, 7}, // ten digits are held against the limit whole
        {"2147483647.9", -1200, -1200, 7, 7},
        {"2147483646.9", 0, -1200, 2147483646, 7},
        {"-2147483647", 0, -1200, -2147483647, 7},
        {"-2147483648", -1200, -1200, 7, 7},
        {"12345678901", -1200, -1200, 7, 7},
        {"0.99", 0, 0, 0, 0},
        {"-0.99", 0, 0, 0, 0},
        {"32767.9", 0, 0, 32767, 32767},
        {"-32768", 0, -1200, -32768, 7},
        {"1e9", 0, -1200, 1000000000, 7},
        {"", 0, 0, INT32_MIN, -32768},
    };
    for (const auto &row : rows) {
        dec_value dec;
        ASSERT_EQ(deccvasc_net(row.text, 20, &dec), 0);
        int32_t got_long = 7, got_int = 7;
        EXPECT_EQ(dectolong(&dec, &got_long), row.of_long) << row.text;
        EXPECT_EQ(got_long, row.long_value) << row.text;
        EXPECT_EQ(dectoint(&dec, &got_int), row.of_int) << row.text;
        EXPECT_EQ(got_int, row.int_value) << row.text;
    }
    decimal_source source(33);
    for (long i = random_cases(300000); i > 0; --i) {
        const auto value = static_cast<int32_t>(source.below(UINT32_MAX)) >> source.below(32);
        dec_value dec;
        int32_t back;
        ASSERT_EQ(deccvlong(value, &dec), 0);
        ASSERT_EQ(dectolong(&dec, &back), 0);
        ASSERT_EQ(back, value);
        ASSERT_EQ(deccvint(value, &dec), 0);
        ASSERT_EQ(dec.sign == -1, value == -32768 || value == INT32_MIN);
    }
}

} // namespace
