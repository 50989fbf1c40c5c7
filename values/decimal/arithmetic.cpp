// Sums, order and rounding: the digits of a value are one word.

#include <kestrion/decimal.h>

#include "values/decimal/operand.h"

using namespace kestrion;

namespace {

// Seventeen digit bytes of a value moved right by `shift` bytes, 0 or more: a word and the byte
// after it.
struct moved {
    digit_word word;
    unsigned next;
};

inline moved moved_right(digit_word digits, int shift) {
    if (shift >= word_bytes) [[unlikely]]
        return {0, shift == word_bytes ? byte_of(digits, 0) : 0};
    const int back = shift - 1; // bytes of the word right of `next`
    const uint64_t half = back < 8 ? low_half(digits) : high_half(digits);
    const auto next = static_cast<unsigned>(half >> (8 * back & 63)) & 0xFF;
    return {digits >> 8 * shift, shift != 0 ? next : 0};
}

// Stores a sum of eighteen bytes: `before`, which is mostly 0, the word, and `next`.
inline int store_sum(dec_value *result, int sign, int exponent, unsigned before, digit_word word,
                     unsigned next) {
    const bool longer = before != 0;
    const unsigned last = static_cast<unsigned>(word) & 0xFF;
    return store_result(result, sign, exponent + longer,
                        word >> (longer ? 8 : 0) | digit_word{before} << 120, longer ? last : next,
                        longer && next != 0);
}

// Stores a difference, which may begin with zero bytes.
inline int store_difference(dec_value *result, int sign, int exponent, digit_word word,
                            unsigned next) {
    if (word >> 120 != 0) [[likely]]
        return store_result(result, sign, exponent, word, next, false);
    if (word == 0)
        return next == 0
                   ? set_zero(result)
                   : store_digits(result, sign, exponent - word_bytes, digit_word{next} << 120, 1);
    const int zeros = leading_zero_bytes(word);
    word = word << 8 * zeros | digit_word{next} << 8 * (zeros - 1);
    return store_stripped(result, sign, exponent - zeros, word);
}

// |larger| +- |smaller|, whose exponents are in that order, with the sign of `larger`. Only when
// they are equal can the second magnitude be the greater one; its difference is then turned round
// and has the other sign.
inline int combine(const operand &larger, const operand &smaller, bool subtract,
                   dec_value *result) {
    const moved low = moved_right(smaller.digits, larger.exponent - smaller.exponent);
    unsigned passed;
    if (!subtract) {
        const digit_word sum = packed_sum(larger.digits, low.word, &passed);
        return store_sum(result, larger.sign, larger.exponent, passed, sum, low.next);
    }
    digit_word word = packed_difference(larger.digits, low.word + (low.next != 0), &passed);
    if (passed != 0)
        word = packed_difference(0, word, &passed);
    return store_difference(result, larger.sign ^ static_cast<int>(passed), larger.exponent, word,
                            low.next != 0 ? 100 - low.next : 0);
}

inline int add_operands(const operand &x, const operand &y, dec_value *result) {
    if (x.count == 0 || y.count == 0) [[unlikely]] {
        const operand &other = x.count == 0 ? y : x;
        return other.count == 0 ? set_zero(result)
                                : store_stripped(result, other.sign, other.exponent, other.digits);
    }
    const bool swapped = x.exponent < y.exponent; // either is as likely: no branch
    return combine(
        {.digits = swapped ? y.digits : x.digits,
         .exponent = swapped ? y.exponent : x.exponent,
         .sign = swapped ? y.sign : x.sign},
        {.digits = swapped ? x.digits : y.digits, .exponent = swapped ? x.exponent : y.exponent},
        x.sign != y.sign, result);
}

// Magnitudes in the order given. A borrow that passes the first byte is dropped and leaves a 99.
template <bool subtract>
int combine_in_order(const operand &larger, const operand &smaller, dec_value *result) {
    if (larger.exponent < smaller.exponent)
        return -1;
    if (larger.count == 0 && smaller.count == 0)
        return set_zero(result);
    if (!subtract || larger.exponent != smaller.exponent || larger.digits >= smaller.digits)
        return combine(larger, smaller, subtract, result);
    unsigned borrow;
    const digit_word word = packed_difference(larger.digits, smaller.digits, &borrow);
    return store_sum(result, larger.sign, larger.exponent, 99, word, 0);
}

inline int subtract_operands(const operand &x, const operand &y, dec_value *result) {
    return add_operands(
        x, {.digits = y.digits, .exponent = y.exponent, .count = y.count, .sign = 1 - y.sign},
        result);
}

// The order of two values other than zero; where nothing is likely, without a branch.
inline int order_of(const operand &x, const operand &y) {
    int order = x.digits < y.digits ? -1 : 1;
    if (x.digits == y.digits)
        order = x.count - y.count; // zero bytes that a rounding left count
    order = x.exponent != y.exponent ? x.exponent - y.exponent : order;
    order = x.sign != y.sign ? 1 : order;
    order = x.sign != 0 ? order : -order;
    return (order > 0) - (order < 0);
}

[[gnu::cold]] int order_of_any(const dec_value *a, const dec_value *b) {
    const auto [state_a, x] = load_operand(a);
    const auto [state_b, y] = load_operand(b);
    if (state_a != loaded::value || state_b != loaded::value)
        return -2;
    if (x.sign != y.sign)
        return x.sign != 0 ? 1 : -1;
    if (x.count != 0 && y.count != 0)
        return order_of(x, y);
    const int order = (x.count != 0) - (y.count != 0);
    return x.sign != 0 ? order : -order;
}

// Leaves the first `keep` bytes, without the zero bytes at their end.
void keep_digits(dec_value *dec, int64_t keep) {
    while (keep > 0 && dec->digits[keep - 1] == 0)
        --keep;
    if (keep <= 0) {
        set_zero(dec);
        return;
    }
    dec->ndigits = static_cast<int16_t>(keep);
}

void truncate(dec_value *dec, int64_t right) {
    const int64_t keep = ((right + 1) >> 1) + dec->exponent;
    if (keep > dec->ndigits)
        return;
    if (keep > 0 && right % 2 != 0)
        dec->digits[keep - 1] = static_cast<unsigned char>(dec->digits[keep - 1] / 10 * 10);
    keep_digits(dec, keep);
}

} // namespace

