// The parser of the password text: whatever the bytes, it stays inside the text, the table and the
// records, and accepts exactly as many lines as it stores.

#include "passwords/password_text.h"
#include "fuzz/quiet_words.h"
#include "passwords/watchful_memory.h"

#include <stdlib.h>
#include <string.h>

namespace {

constexpr int32_t places = 101;

pw_entry *const untouched = reinterpret_cast<pw_entry *>(1);

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    quiet_words();
    auto *text = static_cast<char *>(malloc(size + 1)); // exact, so that an overrun is seen
    if (size > 0)
        memcpy(text, data, size);
    text[size] = '\0';

    pw_entry *table[places + 1] = {};
    table[places] = untouched;
    int32_t count = -1;
    const int result = kestrion::parse_lines(watchful_memory::context(), text,
                                             static_cast<int32_t>(size), &count, table, places);
    if (result == 0 ? count < 0 || count > places : count != -1)
        abort();
    for (int32_t i = 0; i < count; ++i)
        if (table[i] == nullptr)
            abort();
    if (table[places] != untouched)
        abort();
    watchful_memory::reset(); // with what a bad line loses by design
    free(text);
    return 0;
}
