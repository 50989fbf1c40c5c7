// How many random cases a property is tried on: all of them in an optimised run, a twentieth where
// sanitizers or an emulator slow each one down. KESTRION_CASES=N divides by N instead.

#pragma once

#include <cstdlib>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1
#endif
#endif

inline long random_cases(long optimised) {
    if (const char *given = getenv("KESTRION_CASES"))
        return optimised / (atol(given) > 0 ? atol(given) : 1);
#if defined(__SANITIZE_ADDRESS__) || !defined(__OPTIMIZE__)
    return optimised / 20;
#else
    return optimised;
#endif
}
