// Datetimes: moments from a first to a last unit, and their extension to other units.
//
//     dtime_value due = {.qualifier = qualifier_year_to_day};
//     dtcvasc("2024-01-31", &due);
//     dtime_value start = {.qualifier = qualifier_year_to_second};
//     dtextend(&due, &start);                        2024-01-31 00:00:00
//     dtime_value month = {.qualifier = qualifier_word(6, unit_year, unit_month)};
//     dtextend(&due, &month);                        2024-01
//     dtextend(&month, &due);                        2024-01-01
//
// The calendar is the Gregorian one for all years 1 to 9999. Conventions as in
// <kestrion/interval.h>.

#pragma once

#include <assert.h>
#include <stdint.h>

#include <kestrion/datetime_units.h>
#include <kestrion/decimal.h>

typedef struct dtime_value {
    int16_t qualifier; // <kestrion/datetime_units.h>
    dec_value value;   // <kestrion/datetime_fields.h>
} dtime_value;

static_assert(sizeof(dtime_value) == 24, "programs hold datetimes of this size");

#ifdef __cplusplus
extern "C" {
#endif

// Gives a datetime other fields. Units above the source's first come from the present
// (<kestrion/datetime_now.h>); those below its last are 0, month and day 1. The result is not
// checked: MONTH TO DAY 02-29 becomes 2023-02-29 in 2023.
// Example HOUR TO MINUTE 10:20 -> YEAR TO SECOND is today, 10:20:00.
int rdtextend(const dec_value *value, int qualifier, dec_value *target, int target_qualifier);
int dtextend(const dtime_value *value, dtime_value *target);

// The date of a datetime, extended to YEAR TO DAY, and a date as datetime (<kestrion/date.h>).
// Return also err_date_year, err_date_month, err_date_day and err_date_range.
int rdttodate(const dec_value *value, int qualifier, int32_t *date);
int rdatedt(int32_t date, dec_value *value, int qualifier);

#ifdef __cplusplus
}
#endif
