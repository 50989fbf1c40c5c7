#include <kestrion/datetime_text.h>

#include "values/datetime/field_text.h"
#include "values/datetime/masks.h"
#include <kestrion/datetime_format.h>
#include <kestrion/format_mask.h>

using namespace kestrion;

namespace {

constexpr int masked_text_size = rdtimestr_size - 1; // what a program's 80 columns hold

// No letter, which stands for DBCENTURY below, is as good as a wrong one.
char own_letter(char century) { return century != '\0' ? century : 'R'; }

// The usual text without a mask, which is nearly every text.
bool read_usual(const char *text, dec_value *value, int qualifier) {
    gentcb *block = CheckGenInit();
    if (block == nullptr || (block->gen_flags & (GEN_DTENV_KNOWN | GEN_DTENV)) != GEN_DTENV_KNOWN ||
        !parse_usual_text(text, qualifier, value))
        return false;
    block->conv_err = 0;
    return true;
}

int read_datetime(const char *text, dec_value *value, int qualifier, char century) {
    if (read_usual(text, value, qualifier))
        return 0;
    *value = null_decimal;
    if (!is_datetime_qualifier(qualifier))
        return answer(err_dt_qualifier);
    const field_layout q(qualifier);
    if (get_usedtenv() == 0)
        return answer(parse_fields(text, q, true, century, value));
    char format[datetime_format_size];
    const char *mask = environment_mask(qualifier, format);
    return answer(mask != nullptr ? read_under_mask(text, mask, q, century, value)
                                  : +err_dt_qualifier);
}

int write_datetime(const dec_value *value, int qualifier, char *text) {
    operand x;
    *text = '\0';
    const loaded state = load_value(value, &x);
    if (state == loaded::malformed)
        return -1;
    if (writes_by_gl_datetime()) {
        const dtime_value record = {.qualifier = static_cast<int16_t>(qualifier), .value = *value};
        return dttofmtasc(&record, text, masked_text_size, nullptr);
    }
    if (!is_datetime_qualifier(qualifier))
        return err_dt_qualifier;
    if (state == loaded::value)
        *put_datetime(text, x, qualifier) = '\0';
    return 0;
}

} // namespace

int rdtimestr(const dec_value *value, int qualifier, char *text) {
    return answer(write_datetime(value, qualifier, text));
}

int dttoasc(const dtime_value *value, char *text) {
    return answer(write_datetime(&value->value, value->qualifier, text));
}

int rstrdinv(const char *text, dec_value *value, int qualifier, int is_datetime) {
    if (is_datetime != 0)
        return rstrdtime(text, value, qualifier);
    *value = null_decimal;
    if (!is_interval_qualifier(qualifier))
        return answer(err_dt_qualifier);
    return answer(parse_fields(text, field_layout(qualifier), false, 'R', value));
}

int rstrdtime(const char *text, dec_value *value, int qualifier) {
    return read_datetime(text, value, qualifier, '\0');
}

int qvt_rstrdtime(const char *text, dec_value *value, int qualifier, char century) {
    return read_datetime(text, value, qualifier, own_letter(century));
}

int dtcvasc(const char *text, dtime_value *value) {
    return read_datetime(text, &value->value, value->qualifier, '\0');
}

int qvt_dtcvasc(const char *text, dtime_value *value, char century) {
    return read_datetime(text, &value->value, value->qualifier, own_letter(century));
}
