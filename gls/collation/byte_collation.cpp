// The comparers of single-byte code sets. They walk the bytes as they are, and each knows no more
// than the features that its locales have.
//
// They share one comparison, which takes weights from two walks level by level. A walk is of a kind
// for each mix of features; all start at the first byte in which the texts can differ.

#include "gls/collation/comparison.h"
#include <kestrion/collation.h>

using namespace kestrion;

namespace {

constexpr int32_t no_weight = -1; // below every weight

// What a walk yields.
struct weighed_byte {
    int32_t weight;     // 16 bits, or no_weight at the end of the text
    unsigned char byte; // what a tie compares
};

struct byte_level {
    const collate_rec &r;
    int32_t number;

    int32_t weight(uint16_t row) const { return r.level_weights[number][row]; }
    int32_t weight_of_byte(unsigned char byte) const { return weight(r.order->byte_rows[byte]); }
    const coll_expansion *expansion_of(unsigned char byte) const {
        const auto *expansions = r.sb_expansions[number];
        return expansions != nullptr ? expansions[byte] : nullptr;
    }
};

// ---- The walks. `next` gives the next weight, ignored ones included.

// A text with what both walks with expansions share. An expansion inside another one replaces it;
// the text goes on after the byte that expanded first.
struct expanding_walk {
    byte_level level;
    const char *at;
    const char *end;
    const coll_expansion *expansion = nullptr;
    int32_t index = 0;

    expanding_walk(const byte_level &l, const text_range &text)
        : level(l), at(text.begin), end(text.end) {}

    // Takes the next byte of the expansion that is walked, and of those that it leads to. What is
    // not a byte, which a single-byte code set never has there, ends it.
    bool take_expanded(unsigned char &byte) {
        while (expansion != nullptr && index < expansion->length) {
            const gl_wchar character = expansion->chars[index++];
            if (character == 0 || character > 0xff)
                break;
            byte = static_cast<unsigned char>(character);
            const coll_expansion *inner = level.expansion_of(byte);
            if (inner == nullptr)
                return true;
            expansion = inner;
            index = 0;
        }
        expansion = nullptr;
        return false;
    }

    // Takes the next byte that does not expand. Returns false at the end of the text.
    bool take(unsigned char &byte) {
        while (!take_expanded(byte)) {
            if (at == end)
                return false;
            byte = static_cast<unsigned char>(*at++);
            expansion = level.expansion_of(byte);
            index = 0;
            if (expansion == nullptr)
                return true;
        }
        return true;
    }
};

struct exp_walk : expanding_walk {
    using expanding_walk::expanding_walk;
    weighed_byte next() {
        unsigned char byte;
        return take(byte) ? weighed_byte{level.weight_of_byte(byte), byte}
                          : weighed_byte{no_weight, 0};
    }
};

// The contraction at the bytes from `at` on, or null.
const coll_contraction *contraction_at(const collate_rec &r, const char *at, const char *end) {
    const unsigned char first = static_cast<unsigned char>(*at);
    if (r.contraction_start == nullptr || !r.contraction_start[first])
        return nullptr;
    const auto character = [at](int32_t i) { return gl_wchar{static_cast<unsigned char>(at[i])}; };
    const ptrdiff_t left = end - at;
    return find_contraction(r, character, left < 16 ? static_cast<int32_t>(left) : 16);
}

struct elem_walk {
    byte_level level;
    const char *at;
    const char *end;

    elem_walk(const byte_level &l, const text_range &text)
        : level(l), at(text.begin), end(text.end) {}

