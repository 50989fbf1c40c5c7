#include <kestrion/value_host.h>

#include "values/convert/source.h"
#include "values/datetime/field_layout.h"
#include <kestrion/datetime.h>
#include <kestrion/decimal_text.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/money_text.h>
#include <kestrion/text_length.h>
#include <kestrion/value_steps.h>
#include <kestrion/value_text.h>
#include <kestrion/value_types.h>

#include <algorithm>
#include <float.h>
#include <iterator>
#include <math.h>
#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr int longest_indicated = INT16_MAX;
constexpr int round_trip_width = 80;

// A program's variable.
struct host {
    void *variable;
    int type; // 100 to 125
    int length;
    int blank_flag;
    int cut_from = 0; // length of a source text that was cut

    char *text() const { return static_cast<char *>(variable); }

    template <typename value_type> void write(const value_type &value) const {
        memcpy(variable, &value, sizeof value);
    }
};

int write_nothing(value_rec &, host &) { return err_no_conversion; }

// -- Texts ---------------------------------------------------------------------------------------

void note_cut(const value_rec &v, host &to, int kept) {
    if (kind_of(v) == source_kind::text)
        if (const text_bytes text(v); text.length > kept)
            to.cut_from = text.length;
}

bool keeps_a_blank(int flag) {
    return flag == blank_by_environment ? ggetenv("BLANK_STRINGS_NOT_NULL") != nullptr : flag > 0;
}

void trim(host &to, int room) {
    char *text = to.text();
    const auto used = static_cast<ptrdiff_t>(strnlen(text, static_cast<size_t>(room)));
    ptrdiff_t length = byleng(text, used);
    if (length == 0 && keeps_a_blank(to.blank_flag))
        text[length++] = ' ';
    text[length] = '\0';
}

// Varying text ends with a source that has a length of its own; others fill the field.
int end_of_varying(const value_rec &v, int room) {
    const bool has_length = kind_of(v) == source_kind::text || sql_type_of(v) == sql_date;
    return has_length ? std::clamp(v.payload.text.text_length, 0, room) : room;
}

int write_terminated(value_rec &v, host &to) {
    if (to.length <= 0)
        return err_host_text_size;
    const int room = to.length - 1;
    to.text()[room] = '\0';
    if (room == 0)
        return err_host_text_size;
    const int code = rvalstr(&v, to.text(), room, 1);
    note_cut(v, to, room);
    if (to.type == host_trimmed_text)
        trim(to, room);
    else if (to.type != host_text && code == 0)
        to.text()[end_of_varying(v, room)] = '\0';
    return code;
}

int write_fixed_text(value_rec &v, host &to) {
    note_cut(v, to, std::max(to.length, 0));
    return to.length > 0 ? rvalstr(&v, to.text(), to.length, 1) : 0;
}

int write_file(value_rec &v, host &to) {
    if (sql_type_of(v) != sql_char && (v.type & 0xFF) != host_file)
        return err_blob_needed;
    const text_bytes name(v);
    if (name.length > std::max(to.length, 0))
        return err_host_text_size;
    if (to.length > 0)
        memset(to.variable, ' ', static_cast<size_t>(to.length));
    if (name.length > 0)
        memmove(to.variable, name.at, static_cast<size_t>(name.length));
    return 0;
}

// -- Numbers -------------------------------------------------------------------------------------

int write_int16(value_rec &v, host &to) {
    int32_t value;
    const int code = toint(&v, &value);
    // A value out of range leaves its low bits, which programs have always seen; other failures NULL.
    to.write(value == INT32_MIN ? uint16_t{0x8000} : static_cast<uint16_t>(value));
    return code;
}

int write_int32(value_rec &v, host &to) {
    int32_t value;
    const int code = tolong(&v, &value);
    to.write(value);
    return code;
}

int write_long(value_rec &v, host &to) {
    int32_t value;
    const int code = tolong(&v, &value);
    to.write(int64_t{value});
    return code;
}

int write_double(value_rec &v, host &to) {
    double value;
    const int code = todouble(&v, &value);
    to.write(value);
    return code;
}

int write_float(value_rec &v, host &to) {
    double value;
    int code = todouble(&v, &value);
    const double size = fabs(value);
    const bool null = risnull(host_double, &value) != 0;
    if (code == 0 && !null && size != 0 && !(size >= double{FLT_MIN} && size <= double{FLT_MAX}))
        code = err_smallfloat_range;
    rsetnull(host_float, to.variable);
    if (code == 0 && !null)
        to.write(static_cast<float>(value));
    return code;
}

