// Walking and changing collections.
//
//     coll_cursor cursor = {0};
//     qvt_coll_open(&list, &cursor);
//     void *data = nullptr;
//     int32_t length;
//     while (qvt_coll_next(&list, &cursor, &data, &length) == 0) {
//         ...
//         data = nullptr; // ask for the element itself again, not for a copy
//     }
//     qvt_coll_close(&list, &cursor);
//
// Positions start at 1; 0 is before the first element. After a delete the cursor is on the element
// that followed, and the next qvt_coll_next yields that one; after a delete at the end it is at
// cardinality + 1. Another cursor keeps its element when an earlier one comes or goes.

#pragma once

#include <kestrion/collection.h>

#include <assert.h>
#include <stdint.h>

enum { coll_end = 100 };         // no such element, end of the collection
enum { coll_at_cursor = -5999 }; // position: at the cursor's row
enum coll_whence { CSEEK_SET, CSEEK_CUR, CSEEK_END };

enum coll_change_kind { coll_inserted, coll_updated, coll_deleted };

// Bits of ch_flag.
enum { CHANGELOG_WITH_DATA = 1 }; // the entry replaces or hides an element of the block

// A change. The element's bytes follow in the same allocation.
struct coll_change {
    int32_t ch_rownum;    // position as of now; a delete has that of the element which follows it
    int32_t ch_modtype;   // coll_change_kind
    void *ch_newrow;      // the element
    int32_t ch_newrowlen; // bytes of it
    uint32_t ch_flag;     // CHANGELOG_WITH_DATA; 16, or 32 for a kind of 3, since it was made
    coll_change *ch_next; // null at the end
};
static_assert(sizeof(coll_change) == 32, "elements keep their alignment");

enum { coll_stay = 4 }; // flag of a cursor: the next qvt_coll_next does not move

struct coll_cursor {
    int32_t position; // 1 based, 0 before the first
    unsigned char
        *location; // element of the block passed last, or its offset in the table; null: none
    coll_rec *collection; // null when the cursor is closed
    coll_change *change;  // log entry passed last, null for none
    uint32_t flags;       // coll_stay
    coll_cursor *next;    // next cursor of the collection
    int32_t passed;       // elements of the block since `change`; 0: on `change` itself
};
static_assert(sizeof(coll_cursor) == 56, "stated size");

#ifdef __cplusplus
extern "C" {
#endif

// Errors  err_coll_cursor_open when it is open on this collection. The options are ignored.
int32_t qvt_coll_open(coll_rec *collection, coll_cursor *cursor);
int32_t qvt_coll_open_with_options(coll_rec *collection, coll_cursor *cursor, int32_t options);

// Closes and clears the cursor. Returns 0, or -1 when it is not open on this collection.
int32_t qvt_coll_close(coll_rec *collection, coll_cursor *cursor);

// Moves to the next element. With a null *data the element itself is handed out, else it is copied
// there: there must be room for the longest element, and 8 bytes more for one that is a collection.
// Returns 0 or coll_end.
// Errors  err_coll_null, err_coll_no_element, err_coll_element_size for a damaged element.
int32_t qvt_coll_next(coll_rec *collection, coll_cursor *cursor, void **data, int32_t *length);

// Inserts an element: at the end for position 0 and beyond the end, at a position above 0 and at the
// cursor's row for coll_at_cursor; only a LIST has positions. The cursor may be null; otherwise it is
// then on the new element. A null `data` is a NULL element. A SET that has the element stays as it is.
// Returns 0, or coll_end for another position below 0.
// Errors  err_coll_null, err_coll_no_type, err_coll_position, err_coll_element_size,
//         err_coll_null_element, err_coll_no_memory.
int32_t qvt_coll_insert(coll_rec *collection, coll_cursor *cursor, const void *data, int32_t length,
                        int32_t position);

// Change or remove the element at the cursor, or for a position above 0 the one there. `data` may be
// the element itself. An element of a fixed size is changed in the block. coll_end: no such element.
// Errors  as above; err_coll_update_shared and err_coll_delete_shared when another cursor is there.
int32_t qvt_coll_update(coll_rec *collection, coll_cursor *cursor, const void *data, int32_t length,
                        int32_t position);
int32_t qvt_coll_delete(coll_rec *collection, coll_cursor *cursor, int32_t position);

// Moves to an element: `n` from before the first (CSEEK_SET), from here (CSEEK_CUR), or from the last
// (CSEEK_END). Returns 0, or coll_end with the cursor as it was.
int32_t cursor_seek(coll_cursor *cursor, int32_t n, int32_t whence);

// The changes themselves, without the rules of kinds and NULLs.
int32_t cursor_insert(coll_cursor *cursor, const void *data, int32_t length, int32_t at_end);
int32_t cursor_update(coll_cursor *cursor, const void *data, int32_t length);
int32_t cursor_delete(coll_cursor *cursor);

// Links or unlinks an entry of the log: operation 0 inserts after `reference`, or by its row without
// one; 1 inserts before it, or at the head; 2 puts the entry in the place of `reference`, which the
// caller releases; any other takes `reference` out. Returns the removed entry, else `entry`; null when
// `reference` is not in the log.
coll_change *changelogs(coll_rec *collection, coll_change *entry, int32_t operation,
                        coll_change *reference);

// A cleared entry with room for `length` bytes, and one with a copy of the element. Null on failure,
// with err_coll_no_memory or err_coll_element_size in *error.
coll_change *alloc_changelog(int32_t row, int32_t kind, int32_t length, int32_t *error);
coll_change *new_changelog(coll_rec *collection, int32_t row, int32_t kind, const void *data,
                           int32_t length, int32_t *error);

// Drops all changes from the list; open cursors go before the first element. Count and length stay.
void free_changelogs(coll_rec *collection);

// Length of an entry's element; one that is a collection has its own.
int32_t qvt_coll_get_newlen(const coll_rec *collection, const coll_change *entry);

#ifdef __cplusplus
}
#endif
