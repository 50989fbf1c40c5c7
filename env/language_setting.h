#pragma once

#include <stdint.h>

namespace kestrion {

// What a value of DBNLS means: 1 or 2 for exactly these texts, which have the locale variables
// filled in; 0 for any other and for null.
constexpr int32_t language_mode(const char *dbnls) {
    if (dbnls == nullptr || (*dbnls != '1' && *dbnls != '2') || dbnls[1] != '\0')
        return 0;
    return *dbnls - '0';
}

} // namespace kestrion
