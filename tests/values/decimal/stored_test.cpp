// Stored forms of decimals: bytes that sort like the numbers.

#include <kestrion/decimal.h>

#include <gtest/gtest.h>

#include <string>

#include "values/decimal/loops.h"
#include "values/decimal/random_decimals.h"

namespace {

std::string stored(const dec_value &value, int length) {
    std::string bytes(static_cast<size_t>(length), '#');
    stdecimal(&value, reinterpret_cast<unsigned char *>(bytes.data()), length);
    return bytes;
}

int load(const std::string &bytes, dec_value &value) {
    return lddecimal(reinterpret_cast<const unsigned char *>(bytes.data()),
                     static_cast<int>(bytes.size()), &value);
}

TEST(StoredDecimal, IsWhatTheDigitLoopsMake) {
    decimal_source source(21);
    for (long i = random_cases(2000000); i > 0; --i) {
        const dec_value value = source.any();
        const int length = 1 + static_cast<int>(source.below(i % 16 == 0 ? 60 : 18));
        unsigned char wanted[60];
        loops::store(value, wanted, length);
        ASSERT_EQ(memcmp(stored(value, length).data(), wanted, static_cast<size_t>(length)), 0)
            << value << " in " << length;
        unsigned char digits[16] = {}, inverse[16];
        memcpy(digits, value.digits, sizeof digits);
        memcpy(inverse, digits, sizeof digits);
        deccomplement(digits, value.ndigits);
        loops::complement(inverse, value.ndigits);
        ASSERT_EQ(memcmp(digits, inverse, sizeof digits), 0) << value;
    }
}

// The one thing that breaks the order: a carry that the greatest exponent cannot take.
bool may_pass_the_range(const dec_value &value) {
    return value.exponent == 63 && value.ndigits > 0 && value.digits[0] == 99;
}

TEST(StoredDecimal, BytesSortLikeNumbersAtEveryLength) {
    decimal_source source(22);
    const auto at_least_null = [](const dec_value &a, const dec_value &b) {
        return a.sign == -1 || b.sign == -1 ? (b.sign == -1) - (a.sign == -1)
                                            : loops::compare(a, b);
    };
    for (int length = 2; length <= 18; ++length)
        for (long i = random_cases(100000); i > 0; --i) {
            const dec_value a = source.any(), b = source.near(a);
            if (may_pass_the_range(a) || may_pass_the_range(b))
                continue;
            const int order = at_least_null(a, b);
            const int bytes = stored(a, length).compare(stored(b, length));
            ASSERT_TRUE(order == 0 ? bytes == 0 : order * bytes >= 0) << a << '\n' << b;
            ASSERT_TRUE(bytes != 0 || order == 0 || length < 17 || a.ndigits == 16 ||
                        b.ndigits == 16)
                << a << '\n'
                << b;
        }
}

TEST(StoredDecimal, LoadsBackAndEveryByteStringIsDefined) {
    decimal_source source(23);
    for (long i = random_cases(1000000); i > 0; --i) {
        dec_value value = source.any(), back;
        ASSERT_EQ(load(stored(value, 17), back), 0) << value;
        while (value.ndigits > 0 && value.digits[value.ndigits - 1] == 0)
            --value.ndigits;
        const bool as_null =
            value.sign == 0 && value.exponent == 63 && value.digits[0] == 99 && value.ndigits > 1;
        ASSERT_TRUE(same(back, as_null ? loops::null() : value)) << value << back;

        std::string bytes(source.below(40), '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(source.below(i % 2 != 0 ? 256 : 101));
        const int answer = load(bytes, back);
        ASSERT_EQ(decverify(&back), 0);
        if (answer == -1) {
            ASSERT_EQ(back.sign, -1);
        }
    }
    for (unsigned pattern = 0; pattern < 0x10000; ++pattern) {
        const std::string bytes = {static_cast<char>(pattern >> 8), static_cast<char>(pattern)};
        dec_value value;
        const int answer = load(bytes, value);
        ASSERT_EQ(answer, (pattern & 0xFF) > 99 ? -1 : 0) << pattern;
        if (answer == 0 && (pattern & 0xFF) != 0) {
            ASSERT_EQ(stored(value, 2), bytes) << pattern;
        }
    }
}

TEST(StoredDecimal, NamedForms) {
    const struct {
        dec_value value;
        std::vector<unsigned char> bytes;
        bool reads_back;
    } rows[] = {
        {{.exponent = -64, .sign = 1}, {0x80, 0, 0, 0}, true},
        {{.exponent = -64, .sign = 0}, {0x80, 0, 0, 0}, false}, // of an interval "-0"
        {{.sign = -1}, {0, 0, 0, 0}, true},
        {{2, 1, 2, {12, 34}}, {0xc2, 0x0c, 0x22, 0}, true},
        {{-1, 0, 1, {10}}, {0x40, 0x5a, 0, 0}, true},
        {{1, 0, 2, {12, 50}}, {0x3e, 0x57, 0x32, 0}, true},
        {{2, 0, 1, {1}}, {0x3d, 0x63, 0, 0}, true},
        {{-64, 1, 1, {1}}, {0x80, 1, 0, 0}, true},
        {{63, 1, 1, {99}}, {0xff, 0x63, 0, 0}, true},
        {{1, 1, 1, {1}}, {0xc1, 1}, true},
        {{1, 0, 1, {1}}, {0x3e, 0x63}, true},
        {{63, 0, 3, {99, 99, 90}}, {0, 0, 0, 0x0a}, false}, // reads as NULL
        {{63, 1, 2, {99, 99}}, {0x80, 1}, false},           // the carry turns the exponent round
        {{63, 0, 2, {99, 99}}, {0xff, 0x63}, false},
        {{1, 1, 2, {1, 99}}, {0xc1}, false}, // one byte holds no digit and rounds nothing
    };
    for (const auto &row : rows) {
        const std::string wanted(row.bytes.begin(), row.bytes.end());
        EXPECT_EQ(stored(row.value, static_cast<int>(wanted.size())), wanted) << row.value;
        dec_value back;
        EXPECT_EQ(load(wanted, back), 0);
        EXPECT_EQ(same(back, row.value), row.reads_back) << row.value << back;
    }
    dec_value value;
    EXPECT_EQ(load("", value), 0);
    EXPECT_EQ(value.sign, -1);
    EXPECT_EQ(load("\xc1", value), 0);
    EXPECT_TRUE(same(value, loops::zero()));
    unsigned char untouched = 7;
    stdecimal(&value, &untouched, 0);
    EXPECT_EQ(untouched, 7);
}

} // namespace
