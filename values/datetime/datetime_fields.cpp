#include <kestrion/datetime_fields.h>

#include "values/date/calendar.h"
#include "values/datetime/datetime_row.h"
#include <kestrion/qualifier.h>

using namespace kestrion;

namespace kestrion {

bool interval_in_range(digit_word word, const field_layout &q) {
    // The first field is a count without a range, and fractions are always in theirs.
    int at = q.leading_bytes();
    for (int unit = q.start + 2; unit <= q.last_field(); unit += 2, ++at) {
        if (byte_of(word, at) >= static_cast<unsigned>(field_base[unit / 2]))
            return false;
    }
    return true;
}

} // namespace kestrion

void dtunpack(const dec_value *value, int qualifier, unsigned char bytes[datetime_field_bytes]) {
    operand x;
    digit_word word = 0;
    if (load_value(value, &x) == loaded::value && is_qualifier(qualifier))
        word = digits_at(x, field_layout(qualifier).exponent() - x.exponent, 0, word_bytes);
    store_word(word, bytes);
}

int dtpack(dec_value *value, int qualifier, const unsigned char *bytes, int sign) {
    *value = null_decimal;
    if (!is_qualifier(qualifier))
        return err_dt_qualifier;
    const field_layout q(qualifier);
    unsigned char copy[datetime_field_bytes] = {};
    memcpy(copy, bytes, static_cast<size_t>(q.bytes()));
    return sign == dec_null_sign ? 0 : pack_fields(value, q, copy, sign);
}

int chk_dtinv(const dec_value *value, int qualifier, int is_datetime) {
    if (_chk_qual(is_datetime == 0, qualifier) != 0)
        return err_dt_qualifier;
    operand x;
    if (const loaded state = load_value(value, &x); state != loaded::value)
        return answer(no_value(state));
    const field_layout q(qualifier);
    const bool good =
        is_datetime != 0 ? row_in_range(row_of(x, q), q) : interval_in_range(field_word(x, q), q);
    return answer(good ? 0 : +err_dt_field_range);
}

int daysinmonth(const unsigned char *bytes, int day) {
    switch (day) {
    case 0:
        return 31;
    case 1:
        return month_length(bytes[0], true);
    case 3:
        return month_length(bytes[2], is_leap_year(bytes[0] * 100 + bytes[1]));
    default:
        return 0;
    }
}

int checkyear(const unsigned char year[2]) {
    const int count = year[0] * 100 + year[1];
    return count >= 1 && count <= 9999 ? 0 : -1;
}
