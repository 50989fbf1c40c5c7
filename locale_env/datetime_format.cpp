#include <kestrion/datetime_format.h>

#include "base/owned_text.h"
#include "locale_env/datetime_formats.h"
#include "locale_env/time_directives.h"
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_env.h>

#include <stdlib.h>
#include <string.h>

namespace {

constexpr char default_format[] = "%iY-%m-%d %H:%M:%S.%F5";

struct directive_row {
    const char *conversions;
    int first;
    int last;
};
// A weekday and a day of the year need the whole date. The pieces of a format that stands for
// others are those that it can have.
constexpr directive_row directive_rows[] = {
    {"CYgy", unit_year, unit_year},  {"Bbhm", unit_month, unit_month},
    {"de", unit_day, unit_day},      {"ADajuwx", unit_year, unit_day},
    {"HIp", unit_hour, unit_hour},   {"M", unit_minute, unit_minute},
    {"S", unit_second, unit_second}, {"F", unit_fraction1, unit_fraction1},
    {"R", unit_hour, unit_minute},   {"TXr", unit_hour, unit_second},
    {"c", unit_year, unit_second},   {"%nt", unit_second, unit_year}, // text
};

const directive_row *row_of(char conversion) {
    for (const directive_row &row : directive_rows) {
        if (conversion != '\0' && strchr(row.conversions, conversion) != nullptr)
            return &row;
    }
    return nullptr;
}

// A text that grows in a buffer until a piece doesn't fit.
struct output {
    char *at;
    const char *end; // one byte is left for the terminator
    bool fits = true;

    bool put(const char *text, const char *text_end) {
        fits = fits && text_end - text < end - at;
        if (fits) {
            memcpy(at, text, static_cast<size_t>(text_end - text));
            at += text_end - text;
        }
        return fits;
    }
};

bool is_text(const kestrion::time_directive &step) { return step.last < step.first; }

bool has_units(const kestrion::time_directive &step, int start, int end) {
    if (step.conversion == 'F')
        return end > unit_second;
    return !is_text(step) && start <= step.first && step.last <= end;
}

// Puts a directive that the qualifier has; of a fraction no more digits than that.
bool put_directive(output &out, const kestrion::time_directive &step, int end) {
    constexpr int usual_digits = 3;
    const int most = end - unit_second;
    if (step.conversion != 'F' || (step.digits < 0 ? usual_digits : step.digits) <= most)
        return out.put(step.directive, step.next);
    const char digit = static_cast<char>('0' + most);
    return out.put(step.directive, step.next - (step.digits < 0 ? 0 : 1)) &&
           out.put(&digit, &digit + 1);
}

int slot_of(int unit) { return unit < unit_fraction1 ? unit / 2 : unit - 5; }

// Keeps the part of `format` for one qualifier.
int keep_format(GlsEnv *env, const char *format, int length, int start, int end) {
    char text[datetime_format_size];
    const int32_t size = qualtofmt(qualifier_word(length, start, end), format, text, sizeof text);
    if (size < 0)
        return 0; // readers make do without
    char *&place = env->dt_fmt[slot_of(start)][slot_of(end)];
    place = kestrion::joined_text(text);
    return place != nullptr ? 0 : err_date_no_memory;
}

} // namespace

namespace kestrion {

bool next_time_directive(const char *format, time_directive *step) {
    const char *at = strchr(format, '%');
    *step = {.text = format,
             .directive = at != nullptr ? at : format + strlen(format),
             .next = nullptr,
             .conversion = '\0',
             .modifier = '\0',
             .first = unit_second,
             .last = unit_year,
             .digits = -1};
    step->next = step->directive;
    if (at == nullptr)
        return true;
    at += 1 + strspn(at + 1, "'-+ 0#");
    at += strspn(at, "0123456789.");
    if (*at == 'E' || *at == 'O' ||
        (*at == 'i' && at[1] != '\0' && strchr("YyF", at[1]) != nullptr))
        step->modifier = *at++;
    const directive_row *row = row_of(*at);
    if (row == nullptr)
        return false;
    step->conversion = *at++;
    step->first = row->first;
    step->last = row->last;
    if (step->conversion == 'F' && *at >= '0' && *at <= '5')
        step->digits = *at++ - '0';
    step->next = at;
    return true;
}

int settle_datetime_formats(GlsEnv *env) {
    release_datetime_formats(env);
    if (get_usedtenv() == 0)
        return 0;
    const char *format = getdatetimefmt();
    constexpr int ends[] = {unit_year,      unit_month,    unit_day,       unit_hour,
                            unit_minute,    unit_second,   unit_fraction2, unit_fraction3,
                            unit_fraction4, unit_fraction5};
    int code = 0;
    for (int start = unit_year; start <= unit_second && code == 0; start += 2) {
        for (const int end : ends) {
            if (end >= start && code == 0) {
                code = keep_format(env, format, end - start + (start == unit_year ? 4 : 2), start,
                                   end);
            }
        }
    }
    // A value of nothing but a fraction stands on the diagonal, its unit as start as well.
    for (int unit = unit_fraction1; unit <= unit_fraction5 && code == 0; ++unit)
        code = keep_format(env, format, 2, unit, unit);
    return code;
}

void release_datetime_formats(GlsEnv *env) {
    for (char *(&row)[gls_dt_units] : env->dt_fmt) {
        for (char *&format : row) {
            free(format);
            format = nullptr;
        }
    }
}

} // namespace kestrion

int get_usedtenv(void) {
    gentcb *block = CheckGenInit();
    if (block == nullptr)
        return 0;
    if ((block->gen_flags & GEN_DTENV_KNOWN) == 0) {
        const char *text = idx_ggetenv("USE_DTENV", -1);
        block->gen_flags |= GEN_DTENV_KNOWN;
        if (text != nullptr && strcmp(text, "1") == 0)
            block->gen_flags |= GEN_DTENV;
    }
    return (block->gen_flags & GEN_DTENV) != 0 ? 1 : 0;
}

const char *getdatetimefmt(void) {
    const char *format = CheckGlsEnv()->state->settings[GLS_GL_DATETIME];
    return format != nullptr && *format != '\0' ? format : default_format;
}

int32_t qualtofmt(int qualifier, const char *format, char *out, int32_t size) {
    const int start = qualifier >> 4 & 15;
    const int end = qualifier & 15;
    output to = {.at = out, .end = out + (size > 0 ? size : 0)};
    char *kept = out; // after the last directive that stays
    kestrion::time_directive step = {.next = format};
    bool good = kestrion::next_time_directive(format, &step);
    while (good && step.conversion != '\0') {
        const bool wanted = has_units(step, start, end);
        // Text stays as long as a directive before it does; what follows the last one goes below.
        if (kept != out)
            to.put(step.text, is_text(step) ? step.next : step.directive);
        if (wanted) {
            good = put_directive(to, step, end);
            kept = to.at;
        }
        good = good && kestrion::next_time_directive(step.next, &step);
    }
    if (size > 0)
        *(good ? kept : out) = '\0';
    return good && size > 0 ? static_cast<int32_t>(kept - out) : -1;
}
