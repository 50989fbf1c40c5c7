// The flat transition table of a multi table.

#include "gls/multi/multi_tree.h"

#include <string.h>

using namespace kestrion;

namespace {

constexpr uint32_t max_states = 65536; // what the 16 bits of a step can number
constexpr size_t row_size = gl_bytes * sizeof(multi_step);

// States that were made for nodes without children, by what is in their arrays: in a large code set
// many nodes hold the same, and one state serves them all.
struct shared_state {
    const multi_node *node;
    uint32_t state; // 0: free place
};

struct flattening {
    const multi_arr *table;
    multi_step *walk = nullptr;
    shared_state *seen = nullptr;
    uint32_t seen_capacity = 0; // a power of two
    uint32_t seen_count = 0;
    uint32_t capacity = 0;
    uint32_t states = 0;

    bool grow();
    bool grow_seen();
    uint64_t key_of(const unsigned char *array, size_t size) const;
    shared_state *place_of(const multi_node *node);
    bool place(const multi_node *node, uint32_t &state);
    uint16_t datum_at(const multi_node *node, size_t b) const;
    void release();
};

bool flattening::grow() {
    const uint32_t wanted = capacity == 0 ? 16 : capacity * 2;
    void *const bigger_walk = _gl_ext_realloc(walk, wanted * row_size);
    if (bigger_walk == nullptr)
        return false;
    walk = static_cast<multi_step *>(bigger_walk);
    capacity = wanted;
    return true;
}

constexpr uint64_t hash_factor = 0x9E3779B97F4A7C15u;

// A compressed table has one array for each content, and its address will do.
uint64_t flattening::key_of(const unsigned char *array, size_t size) const {
    if (array == nullptr || table->shared_flags != nullptr)
        return reinterpret_cast<uintptr_t>(array);
    uint64_t key = 0;
    for (size_t i = 0; i < size; i += sizeof key) { // arrays are a multiple of 256 bytes
        uint64_t word;
        memcpy(&word, array + i, sizeof word);
        key = (key ^ word) * hash_factor;
        key ^= key >> 32;
    }
    return key;
}

bool same_array(const unsigned char *a, const unsigned char *b, size_t size) {
    return a == b || (a != nullptr && b != nullptr && memcmp(a, b, size) == 0);
}

// The place of a childless node's state: its own, or the free one where it belongs.
shared_state *flattening::place_of(const multi_node *node) {
    const size_t data_size = multi_data_array_size(table);
    const uint64_t key = key_of(node->flag_bytes, gl_bytes) * 31 + key_of(node->data, data_size);
    for (uint64_t i = key * hash_factor >> 32;; ++i) {
        shared_state *const at = &seen[i & (seen_capacity - 1)];
        if (at->state == 0 || (same_array(at->node->flag_bytes, node->flag_bytes, gl_bytes) &&
                               same_array(at->node->data, node->data, data_size)))
            return at;
    }
}

bool flattening::grow_seen() {
    const uint32_t old_capacity = seen_capacity;
    shared_state *const old = seen;
    const uint32_t wanted = old_capacity == 0 ? 64 : old_capacity * 2;
    shared_state *const bigger =
        static_cast<shared_state *>(_gl_ext_calloc(wanted, sizeof(shared_state)));
    if (bigger == nullptr)
        return false;
    seen = bigger;
    seen_capacity = wanted;
    for (uint32_t i = 0; i < old_capacity; ++i) {
        if (old[i].state != 0)
            *place_of(old[i].node) = old[i];
    }
    _gl_free_ptr(old);
    return true;
}

uint16_t flattening::datum_at(const multi_node *node, size_t b) const {
    uint16_t datum;
    memcpy(&datum, node->data != nullptr ? node->data + (b << 1) : table->default_datum,
           sizeof datum);
    return datum;
}

// Makes the state of a node and of all below it; depth is at most four.
bool flattening::place(const multi_node *node, uint32_t &state) {
    const bool childless = node->child_count == 0;
    if (childless) {
        if (seen_count * 2 >= seen_capacity && !grow_seen())
            return false;
        if (const shared_state *const known = place_of(node); known->state != 0) {
            state = known->state;
            return true;
        }
    }
    // The row after the root's is that of the number 1, the end of a sequence, and stays empty.
    state = states == 0 ? 0 : states;
    states = states == 0 ? uint32_t{multi_first_state} : states + 1;
    if (states > max_states || (states > capacity && !grow()))
        return false;
    if (childless && state != 0) {
        *place_of(node) = {node, state};
        ++seen_count;
    }
    memset(walk + (static_cast<size_t>(state) << 8), 0, state == 0 ? 2 * row_size : row_size);
    for (size_t b = 0; b < gl_bytes; ++b) {
        const unsigned char flag = multi_flag_at(node, static_cast<unsigned char>(b));
        multi_step step = {};
        if (flag == MULTI_END) {
            step = {.datum = datum_at(node, b), .next = multi_end};
        } else if (flag == MULTI_CHILD) {
            uint32_t child;
            if (!place(multi_child_at(node, static_cast<unsigned char>(b)), child))
                return false;
            step.next = static_cast<uint16_t>(child);
        }
        walk[static_cast<size_t>(state) << 8 | b] = step;
    }
    return true;
}

void flattening::release() {
    _gl_free_ptr(walk);
    _gl_free_ptr(seen);
}

} // namespace

namespace kestrion {

void multi_drop_flat(multi_arr *table) {
    _gl_free_ptr(const_cast<multi_step *>(table->walk));
    table->walk = nullptr;
}

int multi_flatten(multi_arr *table) {
    multi_drop_flat(table);
    if (table->data_size != sizeof(multi_step::datum))
        return -1;
    flattening flat = {.table = table};
    uint32_t root;
    if (!flat.place(table->root, root)) {
        flat.release();
        return -1;
    }
    _gl_free_ptr(flat.seen);
    // Give back what the last doubling took too much; a block that stays where it is serves as
    // well.
    void *const trimmed = _gl_ext_realloc(flat.walk, flat.states * row_size);
    table->walk = trimmed != nullptr ? static_cast<multi_step *>(trimmed) : flat.walk;
    return 0;
}

} // namespace kestrion
