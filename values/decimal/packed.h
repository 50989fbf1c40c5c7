// Digit bytes as numbers: sixteen of them as one 128-bit word, and the limbs that products and
// quotients are made of.
//
// A word holds the digit bytes of a record in their order, the first in its most significant byte
// whatever the machine's byte order, and zero bytes after the last. So two words compare like their
// digits, a shift by 8 bits is one by a digit, and one addition adds all sixteen:
//
//     sum         a + 156 in each byte + b. A digit that passes 99 carries into the next byte and
//                 is right; any other is 156 too great, which its top bit shows.
//     difference  a - b. A byte that borrowed holds its digit + 156, which its top bit shows, too.

#pragma once

#include "base/byte_order.h"

#include <stdint.h>
#include <string.h>

#include <array>
#include <bit>

namespace kestrion {

using digit_word = unsigned __int128;

constexpr int word_bytes = 16;

constexpr uint64_t high_half(digit_word word) { return static_cast<uint64_t>(word >> 64); }
constexpr uint64_t low_half(digit_word word) { return static_cast<uint64_t>(word); }

constexpr digit_word in_each_byte(unsigned value) {
    return digit_word{0x0101010101010101u * uint64_t{value}} << 64 |
           0x0101010101010101u * uint64_t{value};
}

constexpr digit_word top_bits = in_each_byte(0x80);
constexpr unsigned digit_bias = 156; // 256 - 100

// The bits of the first n bytes, n 0..16; none for a count that no record has, up to 31.
constexpr std::array<digit_word, 32> make_leading_bytes() {
    std::array<digit_word, 32> masks = {};
    for (int n = 1; n <= word_bytes; ++n)
        masks[static_cast<size_t>(n)] = ~digit_word{0} << 8 * (word_bytes - n);
    return masks;
}
constexpr std::array<digit_word, 32> leading_bytes = make_leading_bytes();

inline digit_word load_word(const unsigned char *digits) {
    return digit_word{load_big_endian<uint64_t>(digits)} << 64 |
           load_big_endian<uint64_t>(digits + 8);
}

inline void store_word(digit_word word, unsigned char *digits) {
    store_big_endian(high_half(word), digits);
    store_big_endian(low_half(word), digits + 8);
}

// Byte n of a word, n 0..15 from the left.
constexpr unsigned byte_of(digit_word word, int n) {
    return static_cast<unsigned>(word >> 8 * (word_bytes - 1 - n)) & 0xFF;
}

// The marks of digits_above_99 and digits_not_normal: half by half, which takes fewer registers.
constexpr uint64_t half_tops = low_half(top_bits);
constexpr uint64_t half_above_99(uint64_t half) {
    return (half + low_half(in_each_byte(127 - 99))) | half;
}

// Not 0 when a byte is above 99. A carry between bytes starts at one that is above 99 itself.
constexpr uint64_t digits_above_99(digit_word word) {
    return (half_above_99(high_half(word)) | half_above_99(low_half(word))) & half_tops;
}

// The same, and also when the first byte is 0: the byte less 1 shows it in its top bit.
constexpr uint64_t digits_not_normal(digit_word word) {
    return digits_above_99(word) | ((high_half(word) - (UINT64_C(1) << 56)) & half_tops);
}

// Zero bytes at the ends of a word that is not 0.
inline int leading_zero_bytes(digit_word word) {
    const uint64_t high = high_half(word);
    return high != 0 ? std::countl_zero(high) / 8 : 8 + std::countl_zero(low_half(word)) / 8;
}
inline int trailing_zero_bytes(digit_word word) {
    const uint64_t low = low_half(word);
    return low != 0 ? std::countr_zero(low) / 8 : 8 + std::countr_zero(high_half(word)) / 8;
}

// Takes 156 from each byte whose top bit is set: half by half, as no byte borrows.
constexpr uint64_t settle_half(uint64_t half) {
    return half - ((half & half_tops) >> 7) * digit_bias;
}
constexpr digit_word settle_digits(digit_word word) {
    return digit_word{settle_half(high_half(word))} << 64 | settle_half(low_half(word));
}

// a + b modulo 100^16; *carry is 1 when it passed that, else 0.
inline digit_word packed_sum(digit_word a, digit_word b, unsigned *carry) {
    digit_word sum;
    *carry = __builtin_add_overflow(a + in_each_byte(digit_bias), b, &sum);
    return settle_digits(sum);
}

// a - b modulo 100^16; *borrow is 1 when a was too small, else 0.
inline digit_word packed_difference(digit_word a, digit_word b, unsigned *borrow) {
    digit_word difference;
    *borrow = __builtin_sub_overflow(a, b, &difference);
    return settle_digits(difference);
}

// -- Limbs: numbers below 10^16, eight digit bytes each ------------------------------------------

constexpr uint64_t limb_base = UINT64_C(10000000000000000);

// The number that eight digit bytes make, the first in the most significant byte.
constexpr uint64_t limb_of_digits(uint64_t bytes) {
    constexpr uint64_t pairs = UINT64_C(0x00FF00FF00FF00FF), quads = UINT64_C(0x0000FFFF0000FFFF);
    bytes = (bytes >> 8 & pairs) * 100 + (bytes & pairs);
    bytes = (bytes >> 16 & quads) * 10000 + (bytes & quads);
    return (bytes >> 32) * 100000000 + (bytes & 0xFFFFFFFF);
}

constexpr uint64_t digits_of_limb(uint64_t limb) {
    const uint64_t high = limb / 100000000, low = limb % 100000000;
    const uint64_t fours = (high / 10000) << 48 | (high % 10000) << 32 | (low / 10000) << 16 |
                           low % 10000; // four numbers below 10000
    // Below 10000, x / 100 is x * 5243 >> 19: two at a time, 32 bits apart.
    constexpr uint64_t every_second = UINT64_C(0x0000FFFF0000FFFF);
    constexpr uint64_t seven_bits = UINT64_C(0x0000007F0000007F);
    const uint64_t even = fours & every_second, odd = fours >> 16 & every_second;
    const uint64_t hundreds = (even * 5243 >> 19 & seven_bits) | (odd * 5243 >> 19 & seven_bits)
                                                                     << 16;
    return hundreds << 8 | (fours - hundreds * 100);
}

struct limb_pair {
    uint64_t high, low;

    digit_word number() const { return digit_word{high} * limb_base + low; }
};

inline limb_pair limbs_of_word(digit_word word) {
    return {limb_of_digits(high_half(word)), limb_of_digits(low_half(word))};
}

inline digit_word word_of_limbs(limb_pair limbs) {
    return digit_word{digits_of_limb(limbs.high)} << 64 | digits_of_limb(limbs.low);
}

// Splits `number`, below 2^108, at 10^16. The multiplication by 2^117 / 10^16 gives the quotient or
// one less.
inline limb_pair split_number(digit_word number) {
    constexpr auto reciprocal = static_cast<uint64_t>((digit_word{1} << 117) / limb_base);
    const auto top = static_cast<uint64_t>(number >> 44);
    auto quotient = static_cast<uint64_t>(digit_word{top} * reciprocal >> 73);
    uint64_t rest = static_cast<uint64_t>(number) - quotient * limb_base;
    if (rest >= limb_base) {
        ++quotient;
        rest -= limb_base;
    }
    return {quotient, rest};
}

} // namespace kestrion
