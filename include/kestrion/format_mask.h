// Datetimes as text under format masks: formats of <kestrion/time_format.h>.
//
//     "%d.%m.%iY %H:%M"     29.02.2024 12:34
//     "%A, %d %B"           Thursday, 29 February
//     "%H:%M:%S.%F3"        12:34:56.789
//
// A null mask stands for GL_DATETIME, else for the default, cut to the value's qualifier
// (<kestrion/datetime_format.h>). Intervals have masks of their own (<kestrion/interval_mask.h>).
// Conventions as in <kestrion/interval.h>.

#pragma once

#include <stdint.h>

#include <kestrion/datetime.h>

#ifdef __cplusplus
extern "C" {
#endif

// Writes a datetime into text[0..size), terminated. Fields that the value lacks are those of
// rdtextend to YEAR TO FRACTION(5). NULL gives an empty text.
// Returns err_result_size (-1273), err_dt_qualifier (-1268) for a directive that doesn't exist,
// err_dt_field_range (-1263).
int dttofmtasc(const dtime_value *value, char *text, int32_t size, const char *mask);

// Reads a datetime of the record's qualifier. Fields that the mask lacks are as in rdtextend: from
// the present above those it has, 0 or 1 below. Years in two digits are completed as DBCENTURY
// says. Blanks alone are NULL.
// Returns err_dt_character (-1262) where text and mask differ, err_dt_extra (-1264) for text after
// the value, err_dt_field_range, err_dt_qualifier, and the errors of getcentury. The result is NULL
// after a failure.
int dtcvfmtasc(const char *text, const char *mask, dtime_value *value);

#ifdef __cplusplus
}
#endif
