// The stored form: type information, a trailer of handle, length and flags, and the block.

#include "base/byte_order.h"
#include "values/collection/block_builder.h"

#include <kestrion/error_numbers.h>
#include <kestrion/value_types.h>

#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr int64_t trailer_size = 12;
constexpr int64_t null_type_size = 550; // type information of a NULL, zeros in every form
constexpr uint32_t stored_null = UINT32_C(0x80000000);
constexpr uint32_t flags_in_memory = coll_owns_block | coll_owns_type | coll_hash_valid;

constexpr int64_t header_size(int32_t name) { return 8 + name; }
constexpr int64_t field_size(int32_t name) { return 30 + 3 * int64_t{name}; }
static_assert(header_size(coll_name_size) == 136 && header_size(coll_old_name_size) == 26);
static_assert(field_size(coll_name_size) == 414 && field_size(coll_old_name_size) == 84);

int32_t name_size(int32_t new_server) { return new_server ? coll_name_size : coll_old_name_size; }

// Reads or writes the parts of type information one after the other; both ways name the same parts, so
// that they cannot differ.
class reader {
public:
    reader(const unsigned char *at, int32_t name) : at_(at), name_(name) {}
    template <typename Unsigned> void integer(Unsigned &value) {
        value = load_big_endian<Unsigned>(at_);
        at_ += sizeof value;
    }
    void name(char *text) {
        memset(text, 0, coll_name_size);
        memcpy(text, at_, static_cast<size_t>(name_));
        at_ += name_;
    }

private:
    const unsigned char *at_;
    int32_t name_;
};

class writer {
public:
    writer(unsigned char *at, int32_t name) : at_(at), name_(name) {}
    template <typename Unsigned> void integer(Unsigned value) {
        store_big_endian(value, at_);
        at_ += sizeof value;
    }
    void name(const char *text) {
        memcpy(at_, text, static_cast<size_t>(name_));
        at_ += name_;
    }
    unsigned char *at() const { return at_; }

private:
    unsigned char *at_;
    int32_t name_;
};

template <typename Way, typename Header> void pass_header(Way &way, Header &type) {
    way.integer(type.extended_id);
    way.integer(type.kind);
    way.name(type.name);
    way.integer(type.count);
}

template <typename Way, typename Field> void pass_field(Way &way, Field &field) {
    for (auto &word : field.words)
        way.integer(word);
    way.name(field.name);
    way.integer(field.word5);
    way.integer(field.type);
    way.integer(field.length);
    way.integer(field.extended_id);
    for (auto &word : field.words2)
        way.integer(word);
    way.name(field.type_name);
    way.integer(field.word8);
    way.name(field.type_owner);
    way.integer(field.word9);
    way.integer(field.word10);
}

// Binary types that stand for a type of their own.
void name_built_in(coll_field &field) {
    const int code = code_of(&field);
    if (code != sql_variable_udt && code != sql_fixed_udt)
        return;
    const unsigned others = field.type & 0xFF00u;
    if (field.extended_id == 5)
        field.type = static_cast<uint16_t>(others | sql_boolean);
    else if (field.extended_id == 1)
        field.type = static_cast<uint16_t>(others | sql_lvarchar);
}

// What the lengths of a stored collection say, once they are known to agree.
struct stored_parts {
    uint16_t count; // fields; 0 only for NULL
    const unsigned char *trailer;
    int32_t block_length;
    uint32_t flags;
};

int32_t find_parts(const unsigned char *bytes, int64_t size, int32_t name, stored_parts *parts) {
    if (size < 4 || int64_t{load_big_endian<uint32_t>(bytes)} > size - 4)
        return err_coll_element_size;
    const int64_t total = load_big_endian<uint32_t>(bytes);
    const int64_t header = header_size(name);
    if (total < header + trailer_size)
        return err_coll_element_size;
    parts->count = load_big_endian<uint16_t>(bytes + 4 + header - 2);
    int64_t type_size = header + parts->count * field_size(name);
    if (parts->count == 0) {
        if (total != null_type_size + trailer_size)
            return err_coll_no_type;
        type_size = null_type_size;
    }
    if (total < type_size + trailer_size)
        return err_coll_element_size;
    parts->trailer = bytes + 4 + type_size;
    const int64_t length = load_big_endian<uint32_t>(parts->trailer + 4);
    if (length > INT32_MAX - 4 || total != type_size + trailer_size + length)
        return err_coll_element_size;
    parts->block_length = static_cast<int32_t>(length);
    parts->flags = load_big_endian<uint32_t>(parts->trailer + 8);
    if (parts->count == 0 && !(parts->flags & (stored_null | coll_is_null)))
        return err_coll_no_type;
    return 0;
}

