#include "compilers/utf8.h"

namespace kestrion {

size_t decode_utf8(std::string_view bytes, uint32_t &code_point) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
    if (bytes.empty())
        return 0;
    code_point = byte(0);
    if (code_point < 0x80)
        return 1;
    const size_t length = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
    if (byte(0) < 0xC2 || byte(0) > 0xF4 || bytes.size() < length)
        return 0;
    code_point &= 0xFFU >> (length + 1);
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80)
            return 0;
        code_point = code_point << 6 | (byte(i) & 0x3FU);
    }
    constexpr uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code_point >= 0xD800 && code_point <= 0xDFFF;
    return code_point < least[length] || code_point > 0x10FFFF || surrogate ? 0 : length;
}

} // namespace kestrion
