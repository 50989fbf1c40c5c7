// Intervals as text under masks. Conventions as in <kestrion/interval.h>.
//
// A mask has the directives %Y %m %d %H %M %S %F and %%; all else stands for itself. The value's
// first field is written as its whole count without padding, later ones with two digits, %F with the
// digits of the qualifier. A negative value has "-" before its first digit. A null mask stands for
// the usual text.
//
//     DAY(3) TO SECOND  "  -5 01:02:03"  "%d days %H:%M"   ->  "-5 days 01:02"
//     YEAR TO MONTH     "    2-03"       "%Y years %m"     ->  "2 years 03"

#pragma once

#include <stdint.h>

#include <kestrion/interval.h>

#ifdef __cplusplus
extern "C" {
#endif

// Writes an interval into text[0..size), terminated; NULL gives an empty text.
// Returns err_result_size (-1273), or err_dt_qualifier (-1268) for any other directive and one for a
// field that the qualifier hasn't got.
int intofmtasc(const intv_value *value, char *text, int32_t size, const char *mask);

// Reads what intofmtasc writes into the record's qualifier. A field may have fewer digits; one that
// the mask lacks is 0. Blanks may surround the whole; blanks alone are NULL.
// Returns err_dt_first_field (-1261), err_dt_character (-1262), err_dt_field_range (-1263),
// err_dt_extra (-1264), err_dt_qualifier (-1268).
int incvfmtasc(const char *text, const char *mask, intv_value *value);

#ifdef __cplusplus
}
#endif
