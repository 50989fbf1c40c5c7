// The modifiers of a directive, one by one, for those who know more of them than flags, width and
// precision.

#pragma once

#include "gls/numbers/number_conventions.h"
#include <kestrion/format_modifiers.h>

namespace kestrion {

// A run of ASCII digits, cut to gl_modifier_limit; 0 when there is none.
inline int32_t read_count(const gl_wchar *&at) {
    int32_t count = 0;
    for (; is_digit(*at); ++at) {
        count = count * 10 + static_cast<int32_t>(*at - '0');
        if (count > gl_modifier_limit)
            count = gl_modifier_limit;
    }
    return count;
}

// The flags up to the width.
uint32_t read_flags(const gl_wchar *&at);

// The count after the "." at `at`; false when the next element can't follow it. A letter may: it is
// the conversion, and the precision is 0. The end of the format is left to the caller.
bool read_precision(locale_rec *lc, const gl_wchar *&at, int32_t &precision);

} // namespace kestrion
