#include "gls/numbers/number_scanning.h"

#include "gls/base/c_locale_number.h"
#include <kestrion/gls_errors.h>

#include <errno.h>

namespace kestrion {

namespace {

constexpr gl_wchar nothing[] = {0};

bool same_text(const gl_wchar *a, const gl_wchar *b) {
    for (; *a == *b; ++a, ++b)
        if (*a == 0)
            return true;
    return false;
}

// A separator that is also the point could never be the point.
void add_separator(number_marks &marks, int32_t place, const gl_wchar *separator) {
    marks.separators[place] = same_text(separator, marks.point) ? nothing : separator;
}

} // namespace

number_marks numeric_marks(const locale_rec *lc, bool group) {
    const numeric_rec &own = numeric_of(lc);
    number_marks marks = {.point = own.wide_decimal_point,
                          .plus = own.wide_positive_sign,
                          .minus = own.wide_negative_sign,
                          .separators = {nothing, nothing},
                          .exponent = true};
    if (group)
        add_separator(marks, 0, own.wide_thousands_sep);
    return marks;
}

number_marks monetary_marks(const locale_rec *lc, bool group) {
    const monetary_rec &own = monetary_of(lc);
    number_marks marks = {.point = own.wide_mon_decimal_point,
                          .plus = own.wide_positive_sign,
                          .minus = own.wide_negative_sign,
                          .separators = {nothing, nothing},
                          .exponent = false};
    if (group) {
        add_separator(marks, 0, own.wide_mon_thousands_sep);
        add_separator(marks, 1, numeric_of(lc).wide_thousands_sep);
    }
    return marks;
}

bool signed_value_of(const scanned_integer &scanned, int64_t low, int64_t high, int64_t &out) {
    const uint64_t limit =
        scanned.negative ? 0 - static_cast<uint64_t>(low) : static_cast<uint64_t>(high);
    const bool fits = !scanned.overflow && scanned.magnitude <= limit;
    const uint64_t magnitude = fits ? scanned.magnitude : limit;
    out = static_cast<int64_t>(scanned.negative ? 0 - magnitude : magnitude);
    return fits;
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