coll_type *read_type(const unsigned char *bytes, int32_t name, uint16_t count) {
    coll_type *type = qvt_coll_new_type(0, count);
    if (!type)
        return nullptr;
    reader in(bytes, name);
    pass_header(in, *type);
    for (int32_t number = 1; number <= count; ++number) {
        coll_field *field = qvt_coll_field(type, number);
        pass_field(in, *field);
        name_built_in(*field);
    }
    return type;
}

bool is_kind_of_collection(const coll_type *type) {
    const int kind = kind_of(type);
    return is_nested(kind) && (kind == coll_row || type->count == 1);
}

// Builds the loaded record; its block and type are its own from the start.
int32_t read_collection(const unsigned char *bytes, const stored_parts &parts, int32_t name,
                        coll_rec *loaded) {
    loaded->cl_flags = coll_owns_block | coll_owns_type;
    if (parts.count == 0)
        return 0;
    coll_type *type = read_type(bytes + 4, name, parts.count);
    if (!type)
        return err_no_buffer_memory;
    loaded->cl_svr_typeinfo = type;
    if (!is_kind_of_collection(type))
        return err_coll_no_type;
    const auto length = static_cast<size_t>(parts.block_length);
    auto *block = static_cast<unsigned char *>(calloc(1, length + 4));
    if (!block)
        return err_no_buffer_memory;
    memcpy(block, parts.trailer + trailer_size, length);
    loaded->cl_typelen = static_cast<int32_t>(sizeof *type + type->count * sizeof(coll_field));
    const int32_t error = qvt_coll_init(loaded, type, block, parts.block_length);
    if (error || parts.block_length == 0)
        free(block);
    if (!error)
        loaded->cl_flags |= coll_owns_block;
    return error;
}

// Puts the new contents in the place of the old; open cursors stay open before the first element.
void take_over(coll_rec *collection, const coll_rec &loaded) {
    coll_cursor *cursors = collection->cl_curs;
    free_changelogs(collection);
    collection->cl_curs = nullptr;
    qvt_coll_free(collection);
    coll_rec whole = loaded;
    whole.cl_curs = cursors;
    whole.cl_typed = collection->cl_typed;
    whole.cl_typeinfo = collection->cl_typeinfo;
    *collection = whole;
}

bool name_fits(const char *text, int32_t size) {
    return strnlen(text, coll_name_size) <= static_cast<size_t>(size);
}

bool names_fit(const coll_type *type, int32_t size) {
    bool fit = name_fits(type->name, size);
    for (int32_t number = 1; fit && number <= type->count; ++number) {
        const coll_field *field = qvt_coll_field(type, number);
        fit = name_fits(field->name, size) && name_fits(field->type_name, size) &&
              name_fits(field->type_owner, size);
    }
    return fit;
}

int64_t type_part(const coll_rec *collection, int32_t name) {
    if (collection->cl_flags & coll_is_null)
        return null_type_size;
    return header_size(name) + type_in_force(collection)->count * field_size(name);
}

// The block to store, and whether it was made for that.
struct stored_block {
    packed_block block;
    bool made;
};

int32_t block_to_store(const coll_rec *collection, stored_block *out) {
    out->made = collection->cl_log && !(collection->cl_flags & coll_is_null);
    if (out->made)
        return pack_collection(collection, &out->block);
    out->block = {collection->cl_data, collection->cl_datalen};
    if (collection->cl_flags & coll_is_null)
        out->block = {};
    return 0;
}

