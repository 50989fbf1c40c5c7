// Cursors: a place in block and log together, and the changes made there.

#include "values/collection/element_index.h"
#include "values/collection/elements.h"

#include <kestrion/collection_compare.h>
#include <kestrion/error_numbers.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr uint32_t owner_bits = coll_owns_block | coll_owns_type;

// Where a walk is; a cursor's place without its position.
struct place {
    unsigned char *location;
    coll_change *change;
    int64_t passed;
};

constexpr place start = {};

// Moves the location over `count` elements of the block; false when it has fewer.
bool skip_elements(const coll_rec *collection, place &at, int64_t count) {
    if (count == 0)
        return true;
    unsigned char *data = collection->cl_data;
    if (!data)
        return false;
    if (collection->cl_isfixed) {
        const int64_t size = collection->cl_elsize;
        const int64_t offset = (at.location ? at.location - data : -size) + count * size;
        if (offset > collection->cl_datalen - size)
            return false;
        at.location = data + offset;
        return true;
    }
    unsigned char *end = data + collection->cl_datalen; // the table grows downward from here
    const int64_t passed = (at.location ? (end - at.location) / 4 : 0) + count;
    if (passed > collection->cl_blockcount)
        return false;
    at.location = end - 4 * passed;
    return true;
}

// Elements of the block between one log entry and the next, which the log leaves alone.
int64_t untouched_run(const coll_rec *collection, const coll_change *from, const coll_change *to) {
    const int64_t end = to ? to->ch_rownum : int64_t{collection->cl_cardinality} + 1;
    if (!from)
        return end - 1;
    return end - from->ch_rownum - (from->ch_modtype == coll_deleted ? 0 : 1);
}

// Moves `n` elements on, 0 or more.
bool walk(const coll_rec *collection, place &at, int64_t n) {
    for (;;) {
        coll_change *to = at.change ? at.change->ch_next : collection->cl_log;
        const int64_t run = untouched_run(collection, at.change, to) - at.passed;
        if (n <= run) {
            at.passed += n;
            return skip_elements(collection, at, n);
        }
        const int64_t hidden = to && to->ch_flag & CHANGELOG_WITH_DATA ? 1 : 0;
        if (!to || !skip_elements(collection, at, run + hidden))
            return false;
        const bool deleted = to->ch_modtype == coll_deleted;
        at.change = to;
        at.passed = 0;
        n -= run + (deleted ? 0 : 1);
        if (n == 0 && !deleted)
            return true;
    }
}

void put_cursor(coll_cursor *cursor, const place &at, int64_t position) {
    cursor->position = static_cast<int32_t>(position);
    cursor->location = at.location;
    cursor->change = at.change;
    cursor->passed = static_cast<int32_t>(at.passed);
}

void raise_rows(coll_change *first, int32_t by) {
    for (; first; first = first->ch_next)
        first->ch_rownum += by;
}

bool another_cursor_there(const coll_cursor *cursor) {
    for (const coll_cursor *other = cursor->collection->cl_curs; other; other = other->next) {
        if (other != cursor && other->position == cursor->position)
            return true;
    }
    return false;
}

bool in_range(const coll_cursor *cursor) {
    return cursor->position >= 1 && cursor->position <= cursor->collection->cl_cardinality;
}

// Whether the collection may grow `by` so many bytes: 0 or an error number.
int32_t check_length(const coll_rec *collection, int64_t by) {
    const int64_t length = collection->cl_len + by;
    return length < 0 || length > INT32_MAX ? err_no_buffer_memory : 0;
}

// After an append the place of its entry is known without a walk: only deletes follow it.
void seat_on_appended(coll_cursor *cursor, coll_change *entry) {
    const coll_rec *collection = cursor->collection;
    int64_t hidden = 0;
    for (const coll_change *later = entry->ch_next; later; later = later->ch_next)
        hidden += later->ch_flag & CHANGELOG_WITH_DATA ? 1 : 0;
    place at = {nullptr, entry, 0};
    skip_elements(collection, at, collection->cl_blockcount - hidden);
    put_cursor(cursor, at, collection->cl_cardinality);
}

