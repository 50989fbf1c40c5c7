// One integer written where there is room.

#pragma once

#include "gls/numbers/number_layout.h"

#include <stdint.h>

namespace kestrion {

struct integer_directive {
    int32_t base;
    int32_t width;     // or gl_modifier_unset
    int32_t precision; // or gl_modifier_unset
    uint32_t flags;    // gl_number_flags
};

// Writes magnitude and sign to at[0..room) and moves `at` past them. Returns GLS_OK,
// GLS_ERR_ARGUMENT for a bad base, GLS_ERR_NO_ROOM.
int32_t write_integer(locale_rec *lc, gl_wchar *&at, int32_t room, uint64_t value, bool negative,
                      const integer_directive &directive);

} // namespace kestrion
