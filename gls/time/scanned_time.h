// What a scan has read of a time, and how it becomes a record: pieces that only mean something
// together are settled at the end of the scan.

#pragma once

#include "gls/objects/category_data.h"
#include "gls/time/conversions.h"
#include <kestrion/broken_down_time.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

inline constexpr int32_t not_read = -1;

struct scanned_time {
    gl_tm time;                         // in the locale's calendar; begins as the caller's
    bool has_date = false;              // a part of the date was read
    bool month_by_name = false;         // time.month_name is what was read, not time.month
    bool of_12_hours = false;           // time.hour was read from 1 to 12
    int32_t half_day = not_read;        // 1: after noon
    int32_t century = not_read;         //
    int32_t year_in_century = not_read; //
    int32_t era = not_read;             // index of an era that has the name read
    bool era_itself = false;            // that era and no other of its name
    bool has_era_year = false;          //
    int64_t era_year = 0;               //
    const text_field<era_rec> *era_text = nullptr; // the name that was read
};

// Stores a number that is in range.
inline void store_number(scanned_time &scanned, const time_number &number, int32_t value) {
    switch (number.part) {
    case time_part::century:
        scanned.century = value;
        scanned.has_date = true;
        return;
    case time_part::year_in_century:
        scanned.year_in_century = value;
        scanned.has_date = true;
        return;
    case time_part::year:
        scanned.century = scanned.year_in_century = scanned.era = not_read;
        scanned.has_era_year = false;
        scanned.has_date = true;
        break;
    case time_part::month:
        scanned.month_by_name = false;
        scanned.has_date = true;
        break;
    case time_part::day:
        scanned.has_date = true;
        break;
    case time_part::hour:
    case time_part::hour_of_12:
        scanned.of_12_hours = number.part == time_part::hour_of_12;
        break;
    default:
        break;
    }
    scanned.time.*number.field = field_of_number(number, value);
}

// Puts together what was read. GLS_OK, or the error: no era, or a month that the year lacks.
int32_t settle(locale_rec *lc, scanned_time &scanned);

} // namespace kestrion
