#include <kestrion/qualifier.h>

#include "values/datetime/field_layout.h"

using namespace kestrion;

namespace {

constexpr int sql_type_interval = 14;
constexpr int product_digits = 9; // of a product's first field

char *append(char *to, const char *text) {
    while (*text != '\0')
        *to++ = *text++;
    return to;
}

char *append_width(char *to, int width) {
    *to++ = '(';
    *to++ = static_cast<char>('0' + width);
    *to++ = ')';
    return to;
}

} // namespace

int _chk_qual(int interval, int qualifier) {
    if (interval != 0 ? is_interval_qualifier(qualifier) : is_datetime_qualifier(qualifier))
        return 0;
    return answer(err_dt_qualifier);
}

int exprec(int operation, int qualifier) {
    const field_layout q(qualifier);
    switch (operation) {
    case exprec_difference:
        return difference_qualifier(qualifier);
    case exprec_product:
        if (q.start != unit_fraction)
            return qualifier_word(q.end - q.start + product_digits, q.start, q.end);
        return qualifier;
    default:
        return qualifier;
    }
}

const char *rtuname(int unit) {
    static constexpr const char *names[] = {"year", "month", "day", "hour", "minute", "second"};
    if (unit >= unit_fraction1 && unit <= unit_fraction5)
        return "fraction";
    return unit >= unit_year && unit <= unit_second && unit % 2 == 0 ? names[unit / 2] : "";
}

int rtudesc(int type, int qualifier, char *text) {
    const bool interval = type == sql_type_interval;
    if (_chk_qual(interval, qualifier) != 0)
        return 0;
    const field_layout q(qualifier);
    char *to = append(text, rtuname(q.start));
    if (interval && q.leading_digits() != (q.start == unit_year ? 4 : 2))
        to = append_width(to, q.leading_digits());
    to = append(append(to, " to "), rtuname(q.end));
    if (q.end > unit_second)
        to = append_width(to, q.fraction_digits());
    return static_cast<int>(to - text);
}
