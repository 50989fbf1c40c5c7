#include <kestrion/multi.h>

#include "gls/multi/multi_tree.h"

#include <string.h>

using namespace kestrion;

namespace {

// The most children that the one byte of a child slot can number.
constexpr int32_t max_children = 256;

// Smallest shift whose slots hold `size` bytes.
int32_t shift_for(uint32_t size) {
    int32_t shift = 0;
    while ((uint64_t{1} << shift) < size)
        ++shift;
    return shift;
}

bool is_compressed(const multi_arr *table) {
    return (table->flags & multi_compressed) != 0 && table->shared_flags != nullptr;
}

// Which arrays a node owns: all of them, or in a compressed table only its child slots.
enum class owned { all, own_slots };

void release_below(multi_node *node, owned what);

void release(multi_node *node, owned what) {
    if (node == nullptr)
        return;
    release_below(node, what);
    _gl_ext_free(node);
}

void release_below(multi_node *node, owned what) {
    for (int32_t i = 0; i < node->child_count && node->children != nullptr; ++i)
        release(node->children[i], what);
    _gl_free_ptr(node->children);
    _gl_free_ptr(node->child_slot);
    if (what == owned::all) {
        _gl_free_ptr(node->flag_bytes);
        _gl_free_ptr(node->data);
    }
}

void release_shared(multi_arr *table) {
    for (int32_t i = 0; i < table->flag_count; ++i)
        _gl_free_ptr(table->shared_flags[i]);
    for (int32_t i = 0; i < table->data_count; ++i)
        _gl_free_ptr(table->shared_data[i]);
    _gl_free_ptr(table->shared_flags);
    _gl_free_ptr(table->shared_data);
    _gl_free_ptr(table->shared_flag_children);
    table->shared_flags = table->shared_data = nullptr;
    table->shared_flag_children = nullptr;
}

bool make_missing_flags(multi_node *node, multi_arr *table) {
    if (node->flag_bytes != nullptr)
        return true;
    node->flag_bytes = multi_make_byte_array();
    if (node->flag_bytes == nullptr)
        return false;
    ++table->flag_count;
    return true;
}

bool make_missing_slots(multi_node *node, multi_arr *table) {
    if (node->child_slot != nullptr)
        return true;
    node->child_slot = multi_make_byte_array();
    if (node->child_slot == nullptr)
        return false;
    ++table->offset_count;
    return true;
}

// Makes places for all children that a node can have: one that was read has them for its own only.
bool widen_children(multi_node *node) {
    void *const places = _gl_ext_realloc(node->children, max_children * sizeof(multi_node *));
    if (places == nullptr)
        return false;
    node->children = static_cast<multi_node **>(places);
    return true;
}

bool is_zero(const unsigned char *bytes, size_t size) {
    for (size_t i = 0; i < size; ++i)
        if (bytes[i] != 0)
            return false;
    return true;
}

// Ends a sequence on the byte b of `node`.
int insert_end(multi_node *node, unsigned char b, const void *datum, multi_arr *table) {
    if (multi_flag_at(node, b) == MULTI_CHILD || !make_missing_flags(node, table))
        return -1;
    if (datum != nullptr && node->data == nullptr) {
        node->data = multi_make_data_array(table);
        if (node->data == nullptr)
            return -1;
        ++table->data_count;
    }
    node->flag_bytes[b] = MULTI_END;
    if (datum != nullptr)
        memcpy(multi_slot(table, node->data, b), datum, table->data_size);
    return 0;
}

// Takes back what a child that is being given up added to the counts.
void uncount(const multi_node *node, multi_arr *table) {
    table->flag_count -= node->flag_bytes != nullptr;
    table->data_count -= node->data != nullptr;
    table->offset_count -= node->child_slot != nullptr;
}

int recursive_insert(multi_node *node, const gl_char_desc *sequence, int32_t depth,
                     const void *datum, multi_arr *table) {
    const unsigned char b = sequence->bytes[depth];
    if (depth + 1 == sequence->length)
        return insert_end(node, b, datum, table);
    if (multi_flag_at(node, b) == MULTI_END || !make_missing_flags(node, table) ||
        !make_missing_slots(node, table))
        return -1;
    if (node->flag_bytes[b] == MULTI_CHILD)
        return recursive_insert(multi_child_at(node, b), sequence, depth + 1, datum, table);
    if (node->child_count == max_children || !widen_children(node))
        return -1;
    // Counted before the child is made: a child that fails leaves its index spent.
    const int32_t index = node->child_count++;
    node->children[index] = nullptr;
    multi_node *const child = multi_make_node();
    if (child == nullptr)
        return -1;
    if (recursive_insert(child, sequence, depth + 1, datum, table) != 0) {
        uncount(child, table);
        release(child, owned::all);
        return -1;
    }
    node->children[index] = child;
    node->child_slot[b] = static_cast<unsigned char>(index);
    node->flag_bytes[b] = MULTI_CHILD;
    return 0;
}

} // namespace

