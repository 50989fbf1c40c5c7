#include <kestrion/multi.h>

#include "gls/base/engine_error.h"
#include "gls/multi/multi_tree.h"

using namespace kestrion;

namespace {

// Where a walk ended, in the flat table or in the tree.
struct found {
    unsigned char flag; // MULTI_END at the end of a sequence; MULTI_CHILD where it was cut off
    int32_t used;       // bytes looked at
    const void *datum;  // for MULTI_END
};

const void *tree_datum(const multi_arr *table, const multi_node *node, unsigned char last) {
    return node->data != nullptr ? multi_slot(table, node->data, last) : table->default_datum;
}

// Walks at most `limit` bytes, of which byte i is bytes(i).
template <typename Bytes>
inline found walk_flat(const multi_arr *table, const Bytes &bytes, int32_t limit) {
    uint32_t state = 0;
    for (int32_t used = 1;; ++used) {
        const unsigned char b = bytes(used - 1);
        const multi_step &step = table->walk[static_cast<size_t>(state) << 8 | b];
        state = step.next;
        if (state == multi_end)
            return {MULTI_END, used, &step.datum};
        if (state == multi_stop)
            return {MULTI_NONE, used, nullptr};
        if (used >= limit)
            return {MULTI_CHILD, used, nullptr};
    }
}

template <typename Bytes>
inline found walk_tree(const multi_arr *table, const Bytes &bytes, int32_t limit) {
    const multi_node *node = table->root;
    for (int32_t used = 1;; ++used) {
        const unsigned char b = bytes(used - 1);
        const unsigned char flag = multi_flag_at(node, b);
        if (flag == MULTI_END)
            return {MULTI_END, used, tree_datum(table, node, b)};
        if (flag != MULTI_CHILD)
            return {MULTI_NONE, used, nullptr};
        if (used >= limit)
            return {MULTI_CHILD, used, nullptr};
        node = multi_child_at(node, b);
    }
}

template <typename Bytes>
inline found walk(const multi_arr *table, const Bytes &bytes, int32_t limit) {
    return table->walk != nullptr ? walk_flat(table, bytes, limit) : walk_tree(table, bytes, limit);
}

// Bytes of a text, first one first.
struct text_bytes {
    const unsigned char *text;
    unsigned char operator()(int32_t i) const { return text[i]; }
};

// Bytes of a number, highest of `count` first.
struct number_bytes {
    uint32_t number;
    int32_t count;
    unsigned char operator()(int32_t i) const {
        return static_cast<unsigned char>(number >> 8 * (count - 1 - i));
    }
};

bool is_terminator(const unsigned char *text, int32_t length) {
    int32_t i = 0;
    while (i < length && text[i] == 0)
        ++i;
    return i == length;
}

// Walks a terminated text. With characters of one byte and more, byte 0 never lies inside one; with
// wider ones the terminator must be looked for where a character might go on into it.
inline found walk_terminated(const multi_arr *table, const char *text) {
    const text_bytes bytes = {reinterpret_cast<const unsigned char *>(text)};
    const int32_t unit = table->min_len;
    if (unit <= 1)
        return walk(table, bytes, gl_char_bytes);
    const found first = walk(table, bytes, unit);
    if (first.flag != MULTI_CHILD || is_terminator(bytes.text + unit, unit))
        return first;
    return walk(table, bytes, gl_char_bytes);
}

inline const void *datum_or_error(const found &end, void *ctx) {
    if (end.flag == MULTI_END)
        return end.datum;
    return fail_with_null(ctx, GLS_ERR_BAD_CHARACTER);
}

} // namespace

namespace kestrion {

const void *unit_datum(const multi_arr *table, uint32_t number, int32_t levels, void *ctx) {
    found end = walk(table, number_bytes{number, levels}, levels);
    // A sequence that ends early is another character than this one.
    if (end.used != levels)
        end.flag = MULTI_NONE;
    return datum_or_error(end, ctx);
}

} // namespace kestrion

const void *_gl_retrieve_desc_multi(const gl_char_desc *sequence, const multi_arr *table) {
    if (sequence->length < 1 || sequence->length > gl_char_bytes)
        return nullptr;
    const found end = walk(table, text_bytes{sequence->bytes}, sequence->length);
    return end.flag == MULTI_END && end.used == sequence->length ? end.datum : nullptr;
}

const void *_gl_retrieve_text_multi(const char *text, const multi_arr *table, int32_t *used,
                                    void *ctx) {
    const found end = walk_terminated(table, text);
    *used = end.used;
    return datum_or_error(end, ctx);
}

const void *_gl_retrieve_text_multi_nl(const char *text, const multi_arr *table, void *ctx) {
    return datum_or_error(walk_terminated(table, text), ctx);
}

int32_t _gl_retrieve_text_multi_nv(const char *text, const multi_arr *table, void *ctx) {
    const found end = walk_terminated(table, text);
    if (end.flag == MULTI_END)
        return end.used;
    set_engine_error(ctx, GLS_ERR_BAD_CHARACTER);
    return 0;
}

const void *_gl_retrieve_text_multi_limit(const char *text, const multi_arr *table, int32_t limit,
                                          int32_t *used, void *ctx) {
    if (limit <= 0) {
        *used = 0;
        return fail_with_null(ctx, GLS_ERR_SPECIFIER);
    }
    const found end = walk(table, text_bytes{reinterpret_cast<const unsigned char *>(text)}, limit);
    *used = end.used;
    if (end.flag == MULTI_CHILD)
        return fail_with_null(ctx, GLS_ERR_SPECIFIER);
    return datum_or_error(end, ctx);
}

const void *_gl_retrieve_text_multi_limit_nl(const char *text, const multi_arr *table,
                                             int32_t limit, void *ctx) {
    int32_t used;
    return _gl_retrieve_text_multi_limit(text, table, limit, &used, ctx);
}

const void *_gl_retrieve_wchar_multi_nl(void *ctx, gl_wchar character, const multi_arr *table) {
    int32_t levels = significant_bytes(character);
    if (levels == 1 || levels < table->min_len)
        levels = table->min_len;
    if (levels < 1 || levels > gl_char_bytes)
        return fail_with_null(ctx, GLS_ERR_BAD_CHARACTER);
    return unit_datum(table, character, levels, ctx);
}