// Gives a decimal or an amount another precision and scale, by way of its text.
int change_precision(const value_rec &v, int word, dec_value *result) {
    value_rec changed = v;
    char text[round_trip_width];
    changed.length_word = word;
    if (chkprec(&changed.payload.decimal, word) != 0 ||
        rvalstr(&changed, text, round_trip_width, 1) != 0)
        return err_decimal_precision;
    const int code = sql_type_of(v) == sql_money ? rmondec(text, round_trip_width, result)
                                                 : deccvasc(text, round_trip_width, result);
    return code == 0 ? 0 : +err_decimal_precision;
}

int write_decimal(value_rec &v, host &to) {
    const bool money = to.type == host_money;
    const bool same_type = sql_type_of(v) == (money ? sql_money : sql_decimal);
    dec_value value;
    int code = money ? todecimalmon(&v, &value) : todecimal(&v, &value);
    if (code == 0 && same_type && to.length != v.length_word && to.length != 0 &&
        to.length != static_cast<int>(sizeof value))
        code = change_precision(v, to.length, &value);
    if (code != 0)
        rsetnull(host_decimal, &value);
    to.write(value);
    return code;
}

int write_int8(value_rec &v, host &to) {
    int8_value value;
    const int code = toint8(&v, &value);
    memcpy(to.variable, &value, offsetof(int8_value, sign) + sizeof value.sign); // no padding
    return code;
}

int write_bigint(value_rec &v, host &to) {
    int64_t value;
    const int code = tobigint(&v, &value);
    to.write(value);
    return code;
}

int write_boolean(value_rec &v, host &to) { return tocbool(&v, to.text()); }

// -- Dates ---------------------------------------------------------------------------------------

int write_date(value_rec &v, host &to) {
    int32_t value;
    const int code = todate(&v, &value);
    to.write(value);
    return code;
}

// The qualifier that a variable is to have.
template <typename predicate>
int wanted_qualifier(const value_rec &v, const host &to, predicate is_valid) {
    int16_t own;
    memcpy(&own, to.variable, sizeof own);
    if (is_valid(own & 0xFFFF))
        return own & 0xFFFF;
    if (is_valid(to.length & 0xFFFF))
        return to.length & 0xFFFF;
    return v.length_word & 0xFFFF;
}

int write_dated(host &to, int code, int qualifier, const dec_value &value) {
    dtime_value record;
    record.qualifier = static_cast<int16_t>(qualifier);
    record.value = value;
    to.write(record);
    return code;
}

int write_datetime(value_rec &v, host &to) {
    const int qualifier =
        wanted_qualifier(v, to, [](int word) { return is_datetime_qualifier(word); });
    dec_value value;
    const int code = todatetime(&v, qualifier, &value);
    return write_dated(to, code, qualifier, value);
}

int write_interval(value_rec &v, host &to) {
    const int qualifier =
        wanted_qualifier(v, to, [](int word) { return is_interval_qualifier(word); });
    dec_value value;
    const int code = tointerval(&v, qualifier, &value);
    return write_dated(to, code, qualifier, value);
}

// -- Records and binary --------------------------------------------------------------------------

int write_blob(value_rec &v, host &to) {
    if (kind_of(v) != source_kind::blob)
        return err_blob_needed;
    blob_rec copy = v.payload.blob;
    copy.flags &= ~uint32_t{blob_owner};
    to.write(copy);
    return 0;
}

bool is_family_of(int host_type, int sql_type) {
    if (host_type == host_row)
        return sql_type == sql_row;
    return sql_type == sql_set || sql_type == sql_multiset || sql_type == sql_list ||
           sql_type == sql_collection;
}

int write_collection(value_rec &v, host &to) {
    if (!is_family_of(to.type, sql_type_of(v)))
        return err_coll_type;
    collection_rec copy = v.payload.collection;
    copy.cl_flags &= ~(uint32_t{collection_owns} | uint32_t{collection_owns_type});
    to.write(copy);
    return 0;
}

int write_fixed_binary(value_rec &v, host &to) {
    if (sql_type_of(v) != sql_fixed_udt)
        return err_no_conversion;
    const text_bytes data(v);
    if (data.length > std::max(to.length, 0))
        return err_binary_size;
    if (data.length > 0)
        memmove(to.variable, data.at, static_cast<size_t>(data.length));
    if (to.length > data.length)
        memset(to.text() + data.length, 0, static_cast<size_t>(to.length - data.length));
    return 0;
}

