#include "values/collection/element_index.h"

#include "values/collection/block_builder.h"

#include <kestrion/collection_compare.h>

#include <stdlib.h>

struct coll_index {
    uint64_t slots; // a power of two, at least twice the elements
    uint64_t used;
};

namespace kestrion {

namespace {

struct slot {
    uint64_t hash;
    element value; // null bytes: free
};

slot *slots_of(coll_index *index) { return reinterpret_cast<slot *>(index + 1); }

uint64_t hash_of(const element_key &key) {
    uint64_t hash = key.is_null ? 1 : UINT64_C(0xCBF29CE484222325);
    for (size_t i = 0; i < key.length; ++i)
        hash = (hash ^ key.bytes[i]) * UINT64_C(0x100000001B3);
    return hash ^ hash >> 32;
}

coll_index *new_index(uint64_t elements) {
    uint64_t slots = 16;
    while (slots < 4 * elements)
        slots *= 2;
    auto *index = static_cast<coll_index *>(calloc(1, sizeof(coll_index) + slots * sizeof(slot)));
    if (index)
        index->slots = slots;
    return index;
}

// The slot of an equal element, or the free one where it would go.
slot *slot_of(coll_index *index, const coll_field *field, const element_key &key, uint64_t hash) {
    slot *slots = slots_of(index);
    for (uint64_t at = hash;; ++at) {
        slot *here = slots + (at & (index->slots - 1));
        if (!here->value.bytes ||
            (here->hash == hash && compare_keys(key_of(field, here->value), key) == 0))
            return here;
    }
}

void put(coll_index *index, const coll_field *field, element value) {
    const element_key key = key_of(field, value);
    const uint64_t hash = hash_of(key);
    slot *here = slot_of(index, field, key, hash);
    index->used += here->value.bytes ? 0 : 1;
    *here = {hash, value};
}

// Makes the index of all elements; none without memory.
void build(coll_rec *collection, const coll_field *field) {
    element_list list;
    if (list_elements(collection, &list) != 0)
        return;
    collection->cl_index = new_index(static_cast<uint64_t>(list.count));
    for (int32_t i = 0; collection->cl_index && i < list.count; ++i)
        put(collection->cl_index, field, list.items[i]);
    free(list.items);
}

} // namespace

found find_in_index(coll_rec *collection, element searched) {
    const coll_field *field = field_at(collection, 1);
    if (field && !collection->cl_index)
        build(collection, field);
    if (!field || !collection->cl_index)
        return found::unknown;
    const element_key key = key_of(field, searched);
    return slot_of(collection->cl_index, field, key, hash_of(key))->value.bytes ? found::yes
                                                                                : found::no;
}

void add_to_index(coll_rec *collection, element added) {
    coll_index *index = collection->cl_index;
    if (!index)
        return;
    if (2 * (index->used + 1) > index->slots)
        drop_index(collection); // the next search makes a larger one
    else
        put(index, field_at(collection, 1), added);
}

void drop_index(coll_rec *collection) {
    free(collection->cl_index);
    collection->cl_index = nullptr;
}

} // namespace kestrion
