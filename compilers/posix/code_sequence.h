// The bytes of one character in a code set, and the ways to write them.
//
//     b0a1          two hexadecimal digits a byte: listings and options
//     /xb0 /d176    one byte after the escape character: charmaps and locale sources;
//     /260          hexadecimal after x, decimal after d, else octal
#pragma once

#include "base/byte_order.h"
#include <kestrion/char_desc.h>

#include <optional>
#include <stddef.h>
#include <stdint.h>
#include <string>
#include <string_view>

namespace kestrion {

struct code_sequence {
    uint8_t length = 0; // 1 to 4
    unsigned char bytes[gl_char_bytes] = {};

    // The bytes as a big-endian number: two bytes A1 B2 are A1B2.
    uint32_t packed() const { return load_big_endian<uint32_t>(bytes, length); }
    // The bytes from the highest place on: sequences sorted by it are in the order of their bytes.
    uint32_t order() const { return packed() << 8 * (gl_char_bytes - length); }
    std::string_view text() const { return {reinterpret_cast<const char *>(bytes), length}; }
    // Whether the bytes begin with all those of another, shorter sequence.
    bool extends(const code_sequence &other) const {
        return length > other.length && text().starts_with(other.text());
    }
    bool operator==(const code_sequence &other) const = default;
};

// The sequence of 1 to 4 bytes in hexadecimal; nothing for any other text.
std::optional<code_sequence> sequence_of_hex(std::string_view text);

// Two lower-case hexadecimal digits a byte.
std::string hex_text(std::string_view bytes);

// Reads the form of one byte that follows an escape character. Returns the length of the form, or
// 0 for anything else.
size_t read_byte_form(std::string_view text, unsigned char &byte);

} // namespace kestrion
