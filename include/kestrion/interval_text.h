// Intervals as text. Conventions as in <kestrion/interval.h>.
//
//     YEAR TO MONTH          "   12-11"
//     DAY(3) TO HOUR         "  -5 01"         minus five days and an hour
//     HOUR(3) TO FRACTION(2) "-100:59:59.99"
//     FRACTION(3)            " .500"           negative: "-.500"
//
// Every text has its full width: a blank or "-", all digits of the first field, of which leading
// zeros but the last are blanks, then the later fields with their delimiters.

#pragma once

#include <kestrion/interval.h>

enum {
    rdinstr_size = 32, // bytes that the longest text needs, terminator included
    rinvstr_size = 33,
};

#ifdef __cplusplus
extern "C" {
#endif

// Write a terminated text; NULL gives an empty one. rdinstr writes the bare digits and delimiters
// of an interval without its sign: "005 01".
int rinvstr(const dec_value *value, int qualifier, char *text);
int intoasc(const intv_value *value, char *text);
int rdinstr(const dec_value *value, int qualifier, char *text);

// Read "-", blanks and the fields, as rstrdinv of <kestrion/datetime_text.h> does; "+" is refused.
// Blanks alone are NULL. "-0" and a mere "-" are a zero with the sign of a negative number, the
// only one there is: it prints as "-0" and compares below zero.
int rstrinv(const char *text, dec_value *value, int qualifier);
int incvasc(const char *text, intv_value *value);

#ifdef __cplusplus
}
#endif
