// Equality, search, hash and order of elements.

#include <kestrion/collection_compare.h>

#include "base/byte_order.h"
#include "values/collection/block_builder.h"

#include <kestrion/error_numbers.h>
#include <kestrion/value_types.h>

#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr int32_t binary_header = 5;

int32_t hash_of(const coll_field *field, element value, uint32_t *hash) {
    const int code = code_of(field);
    const auto *text = reinterpret_cast<const char *>(value.bytes);
    if (is_text(code)) {
        *hash = qvt_hashpjw(text, value.length);
    } else if (is_nested(code)) {
        nested_layout layout;
        if (!read_nested(value.bytes, value.length, layout))
            return err_coll_element_size;
        *hash = !layout.is_null && layout.body_at + 4 <= layout.length
                    ? load_big_endian<uint32_t>(value.bytes + layout.body_at)
                    : 0;
    } else if (code == sql_variable_udt || code == sql_fixed_udt) {
        const bool is_null = value.length < binary_header || is_null_element(field, value);
        *hash = is_null
                    ? 0
                    : qvt_calc_hval(0, value.bytes + binary_header, value.length - binary_header);
    } else {
        *hash = qvt_calc_hval(0, value.bytes, value.length);
    }
    return 0;
}

// How two elements are ordered for a sort.
struct ordering {
    coll_order *compare;
    void *arg;
    int32_t operator()(const element &a, const element &b) const {
        return compare(a.bytes, a.length, b.bytes, b.length, arg);
    }
};

// The same by the keys that equality goes by.
int32_t by_key(const void *a, int32_t a_length, const void *b, int32_t b_length, void *field) {
    const auto *type = static_cast<const coll_field *>(field);
    return compare_keys(key_of(type, {static_cast<const unsigned char *>(a), a_length}),
                        key_of(type, {static_cast<const unsigned char *>(b), b_length}));
}

void merge(const element *from, element *to, int64_t start, int64_t middle, int64_t end,
           const ordering &order) {
    int64_t left = start;
    int64_t right = middle;
    for (int64_t at = start; at < end; ++at) {
        const bool from_right =
            right < end && (left == middle || order(from[left], from[right]) > 0);
        to[at] = from[from_right ? right++ : left++];
    }
}

// Sorts, keeping the order of equal elements, by merging runs that double in length.
int32_t stable_sort(element_list *list, const ordering &order) {
    const int64_t count = list->count;
    if (count < 2)
        return 0;
    auto *spare = static_cast<element *>(malloc(static_cast<size_t>(count) * sizeof(element)));
    if (!spare)
        return err_no_buffer_memory;
    for (int64_t run = 1; run < count; run *= 2) {
        for (int64_t start = 0; start < count; start += 2 * run) {
            const int64_t middle = start + run < count ? start + run : count;
            const int64_t end = middle + run < count ? middle + run : count;
            merge(list->items, spare, start, middle, end, order);
        }
        element *sorted = spare;
        spare = list->items;
        list->items = sorted;
    }
    free(spare);
    return 0;
}

// Compares lists of the same length place by place.
int32_t same_in_order(const coll_rec *a_rec, const coll_rec *b_rec, const element_list &a,
                      const element_list &b) {
    for (int32_t i = 0; i < a.count; ++i) {
        const coll_field *a_field = field_at(a_rec, i + 1);
        const coll_field *b_field = field_at(b_rec, i + 1);
        if (!a_field || !b_field)
            return err_coll_no_type;
        if (compare_keys(key_of(a_field, a.items[i]), key_of(b_field, b.items[i])) != 0)
            return 0;
    }
    return 1;
}

bool has_order(int kind) { return kind == coll_list || kind == coll_row; }

int32_t sort_by_key(const coll_rec *collection, element_list *list) {
    const coll_field *field = field_at(collection, 1);
    if (!field)
        return err_coll_no_type;
    return stable_sort(list, {by_key, const_cast<coll_field *>(field)});
}

int32_t same_elements(const coll_rec *a, const coll_rec *b) {
    element_list a_list;
    element_list b_list = {};
    int32_t error = list_elements(a, &a_list);
    if (!error)
        error = list_elements(b, &b_list);
    if (!error && !has_order(kind_of(type_in_force(a)))) {
        error = sort_by_key(a, &a_list);
        if (!error)
            error = sort_by_key(b, &b_list);
    }
    const int32_t answer = error ? error : same_in_order(a, b, a_list, b_list);
    free(a_list.items);
    free(b_list.items);
    return answer;
}

} // namespace

