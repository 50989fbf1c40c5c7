// Intervals: spans of years and months, or of days and time; conversion and scaling.
//
// The two kinds never mix: a month has no fixed length in days. The first field may have any count
// of digits, so 100 hours can be HOUR(3) TO MINUTE as well as DAY TO HOUR; later fields are in the
// range of a clock or calendar.
//
//     intv_value wait = {.qualifier = qualifier_word(5, unit_day, unit_hour)};   DAY(3) TO HOUR
//     incvasc("10 12", &wait);                       10 days and 12 hours
//     intv_value half = wait;
//     invdivdbl(&wait, 2, &half);                    "   5 06"
//     intv_value hours = {.qualifier = qualifier_word(4, unit_hour, unit_hour)}; HOUR(4) TO HOUR
//     invextend(&wait, &hours);                      "  252"
//
// Conventions of this header, of interval_text.h and of the datetime headers
//   - Operations return 0 or a negative error number, which is also the conversion error
//     (get_toerrno); success clears that.
//   - A NULL operand gives a NULL result and 0. NULL is a NULL decimal.
//   - A malformed decimal is answered with -1.
//   - A failing operation sets its result to NULL, unless it says otherwise.
//   - A result may be the same record as an operand. Operands are never changed.
//   - Operations beginning with `r` take decimal and qualifier apart; the others take the record,
//     where the result's qualifier, set by the caller, says what is wanted.
//   - Nothing is rounded: digits past the end of a qualifier are cut. Nothing allocates.
//
//     err_intv_overflow   (-1265)  too large for the first field, or above 2147483647
//     err_dt_incompatible (-1266)  the qualifiers do not go together
//     err_dt_result       (-1267)  the result is out of range
//     err_dt_qualifier    (-1268)  invalid qualifier

#pragma once

#include <assert.h>
#include <stdint.h>

#include <kestrion/datetime_units.h>
#include <kestrion/decimal.h>

typedef struct intv_value {
    int16_t qualifier; // <kestrion/datetime_units.h>
    dec_value value;   // <kestrion/datetime_fields.h>
} intv_value;

static_assert(sizeof(intv_value) == 24, "programs hold intervals of this size");

#ifdef __cplusplus
extern "C" {
#endif

// -- Conversion ----------------------------------------------------------------------------------

// Converts to another qualifier of the same kind. Units above the target's first fold into it;
// digits past its end are cut.
// Returns err_dt_incompatible for the other kind, or a source that starts below the target's end;
// err_intv_overflow.
// Example 100:30 HOUR(3) TO MINUTE -> DAY TO HOUR "  4 04"; -100:30 the same with a minus.
int rinvcopy(const dec_value *value, int qualifier, dec_value *target, int target_qualifier);
int invextend(const intv_value *value, intv_value *target);

// The interval as a count of its last unit, or of seconds with decimals when it ends in a fraction.
// An invalid qualifier gives NULL; there is no other failure.
// Example "4 04" DAY TO HOUR -> 100.
void rinvtodec(const dec_value *value, int qualifier, dec_value *count);

// The reverse: the interval of so many last units. Decimals past the end are cut.
int rdectoinv(const dec_value *count, dec_value *value, int qualifier);

// -- Scaling -------------------------------------------------------------------------------------

// The operand is converted to the result's qualifier first, so digits beyond that are cut before
// the number takes effect. Errors are those of rinvcopy and of the decimal operation.
// Example DAY TO DAY 10 / 3 as DAY TO SECOND -> "  3 08:00:00"; 13 months * 0.5 -> 6 months.
int invmuldec(const intv_value *value, const dec_value *factor, intv_value *result);
int invmuldbl(const intv_value *value, double factor, intv_value *result);
int invdivdec(const intv_value *value, const dec_value *divisor, intv_value *result);
int invdivdbl(const intv_value *value, double divisor, intv_value *result);

// How many times b goes into a. NULL gives the double with all bits set; a failure gives 0.0.
// Returns also err_zero_divide (-1202), and err_dt_qualifier when a month kind meets a day kind.
// Example "1 12" DAY TO HOUR / "90" MINUTE -> 24.0.
int invdivinv(const intv_value *a, const intv_value *b, double *ratio);

#ifdef __cplusplus
}
#endif