// Makes room for `bytes` in a variable that may grow.
int grow(host_binary &target, int64_t bytes) {
    if (bytes <= target.capacity && target.data != nullptr)
        return 0;
    if ((target.flags & host_binary_owner) == 0)
        return err_binary_size;
    void *larger = bytes > INT32_MAX ? nullptr : realloc(target.data, static_cast<size_t>(bytes));
    if (larger == nullptr) {
        free(target.data);
        target.data = nullptr;
        target.length = target.capacity = 0;
        return err_no_buffer_memory;
    }
    target.data = larger;
    target.capacity = static_cast<int32_t>(bytes);
    return 0;
}

int write_variable(value_rec &v, host &to) {
    const int type = sql_type_of(v);
    const bool is_text = to.type == host_text_pointer;
    if (is_text ? type != sql_lvarchar : type != sql_variable_udt && type != sql_fixed_udt)
        return err_no_conversion;
    const text_bytes data(v);
    host_binary target;
    memcpy(&target, to.variable, sizeof target);
    const int64_t bytes = int64_t{data.length} + (is_text ? 1 : 0);
    const int code = bytes > 0 ? grow(target, bytes) : 0;
    if (code == 0) {
        if (data.length > 0)
            memmove(target.data, data.at, static_cast<size_t>(data.length));
        if (is_text)
            static_cast<char *>(target.data)[data.length] = '\0';
        target.length = data.length;
        target.flags &= ~uint32_t{host_binary_null};
    }
    to.write(target);
    return code;
}

// By host type less 100.
constexpr int (*writers[])(value_rec &, host &) = {
    write_terminated,   // 100 text
    write_int16,        // 101
    write_int32,        // 102
    write_long,         // 103
    write_float,        // 104
    write_double,       // 105
    write_nothing,      // 106
    write_decimal,      // 107 decimal
    write_fixed_text,   // 108
    write_terminated,   // 109 trimmed text
    write_date,         // 110
    write_decimal,      // 111 money
    write_datetime,     // 112
    write_blob,         // 113
    write_terminated,   // 114 varying text
    write_interval,     // 115
    write_file,         // 116
    write_int8,         // 117
    write_collection,   // 118
    write_terminated,   // 119 long text
    write_fixed_binary, // 120
    write_variable,     // 121 variable binary
    write_boolean,      // 122
    write_collection,   // 123 row
    write_variable,     // 124 text by pointer
    write_bigint,       // 125
};
static_assert(std::size(writers) == host_bigint - host_text + 1);

bool is_host_type(int type) { return type >= host_text && type <= host_bigint; }

bool is_text_of_length(int type) {
    return type == host_text || type == host_fixed_text || type == host_trimmed_text ||
           type == host_varying_text || type == host_file || type == host_long_text;
}

// A collection's record goes over with the NULL, since its type matters to the program.
int write_null(const value_rec &v, host &to) {
    int code = 0;
    if ((to.type == host_collection || to.type == host_row) && sql_type_of(v) != sql_null) {
        value_rec record = v;
        code = write_collection(record, to);
    }
    if (!is_text_of_length(to.type) || to.length > 0)
        rsetnull(to.type, to.variable);
    return code;
}

void indicate(int16_t *indicator, int value) {
    if (indicator != nullptr)
        *indicator = static_cast<int16_t>(std::min(value, longest_indicated));
}

// Whether a conversion without an error gave NULL, say of a blank text.
bool became_null(const host &to) {
    return !is_text_of_length(to.type) && risnull(to.type, to.variable) != 0;
}

// -- Variables to values -------------------------------------------------------------------------

template <typename value_type> value_type value_at(const void *variable) {
    value_type value;
    memcpy(&value, variable, sizeof value);
    return value;
}

int32_t text_length(const void *variable, int length) {
    const auto *text = static_cast<const char *>(variable);
    const size_t limit = length > 0 ? static_cast<size_t>(length) : size_t{INT32_MAX};
    return static_cast<int32_t>(strnlen(text, limit));
}

void point_at(value_rec &v, const void *data, int length) {
    v.payload.text.data = data;
    v.payload.text.text_length = data != nullptr ? std::max(length, 0) : 0;
}

int read_decimal(value_rec &v, const dec_value &decimal, int word) {
    if (decverify(&decimal) != 0)
        return -1;
    v.payload.decimal = decimal;
    v.length_word = word;
    return 0;
}

int read_integer(value_rec &v, int64_t value, int word) {
    if (value < -INT32_MAX || value > INT32_MAX)
        return -1;
    v.payload.integer = static_cast<int32_t>(value);
    v.length_word = word;
    return 0;
}