int decadd(const dec_value *a, const dec_value *b, dec_value *result) {
    return work_on_pair<add_operands>(a, b, result);
}

int decsub(const dec_value *a, const dec_value *b, dec_value *result) {
    return work_on_pair<subtract_operands>(a, b, result);
}

int decadsb(const dec_value *larger, const dec_value *smaller, dec_value *result, int subtract) {
    return subtract != 0 ? work_on_pair<combine_in_order<true>>(larger, smaller, result)
                         : work_on_pair<combine_in_order<false>>(larger, smaller, result);
}

int deccmp(const dec_value *a, const dec_value *b) {
    operand x, y;
    return load_normal_pair(a, b, x, y) ? order_of(x, y) : order_of_any(a, b);
}

void dectrunc(dec_value *dec, int right) {
    if (decverify(dec) == 0 && dec->sign != dec_null_sign)
        truncate(dec, right);
}

void decround(dec_value *dec, int right) {
    const auto [state, value] = load_operand(dec);
    if (state != loaded::value || int64_t{dec->ndigits - dec->exponent} * 2 <= right)
        return;
    const unsigned half = right % 2 != 0 ? 5 : 50;
    add_operands(value,
                 {.digits = digit_word{half} << 120,
                  .exponent = -(right >> 1),
                  .count = 1,
                  .sign = value.sign},
                 dec);
    truncate(dec, right); // whatever became of the sum: a value that overflows is cut to zero
}
