#include <kestrion/date.h>

#include "values/date/calendar.h"

int rleapyear(int year) { return kestrion::is_leap_year(year) ? 1 : 0; }

int rmdyjul(const int16_t mdy[3], int32_t *date) {
    *date = date_null;
    if (mdy[0] == mdy_null || mdy[1] == mdy_null || mdy[2] == mdy_null)
        return 0;
    return kestrion::day_number(mdy[0], mdy[1], mdy[2], date);
}

int rjulmdy(int32_t date, int16_t mdy[3]) {
    mdy[0] = mdy[1] = mdy[2] = mdy_null;
    if (date < date_first || date > date_last)
        return date == date_null ? 0 : err_date_range;
    const kestrion::civil_date civil = kestrion::civil_of(date);
    mdy[0] = static_cast<int16_t>(civil.month);
    mdy[1] = static_cast<int16_t>(civil.day);
    mdy[2] = static_cast<int16_t>(civil.year);
    return 0;
}
