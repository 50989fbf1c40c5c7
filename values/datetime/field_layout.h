// A qualifier word taken apart, and where its fields lie among the bytes of a value.
//
// The operations of these folders check qualifiers and records when they are entered, work on bytes
// or integers, and pack the result last, which may be one of their operands. Workers leave a result
// alone when they fail, and answer an error number; finish() gives that its public effects.

#pragma once

#include "values/decimal/operand.h"
#include <kestrion/datetime_fields.h>
#include <kestrion/datetime_units.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>

#include <array>
#include <string.h>

namespace kestrion {

struct field_layout {
    int start;  // first unit
    int end;    // last unit
    int length; // decimal digits

    explicit constexpr field_layout(int word)
        : start(word >> 4 & 15), end(word & 15), length(word >> 8) {}

    constexpr int leading_digits() const { return start - end + length; }
    constexpr int leading_bytes() const { return (leading_digits() + 1) >> 1; }
    constexpr int bytes() const { return (length + (end & 1) + 1) >> 1; }
    constexpr int exponent() const { return (length - end + 11) / 2; }
    constexpr int last_field() const { return end > unit_second ? +unit_second : end; }
    constexpr int fraction_digits() const { return end > unit_second ? end - unit_second : 0; }
    constexpr bool has(int unit) const { return start <= unit && unit <= end; }

