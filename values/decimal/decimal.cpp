// What a well-formed record is, and how records are made and described.

#include <kestrion/decimal.h>

#include <algorithm>

#include "values/decimal/operand.h"

namespace kestrion {

namespace {

operand without_leading_zeros(operand x) {
    if (x.digits == 0)
        return {.exponent = dec_exponent_min, .sign = x.sign};
    const int zeros = leading_zero_bytes(x.digits);
    return {.digits = x.digits << 8 * zeros,
            .exponent = x.exponent - zeros,
            .count = x.count - zeros,
            .sign = x.sign};
}

} // namespace

loaded_operand load_operand(const dec_value *dec) {
    if (decverify(dec) != 0)
        return {.state = loaded::malformed};
    if (dec->sign == dec_null_sign)
        return {.state = loaded::null};
    return {loaded::value, without_leading_zeros(operand_of(*dec, header_of(*dec)))};
}

int work_on_any_pair(pair_work *work, const dec_value *a, const dec_value *b, dec_value *result) {
    const loaded_operand x = load_operand(a), y = load_operand(b);
    if (x.state == loaded::value && y.state == loaded::value)
        return work(x.value, y.value, result);
    set_null(result);
    return x.state == loaded::malformed || y.state == loaded::malformed ? -1 : 0;
}

} // namespace kestrion

using namespace kestrion;

namespace {

// 1 when the last byte has only its tens digit.
int unused_digits(const dec_value *dec) { return dec->digits[dec->ndigits - 1] % 10 == 0; }

} // namespace

int decverify(const dec_value *dec) {
    if (dec == nullptr)
        return -1;
    if (dec->sign == dec_null_sign)
        return 0;
    if (!fields_in_range(*dec))
        return -1;
    const digit_word used =
        load_word(dec->digits) & leading_bytes[static_cast<size_t>(dec->ndigits)];
    return digits_above_99(used) == 0 ? 0 : -1;
}

int dec_is_zero(const dec_value *dec) {
    return dec->ndigits <= 0 && dec->exponent == dec_exponent_min;
}

void deccopy(const dec_value *source, dec_value *target) { *target = *source; }

int decload(dec_value *dec, int sign, int exponent, const unsigned char *digits, int count) {
    if (sign == dec_null_sign) {
        set_null(dec);
        return 0;
    }
    while (count > 0 && digits[count - 1] == 0)
        --count;
    if (count <= 0)
        return set_zero(dec);
    int64_t wide_exponent = exponent;
    for (; *digits == 0; ++digits, --count)
        --wide_exponent;
    unsigned char first[word_bytes] = {};
    memcpy(first, digits, static_cast<size_t>(count < word_bytes ? count : word_bytes));
    const unsigned next = count > word_bytes ? digits[word_bytes] : 0;
    // Far outside the range it does not matter how far.
    const int near_exponent = static_cast<int>(std::clamp<int64_t>(wide_exponent, -1000, 1000));
    return store_result(dec, sign, near_exponent, load_word(first), next, count > word_bytes + 1);
}

int dec2prec(const dec_value *dec) {
    if (decverify(dec) != 0 || dec->sign == dec_null_sign || dec->ndigits == 0)
        return 0;
    const int unused = unused_digits(dec);
    const int scale = 2 * (dec->ndigits - dec->exponent) - unused;
    const int precision = 2 * dec->ndigits - unused - (dec->digits[0] < 10);
    // Below 0 the scale counts the zeros of an integer that ends in them.
    return scale >= 0 ? scale + (precision << 8) : (precision - scale) << 8;
}

int decprec(const dec_value *dec) {
    const int word = dec2prec(dec), scale = word & 0xFF;
    return word >> 8 < scale ? scale | scale << 8 : word;
}
