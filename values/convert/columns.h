// What storing and loading columns have in common.

#pragma once

#include <kestrion/datetime_units.h>
#include <kestrion/value_binary.h>
#include <kestrion/value_types.h>

namespace kestrion {

inline constexpr int greatest_precision = 32;
inline constexpr int default_lvarchar = 2048;

inline int not_negative(int length) { return length < 0 ? 0 : length; }

inline int high_byte(int word) { return word >> 8 & 0xFF; }

// Bytes of a stored decimal, datetime or interval; their end and their scale are odd alike.
inline int stored_decimal_bytes(int word) { return (high_byte(word) + (word & 1) + 3) >> 1; }

// Whether a decimal's precision or a qualifier's length is one that values have.
inline bool has_sound_precision(int sql_type, int word) {
    const bool dated = sql_type == sql_datetime || sql_type == sql_interval;
    return high_byte(word) <= (dated ? qualifier_length_limit - 1 : greatest_precision);
}

// Data bytes and all bytes of a variable binary column.
inline int binary_limit(int sql_type, int length) {
    if (sql_type == sql_boolean)
        return 1;
    if (sql_type == sql_lvarchar && length <= 0)
        return default_lvarchar;
    return not_negative(length);
}
inline int binary_column_bytes(int sql_type, int length) {
    const int limit = binary_limit(sql_type, length);
    return limit > INT32_MAX - binary_row_header ? INT32_MAX : limit + binary_row_header;
}

} // namespace kestrion