    weighed_byte next() {
        if (at == end)
            return {no_weight, 0};
        const unsigned char byte = static_cast<unsigned char>(*at);
        const coll_contraction *c = contraction_at(level.r, at, end);
        at += c != nullptr ? c->length : 1;
        return {c != nullptr ? level.weight(c->row) : level.weight_of_byte(byte), byte};
    }
};

// A byte is looked up as an expansion first; inside an expansion there are no contractions.
struct exp_elem_walk : expanding_walk {
    using expanding_walk::expanding_walk;
    weighed_byte next() {
        unsigned char byte;
        if (!take(byte))
            return {no_weight, 0};
        const coll_contraction *c =
            expansion != nullptr ? nullptr : contraction_at(level.r, at - 1, end);
        if (c == nullptr)
            return {level.weight_of_byte(byte), byte};
        at += c->length - 1;
        return {level.weight(c->row), byte};
    }
};

// On a tie this walk shows the byte after the one that gave the weight, as its position has moved
// on by then; orders made for it rely on no more than that equal weights stay equal.
struct forward_walk {
    byte_level level;
    const char *at;
    const char *end;

    forward_walk(const byte_level &l, const text_range &text)
        : level(l), at(text.begin), end(text.end) {}

    weighed_byte next() {
        if (at == end)
            return {no_weight, 0};
        const unsigned char byte = static_cast<unsigned char>(*at++);
        const unsigned char following = at < end ? static_cast<unsigned char>(*at) : uint8_t{0};
        return {level.weight_of_byte(byte), following};
    }
};

struct backward_walk {
    byte_level level;
    const char *begin;
    const char *at;

    backward_walk(const byte_level &l, const text_range &text)
        : level(l), begin(text.begin), at(text.end) {}

    weighed_byte next() {
        if (at == begin)
            return {no_weight, 0};
        const unsigned char byte = static_cast<unsigned char>(*--at);
        return {level.weight_of_byte(byte), byte};
    }
};

// ---- Comparing

// A walk that skips what is ignored and remembers what it has met.
template <class Walk> struct weighing_walk {
    Walk walk;
    int32_t last = 0; // weight of the last character, ignored or not; 0 in an empty text

    weighed_byte next() {
        for (;;) {
            const weighed_byte found = walk.next();
            if (found.weight != no_weight)
                last = found.weight;
            if (found.weight != coll_ignored)
                return found;
        }
    }
};

int32_t value_of(int32_t weight) {
    return weight == no_weight ? no_weight : weight & coll_value_bits;
}

int32_t order_of(int32_t a, int32_t b) { return a < b ? -1 : a > b; }

// Walks two texts through a level. Only the first text's weight says whether a tie is broken.
template <class Walk>
int32_t compare_level(weighing_walk<Walk> &first, weighing_walk<Walk> &second) {
    for (;;) {
        const weighed_byte a = first.next();
        const weighed_byte b = second.next();
        if (const int32_t order = order_of(value_of(a.weight), value_of(b.weight)); order != 0)
            return order;
        if (a.weight == no_weight)
            return 0;
        if (a.weight & coll_tie_on_char && a.byte != b.byte)
            return order_of(a.byte, b.byte);
    }
}

template <class Walk>
int32_t compare_at(const byte_level &level, const text_range &a, const text_range &b) {
    weighing_walk<Walk> first = {Walk(level, a)};
    weighing_walk<Walk> second = {Walk(level, b)};
    return compare_level(first, second);
}

// The last characters once more, where both texts have ended together: texts that differ only in
// ignored characters at their ends are different here, and nowhere else.
template <>
int32_t compare_at<exp_elem_walk>(const byte_level &level, const text_range &a,
                                  const text_range &b) {
    weighing_walk<exp_elem_walk> first = {exp_elem_walk(level, a)};
    weighing_walk<exp_elem_walk> second = {exp_elem_walk(level, b)};
    const int32_t order = compare_level(first, second);
    return order != 0 ? order : order_of(value_of(first.last), value_of(second.last));
}

template <class Walk>
int32_t compare_all(const collate_rec &r, const text_range &a, const text_range &b) {
    int32_t order = 0;
    for (int32_t level = 0; order == 0 && level < r.level_count; ++level)
        order = compare_at<Walk>({r, level}, a, b);
    return order;
}

// The bytes that two texts begin with alike.
ptrdiff_t common_bytes(const text_range &a, const text_range &b) {
    const ptrdiff_t least = a.bytes() < b.bytes() ? a.bytes() : b.bytes();
    ptrdiff_t same = 0;
    while (least - same >= 8 && eight_bytes(a.begin + same) == eight_bytes(b.begin + same))
        same += 8;
    while (same < least && a.begin[same] == b.begin[same])
        ++same;
    return same;
}

text_range from(const text_range &text, ptrdiff_t bytes) { return {text.begin + bytes, text.end}; }

bool continues_contraction_at(const order_tables &o, const text_range &text) {
    return text.begin < text.end &&
           o.row_facts[o.byte_rows[static_cast<unsigned char>(*text.begin)]] & inside_contraction;
}

// ---- Each mix of features

int32_t compare_exp(const locale_rec &lc, const text_range &a, const text_range &b) {
    const ptrdiff_t same = common_bytes(a, b);
    return compare_all<exp_walk>(lc.collate_cat, from(a, same), from(b, same));
}

int32_t compare_elem(const locale_rec &lc, const text_range &a, const text_range &b) {
    const order_tables &o = *lc.collate_cat.order;
    ptrdiff_t same = common_bytes(a, b);
    if (continues_contraction_at(o, from(a, same)) || continues_contraction_at(o, from(b, same)))
        same = start_of_contractions(lc, a.begin, a.begin + same) - a.begin;
    return compare_all<elem_walk>(lc.collate_cat, from(a, same), from(b, same));
}

// The last characters count: nothing can be skipped.
int32_t compare_exp_elem(const locale_rec &lc, const text_range &a, const text_range &b) {
    return compare_all<exp_elem_walk>(lc.collate_cat, a, b);
}

int32_t compare_back(const locale_rec &lc, const text_range &a, const text_range &b) {
    const collate_rec &r = lc.collate_cat;
    // A tie at the last byte of the common front is broken by the bytes after it.
    const ptrdiff_t same = common_bytes(a, b);
    const ptrdiff_t skipped = same > 0 ? same - 1 : 0;
    int32_t order = 0;
    for (int32_t level = 0; order == 0 && level < r.level_count; ++level)
        order = r.level_order[level] == coll_forward
                    ? compare_at<forward_walk>({r, level}, from(a, skipped), from(b, skipped))
                    : compare_at<backward_walk>({r, level}, a, b);
    return order;
}

int32_t
compare_bytes(int32_t (*compare)(const locale_rec &, const text_range &, const text_range &),
              locale_rec *lc, const char *a, int32_t a_length, const char *b, int32_t b_length) {
    text_range first, second;
    if (!settle_texts(lc, a, a_length, b, b_length, first, second) ||
        lc->collate_cat.order == nullptr)
        return 0;
    return compare(*lc, first, second);
}

} // namespace

