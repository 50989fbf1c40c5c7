#include <kestrion/interval_text.h>

#include "values/datetime/field_text.h"
#include <kestrion/datetime_text.h>

using namespace kestrion;

namespace {

// Blanks the leading zeros of the first field but for its last digit. Returns the first character
// that is left, which for a value of nothing but a fraction is the point.
char *blank_leading_zeros(char *field, int digits) {
    for (; digits > 1 && *field == '0'; --digits)
        *field++ = ' ';
    return field;
}

} // namespace

int rdinstr(const dec_value *value, int qualifier, char *text) {
    *text = '\0';
    if (!is_interval_qualifier(qualifier))
        return answer(err_dt_qualifier);
    operand x;
    const loaded state = load_value(value, &x);
    if (state != loaded::value)
        return answer(no_value(state));
    const field_layout q(qualifier);
    unsigned char bytes[word_bytes];
    store_word(field_word(x, q), bytes);
    *put_fields(text, bytes, q) = '\0';
    return answer(0);
}

int rinvstr(const dec_value *value, int qualifier, char *text) {
    const int code = rdinstr(value, qualifier, text + 1);
    if (text[1] == '\0') {
        *text = '\0';
        return code;
    }
    const field_layout q(qualifier);
    *text = ' ';
    char *first =
        q.start == unit_fraction ? text + 1 : blank_leading_zeros(text + 1, q.leading_digits());
    if (value->sign == dec_negative)
        first[-1] = '-';
    return code;
}

int intoasc(const intv_value *value, char *text) {
    return rinvstr(&value->value, value->qualifier, text);
}

int rstrinv(const char *text, dec_value *value, int qualifier) {
    const char *first = skip_blanks(text);
    if (*first != '-')
        return rstrdinv(first, value, qualifier, 0);
    const int code = rstrdinv(first + 1, value, qualifier, 0);
    if (code == 0 && is_null(*value)) {
        *value = {.exponent = dec_exponent_min, .sign = dec_negative, .ndigits = 0, .digits = {}};
    } else if (!is_null(*value)) {
        value->sign = dec_negative;
    }
    return code;
}

int incvasc(const char *text, intv_value *value) {
    return rstrinv(text, &value->value, value->qualifier);
}
