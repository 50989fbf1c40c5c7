#include <kestrion/datetime_arithmetic.h>

#include "values/date/calendar.h"
#include "values/datetime/datetime_workers.h"
#include "values/datetime/interval_count.h"
#include <kestrion/date.h>

#include <algorithm>

using namespace kestrion;

namespace {

// An interval to be added.
struct addend {
    const field_layout q;
    const int sign;
    unsigned char bytes[word_bytes];
    int64_t first = 0; // count of the first field with the sign; past the limit when it is larger

    addend(digit_word word, int sign_of_value, int qualifier)
        : q(qualifier), sign(sign_of_value == dec_negative ? -1 : 1) {
        store_word(word, bytes);
        for (int i = 0; i < q.leading_bytes() && first <= field_count_limit; ++i)
            first = first * 100 + bytes[i];
        first *= sign;
    }

    bool is_too_large() const { return first > field_count_limit || first < -field_count_limit; }

    // The unit's part of it, with the sign.
    int64_t field(int unit) const {
        if (unit <= q.start)
            return unit == q.start ? first : 0;
        return sign * bytes[q.offset(unit)];
    }

    int64_t months() const {
        if (q.start == unit_month)
            return first;
        return first * 12 + (q.end == unit_month ? field(unit_month) : 0);
    }
};

// An interval that ends with years leaves the month alone, whatever that is. A day that the new
// month hasn't becomes its last.
int add_months(const field_layout &q, const addend &interval, digit_word *row) {
    row_date date = date_in(*row);
    const bool with_month = interval.q.end == unit_month;
    const bool with_year = q.start == unit_year;
    const int64_t total = date.year * 12 + (with_month ? date.month - 1 : 0) + interval.months();
    // Without a year the sum must stay in it.
    if (with_year ? total < 12 || total >= 120000 : total < 0 || total >= 12)
        return err_dt_result;
    const auto months = static_cast<uint32_t>(total);
    date.year = static_cast<int>(months / 12);
    if (with_month)
        date.month = static_cast<int>(months % 12) + 1;
    if (q.end >= unit_day) {
        if (date.day < 1)
            return keeps_result; // stays as it is, even where the result is the operand
        // Without a year February has 29 days.
        const int last = month_length(date.month, !with_year || is_leap_year(date.year));
        if (last == 0)
            return err_dt_result;
        date.day = std::min(date.day, last);
    }
    *row = with_date(*row, date);
    return 0;
}

// Hours and below, from the interval's last field up. The bytes of a fraction are units 12, 14 and
// 16. Returns what is carried into the field above the first.
int64_t add_clock(const field_layout &q, const addend &interval, digit_word *row) {
    unsigned char bytes[word_bytes];
    store_word(*row, bytes);
    int64_t carry = 0;
    for (int unit = (interval.q.end + 1) & ~1; unit > unit_day && unit >= q.start; unit -= 2) {
        const int base = field_base[unit / 2];
        const int64_t sum = bytes[row_place(unit)] + carry + interval.field(unit);
        carry = sum / base - (sum % base < 0 ? 1 : 0);
        bytes[row_place(unit)] = static_cast<unsigned char>(sum - carry * base);
    }
    *row = load_word(bytes);
    return carry;
}

// Days by the calendar, from the date of `before`. A month without a year counts in the present one,
// which must stay.
int add_days(digit_word before, int qualifier, int64_t days, digit_word *row) {
    int32_t date;
    if (const int code = date_of(before, qualifier, &date); code != 0 || date == date_null)
        return code != 0 ? code : +err_dt_result;
    if (date + days < date_first || date + days > date_last)
        return err_date_year;
    const civil_date after = civil_of(static_cast<int32_t>(date + days));
    if (field_layout(qualifier).start == unit_month && after.year != civil_of(date).year)
        return err_dt_result;
    *row = with_date(*row, {.year = after.year, .month = after.month, .day = after.day});
    return 0;
}

int add_time(const field_layout &q, int qualifier, const addend &interval, digit_word *row) {
    const digit_word before = *row;
    const int64_t carry = add_clock(q, interval, row);
    if (q.start < unit_day)
        return add_days(before, qualifier, carry + interval.field(unit_day), row);
    if (q.start > unit_day) {
        // A count of seconds meets a datetime of nothing but fractions: none may be left.
        const int64_t above = interval.q.start < q.start ? interval.first : 0;
        return carry + above != 0 ? err_dt_result : 0;
    }
    // Without a month there is no calendar.
    const int64_t day = date_in(*row).day + carry + interval.field(unit_day);
    if (day < 1 || day > 31)
        return err_dt_result;
    *row = with_date(*row, {.year = 0, .month = 0, .day = static_cast<int>(day)});
    return 0;
}

bool compatible(const field_layout &datetime, const field_layout &interval) {
    return interval.end <= datetime.end &&
           (interval.start >= datetime.start || interval.start == unit_second);
}

} // namespace