int32_t qvt_coll_inpred(coll_rec *collection, coll_predicate *compare, const void *searched,
                        int32_t length) {
    coll_cursor cursor = {}; // never linked in
    cursor.collection = collection;
    for (int32_t i = 0; i < collection->cl_cardinality; ++i) {
        element value;
        if (cursor_seek(&cursor, 1, CSEEK_CUR) != 0)
            return err_coll_no_element;
        if (const int32_t error = element_at(&cursor, &value))
            return error;
        if (const int32_t answer = compare(collection, value.bytes, value.length, searched, length))
            return answer;
    }
    return 0;
}

int32_t collelmtcmp(coll_rec *collection, const void *element, int32_t element_length,
                    const void *searched, int32_t searched_length) {
    coll_field *field = const_cast<coll_field *>(field_at(collection, 1));
    if (!field)
        return err_coll_no_type;
    return by_key(element, element_length, searched, searched_length, field) == 0
               ? int32_t{err_coll_duplicate}
               : 0;
}

int32_t qvt_coll_equal(coll_rec *a, coll_rec *b) {
    const bool a_null = a->cl_flags & coll_is_null;
    const bool b_null = b->cl_flags & coll_is_null;
    const coll_type *a_type = type_in_force(a);
    const coll_type *b_type = type_in_force(b);
    if (a_type && b_type && kind_of(a_type) != kind_of(b_type))
        return err_coll_type;
    if (a_null || b_null)
        return a_null && b_null;
    if (!a_type || !b_type)
        return err_coll_no_type;
    if (a->cl_cardinality != b->cl_cardinality)
        return 0;
    if (a->cl_flags & b->cl_flags & coll_hash_valid && a->cl_hashvalue != b->cl_hashvalue)
        return 0;
    return same_elements(a, b);
}

int32_t mi_qvt_coll_equal(coll_rec *a, coll_rec *b, int32_t *equal) {
    const int32_t answer = qvt_coll_equal(a, b);
    *equal = answer == 1;
    return answer < 0 ? answer : 0;
}

int32_t qvt_coll_hash(coll_rec *collection) {
    if (collection->cl_flags & coll_hash_valid)
        return 0;
    uint32_t sum = 0;
    coll_cursor cursor = {}; // never linked in
    cursor.collection = collection;
    const bool null = collection->cl_flags & coll_is_null;
    for (int32_t i = 0; !null && i < collection->cl_cardinality; ++i) {
        element value;
        uint32_t hash = 0;
        if (cursor_seek(&cursor, 1, CSEEK_CUR) != 0)
            return err_coll_no_element;
        int32_t error = element_at(&cursor, &value);
        const coll_field *field = field_at(collection, i + 1);
        if (!error)
            error = field ? hash_of(field, value, &hash) : int32_t{err_coll_no_type};
        if (error)
            return error;
        sum ^= hash;
    }
    collection->cl_hashvalue = sum;
    collection->cl_flags |= coll_hash_valid;
    return 0;
}

uint32_t qvt_hashpjw(const char *text, int32_t length) {
    uint32_t hash = 0;
    for (int32_t i = 0; i < length && text[i]; ++i) {
        // Bytes count as signed; servers hold the hashes that come of it.
        hash = hash * 16 + static_cast<uint32_t>(static_cast<signed char>(text[i]));
        const uint32_t high = hash & UINT32_C(0xF0000000);
        hash ^= high;
        hash ^= high >> 24;
    }
    return hash % 211;
}

uint32_t qvt_calc_hval(uint32_t hash, const void *data, int32_t length) {
    const auto *bytes = static_cast<const unsigned char *>(data);
    for (; length >= 4; bytes += 4, length -= 4)
        hash ^= load_big_endian<uint32_t>(bytes);
    if (length > 0) {
        const auto left = static_cast<size_t>(length);
        hash ^= load_big_endian<uint32_t>(bytes, left) << (32 - 8 * left);
    }
    return hash;
}

int32_t qvt_coll_qsort(coll_rec *collection, coll_order *compare, void *arg) {
    if (collection->cl_flags & coll_is_null)
        return err_coll_null;
    const coll_type *type = type_in_force(collection);
    if (!type)
        return err_coll_no_type;
    if (kind_of(type) == coll_row)
        return err_coll_type;
    element_list list;
    packed_block block;
    int32_t error = list_elements(collection, &list);
    if (!error)
        error = stable_sort(&list, {compare, arg});
    if (!error)
        error = pack_elements(collection, list, &block);
    const int32_t count = list.count;
    free(list.items);
    if (error)
        return error;
    replace_block(collection, block, count);
    refresh_copies(collection);
    return 0;
}

int32_t collcopy(void *destination, const void *element) {
    const auto *bytes = static_cast<const unsigned char *>(element);
    auto *out = static_cast<unsigned char *>(destination);
    nested_layout layout;
    if (!read_nested(bytes, INT32_MAX, layout))
        return err_coll_element_size;
    const int32_t size = nested_size(layout, flags_offset(reinterpret_cast<size_t>(out)));
    copy_nested(out, bytes, layout, size);
    return size;
}
