#include "gls/time/format_walk.h"

namespace kestrion {
namespace {

template <class unit>
name_table<unit> choose(name_list list, unit *const *day, unit *const *abday, unit *const *mon,
                        unit *const *abmon, int32_t months) {
    switch (list) {
    case name_list::day:
        return {day, gl_week_days};
    case name_list::abday:
        return {abday, gl_week_days};
    case name_list::mon:
        return {mon, mon == nullptr ? 0 : months};
    default:
        return {abmon, abmon == nullptr ? 0 : months};
    }
}

} // namespace

constinit const time_rec no_time = {.calendar = CALENDAR_GREGORIAN};

name_table<char> names_in(const time_rec &data, name_list list, const char *) {
    return choose<char>(list, data.day, data.abday, data.mon, data.abmon, data.month_count);
}

name_table<gl_wchar> names_in(const time_rec &data, name_list list, const gl_wchar *) {
    return choose<gl_wchar>(list, data.wide_day, data.wide_abday, data.wide_mon, data.wide_abmon,
                            data.month_count);
}

name_table<char> own_digits_in(const time_rec &data, const char *) {
    return {data.alt_digits, data.alt_digit_count};
}

name_table<gl_wchar> own_digits_in(const time_rec &data, const gl_wchar *) {
    return {data.wide_alt_digits, data.alt_digit_count};
}

int32_t parse_modifiers(locale_rec *lc, const gl_wchar *text, number_shape &shape, int32_t &used) {
    const gl_wchar *at = text;
    shape.as_usual = false;
    if (_gl_scan_format_modifiers(lc, &at, &shape.width, &shape.precision, &shape.flags) != 0)
        return GLS_ERR_PRECISION;
    used = static_cast<int32_t>(at - text);
    return GLS_OK;
}

int32_t shape_number(locale_rec *lc, int64_t number, const number_shape &usual,
                     const number_shape &wanted, shaped_number &out) {
    const bool negative = number < 0;
    const auto magnitude = static_cast<uint64_t>(number);
    const int32_t width = wanted.width < 0 ? usual.width : wanted.width;
    const int32_t precision = wanted.precision < 0 ? usual.precision : wanted.precision;
    gl_wchar *end = out.text;
    out.length = most_number_elements;
    if (_gl_format_decimal(lc, negative ? 0 - magnitude : magnitude, negative, 10, &out.length,
                           out.text, &end, width, precision, wanted.flags) != 0)
        return GLS_ERR_NO_ROOM;
    return GLS_OK;
}

} // namespace kestrion
