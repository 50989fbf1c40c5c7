// Datetimes as text. Conventions as in <kestrion/interval.h>; texts under format masks are in
// <kestrion/format_mask.h>.
//
//     YEAR TO DAY           2024-02-29
//     DAY TO MINUTE         29 12:34
//     YEAR TO FRACTION(3)   2024-02-29 12:34:56.789
//     FRACTION(3)           .500

#pragma once

#include <kestrion/datetime.h>

enum {
    rdtimestr_size = 81, // bytes that the longest text needs, terminator included
};

#ifdef __cplusplus
extern "C" {
#endif

// Write a terminated text of full width, or by GL_DATETIME where that is set; NULL gives an empty
// text.
int rdtimestr(const dec_value *value, int qualifier, char *text);
int dttoasc(const dtime_value *value, char *text);

// Read a text that has exactly the fields of the qualifier:
//   - Blanks may precede each field and follow the last; blanks alone are NULL.
//   - A field has one or two digits, a year up to four. A year of one or two digits is completed as
//     DBCENTURY says; "999-01-01" is the year 999.
//   - After each field comes its delimiter, after the last it may: "2024-02-" is a YEAR TO MONTH.
//   - After the seconds "." and the fraction may be missing; missing digits of a fraction are 0. A
//     value of nothing but a fraction needs the ".": ".5" or "00.5".
// Where USE_DTENV is "1", the text is read by the mask of the qualifier instead.
//
// Return err_dt_first_field (-1261) for too many digits in the first field; err_dt_character
// (-1262); err_dt_field_range (-1263) for a field out of range or a third digit; err_dt_extra
// (-1264) for what follows the value; err_dt_fraction (-1271); err_date_year, err_date_month,
// err_date_day, err_date_text from the choice of a century. Fields out of range that follow from
// the value as a whole ("2024-02-30") leave it in the result all the same.
int rstrdtime(const char *text, dec_value *value, int qualifier);
int dtcvasc(const char *text, dtime_value *value);

// The same with a letter of its own for the century (<kestrion/dbcentury.h>).
int qvt_rstrdtime(const char *text, dec_value *value, int qualifier, char century);
int qvt_dtcvasc(const char *text, dtime_value *value, char century);

// The worker, which also reads intervals without a sign (is_datetime 0).
int rstrdinv(const char *text, dec_value *value, int qualifier, int is_datetime);

#ifdef __cplusplus
}
#endif
