#include "gls/time/locale_texts.h"

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

} // namespace kestrion
