#include <kestrion/era_lookup.h>

#include "gls/time/era_lookup.h"

#include <algorithm>
#include <stdint.h>

using namespace kestrion;

namespace {

struct era_day {
    int64_t year;
    int32_t month;
    int32_t day;
};

constexpr int before(int64_t a, int64_t b) { return a < b ? -1 : a > b ? 1 : 0; }

// -1, 0 or 1, turned round where the era runs backward: earlier in the era, the same, later.
int in_era_order(const era_rec &era, const era_day &a, const era_day &b) {
    int order = before(a.year, b.year);
    if (order == 0)
        order = before(a.month, b.month);
    if (order == 0)
        order = before(a.day, b.day);
    return era.direction < 0 ? -order : order;
}

} // namespace

namespace kestrion {

int64_t year_in_era(const era_rec &era, int64_t year, int32_t month, int32_t day) {
    const era_day start = {0, era.start_month, era.start_day};
    const int64_t distance = (year - era.start_year) * era.direction;
    return distance + era.offset - (in_era_order(era, {0, month, day}, start) < 0);
}

int64_t year_of_era_year(const era_rec &era, int64_t number, int32_t month, int32_t day) {
    const int64_t at_start = year_in_era(era, era.start_year, month, day);
    return era.start_year + (number - at_start) * era.direction;
}

} // namespace kestrion

int32_t check_bounds(const era_rec *era, int32_t day, int32_t month, int64_t year) {
    const era_day date = {year, month, day};
    if (in_era_order(*era, date, {era->start_year, era->start_month, era->start_day}) < 0)
        return 0;
    const bool has_no_end = int64_t{era->open_end} * era->direction > 0;
    return has_no_end ||
           in_era_order(*era, {era->end_year, era->end_month, era->end_day}, date) >= 0;
}

int32_t current_era(locale_rec *lc, const gl_tm *time) {
    const int32_t count = gl_get_era_count(lc);
    for (int32_t i = 0; i < count; ++i)
        if (check_bounds(&lc->time_cat.eras[i], time->day, one_based(time->month),
                         whole_year(*time)) != 0)
            return i;
    return -1;
}

int32_t era_offset(const era_rec *era, const gl_tm *time) {
    const int64_t year = year_in_era(*era, whole_year(*time), one_based(time->month), time->day);
    return static_cast<int32_t>(std::clamp<int64_t>(year, INT32_MIN, INT32_MAX));
}

int32_t gl_get_era_count(locale_rec *lc) {
    return lc == nullptr || lc->time_cat.eras == nullptr ? 0 : lc->time_cat.era_count;
}
