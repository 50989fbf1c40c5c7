#include "gls/numbers/number_scanning.h"

#include "gls/base/c_locale_number.h"
#include <kestrion/gls_errors.h>

#include <errno.h>

namespace kestrion {

namespace {

bool same_text(const gl_wchar *a, const gl_wchar *b) {
    for (; *a == *b; ++a, ++b)
        if (*a == 0)
            return true;
    return false;
}

} // namespace

const gl_wchar *usable_separator(const gl_wchar *separator, const gl_wchar *point) {
    return same_text(separator, point) ? no_separator : separator;
}

number_marks monetary_marks(const locale_rec *lc, bool group) {
    const monetary_rec &own = monetary_of(lc);
    number_marks marks = {.point = own.wide_mon_decimal_point,
                          .plus = own.wide_positive_sign,
                          .minus = own.wide_negative_sign,
                          .separators = {no_separator, no_separator},
                          .exponent = false};
    if (group) {
        marks.separators[0] = usable_separator(own.wide_mon_thousands_sep, marks.point);
        marks.separators[1] = usable_separator(numeric_of(lc).wide_thousands_sep, marks.point);
    }
    return marks;
}

double collected_float::value(int32_t &error) {
    error = GLS_OK;
    if (length_ >= float_text_size) {
        error = GLS_ERR_NO_ROOM;
        return 0;
    }
    const int32_t exponent =
        exponent_ + (negative_exponent_ ? -written_exponent_ : written_exponent_);
    double magnitude = 0;
    if (count_ <= kept_digits && nearest_double(digits_, exponent, magnitude))
        return negative_ ? -magnitude : magnitude;
    text_[length_] = '\0';
    const int before = errno;
    errno = 0;
    const char *end = nullptr;
    const double value = c_locale_number(text_, &end);
    if (errno == ERANGE)
        error = GLS_ERR_FLOAT_RANGE;
    errno = before;
    return value;
}

} // namespace kestrion
