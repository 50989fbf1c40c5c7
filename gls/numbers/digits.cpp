#include "gls/numbers/digits.h"

#include "gls/numbers/number_conventions.h"

#include <bit>
#include <string.h>

namespace kestrion {

namespace {

using wide_integer = unsigned __int128;

constexpr int32_t mantissa_bits = 53; // of a double, the hidden one included
constexpr int32_t exponent_bias = 1023;

struct digit_pairs {
    char of[100][2];
};

constexpr digit_pairs make_pairs() {
    digit_pairs pairs = {};
    for (int i = 0; i < 100; ++i) {
        pairs.of[i][0] = static_cast<char>('0' + i / 10);
        pairs.of[i][1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}

constexpr digit_pairs pairs = make_pairs();

// Powers of ten that 64 bits hold.
struct ten_powers {
    uint64_t of[20];
};

constexpr ten_powers make_powers() {
    ten_powers powers = {{1}};
    for (int i = 1; i < 20; ++i)
        powers.of[i] = powers.of[i - 1] * 10;
    return powers;
}

constexpr ten_powers powers = make_powers();
constexpr int32_t highest_power = 19;

// The same as doubles, as far as a double holds them exactly.
constexpr double exact_powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int32_t highest_exact_power = 22;

char *put_pair(char *end, uint64_t pair) {
    memcpy(end - 2, pairs.of[pair], 2);
    return end - 2;
}

char *decimal_digits(char *end, uint64_t value) {
    // Four digits a step: each division waits for the one before it.
    for (; value >= 10000; value /= 10000) {
        const uint64_t four = value % 10000;
        end = put_pair(put_pair(end, four % 100), four / 100);
    }
    if (value >= 100) {
        end = put_pair(end, value % 100);
        value /= 100;
    }
    if (value >= 10)
        return put_pair(end, value);
    *--end = static_cast<char>('0' + value);
    return end;
}

// The digits of a fraction below one, `precision` of them.
void fraction_digits(char *end, uint64_t fraction, int32_t precision) {
    for (; precision >= 2; precision -= 2, fraction /= 100)
        end = put_pair(end, fraction % 100);
    if (precision > 0)
        *--end = static_cast<char>('0' + fraction);
}

// rest times ten^precision, rounded to the nearest integer; a tie goes to where it makes the last
// digit even, which is that of `integer` when there is no other. The product of the mantissa and
// the power has at most 53 + 60 bits, so that nothing is lost.
uint64_t scaled_fraction(double rest, int32_t precision, uint64_t integer) {
    const auto bits = std::bit_cast<uint64_t>(rest);
    const auto exponent = static_cast<int32_t>(bits >> (mantissa_bits - 1));
    const int32_t shift = exponent_bias + mantissa_bits - 1 - exponent; // rest = mantissa / 2^shift
    if (shift > 120)
        return 0; // less than a half
    constexpr uint64_t hidden_bit = UINT64_C(1) << (mantissa_bits - 1);
    const uint64_t mantissa = hidden_bit | (bits & (hidden_bit - 1));
    const wide_integer product = static_cast<wide_integer>(mantissa) * powers.of[precision];
    auto quotient = static_cast<uint64_t>(product >> shift);
    const wide_integer left = product & ((static_cast<wide_integer>(1) << shift) - 1);
    const wide_integer half = static_cast<wide_integer>(1) << (shift - 1);
    const uint64_t last = precision == 0 ? integer : quotient;
    if (left > half || (left == half && (last & 1) != 0))
        ++quotient;
    return quotient;
}

// mantissa times 2^exponent, the mantissa's highest bit set; `inexact` when it was cut.
double rounded_double(uint64_t mantissa, int32_t exponent, bool inexact) {
    constexpr int32_t cut = 64 - mantissa_bits;
    const uint64_t rest = mantissa & ((UINT64_C(1) << cut) - 1);
    const uint64_t half = UINT64_C(1) << (cut - 1);
    uint64_t kept = mantissa >> cut;
    if (rest > half || (rest == half && (inexact || (kept & 1) != 0)))
        ++kept;
    const auto scale = static_cast<uint64_t>(exponent_bias + exponent + cut);
    return static_cast<double>(kept) * std::bit_cast<double>(scale << (mantissa_bits - 1));
}

double multiplied(uint64_t digits, uint64_t power) {
    const wide_integer product = static_cast<wide_integer>(digits) * power;
    const auto high = static_cast<uint64_t>(product >> 64);
    const auto low = static_cast<uint64_t>(product);
    if (high == 0) {
        const int32_t up = std::countl_zero(low);
        return rounded_double(low << up, -up, false);
    }
    const int32_t up = std::countl_zero(high);
    const wide_integer aligned = product << up;
    return rounded_double(static_cast<uint64_t>(aligned >> 64), 64 - up,
                          static_cast<uint64_t>(aligned) != 0);
}

// Both with their highest bit set, the quotient lies between 1/2 and 2.
double divided(uint64_t digits, uint64_t power) {
    const int32_t digits_up = std::countl_zero(digits);
    const int32_t power_up = std::countl_zero(power);
    const wide_integer dividend = static_cast<wide_integer>(digits << digits_up) << 63;
    const uint64_t divisor = power << power_up;
    const auto quotient = static_cast<uint64_t>(dividend / divisor);
    const bool inexact = dividend % divisor != 0;
    const int32_t up = std::countl_zero(quotient); // at most 1
    return rounded_double(quotient << up, power_up - digits_up - 63 - up, inexact);
}

} // namespace

char *integer_digits(char *end, uint64_t value, uint32_t base, bool upper_case) {
    if (base == 10)
        return decimal_digits(end, value);
    const char *digits = upper_case ? "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                    : "0123456789abcdefghijklmnopqrstuvwxyz";
    do {
        *--end = digits[value % base];
        value /= base;
    } while (value != 0);
    return end;
}

ascii_piece fixed_digits(char (&buffer)[float_text_limit], double value, int32_t precision) {
    constexpr double above_64_bits = 18446744073709551616.0;
    if (precision > highest_power - 1 || !(value < above_64_bits))
        return {buffer + 1,
                library_number(buffer + 1, float_text_limit - 1, 'f', false, precision, value)};
    auto integer = static_cast<uint64_t>(value);
    // What is left below the point is exact.
    uint64_t fraction = scaled_fraction(value - static_cast<double>(integer), precision, integer);
    if (fraction >= powers.of[precision]) {
        fraction -= powers.of[precision];
        ++integer;
    }
    char *const end = buffer + float_text_limit;
    fraction_digits(end, fraction, precision);
    char *start = end - precision;
    if (precision > 0)
        *--start = '.';
    start = decimal_digits(start, integer);
    return {start, static_cast<int32_t>(end - start)};
}

bool nearest_double(uint64_t digits, int32_t exponent, double &out) {
    if (digits >> mantissa_bits == 0 && exponent >= -highest_exact_power &&
        exponent <= highest_exact_power) {
        // Both operands are exact, so that the one rounding is the right one.
        const auto exact = static_cast<double>(digits);
        out = exponent < 0 ? exact / exact_powers[-exponent] : exact * exact_powers[exponent];
        return true;
    }
    if (digits == 0 || exponent < -highest_power || exponent > highest_power)
        return false;
    out = exponent < 0 ? divided(digits, powers.of[-exponent])
                       : multiplied(digits, powers.of[exponent]);
    return true;
}

} // namespace kestrion
