// Character descriptors: the byte sequence of one multibyte character and the arithmetic on it.

#pragma once

#include <stdint.h>

typedef uint32_t gl_wchar; // the engine's wide character: the packed bytes, first byte highest

enum {
    gl_char_bytes = 4 // bytes of the longest character
};

// A sequence of up to four bytes, read as one big-endian number by the arithmetic.
typedef struct gl_char_desc {
    int32_t length;                     // 1 to 4
    unsigned char bytes[gl_char_bytes]; // the first `length` are used
} gl_char_desc;

#ifdef __cplusplus
extern "C" {
#endif

// Copies `desc` to `out` and adds `offset` to it, wrapping at its length. A length outside 1 to 4
// is a plain copy. Example {2, A1 FF} + 1 -> {2, A2 00}; {1, 00} - 1 -> {1, FF}.
void _gl_desc_offset(const gl_char_desc *desc, int32_t offset, gl_char_desc *out);

// 1 when lengths and bytes match, else 0.
int _gl_desc_eq(const gl_char_desc *a, const gl_char_desc *b);

// Folds the bytes to one number. Example {2, A1 B2} -> 0xA1B2.
gl_wchar _gl_desc_to_gl_wchar(const gl_char_desc *desc);

// Digits of n in `base`: 1 for 0, the digits of the absolute value for negative numbers, 0 for a
// base below 2.
int _gl_digits(int64_t n, int base);
int _gl_udigits(uint64_t n, int base);

// base to the power exp, wrapping at 64 bits; 1 for an exponent below 1.
int64_t _gl_ipow(int64_t base, int exp);
// base to the power exp; a negative exponent divides. Beware: the exponent comes first here.
double _gl_fpow(int exp, double base);

#ifdef __cplusplus
}
#endif
