// Values into columns.

#include "base/byte_order.h"
#include "values/convert/collection_forms.h"
#include "values/convert/columns.h"
#include "values/convert/cut_text.h"
#include "values/convert/source.h"
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/portable_values.h>
#include <kestrion/text_length.h>
#include <kestrion/value_steps.h>
#include <kestrion/value_text.h>

#include <iterator>
#include <math.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr double greatest_smallfloat = 3.4028234663852886e38;
constexpr double least_smallfloat = 1.1754943508222875e-38; // no denormals
constexpr int printed_width = 80;

// Where a value goes.
struct column {
    unsigned char *bytes;
    int type; // SQL type
    int word; // the column's length
    bool not_null;
};

// A routine returns 0, an error, or this when the value turned out NULL; it has then stored the
// column's NULL form.
constexpr int stored_null = 1;

int null_or_done(bool null) { return null ? stored_null : 0; }

int rvaldataErr(value_rec &, const column &) { return err_no_routine; }

// -- Texts ---------------------------------------------------------------------------------------

// The text sources of char and varchar; an lvarchar is printed and cut without a word.
bool is_column_text(const value_rec &v) {
    return kind_of(v) == source_kind::text && sql_type_of(v) != sql_lvarchar;
}

bool pads_with_zeros(const value_rec &v) {
    return kind_of_type(sql_type_of(v)) == source_kind::text &&
           (v.payload.text.text_flags & value_pad_zero) != 0;
}

int check_text(const text_bytes &text, const column &to, int room) {
    if (ansidb != 0 && text.length > room && byleng(text.at, text.length) > room)
        return err_column_text_size;
    return text.length == 0 && to.not_null ? +err_null_refused : 0;
}

void pad(unsigned char *bytes, int from, int to, int filler) {
    if (to > from)
        memset(bytes + from, filler, static_cast<size_t>(to - from));
}

int print(value_rec &v, unsigned char *bytes, int room) {
    return room > 0 ? rvalstr(&v, reinterpret_cast<char *>(bytes), room, 1) : 0;
}

int rvaldataChar(value_rec &v, const column &to) {
    const int room = not_negative(to.word);
    const int filler = pads_with_zeros(v) ? 0 : ' ';
    if (kind_of(v) == source_kind::null) {
        pad(to.bytes, 0, room, filler);
        if (room > 0)
            to.bytes[0] = 0;
        return stored_null;
    }
    if (!is_column_text(v))
        return print(v, to.bytes, room);
    const text_bytes text(v);
    if (const int code = check_text(text, to, room); code != 0)
        return code;
    const int written = copy_cut(text.at, text.length, reinterpret_cast<char *>(to.bytes), room);
    pad(to.bytes, written, room, filler);
    return 0;
}

int rvaldataVchar(value_rec &v, const column &to) {
    const int room = to.word & 0xFF;
    unsigned char *bytes = to.bytes + 1;
    if (kind_of(v) == source_kind::null) {
        to.bytes[0] = 1;
        pad(bytes, 0, room > 0 ? room : 1, 0); // NULL takes a byte of text even where there is none
        return stored_null;
    }
    if (!is_column_text(v)) {
        const int code = print(v, bytes, room);
        to.bytes[0] = static_cast<unsigned char>(room > 0 ? byleng(bytes, room) : 0);
        return code;
    }
    const text_bytes text(v);
    if (const int code = check_text(text, to, room); code != 0)
        return code;
    const int written = copy_cut(text.at, text.length, reinterpret_cast<char *>(bytes), room);
    to.bytes[0] = static_cast<unsigned char>(written);
    pad(bytes, written, room, 0);
    return 0;
}

// -- Binary --------------------------------------------------------------------------------------

int store_binary(const column &to, const void *data, int length) {
    return studt(data, length, 0, to.bytes, binary_column_bytes(to.type, to.word));
}

int store_null_binary(const column &to) {
    const int code = studt(nullptr, 0, 1, to.bytes, binary_column_bytes(to.type, to.word));
    return code != 0 ? code : stored_null;
}

// Whether an lvarchar takes a value that is not a text.
bool is_printed(int type) {
    return type < sql_set || type == 42 || type == sql_boolean || type == 51 ||
           type == sql_bigint || type == sql_bigserial;
}

int store_printed(value_rec &v, const column &to) {
    char text[printed_width];
    if (!is_printed(sql_type_of(v)))
        return err_no_conversion;
    const int code = rvalstr(&v, text, printed_width, 1);
    return code != 0 ? code : store_binary(to, text, static_cast<int>(byleng(text, printed_width)));
}

