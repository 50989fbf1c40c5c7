// A decimal on its way through an operation: checked, its digits in one word, without leading zero
// bytes; and how results become records.

#pragma once

#include <kestrion/decimal.h>
#include <kestrion/error_numbers.h>

#include "values/decimal/packed.h"

namespace kestrion {

struct operand {
    digit_word digits; // first byte not 0, unless there are none
    int exponent;      // -64 without digits; below -64 where a record began with zero bytes
    int count;         // digit bytes, 0..16; the last may be 0
    int sign;          // 1 or 0
};

inline void set_null(dec_value *dec) { *dec = {.sign = dec_null_sign}; }

inline int set_zero(dec_value *dec) {
    *dec = {.exponent = dec_exponent_min, .sign = dec_positive};
    return 0;
}

// Stores the digits, an exponent out of range as the nearest in range.
// Returns 0, err_overflow or err_underflow.
inline int store_digits(dec_value *dec, int sign, int exponent, digit_word digits, int count) {
    int result = 0;
    if (exponent < dec_exponent_min || exponent > dec_exponent_max) {
        result = exponent < 0 ? err_underflow : err_overflow;
        exponent = exponent < 0 ? dec_exponent_min : dec_exponent_max;
    }
    dec->exponent = static_cast<int16_t>(exponent);
    dec->sign = static_cast<int16_t>(sign);
    dec->ndigits = static_cast<int16_t>(count);
    store_word(digits, dec->digits);
    return result;
}

// Stores digits whose first byte is not 0 without their trailing zero bytes.
inline int store_stripped(dec_value *dec, int sign, int exponent, digit_word digits) {
    return store_digits(dec, sign, exponent, digits, word_bytes - trailing_zero_bytes(digits));
}

// Stores a result whose digits go on after the word: `next` is the byte that follows, `more` says
// that a byte after that is not 0. What is rounded keeps its zero bytes: there was something there.
// Half of all roundings are upward, so that is not a branch; only sixteen bytes of 99 carry over.
inline int store_result(dec_value *dec, int sign, int exponent, digit_word digits, unsigned next,
                        bool more) {
    if (next == 0 && !more)
        return store_stripped(dec, sign, exponent, digits);
    unsigned carry;
    const digit_word rounded = packed_sum(digits, next >= 50, &carry);
    if (carry != 0) [[unlikely]]
        return store_digits(dec, sign, exponent + 1, digit_word{1} << 120, word_bytes);
    return store_digits(dec, sign, exponent, rounded, word_bytes);
}

// Whether the words of a record other than NULL are in range.
inline bool fields_in_range(const dec_value &dec) {
    return static_cast<uint16_t>(dec.sign) <= 1 && static_cast<uint16_t>(dec.exponent + 64) < 128 &&
           static_cast<uint16_t>(dec.ndigits) <= dec_digit_bytes &&
           (dec.ndigits != 0 || dec.exponent == dec_exponent_min);
}

// -- Loading -------------------------------------------------------------------------------------

enum class loaded { value, null, malformed };

// Loads any record. Zero bytes ahead of the digits, which decverify allows and no operation makes,
// are dropped. Operands pass by value: one whose address is not taken stays in registers.
struct loaded_operand {
    loaded state;
    operand value;
};
loaded_operand load_operand(const dec_value *dec);

// The three words of a record in the low 48 bits of one: exponent, sign, ndigits from the right.
inline uint64_t header_of(const dec_value &dec) {
    if constexpr (std::endian::native == std::endian::little) {
        uint64_t header;
        memcpy(&header, &dec, sizeof header);
        return header;
    }
    return uint64_t{static_cast<uint16_t>(dec.ndigits)} << 32 |
           uint64_t{static_cast<uint16_t>(dec.sign)} << 16 | static_cast<uint16_t>(dec.exponent);
}

// Not 0 unless both have a sign of 0 or 1, ndigits 1..16 and an exponent -64..63, whose bits from 6
// up are all alike.
inline uint64_t header_faults(uint64_t a, uint64_t b) {
    constexpr uint64_t one_digit = UINT64_C(1) << 32;
    return (((a - one_digit) | (b - one_digit)) & UINT64_C(0x0000FFF0FFFE0000)) |
           (((a ^ a >> 1) | (b ^ b >> 1)) & 0x7FC0);
}

inline operand operand_of(const dec_value &dec, uint64_t header) {
    const auto count = static_cast<int>(header >> 32 & 0x1F);
    return {.digits = load_word(dec.digits) & leading_bytes[static_cast<size_t>(count)],
            .exponent = dec.exponent,
            .count = count,
            .sign = dec.sign};
}

// Loads two values in the normal form, as nearly all are; one test says so. Returns false, with
// nothing of use in x and y, for zero, NULL and malformed records and for digits that begin with
// zero bytes. Inlined, it leaves the operands in registers.
inline bool load_normal_pair(const dec_value *a, const dec_value *b, operand &x, operand &y) {
    if (a == nullptr || b == nullptr)
        return false;
    const uint64_t header_a = header_of(*a), header_b = header_of(*b);
    x = operand_of(*a, header_a);
    y = operand_of(*b, header_b);
    const uint64_t faults = digits_not_normal(x.digits) | digits_not_normal(y.digits) |
                            header_faults(header_a, header_b);
    return faults == 0;
}

// What an operation does with two values.
using pair_work = int(const operand &x, const operand &y, dec_value *result);

// Loads any two records and has the work done if both are values; else the result is NULL.
int work_on_any_pair(pair_work *work, const dec_value *a, const dec_value *b, dec_value *result);

template <pair_work work>
inline int work_on_pair(const dec_value *a, const dec_value *b, dec_value *result) {
    operand x, y;
    if (load_normal_pair(a, b, x, y)) [[likely]]
        return work(x, y, result);
    return work_on_any_pair(work, a, b, result);
}

} // namespace kestrion
