// Formats of numbers and of money as they come: a byte for the locale, a byte for the room, the
// format.

#include "fuzz/number_conventions.h"
#include <kestrion/money_format.h>
#include <kestrion/number_format.h>

#include <algorithm>
#include <stdlib.h>
#include <string.h>
#include <string>

// Formats are what is tried.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

constexpr size_t format_limit = 200;
constexpr int directive_limit = 10; // three values each at most

// Every value is one that any directive can have: a pointer to a text that is one in both families.
alignas(8) const char text[] = "a\0\0\0b\0\0\0\0\0\0";

#define EIGHT_POINTERS text, text, text, text, text, text, text, text
#define VALUES                                                                                     \
    1e300, -2.5, 0.995, -1e-9, 123456789.125, 1e18, 5e-324, 0.0, EIGHT_POINTERS, EIGHT_POINTERS,   \
        EIGHT_POINTERS, EIGHT_POINTERS, EIGHT_POINTERS

void check(int32_t count, int32_t size, const char *dst) {
    if (count >= size || (count >= 0 ? dst[count] : dst[0]) != 0)
        abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 2)
        return 0;
    locale_rec lc = made_up_locale(data[0]);
    const int32_t room = 1 + data[1] * 2;
    const std::string format(reinterpret_cast<const char *>(data) + 2,
                             std::min(size - 2, format_limit));
    if (std::count(format.begin(), format.end(), '%') > directive_limit)
        return 0;
    char *const dst = static_cast<char *>(malloc(static_cast<size_t>(room)));
    check(gl_mbsprintf(&lc, dst, room, format.c_str(), VALUES), room, dst);
    check(gl_mbsfmon(&lc, dst, room, format.c_str(), VALUES), room, dst);
    free(dst);
    return 0;
}