int rvaldataLvarchar(value_rec &v, const column &to) {
    const source_kind kind = kind_of(v);
    if (kind == source_kind::null)
        return store_null_binary(to);
    if (kind != source_kind::text)
        return store_printed(v, to);
    const text_bytes text(v);
    const int limit = binary_limit(to.type, to.word);
    if (sql_type_of(v) == sql_lvarchar || text.length <= limit)
        return store_binary(to, text.at, text.length);
    if (ansidb != 0 && byleng(text.at, text.length) > limit)
        return err_column_text_size;
    return store_binary(to, text.at, whole_characters(text.at, text.length, limit));
}

int rvaldataUdt(value_rec &v, const column &to) {
    if (kind_of(v) == source_kind::null)
        return store_null_binary(to);
    if (sql_type_of(v) != to.type)
        return err_no_conversion;
    const text_bytes data(v);
    return store_binary(to, data.at, data.length);
}

int rvaldataBool(value_rec &v, const column &to) {
    if (kind_of(v) == source_kind::null)
        return store_null_binary(to);
    char value;
    const int code = tocbool(&v, &value);
    return code != 0 ? code : store_binary(to, &value, 1);
}

int rvaldataText(value_rec &v, const column &to) {
    const bool null = kind_of(v) == source_kind::null || (v.payload.blob.flags & blob_null) != 0;
    blob_rec nullblobval = {};
    nullblobval.kind = to.type;
    nullblobval.flags = blob_null;
    const int code = tblobstore(null ? &nullblobval : &v.payload.blob, to.bytes, to.word);
    return code != 0 ? code : null_or_done(null);
}

bool is_collection_family(int type) {
    return type == sql_set || type == sql_multiset || type == sql_list || type == sql_collection;
}

int rvaldataSet(value_rec &v, const column &to) {
    const bool null = kind_of(v) == source_kind::null;
    const int type = sql_type_of(v);
    if (!null && type != to.type && !(is_collection_family(type) && is_collection_family(to.type)))
        return err_coll_type;
    if (installed_collection_forms == nullptr)
        return err_no_routine;
    collection_rec nullcollval = {};
    nullcollval.cl_flags = collection_null;
    collection_rec *source = null ? &nullcollval : &v.payload.collection;
    const int code = installed_collection_forms->store(source, to.bytes, to.word, gget_dbver());
    return code != 0 ? code : null_or_done((source->cl_flags & collection_null) != 0);
}

// -- Numbers -------------------------------------------------------------------------------------

int rvaldataSmint(value_rec &v, const column &to) {
    int32_t value;
    const int code = toint(&v, &value);
    const auto cut = static_cast<uint16_t>(value);
    store_big_endian(cut, to.bytes);
    return code != 0 ? code : null_or_done(value == INT16_MIN);
}

int rvaldataInt(value_rec &v, const column &to) {
    int32_t value;
    const int code = tolong(&v, &value);
    stlong(value, to.bytes);
    return code != 0 ? code : null_or_done(value == INT32_MIN);
}

int rvaldataDate(value_rec &v, const column &to) {
    int32_t value;
    const int code = todate(&v, &value);
    stlong(value, to.bytes);
    return code != 0 ? code : null_or_done(value == INT32_MIN);
}

int rvaldataInt8(value_rec &v, const column &to) {
    int8_value value;
    const int code = toint8(&v, &value);
    stint8(&value, to.bytes);
    return code != 0 ? code : null_or_done(value.sign == 0);
}

int rvaldataBigint(value_rec &v, const column &to) {
    int64_t value;
    const int code = tobigint(&v, &value);
    stbigint(value, to.bytes);
    return code != 0 ? code : null_or_done(value == INT64_MIN);
}

int rvaldataFloat(value_rec &v, const column &to) {
    double value;
    int16_t null;
    int code = todblnull(&v, &value, &null);
    if (code == 0 && !isfinite(value))
        code = err_float_range;
    const bool stores_null = code != 0 || null != 0;
    network_stdblnull(to.bytes, stores_null ? 1 : 0, qvtGEN_getFloatType(), value);
    return code != 0 ? code : null_or_done(null != 0);
}

int rvaldataSmfloat(value_rec &v, const column &to) {
    double value;
    int16_t null;
    int code = todblnull(&v, &value, &null);
    const double size = fabs(value);
    if (code == 0 && size != 0 && !(size >= least_smallfloat && size <= greatest_smallfloat))
        code = err_smallfloat_range;
    const bool stores_null = code != 0 || null != 0;
    network_stfltnull(to.bytes, stores_null ? 1 : 0, qvtGEN_getFloatType(),
                      stores_null ? 0.0 : value);
    return code != 0 ? code : null_or_done(null != 0);
}

// Stores a decimal under a sound word; after an error, NULL.
int store_decimal(int code, dec_value &value, const column &to) {
    if (code != 0)
        value = {0, dec_null_sign, 0, {}};
    stdecimal(&value, to.bytes, stored_decimal_bytes(to.word));
    return code != 0 ? code : null_or_done(value.sign == dec_null_sign);
}

