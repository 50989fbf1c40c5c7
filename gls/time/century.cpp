#include <kestrion/century.h>

#include "gls/base/engine_error.h"
#include "gls/time/current_time.h"
#include "gls/time/day_number.h"
#include <kestrion/ext_funcs.h>

#include <compare>

using namespace kestrion;

namespace {

// Today by the time that was set, else by the clock.
bool find_today(calendar_date &today) {
    if (const gl_tm *set = time_that_was_set(); set != nullptr) {
        today = {int64_t{set->year} + 1900, set->month + 1, set->day};
        return true;
    }
    gl_date_rec clock = {};
    if (_gl_ext_currdate(&clock) != 0 || clock.month < 1 || clock.month > 12)
        return false; // a host's clock may say anything
    today = {clock.year, clock.month, clock.day};
    return true;
}

// The day of a date, to count distances; a day that its month lacks counts as the last one. Shifted
// by one cycle of leap years, so that the century before the first has days too.
int64_t day_within_month(const calendar_date &date) {
    const int64_t year = date.year + 400;
    const int32_t last = days_in_month(year, date.month);
    return day_number({year, date.month, date.day < last ? date.day : last});
}

std::strong_ordering order(const calendar_date &a, const calendar_date &b) {
    if (const auto years = a.year <=> b.year; years != 0)
        return years;
    if (const auto months = a.month <=> b.month; months != 0)
        return months;
    return a.day <=> b.day;
}

struct candidates {
    calendar_date today;
    calendar_date date; // its year is that of this century

    calendar_date of(int64_t centuries) const {
        return {date.year + 100 * centuries, date.month, date.day};
    }
    int64_t distance(int64_t centuries) const {
        const int64_t days = day_within_month(of(centuries)) - day_within_month(today);
        return days < 0 ? -days : days;
    }
};

// The century of each letter, counted from the present one.
int64_t latest_before(const candidates &c) { return order(c.date, c.today) < 0 ? 0 : -1; }

int64_t earliest_after(const candidates &c) { return order(c.date, c.today) > 0 ? 0 : 1; }

int64_t closest(const candidates &c) {
    int64_t best = -1;
    for (int64_t other = 0; other <= 1; ++other)
        if (c.distance(other) < c.distance(best))
            best = other;
    return best;
}

int32_t argument_error(int32_t month, int32_t day, int32_t yy, char letter) {
    if (month < 1 || month > 12)
        return GLS_ERR_MONTH;
    if (yy < 0 || yy > 99)
        return GLS_ERR_YEAR;
    if (day < 1 || day > 31)
        return GLS_ERR_DAY;
    return letter == 'R' || letter == 'P' || letter == 'F' || letter == 'C' ? GLS_OK
                                                                            : GLS_ERR_ARGUMENT;
}

} // namespace

int32_t gl_getcenturyloc(locale_rec *lc, int32_t month, int32_t day, int32_t yy, char letter,
                         int32_t) {
    int32_t error = argument_error(month, day, yy, letter);
    candidates c = {};
    if (error == GLS_OK && !find_today(c.today))
        error = GLS_ERR_FILE;
    if (error != GLS_OK)
        return fail(lc, error);
    const int64_t present = c.today.year / 100;
    c.date = {present * 100 + yy, month, day};
    const int64_t shift = letter == 'P'   ? latest_before(c)
                          : letter == 'F' ? earliest_after(c)
                          : letter == 'C' ? closest(c)
                                          : 0;
    return static_cast<int32_t>(present + shift);
}
