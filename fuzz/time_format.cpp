// A time format of any bytes, a time of any fields, in shipped locales and with the data of hostile
// ones: the text fits the room that was asked for, and nothing is written beyond the destination.

#include "time_fuzz.h"
#include <kestrion/time_expand.h>
#include <kestrion/time_format.h>

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

// Fields near their ranges, now and then far from them.
int32_t field(const uint8_t byte, int32_t range) {
    return byte == 255 ? INT32_MAX : byte == 254 ? INT32_MIN : byte % (range + 2) - (byte > 240);
}

gl_alt_tm time_of(const uint8_t *bytes) {
    return {.fraction = int64_t{bytes[0]} * 4000,
            .second = field(bytes[1], 62),
            .minute = field(bytes[2], 60),
            .hour = field(bytes[3], 24),
            .day = field(bytes[4], 32),
            .month = field(bytes[5], 12),
            .year = bytes[6] == 255 ? INT32_MIN : bytes[6] * 40 - 1900,
            .weekday = field(bytes[7], 7),
            .day_of_year = bytes[9] < 240 ? bytes[8] + bytes[9] : field(bytes[8], 250)};
}

template <class unit, class format_text, class expand>
void check(locale_rec *lc, const unit *format, const gl_alt_tm &time, format_text write,
           expand measure) {
    const int32_t room = measure(lc, format, 1);
    const int32_t size = room < 0 || room > 100000 ? 300 : room + 4;
    auto *text = static_cast<unit *>(malloc(static_cast<size_t>(size) * sizeof(unit)));
    lc->err = 0;
    const int32_t length = write(lc, text, size, format, &time);
    if (length < 0 || length >= size || (room >= 0 && length > room) ||
        (room >= 0 && lc->err == GLS_ERR_NO_ROOM))
        abort();
    free(text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr size_t head = 11;
    if (size < head)
        return 0;
    locale_rec *lc = fuzzed_locale(data[0]);
    const gl_alt_tm time = time_of(data + 1);
    const fuzzed_text format(data + head, size - head);
    const hostile_data hostile(lc, data[0], format);
    check(lc, format.bytes(), time, gl_mbsftime, gl_mbsfmtexpand);
    check(lc, format.wide(), time, gl_wcsftime, gl_wcsfmtexpand);
    return 0;
}