int rvaldataDec(value_rec &v, const column &to) {
    if (!has_sound_precision(to.type, to.word))
        return err_decimal_precision;
    dec_value value;
    int code = to.type == sql_money ? todecimalmon(&v, &value) : todecimal(&v, &value);
    if (code == 0)
        code = chkprec(&value, to.word);
    return store_decimal(code, value, to);
}

int rvaldataDtime(value_rec &v, const column &to) {
    if (!has_sound_precision(to.type, to.word))
        return err_decimal_precision;
    dec_value value;
    return store_decimal(todatetime(&v, to.word, &value), value, to);
}

int rvaldataInterval(value_rec &v, const column &to) {
    if (!has_sound_precision(to.type, to.word))
        return err_decimal_precision;
    dec_value value;
    return store_decimal(tointerval(&v, to.word, &value), value, to);
}

// By SQL type.
constexpr int (*rvaldata_table[])(value_rec &, const column &) = {
    rvaldataChar,     // 0 char
    rvaldataSmint,    // 1 smallint
    rvaldataInt,      // 2 integer
    rvaldataFloat,    // 3 float
    rvaldataSmfloat,  // 4 smallfloat
    rvaldataDec,      // 5 decimal
    rvaldataInt,      // 6 serial
    rvaldataDate,     // 7 date
    rvaldataDec,      // 8 money
    rvaldataErr,      // 9
    rvaldataDtime,    // 10 datetime
    rvaldataText,     // 11 byte
    rvaldataText,     // 12 text
    rvaldataVchar,    // 13 varchar
    rvaldataInterval, // 14 interval
    rvaldataChar,     // 15 nchar
    rvaldataVchar,    // 16 nvarchar
    rvaldataInt8,     // 17 int8
    rvaldataInt8,     // 18 serial8
    rvaldataSet,      // 19 set
    rvaldataSet,      // 20 multiset
    rvaldataSet,      // 21 list
    rvaldataSet,      // 22 row
    rvaldataSet,      // 23 collection
    rvaldataErr,      // 24
    rvaldataErr,      // 25
    rvaldataErr,      // 26
    rvaldataErr,      // 27
    rvaldataErr,      // 28
    rvaldataErr,      // 29
    rvaldataErr,      // 30
    rvaldataErr,      // 31
    rvaldataErr,      // 32
    rvaldataErr,      // 33
    rvaldataErr,      // 34
    rvaldataErr,      // 35
    rvaldataErr,      // 36
    rvaldataErr,      // 37
    rvaldataErr,      // 38
    rvaldataErr,      // 39
    rvaldataUdt,      // 40 variable udt
    rvaldataUdt,      // 41 fixed udt
    rvaldataErr,      // 42
    rvaldataLvarchar, // 43 lvarchar
    rvaldataErr,      // 44
    rvaldataBool,     // 45 boolean
    rvaldataErr,      // 46
    rvaldataErr,      // 47
    rvaldataErr,      // 48
    rvaldataErr,      // 49
    rvaldataErr,      // 50
    rvaldataErr,      // 51
    rvaldataBigint,   // 52 bigint
    rvaldataBigint,   // 53 bigserial
};
static_assert(std::size(rvaldata_table) == sql_type_count);

// Errors that leave the conversion error as it was.
int refused_at_once(const value_rec &v, const column &to) {
    const source_kind kind = kind_of(v);
    if (kind == source_kind::null)
        return to.not_null ? +err_null_refused : 0;
    const bool blob_column = kind_of_type(to.type) == source_kind::blob;
    return (kind == source_kind::blob) != blob_column ? +err_blob_place : 0;
}

} // namespace

int chkprec(dec_value *dec, int word) {
    const int precision = high_byte(word);
    const int scale = word & 0xFF;
    const int digits = dec2prec(dec);
    int hi = high_byte(digits);
    int lo = digits & 0xFF;
    if (scale == 255) {
        if (hi > precision)
            decround(dec, precision + lo - hi);
        return 0;
    }
    if (scale < lo) {
        decround(dec, scale);
        const int rounded = decprec(dec);
        hi = high_byte(rounded);
        lo = rounded & 0xFF;
    } else if (lo > hi) {
        hi = lo;
    }
    return hi - lo <= precision - scale ? 0 : +err_decimal_precision;
}

int rvaldata(value_rec *value, void *stored, int column_type, int column_length) {
    if (CheckGenInit() == nullptr)
        return err_no_block;
    const column to = {static_cast<unsigned char *>(stored), column_type & 0xFF, column_length,
                       (column_type & column_not_null) != 0};
    if (to.type >= sql_type_count || rvaldata_table[to.type] == rvaldataErr)
        return converted(err_no_routine);
    if (const int code = refused_at_once(*value, to); code != 0)
        return code;
    const int code = rvaldata_table[to.type](*value, to);
    if (code == stored_null)
        return converted(to.not_null ? +err_null_refused : 0);
    return converted(code);
}
