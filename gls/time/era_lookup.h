// The arithmetic of eras, in years that any record can hold.

#pragma once

#include <kestrion/broken_down_time.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

inline int64_t whole_year(const gl_tm &time) { return int64_t{time.year} + 1900; }

// A record's month from 1, the greatest number where that overflows.
inline int32_t one_based(int32_t month) { return month == INT32_MAX ? month : month + 1; }

// The year within the era, whether or not the era holds the date.
int64_t year_in_era(const era_rec &era, int64_t year, int32_t month, int32_t day);

// The year that has the number `number` in the era at this month and day.
int64_t year_of_era_year(const era_rec &era, int64_t number, int32_t month, int32_t day);

} // namespace kestrion
