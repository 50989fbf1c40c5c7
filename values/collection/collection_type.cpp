// Type information, and its SQL text.

#include <kestrion/collection_type.h>
#include <kestrion/value_types.h>

#include "values/collection/elements.h"

#include <iterator>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

using namespace kestrion;

namespace {

// How the length of a type shows in its text.
enum length_style : uint8_t { no_length, one_length, precision_scale, qualifier, two_lengths };

struct type_text {
    uint8_t code;
    length_style style;
    const char *text;
};

constexpr type_text type_texts[] = {
    {sql_char, one_length, "CHAR"},
    {sql_smallint, no_length, "SMALLINT"},
    {sql_integer, no_length, "INTEGER"},
    {sql_float, no_length, "FLOAT"},
    {sql_smallfloat, no_length, "SMALLFLOAT"},
    {sql_decimal, precision_scale, "DECIMAL"},
    {sql_serial, no_length, "SERIAL"},
    {sql_date, no_length, "DATE"},
    {sql_money, precision_scale, "MONEY"},
    {9, no_length, "NULL"},
    {sql_datetime, qualifier, "DATETIME"},
    {11, no_length, "BYTE"},
    {12, no_length, "TEXT"},
    {sql_varchar, two_lengths, "VARCHAR"},
    {sql_interval, qualifier, "INTERVAL"},
    {sql_nchar, one_length, "NCHAR"},
    {sql_nvarchar, two_lengths, "NVARCHAR"},
    {sql_int8, no_length, "INT8"},
    {sql_serial8, no_length, "SERIAL8"},
    {coll_set, no_length, "SET"},
    {coll_multiset, no_length, "MULTISET"},
    {coll_list, no_length, "LIST"},
    {coll_row, no_length, "ROW"},
    {coll_any, no_length, "COLLECTION"},
    {sql_variable_udt, no_length, "VARIABLE UDT"},
    {sql_fixed_udt, no_length, "FIXED UDT"},
    {sql_lvarchar, one_length, "LVARCHAR"},
    {sql_boolean, no_length, "BOOLEAN"},
    {sql_bigint, no_length, "BIGINT"},
    {sql_bigserial, no_length, "BIGSERIAL"},
};

constexpr const char *unit_names[] = {"YEAR",   "MONTH",  "DAY",     "HOUR",
                                      "MINUTE", "SECOND", "FRACTION"};

// A text that is counted to its end also where there is no room for it.
struct text_out {
    char *buffer;
    int64_t size;
    int64_t length;
};

void put(text_out &out, const char *text, size_t count) {
    for (size_t i = 0; i < count; ++i, ++out.length) {
        if (out.length < out.size)
            out.buffer[out.length] = text[i];
    }
}

void put(text_out &out, const char *text) { put(out, text, strlen(text)); }

__attribute__((format(printf, 2, 3))) void put_format(text_out &out, const char *format, ...) {
    char text[48];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    put(out, text);
}

bool is_plain(const char *name, size_t length) {
    for (size_t i = 0; i < length; ++i) {
        const char c = name[i];
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
        if (!letter && (i == 0 || c < '0' || c > '9'))
            return false;
    }
    return true;
}

// A name, in double quotes unless it is a plain identifier; false for an empty one.
bool put_name(text_out &out, const char *name) {
    const size_t length = strnlen(name, coll_name_size);
    if (is_plain(name, length)) {
        put(out, name, length);
        return length != 0;
    }
    put(out, "\"");
    for (size_t i = 0; i < length; ++i)
        put(out, name[i] == '"' ? "\"\"" : name + i, name[i] == '"' ? 2 : 1);
    put(out, "\"");
    return true;
}

// "YEAR TO SECOND", "DAY(3) TO HOUR", "SECOND TO FRACTION(3)". The width of a first field is named
// when it is not the usual one.
void put_qualifier(text_out &out, unsigned word, bool interval) {
    const unsigned end = word & 15;
    const unsigned start = word >> 4 & 15;
    const int width = static_cast<int>(start) - static_cast<int>(end) + static_cast<int>(word >> 8);
    put_format(out, " %s", start >= 12 ? "FRACTION" : unit_names[start / 2]);
    if (interval && start < 11 && width > 0 && width != (start == 0 ? 4 : 2))
        put_format(out, "(%d)", width);
    put_format(out, " TO %s", end >= 11 ? "FRACTION" : unit_names[end / 2]);
    if (end >= 11)
        put_format(out, "(%u)", end - 10);
}

void put_length(text_out &out, length_style style, int code, unsigned length) {
    const unsigned high = length >> 8;
    const unsigned low = length & 0xFF;
    switch (style) {
    case no_length:
        return;
    case one_length:
        put_format(out, "(%u)", length);
        return;
    case precision_scale:
        low == 0xFF ? put_format(out, "(%u)", high) : put_format(out, "(%u,%u)", high, low);
        return;
    case two_lengths:
        high == 0 ? put_format(out, "(%u)", low) : put_format(out, "(%u,%u)", low, high);
        return;
    case qualifier:
        put_qualifier(out, length, code == sql_interval);
        return;
    }
}

const type_text *text_of(int code) {
    for (const type_text &row : type_texts) {
        if (row.code == code)
            return &row;
    }
    return nullptr;
}

void put_field_type(text_out &out, const coll_field *field) {
    const int code = code_of(field);
    if (!put_name(out, field->type_name)) {
        if (const type_text *row = text_of(code)) {
            put(out, row->text);
            put_length(out, row->style, code, field->length);
        }
    }
    if (field->type & coll_field_not_null)
        put(out, " NOT NULL");
}

void put_type(text_out &out, const coll_type *type) {
    if (put_name(out, type->name))
        return;
    const int kind = kind_of(type);
    const type_text *row = text_of(kind);
    put(out, row ? row->text : "COLLECTION");
    put(out, "(");
    for (int32_t number = 1; number <= type->count; ++number) {
        const coll_field *field = qvt_coll_field(type, number);
        if (number > 1)
            put(out, ", ");
        if (kind == coll_row && put_name(out, field->name))
            put(out, " ");
        put_field_type(out, field);
    }
    put(out, ")");
}

} // namespace

