// Any bytes as the stored form of two decimals, which then meet in every operation, beside loops
// over digit bytes.

#include <kestrion/decimal.h>
#include <kestrion/int8.h>

#include "values/decimal/loops.h"

#include <stdlib.h>

namespace {

void require(bool holds) {
    if (!holds)
        abort();
}

bool same(const dec_value &a, const dec_value &b) {
    return a.exponent == b.exponent && a.sign == b.sign && a.ndigits == b.ndigits &&
           memcmp(a.digits, b.digits, static_cast<size_t>(a.ndigits)) == 0;
}

using operation = int (*)(const dec_value *, const dec_value *, dec_value *);
using loop = int (*)(const dec_value &, const dec_value &, dec_value &);

void compare(operation packed, loop plain, const dec_value &a, const dec_value &b) {
    dec_value got, wanted;
    require(packed(&a, &b, &got) == plain(a, b, wanted));
    require(same(got, wanted));
}

// What a caller may hand over that no operation made: the bytes as they are.
void use_raw_record(const unsigned char *data) {
    dec_value raw, result;
    memcpy(&raw, data, sizeof raw);
    const bool sound = decverify(&raw) == 0;
    for (operation act : {decadd, decsub, decmul, decdiv})
        require(act(&raw, &raw, &result) != -1 || !sound);
    decadsb(&raw, &raw, &result, 1);
    unsigned char bytes[20];
    stdecimal(&raw, bytes, sizeof bytes);
    double number;
    dectodbl(&raw, &number);
    dec2prec(&raw);
    decround(&raw, data[0] - 128);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size) {
    const auto half = static_cast<int>(size / 2);
    dec_value a, b;
    lddecimal(data, half, &a);
    lddecimal(data + half, half, &b);
    compare(decadd, loops::add, a, b);
    compare(decsub, loops::subtract, a, b);
    compare(decmul, loops::multiply, a, b);
    compare(decdiv, loops::divide, a, b);
    require(deccmp(&a, &b) == loops::compare(a, b));
    if (size >= sizeof(dec_value))
        use_raw_record(data);
    int8_value integer;
    if (size >= int8_stored_bytes)
        ldint8(data, &integer);
    return 0;
}
