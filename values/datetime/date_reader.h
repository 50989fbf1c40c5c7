// The fields of a date while a text is read.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

struct date_reader {
    const char *at;
    locale_rec *lc;
    int month = -1; // -1: not read; this and the next two
    int day = -1;
    int year = -1;
    bool short_year = false; // in one or two digits

    // Each takes its part of the text, or returns false with the text where it was. A number has
    // one digit at least and `most` at most, or exactly these.
    bool number(int least, int most, int *value);
    bool read_year(int least, int most);
    bool month_name(); // of the locale, or English where the calendar is the usual one
    bool weekday_name();

    // The date of the fields: those above the ones that were read are today's, those below are 1.
    // Returns 0, or err_date_year, err_date_month, err_date_day, err_date_text.
    int date(int32_t *out);
};

// The date of the engine's moment, and the error number for one of the engine's errors.
int date_of_fields(int month, int day, int64_t year, int32_t *date);
int date_error(int32_t locale_error);

} // namespace kestrion
