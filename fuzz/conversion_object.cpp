// Conversion objects of any bytes: one that loads converts texts in every way that there is, stays
// inside of them, and its derived tables answer as the routine without them.

#include <kestrion/conversion.h>
#include <kestrion/conversion_file.h>
#include <kestrion/ext_funcs.h>

#include <algorithm>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace {

constexpr int32_t text_size = 64;
constexpr int32_t room_size = 200;

struct answer {
    int32_t result, error, length, room, lossy;
    char text[room_size];
};

// Source and target lie in blocks of exactly their size, so that a step outside is seen.
answer convert(cv_rec *cv, const char *text, int32_t size, int32_t room, bool terminated,
               bool measuring) {
    answer a = {};
    char *source_block = static_cast<char *>(malloc(static_cast<size_t>(size)));
    char *target_block = static_cast<char *>(malloc(static_cast<size_t>(room) + 1));
    memcpy(source_block, text, static_cast<size_t>(size));
    const char *source = source_block;
    char *target = target_block;
    a.length = size;
    a.room = room;
    cv->cv_err = 0;
    a.result = gl_cv_mconv(cv, nullptr, &source, terminated ? nullptr : &a.length,
                           measuring ? nullptr : &target, &a.room, &a.lossy);
    a.error = cv->cv_err;
    a.length = static_cast<int32_t>(source - source_block);
    const int32_t written = room - (a.room > 0 ? a.room : 0);
    if (a.length < 0 || a.length > size || a.room < -2)
        abort();
    if (!measuring)
        memcpy(a.text, target_block, static_cast<size_t>(written));
    free(source_block);
    free(target_block);
    return a;
}

// Bytes up to the end of the terminator, which is as long as the source's shortest character.
int32_t terminated_size(const cv_rec *cv, const char *text) {
    constexpr char zeros[4] = {};
    const int32_t unit = std::clamp(cv->source_min_len, 1, 4);
    int32_t at = 0;
    while (memcmp(text + at, zeros, static_cast<size_t>(unit)) != 0)
        at += unit;
    return at + unit;
}

void convert_in_every_way(cv_rec *cv, const char *text) {
    for (int way = 0; way < 16; ++way) {
        const bool terminated = (way & 1) != 0;
        const bool measuring = (way & 2) != 0;
        const int32_t room = way < 8 ? room_size : 7 * (way - 7);
        const int32_t size = terminated ? terminated_size(cv, text) : text_size;
        const answer with = convert(cv, text, size, room, terminated, measuring);
        void *tables = cv->fast;
        cv->fast = nullptr;
        const answer without = convert(cv, text, size, room, terminated, measuring);
        cv->fast = tables;
        if (memcmp(&with, &without, sizeof with) != 0)
            abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < text_size || size > 1 << 16)
        return 0;
    // The text to convert comes first, with a terminator of the widest unit.
    char text[text_size];
    memcpy(text, data, text_size);
    memset(text + text_size - 8, 0, 8);
    data += text_size;
    size -= text_size;
    auto *cv = static_cast<cv_rec *>(_gl_ext_calloc(1, sizeof(cv_rec)));
    FILE *file = size == 0 ? nullptr : fmemopen(const_cast<uint8_t *>(data), size, "r");
    if (read_cv_file(cv, file) == 0)
        convert_in_every_way(cv, text);
    else if (file != nullptr)
        fclose(file);
    unsigned char *byte_table = cv->sb_table;
    gl_cv_unload(cv);
    _gl_ext_free(byte_table);
    return 0;
}
