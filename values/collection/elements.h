// Elements of a collection: their sizes, their NULL forms, and the layout of those that are
// collections themselves.

#pragma once

#include <kestrion/collection_cursor.h>

#include <stddef.h>
#include <stdint.h>

namespace kestrion {

struct element {
    const unsigned char *bytes;
    int32_t length;
};

// What equality goes by: equal elements have equal keys and the reverse.
struct element_key {
    const unsigned char *bytes;
    size_t length;
    bool is_null;
};

// The layout of an element that is a collection. One that is NULL has 3 bytes and no flags.
struct nested_layout {
    bool is_null;
    bool long_form;   // has the 32-bit length
    int32_t flags_at; // offset of the flags
    int32_t body_at;  // offset of what follows flags and 32-bit length
    int32_t length;   // bytes of the whole
    uint32_t flags;
};

enum nested_flag : uint32_t {
    nested_hashed = 1,
    nested_embedded = 4, // the word after the flags is the length of an embedded descriptor
    nested_whole = 8,
    nested_plain = 0x10,
    nested_long = 0x20, // a 32-bit length follows the flags
};

inline const coll_type *type_in_force(const coll_rec *collection) {
    return collection->cl_typed ? collection->cl_typeinfo : collection->cl_svr_typeinfo;
}

inline int kind_of(const coll_type *type) { return type->kind & 0xFF; }

inline int code_of(const coll_field *field) { return field->type & 0xFF; }

inline bool is_nested(int code) { return code >= coll_set && code <= coll_any; }

bool is_text(int code);

// The descriptor of the element at a position, which only in a ROW depends on it; null for none.
const coll_field *field_at(const coll_rec *collection, int32_t position);

// Bytes of every element of a type whose elements have one size; 0 for variable sizes, -1 for a type
// that cannot be.
int32_t fixed_element_size(const coll_type *type);

// NULL forms.
bool is_null_element(const coll_field *field, element value);
int32_t null_form_size(const coll_field *field, int32_t fixed_size);
void write_null_form(const coll_field *field, unsigned char *bytes, int32_t size);

element_key key_of(const coll_field *field, element value);
int compare_keys(const element_key &a, const element_key &b);

// Reads the layout of an element in bytes[0..room). False for one that does not fit or is damaged.
bool read_nested(const unsigned char *bytes, int64_t room, nested_layout &layout);

// Offset of the flags of an element at this address.
int32_t flags_offset(size_t address);

// Bytes of an element when its flags are at this offset.
inline int32_t nested_size(const nested_layout &layout, int32_t flags_at) {
    return layout.is_null ? layout.length : layout.length - layout.flags_at + flags_at;
}

// Copies an element so that it has `size` bytes at its new address, its length included.
void copy_nested(unsigned char *destination, const unsigned char *bytes,
                 const nested_layout &layout, int32_t size);

// The element that a cursor is on, null descriptor allowed. 0 or an error number.
int32_t element_at(const coll_cursor *cursor, element *value);

// Puts a cursor at a position after a change, as if it had been sought; one that is beyond the end
// stays there without an element. Its flags stay.
void seat(coll_cursor *cursor, int32_t position);

// Gives the other copies of the record that cursors belong to its present state. A copy keeps its own
// owner bits.
void refresh_copies(const coll_rec *changed);

// The element of the block at a cursor's location; false when the location or the element is damaged.
bool block_element(const coll_rec *collection, const unsigned char *location, bool nested,
                   element *value);

} // namespace kestrion
