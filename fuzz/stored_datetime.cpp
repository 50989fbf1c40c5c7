// Stored bytes as operands of everything: two qualifier words, a length, and the bytes of two
// decimals as a row may hold them.

#include <kestrion/datetime_arithmetic.h>
#include <kestrion/datetime_fields.h>
#include <kestrion/datetime_now.h>
#include <kestrion/datetime_text.h>
#include <kestrion/interval_text.h>
#include <kestrion/qualifier.h>

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds) {
    if (!holds)
        abort();
}

// Both values under both words, in every role.
void use(const dec_value &a, int x, const dec_value &b, int y) {
    dec_value out = {.exponent = 0, .sign = dec_null_sign, .ndigits = 0, .digits = {}}; // may stay
    char text[rdtimestr_size];
    unsigned char bytes[datetime_field_bytes];
    double ratio;
    int32_t date;
    const auto made = [&](int) { require(decverify(&out) == 0); };
    made(rdtaddinv(&a, x, &b, y, &out));
    made(rdtsub(&a, x, &b, y, &out, exprec(exprec_difference, x & 0x1FFF)));
    made(rdtextend(&a, x, &out, y));
    made(rinvcopy(&a, x, &out, y));
    made(rdectoinv(&a, &out, x));
    rinvtodec(&a, x, &out);
    made(0);
    rdttodate(&a, x, &date);
    chk_dtinv(&a, x, 1);
    chk_dtinv(&a, x, 0);
    rdtimestr(&a, x, text);
    rinvstr(&a, x, text);
    dtunpack(&a, x, bytes);
    const intv_value left = {.qualifier = static_cast<int16_t>(x), .value = a};
    const intv_value right = {.qualifier = static_cast<int16_t>(y), .value = b};
    intv_value result = {.qualifier = static_cast<int16_t>(y), .value = {}};
    invdivinv(&left, &right, &ratio);
    invmuldec(&left, &b, &result);
    require(decverify(&result.value) == 0);
    invdivdec(&left, &b, &result);
    require(decverify(&result.value) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const bool ready = [] {
        dec_value now;
        setenv("KESTRIONDIR", "/nonexistent", 1);
        require(rstrdtime("2024-03-15 10:20:30.12345", &now, qualifier_year_to_fraction5) == 0);
        rdtsetcurr(&now);
        return true;
    }();
    (void)ready;
    if (size < 5)
        return 0;
    const int x = data[0] << 8 | data[1];
    const int y = data[2] << 8 | data[3];
    const size_t length = data[4] % (size - 4);
    dec_value a;
    dec_value b;
    lddecimal(data + 5, static_cast<int>(length), &a);
    lddecimal(data + 5 + length, static_cast<int>(size - 5 - length), &b);
    use(a, x, b, y);
    use(b, y, a, x);
    return 0;
}
