#include "values/datetime/interval_count.h"

namespace kestrion {

namespace {

unsigned __int128 first_field(digit_word word, const field_layout &q) {
    unsigned __int128 count = 0;
    if (q.start != unit_fraction) {
        for (int i = 0; i < q.leading_bytes(); ++i)
            count = count * 100 + byte_of(word, i);
    }
    return count;
}

} // namespace

interval_count count_fields(digit_word word, const field_layout &q, int end) {
    interval_count count = {.whole = first_field(word, q), .fraction = 0};
    const int last = end > unit_second ? +unit_second : end;
    for (int unit = q.start + 2; unit <= last; unit += 2) {
        count.whole = count.whole * static_cast<unsigned>(field_base[unit / 2]) +
                      (unit <= q.last_field() ? byte_of(word, q.offset(unit)) : 0);
    }
    if (end > unit_second && q.end > unit_second) {
        const int at = q.offset(unit_fraction);
        for (int i = 0; i < 3; ++i) // the third byte has one digit
            count.fraction = count.fraction * 100 + static_cast<int32_t>(byte_of(word, at + i));
        count.fraction /= 10;
    }
    return count;
}

int spread_count(const interval_count &count, digit_word *word, const field_layout &q) {
    if (q.end > unit_second) {
        const int pairs[] = {count.fraction / 1000, count.fraction / 10 % 100,
                             count.fraction % 10 * 10};
        for (int i = 0; i < 3 && i * 2 < q.fraction_digits(); ++i)
            *word = with_byte(*word, q.offset(unit_fraction) + i, pairs[i]);
    }
    unsigned __int128 left = count.whole;
    for (int unit = q.last_field(); unit > q.start; unit -= 2) {
        const auto base = static_cast<unsigned>(field_base[unit / 2]);
        *word = with_byte(*word, q.offset(unit), static_cast<int>(left % base));
        left /= base;
    }
    return left <= field_count_limit ? set_first_field(word, q, static_cast<uint64_t>(left))
                                     : +err_intv_overflow;
}

} // namespace kestrion
