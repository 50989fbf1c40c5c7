#include "gls/collation/comparison.h"

namespace kestrion {

bool is_valid_text(const locale_rec &lc, const char *at, const char *end) {
    if (lc.is_single_byte)
        return true;
    while (at < end) {
        if (lc.ctype_cat.ascii_bytes) {
            while (end - at >= 8 && are_ascii_above_zero(eight_bytes(at)))
                at += 8;
            while (at < end && is_ascii_above_zero(static_cast<unsigned char>(*at)))
                ++at;
            if (at == end)
                return true;
        }
        const int32_t length = decode_char(lc, lc.ctype_cat.class_walk, at, end).length;
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}

bool drop_common_front(const locale_rec &lc, text_range &a, text_range &b) {
    const bool plain_ascii = lc.ctype_cat.ascii_bytes && lc.collate_cat.order->ascii_rows;
    for (;;) {
        if (plain_ascii) {
            while (a.bytes() >= 8 && b.bytes() >= 8 &&
                   eight_bytes(a.begin) == eight_bytes(b.begin) &&
                   are_ascii_above_zero(eight_bytes(a.begin))) {
                a.begin += 8;
                b.begin += 8;
            }
            while (a.begin < a.end && b.begin < b.end && *a.begin == *b.begin &&
                   is_ascii_above_zero(static_cast<unsigned char>(*a.begin))) {
                ++a.begin;
                ++b.begin;
            }
        }
        if (a.begin == a.end || b.begin == b.end || *a.begin != *b.begin)
            return true;
        coll_unit unit;
        const int32_t length = decode_unit(lc, a.begin, a.end, unit);
        if (length == 0 || unit.step == 0)
            return false;
        if (b.bytes() < length || memcmp(a.begin, b.begin, static_cast<size_t>(length)) != 0)
            return true;
        a.begin += length;
        b.begin += length;
    }
}

const char *start_of_contractions(const locale_rec &lc, const char *begin, const char *at) {
    const order_tables &o = *lc.collate_cat.order;
    const char *start = begin;
    for (const char *next = begin; next < at;) {
        coll_unit unit;
        const int32_t length = decode_unit(lc, next, at, unit);
        if (length == 0)
            return begin;
        next += length;
        if (unit.step != 0 && !(o.row_facts[unit.row] & continues_contraction))
            start = next;
    }
    return start;
}

} // namespace kestrion