int32_t _gl_is_mbscoll_exp(locale_rec *lc, const char *a, const char *b) {
    return compare_bytes(compare_exp, lc, a, -1, b, -1);
}

int32_t _qvt_gl_is_mbfscoll_exp(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                                int32_t b_length) {
    return compare_bytes(compare_exp, lc, a, a_length, b, b_length);
}

int32_t _gl_is_mbscoll_elem(locale_rec *lc, const char *a, const char *b) {
    return compare_bytes(compare_elem, lc, a, -1, b, -1);
}

int32_t _qvt_gl_is_mbfscoll_elem(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                                 int32_t b_length) {
    return compare_bytes(compare_elem, lc, a, a_length, b, b_length);
}

int32_t _gl_is_mbscoll_exp_elem(locale_rec *lc, const char *a, const char *b) {
    return compare_bytes(compare_exp_elem, lc, a, -1, b, -1);
}

int32_t _qvt_gl_is_mbfscoll_exp_elem(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                                     int32_t b_length) {
    return compare_bytes(compare_exp_elem, lc, a, a_length, b, b_length);
}

int32_t _gl_is_mbscoll_back(locale_rec *lc, const char *a, const char *b) {
    return compare_bytes(compare_back, lc, a, -1, b, -1);
}

int32_t _qvt_gl_is_mbfscoll_back(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                                 int32_t b_length) {
    return compare_bytes(compare_back, lc, a, a_length, b, b_length);
}
