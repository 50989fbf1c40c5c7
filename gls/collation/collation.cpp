// Comparing in the general way: any code set, any mix of features.
//
// Most comparisons of two texts are settled by the first character in which they differ, at the
// first level. So a comparison of multibyte texts skips their common front and compares first
// weights while each character's own weight says all; only the other cases make units of the rest
// and walk through all levels.

#include <kestrion/collation.h>

#include "gls/base/arrays.h"
#include "gls/collation/comparison.h"
#include "gls/collation/weight_walk.h"
#include <kestrion/char_convert.h>
#include <kestrion/code_order.h>
#include <kestrion/thai_order.h>

using namespace kestrion;

namespace {

int32_t sign(int32_t number) { return number < 0 ? -1 : number > 0; }

// ---- Wide texts

// A wide text in bytes, on the stack below 512 of them.
struct spelled_text {
    static constexpr int64_t stack_size = 512;
    char stack[stack_size];
    char *heap = nullptr;
    char *text = stack;
    int32_t length = 0;

    spelled_text() {}
    ~spelled_text() { _gl_free_ptr(heap); }
    spelled_text(const spelled_text &) = delete;
    spelled_text &operator=(const spelled_text &) = delete;

    bool spell(locale_rec *lc, const gl_wchar *wide, int32_t count) {
        const int64_t most = int64_t{gl_char_bytes} * count;
        if (most > stack_size) {
            heap = static_cast<char *>(_gl_ext_malloc(static_cast<size_t>(most)));
            if (heap == nullptr || most > INT32_MAX)
                return refuse(lc, GLS_ERR_NO_MEMORY);
            text = heap;
        }
        if (count > 0)
            length = _qvt_gl_full_wcstombs(lc, text, wide, count, static_cast<int32_t>(most));
        return length >= 0;
    }
};

int32_t compare_thai(locale_rec *lc, const gl_wchar *a, int32_t a_length, const gl_wchar *b,
                     int32_t b_length) {
    spelled_text first, second;
    if (!first.spell(lc, a, a_length) || !second.spell(lc, b, b_length))
        return 0;
    return _qvt_gl_thaismoncoll(lc, first.text, first.length, second.text, second.length);
}

// ---- Multibyte texts

// Compares by the wide characters; of texts that are equal as far as both go, the difference of
// their lengths in characters.
int32_t compare_codes(locale_rec *lc, text_range a, text_range b) {
    const multi_step *walk = lc->ctype_cat.class_walk;
    int32_t order = 0;
    int32_t longer = 0; // characters that the first text has more than the second
    while (a.begin < a.end || b.begin < b.end) {
        decoded_char c = {}, other = {};
        if (a.begin < a.end && (c = decode_char(*lc, walk, a.begin, a.end)).length == 0)
            return refuse(lc, GLS_ERR_BAD_CHARACTER);
        if (b.begin < b.end && (other = decode_char(*lc, walk, b.begin, b.end)).length == 0)
            return refuse(lc, GLS_ERR_BAD_CHARACTER);
        longer += (c.length > 0) - (other.length > 0);
        if (order == 0 && longer == 0 && c.wide != other.wide)
            order = c.wide < other.wide ? -1 : 1;
        a.begin += c.length;
        b.begin += other.length;
    }
    return order != 0 ? order : longer;
}

// The next character of a text and its weight at the first level, 0 when that does not settle a
// comparison.
struct first_weight {
    coll_unit unit = {};
    uint16_t weight = 0;

