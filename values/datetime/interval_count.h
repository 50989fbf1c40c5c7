// An interval as one number: how many of its last units it has.

#pragma once

#include "values/datetime/field_layout.h"

#include <iterator>

namespace kestrion {

// The largest first field that an operation makes or takes.
inline constexpr int64_t field_count_limit = 2147483647;

// 24 digits of days make 34 digits of seconds and fractions: more than 64 bits hold.
struct interval_count {
    unsigned __int128 whole; // of the last unit, or of seconds when there is a fraction
    int32_t fraction;        // of a second, in hundred-thousandths
};

// Writes a number into the first field, whose bytes are zero.
// Returns 0, or err_intv_overflow when it doesn't fit the field or the limit.
inline int set_first_field(digit_word *word, const field_layout &q, uint64_t count) {
    constexpr int64_t powers[] = {1,      10,      100,      1000,      10000,
                                  100000, 1000000, 10000000, 100000000, 1000000000};
    const auto digits = static_cast<size_t>(q.leading_digits());
    if (count > field_count_limit || (q.start == unit_fraction && count != 0))
        return err_intv_overflow;
    auto left = static_cast<uint32_t>(count);
    if (digits < std::size(powers) && left >= powers[digits])
        return err_intv_overflow;
    uint64_t bytes = 0;
    for (int shift = 0; shift < 40; shift += 8, left /= 100) // five bytes hold the limit
        bytes |= uint64_t{left % 100} << shift;
    *word |= digit_word{bytes} << 8 * (word_bytes - q.leading_bytes());
    return 0;
}

// Counts down to `end`, which need not be q's: fields between them count as zero.
interval_count count_fields(digit_word word, const field_layout &q, int end);

// The reverse; *word is zero before. Returns as set_first_field.
int spread_count(const interval_count &count, digit_word *word, const field_layout &q);

} // namespace kestrion
