// Integers in a stated byte order, which files and stored values have whatever the machine's own
// is.
//
// load_big_endian<uint32_t>(bytes) of 12 34 56 78 is 0x12345678, load_little_endian is 0x78563412.
// The forms with a count take an integer of fewer bytes than the type has.

#pragma once

#include <stddef.h>

namespace kestrion {

template <typename Unsigned>
constexpr Unsigned load_big_endian(const unsigned char *bytes, size_t count = sizeof(Unsigned)) {
    Unsigned value = 0;
    for (size_t i = 0; i < count; ++i)
        value = static_cast<Unsigned>(value << 8 | bytes[i]);
    return value;
}

template <typename Unsigned>
constexpr Unsigned load_little_endian(const unsigned char *bytes, size_t count = sizeof(Unsigned)) {
    Unsigned value = 0;
    for (size_t i = count; i-- > 0;)
        value = static_cast<Unsigned>(value << 8 | bytes[i]);
    return value;
}

template <typename Unsigned>
constexpr void store_big_endian(Unsigned value, unsigned char *bytes,
                                size_t count = sizeof(Unsigned)) {
    for (size_t i = count; i-- > 0; value = static_cast<Unsigned>(value >> 8))
        bytes[i] = static_cast<unsigned char>(value);
}

template <typename Unsigned>
constexpr void store_little_endian(Unsigned value, unsigned char *bytes,
                                   size_t count = sizeof(Unsigned)) {
    for (size_t i = 0; i < count; ++i, value = static_cast<Unsigned>(value >> 8))
        bytes[i] = static_cast<unsigned char>(value);
}

} // namespace kestrion
