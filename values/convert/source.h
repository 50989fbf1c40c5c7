// What kind of value a cell holds, and its text.

#pragma once

#include <kestrion/value.h>

#include <stdint.h>

namespace kestrion {

enum class source_kind : uint8_t {
    text,
    integer,
    floating,
    decimal,
    int8,
    bigint,
    datetime,
    interval,
    null, // the kinds above are the columns of the conversion matrix
    blob,
    collection,
    binary,
    boolean,
    other,
};

inline constexpr int matrix_columns = static_cast<int>(source_kind::null);

// The SQL type of a cell; -1 for none.
int sql_type_of(const value_rec &value);

// The kind of a cell, NULL ones and those of type 9 by that alone.
source_kind kind_of(const value_rec &value);

// The kind of a SQL type.
source_kind kind_of_type(int sql_type);

// The bytes of a text, or none for a pointer or length that cannot be one.
struct text_bytes {
    const char *at;
    int32_t length;

    explicit text_bytes(const value_rec &value)
        : at(static_cast<const char *>(value.payload.text.data)),
          length(at == nullptr || value.payload.text.text_length < 0
                     ? 0
                     : value.payload.text.text_length) {}
};

inline bool is_small_float(const value_rec &value) { return sql_type_of(value) == 4; }

// Sets the conversion error and returns it.
int converted(int code);

} // namespace kestrion
