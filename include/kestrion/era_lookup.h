// Which era holds a date, and which year of the era it is.
//
// The eras of a locale stand in a table; the first one that holds a date counts. An era runs
// forward in time (direction 1) or backward (-1): its start is then the latest day, and years count
// up into the past.
//
//     ja_jp  29 February 2024  era "Reiwa", offset 2 from 1 January 2020     -> year 6
//     zh_tw  15 June 1872      era before 1912, offset 1 from 31 December 1911 -> year 40
//
// Here months count from 1 and years are whole, as in the table; a gl_tm has the month from 0 and
// the year less 1900.

#pragma once

#include <kestrion/broken_down_time.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Returns 1 when the date falls within the era, else 0.
int32_t check_bounds(const era_rec *era, int32_t day, int32_t month, int64_t year);

// Returns the index of the era that holds the date, or -1.
int32_t current_era(locale_rec *lc, const gl_tm *time);

// Returns the year within the era: the distance from the start year in the era's direction, plus
// the offset, less 1 when the day of the year comes before the start's, again in the era's
// direction.
int32_t era_offset(const era_rec *era, const gl_tm *time);

// Returns how many eras the locale has.
int32_t gl_get_era_count(locale_rec *lc);

#ifdef __cplusplus
}
#endif
