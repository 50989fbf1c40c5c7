#include "values/datetime/moment.h"

#include "locale_env/time_directives.h"
#include "values/datetime/centuries.h"
#include "values/datetime/datetime_workers.h"
#include <kestrion/date.h>
#include <kestrion/datetime_now.h>
#include <kestrion/dbcentury.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gls_env.h>
#include <kestrion/gls_errors.h>
#include <kestrion/startup.h>
#include <kestrion/time_format.h>
#include <kestrion/time_scan.h>

#include <string.h>

namespace kestrion {

namespace {

// A date that the calendar hasn't, such as a 29 February completed by a common year, has no weekday:
// directives that ask for one fail.
void add_day_counts(gl_alt_tm *moment) {
    const auto year = static_cast<int16_t>(moment->year + 1900);
    const int16_t mdy[] = {static_cast<int16_t>(moment->month + 1),
                           static_cast<int16_t>(moment->day), year};
    const int16_t new_year[] = {1, 1, year};
    int32_t date;
    int32_t first;
    moment->weekday = moment->day_of_year = -1;
    if (rmdyjul(mdy, &date) != 0 || rmdyjul(new_year, &first) != 0)
        return;
    moment->weekday = (date - date_first + 1) % 7; // the first day of all was a Monday
    moment->day_of_year = date - first;
}

// What a format names, looking into the formats that it stands for.
struct format_contents {
    int first = unit_fraction; // greatest unit
    bool short_year = false;   // a year in two digits
    bool century = false;
};

constexpr int nested_formats = 2;

bool look_into(locale_rec *lc, const char *format, int depth, format_contents *contents) {
    time_directive step = {.next = format};
    do {
        if (!next_time_directive(step.next, &step))
            return false;
        if (step.first <= step.last && step.first < contents->first)
            contents->first = step.first;
        const bool era = step.modifier == 'E' && lc != nullptr && lc->time_cat.era_count > 0;
        if (era || step.conversion == '\0')
            continue;
        char *formats[3] = {}; // date, time, date and time
        if (strchr("yD", step.conversion) != nullptr) {
            contents->short_year = true;
        } else if (strchr("CgY", step.conversion) != nullptr) {
            contents->century = true;
        } else if (strchr("xc", step.conversion) != nullptr && depth > 0 &&
                   gl_get_ltime_fmts(lc, formats) == 0 && formats[0] != nullptr &&
                   formats[2] != nullptr) {
            look_into(lc, formats[step.conversion == 'x' ? 0 : 2], depth - 1, contents);
        }
    } while (step.conversion != '\0');
    return true;
}

// The present above the first unit that a text names, the least values from there on.
gl_alt_tm preset_moment(int first) {
    unsigned char bytes[datetime_field_bytes] = {0, 0, 1, 1};
    dec_value present = null_decimal;
    if (first > unit_year)
        rdtcurrent(&present);
    if (!is_null(present)) {
        unsigned char now[datetime_field_bytes];
        unpack_fields(present, field_layout(qualifier_year_to_fraction5), now);
        memcpy(bytes, now, static_cast<size_t>(row_place(first)));
    }
    return moment_of(bytes);
}

int32_t complete_year(gl_alt_tm *moment, char century) {
    const int yy = (moment->year + 1900) % 100;
    const int month = moment->month + 1;
    const int found = century != '\0' ? century_by_letter(month, moment->day, yy, century)
                                      : getcentury(month, moment->day, yy);
    if (found < 0)
        return found;
    moment->year = found * 100 + yy - 1900;
    return 0;
}

} // namespace

locale_rec *started_locale() { return chkglsinit() == 0 ? CheckGlsEnv()->cur_lc : nullptr; }

gl_alt_tm moment_of(const unsigned char *bytes) {
    gl_alt_tm moment = {.fraction = bytes[7] * 10000 + bytes[8] * 100 + bytes[9],
                        .second = bytes[6],
                        .minute = bytes[5],
                        .hour = bytes[4],
                        .day = bytes[3],
                        .month = bytes[2] - 1,
                        .year = bytes[0] * 100 + bytes[1] - 1900};
    add_day_counts(&moment);
    return moment;
}

int32_t write_moment(locale_rec *lc, char *text, int32_t size, const char *format,
                     const gl_alt_tm &moment) {
    int32_t &error = *_gl_ext_errno(lc);
    error = GLS_OK;
    // A format that writes nothing gives 0 as well as a failure.
    return gl_mbsftime(lc, text, size, format, &moment) > 0 ? 0 : error;
}

int32_t read_moment(locale_rec *lc, const char *text, const char *format, char century,
                    gl_alt_tm *moment, const char **rest) {
    format_contents contents;
    if (!look_into(lc, format, nested_formats, &contents))
        return GLS_ERR_NO_REGISTRY; // the format ends inside a directive
    *moment = preset_moment(contents.first);
    *rest = gl_mbsptime(lc, text, format, moment);
    if (*rest == nullptr)
        return *_gl_ext_errno(lc);
    return contents.short_year && !contents.century ? complete_year(moment, century) : 0;
}

} // namespace kestrion