namespace kestrion {

int add(digit_word row, int qualifier, digit_word interval, int sign, int interval_qualifier,
        dec_value *result) {
    const field_layout q(qualifier);
    const addend delta(interval, sign, interval_qualifier);
    if (!compatible(q, delta.q))
        return err_dt_incompatible;
    if (delta.is_too_large())
        return err_intv_overflow;
    const int code =
        is_year_month(delta.q) ? add_months(q, delta, &row) : add_time(q, qualifier, delta, &row);
    return code != 0 ? code : pack_row(result, q, row, dec_positive);
}

} // namespace kestrion

namespace {

int field_in(digit_word row, int unit) {
    return unit == unit_year ? date_in(row).year : static_cast<int>(byte_of(row, row_place(unit)));
}

// The difference of the first field of a result: of days by the calendar when the operands begin
// above them.
[[gnu::always_inline]] inline int first_difference(digit_word more, digit_word less, int qualifier,
                                                   int unit, int *difference) {
    const field_layout q(qualifier);
    if (unit == q.start) {
        *difference = field_in(more, unit) - field_in(less, unit);
        return 0;
    }
    int32_t dates[2];
    int code = 0;
    if (q.start == unit_year) {
        code = date_of_row(more, &dates[0]);
        code = code != 0 ? code : date_of_row(less, &dates[1]);
    } else {
        code = date_of(more, qualifier, &dates[0]);
        code = code != 0 ? code : date_of(less, qualifier, &dates[1]);
    }
    *difference = code == 0 ? dates[0] - dates[1] : 0;
    return code;
}

// From the last field up, with a borrow. Fields that are no part of a valid datetime can leave a
// difference that is not one of an interval.
[[gnu::always_inline]] inline int subtract_fields(digit_word more, digit_word less, int qualifier,
                                                  const field_layout &to, digit_word *word) {
    const field_layout natural(difference_qualifier(qualifier));
    const bool all_fraction = natural.start == unit_fraction;
    int borrow = 0;
    for (int unit = (natural.end + 1) & ~1; unit > (all_fraction ? +unit_second : natural.start);
         unit -= 2) {
        int difference = field_in(more, unit) - field_in(less, unit) - borrow;
        borrow = difference < 0 ? 1 : 0;
        difference += borrow * field_base[unit / 2];
        if (difference < 0 || difference > 99)
            return err_dt_field_range;
        *word = with_byte(*word, to.offset(unit), difference);
    }
    if (all_fraction)
        return 0;
    int first = 0;
    if (const int code = first_difference(more, less, qualifier, natural.start, &first); code != 0)
        return code;
    first -= borrow;
    return first < 0 ? err_dt_field_range : set_first_field(word, to, static_cast<uint64_t>(first));
}

bool same_units(int qualifier, int other) {
    return (qualifier & 0xFF) == (other & 0xFF); // start and end
}

} // namespace

