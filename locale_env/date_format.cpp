#include <kestrion/date_format.h>

#include "base/ascii_class.h"
#include "locale_env/datetime_formats.h"
#include <kestrion/cached_names.h>
#include <kestrion/categories.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_env.h>
#include <kestrion/langinfo.h>
#include <kestrion/locale_rec.h>

#include <stdlib.h>
#include <string.h>

namespace {

constexpr size_t caller_buffer_size = 256;

enum year_style { STYLE_NONE, STYLE_FORM_1, STYLE_FORM_2 };

// By style and digits 2, 3, 4.
constexpr const char *year_formats[][3] = {
    {"%iy", nullptr, "%iY"},                    // STYLE_NONE
    {"%EC%02.2Ey", "%EC%03.3Ey", "%EC%04.4Ey"}, // STYLE_FORM_1
    {"%Eg%02.2Ey", "%Eg%03.3Ey", "%Eg%04.4Ey"}, // STYLE_FORM_2
};

struct era_row {
    char first;
    char second; // '\0': a prefix, which comes before the Y
    int32_t kind;
    year_style style;
};
constexpr era_row era_rows[] = {
    {'E', '\0', 3, STYLE_FORM_1}, {'G', '\0', 3, STYLE_FORM_2}, {'N', '\0', 1, STYLE_FORM_2},
    {'C', '1', 2, STYLE_FORM_2},  {'C', '2', 2, STYLE_FORM_1},  {'J', '1', 1, STYLE_FORM_2},
    {'J', '2', 1, STYLE_FORM_1},
};

const era_row *find_era(char first, char second) {
    for (const era_row &row : era_rows)
        if (row.first == first && row.second == second)
            return &row;
    return nullptr;
}

// The parts of a DBDATE text while it is read.
struct dbdate_reader {
    const char *at;
    int32_t order[3] = {};
    int fields = 0;
    int digits = 0;
    const era_row *era = nullptr;
    char separator = '/';

    bool year_digits() {
        if (*at >= '2' && *at <= '4') {
            digits = *at++ - '0';
        } else if (kestrion::ascii_upper(*at) == 'Y') {
            digits = 2;
            ++at;
        } else if (era != nullptr) {
            digits = 2;
        } else {
            return false;
        }
        return true;
    }

    bool field() {
        const char letter = kestrion::ascii_upper(*at++);
        int32_t kind = letter == 'D'   ? gls_date_day
                       : letter == 'M' ? gls_date_month
                       : letter == 'Y' ? gls_date_year
                                       : 0;
        if (kind == 0) {
            era = find_era(letter, '\0');
            if (era == nullptr || *at++ != 'Y')
                return false;
            kind = gls_date_year;
        }
        for (int i = 0; i < fields; ++i)
            if (order[i] == kind)
                return false;
        order[fields++] = kind;
        return kind != gls_date_year || year_digits();
    }

    void read_separator() {
        if (*at == '\0')
            return;
        if (strchr(",-./0", *at) != nullptr)
            separator = *at;
        ++at;
    }

    // A suffix overrides the era of a prefix; only C1 and C2 allow three digits.
    bool suffix() {
        bool of_century = false;
        if (*at != '\0') {
            era = find_era(kestrion::ascii_upper(at[0]), at[1]);
            if (at[1] == '\0' || era == nullptr || at[2] != '\0')
                return false;
            of_century = era->first == 'C';
            if (of_century && digits < 3)
                digits = 3;
        }
        return digits != 3 || of_century;
    }
};

void append(dbdate_format *out, const char *text) {
    strncat(out->text, text, sizeof out->text - strlen(out->text) - 1);
}

void build_format(const dbdate_reader &read, dbdate_format *out) {
    const char separator[2] = {read.separator == '0' ? '\0' : read.separator, '\0'};
    const year_style style = read.era != nullptr ? read.era->style : STYLE_NONE;
    out->text[0] = '\0';
    for (int slot = 0; slot < 3; ++slot) {
        if (read.order[slot] == gls_date_day)
            append(out, "%d");
        else if (read.order[slot] == gls_date_month)
            append(out, "%m");
        else if (read.order[slot] == gls_date_year)
            append(out, year_formats[style][read.digits - 2]);
        if (slot < 2)
            append(out, separator);
    }
}

// Where the settled format goes.
struct destination {
    new_gls_env_rec &state;
    char *buffer;

