// Collections: SET, MULTISET, LIST and ROW values on the client's side.
//
// The elements are one packed block that stays as it came. Changes lie beside it in a log that is in
// the order of the positions; cursors walk block and log as one (<kestrion/collection_cursor.h>).
//
//     elements   one, two, three              block  "one" "two" "three" and their table
//     delete the second, insert "X" at 3      log    delete at 2, insert at 3
//     walked                                  one, three, X
//
// Block of elements that all have the same size: one after the other. Any other block has the
// elements from its front and a table of 32-bit big-endian offsets that grows downward from its end:
//
//     6f6e65 7468726565 464f555221   ffffffff 00000008 00000003 00000000
//     one    three      FOUR!        end      third    second   first
//
// Elements that are collections begin with a 16-bit big-endian length of all that follows it and a
// byte that is 1 for NULL. A 32-bit word of flags comes at the first address after them that 8
// divides, then, with flag 0x20, a 32-bit length in the place of the first; then the element's hash
// and its content. Blocks start at addresses that 16 divides.
//
// A record starts zeroed. A plain copy of it, as in a host variable, must clear the two owner bits and
// is never released; it sees later changes only while one of its own cursors is open. Operations return
// 0, another count where stated, or an error number below 0; after an error collection and cursors
// are as they were. A collection and its cursors belong to one thread.

#pragma once

#include <kestrion/collection_type.h>

#include <assert.h>
#include <stdint.h>

typedef struct coll_change coll_change; // <kestrion/collection_cursor.h>
typedef struct coll_cursor coll_cursor;
typedef struct coll_index coll_index; // private

enum coll_flag {
    coll_is_null = 4,
    coll_hash_valid = 0x100,     // cl_hashvalue holds the hash of the elements
    coll_owns_block = 0x1000000, // cl_data is released with the record
    coll_owns_type = 0x2000000,  // cl_svr_typeinfo is released with the record
};

struct coll_rec {
    int32_t reserved;           // zero
    int32_t cl_handle;          // the server's handle
    coll_cursor *cl_curs;       // open cursors
    int32_t cl_len;             // bytes of all elements, or of the block while there is no log
    int32_t cl_cardinality;     // elements, changes included
    int32_t cl_isfixed;         // not 0: every element has cl_elsize bytes
    int32_t cl_elsize;          // bytes of an element when they all have the same
    uint32_t cl_flags;          // coll_flag
    coll_change *cl_lastlog;    // last entry of the log
    coll_change *cl_log;        // first entry of the log
    unsigned char *cl_data;     // the block; null when it is empty
    uint32_t cl_hashvalue;      // see coll_hash_valid
    int32_t cl_datalen;         // bytes of the block
    int16_t cl_typed;           // not 0: cl_typeinfo is the type in force, else cl_svr_typeinfo
    int32_t cl_typelen;         // bytes of the server's type information
    coll_type *cl_svr_typeinfo; // type as the server sent it
    coll_type *cl_typeinfo;     // the program's own type; never released here
    int64_t cl_blockcount;      // elements in the block
    coll_index *cl_index;       // finds the elements of a SET; null until it is needed
    int64_t reserved_word;      // zero
};
static_assert(sizeof(coll_rec) == 120, "stated size");

#ifdef __cplusplus
extern "C" {
#endif

// Bits of what is traced on standard error: 1 next and insert, 4 seek, 8 new log entries.
extern int32_t Qvt_Debug;

// Makes `block` of `length` bytes the elements of a collection of this type. Both stay the caller's.
// Clears log, hash and NULL flag; open cursors stay open, before the first element.
// Errors  err_coll_no_type; err_coll_element_size for a block that is not whole.
int32_t qvt_coll_init(coll_rec *collection, const coll_type *type, void *block, int32_t length);

// Releases the log and what the record owns; open cursors are closed. The record is zeroed, but for
// the program's own type.
void qvt_coll_free(coll_rec *collection);

// A deep copy: block, log and type in force. `destination` is zeroed or a collection, whose contents
// are released and whose cursors are closed.
// Errors  err_coll_type when the destination's own type is of another kind; err_coll_no_memory.
int32_t qvt_coll_copy(coll_rec *destination, const coll_rec *source);

// Writes the elements as they are now into a new block and empties the log. Cursors keep their places.
int32_t qvt_coll_fold(coll_rec *collection);

// Reads a stored collection. `new_server` is gget_dbver(): names of 128 bytes, else of 18. Old contents
// are released once the new ones are complete; a type of the program's own stays. Elements of type 40
// or 41 with the extended ids 5 and 1 become boolean and lvarchar.
//
//     LIST of the integers 5 and 6, handle 7: 574 bytes
//     0000023a | id, kind, name, count | descriptor | 00000007 00000008 00000000 00000005 00000006
//
// ldcollection trusts the length in the first 4 bytes; qvt_coll_load takes the bytes that are there.
// Errors  err_coll_no_type damaged type information; err_coll_element_size damaged block or lengths;
//         err_coll_type for another kind than the program's own type; err_coll_no_memory.
int32_t ldcollection(const void *buffer, coll_rec *collection, int32_t new_server);
int32_t qvt_coll_load(const void *buffer, int32_t size, coll_rec *collection, int32_t new_server);

// Stores a collection with all its changes; the record stays as it is. Returns the bytes written,
// which qvt_coll_stored_size gives beforehand. Both fail alike:
// Errors  err_coll_no_type; err_coll_type for a name longer than 18 bytes in the old form;
//         err_coll_no_memory.
int32_t stcollection(void *buffer, coll_rec *collection, int32_t new_server);
int32_t qvt_coll_stored_size(coll_rec *collection, int32_t new_server);

#ifdef __cplusplus
}
#endif