// Everything that keeps a collection from being stored; 0 when nothing does.
int32_t check_storable(const coll_rec *collection, int32_t name) {
    if (collection->cl_flags & coll_is_null)
        return 0;
    const coll_type *type = type_in_force(collection);
    if (!type || type->count == 0)
        return err_coll_no_type;
    return names_fit(type, name) ? 0 : int32_t{err_coll_type};
}

void write_type(writer &out, const coll_rec *collection) {
    const coll_type *type = type_in_force(collection);
    pass_header(out, *type);
    for (int32_t number = 1; number <= type->count; ++number)
        pass_field(out, *qvt_coll_field(type, number));
}

void write_stored(unsigned char *bytes, const coll_rec *collection, const packed_block &block,
                  int32_t name) {
    const bool null = collection->cl_flags & coll_is_null;
    const int64_t type_size = type_part(collection, name);
    writer out(bytes, name);
    out.integer(static_cast<uint32_t>(type_size + trailer_size + block.length));
    if (null)
        memset(out.at(), 0, static_cast<size_t>(type_size));
    else
        write_type(out, collection);
    writer trailer(bytes + 4 + type_size, name);
    trailer.integer(static_cast<uint32_t>(collection->cl_handle));
    trailer.integer(static_cast<uint32_t>(block.length));
    trailer.integer((collection->cl_flags & ~flags_in_memory) | (null ? stored_null : 0));
    if (block.length)
        memcpy(trailer.at(), block.bytes, static_cast<size_t>(block.length));
}

// Stores into `bytes`, or only measures without them. Returns the count of bytes or an error.
int32_t store(unsigned char *bytes, const coll_rec *collection, int32_t new_server) {
    const int32_t name = name_size(new_server);
    if (const int32_t error = check_storable(collection, name))
        return error;
    stored_block stored = {};
    if (const int32_t error = block_to_store(collection, &stored))
        return error;
    const int64_t size = 4 + type_part(collection, name) + trailer_size + stored.block.length;
    if (bytes && size <= INT32_MAX)
        write_stored(bytes, collection, stored.block, name);
    if (stored.made)
        free(stored.block.bytes);
    return size > INT32_MAX ? int32_t{err_no_buffer_memory} : static_cast<int32_t>(size);
}

} // namespace

int32_t qvt_coll_load(const void *buffer, int32_t size, coll_rec *collection, int32_t new_server) {
    const auto *bytes = static_cast<const unsigned char *>(buffer);
    const int32_t name = name_size(new_server);
    stored_parts parts;
    if (const int32_t error = find_parts(bytes, size, name, &parts))
        return error;
    coll_rec loaded = {};
    int32_t error = read_collection(bytes, parts, name, &loaded);
    const coll_type *own = collection->cl_typed ? collection->cl_typeinfo : nullptr;
    if (!error && own && loaded.cl_svr_typeinfo && kind_of(own) != kind_of(loaded.cl_svr_typeinfo))
        error = err_coll_type;
    if (error) {
        qvt_coll_free(&loaded);
        return error;
    }
    loaded.cl_handle = static_cast<int32_t>(load_big_endian<uint32_t>(parts.trailer));
    const bool null = parts.flags & (stored_null | coll_is_null);
    loaded.cl_flags |= parts.flags & ~(flags_in_memory | stored_null);
    loaded.cl_flags |= null ? uint32_t{coll_is_null} : 0;
    take_over(collection, loaded);
    return 0;
}

int32_t ldcollection(const void *buffer, coll_rec *collection, int32_t new_server) {
    const uint32_t total = load_big_endian<uint32_t>(static_cast<const unsigned char *>(buffer));
    if (total > INT32_MAX - 4)
        return err_coll_element_size;
    return qvt_coll_load(buffer, static_cast<int32_t>(total + 4), collection, new_server);
}

int32_t stcollection(void *buffer, coll_rec *collection, int32_t new_server) {
    return store(static_cast<unsigned char *>(buffer), collection, new_server);
}

int32_t qvt_coll_stored_size(coll_rec *collection, int32_t new_server) {
    return store(nullptr, collection, new_server);
}
