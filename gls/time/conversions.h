// The conversions of time formats, as data: what each stands for, with its ranges.
//
// Writing, measuring and scanning all go by these tables.

#pragma once

#include "gls/objects/category_data.h"
#include <kestrion/broken_down_time.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

// What a number is about. Most are the field and something added to it; a scan has to combine some
// with others.
enum class time_part : uint8_t {
    other,
    day,
    month,
    year,
    hour,
    hour_of_12,      // 12 for 0
    weekday_from_1,  // 7 for Sunday
    century,         // of the year
    year_in_century, //
};

// A number made from one field of a record.
struct time_number {
    time_part part;
    int32_t gl_tm::*field;
    int32_t added;          // to the field, for the number
    int32_t low, high;      // range of the field
    int32_t more_elsewhere; // added to `high` and `scan_high` in calendars but the Gregorian one
    int32_t error;          // of a field out of range
    int32_t error_below;    // of one below its range
    int32_t digits;         // of the largest number
    int32_t precision;      // digits of the smallest one
    int32_t width;          // filled with blanks to this; 0: not filled
    int32_t scan_low;       // range of the number
    int32_t scan_high;      //
};

// The number of a field in its range.
inline int32_t number_of_field(const time_number &number, int32_t field) {
    const int64_t year = int64_t{field} + 1900;
    switch (number.part) {
    case time_part::century:
        return static_cast<int32_t>(year / 100);
    case time_part::year_in_century: // of any year, also a negative one
        return static_cast<int32_t>((year % 100 + 100) % 100);
    case time_part::hour_of_12:
        return field % 12 == 0 ? 12 : field % 12;
    case time_part::weekday_from_1:
        return field == 0 ? 7 : field;
    default:
        return field + number.added;
    }
}

// The field of a number in its range, where the number says all of it.
inline int32_t field_of_number(const time_number &number, int32_t value) {
    if (number.part == time_part::hour_of_12)
        return value % 12;
    return number.part == time_part::weekday_from_1 ? value % 7 : value - number.added;
}

enum class conversion_kind : uint8_t {
    literal,  // `character`
    number,   // numbers[0]
    numbers,  // `numbers`, separated by `character`
    name,     // of `names`
    half_day, // am or pm
    format,   // the locale's `format`
    fraction, // a digit may follow
    prefix,   // a letter of the table `after_i` follows
    era_name, // `era_text` of the era
    era_year, //
    era_form, // the era's own format
};

// The lists of names. The first two are chosen from by the weekday, the others by the month's name.
enum class name_list : uint8_t { day, abday, mon, abmon };

// Whether a conversion can be written in the locale's own digits.
enum class digits_form : uint8_t { refused, allowed };

struct time_conversion {
    char letter;
    conversion_kind kind;
    digits_form digits = digits_form::refused;
    char character = 0;
    name_list names = {};
    const time_number *numbers[3] = {}; // null where there are fewer
    const text_field<time_rec> *format = nullptr;
    const text_field<era_rec> *era_text = nullptr;
};

// A table of conversions by letter.
struct conversion_index {
    const time_conversion *rows[128];
};

extern const conversion_index plain_conversions, conversions_after_i, era_conversions;

// The row of a letter; null when the table has none.
inline const time_conversion *find_conversion(const conversion_index &table, gl_wchar letter) {
    return letter < 128 ? table.rows[letter] : nullptr;
}

inline constexpr int32_t default_fraction_digits = 3;
inline constexpr int32_t most_fraction_digits = 5;
inline constexpr int32_t record_fraction_digits = 6;
inline constexpr int32_t largest_fraction = 999999;

// What must be in range before an era is looked up, in this order.
extern const time_number *const era_date_numbers[3];

// The digits of a year in an era, which is not a field.
inline constexpr int32_t era_year_precision = 2;
inline constexpr int32_t era_year_scan_digits = 4;

// GLS_OK, or the error of a field out of its range.
inline int32_t range_error(const time_number &number, const gl_tm &time, bool gregorian) {
    const int32_t field = time.*number.field;
    if (field < number.low)
        return number.error_below;
    return field > number.high + (gregorian ? 0 : number.more_elsewhere) ? number.error : 0;
}

} // namespace kestrion
