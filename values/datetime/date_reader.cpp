#include "values/datetime/date_reader.h"

#include "values/datetime/centuries.h"
#include "values/datetime/field_text.h"
#include <kestrion/date.h>
#include <kestrion/dbcentury.h>
#include <kestrion/gls_env.h>
#include <kestrion/gls_errors.h>
#include <kestrion/time_scan.h>

#include <initializer_list>

namespace kestrion {

namespace {

char ascii_lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Bytes of `text` that spell `name`, which is in lower case; 0 when it doesn't begin with it.
size_t spelt(const char *text, const char *name) {
    size_t length = 0;
    for (; name[length] != '\0'; ++length) {
        if (ascii_lower(text[length]) != name[length])
            return 0;
    }
    return length;
}

// The longest cached name that the text begins with. Returns its bytes, 0 for none.
size_t cached_month(const char *text, const gls_name_list *lists, int *month) {
    size_t longest = 0;
    for (const gls_name_list *list = lists; list != nullptr; list = list->next) {
        for (int32_t i = 0; i < list->count; ++i) {
            if (const size_t length = spelt(text, list->names[i]); length > longest) {
                longest = length;
                *month = i + 1;
            }
        }
    }
    return longest;
}

} // namespace

bool date_reader::number(int least, int most, int *value) {
    int count = 0;
    int number = 0;
    for (; count < most && is_digit(at[count]); ++count)
        number = number * 10 + at[count] - '0';
    if (count < least)
        return false;
    at += count;
    *value = number;
    return true;
}

bool date_reader::read_year(int least, int most) {
    const char *start = at;
    if (!number(least, most, &year))
        return false;
    short_year = at - start <= 2;
    return true;
}

bool date_reader::month_name() {
    const new_gls_env_rec &state = *CheckGlsEnv()->state;
    size_t longest = 0;
    for (const gls_name_list *lists : {state.mon_names, state.abmon_names}) {
        int found = 0;
        if (const size_t length = cached_month(at, lists, &found); length > longest) {
            longest = length;
            month = found;
        }
    }
    // The engine knows the case of more letters than ASCII's.
    gl_tm moment = {};
    const char *rest = gl_mbsptime_internal(lc, at, "%b", &moment);
    if (rest != nullptr && static_cast<size_t>(rest - at) > longest) {
        longest = static_cast<size_t>(rest - at);
        month = moment.month + 1;
    }
    at += longest;
    return longest > 0;
}

bool date_reader::weekday_name() {
    gl_tm moment = {};
    const char *rest = gl_mbsptime_internal(lc, at, "%a", &moment);
    if (rest == nullptr)
        return false;
    at = rest;
    return true;
}

int date_reader::date(int32_t *out) {
    int16_t today[3] = {1, 1, 1};
    if (year < 0)
        mdy_of_today(today);
    if (month < 0)
        month = year < 0 ? today[0] : 1;
    if (day < 0)
        day = 1;
    if (year < 0) {
        year = today[2];
    } else if (short_year) {
        const int century = getcentury(month, day, year);
        if (century < 0)
            return century;
        year += century * 100;
    }
    return date_of_fields(month, day, year, out);
}

int date_of_fields(int month, int day, int64_t year, int32_t *date) {
    const auto field = [](int64_t number) {
        return static_cast<int16_t>(number < 0 || number > INT16_MAX ? -1 : number);
    };
    const int16_t mdy[] = {field(month), field(day), field(year)};
    return rmdyjul(mdy, date);
}

int date_error(int32_t locale_error) {
    switch (locale_error) {
    case GLS_ERR_YEAR:
        return err_date_year;
    case GLS_ERR_MONTH:
        return err_date_month;
    case GLS_ERR_DAY:
        return err_date_day;
    default:
        return err_date_text;
    }
}

} // namespace kestrion