    int take(const char *text, int32_t from_dbdate) {
        const size_t length = strlen(text);
        char *allocated = nullptr;
        if (buffer == nullptr)
            allocated = static_cast<char *>(malloc(
                length < gls_dbdate_format_size ? size_t{gls_dbdate_format_size} : length + 1));
        if (buffer != nullptr ? length >= caller_buffer_size : allocated == nullptr)
            return err_date_no_memory;
        state.date_fmt = buffer != nullptr ? buffer : allocated;
        memcpy(state.date_fmt, text, length + 1);
        free(state.owned_date_fmt);
        state.owned_date_fmt = allocated;
        state.date_fmt_known = 1;
        state.date_from_dbdate = from_dbdate;
        return 0;
    }

    int take_default() {
        const int result = take("%m/%d/%iY", 1);
        if (result == 0) {
            state.date_order[0] = gls_date_month;
            state.date_order[1] = gls_date_day;
            state.date_order[2] = gls_date_year;
            state.date_era_kind = 0;
        }
        return result;
    }
};

// The locales of one territory write month, day, four-digit year, whatever their object says.
// Without memory for the object's name nothing is settled: the format would be another one
// unnoticed.
int take_locale_format(destination &to, locale_rec *lc) {
    if (lc == nullptr)
        return to.take_default();
    char *file = gl_setlocale_4(lc, GL_CAT_TIME, nullptr);
    if (file == nullptr)
        return err_date_no_memory;
    const bool is_en_us = strncmp(file, "en_us", 5) == 0;
    gl_destroystring(file);
    const char *format = is_en_us ? nullptr : gl_nl_langinfo(lc, GL_ITEM_DATE_FORMAT);
    return format != nullptr ? to.take(format, 0) : to.take_default();
}

// Keeps the environment's copy of the setting in step with the text in use.
int follow_setting(new_gls_env_rec &state, gls_setting which, const char *text) {
    const char *now = state.settings[which];
    if (now != nullptr && strcmp(now, text) == 0)
        return 0;
    return gls_set_setting(&state, which, text) == 0 ? 0 : err_date_no_memory;
}

int take_dbdate(destination &to, const char *text) {
    dbdate_format format;
    if (const int result = follow_setting(to.state, GLS_DBDATE, text); result != 0)
        return result;
    if (const int result = parse_dbdate(text, &format); result != 0)
        return result;
    const int result = to.take(format.text, 1);
    if (result == 0) {
        memcpy(to.state.date_order, format.order, sizeof format.order);
        to.state.date_era_kind = format.era_kind;
    }
    return result;
}

} // namespace

int parse_dbdate(const char *text, dbdate_format *out) {
    dbdate_reader read{.at = text};
    if (*text == '\0')
        return err_date_format;
    while (read.fields < 3 && *read.at != '\0')
        if (!read.field())
            return err_date_format;
    if (read.fields == 3)
        read.read_separator();
    if (!read.suffix())
        return err_date_format;
    memcpy(out->order, read.order, sizeof out->order);
    out->era_kind = read.era != nullptr ? read.era->kind : 0;
    build_format(read, out);
    return 0;
}

int nogetenv_getglsfmt(void *, void *, char *buffer, int) {
    GlsEnv *env = CheckGlsEnv();
    destination to{*env->state, buffer};
    if (const char *dbdate = ggetenv("DBDATE"); dbdate != nullptr)
        return take_dbdate(to, dbdate);
    if (const char *gl_date = ggetenv("GL_DATE"); gl_date != nullptr) {
        const int result = to.take(gl_date, 0);
        return result != 0 ? result : follow_setting(to.state, GLS_GL_DATE, to.state.date_fmt);
    }
    return take_locale_format(to, env->cur_lc);
}

int initdatetime(void) {
    GlsEnv *env = CheckGlsEnv();
    new_gls_env_rec &state = *env->state;
    state.date_fmt = nullptr;
    state.date_from_dbdate = 0;
    state.date_era_kind = 0;
    state.date_fmt_known = 0;
    memset(state.date_order, 0, sizeof state.date_order);
    if (const int result = nogetenv_getglsfmt(nullptr, nullptr, nullptr, 0); result < 0)
        return set_glserror(result);
    const char *calendar =
        env->cur_lc != nullptr ? gl_nl_langinfo(env->cur_lc, GL_ITEM_CALENDAR) : nullptr;
    state.gregorian = calendar != nullptr && strncmp(calendar, "gregorian", 9) == 0;
    // Without the names dates are read by number alone: no reason to refuse the start.
    cache_month_strings();
    cache_era_strings();
    if (const char *text = idx_ggetenv("GL_DATETIME", -1); text != nullptr)
        if (const int result = follow_setting(state, GLS_GL_DATETIME, text); result != 0)
            return set_glserror(result);
    const int result = kestrion::settle_datetime_formats(env);
    return result != 0 ? set_glserror(result) : 0;
}