coll_type *qvt_coll_new_type(int32_t kind, int32_t count) {
    if (count < 0 || count > UINT16_MAX)
        return nullptr;
    const size_t fields = static_cast<size_t>(count) * sizeof(coll_field);
    auto *type = static_cast<coll_type *>(calloc(1, sizeof(coll_type) + fields));
    if (!type)
        return nullptr;
    type->kind = static_cast<uint16_t>(kind);
    type->count = static_cast<uint16_t>(count);
    return type;
}

coll_field *qvt_coll_field(const coll_type *type, int32_t number) {
    if (number < 1 || number > type->count)
        return nullptr;
    auto *first = reinterpret_cast<coll_field *>(const_cast<coll_type *>(type) + 1);
    return first + (number - 1);
}

int32_t qvt_cltypetostr(const coll_type *type, char *buffer, int32_t size) {
    if (!type)
        return -1;
    text_out out = {buffer, size, 0};
    put_type(out, type);
    if (out.length >= size)
        return -1;
    buffer[out.length] = '\0';
    return static_cast<int32_t>(out.length);
}

int32_t cltypetostr(const coll_rec *collection, char *buffer, int32_t size) {
    return qvt_cltypetostr(type_in_force(collection), buffer, size);
}

char *qvt_cltype2str(const coll_type *type) {
    if (!type)
        return nullptr;
    text_out measured = {nullptr, 0, 0};
    put_type(measured, type);
    auto *text = static_cast<char *>(malloc(static_cast<size_t>(measured.length) + 1));
    if (text)
        qvt_cltypetostr(type, text, static_cast<int32_t>(measured.length) + 1);
    return text;
}
