#include "gls/numbers/format_modifiers.h"

#include "gls/base/engine_error.h"
#include "gls/numbers/number_conventions.h"
#include <kestrion/ctype_masks.h>

using namespace kestrion;

namespace {

uint32_t flag_of(gl_wchar element) {
    switch (element) {
    case '\'':
        return gl_flag_group;
    case '-':
        return gl_flag_left;
    case '+':
        return gl_flag_plus;
    case ' ':
        return gl_flag_blank;
    case '0':
        return gl_flag_zero;
    case '#':
        return gl_flag_alternate;
    default:
        return 0;
    }
}

} // namespace

namespace kestrion {

uint32_t read_flags(const gl_wchar *&at) {
    uint32_t flags = 0;
    while (const uint32_t flag = flag_of(*at)) {
        ++at;
        flags |= flag;
        if (flag == gl_flag_zero)
            break;
    }
    return flags;
}

bool read_precision(locale_rec *lc, const gl_wchar *&at, int32_t &precision) {
    const gl_wchar next = *++at;
    precision = read_count(at);
    return is_digit(next) || next == 0 || has_class(lc, next, CT_ALPHA);
}

} // namespace kestrion

int32_t _gl_scan_format_modifiers(locale_rec *lc, const gl_wchar **at, int32_t *width,
                                  int32_t *precision, uint32_t *flags) {
    *width = *precision = gl_modifier_unset;
    *flags = read_flags(*at);
    if (is_digit(**at))
        *width = read_count(*at);
    if (**at != '.' || read_precision(lc, *at, *precision))
        return 0;
    return fail(lc, GLS_ERR_PRECISION);
}
