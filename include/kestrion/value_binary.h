// Binary values in rows and in programs: variable binary, and blobs.
//
// In a row variable binary is a byte that is 1 for NULL, else 0, the length, most significant byte
// first, and the data:
//
//     "abc"         00 00 00 00 03 61 62 63
//     NULL          01 00 00 00 00
//     boolean true  00 00 00 00 01 01
//
// Lvarchar and boolean columns have this form, too.
//
// A blob is a descriptor; its data lie elsewhere and belong to whoever made them. A row holds the
// descriptor's 112 bytes with the address cleared.

#pragma once

#include <assert.h>
#include <stdint.h>

enum {
    binary_row_header = 5,
    blob_null = 1,         // flags: the value is NULL
    blob_owner = 2,        // flags: the descriptor owns its data
    host_binary_owner = 1, // flags: `data` came from malloc and may be replaced
    host_binary_null = 2,  // flags: the value is NULL
};

// A program's variable of variable length (host types 121 and 124).
typedef struct host_binary {
    uint32_t flags;   // host_binary_owner, host_binary_null
    int32_t length;   // bytes of the value
    int32_t capacity; // bytes at `data`
    void *data;
} host_binary;

typedef struct blob_rec {
    int32_t kind;       // 11 byte, 12 text
    uint32_t flags;     // blob_null, blob_owner
    int32_t status;     // -1 in a program's variable that is NULL
    int32_t reserved;   //
    void *data;         // where the program keeps the data
    uint64_t words[11]; // the keeper's own; stored as they are, so never an address
} blob_rec;

static_assert(sizeof(blob_rec) == 112, "programs hold descriptors of this size");

#ifdef __cplusplus
extern "C" {
#endif

// Writes the row form into column[0..size); with is_null not 0, the form of NULL.
// Returns 0, or err_binary_size (-1821) with the column untouched when it doesn't fit.
int studt(const void *data, int32_t length, int is_null, void *column, int32_t size);

// The same with the count of bytes written as result.
int32_t udtstore(const void *data, int32_t length, int is_null, void *column, int32_t size);

// Finds the data of a row form inside column[0..size).
// data     points into the column; null for NULL.
// is_null  1 or 0.
// Returns 0, or err_binary_size for a form that is longer than the column, with NULL.
int ldudt(const void *column, int32_t size, const void **data, int32_t *length, int16_t *is_null);

// A descriptor into a row and back. What is loaded owns nothing.
// Return 0, or err_binary_size with the target untouched for a column below 112 bytes.
int tblobstore(const blob_rec *blob, void *column, int32_t size);
int tblobload(const void *column, int32_t size, blob_rec *blob);

#ifdef __cplusplus
}
#endif
