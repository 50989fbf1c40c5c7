// The elements of a collection as they are now, and new blocks made of them.

#pragma once

#include "values/collection/elements.h"

namespace kestrion {

// Every element in order; `items` comes from malloc and belongs to the caller.
struct element_list {
    element *items;
    int32_t count;
};

// A packed block from malloc; null when it is empty.
struct packed_block {
    unsigned char *bytes;
    int32_t length;
};

// Both return 0 or an error number, then with nothing to release.
int32_t list_elements(const coll_rec *collection, element_list *list);
int32_t pack_elements(const coll_rec *collection, const element_list &list, packed_block *block);
int32_t pack_collection(const coll_rec *collection, packed_block *block);

// Gives the collection a block that holds all its elements, and empties the log.
void replace_block(coll_rec *collection, const packed_block &block, int32_t count);

} // namespace kestrion
