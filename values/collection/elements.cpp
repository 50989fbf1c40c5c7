#include "values/collection/elements.h"

#include "base/byte_order.h"

#include <kestrion/error_numbers.h>
#include <kestrion/value_types.h>

#include <string.h>

namespace kestrion {

namespace {

constexpr int32_t binary_header = 5; // NULL byte and 32-bit length

// The first bytes of the NULL form of a code's elements.
struct null_form {
    uint8_t code;
    uint8_t size;   // bytes that decide
    uint8_t first;  // value of the first of them
    uint8_t others; // value of the others
};

constexpr null_form null_forms[] = {
    {sql_char, 1, 0, 0},
    {sql_nchar, 1, 0, 0},
    {sql_smallint, 2, 0x80, 0},
    {sql_integer, 4, 0x80, 0},
    {sql_serial, 4, 0x80, 0},
    {sql_date, 4, 0x80, 0},
    {sql_smallfloat, 4, 0xFF, 0xFF},
    {sql_float, 8, 0xFF, 0xFF},
    {sql_decimal, 2, 0, 0},
    {sql_money, 2, 0, 0},
    {sql_datetime, 2, 0, 0},
    {sql_interval, 2, 0, 0},
    {sql_varchar, 2, 1, 0},
    {sql_nvarchar, 2, 1, 0},
    {sql_int8, 2, 0, 0},
    {sql_serial8, 2, 0, 0},
    {sql_bigint, 8, 0x80, 0},
    {sql_bigserial, 8, 0x80, 0},
    {sql_boolean, 1, 0xFF, 0},
    {coll_set, 3, 0, 1}, // the length 1 and the NULL byte
    {coll_multiset, 3, 0, 1},
    {coll_list, 3, 0, 1},
    {coll_row, 3, 0, 1},
    {coll_any, 3, 0, 1},
};

// Binary values of a variable length begin with their NULL byte, and so does what has no row above.
constexpr null_form binary_null = {sql_variable_udt, 1, 1, 0};

const null_form &form_of(int code) {
    for (const null_form &form : null_forms) {
        if (form.code == code)
            return form;
    }
    return binary_null;
}

// Texts of a varying length lie bare in a block, so that only the whole form is NULL.
bool must_be_whole(int code) { return code == sql_varchar || code == sql_nvarchar; }

} // namespace

bool is_text(int code) {
    return code == sql_char || code == sql_nchar || code == sql_varchar || code == sql_nvarchar ||
           code == sql_lvarchar;
}

const coll_field *field_at(const coll_rec *collection, int32_t position) {
    const coll_type *type = type_in_force(collection);
    return type ? qvt_coll_field(type, kind_of(type) == coll_row ? position : 1) : nullptr;
}

int32_t fixed_element_size(const coll_type *type) {
    if (kind_of(type) == coll_row || type->count != 1)
        return 0;
    const coll_field *field = qvt_coll_field(type, 1);
    const int32_t length = field->length;
    switch (code_of(field)) {
    case sql_boolean:
        return 1;
    case sql_smallint:
        return 2;
    case sql_integer:
    case sql_serial:
    case sql_date:
    case sql_smallfloat:
        return 4;
    case sql_float:
    case sql_bigint:
    case sql_bigserial:
        return 8;
    case sql_int8:
    case sql_serial8:
        return 10;
    case sql_decimal:
    case sql_money:
    case sql_datetime:
    case sql_interval:
        return ((length >> 8) + (length & 1) + 3) >> 1;
    case sql_char:
    case sql_nchar:
    case sql_fixed_udt:
        return length ? length : -1;
    default:
        return 0;
    }
}

bool is_null_element(const coll_field *field, element value) {
    const null_form &form = form_of(code_of(field));
    const int32_t decides = value.length < form.size ? value.length : form.size;
    if (decides == 0 || value.bytes[0] != form.first)
        return false;
    if (is_nested(form.code))
        return value.length >= 3 && value.bytes[2] == 1;
    if (must_be_whole(form.code) && value.length != form.size)
        return false;
    for (int32_t i = 1; i < decides; ++i) {
        if (value.bytes[i] != form.others)
            return false;
    }
    return true;
}

int32_t null_form_size(const coll_field *field, int32_t fixed_size) {
    if (fixed_size)
        return fixed_size;
    const null_form &form = form_of(code_of(field));
    return &form == &binary_null ? binary_header : form.size;
}

void write_null_form(const coll_field *field, unsigned char *bytes, int32_t size) {
    const null_form &form = form_of(code_of(field));
    memset(bytes, 0, static_cast<size_t>(size));
    const int32_t written = size < form.size ? size : form.size;
    memset(bytes, form.others, static_cast<size_t>(written));
    if (written)
        bytes[0] = form.first;
}

element_key key_of(const coll_field *field, element value) {
    element_key key = {value.bytes, static_cast<size_t>(value.length),
                       is_null_element(field, value)};
    if (key.is_null) {
        key.length = 0;
    } else if (is_text(code_of(field))) {
        while (key.length && key.bytes[key.length - 1] == ' ')
            --key.length;
    } else if (nested_layout layout;
               is_nested(code_of(field)) && read_nested(value.bytes, value.length, layout)) {
        key.bytes += layout.flags_at;
        key.length = static_cast<size_t>(layout.length - layout.flags_at);
    }
    return key;
}

int compare_keys(const element_key &a, const element_key &b) {
    if (a.is_null != b.is_null)
        return a.is_null ? -1 : 1;
    const size_t common = a.length < b.length ? a.length : b.length;
    if (const int order = common ? memcmp(a.bytes, b.bytes, common) : 0)
        return order;
    return (a.length > b.length) - (a.length < b.length);
}

int32_t flags_offset(size_t address) { return 3 + static_cast<int32_t>((0 - (address + 3)) & 7); }

bool read_nested(const unsigned char *bytes, int64_t room, nested_layout &layout) {
    if (room < 3)
        return false;
    const int64_t stated = load_big_endian<uint16_t>(bytes);
    if (bytes[2] == 1) {
        layout = {true, false, 3, 3, 3, 0};
        return stated == 1;
    }
    const int32_t at = flags_offset(reinterpret_cast<size_t>(bytes));
    if (at + 4 > room)
        return false;
    const uint32_t flags = load_big_endian<uint32_t>(bytes + at);
    const bool long_form = flags & nested_long;
    const int32_t body = at + (long_form ? 8 : 4);
    if (body > room)
        return false;
    const int64_t length = (long_form ? load_big_endian<uint32_t>(bytes + at + 4) : stated) + 2;
    if (length < body || length > room)
        return false;
    layout = {false, long_form, at, body, static_cast<int32_t>(length), flags};
    return true;
}

void copy_nested(unsigned char *destination, const unsigned char *bytes,
                 const nested_layout &layout, int32_t size) {
    if (layout.is_null) {
        memcpy(destination, bytes, 3);
        return;
    }
    const int32_t at = flags_offset(reinterpret_cast<size_t>(destination));
    memcpy(destination, bytes, 3);
    memset(destination + 3, 0, static_cast<size_t>(at - 3));
    memcpy(destination + at, bytes + layout.flags_at, static_cast<size_t>(size - at));
    if (layout.long_form)
        store_big_endian(static_cast<uint32_t>(size - 2), destination + at + 4);
    else
        store_big_endian(static_cast<uint16_t>(size - 2), destination);
}

bool block_element(const coll_rec *collection, const unsigned char *location, bool nested,
                   element *value) {
    if (!location)
        return false;
    if (collection->cl_isfixed) {
        *value = {location, collection->cl_elsize};
        return true;
    }
    const int64_t table = collection->cl_datalen - 4 * (collection->cl_blockcount + 1);
    const uint32_t start = load_big_endian<uint32_t>(location);
    const uint32_t next = load_big_endian<uint32_t>(location - 4);
    const int64_t end = next == UINT32_MAX ? table : next;
    if (start > end || end > table)
        return false;
    *value = {collection->cl_data + start, static_cast<int32_t>(end - start)};
    nested_layout layout;
    if (!nested)
        return true;
    if (!read_nested(value->bytes, value->length, layout))
        return false;
    value->length = layout.length;
    return true;
}

int32_t element_at(const coll_cursor *cursor, element *value) {
    const coll_rec *collection = cursor->collection;
    if (cursor->passed == 0) {
        const coll_change *entry = cursor->change;
        if (!entry || entry->ch_modtype == coll_deleted)
            return err_coll_no_element;
        *value = {static_cast<const unsigned char *>(entry->ch_newrow),
                  qvt_coll_get_newlen(collection, entry)};
        return 0;
    }
    const coll_field *field =
        collection->cl_isfixed ? nullptr : field_at(collection, cursor->position);
    if (!field && !collection->cl_isfixed)
        return err_coll_no_type;
    if (!block_element(collection, cursor->location, field && is_nested(code_of(field)), value))
        return cursor->location ? err_coll_element_size : err_coll_no_element;
    return 0;
}

} // namespace kestrion
