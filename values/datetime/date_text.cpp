#include <kestrion/date_text.h>

#include "locale_env/time_directives.h"
#include "values/datetime/date_reader.h"
#include "values/datetime/field_text.h"
#include "values/datetime/moment.h"
#include <kestrion/char_length.h>
#include <kestrion/date_format.h>
#include <kestrion/gls_env.h>
#include <kestrion/gls_errors.h>
#include <kestrion/startup.h>

#include <algorithm>

using namespace kestrion;

namespace {

constexpr char default_format[] = "%m/%d/%iY";

// What a text is read by.
struct date_style {
    const char *format;
    const int32_t *order; // of the fields; null when the format alone says it
    int32_t fields;       // in `order`
    bool separated;
    bool era;
};

// Whether anything but directives stands in the format.
bool has_separators(const char *format) {
    time_directive step = {.next = format};
    do {
        if (!next_time_directive(step.next, &step) || step.directive != step.text)
            return true;
    } while (step.conversion != '\0');
    return false;
}

date_style current_style() {
    const new_gls_env_rec &state = *CheckGlsEnv()->state;
    date_style style = {.format = state.date_fmt != nullptr ? state.date_fmt : default_format};
    if (state.date_from_dbdate != 0 && state.date_fmt != nullptr) {
        style.order = state.date_order;
        while (style.fields < 3 && style.order[style.fields] != 0)
            ++style.fields;
        style.separated = has_separators(style.format);
        style.era = state.date_era_kind != 0 || state.gregorian == 0;
    }
    return style;
}

// -- By the order of DBDATE ----------------------------------------------------------------------

// Without separators days and months have two digits, and the year has the rest, two at least.
int year_digits(const char *text, int32_t fields) {
    int digits = 0;
    for (; *text != '\0'; ++text)
        digits += is_digit(*text) ? 1 : 0;
    return std::max(digits - 2 * (fields - 1), 2);
}

// One character that is not a digit; blanks may follow it.
bool take_separator(date_reader &read) {
    if (*read.at == '\0' || is_digit(*read.at))
        return false;
    const int32_t bytes = gl_full_mblen(read.lc, read.at, INT32_MAX);
    read.at = skip_blanks(read.at + (bytes > 0 ? bytes : 1));
    return true;
}

bool take_field(date_reader &read, int32_t field, int least, int most) {
    if (field == gls_date_year)
        return read.read_year(least, most);
    if (field == gls_date_day)
        return read.number(least, most, &read.day);
    return read.number(least, most, &read.month) || read.month_name();
}

int read_separated(date_reader &read, const date_style &style) {
    bool name = false; // no separator is needed beside a name
    for (int32_t i = 0; i < style.fields; ++i) {
        const int32_t field = style.order[i];
        const bool separated = i == 0 || take_separator(read);
        const char *start = read.at;
        if (!take_field(read, field, 1, field == gls_date_year ? 4 : 2))
            return err_date_text;
        const bool named = !is_digit(*start);
        if (!separated && !named && !name)
            return err_date_text;
        name = named;
    }
    for (int32_t i = style.fields; i < 3; ++i)
        take_separator(read); // of the fields that the format leaves empty
    return 0;
}

int read_joined(date_reader &read, const date_style &style) {
    const int of_year = year_digits(read.at, style.fields);
    for (int32_t i = 0; i < style.fields; ++i) {
        const int digits = style.order[i] == gls_date_year ? of_year : 2;
        if (digits > 4 || !take_field(read, style.order[i], digits, digits))
            return err_date_text;
    }
    return 0;
}

int read_by_order(const char *text, const date_style &style, int32_t *date) {
    date_reader read = {.at = text, .lc = CheckGlsEnv()->cur_lc};
    const int code = style.separated ? read_separated(read, style) : read_joined(read, style);
    if (code != 0)
        return code;
    return *skip_blanks(read.at) == '\0' ? read.date(date) : +err_date_text;
}

// -- By the format -------------------------------------------------------------------------------

int read_by_format(const char *text, const char *format, int32_t *date) {
    gl_alt_tm moment;
    const char *rest = nullptr;
    const int32_t error = read_moment(started_locale(), text, format, '\0', &moment, &rest);
    if (error != 0)
        return error < 0 ? error : date_error(error);
    if (*skip_blanks(rest) != '\0')
        return err_date_text;
    return date_of_fields(moment.month + 1, moment.day, int64_t{moment.year} + 1900, date);
}

// A text in a buffer, with room for its terminator.
struct spread_text {
    char text[2 * rdatestr_size] = {};
    size_t length = 0;

