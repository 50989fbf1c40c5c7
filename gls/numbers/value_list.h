// The variable arguments of a formatter or scanner, taken one after the other or, when directives
// are numbered, by number.
//
// A list can be walked only once and only when the type of each argument is known. So the numbers
// of all directives are announced first; then the list is walked to the highest number.

#pragma once

#include "gls/numbers/number_directive.h"

#include <stdarg.h>
#include <stdint.h>

namespace kestrion {

enum class value_kind : uint8_t { none, int_value, long_value, double_value, pointer };

union listed_value {
    int64_t integer; // an int is extended with its sign
    double number;
    void *pointer;
};

class value_list {
public:
    value_list() = default;
    value_list(const value_list &) = delete;
    value_list &operator=(const value_list &) = delete;

    // Begun and ended by the operation that has the arguments: with va_start, which spares a copy,
    // or with va_copy.
    va_list list;

    // The value of a directive or star: the next one, or that of its number. False when numbers are
    // mixed with their absence.
    bool take(int32_t index, value_kind kind, listed_value &out);

    // Announces a numbered value; false when it has another type already, or when values without a
    // number were taken.
    bool announce(int32_t index, value_kind kind);
    // Fetches what was announced; false when a number below the highest is missing.
    bool fetch();

private:
    listed_value next(value_kind kind);

    bool walked_ = false; // values were taken from the list
    int32_t count_ = 0;   // highest number announced; 0: not numbered
    value_kind kinds_[value_index_limit] = {};
    listed_value values_[value_index_limit];
};

} // namespace kestrion
