#include "values/convert/source.h"

#include <kestrion/gentcb.h>
#include <kestrion/value_types.h>

#include <iterator>

namespace kestrion {

namespace {

using kind = source_kind;

// By SQL type.
constexpr kind kinds[] = {
    kind::text,       // 0 char
    kind::integer,    // 1 smallint
    kind::integer,    // 2 integer
    kind::floating,   // 3 float
    kind::floating,   // 4 smallfloat
    kind::decimal,    // 5 decimal
    kind::integer,    // 6 serial
    kind::integer,    // 7 date
    kind::decimal,    // 8 money
    kind::null,       // 9
    kind::datetime,   // 10
    kind::blob,       // 11 byte
    kind::blob,       // 12 text
    kind::text,       // 13 varchar
    kind::interval,   // 14
    kind::text,       // 15 nchar
    kind::text,       // 16 nvarchar
    kind::int8,       // 17
    kind::int8,       // 18 serial8
    kind::collection, // 19 set
    kind::collection, // 20 multiset
    kind::collection, // 21 list
    kind::collection, // 22 row
    kind::collection, // 23
};

} // namespace

source_kind kind_of_type(int type) {
    if (type >= 0 && type < static_cast<int>(std::size(kinds)))
        return kinds[type];
    switch (type) {
    case sql_variable_udt:
    case sql_fixed_udt:
        return kind::binary;
    case sql_lvarchar:
        return kind::text;
    case sql_boolean:
        return kind::boolean;
    case sql_bigint:
    case sql_bigserial:
        return kind::bigint;
    default:
        return kind::other;
    }
}

int sql_type_of(const value_rec &value) {
    const int type = value.type & 0xFF;
    // The name of a file, which is no descriptor.
    return type == host_file ? -1 : rtosqltype(type);
}

source_kind kind_of(const value_rec &value) {
    return value.null_flag != 0 ? kind::null : kind_of_type(sql_type_of(value));
}

int converted(int code) {
    const int stored = set_toerrno(code);
    return code != 0 ? code : stored;
}

} // namespace kestrion
