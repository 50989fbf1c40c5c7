// Opening cursors, and walking and changing by the rules of the kinds.

#include "values/collection/element_index.h"
#include "values/collection/elements.h"

#include <kestrion/collection_compare.h>
#include <kestrion/error_numbers.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

// A cursor that returns to where it was unless the change is kept.
class place_keeper {
public:
    explicit place_keeper(coll_cursor *cursor)
        : cursor_(cursor), was_(cursor ? *cursor : coll_cursor{}) {}
    int32_t keep_unless(int32_t error) const {
        if (error)
            *cursor_ = was_;
        return error;
    }

private:
    coll_cursor *cursor_;
    coll_cursor was_;
};

bool is_of(const coll_cursor *cursor, const coll_rec *collection) {
    return cursor && cursor->collection == collection;
}

// 0, or why a position does not go with the collection's kind. Negative ones are the caller's.
int32_t check_position(const coll_type *type, int32_t position) {
    return position != 0 && kind_of(type) != coll_list ? err_coll_position : 0;
}

// Position of the element that an insert is going to make.
int32_t new_position(const coll_rec *collection, const coll_cursor *cursor, int32_t position) {
    const int32_t end = collection->cl_cardinality + 1;
    if (position == coll_at_cursor)
        position = cursor && cursor->position > 0 ? cursor->position : 1;
    return position == 0 || position > end ? end : position;
}

int32_t check_element(const coll_rec *collection, const coll_field *field, element value) {
    if (value.length < 0 ||
        (collection->cl_isfixed && value.bytes && value.length != collection->cl_elsize))
        return err_coll_element_size;
    nested_layout layout;
    if (value.bytes && is_nested(code_of(field)) && !read_nested(value.bytes, value.length, layout))
        return err_coll_element_size;
    const int kind = kind_of(type_in_force(collection));
    const bool refuses_null = kind == coll_set || kind == coll_multiset || kind == coll_list;
    if (refuses_null && field->type & coll_field_not_null &&
        (!value.bytes || is_null_element(field, value)))
        return err_coll_null_element;
    return 0;
}

// The element to put in: the caller's, or the NULL form in memory of its own.
class stored_element {
public:
    stored_element(const coll_rec *collection, const coll_field *field, element value)
        : value_(value) {
        if (value.bytes)
            return;
        value_.length = null_form_size(field, collection->cl_isfixed ? collection->cl_elsize : 0);
        own_ = static_cast<unsigned char *>(malloc(static_cast<size_t>(value_.length)));
        if (own_)
            write_null_form(field, own_, value_.length);
        value_.bytes = own_;
    }
    ~stored_element() { free(own_); }
    stored_element(const stored_element &) = delete;
    stored_element &operator=(const stored_element &) = delete;
    const element &get() const { return value_; }

private:
    element value_;
    unsigned char *own_ = nullptr;
};

int32_t insert_at(coll_cursor *cursor, element value, int32_t position) {
    const place_keeper place(cursor);
    const coll_rec *collection = cursor->collection;
    const bool append = position > collection->cl_cardinality;
    if (!append && cursor_seek(cursor, position, CSEEK_SET) != 0)
        return place.keep_unless(err_coll_element_size);
    return place.keep_unless(cursor_insert(cursor, value.bytes, value.length, append));
}

// What update and delete have in common before the change: 0 or the answer.
int32_t prepare_change(const coll_rec *collection, coll_cursor *cursor, int32_t position) {
    if (collection->cl_flags & coll_is_null)
        return err_coll_null;
    const coll_type *type = type_in_force(collection);
    if (!type)
        return err_coll_no_type;
    if (const int32_t error = check_position(type, position))
        return error;
    if (!is_of(cursor, collection))
        return err_coll_no_element;
    if (position < 0)
        return coll_end;
    return position ? cursor_seek(cursor, position, CSEEK_SET) : 0;
}

// err_coll_duplicate when a SET has the element, 0 when it does not, or another error.
int32_t search_set(coll_rec *collection, element value) {
    switch (find_in_index(collection, value)) {
    case found::yes:
        return err_coll_duplicate;
    case found::no:
        return 0;
    default:
        return qvt_coll_inpred(collection, collelmtcmp, value.bytes, value.length);
    }
}

int32_t insert_checked(coll_rec *collection, coll_cursor *cursor, const coll_field *field,
                       element given, int32_t position) {
    const stored_element value(collection, field, given);
    if (!value.get().bytes)
        return err_no_buffer_memory;
    if (kind_of(type_in_force(collection)) == coll_set) {
        const int32_t there = search_set(collection, value.get());
        if (there)
            return there == err_coll_duplicate ? 0 : there;
    }
    if (cursor)
        return insert_at(cursor, value.get(), position);
    coll_cursor own = {};
    qvt_coll_open(collection, &own);
    const int32_t answer = insert_at(&own, value.get(), position);
    qvt_coll_close(collection, &own);
    return answer;
}

} // namespace

