#include <kestrion/char_desc.h>

#include "base/byte_order.h"

#include <algorithm>
#include <string.h>

void _gl_desc_offset(const gl_char_desc *desc, int32_t offset, gl_char_desc *out) {
    *out = *desc;
    if (desc->length < 1 || desc->length > gl_char_bytes)
        return;
    // Adding the offset as a two's complement number borrows and carries by itself.
    kestrion::store_big_endian(_gl_desc_to_gl_wchar(desc) + static_cast<uint32_t>(offset),
                               out->bytes, static_cast<size_t>(desc->length));
}

int _gl_desc_eq(const gl_char_desc *a, const gl_char_desc *b) {
    if (a->length != b->length)
        return 0;
    const bool usable = a->length >= 0 && a->length <= gl_char_bytes;
    return usable && memcmp(a->bytes, b->bytes, static_cast<size_t>(a->length)) == 0;
}

gl_wchar _gl_desc_to_gl_wchar(const gl_char_desc *desc) {
    const auto length = std::clamp<int32_t>(desc->length, 0, gl_char_bytes);
    return kestrion::load_big_endian<gl_wchar>(desc->bytes, static_cast<size_t>(length));
}

int _gl_digits(int64_t n, int base) {
    const uint64_t bits = static_cast<uint64_t>(n);
    return _gl_udigits(n < 0 ? 0 - bits : bits, base);
}

int _gl_udigits(uint64_t n, int base) {
    if (base < 2)
        return 0;
    int digits = 1;
    while ((n /= static_cast<unsigned>(base)) != 0)
        ++digits;
    return digits;
}

int64_t _gl_ipow(int64_t base, int exp) {
    uint64_t power = 1;
    for (int i = 0; i < exp; ++i)
        power *= static_cast<uint64_t>(base);
    return static_cast<int64_t>(power);
}

double _gl_fpow(int exp, double base) {
    double power = 1;
    for (int i = 0; i < exp; ++i)
        power *= base;
    for (int i = 0; i > exp; --i)
        power /= base;
    return power;
}