    // Takes the character off the text. Returns false when it needs a closer look.
    bool take(const locale_rec &lc, text_range &text) {
        if (text.begin == text.end)
            return true;
        const int32_t length = decode_unit(lc, text.begin, text.end, unit);
        if (length == 0 || unit.step == 0)
            return false;
        text.begin += length;
        weight = lc.collate_cat.order->first_weights[unit.row];
        return weight != 0;
    }
};

// Compares first weights of characters that speak for themselves. Returns 0 when they don't settle
// it, or when what follows is not valid.
int32_t compare_first_weights(const locale_rec &lc, text_range a, text_range b) {
    for (;;) {
        first_weight first, second;
        if (!first.take(lc, a) || !second.take(lc, b) || first.weight + second.weight == 0)
            return 0;
        int32_t order = (first.weight & coll_value_bits) - (second.weight & coll_value_bits);
        if (order == 0 && first.weight & coll_tie_on_char &&
            first.unit.element != second.unit.element)
            order = first.unit.element < second.unit.element ? -1 : 1;
        if (order != 0)
            return is_valid_text(lc, a.begin, a.end) && is_valid_text(lc, b.begin, b.end)
                       ? sign(order)
                       : 0;
    }
}

bool continues_a_contraction(const locale_rec &lc, const text_range &text) {
    coll_unit unit;
    return text.begin < text.end && decode_unit(lc, text.begin, text.end, unit) > 0 &&
           (unit.step == 0 || lc.collate_cat.order->row_facts[unit.row] & inside_contraction);
}

// Compares at the first `levels` levels by walking through them.
[[gnu::noinline]] int32_t walk_levels(locale_rec *lc, const text_range &a, const text_range &b,
                                      int32_t levels) {
    unit_list first, second;
    if (!list_text_units(lc, a.begin, a.end, first) || !list_text_units(lc, b.begin, b.end, second))
        return 0;
    return compare_levels(lc->collate_cat, 0, levels, first.range(), second.range());
}

// Compares texts of a locale without levels: what is valid is equal, but for the Thai order.
int32_t compare_without_levels(locale_rec *lc, const text_range &a, const text_range &b) {
    if (!is_valid_text(*lc, a.begin, a.end) || !is_valid_text(*lc, b.begin, b.end))
        return refuse(lc, GLS_ERR_BAD_CHARACTER);
    if (lc->collate_cat.coll_method != COLL_THAI_SMO)
        return 0;
    return _qvt_gl_thaismoncoll(lc, a.begin, static_cast<int32_t>(a.bytes()), b.begin,
                                static_cast<int32_t>(b.bytes()));
}

int32_t compare_texts(locale_rec *lc, const text_range &a, const text_range &b, int32_t levels) {
    if (levels < 1)
        return compare_without_levels(lc, a, b);
    text_range a_rest = a;
    text_range b_rest = b;
    if (lc->collate_cat.order->any_dead_end || !drop_common_front(*lc, a_rest, b_rest))
        return walk_levels(lc, a, b, levels);
    if (const int32_t order = compare_first_weights(*lc, a_rest, b_rest); order != 0)
        return order;
    if (lc->collate_cat.order->any_backward)
        return walk_levels(lc, a, b, levels);
    // A contraction that spans the end of the common front may be in one text alone.
    if (lc->collate_cat.contraction_count > 0 &&
        (continues_a_contraction(*lc, a_rest) || continues_a_contraction(*lc, b_rest))) {
        const char *start = start_of_contractions(*lc, a.begin, a_rest.begin);
        b_rest.begin -= a_rest.begin - start;
        a_rest.begin = start;
    }
    return walk_levels(lc, a_rest, b_rest, levels);
}

bool has_levels(const locale_rec *lc) {
    return lc->collate_cat.level_count > 0 && !lc->code_set_order;
}

// ---- Leading parts

// The units of the shortest leading part that equals `start` at the first levels; -1 for none.
int32_t leading_units(const collate_rec &r, unit_range text, unit_range start, int32_t levels) {
    const bool forward = r.level_order[0] == coll_forward;
    for (unit_range part = {text.units, 0}; part.count <= text.count;) {
        const int32_t order = compare_level(r, 0, part, start);
        if (order == 0 && compare_levels(r, 1, levels, part, start) == 0)
            return part.count;
        if (order > 0 && forward)
            break; // what follows can only add weights
        const uint8_t step = part.count < text.count ? text.units[part.count].step : 0;
        part.count += step != 0 ? step : 1;
    }
    return -1;
}

int32_t bytes_of_characters(const locale_rec &lc, const text_range &text, int32_t count) {
    const char *at = text.begin;
    for (; count > 0; --count)
        at += decode_char(lc, lc.ctype_cat.class_walk, at, text.end).length;
    return static_cast<int32_t>(at - text.begin);
}

int32_t find_leading_part(locale_rec *lc, const text_range &text, const text_range &start,
                          int32_t levels) {
    unit_list units, wanted;
    if (!list_text_units(lc, text.begin, text.end, units) ||
        !list_text_units(lc, start.begin, start.end, wanted))
        return -1;
    const int32_t count = leading_units(lc->collate_cat, units.range(), wanted.range(), levels);
    return count < 0 ? -1 : bytes_of_characters(*lc, text, count);
}

} // namespace

int32_t gl_full_wcscoll(locale_rec *lc, const gl_wchar *a, const gl_wchar *b) {
    return _qvt_gl_full_wcscoll(lc, a, -1, b, -1);
}

int32_t _qvt_gl_full_wcscoll(locale_rec *lc, const gl_wchar *a, int32_t a_length, const gl_wchar *b,
                             int32_t b_length) {
    if (!all_given(lc, a, b) || !lengths_agree(lc, a_length, b_length))
        return 0;
    const collate_rec &r = lc->collate_cat;
    a_length = a_length == -1 ? gl_wcslen(lc, a) : a_length;
    b_length = b_length == -1 ? gl_wcslen(lc, b) : b_length;
    if (r.coll_method == COLL_THAI_SMO)
        return compare_thai(lc, a, a_length, b, b_length);
    unit_list first, second;
    if (r.level_count < 1)
        return 0;
    if (!list_wide_units(lc, a, a_length, first) || !list_wide_units(lc, b, b_length, second))
        return 0;
    return compare_levels(r, 0, r.level_count, first.range(), second.range());
}

int32_t _gl_im_mbscoll(locale_rec *lc, const char *a, const char *b) {
    return _qvt_gl_im_mbfscoll(lc, a, -1, b, -1);
}

int32_t _qvt_gl_im_mbfscoll(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                            int32_t b_length) {
    text_range first, second;
    if (!settle_texts(lc, a, a_length, b, b_length, first, second))
        return 0;
    if (lc->code_set_order)
        return compare_codes(lc, first, second);
    return compare_texts(lc, first, second, lc->collate_cat.level_count);
}

int32_t qvt_gl_compare_levels(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                              int32_t b_length, int32_t levels) {
    text_range first, second;
    if (!settle_texts(lc, a, a_length, b, b_length, first, second))
        return 0;
    const int32_t all = lc->collate_cat.level_count;
    if (has_levels(lc))
        return compare_texts(lc, first, second, levels < all ? levels : all);
    return lc->mbfscoll_fn(lc, a, a_length, b, b_length);
}

int32_t qvt_gl_begins_with(locale_rec *lc, const char *text, int32_t length, const char *start,
                           int32_t start_length, int32_t levels) {
    text_range whole, wanted;
    if (!settle_texts(lc, text, length, start, start_length, whole, wanted))
        return -1;
    const int32_t all = lc->collate_cat.level_count;
    if (has_levels(lc))
        return levels < 1 ? 0 : find_leading_part(lc, whole, wanted, levels < all ? levels : all);
    const bool begins = wanted.bytes() <= whole.bytes() &&
                        memcmp(whole.begin, wanted.begin, static_cast<size_t>(wanted.bytes())) == 0;
    return begins ? static_cast<int32_t>(wanted.bytes()) : -1;
}
