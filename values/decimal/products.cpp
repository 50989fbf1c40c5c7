// Products and quotients: the digits of a value are two limbs of base 10^16.

#include <kestrion/decimal.h>

#include "values/decimal/operand.h"

using namespace kestrion;

namespace {

constexpr digit_word ten_to_34 = digit_word{limb_base} * limb_base * 100;
constexpr digit_word ten_to_32 = digit_word{limb_base} * limb_base;

// 256 bits as two halves.
struct double_word {
    digit_word high, low;
};

double_word full_product(digit_word a, digit_word b) {
    const digit_word low = digit_word{low_half(a)} * low_half(b);
    const digit_word inner = digit_word{high_half(a)} * low_half(b) + high_half(low);
    const digit_word outer = digit_word{low_half(a)} * high_half(b) + low_half(inner);
    return {digit_word{high_half(a)} * high_half(b) + high_half(inner) + high_half(outer),
            outer << 64 | low_half(low)};
}

double_word shifted_left(double_word number, int bits) { // bits 1..127
    return {number.high << bits | number.low >> (128 - bits), number.low << bits};
}

// A divisor of two halves, its top bit set, with the reciprocal by which one multiplication
// estimates 64 quotient bits: floor((2^192 - 1) / divisor) - 2^64.
struct divisor {
    digit_word number;
    uint64_t reciprocal;
};

divisor prepare_divisor(digit_word number) {
    const uint64_t top = high_half(number), low = low_half(number);
    uint64_t reciprocal = low_half((digit_word{~top} << 64 | ~uint64_t{0}) / top);
    uint64_t rest = top * reciprocal + low;
    if (rest < low) {
        --reciprocal;
        if (rest >= top) {
            --reciprocal;
            rest -= top;
        }
        rest -= top;
    }
    const digit_word part = digit_word{reciprocal} * low;
    rest += high_half(part);
    if (rest < high_half(part)) {
        --reciprocal;
        if ((digit_word{rest} << 64 | low_half(part)) >= number)
            --reciprocal;
    }
    return {number, reciprocal};
}

// Divides rest * 2^64 + next, rest below the divisor, which leaves the new rest.
uint64_t next_quotient(const divisor &by, digit_word &rest, uint64_t next) {
    const digit_word estimate = digit_word{by.reciprocal} * high_half(rest) + rest;
    uint64_t quotient = high_half(estimate) + 1;
    const uint64_t top = low_half(rest) - high_half(estimate) * high_half(by.number);
    rest = (digit_word{top} << 64 | next) - digit_word{low_half(by.number)} * high_half(estimate) -
           by.number;
    const bool too_great = high_half(rest) >= low_half(estimate); // as often as not: no branch
    quotient -= too_great;
    rest += by.number & (digit_word{0} - too_great);
    if (rest >= by.number) [[unlikely]] {
        ++quotient;
        rest -= by.number;
    }
    return quotient;
}

// floor(a * 10^34 / b) for a, b in 10^30 .. 10^32 - 1; below 10^36.
digit_word quotient_of(digit_word a, digit_word b) {
    const int shift = std::countl_zero(high_half(b));
    const double_word dividend = shifted_left(full_product(a, ten_to_34), shift);
    const divisor by = prepare_divisor(b << shift);
    digit_word rest = dividend.high;
    const uint64_t high = next_quotient(by, rest, high_half(dividend.low));
    return digit_word{high} << 64 | next_quotient(by, rest, low_half(dividend.low));
}

inline int multiply(const operand &x, const operand &y, dec_value *result) {
    if (x.count == 0 || y.count == 0)
        return set_zero(result);
    const limb_pair p = limbs_of_word(x.digits), q = limbs_of_word(y.digits);
    // Four limbs of product; of the lower two only the first bytes and whether they are 0 matter.
    const limb_pair last = split_number(digit_word{p.low} * q.low);
    const limb_pair third =
        split_number(digit_word{p.high} * q.low + digit_word{p.low} * q.high + last.high);
    const limb_pair first = split_number(digit_word{p.high} * q.high + third.high);
    const digit_word word = word_of_limbs(first);
    const uint64_t tail = digits_of_limb(third.low);
    const int zeros = word >> 120 == 0; // the product of two leading bytes may have one byte alone
    const uint64_t after = zeros != 0 ? tail << 8 : tail;
    return store_result(result, x.sign == y.sign, x.exponent + y.exponent - zeros,
                        word << 8 * zeros | (zeros != 0 ? tail >> 56 : 0),
                        static_cast<unsigned>(after >> 56), (after << 8) != 0 || last.low != 0);
}

inline int divide(const operand &x, const operand &y, dec_value *result) {
    if (y.count == 0) {
        set_zero(result);
        return err_zero_divide;
    }
    if (x.count == 0)
        return set_zero(result);
    // Eighteen quotient bytes: one or two, then sixteen.
    digit_word quotient =
        quotient_of(limbs_of_word(x.digits).number(), limbs_of_word(y.digits).number());
    uint64_t top = high_half(quotient) / (high_half(ten_to_32) + 1); // or one more
    quotient -= top * ten_to_32;
    if (quotient >= ten_to_32) {
        ++top;
        quotient -= ten_to_32;
    }
    const digit_word rest = word_of_limbs(split_number(quotient));
    const bool longer = top >= 100;
    const uint64_t first = top / 100 << 8 | top % 100;
    const int cut = longer ? 16 : 8; // bits of `rest` right of the word
    return store_result(result, x.sign == y.sign, x.exponent - y.exponent + longer,
                        digit_word{first} << (128 - cut) | rest >> cut,
                        static_cast<unsigned>(rest >> (cut - 8)) & 0xFF,
                        longer && (rest & 0xFF) != 0);
}

} // namespace

int decmul(const dec_value *a, const dec_value *b, dec_value *result) {
    return work_on_pair<multiply>(a, b, result);
}

int decdiv(const dec_value *a, const dec_value *b, dec_value *result) {
    return work_on_pair<divide>(a, b, result);
}
