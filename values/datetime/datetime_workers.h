// Extension, dates and arithmetic of datetimes for the folder's own use: qualifiers and records are
// good, the conversion error is left alone. Results are 0 or an error number.

#pragma once

#include "values/datetime/datetime_row.h"

namespace kestrion {

// A result of add() besides the error numbers: err_dt_result, with the caller's result left alone.
inline constexpr int keeps_result = 1;

// rdtextend of a row; an unknown present gives NULL.
void extend(digit_word row, int sign, int from, int to, dec_value *result);

// The date of a row that has year, month and day.
inline int date_of_row(digit_word row, int32_t *date) {
    const row_date fields = date_in(row);
    return day_number(fields.month, fields.day, fields.year, date);
}

// rdttodate of a row; an unknown present gives the NULL date.
int date_of(digit_word row, int qualifier, int32_t *date);

// rdtaddinv of a row and the bytes of an interval, and rdtsub of two rows under one qualifier.
int add(digit_word row, int qualifier, digit_word interval, int sign, int interval_qualifier,
        dec_value *result);
int subtract(digit_word a, digit_word b, int qualifier, int result_qualifier, dec_value *result);

} // namespace kestrion
