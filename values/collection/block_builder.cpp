#include "values/collection/block_builder.h"

#include "base/byte_order.h"

#include <kestrion/error_numbers.h>

#include <stdlib.h>
#include <string.h>

namespace kestrion {

namespace {

// Where an element goes in a new block: its bytes and their count there.
struct placed {
    bool nested;
    nested_layout layout;
    int64_t size;
};

// `at` is the offset in the block, whose own address 16 divides.
bool place(const coll_rec *collection, int32_t position, element value, int64_t at, placed *out) {
    const coll_field *field = field_at(collection, position);
    out->nested = !collection->cl_isfixed && field && is_nested(code_of(field));
    out->size = value.length;
    if (!out->nested)
        return true;
    if (!read_nested(value.bytes, value.length, out->layout))
        return false;
    out->size = nested_size(out->layout, flags_offset(static_cast<size_t>(at)));
    return true;
}

// Bytes of the new block, or an error number.
int64_t block_size(const coll_rec *collection, const element_list &list) {
    int64_t size = 0;
    for (int32_t i = 0; i < list.count; ++i) {
        placed where;
        if (!place(collection, i + 1, list.items[i], size, &where))
            return err_coll_element_size;
        size += where.size;
    }
    if (!collection->cl_isfixed && list.count)
        size += 4 * (int64_t{list.count} + 1);
    return size > INT32_MAX ? int64_t{err_no_buffer_memory} : size;
}

void write_block(const coll_rec *collection, const element_list &list, const packed_block &block) {
    unsigned char *table = block.bytes + block.length;
    int64_t at = 0;
    for (int32_t i = 0; i < list.count; ++i) {
        const element value = list.items[i];
        placed where;
        place(collection, i + 1, value, at, &where);
        if (where.nested)
            copy_nested(block.bytes + at, value.bytes, where.layout,
                        static_cast<int32_t>(where.size));
        else if (value.length)
            memcpy(block.bytes + at, value.bytes, static_cast<size_t>(value.length));
        if (!collection->cl_isfixed)
            store_big_endian(static_cast<uint32_t>(at), table -= 4);
        at += where.size;
    }
    if (!collection->cl_isfixed)
        store_big_endian(UINT32_MAX, table - 4);
}

} // namespace

int32_t list_elements(const coll_rec *collection, element_list *list) {
    *list = {};
    const int32_t count = collection->cl_cardinality;
    if (count == 0)
        return 0;
    auto *items = static_cast<element *>(malloc(static_cast<size_t>(count) * sizeof(element)));
    if (!items)
        return err_no_buffer_memory;
    coll_cursor cursor = {}; // never linked in: the collection stays as it is
    cursor.collection = const_cast<coll_rec *>(collection);
    int32_t error = 0;
    for (int32_t i = 0; i < count && !error; ++i) {
        error = cursor_seek(&cursor, 1, CSEEK_CUR) ? int32_t{err_coll_no_element}
                                                   : element_at(&cursor, &items[i]);
    }
    if (error) {
        free(items);
        return error;
    }
    *list = {items, count};
    return 0;
}

int32_t pack_elements(const coll_rec *collection, const element_list &list, packed_block *block) {
    *block = {};
    const int64_t size = block_size(collection, list);
    if (size <= 0)
        return static_cast<int32_t>(size);
    block->bytes = static_cast<unsigned char *>(malloc(static_cast<size_t>(size)));
    if (!block->bytes)
        return err_no_buffer_memory;
    block->length = static_cast<int32_t>(size);
    write_block(collection, list, *block);
    return 0;
}

int32_t pack_collection(const coll_rec *collection, packed_block *block) {
    *block = {};
    element_list list;
    int32_t error = list_elements(collection, &list);
    if (!error)
        error = pack_elements(collection, list, block);
    free(list.items);
    return error;
}

void replace_block(coll_rec *collection, const packed_block &block, int32_t count) {
    free_changelogs(collection);
    if (collection->cl_flags & coll_owns_block)
        free(collection->cl_data);
    collection->cl_data = block.bytes;
    collection->cl_datalen = block.length;
    collection->cl_len = block.length;
    collection->cl_cardinality = count;
    collection->cl_blockcount = count;
    collection->cl_flags |= coll_owns_block;
}

} // namespace kestrion
