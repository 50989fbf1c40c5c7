// Integers in a stated byte order, which files and stored values have whatever the machine's own
// is.
//
// load_big_endian<uint32_t>(bytes) of 12 34 56 78 is 0x12345678, load_little_endian is 0x78563412.
// The forms with a count take an integer of fewer bytes than the type has.

#pragma once

#include <bit>
#include <stddef.h>
#include <string.h>
#include <type_traits>

namespace kestrion {

// The value whose bytes in memory are those of `value` in big-endian order, and the reverse.
template <typename Unsigned> constexpr Unsigned in_big_endian_order(Unsigned value) {
    if constexpr (std::endian::native == std::endian::big || sizeof value == 1)
        return value;
    else if constexpr (sizeof value == 2)
        return __builtin_bswap16(value);
    else if constexpr (sizeof value == 4)
        return __builtin_bswap32(value);
    else
        return __builtin_bswap64(value);
}

template <typename Unsigned>
constexpr Unsigned load_big_endian(const unsigned char *bytes, size_t count = sizeof(Unsigned)) {
    if (!std::is_constant_evaluated() && count == sizeof(Unsigned)) { // one load for all bytes
        Unsigned whole;
        memcpy(&whole, bytes, sizeof whole);
        return in_big_endian_order(whole);
    }
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
    if (!std::is_constant_evaluated() && count == sizeof(Unsigned)) {
        const Unsigned whole = in_big_endian_order(value);
        memcpy(bytes, &whole, sizeof whole);
        return;
    }
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
