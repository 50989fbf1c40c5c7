// The conversion steps: the number, date, datetime or interval that a value is.
//
// Which source gives which result ("-": err_no_conversion):
//
//     step        text     integer     float    decimal    int8     bigint   datetime  interval
//     toint       as tolong, in -32767..32767                                -         -
//     tolong      decimal  as is       decimal  decimal    in range in range -         -
//     tobigint    cut      widened     cut      cut        as is    as is    -         -
//     toint8      cut      widened     rounded  cut        as is    as is    -         -
//     todouble    read     widened     as is    nearest    nearest  nearest  -         -
//     todecimal   read     as is       digits   as is      as is    as is    -         -
//     todate      read     as tolong, in years 1 to 9999                     date part -
//     todatetime  read     dates only  -        -          -        -        extended  -
//     tointerval  read     -           -        5, raw     -        -        -         converted
//
// Texts are types 0, 13, 15, 16, 43; integers 1, 2, 6, 7; host codes count as the SQL type that
// stands for them. A decimal becomes an interval digit by digit, as it is held, but no datetime.
//
// Steps return 0 or a negative error number, which is also the conversion error (get_toerrno). They
// always write the result: NULL for a NULL source, and for blank text except in todouble. After a
// failure it is NULL, unless a step says otherwise.
//
//     err_no_block (-406)        no memory for a text of more than 39 bytes
//     err_blob_place (-608)      the source is a blob
//     err_date_range (-1210)     a date outside years 1 to 9999
//     err_not_a_number (-1213)   a text that is not a number
//     err_smallint_range (-1214), err_integer_range (-1215), err_float_range (-1223)
//     err_no_conversion (-1260)

#pragma once

#include <stdint.h>

#include <kestrion/decimal.h>
#include <kestrion/value.h>

#ifdef __cplusplus
extern "C" {
#endif

// NULL is -32768. After err_smallint_range the result is what tolong gives.
int toint(const value_rec *value, int32_t *result);

// NULL is -2147483648, which as a source is err_integer_range. Of a bigint out of range the result
// has the low 32 bits.
int tolong(const value_rec *value, int32_t *result);

// -1.9 as float is -1 as bigint but -2 as int8, which rounds half away from zero.
int tobigint(const value_rec *value, int64_t *result);
int toint8(const value_rec *value, int8_value *result);

// NULL is the double with all bits set. todblnull takes blank text as NULL and then gives 0 with
// *null 1.
int todouble(const value_rec *value, double *result);
int todblnull(const value_rec *value, double *result, int16_t *null);

// todecimalmon reads texts of up to 80 bytes with currency texts.
int todecimal(const value_rec *value, dec_value *result);
int todecimalmon(const value_rec *value, dec_value *result);

// The text "today" is the present day.
int todate(const value_rec *value, int32_t *date);

// The results have the qualifier asked for; err_dt_qualifier for one that isn't valid.
int todatetime(const value_rec *value, int qualifier, dec_value *result);
int tointerval(const value_rec *value, int qualifier, dec_value *result);

// 1 or 0 of a boolean and of the texts t, T, f, F; (char)0xFF for NULL.
int tocbool(const value_rec *value, char *result);

#ifdef __cplusplus
}
#endif
