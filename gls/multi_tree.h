// The making and releasing of the pieces of a multi table, shared by those that build one.

#pragma once

#include "gls/multi.h"

namespace kestrion {

// A node with nothing in it; null without memory, as all of these.
multi_node *multi_make_node();
// A zeroed array of one byte for each byte value: flags or child slots.
unsigned char *multi_make_byte_array();
// A data array with the default in every slot.
unsigned char *multi_make_data_array(const multi_arr *table);

// Releases all nodes and arrays and the flat table, and leaves an empty root.
void multi_empty(multi_arr *table);

// Entry of a node for the byte b.
inline unsigned char multi_flag_at(const multi_node *node, unsigned char b) {
    return node->flag_bytes != nullptr ? node->flag_bytes[b]
                                       : static_cast<unsigned char>(MULTI_NONE);
}

// Child of a node for a byte whose entry is MULTI_CHILD.
inline multi_node *multi_child_at(const multi_node *node, unsigned char b) {
    return node->children[node->child_slot[b]];
}

// Bytes of a data array.
inline size_t multi_data_array_size(const multi_arr *table) {
    return static_cast<size_t>(gl_bytes) << table->shift;
}

// Slot b of a data array.
inline unsigned char *multi_slot(const multi_arr *table, unsigned char *data, size_t b) {
    return data + (b << table->shift);
}

} // namespace kestrion
