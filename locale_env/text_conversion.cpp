#include <kestrion/text_conversion.h>

#include <kestrion/conversion.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>

#include <stdlib.h>
#include <string.h>

namespace {

constexpr int32_t terminator_room = 4; // the widest terminator of a code set

char *convert(cv_rec *cv, const char *text) {
    const size_t length = strlen(text);
    if (length > INT32_MAX / 8)
        return nullptr;
    const int64_t wanted = gl_cv_outbuflen(cv, static_cast<int32_t>(length));
    if (wanted < 0 || wanted > INT32_MAX - terminator_room)
        return nullptr;
    auto room = static_cast<int32_t>(wanted);
    auto *block = static_cast<char *>(malloc(static_cast<size_t>(room) + terminator_room));
    if (block == nullptr)
        return nullptr;
    const char *source = text;
    auto left = static_cast<int32_t>(length);
    char *target = block;
    int32_t lossy = 0;
    if (length > 0 && gl_cv_mconv(cv, nullptr, &source, &left, &target, &room, &lossy) != 0) {
        free(block);
        return nullptr;
    }
    memset(target, 0, terminator_room); // what follows may hold bytes of the source
    return block;
}

} // namespace

char *gcv_malloc(cv_rec *cv, const char *text) {
    if (cv == nullptr || text == nullptr)
        return nullptr;
    char *converted = convert(cv, text);
    if (converted == nullptr)
        set_glserror(err_locale_no_memory);
    return converted;
}

int gcvargs(cv_rec *cv, const char *text, char **out) {
    char *converted = gcv_malloc(cv, text);
    if (converted == nullptr)
        return err_locale_no_memory;
    free(*out);
    *out = converted;
    return 0;
}
