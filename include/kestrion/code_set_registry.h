// The registry of code sets: names and their numbers.
//
// A code-set number is 16 bits. Numbers below E000 are CCSID values, those from E000 up are the
// engine's own, for other code sets; E000 itself (57344) means unknown.
//
// The registry is a text file, found by the path search as ("registry", "cm", "3"):
//
//     # a comment
//     8859-1 819   the rest of the line is ignored
//     utf8 57372
//
// Names are graphic characters, at most 21 of them, in any case; numbers are decimal. The first
// match in the order of the file wins. A name of 22 characters ends the reading, and what was read
// so far counts; a bad number discards the file. Where the file is missing or bad, a built-in table
// serves.
//
// The cache is process-wide and nothing locks it: the first look-up must come before any thread.

#pragma once

#include <stddef.h>
#include <stdint.h>

enum {
    gl_unknown_code_set = 57344, // 0xE000
    gl_code_set_name_size = 22   // 21 characters and the terminator
};

typedef struct gls_registry_node gls_registry_node;
// One name of the registry file.
struct gls_registry_node {
    char *name;              // lower case, in a block of gl_code_set_name_size; owned
    uint16_t number;         // code-set number
    gls_registry_node *next; // next line of the file
};

// One row of the built-in table, which ends at a null name.
typedef struct gls_registry_row {
    const char *name;
    uint32_t number;
} gls_registry_row;

#ifdef __cplusplus
extern "C" {
#endif

// At most one of these is set: the list of the file, or the built-in table.
extern gls_registry_node *gls_registry_list_cache;
extern const gls_registry_row *gls_registry_array_cache;
extern const gls_registry_row gls_canned_registry[];

// Reads the registry into the cache: from `regfile` when it is given and not empty, else by search.
// When that fails the built-in table takes its place, with GLS_ERR_NO_REGISTRY (no file),
// GLS_ERR_MALFORMED (bad file) or GLS_ERR_NO_MEMORY, which leaves a list that is there. With a null
// context the word is `temperr`.
void gl_cache_registry(void *ctx, const char *regfile);
// Drops the cache.
void gl_free_registry_cache(void);

// Returns the number of the code set `name`, of which at most 21 characters count, in any case. A
// name that the registry lacks may be a decimal number below 65536. Without a cache the look-up
// fills it; but a `regfile` is read from its top, and so is the file without memory for a cache.
// Returns gl_unknown_code_set with GLS_ERR_SPECIFIER (unknown name), GLS_ERR_NO_REGISTRY (no file),
// GLS_ERR_MALFORMED (bad file) or GLS_ERR_NO_MEMORY.
// Example "Latin-1" -> 819, "819" -> 819.
int gl_cs_name2cs_num(void *ctx, const char *name, const char *regfile);

// CCSID of a code-set number: itself below E000, a fixed table above it, else 0.
int gl_cs_nums2ccsid(void *ctx, int number);
// Code-set number of a CCSID. 921 stays 921, though E02E maps to it; E000 and above give 0.
int gl_ccsid2cs_nums(void *ctx, int ccsid);

#ifdef __cplusplus
}
#endif