// Seats cursors after an element came in: those at its row or beyond move on with their elements. An
// element at the end moves no other cursor; those that were beyond the end find it.
void seat_after_insert(coll_cursor *inserting, coll_change *entry, bool appended) {
    coll_rec *collection = inserting->collection;
    const int32_t row = entry->ch_rownum;
    for (coll_cursor *cursor = collection->cl_curs; cursor; cursor = cursor->next) {
        if (cursor == inserting)
            continue;
        if (!appended)
            seat(cursor, cursor->position + (cursor->position >= row ? 1 : 0));
        else if (cursor->position == row)
            seat(cursor, row);
    }
    if (appended)
        seat_on_appended(inserting, entry);
    else
        seat(inserting, row);
    inserting->flags &= ~uint32_t{coll_stay};
}

// Replaces the cursor's log entry, or links the new one after it when the cursor is on the block.
void put_at_cursor(coll_cursor *cursor, coll_change *entry) {
    coll_rec *collection = cursor->collection;
    if (cursor->passed) {
        entry->ch_flag |= CHANGELOG_WITH_DATA;
        changelogs(collection, entry, 0, cursor->change);
        return;
    }
    entry->ch_flag |= cursor->change->ch_flag & CHANGELOG_WITH_DATA;
    changelogs(collection, entry, 2, cursor->change);
    free(cursor->change);
}

int32_t update_in_block(coll_cursor *cursor, const void *data, int32_t length) {
    if (!cursor->location)
        return err_coll_no_element;
    if (!data)
        return err_coll_null_element;
    memmove(cursor->location, data, static_cast<size_t>(length));
    return 0;
}

void end_insert(coll_cursor *cursor) {
    cursor->collection->cl_flags &= ~uint32_t{coll_hash_valid};
    refresh_copies(cursor->collection);
}

// The index follows inserts alone.
void end_change(coll_cursor *cursor) {
    drop_index(cursor->collection);
    end_insert(cursor);
}

// What a cursor is on for a change: 0, or the error of a place that has no element.
int32_t check_entry(const coll_cursor *cursor) {
    if (cursor->passed)
        return 0;
    if (!cursor->change)
        return err_coll_no_element;
    return cursor->change->ch_modtype == coll_deleted ? err_coll_row_deleted : 0;
}

} // namespace

void kestrion::seat(coll_cursor *cursor, int32_t position) {
    const uint32_t flags = cursor->flags;
    put_cursor(cursor, start, 0);
    if (position >= 1 && cursor_seek(cursor, position, CSEEK_SET) != 0)
        cursor->position = cursor->collection->cl_cardinality + 1;
    cursor->flags = flags;
}

void kestrion::refresh_copies(const coll_rec *changed) {
    for (coll_cursor *cursor = changed->cl_curs; cursor; cursor = cursor->next) {
        coll_rec *copy = cursor->collection;
        if (copy == changed)
            continue;
        const uint32_t owned = copy->cl_flags & owner_bits;
        *copy = *changed;
        copy->cl_flags = (changed->cl_flags & ~owner_bits) | owned;
    }
}

int32_t cursor_seek(coll_cursor *cursor, int32_t n, int32_t whence) {
    const coll_rec *collection = cursor->collection;
    if (!collection)
        return err_coll_no_element;
    if (Qvt_Debug & 4)
        fprintf(stderr, "position %d n %d whence %d\n", cursor->position, n, whence);
    if (whence < CSEEK_SET || whence > CSEEK_END)
        return coll_end;
    int64_t target = n;
    if (whence == CSEEK_END)
        target += collection->cl_cardinality;
    else if (whence == CSEEK_CUR)
        target += cursor->position;
    if (target < 1 || target > collection->cl_cardinality)
        return coll_end;
    place at = {cursor->location, cursor->change, cursor->passed};
    int64_t n_from_there = n;
    // A cursor beyond the end has no place from which a walk could go on.
    if (whence != CSEEK_CUR || n < 0 || cursor->position > collection->cl_cardinality) {
        at = start;
        n_from_there = target;
    }
    if (!walk(collection, at, n_from_there))
        return coll_end;
    put_cursor(cursor, at, target);
    cursor->flags &= ~uint32_t{coll_stay};
    return 0;
}

