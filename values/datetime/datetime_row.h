// The fields of a datetime in places of their own, whatever its qualifier: one word with a byte for
// every two digits.
//
//     byte     0  1    2     3    4    5      6      7   8   9
//     field    year  month  day  hour minute second  fraction
//
// The point of the decimal comes after byte 6, so a value's digits go to their place by its exponent
// alone. Bytes that the qualifier hasn't got are zero.

#pragma once

#include "values/date/calendar.h"
#include "values/datetime/field_layout.h"

namespace kestrion {

inline constexpr int row_point = 7;

// Place of a unit's byte, of the last one for a year.
inline constexpr int row_place(int unit) { return unit / 2 + 1; }

inline constexpr int row_begin(const field_layout &q) {
    return q.start == unit_year ? 0 : row_place(q.start);
}
inline constexpr int row_end(const field_layout &q) {
    return q.end > unit_second ? row_point + (q.fraction_digits() + 1) / 2 : row_place(q.end) + 1;
}

// A number in byte n, to be joined with others.
constexpr digit_word in_row(int n, unsigned number) {
    return digit_word{number} << 8 * (word_bytes - 1 - n);
}

// The row of a value.
inline digit_word row_of(const operand &x, const field_layout &q) {
    const int end = row_end(q);
    const digit_word row = digits_at(x, row_point - x.exponent, row_begin(q), end);
    return (q.end & 1) != 0 ? row - in_row(end - 1, byte_of(row, end - 1) % 10) : row;
}

inline digit_word row_of(const dec_value &value, const field_layout &q) {
    return row_of(operand_in(value), q);
}

// Makes the value of a row that holds nothing else. Returns 0.
inline int pack_whole_row(dec_value *value, digit_word row, int sign) {
    if (row == 0)
        return set_zero(value);
    const int zeros = leading_zero_bytes(row);
    return store_stripped(value, sign, row_point - zeros, zeros == 0 ? row : row << 8 * zeros);
}

// The same of the part of a row that the qualifier has.
inline int pack_row(dec_value *value, const field_layout &q, digit_word row, int sign) {
    const int end = row_end(q);
    row &=
        leading_bytes[static_cast<size_t>(end)] & ~leading_bytes[static_cast<size_t>(row_begin(q))];
    if ((q.end & 1) != 0)
        row -= in_row(end - 1, byte_of(row, end - 1) % 10);
    return pack_whole_row(value, row, sign);
}

struct row_date {
    int year;
    int month;
    int day;
};

inline row_date date_in(digit_word row) {
    return {.year = static_cast<int>(byte_of(row, 0) * 100 + byte_of(row, 1)),
            .month = static_cast<int>(byte_of(row, 2)),
            .day = static_cast<int>(byte_of(row, 3))};
}

inline digit_word with_date(digit_word row, const row_date &date) {
    const auto year = static_cast<uint64_t>(date.year);
    const uint64_t bytes = year / 100 << 24 | year % 100 << 16 |
                           static_cast<uint64_t>(date.month) << 8 | static_cast<uint64_t>(date.day);
    return (row & ~leading_bytes[4]) | digit_word{bytes << 32} << 64;
}

// Whether every field of a row is in its range, as far as the qualifier has it.
inline bool row_in_range(digit_word row, const field_layout &q) {
    constexpr digit_word greatest = in_row(0, 99) | in_row(1, 99) | in_row(2, 12) | in_row(3, 31) |
                                    in_row(4, 23) | in_row(5, 59) | in_row(6, 59) | in_row(7, 99) |
                                    in_row(8, 99) | in_row(9, 99);
    // A byte above its greatest shows in the top bit of the difference.
    if (((greatest - row) & top_bits) != 0)
        return false;
    const row_date date = date_in(row);
    if ((q.start == unit_year && date.year == 0) || (q.has(unit_month) && date.month == 0) ||
        (q.has(unit_day) && date.day == 0))
        return false;
    // Without a year February has 29 days, without a month any month 31.
    return date.day <= 28 || !q.has(unit_month) ||
           date.day <= month_length(date.month, q.start != unit_year || is_leap_year(date.year));
}

} // namespace kestrion
