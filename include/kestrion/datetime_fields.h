// The fields of datetimes and intervals as bytes, and how a decimal holds them.
//
// Spread out, a value has one byte 0..99 for every two digits, in the order of its fields: two
// bytes for a year of four digits, one for each later field, one to three for a fraction. A first
// field with an odd count of digits leaves the high half of its first byte unused, an odd fraction
// the low half of its last.
//
//     YEAR TO FRACTION(3)  2024-02-29 12:34:56.789    20 24  2 29 12 34 56 78 90
//     DAY(3) TO HOUR       -5 01                       0  5  1
//
// The decimal has these bytes as digits and its point between seconds and fraction, whatever the
// qualifier. So values line up by unit, and those with the same fields compare like their decimals.
//
//     HOUR TO MINUTE  07:05      sign 1, exponent 3, digits 7 5      stored c3 07 05
//     HOUR TO MINUTE  00:00      zero: sign 1, exponent -64          stored 80 00 00
//     DAY(3) TO HOUR  -5 01      sign 0, exponent 4, digits 5 1      stored 3b 5e 63 00
//
// In a row a value takes (length + (end & 1) + 3) >> 1 bytes, in the stored form of decimals.

#pragma once

#include <kestrion/decimal.h>

enum { datetime_field_bytes = 16 }; // room for the bytes of any value

#ifdef __cplusplus
extern "C" {
#endif

// Spreads a value out under a qualifier: all of its bytes, also those past the qualifier's end.
// NULL, zero, a malformed record, and a decimal larger than the qualifier holds give zeros.
void dtunpack(const dec_value *value, int qualifier, unsigned char bytes[datetime_field_bytes]);

// Makes the value of such bytes, each 0..99; they stay as they are. The unused half of an odd
// fraction is left out.
// sign    1, 0 for a negative interval, or -1 for NULL.
// Returns the result of decload.
int dtpack(dec_value *value, int qualifier, const unsigned char *bytes, int sign);

// Whether every field is in its range: years 1 to 9999, months 1 to 12 (0 to 11 in an interval),
// days that the month has, and so on. The first field of an interval has any value.
// Returns 0, also for NULL; -1 for a malformed record; err_dt_field_range (-1263); or
// err_dt_qualifier (-1268). The answer is also the conversion error.
int chk_dtinv(const dec_value *value, int qualifier, int is_datetime);

// How many days the day field at bytes[day] may count: 31 at 0, since no month is known; of the
// month before it at 1, with 29 in February, since no year is known; of month and year before it at
// 3. 0 elsewhere and for a month outside 1..12.
int daysinmonth(const unsigned char *bytes, int day);

// Whether the two bytes of a year are in 1..9999. Returns 0 or -1.
int checkyear(const unsigned char year[2]);

#ifdef __cplusplus
}
#endif
