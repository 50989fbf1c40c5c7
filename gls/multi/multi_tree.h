// The making and releasing of the pieces of a multi table, shared by those that build one.

#pragma once

#include <kestrion/multi.h>

namespace kestrion {

// A node with nothing in it; null without memory, as all of these.
multi_node *multi_make_node();
// A zeroed array of one byte for each byte value: flags or child slots.
unsigned char *multi_make_byte_array();
// A data array with the default in every slot.
unsigned char *multi_make_data_array(const multi_arr *table);

// Makes the flat table of a complete table; loaders call it after a successful read. Returns 0, or
// -1 for data that are not of 16 bits, without memory, or when the tree has more states than a step
// can number: lookups then walk the tree.
int multi_flatten(multi_arr *table);
// Drops the flat table; every change of the tree does.
void multi_drop_flat(multi_arr *table);

// Releases all nodes and arrays and the flat table, and leaves an empty root.
void multi_empty(multi_arr *table);

// Entry of a node for the byte b.
inline unsigned char multi_flag_at(const multi_node *node, unsigned char b) {
    return node->flag_bytes != nullptr ? node->flag_bytes[b]
                                       : static_cast<unsigned char>(MULTI_NONE);
}

// Entries of a flag array that go on in a child.
inline int32_t multi_count_children(const unsigned char *flags) {
    int32_t count = 0;
    for (size_t b = 0; b < gl_bytes; ++b)
        count += flags[b] == MULTI_CHILD;
    return count;
}

// Child of a node for a byte whose entry is MULTI_CHILD.
inline multi_node *multi_child_at(const multi_node *node, unsigned char b) {
    return node->children[node->child_slot[b]];
}

// Bytes of a data array.
inline size_t multi_data_array_size(const multi_arr *table) {
    return static_cast<size_t>(gl_bytes) << table->shift;
}

// Datum of a number of exactly `levels` bytes, walked from the highest; or null, with the error
// word of `ctx` set.
const void *unit_datum(const multi_arr *table, uint32_t number, int32_t levels, void *ctx);

// Bytes of a wide character that are not leading zeros, at least one.
inline int32_t significant_bytes(gl_wchar character) {
    return character > 0xFFFFFF ? 4 : character > 0xFFFF ? 3 : character > 0xFF ? 2 : 1;
}

// Slot b of a data array.
inline unsigned char *multi_slot(const multi_arr *table, unsigned char *data, size_t b) {
    return data + (b << table->shift);
}

} // namespace kestrion
