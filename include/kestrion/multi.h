// Multi tables: everything that is keyed by a multibyte character.
//
// A table is a 256-way tree over the bytes of a sequence of one to four bytes, with a datum of
// fixed size at each complete sequence and a default datum for the rest. Character classes, case
// maps and collation rows of a locale, and both directions of a conversion, are multi tables.
//
//     root      flag_bytes  41: 4      the sequence 41 ends here, its datum is data[41]
//                           A1: 1      goes on in children[child_slot[A1]]
//     child     flag_bytes  B2: 4      the sequence A1 B2 ends here
//
// The tree is what files and compilers work with. A complete table of 16-bit data also has a flat
// transition table, made by kestrion::multi_flatten: one four-byte step for each (state, byte), so
// that a lookup is one indexed load per byte, and the last load already holds the datum.
// Every change of a table drops it, and all lookups give the same answers without it.
//
// A lookup never changes a table: a complete one may be read from many threads.
//
// Lookups that take no limit are for terminated text. They never read beyond the terminator of
// `min_len` zero bytes, since `_gl_fscanf_multi` refuses tables that would lead them there. A
// caller that looks one text up in several tables makes sure that all have the same `min_len`.

#pragma once

#include <kestrion/char_desc.h>
#include <kestrion/ext_funcs.h>

#include <stddef.h>
#include <stdint.h>

enum {
    gl_bytes = 256 // values of a byte: entries of each array
};

// Entries of a flag array.
enum multi_flag {
    MULTI_NONE = 0,  // no such sequence
    MULTI_CHILD = 1, // goes on in a child
    MULTI_END = 4    // a sequence ends here
};

// Bits of multi_arr::flags.
enum {
    multi_has_flags = 1, // always set
    multi_compressed = 2 // equal arrays are kept once
};

typedef struct multi_node multi_node;
struct multi_node {
    int32_t reserved;          // 0
    int32_t child_count;       // children in use; also the next index to give out
    int32_t flag_index;        // position in shared_flags, -1 when none
    int32_t data_index;        // position in shared_data, -1 when none
    unsigned char *flag_bytes; // 256 multi_flag values by next byte; null: no sequences here
    unsigned char *child_slot; // 256 indexes in `children` by next byte, or null
    unsigned char *data;       // 256 slots of 1 << shift bytes; null: all data are the default
    multi_node **children;     // 256 when built by inserts, child_count when read from a file
};

// One step of the flat table.
typedef struct multi_step {
    uint16_t datum; // at the end of a sequence
    uint16_t next;  // multi_stop, multi_end, or the next state
} multi_step;

enum {
    multi_stop = 0,       // no such sequence
    multi_end = 1,        // a sequence ends here; as a state, nothing follows
    multi_first_state = 2 // states below the root; the root is state 0
};

typedef struct multi_arr {
    uint32_t data_size;            // bytes of one datum
    int32_t max_len;               // longest sequence; 0 at creation
    int32_t min_len;               // shortest sequence; 4 at creation
    int32_t flags;                 // multi_has_flags, multi_compressed
    int32_t data_count;            // data arrays
    int32_t flag_count;            // flag arrays, the root's included
    int32_t offset_count;          // child_slot arrays
    int32_t err;                   // of the last load: 0, GLS_ERR_NO_MEMORY, GLS_ERR_TABLE_LENGTH
    multi_node *root;              // never null
    unsigned char *default_datum;  // data_size bytes; owned
    int32_t shift;                 // slots of `data` are 1 << shift bytes, not below data_size
    int32_t reserved;              // 0
    unsigned char **shared_flags;  // compressed: the flag_count distinct flag arrays
    unsigned char **shared_data;   // compressed: the data_count distinct data arrays
    int32_t *shared_flag_children; // compressed: entries MULTI_CHILD of each shared flag array
    const multi_step *walk;        // the flat table, [state << 8 | byte]; null when not made
} multi_arr;

typedef struct cv_rec cv_rec; // <kestrion/conversion.h>

#ifdef __cplusplus
extern "C" {
#endif

// Makes an empty table with a copy of the default datum. multi_has_flags is set whatever `flags`
// says. Returns null without memory.
multi_arr *_gl_create_multi(uint32_t data_size, int32_t flags, const void *default_datum);
// Releases a table and all that it holds; null is ignored.
void _gl_free_multi(multi_arr *table);

// Inserts a sequence of 1 to 4 bytes. A null datum only makes the sequence valid. Inserting again
// overwrites the datum. Returns 0, or -1 when one sequence would be the start of another, for a
// wrong length, a compressed table, a 257th child or without memory; lookups are then unchanged.
int _gl_insert_desc_multi(const gl_char_desc *sequence, const void *datum, multi_arr *table);

// Datum of exactly this sequence, the default where none was stored, or null, with no error set.
const void *_gl_retrieve_desc_multi(const gl_char_desc *sequence, const multi_arr *table);

// Datum of the first character of a terminated text, or null with GLS_ERR_BAD_CHARACTER. `used`
// gets the bytes looked at, on failure too.
const void *_gl_retrieve_text_multi(const char *text, const multi_arr *table, int32_t *used,
                                    void *ctx);
// The same with no count.
const void *_gl_retrieve_text_multi_nl(const char *text, const multi_arr *table, void *ctx);
// Bytes of the first character, or 0 with GLS_ERR_BAD_CHARACTER.
int32_t _gl_retrieve_text_multi_nv(const char *text, const multi_arr *table, void *ctx);

// Looks at no more than `limit` bytes: a walk that wants to go on there is GLS_ERR_SPECIFIER, with
// the bytes looked at; a limit below 1 is the same with 0 bytes.
const void *_gl_retrieve_text_multi_limit(const char *text, const multi_arr *table, int32_t limit,
                                          int32_t *used, void *ctx);
const void *_gl_retrieve_text_multi_limit_nl(const char *text, const multi_arr *table,
                                             int32_t limit, void *ctx);

// Datum of a wide character, or null with GLS_ERR_BAD_CHARACTER. Values below 256 walk `min_len`
// levels, others their own count of bytes when that is larger.
const void *_gl_retrieve_wchar_multi_nl(void *ctx, gl_wchar character, const multi_arr *table);

// Makes every byte a character in a table that holds single bytes and nothing else. Called by
// `_gl_compress_multi` and `_gl_fprintf_multi`.
void single_byte_exists(multi_arr *table);

// Keeps equal arrays once. Returns 0, or -1 without memory, with the table unchanged.
int _gl_compress_multi(multi_arr *table);

int32_t _gl_multi_max_length(const multi_arr *table);
int32_t _gl_multi_min_length(const multi_arr *table);
int32_t _gl_multi_err(const multi_arr *table);
// Counts of data, flag and offset arrays; returns the last.
int32_t _gl_multi_node_count(const multi_arr *table, int32_t *data, int32_t *flag, int32_t *offset);

#ifdef __cplusplus
}
#endif
