#include "gls/time/scanned_time.h"

#include "gls/time/calendars.h"
#include "gls/time/era_lookup.h"
#include <kestrion/era_lookup.h>
#include <kestrion/gls_errors.h>

namespace kestrion {
namespace {

constexpr int32_t first_of_1900s =
    69; // two digits from here are years after 1900, others after 2000

void settle_hour(scanned_time &scanned) {
    if (scanned.of_12_hours && scanned.half_day == 1)
        scanned.time.hour += 12;
}

void settle_century(scanned_time &scanned) {
    const int32_t century = scanned.century, in_century = scanned.year_in_century;
    if (century != not_read) {
        const auto kept = static_cast<int32_t>(((whole_year(scanned.time) % 100) + 100) % 100);
        scanned.time.year = century * 100 - 1900 + (in_century == not_read ? kept : in_century);
    } else if (in_century != not_read) {
        scanned.time.year = in_century + (in_century < first_of_1900s ? 100 : 0);
    }
}

int32_t settle_month(const locale_rec *lc, gl_tm &time, bool by_name) {
    const int32_t calendar = calendar_of(lc);
    if (!by_name) {
        time.month_name = name_of_month(calendar, time.month, whole_year(time));
        return GLS_OK;
    }
    const int32_t month = month_of_name(calendar, time.month_name, whole_year(time));
    if (month < 0)
        return GLS_ERR_MONTH;
    time.month = month;
    return GLS_OK;
}

bool same_text(const gl_wchar *a, const gl_wchar *b) {
    if (a == nullptr || b == nullptr)
        return a == b;
    for (; *a == *b; ++a, ++b)
        if (*a == 0)
            return true;
    return false;
}

// Whether the era may be the one that was read.
bool is_candidate(const time_rec &data, const scanned_time &scanned, int32_t era) {
    if (scanned.era == not_read)
        return true;
    if (scanned.era_itself || scanned.era_text == nullptr)
        return era == scanned.era;
    const auto name = scanned.era_text->wide;
    return same_text(data.eras[era].*name, data.eras[scanned.era].*name);
}

bool fits_record(int64_t year) { return year - 1900 >= INT32_MIN && year - 1900 <= INT32_MAX; }

// The year of the era's year `number`, when the era then holds the date.
bool resolve_year(const era_rec &era, int64_t number, gl_tm &time) {
    const int32_t month = one_based(time.month);
    const int64_t year = year_of_era_year(era, number, month, time.day);
    if (!fits_record(year) || check_bounds(&era, time.day, month, year) == 0)
        return false;
    time.year = static_cast<int32_t>(year - 1900);
    return true;
}

// An era without a year keeps the caller's where the era holds it, else it stands for its first.
bool resolve_without_year(const era_rec &era, gl_tm &time) {
    return check_bounds(&era, time.day, one_based(time.month), whole_year(time)) != 0 ||
           resolve_year(era, era.offset, time);
}

int32_t settle_era(const locale_rec *lc, scanned_time &scanned) {
    if (scanned.era == not_read && !scanned.has_era_year)
        return GLS_OK;
    const time_rec &data = lc->time_cat; // there are eras
    for (int32_t i = 0; i < data.era_count; ++i) {
        if (!is_candidate(data, scanned, i))
            continue;
        const era_rec &era = data.eras[i];
        if (scanned.has_era_year ? resolve_year(era, scanned.era_year, scanned.time)
                                 : resolve_without_year(era, scanned.time))
            return GLS_OK;
    }
    return GLS_ERR_ARGUMENT;
}

} // namespace

int32_t settle(locale_rec *lc, scanned_time &scanned) {
    settle_hour(scanned);
    settle_century(scanned);
    if (!scanned.has_date)
        return GLS_OK;
    gl_tm &time = scanned.time;
    int32_t error = settle_month(lc, time, scanned.month_by_name);
    if (error == GLS_OK)
        error = settle_era(lc, scanned);
    // The names of a leap year's months are only known with the year.
    return error == GLS_OK ? settle_month(lc, time, scanned.month_by_name) : error;
}

} // namespace kestrion
