// Three fields of two digits at once: eight characters, "24-02-29" or "12:34:56", as one 64-bit word
// whose least significant byte is the first.

#pragma once

#include <bit>
#include <stdint.h>
#include <string.h>

namespace kestrion {

inline uint64_t little_endian(uint64_t value) {
    return std::endian::native == std::endian::little ? value : __builtin_bswap64(value);
}

// What the characters are beside the numbers: the digit 0 and the two delimiters.
inline uint64_t triple_frame(const char *delimiters) {
    return UINT64_C(0x3030003030003030) |
           uint64_t{static_cast<unsigned char>(delimiters[0])} << 16 |
           uint64_t{static_cast<unsigned char>(delimiters[1])} << 40;
}

// Appends the three fields of eight characters to `fields`. Returns false when one of them is not
// what it should be.
inline bool take_triple(const char *text, const char *delimiters, uint64_t *fields) {
    uint64_t digits;
    memcpy(&digits, text, sizeof digits);
    digits = little_endian(digits) ^ triple_frame(delimiters);
    // A digit above 9, and anything left of a delimiter, shows in its top bit.
    if ((((digits + UINT64_C(0x76767F76767F7676)) | digits) & UINT64_C(0x8080808080808080)) != 0)
        return false;
    const uint64_t numbers = digits * 10 + (digits >> 8); // in bytes 0, 3 and 6
    *fields = *fields << 24 | (numbers & 0xFF) << 16 | (numbers >> 24 & 0xFF) << 8 |
              (numbers >> 48 & 0xFF);
    return true;
}

// Writes three fields as eight characters.
inline void put_triple(char *to, const unsigned char *fields, const char *delimiters) {
    const uint64_t numbers =
        uint64_t{fields[0]} | uint64_t{fields[1]} << 24 | uint64_t{fields[2]} << 48;
    const uint64_t tens = numbers * 103 >> 10 & UINT64_C(0x000F00000F00000F); // n / 10 below 100
    const uint64_t text =
        little_endian((tens | (numbers - tens * 10) << 8) + triple_frame(delimiters));
    memcpy(to, &text, sizeof text);
}

} // namespace kestrion