int32_t cursor_insert(coll_cursor *cursor, const void *data, int32_t length, int32_t at_end) {
    coll_rec *collection = cursor->collection;
    if (!collection)
        return err_coll_no_element;
    if (collection->cl_cardinality == INT32_MAX - 1)
        return err_no_buffer_memory;
    if (collection->cl_isfixed && length != collection->cl_elsize)
        return err_coll_element_size;
    const bool appended = at_end || !in_range(cursor);
    const int32_t row = appended ? collection->cl_cardinality + 1 : cursor->position;
    int32_t error = 0;
    coll_change *entry = new_changelog(collection, row, coll_inserted, data, length, &error);
    if (!entry)
        return error;
    const int32_t added = qvt_coll_get_newlen(collection, entry);
    if ((error = check_length(collection, added)) != 0) {
        free(entry);
        return error;
    }
    coll_change *at = cursor->change;
    if (appended)
        changelogs(collection, entry, 0, nullptr);
    else
        changelogs(collection, entry, !at || at->ch_rownum >= row, at);
    raise_rows(entry->ch_next, 1);
    collection->cl_len += added;
    ++collection->cl_cardinality;
    add_to_index(collection, {static_cast<const unsigned char *>(entry->ch_newrow), added});
    end_insert(cursor);
    seat_after_insert(cursor, entry, appended);
    return 0;
}

int32_t cursor_delete(coll_cursor *cursor) {
    coll_rec *collection = cursor->collection;
    if (!collection)
        return err_coll_no_element;
    if (!in_range(cursor))
        return coll_end;
    if (another_cursor_there(cursor))
        return err_coll_delete_shared;
    element removed;
    int32_t error = check_entry(cursor);
    if (error || (error = element_at(cursor, &removed)) != 0)
        return error;
    const int32_t row = cursor->position;
    coll_change *later;
    if (cursor->passed == 0 && !(cursor->change->ch_flag & CHANGELOG_WITH_DATA)) {
        later = cursor->change->ch_next;
        free(changelogs(collection, nullptr, 3, cursor->change));
    } else {
        coll_change *entry = alloc_changelog(row, coll_deleted, 0, &error);
        if (!entry)
            return error;
        put_at_cursor(cursor, entry);
        later = entry->ch_next;
    }
    raise_rows(later, -1);
    collection->cl_len -= removed.length;
    --collection->cl_cardinality;
    end_change(cursor);
    for (coll_cursor *other = collection->cl_curs; other; other = other->next)
        seat(other, other->position - (other->position > row ? 1 : 0));
    cursor->flags |= coll_stay;
    return 0;
}

int32_t cursor_update(coll_cursor *cursor, const void *data, int32_t length) {
    coll_rec *collection = cursor->collection;
    if (!collection)
        return err_coll_no_element;
    if (!in_range(cursor))
        return coll_end;
    if (another_cursor_there(cursor))
        return err_coll_update_shared;
    if (collection->cl_isfixed && length != collection->cl_elsize)
        return err_coll_element_size;
    element old;
    int32_t error = check_entry(cursor);
    if (error || (error = element_at(cursor, &old)) != 0)
        return error;
    if (cursor->passed && collection->cl_isfixed) {
        error = update_in_block(cursor, data, length);
        if (!error)
            end_change(cursor);
        return error;
    }
    const int32_t kind = cursor->passed ? coll_updated : cursor->change->ch_modtype;
    coll_change *entry = new_changelog(collection, cursor->position, kind, data, length, &error);
    if (!entry)
        return error;
    const int64_t grown = int64_t{qvt_coll_get_newlen(collection, entry)} - old.length;
    if ((error = check_length(collection, grown)) != 0) {
        free(entry);
        return error;
    }
    put_at_cursor(cursor, entry);
    collection->cl_len += static_cast<int32_t>(grown);
    end_change(cursor);
    for (coll_cursor *other = collection->cl_curs; other; other = other->next)
        seat(other, other->position);
    return 0;
}
