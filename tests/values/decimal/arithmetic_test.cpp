// Arithmetic of decimals against plain loops over digit bytes, which fix every oddity, and against
// exact integers, which fix the values.

#include <kestrion/decimal.h>

#include <gtest/gtest.h>

#include <boost/multiprecision/cpp_int.hpp>

#include "values/decimal/loops.h"
#include "values/decimal/random_decimals.h"

namespace {

using boost::multiprecision::cpp_int;

dec_value decimal(int sign, int exponent, std::initializer_list<int> digits) {
    dec_value a = {.exponent = static_cast<int16_t>(exponent),
                   .sign = static_cast<int16_t>(sign),
                   .ndigits = static_cast<int16_t>(digits.size())};
    int at = 0;
    for (int d : digits)
        a.digits[at++] = static_cast<unsigned char>(d);
    return a;
}

dec_value repeated(int exponent, int digit, int count, int last) {
    dec_value a = decimal(1, exponent, {});
    memset(a.digits, digit, static_cast<size_t>(count));
    a.digits[count] = static_cast<unsigned char>(last);
    a.ndigits = static_cast<int16_t>(count + 1);
    return a;
}

const dec_value null_value = {.sign = -1};
const dec_value zero_value = {.exponent = -64, .sign = 1};

using operation = int (*)(const dec_value *, const dec_value *, dec_value *);
using loop = int (*)(const dec_value &, const dec_value &, dec_value &);

void compare_with_loop(operation packed, loop plain, unsigned seed, long pairs) {
    decimal_source source(seed);
    for (long i = random_cases(pairs); i > 0; --i) {
        const dec_value a = source.any(), b = source.near(a);
        dec_value got, wanted;
        const int answer = packed(&a, &b, &got), wanted_answer = plain(a, b, wanted);
        ASSERT_TRUE(answer == wanted_answer && same(got, wanted)) << "seed " << seed << '\n'
                                                                  << a << '\n'
                                                                  << b << '\n'
                                                                  << answer << ' ' << got << '\n'
                                                                  << wanted_answer << ' ' << wanted;
    }
}

TEST(DecimalLoops, SumsAreThoseOfTheDigitLoop) {
    compare_with_loop(decadd, loops::add, 1, 10000000);
}
TEST(DecimalLoops, DifferencesAreThoseOfTheDigitLoop) {
    compare_with_loop(decsub, loops::subtract, 2, 10000000);
}
TEST(DecimalLoops, ProductsAreThoseOfTheDigitLoop) {
    compare_with_loop(decmul, loops::multiply, 3, 5000000);
}
TEST(DecimalLoops, QuotientsAreThoseOfTheDigitLoop) {
    compare_with_loop(decdiv, loops::divide, 4, 5000000);
}

TEST(DecimalLoops, OrderAndRoundingAreThoseOfTheDigitLoops) {
    decimal_source source(5);
    for (long i = random_cases(10000000); i > 0; --i) {
        const dec_value a = source.any(), b = source.near(a);
        ASSERT_EQ(deccmp(&a, &b), loops::compare(a, b)) << a << '\n' << b;
        const int n = static_cast<int>(source.below(i % 8 == 0 ? 300 : 40)) - (i % 8 ? 20 : 150);
        dec_value rounded = a, cut = a, wanted_rounded = a, wanted_cut = a;
        decround(&rounded, n);
        loops::round(wanted_rounded, n);
        ASSERT_TRUE(same(rounded, wanted_rounded)) << n << ' ' << a << '\n' << rounded;
        dectrunc(&cut, n);
        loops::truncate(wanted_cut, n);
        ASSERT_TRUE(same(cut, wanted_cut)) << n << ' ' << a << '\n' << cut;
    }
}

TEST(DecimalLoops, LoadingIsThatOfTheDigitLoop) {
    decimal_source source(6);
    for (long i = random_cases(2000000); i > 0; --i) {
        unsigned char digits[41] = {};
        const int count = static_cast<int>(source.below(41));
        for (int at = 1; at <= count; ++at) {
            const unsigned shape = source.below(6);
            digits[at] = static_cast<unsigned char>(shape < 2   ? 0
                                                    : shape < 4 ? 99
                                                                : source.below(100));
        }
        const int sign = static_cast<int>(source.below(2)),
                  exponent = static_cast<int>(source.below(150)) - 70;
        dec_value got, wanted;
        const int answer = decload(&got, sign, exponent, digits + 1, count);
        ASSERT_EQ(answer, loops::load(wanted, sign, exponent, digits + 1, count));
        ASSERT_TRUE(same(got, wanted)) << got << '\n' << wanted;
    }
}

// -- Exact values --------------------------------------------------------------------------------

const cpp_int &power_of_100(int n) {
    static const std::vector<cpp_int> powers = [] {
        std::vector<cpp_int> made(1, 1);
        while (made.size() < 300)
            made.push_back(made.back() * 100);
        return made;
    }();
    return powers.at(static_cast<size_t>(n));
}

// The value times 100^up, which makes it an integer.
cpp_int scaled(const dec_value &a, int up) {
    cpp_int value = 0;
    for (int i = 0; i < a.ndigits; ++i)
        value = value * 100 + a.digits[i];
    value *= power_of_100(a.exponent - a.ndigits + up);
    return a.sign != 0 ? value : cpp_int(-value);
}

// Sixteen significant bytes, half up on the magnitude by the byte after them.
cpp_int rounded(const cpp_int &value) {
    const cpp_int magnitude = abs(value);
    if (magnitude < power_of_100(16))
        return value;
    // A byte of a number takes 6.64 bits: begin with a count that is too small by at most one.
    int excess = static_cast<int>(static_cast<double>(msb(magnitude)) / 6.643857) - 16;
    while (magnitude >= power_of_100(16 + excess))
        ++excess;
    const cpp_int &unit = power_of_100(excess);
    const cpp_int result = (magnitude + unit / 2) / unit * unit;
    return value < 0 ? cpp_int(-result) : result;
}

// Both in the middle of the range, so that no result leaves it.
dec_value middle(decimal_source &source) {
    for (;;) {
        const dec_value a = source.any();
        if (a.ndigits > 0 && a.exponent > -30 && a.exponent < 30)
            return a;
    }
}

TEST(DecimalValues, ProductsAndQuotientsAreExactValuesRoundedOnce) {
    decimal_source source(7);
    for (long i = random_cases(200000); i > 0; --i) {
        const dec_value a = middle(source), b = middle(source);
        dec_value got;
        ASSERT_EQ(decmul(&a, &b, &got), 0);
        ASSERT_EQ(scaled(got, 140), rounded(scaled(a, 70) * scaled(b, 70))) << a << '\n'
                                                                            << b << '\n'
                                                                            << got;
        ASSERT_EQ(decdiv(&a, &b, &got), 0);
        // The quotient cut far to the right of its last byte rounds like the exact one.
        ASSERT_EQ(scaled(got, 80), rounded(scaled(a, 150) / scaled(b, 70))) << a << '\n'
                                                                            << b << '\n'
                                                                            << got;
    }
}

TEST(DecimalValues, SumsKeepSeventeenBytesOfTheSmallerOperand) {
    decimal_source source(8);
    for (long i = random_cases(200000); i > 0; --i) {
        dec_value a = middle(source), b = source.near(a), got;
        if (b.ndigits == 0 || b.exponent < -30 || b.exponent > 30)
            b = middle(source);
        if (abs(scaled(a, 70)) < abs(scaled(b, 70)))
            std::swap(a, b);
        const cpp_int x = scaled(a, 70), y = scaled(b, 70),
                      unit = power_of_100(a.exponent - 17 + 70);
        ASSERT_EQ(decadd(&a, &b, &got), 0);
        ASSERT_EQ(scaled(got, 70), rounded(x + y / unit * unit)) << a << '\n' << b << '\n' << got;
        if (a.sign == b.sign) {
            ASSERT_EQ(scaled(got, 70), rounded(x + y)) << a << '\n' << b;
        }
        dec_value other = b;
        other.sign = static_cast<int16_t>(!b.sign);
        dec_value difference;
        ASSERT_EQ(decsub(&a, &other, &difference), 0);
        ASSERT_TRUE(same(difference, got)) << a << '\n' << other;
    }
}

// -- What looks wrong and is right ---------------------------------------------------------------

TEST(DecimalOddities, NinesRoundIntoTheByteAheadAndKeepTheirZeros) {
    unsigned char digits[18];
    memset(digits, 99, sizeof digits);
    digits[0] = 0;
    digits[17] = 50;
    dec_value grown;
    EXPECT_EQ(decload(&grown, 1, 0, digits + 1, 17), 0);
    dec_value wanted = decimal(1, 1, {1});
    EXPECT_EQ(deccmp(&grown, &wanted), 1) << "fifteen zero bytes count";
    wanted.ndigits = 16;
    EXPECT_TRUE(same(grown, wanted)) << grown;
    dec_value minus_one = decimal(0, 1, {1}), sum;
    EXPECT_EQ(decadd(&grown, &minus_one, &sum), 0);
    EXPECT_TRUE(same(sum, zero_value)) << sum;
}

TEST(DecimalOddities, DifferencesKeepNoTraceOfWhatWasCutOff) {
    const struct {
        dec_value a, b, difference;
    } rows[] = {
        {decimal(1, 1, {1}), decimal(1, -16, {1}), decimal(1, 1, {1})},      // 1 - 1e-34
        {decimal(1, 1, {1}), decimal(1, -15, {1}), repeated(0, 99, 15, 99)}, // 1 - 1e-32
        {decimal(1, 1, {1}), repeated(-1, 99, 15, 98), {}},                  // see below
        {decimal(0, 1, {5}), decimal(0, 1, {5}), zero_value},                // no minus on zero
        {null_value, decimal(1, 1, {5}), null_value},
    };
    for (const auto &row : rows) {
        dec_value got;
        EXPECT_EQ(decsub(&row.a, &row.b, &got), 0);
        dec_value wanted = row.difference;
        if (wanted.ndigits == 0 &&
            wanted.sign == 0) { // 0.99 and a 1 in byte 16; exact would be 0.99
            wanted = decimal(1, 0, {99});
            wanted.digits[15] = 1;
            wanted.ndigits = 16;
        }
        EXPECT_TRUE(same(got, wanted)) << got;
    }
}

TEST(DecimalOddities, ZeroDivisorsAndNullsAndTrialDigitsOf100) {
    const struct {
        dec_value a, b;
        int answer;
        dec_value quotient;
    } rows[] = {
        {decimal(1, 1, {1}), zero_value, -1202, zero_value},
        {zero_value, zero_value, -1202, zero_value},
        {null_value, zero_value, 0, null_value},
        {decimal(1, 1, {1}), decimal(0, 1, {3}), 0, repeated(0, 33, 15, 33)},
        {decimal(1, 1, {2}), decimal(1, 1, {3}), 0, repeated(0, 66, 15, 67)},
    };
    for (const auto &row : rows) {
        dec_value got, wanted = row.quotient;
        EXPECT_EQ(decdiv(&row.a, &row.b, &got), row.answer);
        if (wanted.ndigits > 0)
            wanted.sign = row.a.sign == row.b.sign;
        EXPECT_TRUE(same(got, wanted)) << got;
    }
    const dec_value a = decimal(1, 1, {1, 0, 98}), b = decimal(1, 1, {1, 0, 99});
    dec_value got, wanted;
    EXPECT_EQ(decdiv(&a, &b, &got), loops::divide(a, b, wanted));
    EXPECT_TRUE(same(got, wanted)) << got;
}

TEST(DecimalOddities, RangesClampAndKeepTheDigits) {
    const dec_value great = decimal(1, 63, {99}), small = decimal(1, -64, {1});
    dec_value got;
    EXPECT_EQ(decadd(&great, &great, &got), -1200);
    EXPECT_TRUE(same(got, decimal(1, 63, {1, 98}))) << got;
    EXPECT_EQ(decmul(&small, &small, &got), -1201);
    EXPECT_TRUE(same(got, decimal(1, -64, {1}))) << got;
    dec_value lost = great;
    decround(&lost, -126); // 9.9e125 would be 1e126
    EXPECT_TRUE(same(lost, zero_value)) << lost;
    for (int n : {INT32_MIN, INT32_MIN + 1, -300, INT32_MAX - 1, INT32_MAX}) {
        dec_value a = decimal(0, 1, {5, 50});
        decround(&a, n);
        EXPECT_TRUE(same(a, n < 0 ? zero_value : decimal(0, 1, {5, 50}))) << n;
        dectrunc(&a, n);
        EXPECT_TRUE(same(a, n < 0 ? zero_value : decimal(0, 1, {5, 50}))) << n;
    }
}

TEST(DecimalOddities, RoundingIsAwayFromZeroAndDropsAnOddUnitsDigit) {
    const struct {
        dec_value value;
        int n;
        dec_value rounded, cut;
    } rows[] = {
        {decimal(0, 0, {50}), 0, decimal(0, 1, {1}), zero_value},
        {decimal(1, 0, {50}), 0, decimal(1, 1, {1}), zero_value},
        {decimal(1, 2, {12, 34}), -3, decimal(1, 2, {10}), decimal(1, 2, {10})},
        {decimal(1, 2, {12, 34}), -2, decimal(1, 2, {12}), decimal(1, 2, {12})},
        {decimal(1, 0, {99, 95}), 3, decimal(1, 1, {1}), decimal(1, 0, {99, 90})},
        {decimal(1, 0, {25}), 1, decimal(1, 0, {30}), decimal(1, 0, {20})},
        {decimal(0, 0, {4}), 1, zero_value, zero_value},
    };
    for (const auto &row : rows) {
        dec_value rounded = row.value, cut = row.value;
        decround(&rounded, row.n);
        dectrunc(&cut, row.n);
        EXPECT_TRUE(same(rounded, row.rounded)) << row.value << ' ' << row.n << ' ' << rounded;
        EXPECT_TRUE(same(cut, row.cut)) << row.value << ' ' << row.n << ' ' << cut;
    }
}

// -- Records that no operation makes -------------------------------------------------------------

TEST(DecimalRecords, MalformedOnesAreRefusedEverywhere) {
    dec_value bad[] = {decimal(1, 64, {1}), decimal(1, -65, {1}), decimal(2, 1, {1}),
                       decimal(-2, 1, {1}), decimal(1, 1, {1}),   decimal(1, 1, {1}),
                       decimal(1, 0, {}),   decimal(1, 1, {100}), decimal(0, 1, {1, 255})};
    bad[4].ndigits = 17;
    bad[5].ndigits = -3;
    const dec_value one = decimal(1, 1, {1});
    for (const dec_value &a : bad) {
        EXPECT_EQ(decverify(&a), -1) << a;
        EXPECT_EQ(deccmp(&a, &one), -2);
        EXPECT_EQ(deccmp(&one, &a), -2);
        EXPECT_EQ(dec2prec(&a), 0);
        for (operation act : {decadd, decsub, decmul, decdiv}) {
            dec_value got = one;
            EXPECT_EQ(act(&a, &one, &got), -1);
            EXPECT_TRUE(same(got, null_value));
            EXPECT_EQ(act(&null_value, &a, &got), -1);
        }
        dec_value rounded = a;
        decround(&rounded, 0);
        dectrunc(&rounded, 0);
        EXPECT_EQ(memcmp(&rounded, &a, sizeof a), 0);
        unsigned char bytes[4] = {1, 1, 1, 1};
        stdecimal(&a, bytes, 4);
        EXPECT_EQ(memcmp(bytes, "\0\0\0\0", 4), 0);
    }
    EXPECT_EQ(decverify(nullptr), -1);
    dec_value unused = one;
    memset(unused.digits + 1, 0xFF, 15);
    EXPECT_EQ(decverify(&unused), 0) << "bytes past ndigits are nobody's";
    dec_value sum;
    EXPECT_EQ(decadd(&unused, &unused, &sum), 0);
    EXPECT_TRUE(same(sum, decimal(1, 1, {2})));
}

TEST(DecimalRecords, LeadingZeroBytesDoNotChangeAResult) {
    const dec_value padded = decimal(1, -62, {0, 0, 0, 7}), plain = decimal(1, -63, {70});
    const dec_value naught = decimal(0, 5, {0, 0});
    dec_value got;
    EXPECT_EQ(decverify(&padded), 0);
    EXPECT_EQ(deccmp(&padded, &plain), -1);
    EXPECT_EQ(deccmp(&padded, &zero_value), 1) << "its own exponent is -65";
    EXPECT_EQ(decdiv(&plain, &padded, &got), 0);
    EXPECT_TRUE(same(got, decimal(1, 3, {10}))) << got;
    EXPECT_EQ(decdiv(&plain, &naught, &got), -1202);
    EXPECT_EQ(decadd(&plain, &naught, &got), 0);
    EXPECT_TRUE(same(got, plain));
    EXPECT_EQ(decsub(&zero_value, &padded, &got), -1201);
    EXPECT_TRUE(same(got, decimal(0, -64, {7}))) << got;
}

TEST(DecimalRecords, MagnitudesInTheWrongOrderAreDefined) {
    const dec_value one = decimal(1, 1, {1}), two = decimal(0, 1, {2}), cent = decimal(1, 0, {1});
    dec_value got = one;
    EXPECT_EQ(decadsb(&cent, &one, &got, 1), -1);
    EXPECT_TRUE(same(got, one)) << "untouched";
    EXPECT_EQ(decadsb(&one, &two, &got, 1), 0); // the borrow out of the first byte is dropped
    EXPECT_TRUE(same(got, decimal(1, 2, {99, 99}))) << got;
    EXPECT_EQ(decadsb(&two, &one, &got, 1), 0);
    EXPECT_TRUE(same(got, decimal(0, 1, {1}))) << got;
}

TEST(DecimalRecords, PrecisionWordsFollowTheDigits) {
    const struct {
        dec_value value;
        int word, raised;
    } rows[] = {
        {zero_value, 0, 0},
        {null_value, 0, 0},
        {decimal(1, 2, {12, 34}), 0x0400, 0x0400},
        {decimal(0, -1, {10}), 0x0103, 0x0303},
        {decimal(0, 1, {12, 50}), 0x0301, 0x0301},
        {decimal(0, 2, {1}), 0x0300, 0x0300},
        {decimal(1, -64, {1}), 0x0182, 0x8282},
        {decimal(1, 63, {99}), 0x7e00, 0x7e00},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(dec2prec(&row.value), row.word) << row.value;
        EXPECT_EQ(decprec(&row.value), row.raised) << row.value;
    }
}

} // namespace
