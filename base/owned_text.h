// New texts.

#pragma once

#include <stdlib.h>
#include <string.h>

namespace kestrion {

// Returns a copy of `text` in a block of `allocate`, or null without memory.
template <class Allocate> char *copied_text(const char *text, Allocate allocate) {
    const size_t size = strlen(text) + 1;
    void *const copy = allocate(size);
    return copy != nullptr ? static_cast<char *>(memcpy(copy, text, size)) : nullptr;
}

// Returns the parts, one after the other, as a new text from malloc that the caller owns; null
// without memory.
inline char *joined_text(const char *first, const char *second = "", const char *third = "") {
    const size_t lengths[] = {strlen(first), strlen(second), strlen(third)};
    auto *text = static_cast<char *>(malloc(lengths[0] + lengths[1] + lengths[2] + 1));
    if (text == nullptr)
        return nullptr;
    memcpy(text, first, lengths[0]);
    memcpy(text + lengths[0], second, lengths[1]);
    memcpy(text + lengths[0] + lengths[1], third, lengths[2] + 1);
    return text;
}

} // namespace kestrion