namespace kestrion {

int subtract(digit_word a, digit_word b, int qualifier, int result_qualifier, dec_value *result) {
    if (!same_units(result_qualifier, difference_qualifier(qualifier)))
        return err_dt_incompatible;
    const bool forward = a >= b;
    const digit_word more = forward ? a : b;
    const digit_word less = forward ? b : a;
    const field_layout to(result_qualifier);
    digit_word word = 0;
    // For the usual case the compiler works the layout out.
    const int code = qualifier == qualifier_year_to_day
                         ? subtract_fields(more, less, qualifier_year_to_day, to, &word)
                         : subtract_fields(more, less, qualifier, to, &word);
    if (code != 0)
        return code;
    return pack_whole_word(result, to, word, forward ? dec_positive : dec_negative);
}

} // namespace kestrion

namespace {

int checked_add(const dec_value *value, int qualifier, const dec_value *interval,
                int interval_qualifier, dec_value *target) {
    if (!is_datetime_qualifier(qualifier) || !is_interval_qualifier(interval_qualifier))
        return finish(err_dt_qualifier, target);
    operand x;
    operand y;
    if (const loaded state = load_values(value, interval, &x, &y); state != loaded::value) {
        *target = null_decimal;
        return answer(no_value(state));
    }
    const int code =
        add(row_of(x, field_layout(qualifier)), qualifier,
            field_word(y, field_layout(interval_qualifier)), y.sign, interval_qualifier, target);
    return code == keeps_result ? answer(err_dt_result) : finish(code, target);
}

} // namespace

int rdtaddinv(const dec_value *value, int qualifier, const dec_value *interval,
              int interval_qualifier, dec_value *result) {
    return checked_add(value, qualifier, interval, interval_qualifier, result);
}

int dtaddinv(const dtime_value *value, const intv_value *interval, dtime_value *result) {
    result->qualifier = value->qualifier;
    return checked_add(&value->value, value->qualifier, &interval->value, interval->qualifier,
                       &result->value);
}

int dtsubinv(const dtime_value *value, const intv_value *interval, dtime_value *result) {
    intv_value negative = *interval;
    if (!is_null(negative.value))
        negative.value.sign = negative.value.sign == dec_positive ? dec_negative : dec_positive;
    return dtaddinv(value, &negative, result);
}

int rdtsub(const dec_value *a, int a_qualifier, const dec_value *b, int b_qualifier,
           dec_value *result, int result_qualifier) {
    if (!is_datetime_qualifier(a_qualifier) ||
        (b_qualifier != a_qualifier && !is_datetime_qualifier(b_qualifier)) ||
        !is_interval_qualifier(result_qualifier))
        return finish(err_dt_qualifier, result);
    operand x;
    operand y;
    if (const loaded state = load_values(a, b, &x, &y); state != loaded::value) {
        *result = null_decimal;
        return answer(no_value(state));
    }
    const field_layout q(a_qualifier);
    const digit_word a_row = row_of(x, q);
    digit_word b_row = row_of(y, field_layout(b_qualifier));
    if (a_qualifier != b_qualifier) {
        dec_value extended;
        extend(b_row, y.sign, b_qualifier, a_qualifier, &extended);
        if (is_null(extended))
            return finish(err_dt_result, result); // the present is not known
        b_row = row_of(extended, q);
    }
    return finish(subtract(a_row, b_row, a_qualifier, result_qualifier, result), result);
}

int dtsub(const dtime_value *a, const dtime_value *b, intv_value *result) {
    const int natural = difference_qualifier(a->qualifier);
    dec_value difference;
    const int code = rdtsub(&a->value, a->qualifier, &b->value, b->qualifier, &difference, natural);
    if (code != 0)
        return finish(code, &result->value);
    return rinvcopy(&difference, natural, &result->value, result->qualifier);
}
