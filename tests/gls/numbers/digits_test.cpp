// The digits that are made without the C library, beside the C library's.

#include "gls/numbers/digits.h"
#include "support/random_cases.h"

#include <bit>
#include <gtest/gtest.h>
#include <math.h>
#include <random>
#include <stdio.h>
#include <stdlib.h>
#include <string>

using namespace kestrion;

namespace {

std::string fixed_text(double value, int precision) {
    char buffer[float_text_limit];
    const ascii_piece text = fixed_digits(buffer, value, precision);
    return text.length < float_text_limit - 1
               ? std::string(text.text, static_cast<size_t>(text.length))
               : ""; // cut off
}

// Values near what is hard: halves of the last digit, powers of two and ten, and any bit pattern.
double hard_value(std::mt19937_64 &random) {
    const auto bits = random();
    switch (random() % 4) {
    case 0:
        return std::bit_cast<double>(bits >> 1);
    case 1:
        return static_cast<double>(bits >> random() % 64) / 1000000;
    case 2:
        return (static_cast<double>(bits >> (20 + random() % 44)) + 0.5) /
               pow(10, static_cast<double>(random() % 8));
    default:
        return ldexp(static_cast<double>(bits >> 11), -static_cast<int>(random() % 120));
    }
}

} // namespace

TEST(FixedDigits, AreThoseOfTheLibrary) {
    std::mt19937_64 random(11);
    for (long i = 0; i < random_cases(10'000'000); ++i) {
        const double value = hard_value(random);
        const int precision = static_cast<int>(random() % 19);
        if (!isfinite(value))
            continue;
        char theirs[float_text_limit + 64];
        snprintf(theirs, sizeof theirs, "%.*f", precision, value);
        const std::string own = fixed_text(value, precision);
        if (!own.empty()) {
            ASSERT_EQ(own, theirs) << std::hexfloat << value << " precision " << precision;
        }
    }
}

TEST(FixedDigits, OfTheEndsOfTheRange) {
    for (const double value : {0.0, 5e-324, 2.2250738585072014e-308, 18446744073709549568.0,
                               18446744073709551616.0, 9007199254740993.0, 1.7976931348623157e308})
        for (const int precision : {0, 1, 6}) {
            char theirs[400];
            snprintf(theirs, sizeof theirs, "%.*f", precision, value);
            EXPECT_EQ(fixed_text(value, precision), theirs);
        }
}

TEST(NearestDouble, IsThatOfTheLibrary) {
    std::mt19937_64 random(12);
    for (long i = 0; i < random_cases(5'000'000); ++i) {
        const uint64_t digits = random() >> random() % 64;
        const auto exponent = static_cast<int32_t>(random() % 50) - 25;
        double own = 0;
        if (!nearest_double(digits, exponent, own))
            continue;
        const std::string text = std::to_string(digits) + "e" + std::to_string(exponent);
        ASSERT_EQ(own, strtod(text.c_str(), nullptr)) << text;
    }
}

TEST(NearestDouble, RoundsTiesToEven) {
    // 2^53 + 1 and + 3 lie between two doubles; as do products and quotients of powers of ten.
    for (const char *text : {"9007199254740993e0", "9007199254740995e0", "90071992547409930e-1",
                             "18446744073709551615e0", "18446744073709551615e19", "1e-19",
                             "9223372036854775807e-19", "9007199254740993000e-3"}) {
        const std::string all = text;
        double own = 0;
        if (nearest_double(strtoull(text, nullptr, 10), atoi(all.substr(all.find('e') + 1).c_str()),
                           own)) {
            EXPECT_EQ(own, strtod(text, nullptr)) << text;
        }
    }
}

TEST(IntegerDigits, OfEveryBaseAreReadBack) {
    std::mt19937_64 random(13);
    for (long i = 0; i < random_cases(1'000'000); ++i) {
        const uint64_t value = random() >> random() % 64;
        const auto base = static_cast<uint32_t>(2 + random() % 35);
        char buffer[integer_digit_limit + 1];
        buffer[integer_digit_limit] = '\0';
        const char *first = integer_digits(buffer + integer_digit_limit, value, base, random() % 2);
        ASSERT_EQ(strtoull(first, nullptr, static_cast<int>(base)), value) << base;
        ASSERT_TRUE(value == 0 ? first[1] == '\0' : *first != '0') << first;
    }
}
