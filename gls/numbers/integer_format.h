// One integer laid out, before it is known where it goes.

#pragma once

#include "gls/numbers/number_layout.h"

#include <stdint.h>

namespace kestrion {

// Lays out magnitude and sign; the arguments are those of _gl_format_decimal. Returns GLS_OK,
// GLS_ERR_ARGUMENT for a bad base, GLS_ERR_NO_ROOM when the number is too long.
int32_t lay_out_integer(locale_rec *lc, number_layout &out, uint64_t value, bool negative,
                        int32_t base, int32_t width, int32_t precision, uint32_t flags);

} // namespace kestrion
