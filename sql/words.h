// Words of the statement language.

#pragma once

#include <kestrion/character_tables.h>

#include <stddef.h>

namespace kestrion {

// Whether `length` bytes are the lower-case word `name`, in any case by the process's table.
inline bool is_word(const char *bytes, size_t length, const char *name) {
    size_t i = 0;
    while (i < length && name[i] != '\0' &&
           _ix2lowmap[static_cast<unsigned char>(bytes[i])] == static_cast<unsigned char>(name[i]))
        ++i;
    return i == length && name[i] == '\0';
}

} // namespace kestrion
