#include <kestrion/datetime.h>

#include "values/datetime/datetime_workers.h"
#include <kestrion/date.h>
#include <kestrion/datetime_now.h>

using namespace kestrion;

namespace {

// Turns the row of a value into that of another qualifier, and perhaps fields beyond that. Returns
// false when the present, which gives the fields above the value's own, is not known.
bool extend_row(digit_word *row, const field_layout &from, const field_layout &to) {
    if (to.start < from.start) {
        dec_value now;
        rdtcurrent(&now);
        if (is_null(now))
            return false;
        const digit_word present = row_of(now, field_layout(qualifier_year_to_fraction3));
        *row |= present & leading_bytes[static_cast<size_t>(row_begin(from))];
    }
    for (int unit = unit_month; unit <= unit_day; unit += 2) {
        if (from.end < unit)
            *row |= in_row(row_place(unit), 1);
    }
    return true;
}

} // namespace

namespace kestrion {

void extend(digit_word row, int sign, int from, int to, dec_value *result) {
    const field_layout target(to);
    if (extend_row(&row, field_layout(from), target)) {
        pack_row(result, target, row, sign);
    } else {
        *result = null_decimal;
    }
}

int date_of(digit_word row, int qualifier, int32_t *date) {
    const field_layout day(qualifier_year_to_day);
    *date = date_null;
    return extend_row(&row, field_layout(qualifier), day) ? date_of_row(row, date) : 0;
}

} // namespace kestrion

int rdtextend(const dec_value *value, int qualifier, dec_value *target, int target_qualifier) {
    if (!is_datetime_qualifier(qualifier) || !is_datetime_qualifier(target_qualifier))
        return finish(err_dt_qualifier, target);
    operand x;
    const loaded state = load_value(value, &x);
    if (state == loaded::value) {
        extend(row_of(x, field_layout(qualifier)), x.sign, qualifier, target_qualifier, target);
    } else {
        *target = null_decimal;
    }
    return answer(no_value(state));
}

int dtextend(const dtime_value *value, dtime_value *target) {
    return rdtextend(&value->value, value->qualifier, &target->value, target->qualifier);
}

int rdttodate(const dec_value *value, int qualifier, int32_t *date) {
    *date = date_null;
    if (!is_datetime_qualifier(qualifier))
        return answer(err_dt_qualifier);
    operand x;
    const loaded state = load_value(value, &x);
    return answer(state == loaded::value
                      ? date_of(row_of(x, field_layout(qualifier)), qualifier, date)
                      : no_value(state));
}

int rdatedt(int32_t date, dec_value *value, int qualifier) {
    int16_t mdy[3];
    if (!is_datetime_qualifier(qualifier))
        return finish(err_dt_qualifier, value);
    *value = null_decimal;
    if (const int code = rjulmdy(date, mdy); code != 0 || date == date_null)
        return answer(code);
    const row_date fields = {.year = mdy[2], .month = mdy[0], .day = mdy[1]};
    pack_whole_row(value, with_date(0, fields), dec_positive);
    return rdtextend(value, qualifier_year_to_day, value, qualifier);
}
