// A text of any bytes as a decimal, under conventions that its first byte chooses, beside a plain
// second reader; what was read is written in every width.

#include <kestrion/decimal_text.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_env.h>

#include "values/decimal/plain_reader.h"

#include <memory>
#include <stdlib.h>

namespace {

const plain::conventions all[] = {
    {".", "", "", "-", {}},
    {".", ",", "+", "-", {3, 0}},
    {",", " ", "", "-", {3, -1}},
    {"\xd9\xab", "\xd9\xac", "p", "m", {3, 2, 1, 5}},
};

lconv_rec record_of(const plain::conventions &from) {
    lconv_rec made = {};
    strcpy(made.radix, from.radix.c_str());
    strcpy(made.thousands_sep, from.separator.c_str());
    strcpy(made.positive_sign, from.plus.c_str());
    strcpy(made.negative_sign, from.minus.c_str());
    for (int size : from.groups)
        made.groups[made.group_count++] = size;
    return made;
}

void require(bool holds) {
    if (!holds)
        abort();
}

void write_in_every_width(const dec_value &value, const lconv_rec &conventions) {
    int position = 0, negative = 0;
    for (int length = 0; length < 40; ++length) {
        const auto exact = std::make_unique<char[]>(static_cast<size_t>(length));
        dectoasc_int(&value, exact.get(), length, length % 5 - 1, CheckGenInit(), &conventions);
        dbltoasc(&value, exact.get(), length, 16);
        qvt_decfcvt(&value, 20 - length, &position, &negative, exact.get(), length);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size) {
    if (size == 0)
        return 0;
    const plain::conventions &in = all[data[0] % 4];
    const lconv_rec conventions = record_of(in);
    const std::string text(reinterpret_cast<const char *>(data + 1), size - 1);
    const plain::read wanted = plain::decimal(in, text);
    const auto exact = std::make_unique<char[]>(text.size());
    memcpy(exact.get(), text.data(), text.size());
    dec_value value;
    const int answer =
        deccvasc_int(exact.get(), static_cast<int>(text.size()), &value, &conventions);
    require(answer == wanted.answer && value.sign == wanted.value.sign &&
            value.exponent == wanted.value.exponent && value.ndigits == wanted.value.ndigits &&
            memcmp(value.digits, wanted.value.digits, static_cast<size_t>(value.ndigits)) == 0);
    write_in_every_width(value, conventions);
    return 0;
}
