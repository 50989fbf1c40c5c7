// The worker under the Thai sort keys, with its arguments in the order of what they are.

#pragma once

#include <stdint.h>

namespace kestrion {

// Makes the key of a terminated text; a null destination only counts. Returns its length.
int32_t thai_strxfrm(const char *source, char *dst, int32_t size);

} // namespace kestrion
