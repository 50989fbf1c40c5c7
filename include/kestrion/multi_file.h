// The text form of multi tables in object files: one reader and one writer.
//
//     table      := max_len SP min_len SP flags SP default NL (plain | compressed)
//     plain      := has_flags SP has_data NL [flag array] [data array] child{...}
//     compressed := flag_count SP data_count NL flag array{...} data array{...} node
//     node       := has_flags SP has_data SP flag_index SP data_index NL child{...}
//     array      := { start L R entry{L} NL } "0000000" NL
//
// Integers are decimal. An array's line starts with two, three and three hexadecimal digits; its L
// entries fill R blocks from the index `start`. Children follow their node in ascending byte order
// of the flag entries 1. Flag entries have two digits; data and the default are the caller's.
//
// Example: the bytes 00-7F with the datum 0100, default 0000
//
//     1 1 1 0000
//     1 1
//     0000108004
//     0000000
//     000010800100
//     0000000
//
// Files are hostile input: every count, index and depth is checked, so that lookups need no checks.

#pragma once

#include <kestrion/multi.h>

#include <stdio.h>

// Reads one datum of `data_size` bytes. Returns 0, or anything else to refuse the file.
typedef int (*multi_datum_reader)(FILE *stream, void *datum, uint32_t data_size);
// Writes one datum.
typedef void (*multi_datum_writer)(FILE *stream, const void *datum);

#ifdef __cplusplus
extern "C" {
#endif

// Reads a table into `table`, which was just made by `_gl_create_multi` with the right data_size;
// the default datum is replaced by the file's. Returns 0, or -1 with table->err
// GLS_ERR_TABLE_LENGTH when the file's max_len is above `greatest_len`, else GLS_ERR_NO_MEMORY; the
// table is then empty and good for `_gl_free_multi` only.
int _gl_fscanf_multi(FILE *stream, multi_arr *table, int32_t greatest_len,
                     multi_datum_reader reader);

// Writes a table, in the compressed form when its arrays are shared; `single_byte_exists` is
// applied to it first. The caller asks the stream whether all was written.
void _gl_fprintf_multi(FILE *stream, multi_arr *table, multi_datum_writer writer);

// A 16-bit datum of four hexadecimal digits, in the byte order of the machine. data_size is 2.
int ub2_reader(FILE *stream, void *datum, uint32_t data_size);
void ub2_writer(FILE *stream, const void *datum);

#ifdef __cplusplus
}
#endif