int read_value(const void *from, int type, int given_type, int length, value_rec &v) {
    switch (type) {
    case host_text:
    case host_trimmed_text:
    case host_varying_text:
    case host_long_text:
        point_at(v, from, text_length(from, length));
        return 0;
    case host_fixed_text:
    case host_file:
    case host_fixed_binary:
        point_at(v, from, length);
        return 0;
    case host_boolean:
        point_at(v, from, 1);
        return 0;
    case host_int16:
        return read_integer(v, value_at<int16_t>(from), word_smallint);
    case host_int32: // a SQL code gives the word of smallint: programs compare it
        return read_integer(v, value_at<int32_t>(from),
                            given_type == host_int32 ? word_integer : word_smallint);
    case host_long:
        return read_integer(v, value_at<int64_t>(from), word_integer);
    case host_date:
        return read_integer(v, value_at<int32_t>(from), word_integer);
    case host_float:
        v.payload.single = value_at<float>(from);
        return 0;
    case host_double:
        v.payload.number = value_at<double>(from);
        return 0;
    case host_decimal:
    case host_money:
        return read_decimal(v, value_at<dec_value>(from), length);
    case host_datetime:
    case host_interval: {
        const auto record = value_at<dtime_value>(from);
        return read_decimal(v, record.value, record.qualifier & 0xFFFF);
    }
    case host_blob:
        v.payload.blob = value_at<blob_rec>(from);
        return 0;
    case host_int8:
        v.payload.int8 = value_at<int8_value>(from);
        v.length_word = word_int8;
        return 0;
    case host_collection:
    case host_row:
        v.payload.collection = value_at<collection_rec>(from);
        return 0;
    case host_variable_binary:
    case host_text_pointer: {
        const auto binary = value_at<host_binary>(from);
        point_at(v, binary.data, binary.length);
        return 0;
    }
    case host_bigint:
        v.payload.bigint = value_at<int64_t>(from);
        v.length_word = word_int8;
        return 0;
    default:
        return -1;
    }
}

// A NULL keeps what programs look at all the same.
void read_null(const void *from, int type, int length, value_rec &v) {
    v.null_flag = -1;
    if (type == host_blob) {
        v.payload.blob.kind = sql_byte;
        v.payload.blob.flags = blob_null;
    }
    if (from == nullptr)
        return;
    if (is_text_of_length(type) && length >= 0)
        point_at(v, from, type == host_fixed_text || type == host_file ? length : 0);
    if (type == host_collection || type == host_row)
        if (const auto record = value_at<collection_rec>(from); record.cl_handle != 0)
            v.payload.collection = record;
}

bool is_null(const void *variable, int type, int length, const int16_t *indicator) {
    if (indicator != nullptr) {
        if (*indicator < 0)
            return true;
        if (type == host_varying_text || type == host_long_text)
            return false;
    }
    const bool unreadable = (type == host_fixed_text || type == host_file) && length <= 0;
    return variable != nullptr && !unreadable && risnull(type, variable) != 0;
}

} // namespace

int rvalcvar_flag(value_rec *value, void *variable, int host_type, int host_length,
                  int16_t *indicator, int blank_flag) {
    const int type = host_type < sql_type_count ? sqlctype(host_type) : host_type;
    if (!is_host_type(type) || type == 106) {
        indicate(indicator, 1);
        return converted(err_no_conversion);
    }
    host to = {variable, type, host_length, blank_flag};
    const bool null = kind_of(*value) == source_kind::null;
    const int code = null ? write_null(*value, to) : writers[type - host_text](*value, to);
    if (code != 0)
        indicate(indicator, 1);
    else
        indicate(indicator, null || became_null(to) ? -1 : to.cut_from);
    return converted(code);
}

int rvalcvar(value_rec *value, void *variable, int host_type, int host_length, int16_t *indicator) {
    return rvalcvar_flag(value, variable, host_type, host_length, indicator, blank_by_environment);
}

int rcvarval(void *variable, int host_type, value_rec *value, int host_length,
             const int16_t *indicator) {
    *value = {};
    value->type = static_cast<uint16_t>(host_type);
    const int type = host_type < sql_type_count ? sqlctype(host_type) : host_type;
    if (!is_host_type(type) || type == 106)
        return -1;
    if (is_null(variable, type, host_length, indicator)) {
        read_null(variable, type, host_length, *value);
        return 0;
    }
    return variable != nullptr ? read_value(variable, type, host_type, host_length, *value) : -1;
}
