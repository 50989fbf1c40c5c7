// Texts and formats of the scanners as they come: a byte for the locale, the format up to a line
// feed, the text. What a float or an integer is read from is the whole text.

#include "fuzz/number_conventions.h"
#include <kestrion/money_scan.h>
#include <kestrion/number_scan.h>
#include <kestrion/number_text.h>

#include <algorithm>
#include <stdlib.h>
#include <string>
#include <vector>

#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

constexpr size_t input_limit = 1000;
constexpr int directive_limit = 24;

// Room for whatever one directive can store: each byte of the text as a wide character.
alignas(8) char room[4 * input_limit + 8];

#define EIGHT_POINTERS room, room, room, room, room, room, room, room
#define POINTERS       EIGHT_POINTERS, EIGHT_POINTERS, EIGHT_POINTERS, EIGHT_POINTERS

void check_end(const std::string &text, const char *end) {
    if (end != nullptr && (end < text.c_str() || end > text.c_str() + text.size()))
        abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 1 || size > input_limit)
        return 0;
    locale_rec lc = made_up_locale(data[0]);
    const std::string input(reinterpret_cast<const char *>(data) + 1, size - 1);
    const size_t line = std::min(input.find('\n'), input.size());
    const std::string format = input.substr(0, line).c_str();
    const std::string text = input.substr(std::min(line + 1, input.size())).c_str();
    const char *end;
    for (const int32_t base : {0, 2, 10, 16, 36}) {
        gl_mbstol(&lc, text.c_str(), &end, base, data[0] & 1);
        check_end(text, end);
    }
    gl_mbstod(&lc, text.c_str(), &end, data[0] & 1);
    check_end(text, end);
    if (std::count(format.begin(), format.end(), '%') > directive_limit)
        return 0;
    if (gl_mbsscanf(&lc, text.c_str(), format.c_str(), POINTERS) > directive_limit)
        abort();
    check_end(text, gl_mbspmon(&lc, text.c_str(), format.c_str(), POINTERS));
    return 0;
}
