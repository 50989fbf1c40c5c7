// Datetimes with intervals: sums and differences.
//
//     dtime_value due = {.qualifier = qualifier_year_to_day};
//     dtcvasc("2024-01-31", &due);
//     intv_value month = {.qualifier = qualifier_word(2, unit_month, unit_month)};
//     incvasc("1", &month);
//     dtaddinv(&due, &month, &due);                  2024-02-29: the last day that February has
//     dtime_value now = {.qualifier = qualifier_year_to_second};
//     dtcurrent(&now);
//     intv_value late = {.qualifier = qualifier_word(7, unit_day, unit_hour)};
//     dtsub(&now, &due, &late);                      DAY(5) TO HOUR, say "   36 11"
//
// Conventions as in <kestrion/interval.h>.

#pragma once

#include <kestrion/datetime.h>
#include <kestrion/interval.h>

#ifdef __cplusplus
extern "C" {
#endif

// Adds or subtracts an interval. Days go by the calendar. An interval of years or months first
// gives the month, then cuts a day that the month hasn't to its last.
//
//     2024-01-31 + 1 month     2024-02-29        2024-02-29 - 4 years    2020-02-29
//     2024-02-29 + 1 year      2025-02-28        9999-12-31 + 1 day      err_date_year
//     2024-01-01 00:00:00 + -100000 seconds      2023-12-30 20:13:20
//
// A datetime that doesn't begin with the year refuses a result that would change what it hasn't
// got; MONTH TO DAY takes the present year for its days.
// Returns err_dt_incompatible for an interval that ends below the datetime's end or starts above
// its start; err_dt_result; err_intv_overflow for a first field above 2147483647;
// err_date_year (-1204), err_date_month, err_date_day. A day field below 1 in the operand gives
// err_dt_result and leaves the result as it was.
int rdtaddinv(const dec_value *value, int qualifier, const dec_value *interval,
              int interval_qualifier, dec_value *result);
// The result gets the datetime's qualifier.
int dtaddinv(const dtime_value *value, const intv_value *interval, dtime_value *result);
int dtsubinv(const dtime_value *value, const intv_value *interval, dtime_value *result);

// a - b, with b extended to a's qualifier. rdtsub computes in the qualifier that exprec gives for a
// difference: the result's must have the same units, with a first field of any width. dtsub then
// converts to any qualifier of the result.
// Returns err_dt_incompatible, err_intv_overflow, err_dt_field_range for operands whose fields are
// out of range, and the errors of rdttodate.
// Example 2024-03-01 - 2024-03-02 as DAY TO SECOND -> " -1 00:00:00".
int rdtsub(const dec_value *a, int a_qualifier, const dec_value *b, int b_qualifier,
           dec_value *result, int result_qualifier);
int dtsub(const dtime_value *a, const dtime_value *b, intv_value *result);

#ifdef __cplusplus
}
#endif
