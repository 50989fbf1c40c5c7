// A text of any bytes, scanned by a format of any bytes: what was not used lies within the text, and
// the time that was read can be given to the formatter.

#include "time_fuzz.h"
#include <kestrion/time_format.h>
#include <kestrion/time_scan.h>

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

template <class unit, class scan>
void check(locale_rec *lc, const unit *text, size_t length, const unit *format, scan read) {
    gl_alt_tm time = {.day = 1, .year = 124};
    const unit *rest = read(lc, text, format, &time);
    if (rest != nullptr && (rest < text || rest > text + length))
        abort();
    char out[200];
    gl_mbsftime(lc, out, sizeof out, "%c %Ec %EY %Ey", &time);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr size_t head = 2;
    if (size < head)
        return 0;
    const size_t left = size - head;
    const size_t format_length = data[1] < left ? data[1] : left;
    locale_rec *lc = fuzzed_locale(data[0]);
    const fuzzed_text format(data + head, format_length);
    const fuzzed_text text(data + head + format_length, left - format_length);
    const hostile_data hostile(lc, data[0], format);
    const size_t length = strlen(text.bytes());
    check(lc, text.bytes(), length, format.bytes(), gl_mbsptime);
    check(lc, text.wide(), length, format.wide(), gl_wcsptime);
    return 0;
}
