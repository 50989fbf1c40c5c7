// The change log: a singly linked list in the order of the positions.

#include "values/collection/elements.h"

#include "base/byte_order.h"
#include "values/collection/element_index.h"

#include <kestrion/error_numbers.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

// Links `entry` after `before`, or at the head.
coll_change *link_after(coll_rec *collection, coll_change *entry, coll_change *before) {
    coll_change **link = before ? &before->ch_next : &collection->cl_log;
    entry->ch_next = *link;
    *link = entry;
    if (!entry->ch_next)
        collection->cl_lastlog = entry;
    return entry;
}

// The link that leads to `entry`, and the entry that has it; null when the log does not have it.
coll_change **link_to(coll_rec *collection, const coll_change *entry, coll_change **owner) {
    *owner = nullptr;
    coll_change **link = &collection->cl_log;
    for (; *link && *link != entry; link = &(*link)->ch_next)
        *owner = *link;
    return *link ? link : nullptr;
}

coll_change *link_by_row(coll_rec *collection, coll_change *entry) {
    coll_change *last = collection->cl_lastlog;
    if (!collection->cl_log || (last && last->ch_rownum < entry->ch_rownum))
        return link_after(collection, entry, collection->cl_log ? last : nullptr);
    coll_change *before = nullptr;
    for (coll_change *at = collection->cl_log; at && at->ch_rownum < entry->ch_rownum;
         at = at->ch_next)
        before = at;
    return link_after(collection, entry, before);
}

coll_change *unlink_entry(coll_rec *collection, coll_change *entry) {
    coll_change *owner;
    coll_change **link = link_to(collection, entry, &owner);
    if (!link)
        return nullptr;
    *link = entry->ch_next;
    if (!*link)
        collection->cl_lastlog = owner;
    return entry;
}

// Bytes of the log entry for an element that is a collection: its flags lie 8 bytes from the start, as
// an entry's bytes are aligned. 0 for a damaged element.
int32_t nested_entry_size(const unsigned char *bytes, const nested_layout &layout) {
    if (layout.is_null)
        return 3;
    const int64_t content = layout.length - layout.flags_at;
    int64_t size = 16;
    if (layout.flags & nested_embedded) {
        if (layout.body_at + 4 > layout.length)
            return 0;
        size += load_big_endian<uint32_t>(bytes + layout.body_at);
    } else if (layout.flags & (nested_whole | nested_hashed | nested_plain)) {
        size = content + 8;
    }
    return size >= 16 && size - 8 <= content ? static_cast<int32_t>(size) : 0;
}

} // namespace

coll_change *changelogs(coll_rec *collection, coll_change *entry, int32_t operation,
                        coll_change *reference) {
    coll_change *owner = nullptr;
    if (reference && !link_to(collection, reference, &owner))
        return nullptr;
    switch (operation) {
    case 0:
        return reference ? link_after(collection, entry, reference)
                         : link_by_row(collection, entry);
    case 1:
        return link_after(collection, entry, owner);
    case 2:
        link_after(collection, entry, owner);
        if (reference)
            unlink_entry(collection, reference);
        return entry;
    default:
        return reference ? unlink_entry(collection, reference) : nullptr;
    }
}

coll_change *alloc_changelog(int32_t row, int32_t kind, int32_t length, int32_t *error) {
    if (length < 0) {
        *error = err_coll_element_size;
        return nullptr;
    }
    auto *entry =
        static_cast<coll_change *>(calloc(1, sizeof(coll_change) + static_cast<size_t>(length)));
    if (!entry) {
        *error = err_no_buffer_memory;
        return nullptr;
    }
    entry->ch_rownum = row;
    entry->ch_modtype = kind;
    entry->ch_newrow = entry + 1;
    entry->ch_newrowlen = length;
    entry->ch_flag = kind == 3 ? 32 : 16;
    return entry;
}

coll_change *new_changelog(coll_rec *collection, int32_t row, int32_t kind, const void *data,
                           int32_t length, int32_t *error) {
    if (Qvt_Debug & 8)
        fprintf(stderr, "ch_rownum %d ch_modtype %d ch_newrowlen %d\n", row, kind, length);
    const coll_field *field = field_at(collection, row);
    const auto *bytes = static_cast<const unsigned char *>(data);
    const bool nested = data && field && is_nested(code_of(field));
    nested_layout layout;
    if (nested) {
        const int32_t room = length;
        length = read_nested(bytes, room, layout) ? nested_entry_size(bytes, layout) : 0;
        if (!length) {
            *error = err_coll_element_size;
            return nullptr;
        }
    }
    coll_change *entry = alloc_changelog(row, kind, length, error);
    if (!entry)
        return nullptr;
    if (nested)
        copy_nested(static_cast<unsigned char *>(entry->ch_newrow), bytes, layout, length);
    else if (data && length)
        memcpy(entry->ch_newrow, data, static_cast<size_t>(length));
    return entry;
}

void free_changelogs(coll_rec *collection) {
    drop_index(collection); // its elements may lie in the log
    for (coll_change *entry = collection->cl_log; entry;) {
        coll_change *next = entry->ch_next;
        free(entry);
        entry = next;
    }
    collection->cl_log = nullptr;
    collection->cl_lastlog = nullptr;
    for (coll_cursor *cursor = collection->cl_curs; cursor; cursor = cursor->next) {
        cursor->position = 0;
        cursor->location = nullptr;
        cursor->change = nullptr;
        cursor->flags = 0;
        cursor->passed = 0;
    }
}

int32_t qvt_coll_get_newlen(const coll_rec *collection, const coll_change *entry) {
    const coll_field *field = field_at(collection, entry->ch_rownum);
    nested_layout layout;
    if (field && is_nested(code_of(field)) &&
        read_nested(static_cast<const unsigned char *>(entry->ch_newrow), entry->ch_newrowlen,
                    layout))
        return layout.length;
    return entry->ch_newrowlen;
}
