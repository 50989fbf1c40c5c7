#include "compilers/posix/code_sequence.h"

#include "base/ascii_class.h"

namespace kestrion {

std::optional<code_sequence> sequence_of_hex(std::string_view text) {
    if (text.empty() || text.size() % 2 != 0 || text.size() > 2 * size_t{gl_char_bytes})
        return {};
    code_sequence sequence;
    for (size_t i = 0; i < text.size(); i += 2) {
        const int high = ascii_hex_value(text[i]), low = ascii_hex_value(text[i + 1]);
        if (high < 0 || low < 0)
            return {};
        sequence.bytes[sequence.length++] = static_cast<unsigned char>(high << 4 | low);
    }
    return sequence;
}

std::string hex_text(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

size_t read_byte_form(std::string_view text, unsigned char &byte) {
    const char mark = text.empty() ? '\0' : text[0];
    const int base = mark == 'x' ? 16 : mark == 'd' ? 10 : 8;
    const size_t first = base == 8 ? 0 : 1;
    const size_t most_digits = base == 16 ? 2 : 3;
    int value = 0;
    size_t at = first;
    for (; at < text.size() && at - first < most_digits; ++at) {
        const int digit = ascii_hex_value(text[at]);
        if (digit < 0 || digit >= base)
            break;
        value = value * base + digit;
    }
    if (at - first < 2 || value > UINT8_MAX)
        return 0;
    byte = static_cast<unsigned char>(value);
    return at;
}

} // namespace kestrion