    bool put(const char *from, size_t count) {
        if (count >= sizeof text - length)
            return false;
        memcpy(text + length, from, count);
        length += count;
        return true;
    }
};

// The years of an era have no fixed width, so a text without separators is spread out before it is
// read: "H310430" under "%Eg%02.2Ey%m%d" becomes "H31 04 30" under "%Eg%02.2Ey %m %d".
int read_joined_era(const char *text, const date_style &style, int32_t *date) {
    spread_text spread;
    spread_text format;
    const int of_year = year_digits(text, style.fields);
    for (int32_t i = 0; i < style.fields; ++i) {
        size_t count = 0;
        while (text[count] != '\0' && !is_digit(text[count]))
            ++count; // the era's name
        const int digits = style.order[i] == gls_date_year ? of_year : 2;
        for (int digit = 0; digit < digits; ++digit) {
            if (!is_digit(text[count++]))
                return err_date_text;
        }
        if (!spread.put(text, count) || !spread.put(" ", 1))
            return err_date_text;
        text += count;
    }
    if (!spread.put(text, strlen(text)))
        return err_date_text;
    time_directive step = {.next = style.format};
    while (next_time_directive(step.next, &step) && step.conversion != '\0') {
        const bool name = strchr("Cg", step.conversion) != nullptr;
        if (!format.put(step.directive, static_cast<size_t>(step.next - step.directive)) ||
            (!name && !format.put(" ", 1)))
            return err_date_text;
    }
    return read_by_format(spread.text, format.text, date);
}

// -- By a mask -----------------------------------------------------------------------------------

char field_letter(char c) {
    const char *found = c != '\0' ? strchr("mdyMDY", c) : nullptr;
    return found != nullptr ? "mdymdy"[found - "mdyMDY"] : '\0';
}

bool take_masked_field(date_reader &read, char letter, int run, bool joined) {
    const int digits = letter == 'y' && run > 2 ? 4 : 2;
    const int least = joined ? digits : 1;
    if (letter == 'y')
        return read.read_year(least, digits);
    if (run > 2)
        return letter == 'm' ? read.month_name() : read.weekday_name();
    return read.number(least, digits, letter == 'm' ? &read.month : &read.day);
}

bool is_field_character(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           static_cast<unsigned char>(c) > 127;
}

// The same text, or any run of characters that are no part of a field.
bool take_masked_text(date_reader &read, const char *text, size_t length) {
    if (strncmp(read.at, text, length) == 0) {
        read.at += length;
        return true;
    }
    const char *start = read.at;
    while (*read.at != '\0' && !is_field_character(*read.at))
        ++read.at;
    return read.at > start;
}

bool read_masked(date_reader &read, const char *mask) {
    bool after_field = false;
    while (*mask != '\0') {
        const char letter = field_letter(*mask);
        int run = 1;
        while (mask[run] != '\0' && field_letter(mask[run]) == letter)
            ++run;
        const bool joined = after_field || field_letter(mask[run]) != '\0';
        if (letter == '\0' ? !take_masked_text(read, mask, static_cast<size_t>(run))
                           : !take_masked_field(read, letter, run, joined))
            return false;
        after_field = letter != '\0';
        mask += run;
    }
    return *skip_blanks(read.at) == '\0';
}

// -- All -----------------------------------------------------------------------------------------

int read_date(const char *text, int32_t *date) {
    if (const int code = chkglsinit(); code != 0)
        return code;
    text = skip_blanks(text);
    if (*text == '\0')
        return 0;
    const date_style style = current_style();
    if (style.order == nullptr || (style.era && style.separated))
        return read_by_format(text, style.format, date);
    return style.era ? read_joined_era(text, style, date) : read_by_order(text, style, date);
}

int finish_date(int code, int32_t *date) {
    if (code != 0)
        *date = date_null;
    return code;
}

} // namespace

int rdatestr(int32_t date, char *text) {
    *text = '\0';
    int16_t mdy[3];
    if (const int code = chkglsinit(); code != 0)
        return code;
    if (const int code = rjulmdy(date, mdy); code != 0 || date == date_null)
        return code;
    const unsigned char bytes[datetime_field_bytes] = {
        static_cast<unsigned char>(mdy[2] / 100), static_cast<unsigned char>(mdy[2] % 100),
        static_cast<unsigned char>(mdy[0]), static_cast<unsigned char>(mdy[1])};
    const int32_t error = write_moment(CheckGlsEnv()->cur_lc, text, rdatestr_size,
                                       current_style().format, moment_of(bytes));
    if (error == 0)
        return 0;
    return error == GLS_ERR_NO_ROOM ? +err_result_size : date_error(error);
}

int rstrdate(const char *text, int32_t *date) {
    *date = date_null;
    return finish_date(read_date(text, date), date);
}

int rdefmtdate(int32_t *date, const char *mask, const char *text) {
    *date = date_null;
    if (const int code = chkglsinit(); code != 0)
        return code;
    date_reader read = {.at = skip_blanks(text), .lc = CheckGlsEnv()->cur_lc};
    if (*read.at == '\0')
        return 0;
    return finish_date(read_masked(read, mask) ? read.date(date) : +err_date_text, date);
}
