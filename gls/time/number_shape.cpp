#include "gls/time/number_shape.h"

#include <kestrion/gls_errors.h>
#include <kestrion/integer_format.h>

namespace kestrion {

int32_t parse_modifiers(locale_rec *lc, const gl_wchar *text, number_shape &shape, int32_t &used) {
    const gl_wchar *at = text;
    shape.as_usual = false;
    if (_gl_scan_format_modifiers(lc, &at, &shape.width, &shape.precision, &shape.flags) != 0)
        return GLS_ERR_PRECISION;
    used = static_cast<int32_t>(at - text);
    return GLS_OK;
}

int32_t shape_number(locale_rec *lc, int64_t number, const number_shape &usual,
                     const number_shape &wanted, shaped_number &out) {
    const bool negative = number < 0;
    const auto magnitude = static_cast<uint64_t>(number);
    const int32_t width = wanted.width < 0 ? usual.width : wanted.width;
    const int32_t precision = wanted.precision < 0 ? usual.precision : wanted.precision;
    gl_wchar *end = out.text;
    out.length = most_number_elements;
    if (_gl_format_decimal(lc, negative ? 0 - magnitude : magnitude, negative, 10, &out.length,
                           out.text, &end, width, precision, wanted.flags) != 0)
        return GLS_ERR_NO_ROOM;
    return GLS_OK;
}

} // namespace kestrion