namespace kestrion {

multi_node *multi_make_node() {
    multi_node *const node = static_cast<multi_node *>(_gl_ext_calloc(1, sizeof(multi_node)));
    if (node != nullptr)
        node->flag_index = node->data_index = -1;
    return node;
}

unsigned char *multi_make_byte_array() {
    return static_cast<unsigned char *>(_gl_ext_calloc(gl_bytes, 1));
}

unsigned char *multi_make_data_array(const multi_arr *table) {
    // Zeroed, so that the bytes between data and slots never differ.
    unsigned char *const data =
        static_cast<unsigned char *>(_gl_ext_calloc(gl_bytes, size_t{1} << table->shift));
    const bool filled = data == nullptr || is_zero(table->default_datum, table->data_size);
    for (size_t b = 0; !filled && b < gl_bytes; ++b)
        memcpy(multi_slot(table, data, b), table->default_datum, table->data_size);
    return data;
}

void multi_empty(multi_arr *table) {
    multi_drop_flat(table);
    const bool shared = table->shared_flags != nullptr;
    release_below(table->root, shared ? owned::own_slots : owned::all);
    if (shared)
        release_shared(table);
    *table->root = {.flag_index = -1, .data_index = -1};
    table->flag_count = table->data_count = table->offset_count = 0;
}

} // namespace kestrion

multi_arr *_gl_create_multi(uint32_t data_size, int32_t flags, const void *default_datum) {
    multi_arr *const table = static_cast<multi_arr *>(_gl_ext_calloc(1, sizeof(multi_arr)));
    if (table == nullptr)
        return nullptr;
    table->data_size = data_size;
    table->min_len = gl_char_bytes;
    table->flags = flags | multi_has_flags;
    table->shift = shift_for(data_size);
    table->default_datum =
        static_cast<unsigned char *>(_gl_ext_malloc(data_size == 0 ? 1 : data_size));
    table->root = multi_make_node();
    if (table->root != nullptr)
        table->root->flag_bytes = multi_make_byte_array();
    if (table->default_datum == nullptr || table->root == nullptr ||
        table->root->flag_bytes == nullptr) {
        _gl_free_multi(table);
        return nullptr;
    }
    table->flag_count = 1;
    memcpy(table->default_datum, default_datum, data_size);
    return table;
}

void _gl_free_multi(multi_arr *table) {
    if (table == nullptr)
        return;
    if (table->root != nullptr)
        multi_empty(table);
    _gl_free_ptr(table->root);
    _gl_free_ptr(table->default_datum);
    _gl_ext_free(table);
}

int _gl_insert_desc_multi(const gl_char_desc *sequence, const void *datum, multi_arr *table) {
    // The arrays of a compressed table serve many nodes: writing to one would change the others.
    if (sequence->length < 1 || sequence->length > gl_char_bytes || is_compressed(table))
        return -1;
    multi_drop_flat(table);
    if (recursive_insert(table->root, sequence, 0, datum, table) != 0)
        return -1;
    if (table->max_len < sequence->length)
        table->max_len = sequence->length;
    if (table->min_len > sequence->length)
        table->min_len = sequence->length;
    return 0;
}

void single_byte_exists(multi_arr *table) {
    if (table->max_len > 1 || table->min_len != 1 || table->root->flag_bytes == nullptr)
        return;
    multi_drop_flat(table);
    memset(table->root->flag_bytes, MULTI_END, gl_bytes);
}

int32_t _gl_multi_max_length(const multi_arr *table) { return table->max_len; }

int32_t _gl_multi_min_length(const multi_arr *table) { return table->min_len; }

int32_t _gl_multi_err(const multi_arr *table) { return table->err; }

int32_t _gl_multi_node_count(const multi_arr *table, int32_t *data, int32_t *flag,
                             int32_t *offset) {
    *data = table->data_count;
    *flag = table->flag_count;
    *offset = table->offset_count;
    return table->offset_count;
}
