#include <kestrion/value.h>

#include "base/byte_order.h"
#include "values/convert/collection_forms.h"
#include "values/convert/columns.h"
#include "values/convert/source.h"
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/portable_values.h>

#include <algorithm>
#include <iterator>

using namespace kestrion;

namespace kestrion {

constinit const collection_forms *installed_collection_forms = nullptr;

} // namespace kestrion

namespace {

// Where a value comes from.
struct column {
    const unsigned char *bytes;
    int type; // SQL type
    int word; // the column's length
};

void set_null(value_rec &v, bool null) { v.null_flag = null ? -1 : 0; }

void point_at(value_rec &v, const void *data, int length) {
    v.payload.text.data = data;
    v.payload.text.text_length = length;
    v.payload.text.text_flags = 0;
}

int rdatavalErr(const column &, value_rec &) { return err_no_routine; }

int rdatavalChar(const column &from, value_rec &v) {
    const int length = not_negative(from.word);
    point_at(v, from.bytes, length);
    set_null(v, length > 0 && from.bytes[0] == 0);
    return 0;
}

int rdatavalVchar(const column &from, value_rec &v) {
    point_at(v, from.bytes, 0);
    if (from.word <= 0)
        return 0;
    const int most = from.word & 0xFF;
    const int length = most != 0 ? std::min<int>(from.bytes[0], most) : from.bytes[0];
    point_at(v, from.bytes + 1, length);
    set_null(v, length == 1 && from.bytes[1] == 0);
    return 0;
}

int rdatavalSmint(const column &from, value_rec &v) {
    const auto value = static_cast<int16_t>(load_big_endian<uint16_t>(from.bytes));
    v.payload.integer = value;
    v.length_word = word_smallint;
    set_null(v, value == INT16_MIN);
    return 0;
}

int rdatavalInt(const column &from, value_rec &v) {
    v.payload.integer = ldlong(from.bytes);
    v.length_word = word_integer;
    set_null(v, v.payload.integer == INT32_MIN);
    return 0;
}

int rdatavalInt8(const column &from, value_rec &v) {
    const int code = ldint8(from.bytes, &v.payload.int8);
    v.length_word = word_int8;
    set_null(v, v.payload.int8.sign == 0);
    return code;
}

int rdatavalBigint(const column &from, value_rec &v) {
    v.payload.bigint = ldbigint(from.bytes);
    v.length_word = word_int8;
    set_null(v, v.payload.bigint == INT64_MIN);
    return 0;
}

int rdatavalFloat(const column &from, value_rec &v) {
    int16_t null = 0;
    v.payload.number = network_lddblnull(from.bytes, &null, qvtGEN_getFloatType());
    v.length_word = word_float;
    set_null(v, null != 0);
    return 0;
}

int rdatavalSmfloat(const column &from, value_rec &v) {
    int16_t null = 0;
    v.payload.single =
        static_cast<float>(network_ldfltnull(from.bytes, &null, qvtGEN_getFloatType()));
    v.length_word = word_smallfloat;
    set_null(v, null != 0);
    return 0;
}

int rdatavalDec(const column &from, value_rec &v) {
    v.payload.decimal = {0, dec_null_sign, 0, {}};
    int code = err_decimal_precision;
    if (has_sound_precision(from.type, from.word))
        code = lddecimal(from.bytes, stored_decimal_bytes(from.word), &v.payload.decimal);
    set_null(v, v.payload.decimal.sign == dec_null_sign);
    return code;
}

int rdatavalText(const column &from, value_rec &v) {
    const int code = tblobload(from.bytes, from.word, &v.payload.blob);
    if (code != 0)
        v.payload.blob = {};
    set_null(v, code != 0 || (v.payload.blob.flags & blob_null) != 0);
    return code;
}

int rdatavalSet(const column &from, value_rec &v) {
    if (installed_collection_forms == nullptr)
        return err_no_routine;
    const int code = installed_collection_forms->load(from.bytes, from.word, gget_dbver(),
                                                      &v.payload.collection);
    set_null(v, code != 0 || (v.payload.collection.cl_flags & collection_null) != 0);
    return code;
}

int rdatavalUdt(const column &from, value_rec &v) {
    const void *data = nullptr;
    int32_t length = 0;
    int16_t null = 0;
    const int code =
        ldudt(from.bytes, binary_column_bytes(from.type, from.word), &data, &length, &null);
    point_at(v, data, length);
    set_null(v, null != 0);
    return code;
}

// By SQL type.
constexpr int (*rdataval_table[])(const column &, value_rec &) = {
    rdatavalChar,    // 0 char
    rdatavalSmint,   // 1 smallint
    rdatavalInt,     // 2 integer
    rdatavalFloat,   // 3 float
    rdatavalSmfloat, // 4 smallfloat
    rdatavalDec,     // 5 decimal
    rdatavalInt,     // 6 serial
    rdatavalInt,     // 7 date
    rdatavalDec,     // 8 money
    rdatavalErr,     // 9
    rdatavalDec,     // 10 datetime
    rdatavalText,    // 11 byte
    rdatavalText,    // 12 text
    rdatavalVchar,   // 13 varchar
    rdatavalDec,     // 14 interval
    rdatavalChar,    // 15 nchar
    rdatavalVchar,   // 16 nvarchar
    rdatavalInt8,    // 17 int8
    rdatavalInt8,    // 18 serial8
    rdatavalSet,     // 19 set
    rdatavalSet,     // 20 multiset
    rdatavalSet,     // 21 list
    rdatavalSet,     // 22 row
    rdatavalErr,     // 23 collection: stored, but loaded by its kind
    rdatavalErr,     // 24
    rdatavalErr,     // 25
    rdatavalErr,     // 26
    rdatavalErr,     // 27
    rdatavalErr,     // 28
    rdatavalErr,     // 29
    rdatavalErr,     // 30
    rdatavalErr,     // 31
    rdatavalErr,     // 32
    rdatavalErr,     // 33
    rdatavalErr,     // 34
    rdatavalErr,     // 35
    rdatavalErr,     // 36
    rdatavalErr,     // 37
    rdatavalErr,     // 38
    rdatavalErr,     // 39
    rdatavalUdt,     // 40 variable udt
    rdatavalUdt,     // 41 fixed udt
    rdatavalErr,     // 42
    rdatavalUdt,     // 43 lvarchar
    rdatavalErr,     // 44
    rdatavalUdt,     // 45 boolean
    rdatavalErr,     // 46
    rdatavalErr,     // 47
    rdatavalErr,     // 48
    rdatavalErr,     // 49
    rdatavalErr,     // 50
    rdatavalErr,     // 51
    rdatavalBigint,  // 52 bigint
    rdatavalBigint,  // 53 bigserial
};
static_assert(std::size(rdataval_table) == sql_type_count);

} // namespace

int rdataval(const void *stored, int column_type, int column_length, value_rec *value) {
    const int type = column_type & 0xFF;
    if (type >= sql_type_count)
        return converted(err_no_routine);
    const uint16_t keep = value->type & value_keep_id;
    value->type = static_cast<uint16_t>(type | keep);
    if (keep == 0)
        value->extended_id = 0;
    value->null_flag = 0;
    value->length_word = column_length;
    const column from = {static_cast<const unsigned char *>(stored), type, column_length};
    const int code = rdataval_table[type](from, *value);
    return code == 0 ? 0 : converted(code);
}