int32_t qvt_coll_open(coll_rec *collection, coll_cursor *cursor) {
    return qvt_coll_open_with_options(collection, cursor, 0);
}

int32_t qvt_coll_open_with_options(coll_rec *collection, coll_cursor *cursor, int32_t) {
    for (const coll_cursor *open = collection->cl_curs; open; open = open->next) {
        if (open == cursor)
            return err_coll_cursor_open;
    }
    *cursor = {};
    cursor->collection = collection;
    cursor->next = collection->cl_curs;
    collection->cl_curs = cursor;
    return 0;
}

int32_t qvt_coll_close(coll_rec *collection, coll_cursor *cursor) {
    for (coll_cursor **link = &collection->cl_curs; *link; link = &(*link)->next) {
        if (*link != cursor)
            continue;
        *link = cursor->next;
        *cursor = {};
        return 0;
    }
    return -1;
}

int32_t qvt_coll_next(coll_rec *collection, coll_cursor *cursor, void **data, int32_t *length) {
    if (collection->cl_flags & coll_is_null)
        return err_coll_null;
    if (!is_of(cursor, collection))
        return err_coll_no_element;
    if (Qvt_Debug & 1)
        fprintf(stderr, "next: position %d cl_cardinality %d\n", cursor->position,
                collection->cl_cardinality);
    const bool stay = cursor->flags & coll_stay;
    cursor->flags &= ~uint32_t{coll_stay};
    if (stay && cursor->position > collection->cl_cardinality)
        return coll_end;
    if (!stay || cursor->position == 0) {
        if (const int32_t answer = cursor_seek(cursor, 1, CSEEK_CUR))
            return answer;
    }
    element value;
    if (const int32_t error = element_at(cursor, &value))
        return error;
    *length = value.length;
    if (!*data) {
        *data = const_cast<unsigned char *>(value.bytes);
        return 0;
    }
    const coll_field *field = field_at(collection, cursor->position);
    if (field && is_nested(code_of(field)))
        *length = collcopy(*data, value.bytes);
    else if (value.length)
        memcpy(*data, value.bytes, static_cast<size_t>(value.length));
    return *length < 0 ? *length : 0;
}

int32_t qvt_coll_insert(coll_rec *collection, coll_cursor *cursor, const void *data, int32_t length,
                        int32_t position) {
    if (collection->cl_flags & coll_is_null)
        return err_coll_null;
    if (Qvt_Debug & 1)
        fprintf(stderr, "insert: length %d position %d cl_cardinality %d\n", length, position,
                collection->cl_cardinality);
    const coll_type *type = type_in_force(collection);
    if (!type)
        return err_coll_no_type;
    if (const int32_t error = check_position(type, position))
        return error;
    if (position < 0 && position != coll_at_cursor)
        return coll_end;
    if (cursor && !is_of(cursor, collection))
        return err_coll_no_element;
    position = new_position(collection, cursor, position);
    const coll_field *field = field_at(collection, position);
    if (!field)
        return err_coll_no_type;
    const element given = {static_cast<const unsigned char *>(data), length};
    if (const int32_t error = check_element(collection, field, given))
        return error;
    return insert_checked(collection, cursor, field, given, position);
}

int32_t qvt_coll_update(coll_rec *collection, coll_cursor *cursor, const void *data, int32_t length,
                        int32_t position) {
    const place_keeper place(cursor);
    if (const int32_t answer = prepare_change(collection, cursor, position))
        return answer;
    const coll_field *field = field_at(collection, cursor->position);
    if (cursor->position < 1 || cursor->position > collection->cl_cardinality)
        return place.keep_unless(coll_end);
    if (!field)
        return place.keep_unless(err_coll_no_type);
    const element given = {static_cast<const unsigned char *>(data), length};
    if (const int32_t error = check_element(collection, field, given))
        return place.keep_unless(error);
    const stored_element value(collection, field, given);
    if (!value.get().bytes)
        return place.keep_unless(err_no_buffer_memory);
    return place.keep_unless(cursor_update(cursor, value.get().bytes, value.get().length));
}

int32_t qvt_coll_delete(coll_rec *collection, coll_cursor *cursor, int32_t position) {
    const place_keeper place(cursor);
    if (const int32_t answer = prepare_change(collection, cursor, position))
        return answer;
    return place.keep_unless(cursor_delete(cursor));
}
