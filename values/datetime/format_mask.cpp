#include <kestrion/format_mask.h>

#include "values/datetime/datetime_workers.h"
#include "values/datetime/field_text.h"
#include "values/datetime/masks.h"
#include "values/datetime/moment.h"
#include <kestrion/datetime_format.h>
#include <kestrion/env_registry.h>
#include <kestrion/gls_env.h>
#include <kestrion/gls_errors.h>
#include <kestrion/startup.h>

using namespace kestrion;

namespace {

// Returns false when a field cannot be one of a datetime.
bool bytes_of(const gl_alt_tm &moment, unsigned char *bytes) {
    const int64_t year = int64_t{moment.year} + 1900;
    const int64_t fields[] = {year / 100,
                              year % 100,
                              int64_t{moment.month} + 1,
                              moment.day,
                              moment.hour,
                              moment.minute,
                              moment.second,
                              moment.fraction / 10000,
                              moment.fraction / 100 % 100,
                              moment.fraction % 100};
    for (int64_t field : fields) {
        if (field < 0 || field > 99)
            return false;
        *bytes++ = static_cast<unsigned char>(field);
    }
    return true;
}

int error_of_format(int32_t locale_error) {
    switch (locale_error) {
    case GLS_ERR_NO_ROOM:
        return err_result_size;
    case GLS_ERR_FORMAT:
    case GLS_ERR_NO_REGISTRY: // the format ends inside a directive
        return err_dt_qualifier;
    default:
        return err_dt_field_range;
    }
}

int write_under_mask(digit_word row, int qualifier, char *text, int32_t size, const char *mask) {
    dec_value full;
    unsigned char bytes[datetime_field_bytes];
    extend(row, dec_positive, qualifier, qualifier_year_to_fraction5, &full);
    if (is_null(full))
        return 0;
    unpack_fields(full, field_layout(qualifier_year_to_fraction5), bytes);
    const int32_t error = write_moment(started_locale(), text, size, mask, moment_of(bytes));
    return error == GLS_OK ? 0 : error_of_format(error);
}

int error_of_scan(int32_t locale_error) {
    switch (locale_error) {
    case GLS_ERR_NO_REGISTRY: // the format ends inside a directive
        return err_dt_qualifier;
    case GLS_ERR_FRACTION:
    case GLS_ERR_SECOND:
    case GLS_ERR_MINUTE:
    case GLS_ERR_HOUR:
    case GLS_ERR_DAY:
    case GLS_ERR_WEEKDAY:
    case GLS_ERR_DAY_OF_YEAR:
    case GLS_ERR_MONTH:
    case GLS_ERR_YEAR:
        return err_dt_field_range;
    default:
        return err_dt_character;
    }
}

} // namespace

namespace kestrion {

bool writes_by_gl_datetime() {
    const new_gls_env_rec &state = *CheckGlsEnv()->state;
    // Before the start there is no need for one, unless the variable asks for it: a start that fails
    // would be tried for each text.
    if (state.init_flags == 0 && (idx_ggetenv("GL_DATETIME", -1) == nullptr || chkglsinit() != 0))
        return false;
    const char *format = state.settings[GLS_GL_DATETIME];
    return format != nullptr && *format != '\0';
}

const char *environment_mask(int qualifier, char *buffer) {
    const auto slot = [](int unit) { return unit < unit_fraction1 ? unit / 2 : unit - 5; };
    const field_layout q(qualifier);
    chkglsinit();
    const int end = slot(q.end);
    const char *kept = CheckGlsEnv()->dt_fmt[q.start == unit_fraction ? end : slot(q.start)][end];
    if (kept != nullptr)
        return kept;
    return qualtofmt(qualifier, getdatetimefmt(), buffer, datetime_format_size) > 0 ? buffer
                                                                                    : nullptr;
}

int read_under_mask(const char *text, const char *mask, const field_layout &q, char century,
                    dec_value *value) {
    *value = null_decimal;
    text = skip_blanks(text);
    if (*text == '\0')
        return 0;
    gl_alt_tm moment;
    const char *rest = nullptr;
    const int32_t error = read_moment(started_locale(), text, mask, century, &moment, &rest);
    if (error != 0)
        return error < 0 ? error : error_of_scan(error);
    if (*skip_blanks(rest) != '\0')
        return err_dt_extra;
    unsigned char bytes[datetime_field_bytes] = {};
    if (!bytes_of(moment, bytes))
        return err_dt_field_range;
    digit_word row = load_word(bytes) & leading_bytes[static_cast<size_t>(row_end(q))];
    row &= ~leading_bytes[static_cast<size_t>(row_begin(q))];
    if (!row_in_range(row, q))
        return err_dt_field_range;
    return pack_row(value, q, row, dec_positive);
}

} // namespace kestrion

int dttofmtasc(const dtime_value *value, char *text, int32_t size, const char *mask) {
    char buffer[datetime_format_size];
    if (size > 0)
        *text = '\0';
    if (!is_datetime_qualifier(value->qualifier))
        return answer(err_dt_qualifier);
    operand x;
    const loaded state = load_value(&value->value, &x);
    if (state == loaded::malformed)
        return answer(-1);
    if (mask == nullptr)
        mask = environment_mask(value->qualifier, buffer);
    if (mask == nullptr)
        return answer(err_dt_qualifier);
    if (state == loaded::null)
        return answer(size > 0 ? 0 : +err_result_size);
    return answer(write_under_mask(row_of(x, field_layout(value->qualifier)), value->qualifier,
                                   text, size, mask));
}

int dtcvfmtasc(const char *text, const char *mask, dtime_value *value) {
    char buffer[datetime_format_size];
    int code = err_dt_qualifier;
    if (is_datetime_qualifier(value->qualifier)) {
        if (mask == nullptr)
            mask = environment_mask(value->qualifier, buffer);
        if (mask != nullptr)
            code = read_under_mask(text, mask, field_layout(value->qualifier), '\0', &value->value);
    }
    return finish(code, &value->value);
}
