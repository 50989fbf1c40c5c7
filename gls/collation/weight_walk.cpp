#include "gls/collation/weight_walk.h"

#include "gls/base/arrays.h"
#include "gls/collation/comparison.h"

#include <string.h>

namespace kestrion {

bool unit_list::reserve(size_t most) {
    if (most <= static_cast<size_t>(room_))
        return true;
    auto *bigger = static_cast<coll_unit *>(_gl_ext_realloc(heap_, most * sizeof(coll_unit)));
    if (bigger == nullptr)
        return false;
    if (heap_ == nullptr)
        memcpy(bigger, stack_, static_cast<size_t>(count) * sizeof(coll_unit));
    units = heap_ = bigger;
    room_ = static_cast<int32_t>(most);
    return true;
}

void join_contractions(const collate_rec &r, unit_list &list) {
    if (r.contraction_count == 0)
        return;
    for (int32_t i = 0; i < list.count;) {
        const coll_unit *unit = list.units + i;
        const auto character = [unit](int32_t k) { return unit[k].element; };
        // A contraction may hold characters that have no row by themselves.
        const bool may_open = unit->step == 0 || r.order->row_facts[unit->row] & opens_contraction;
        const coll_contraction *c =
            may_open ? find_contraction(r, character, list.count - i) : nullptr;
        const int32_t length = c != nullptr ? c->length : 1;
        for (int32_t k = 0; c != nullptr && k < length; ++k)
            list.units[i + k] = {contraction_element, c->row, static_cast<uint8_t>(length)};
        i += length;
    }
}

bool list_wide_units(locale_rec *lc, const gl_wchar *text, int32_t length, unit_list &list) {
    const collate_rec &r = lc->collate_cat;
    if (length > stack_units && !list.reserve(static_cast<size_t>(length)))
        return refuse(lc, GLS_ERR_NO_MEMORY);
    for (; list.count < length; ++list.count)
        list.units[list.count] = unit_of(r, text[list.count]);
    join_contractions(r, list);
    return true;
}

bool list_text_units(locale_rec *lc, const char *text, const char *end, unit_list &list) {
    for (const char *at = text; at < end; ++list.count) {
        if (list.full() &&
            !list.reserve(static_cast<size_t>(list.count) + static_cast<size_t>(end - at)))
            return refuse(lc, GLS_ERR_NO_MEMORY);
        const int32_t length = decode_unit(*lc, at, end, list.units[list.count]);
        if (length == 0)
            return refuse(lc, GLS_ERR_BAD_CHARACTER);
        at += length;
    }
    join_contractions(lc->collate_cat, list);
    return true;
}

int32_t compare_level(const collate_rec &r, int32_t level, unit_range a, unit_range b) {
    coll_state first = init_coll_state(r, level, a);
    coll_state second = init_coll_state(r, level, b);
    for (;;) {
        gl_wchar element, other;
        const uint16_t weight = next_weight(first, element);
        const uint16_t against = next_weight(second, other);
        const int32_t difference = (weight & coll_value_bits) - (against & coll_value_bits);
        if (difference != 0)
            return difference < 0 ? -1 : 1;
        // Only the first text's weight says whether a tie is broken.
        if (weight & coll_tie_on_char && element != other)
            return element < other ? -1 : 1;
        if (weight == 0)
            return 0;
    }
}

int32_t compare_levels(const collate_rec &r, int32_t level, int32_t end, unit_range a,
                       unit_range b) {
    int32_t result = 0;
    for (; result == 0 && level < end; ++level)
        result = compare_level(r, level, a, b);
    return result;
}

} // namespace kestrion