    // The place of a unit's byte, of the last byte for the first unit. The bytes of a fraction are
    // units 12, 14 and 16.
    constexpr int offset(int unit) const { return leading_bytes() - 1 + (unit - start) / 2; }
};

// Ranges of the fields by unit / 2; the day's is never used, and every fraction byte has 100.
inline constexpr int field_base[] = {100, 12, 1, 24, 60, 60, 100, 100, 100};

inline constexpr bool is_year_month(const field_layout &q) { return q.start < unit_day; }

// A start of 12 stands for the fraction, whose least end is 11.
inline constexpr bool starts_by(const field_layout &q, int end) {
    return (q.start == unit_fraction ? +unit_fraction1 : q.start) <= end;
}

// The one datetime word of each start and end, by the low byte of the word; 0 for none.
inline constexpr auto datetime_words = [] {
    std::array<int16_t, 256> words = {};
    for (int start = unit_year; start <= unit_fraction; start += 2) {
        for (int end = unit_year; end <= unit_fraction5; ++end) {
            const int width = start == unit_year ? 4 : 2;
            const field_layout q(qualifier_word(width + end - start, start, end));
            if (starts_by(q, end) && (end % 2 == 0 || end > unit_second)) {
                words[static_cast<size_t>(start) * 16 + static_cast<size_t>(end)] =
                    static_cast<int16_t>(qualifier_word(q.length, start, end));
            }
        }
    }
    return words;
}();

inline constexpr bool is_datetime_qualifier(int word) {
    return word > 0 && datetime_words[static_cast<size_t>(word & 0xFF)] == word;
}

// Any width of the first field, but that of a fraction alone.
inline constexpr bool is_qualifier(int word) {
    const int usual = datetime_words[static_cast<size_t>(word & 0xFF)];
    const field_layout q(word);
    return usual != 0 && word > 0 && q.length < qualifier_length_limit && q.leading_digits() > 0 &&
           (q.start != unit_fraction || word == usual);
}

inline constexpr bool is_interval_qualifier(int word) {
    const field_layout q(word);
    return is_qualifier(word) && (q.start > unit_month || q.end < unit_day);
}

// The word in which a difference of datetimes is computed: counted in days where it reaches them.
inline constexpr int difference_qualifier(int word) {
    const field_layout q(word);
    return q.start < unit_day && q.end >= unit_day ? qualifier_word(q.length, unit_day, q.end)
                                                   : word;
}

inline constexpr dec_value null_decimal = {
    .exponent = 0, .sign = dec_null_sign, .ndigits = 0, .digits = {}};

inline bool is_null(const dec_value &value) { return value.sign == dec_null_sign; }

// A word with another byte n, counted from the left.
inline digit_word with_byte(digit_word word, int n, int byte) {
    const int shift = 8 * (word_bytes - 1 - n);
    return (word & ~(digit_word{0xFF} << shift)) | digit_word{static_cast<unsigned>(byte)} << shift;
}

// Loads any record; one test finds the usual ones. NULL and malformed records leave an operand
// without digits. Operations take its bytes from it at once and pass these on: they fit registers.
inline loaded load_value(const dec_value *dec, operand *x) {
    if (dec != nullptr) {
        const uint64_t header = header_of(*dec);
        *x = operand_of(*dec, header);
        if ((digits_not_normal(x->digits) | header_faults(header, header)) == 0) [[likely]]
            return loaded::value;
    }
    const loaded_operand any = load_operand(dec);
    *x = any.value;
    return any.state;
}

// Loads two records: values when both are, malformed when one is.
inline loaded load_values(const dec_value *a, const dec_value *b, operand *x, operand *y) {
    if (load_normal_pair(a, b, *x, *y)) [[likely]]
        return loaded::value;
    const loaded first = load_value(a, x);
    const loaded second = load_value(b, y);
    if (first == loaded::malformed || second == loaded::malformed)
        return loaded::malformed;
    return first == loaded::null ? first : second;
}

// A record that is known to be a value or NULL, which has no digits.
inline operand operand_in(const dec_value &dec) {
    operand x;
    load_value(&dec, &x);
    return x;
}

// The low digit of an odd fraction is no part of the value.
inline digit_word drop_unused_digit(digit_word word, const field_layout &q) {
    if ((q.end & 1) == 0)
        return word;
    const int last = q.bytes() - 1;
    return word - (digit_word{byte_of(word, last) % 10} << 8 * (word_bytes - 1 - last));
}

// The digits of a value from byte `at` on, as far as they lie before byte `end`. A decimal above the
// qualifier's range has a negative place and reads as zero: a program put it there unscaled.
inline digit_word digits_at(const operand &x, int at, int begin, int end) {
    if (at < begin || at >= end)
        return 0;
    const digit_word word = at == 0 ? x.digits : x.digits >> 8 * at;
    return x.count > end - at ? word & leading_bytes[static_cast<size_t>(end)] : word;
}

// The bytes of a value under its qualifier, zero past their end.
inline digit_word field_word(const operand &x, const field_layout &q) {
    return drop_unused_digit(digits_at(x, q.exponent() - x.exponent, 0, q.bytes()), q);
}

inline digit_word field_word(const dec_value &value, const field_layout &q) {
    return field_word(operand_in(value), q);
}

inline void unpack_fields(const dec_value &value, const field_layout &q, unsigned char *bytes) {
    store_word(field_word(value, q), bytes);
}

// Makes the value of bytes 0..99 that a qualifier has, and nothing else. Returns 0: no exponent is out
// of range.
inline int pack_whole_word(dec_value *value, const field_layout &q, digit_word word, int sign) {
    if (word == 0)
        return set_zero(value);
    const int zeros = leading_zero_bytes(word);
    return store_stripped(value, sign, q.exponent() - zeros, word << 8 * zeros);
}

// The same of the part that the qualifier has.
inline int pack_word(dec_value *value, const field_layout &q, digit_word word, int sign) {
    word = drop_unused_digit(word & leading_bytes[static_cast<size_t>(q.bytes())], q);
    return pack_whole_word(value, q, word, sign);
}

inline int pack_fields(dec_value *value, const field_layout &q, const unsigned char *bytes,
                       int sign) {
    return pack_word(value, q, load_word(bytes), sign);
}

// Whether the fields of an interval's bytes are in their ranges.
bool interval_in_range(digit_word word, const field_layout &q);

// Gives an operation's answer, which is also the conversion error.
inline int answer(int code) {
    set_toerrno(code);
    return code;
}

// The same for an operation with a result, which is NULL after a failure.
inline int finish(int code, dec_value *result) {
    if (code != 0)
        *result = null_decimal;
    return answer(code);
}

// What an operation answers whose operands are not values.
inline int no_value(loaded state) { return state == loaded::malformed ? -1 : 0; }

} // namespace kestrion
