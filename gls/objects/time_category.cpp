// The TIME category: names, formats, eras.

#include <kestrion/categories.h>

#include "gls/objects/category_data.h"
#include "gls/objects/eras.h"
#include "gls/objects/locale_object.h"
#include <kestrion/locale_file.h>

#include <string.h>

using namespace kestrion;

namespace {

// In the order of the file, piece by piece between the lists.
constexpr text_field<time_rec> plain_formats[] = {
    {&time_rec::d_t_fmt, &time_rec::wide_d_t_fmt},
    {&time_rec::d_fmt, &time_rec::wide_d_fmt},
    {&time_rec::t_fmt, &time_rec::wide_t_fmt},
    {&time_rec::am, &time_rec::wide_am},
    {&time_rec::pm, &time_rec::wide_pm},
    {&time_rec::t_fmt_ampm, &time_rec::wide_t_fmt_ampm},
};
constexpr text_field<time_rec> era_formats[] = {
    {&time_rec::era_d_fmt, &time_rec::wide_era_d_fmt},
    {&time_rec::era_t_fmt, &time_rec::wide_era_t_fmt},
    {&time_rec::era_d_t_fmt, &time_rec::wide_era_d_t_fmt},
};

// A list of texts; its wide form has as many.
void free_text_list(char **&texts, int32_t count) {
    for (int32_t i = 0; texts != nullptr && i < count; ++i)
        free_text(texts[i]);
    free_array(texts);
}

void free_wide_list(gl_wchar **&wide, int32_t count) {
    for (int32_t i = 0; wide != nullptr && i < count; ++i)
        free_wide(wide[i]);
    free_array(wide);
}

// Reads a count and so many texts. Nothing is kept of a list that fails.
bool read_text_list(locale_rec *lc, FILE *file, char **&out, int32_t &out_count) {
    int32_t count;
    if (!read_number_line(lc, file, 0, lco_list_limit, count))
        return false;
    char **texts = nullptr;
    size_t room = 0;
    for (int32_t i = 0; i < count; ++i) {
        bool read = make_room(lc, texts, static_cast<size_t>(i), room);
        if (read) {
            texts[i] = no_text;
            read = read_text(lc, file, texts[i]);
        }
        if (!read) {
            free_text_list(texts, i);
            return false;
        }
    }
    out = texts;
    out_count = count;
    return true;
}

bool widen_list(locale_rec *lc, char *const *texts, gl_wchar **wide, int32_t count) {
    for (int32_t i = 0; i < count; ++i)
        if (!widen_text(lc, texts[i], wide[i]))
            return false;
    return true;
}

bool widen_text_list(locale_rec *lc, char *const *texts, gl_wchar **&wide, int32_t count) {
    free_wide_list(wide, count);
    return count == 0 ||
           (make_array(lc, wide, static_cast<size_t>(count)) && widen_list(lc, texts, wide, count));
}

bool read_calendar(locale_rec *lc, FILE *file) {
    char line[lco_line_limit + 2];
    if (!read_line(file, line, sizeof line))
        return refuse(lc, GLS_ERR_CALENDAR);
    for (const canned_calendar &calendar : gls_canned_calendars)
        if (strcmp(calendar.name, line) == 0) {
            lc->time_cat.calendar = calendar.number;
            return true;
        }
    return refuse(lc, GLS_ERR_CALENDAR);
}

bool read_week(locale_rec *lc, FILE *file, char *(&names)[gl_week_days]) {
    for (char *&name : names)
        if (!read_text(lc, file, name))
            return false;
    return true;
}

bool read_months(locale_rec *lc, FILE *file) {
    time_rec &r = lc->time_cat;
    int32_t full_count;
    if (!read_text_list(lc, file, r.abmon, r.month_count))
        return false;
    char **full = nullptr;
    if (!read_text_list(lc, file, full, full_count))
        return false;
    if (full_count != r.month_count) {
        free_text_list(full, full_count);
        return refuse(lc, GLS_ERR_MALFORMED);
    }
    r.mon = full;
    return true;
}

bool init_time(locale_rec *lc) {
    time_rec &r = lc->time_cat;
    return set_function_pointers(lc) == 0 && widen_texts(lc, r, plain_formats) &&
           widen_texts(lc, r, era_formats) && widen_list(lc, r.day, r.wide_day, gl_week_days) &&
           widen_list(lc, r.abday, r.wide_abday, gl_week_days) &&
           widen_text_list(lc, r.mon, r.wide_mon, r.month_count) &&
           widen_text_list(lc, r.abmon, r.wide_abmon, r.month_count) &&
           widen_text_list(lc, r.alt_digits, r.wide_alt_digits, r.alt_digit_count) &&
           parse_eras(lc);
}

} // namespace

int32_t read_time(locale_rec *lc, FILE *file) {
    time_rec &r = lc->time_cat;
    bool read = read_calendar(lc, file) && read_week(lc, file, r.abday) &&
                read_week(lc, file, r.day) && read_months(lc, file) &&
                read_texts(lc, file, r, plain_formats) &&
                read_text_list(lc, file, r.era_texts, r.era_count) &&
                read_texts(lc, file, r, era_formats) &&
                read_text_list(lc, file, r.alt_digits, r.alt_digit_count);
    return reader_result(read);
}

int32_t init_time_info(locale_rec *lc) { return reader_result(init_time(lc)); }

namespace kestrion {

bool empty_time(locale_rec *lc) {
    lc->time_cat = {};
    free_time(lc);
    return true;
}

void free_time(locale_rec *lc) {
    time_rec &r = lc->time_cat;
    free_texts(r, plain_formats);
    free_texts(r, era_formats);
    for (int32_t i = 0; i < gl_week_days; ++i) {
        free_text(r.day[i]);
        free_text(r.abday[i]);
        free_wide(r.wide_day[i]);
        free_wide(r.wide_abday[i]);
    }
    free_text_list(r.mon, r.month_count);
    free_text_list(r.abmon, r.month_count);
    free_wide_list(r.wide_mon, r.month_count);
    free_wide_list(r.wide_abmon, r.month_count);
    r.month_count = 0;
    free_text_list(r.alt_digits, r.alt_digit_count);
    free_wide_list(r.wide_alt_digits, r.alt_digit_count);
    r.alt_digit_count = 0;
    free_eras(lc);
    free_text_list(r.era_texts, r.era_count);
    r.era_count = 0;
    r.calendar = 0;
}

} // namespace kestrion
