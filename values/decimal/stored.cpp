// The stored form: excess-64 exponent and digit bytes that compare like the numbers.

#include <kestrion/decimal.h>

#include "values/decimal/operand.h"

using namespace kestrion;

namespace {

constexpr unsigned positive_bit = 0x80;

// The first `kept` digit bytes of a value that has more, rounded by the next one. A carry out of
// the first byte goes to *head, which has no check of its own: 99.99e124 in 2 bytes becomes 80 01,
// the smallest number there is. Rows are stored so; the column's precision keeps such values out.
digit_word rounded_digits(digit_word digits, int kept, unsigned *head) {
    const digit_word dropped = digits & ~leading_bytes[static_cast<size_t>(kept)];
    digits ^= dropped;
    if (byte_of(dropped, kept) < 50)
        return digits;
    unsigned carry;
    digits = packed_sum(digits, digit_word{1} << 8 * (word_bytes - kept), &carry);
    *head += carry;
    return carry != 0 ? digit_word{1} << 120 : digits;
}

digit_word complement(digit_word digits) {
    unsigned borrow;
    return packed_difference(0, digits, &borrow);
}

} // namespace

void deccomplement(unsigned char *digits, int count) {
    while (count > 0 && digits[count - 1] == 0)
        --count;
    unsigned from = 100;
    for (int i = count - 1; i >= 0; --i, from = 99)
        digits[i] = static_cast<unsigned char>(from - digits[i]);
}

void stdecimal(const dec_value *dec, unsigned char *bytes, int length) {
    if (length < 1)
        return;
    memset(bytes, 0, static_cast<size_t>(length));
    if (decverify(dec) != 0 || dec->sign == dec_null_sign)
        return;
    unsigned head = static_cast<unsigned>(dec->exponent + 64);
    digit_word digits = load_word(dec->digits) & leading_bytes[static_cast<size_t>(dec->ndigits)];
    const int kept = length - 1 < word_bytes ? length - 1 : word_bytes;
    if (kept > 0 && kept < dec->ndigits)
        digits = rounded_digits(digits, kept, &head);
    if (dec->sign != dec_negative || dec->ndigits == 0) {
        head |= positive_bit;
    } else {
        // Bytes that are not stored must not borrow.
        digits = complement(digits & leading_bytes[static_cast<size_t>(kept)]);
        head ^= 0x7F;
    }
    bytes[0] = static_cast<unsigned char>(head);
    unsigned char stored[word_bytes];
    store_word(digits, stored);
    memcpy(bytes + 1, stored, static_cast<size_t>(kept));
}

int lddecimal(const unsigned char *bytes, int length, dec_value *dec) {
    set_null(dec);
    const int count = (length < dec_stored_limit ? length : dec_stored_limit) - 1;
    if (count < 1)
        return count < 0 || bytes[0] == 0 ? 0 : set_zero(dec);
    if (bytes[0] == 0 && bytes[1] == 0)
        return 0;
    unsigned char digits[dec_stored_limit - 1];
    memcpy(digits, bytes + 1, static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        if (digits[i] > 99)
            return -1;
    if ((bytes[0] & positive_bit) != 0)
        return decload(dec, dec_positive, (bytes[0] & 0x7F) - 64, digits, count);
    deccomplement(digits, count);
    return decload(dec, dec_negative, (bytes[0] ^ 0x7F) - 64, digits, count);
}
