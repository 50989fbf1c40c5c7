// The record: made of a block, copied, folded, released.

#include <kestrion/collection.h>

#include "base/byte_order.h"
#include "values/collection/block_builder.h"

#include <kestrion/error_numbers.h>

#include <stdlib.h>
#include <string.h>

using namespace kestrion;

int32_t Qvt_Debug = 0;

namespace {

constexpr uint32_t owner_bits = coll_owns_block | coll_owns_type;

// Elements of a block of variable-size elements, or -1 when its table is damaged.
int32_t count_in_table(const unsigned char *block, int32_t length) {
    if (length == 0)
        return 0;
    int32_t count = 0;
    uint32_t last = 0;
    for (int64_t at = int64_t{length} - 4; at >= 0; at -= 4, ++count) {
        const uint32_t offset = load_big_endian<uint32_t>(block + at);
        if (offset == UINT32_MAX)
            return count && last <= at ? count : -1;
        if (offset < last || (count == 0 && offset != 0))
            return -1;
        last = offset;
    }
    return -1;
}

struct block_shape {
    int32_t element_size; // 0 for variable sizes
    int32_t count;
};

int32_t shape_of(const coll_type *type, const unsigned char *block, int32_t length,
                 block_shape *shape) {
    const int32_t size = fixed_element_size(type);
    if (size < 0)
        return err_coll_no_type;
    if (length < 0 || (size && length % size != 0))
        return err_coll_element_size;
    *shape = {size, size ? length / size : count_in_table(block, length)};
    return shape->count < 0 ? err_coll_element_size : 0;
}

coll_type *copy_type(const coll_type *type) {
    coll_type *copy = qvt_coll_new_type(type->kind, type->count);
    if (copy)
        memcpy(copy, type, sizeof *type + type->count * sizeof(coll_field));
    return copy;
}

// Copies block and log. On failure the destination is left for qvt_coll_free.
int32_t copy_elements(coll_rec *destination, const coll_rec *source) {
    if (source->cl_datalen) {
        const auto size = static_cast<size_t>(source->cl_datalen);
        destination->cl_data = static_cast<unsigned char *>(malloc(size));
        if (!destination->cl_data)
            return err_no_buffer_memory;
        memcpy(destination->cl_data, source->cl_data, size);
    }
    for (const coll_change *entry = source->cl_log; entry; entry = entry->ch_next) {
        int32_t error = 0;
        coll_change *copy =
            alloc_changelog(entry->ch_rownum, entry->ch_modtype, entry->ch_newrowlen, &error);
        if (!copy)
            return error;
        copy->ch_flag = entry->ch_flag;
        memcpy(copy->ch_newrow, entry->ch_newrow, static_cast<size_t>(entry->ch_newrowlen));
        if (destination->cl_lastlog)
            destination->cl_lastlog->ch_next = copy;
        else
            destination->cl_log = copy;
        destination->cl_lastlog = copy;
    }
    return 0;
}

} // namespace

int32_t qvt_coll_init(coll_rec *collection, const coll_type *type, void *block, int32_t length) {
    if (!type)
        return err_coll_no_type;
    block_shape shape;
    auto *bytes = static_cast<unsigned char *>(block);
    if (const int32_t error = shape_of(type, bytes, length, &shape))
        return error;
    free_changelogs(collection);
    if (type != type_in_force(collection)) {
        collection->cl_svr_typeinfo = const_cast<coll_type *>(type);
        collection->cl_typelen =
            static_cast<int32_t>(sizeof(coll_type) + type->count * sizeof(coll_field));
        collection->cl_flags &= ~uint32_t{coll_owns_type};
    }
    collection->cl_flags &= ~uint32_t{coll_is_null | coll_hash_valid | coll_owns_block};
    collection->cl_hashvalue = 0;
    collection->cl_data = length ? bytes : nullptr;
    collection->cl_datalen = length;
    collection->cl_len = length;
    collection->cl_isfixed = shape.element_size != 0;
    collection->cl_elsize = shape.element_size;
    collection->cl_cardinality = shape.count;
    collection->cl_blockcount = shape.count;
    return 0;
}

void qvt_coll_free(coll_rec *collection) {
    while (collection->cl_curs) {
        coll_cursor *cursor = collection->cl_curs;
        collection->cl_curs = cursor->next;
        *cursor = {};
    }
    free_changelogs(collection);
    if (collection->cl_flags & coll_owns_block)
        free(collection->cl_data);
    if (collection->cl_flags & coll_owns_type)
        free(collection->cl_svr_typeinfo);
    coll_rec cleared = {};
    cleared.cl_typed = collection->cl_typed;
    cleared.cl_typeinfo = collection->cl_typeinfo;
    *collection = cleared;
}

int32_t qvt_coll_copy(coll_rec *destination, const coll_rec *source) {
    const coll_type *type = type_in_force(source);
    if (destination->cl_typed && destination->cl_typeinfo && type &&
        kind_of(destination->cl_typeinfo) != kind_of(type))
        return err_coll_type;
    if (destination == source)
        return 0;
    coll_rec copy = *source;
    copy.cl_curs = nullptr;
    copy.cl_data = nullptr;
    copy.cl_index = nullptr;
    copy.cl_log = copy.cl_lastlog = nullptr;
    copy.cl_svr_typeinfo = nullptr;
    copy.cl_flags |= owner_bits;
    copy.cl_typed = destination->cl_typed;
    copy.cl_typeinfo = destination->cl_typeinfo;
    int32_t error = 0;
    if (type && !(copy.cl_svr_typeinfo = copy_type(type)))
        error = err_no_buffer_memory;
    if (type)
        copy.cl_typelen = static_cast<int32_t>(sizeof *type + type->count * sizeof(coll_field));
    if (!error)
        error = copy_elements(&copy, source);
    if (error) {
        qvt_coll_free(&copy);
        return error;
    }
    qvt_coll_free(destination);
    *destination = copy;
    return 0;
}

int32_t qvt_coll_fold(coll_rec *collection) {
    if (!collection->cl_log)
        return 0;
    packed_block block;
    if (const int32_t error = pack_collection(collection, &block))
        return error;
    coll_cursor *cursors = collection->cl_curs;
    collection->cl_curs = nullptr; // they keep their positions
    replace_block(collection, block, collection->cl_cardinality);
    collection->cl_curs = cursors;
    refresh_copies(collection);
    for (coll_cursor *cursor = cursors; cursor; cursor = cursor->next)
        seat(cursor, cursor->position);
    return 0;
}
