// Type information of a collection: what kind it is and what its elements, or a row's fields, are.
//
// A block of type information is a header of 720 bytes followed by `count` descriptors of 416. SET,
// MULTISET and LIST have one descriptor, that of the element; a ROW has one for each field. Names are
// terminated by a zero byte only where they are shorter than their field. The unnamed words travel
// with stored collections; they are kept as they were read.
//
//     LIST(INTEGER NOT NULL)      kind 21, one field of type 2 | coll_field_not_null
//     ROW(a INTEGER, b CHAR(20))  kind 22, fields "a" of type 2 and "b" of type 0, length 20

#pragma once

#include <assert.h>
#include <stdint.h>

typedef struct coll_rec coll_rec; // <kestrion/collection.h>

enum coll_kind { coll_set = 19, coll_multiset = 20, coll_list = 21, coll_row = 22, coll_any = 23 };

enum {
    coll_name_size = 128,        // bytes of a name field
    coll_old_name_size = 18,     // the same in the stored form of older servers
    coll_field_not_null = 0x100, // bit of coll_field.type
};

typedef struct coll_type {
    uint32_t extended_id;        // number of a named type
    uint16_t kind;               // coll_kind in the low byte; stored whole
    char name[coll_name_size];   // of a named type, else empty
    uint16_t count;              // descriptors that follow, 0 to 65535
    unsigned char reserved[584]; // zero
} coll_type;
static_assert(sizeof(coll_type) == 720, "stated size");

typedef struct coll_field {
    uint16_t words[4];               // as stored
    char name[coll_name_size];       // of a row's field
    uint16_t word5;                  // as stored
    uint16_t type;                   // SQL type code in the low byte, coll_field_not_null
    uint16_t length;                 // bytes, precision and scale, or qualifier, as the type needs
    uint32_t extended_id;            // 1 lvarchar, 5 boolean, for the types 40 and 41
    uint16_t words2[2];              // as stored
    char type_name[coll_name_size];  // of a named type, else empty
    uint16_t word8;                  // as stored
    char type_owner[coll_name_size]; // as stored
    uint16_t word9;                  // as stored
    uint32_t word10;                 // as stored
} coll_field;
static_assert(sizeof(coll_field) == 416, "stated size");

#ifdef __cplusplus
extern "C" {
#endif

// Zeroed type information with room for `count` descriptors, from malloc; release it with free().
// Null without memory or for a count that is not 0 to 65535.
coll_type *qvt_coll_new_type(int32_t kind, int32_t count);

// The descriptor of field 1 to count; null outside.
coll_field *qvt_coll_field(const coll_type *type, int32_t number);

// SQL text of a type, terminated: "LIST(INTEGER NOT NULL)". A named type is its name alone; a name
// that is not a plain identifier is in double quotes. Returns the length without the terminator, or
// -1 when the buffer is too small or there is no type.
int32_t qvt_cltypetostr(const coll_type *type, char *buffer, int32_t size);

// The same of the type in force of a collection.
int32_t cltypetostr(const coll_rec *collection, char *buffer, int32_t size);

// The same as a new text, to be released with free(); null without memory or without a type.
char *qvt_cltype2str(const coll_type *type);

#ifdef __cplusplus
}
#endif
