// What can be asked of a qualifier word (<kestrion/datetime_units.h>) by itself.
//
// 56 words are datetimes: every start with every end that is not above it, with the default count
// of digits. 655 are intervals: these cross from months to days never, and have any count of digits
// in their first field that keeps the whole below 25.

#pragma once

#include <kestrion/datetime_units.h>

#ifdef __cplusplus
extern "C" {
#endif

// Whether `qualifier` is good for an interval (interval not 0) or a datetime.
// Returns 0, or err_dt_qualifier (-1268), which is also the conversion error then.
int _chk_qual(int interval, int qualifier);

enum exprec_operation {
    exprec_difference, // of two datetimes
    exprec_product,    // of an interval and a number
    exprec_quotient,
};

// The qualifier in which an operation on operands of `qualifier` is computed. A difference that
// reaches days is counted in days, with the digits of year and month in its first field; a product
// has 9 digits in its first field; everything else keeps the word.
// Example difference of YEAR TO SECOND -> DAY(8) TO SECOND; of YEAR TO MONTH -> the same.
int exprec(int operation, int qualifier);

// The name of a unit: "year", ..., "second", "fraction"; the empty text for a code that is not one.
const char *rtuname(int unit);

enum { rtudesc_size = 40 }; // bytes that the longest description needs

// Describes a qualifier in lower case, without a terminator.
// type    the SQL type: 14 for an interval, whose first field is then described as well when it
//         hasn't the default width; 10 for a datetime.
// Returns the length of the text, or 0 with err_dt_qualifier in the conversion error.
// Example DAY(3) TO HOUR -> "day(3) to hour". A width of 10 or more is still one character,
//         '0' + width: "day(:) to hour".
int rtudesc(int type, int qualifier, char *text);

#ifdef __cplusplus
}
#endif
