#include <kestrion/value_types.h>

#include <kestrion/datetime.h>
#include <kestrion/int8.h>
#include <kestrion/value.h>

#include <iterator>
#include <string.h>

namespace {

// Sizes that follow from the length n.
enum size_rule : int16_t { n_bytes = -1, n_and_terminator = -2, low_byte_and_terminator = -3 };

struct sql_entry {
    const char *name;
    int16_t host;  // -1: none
    int16_t size;  // bytes, or a size_rule
    int16_t align; // 0: of no fixed alignment
};

// By code.
constexpr sql_entry sql_rows[] = {
    {"char", 100, n_and_terminator, 1},            // 0
    {"smallint", 101, 2, 2},                       // 1
    {"integer", 102, 4, 4},                        // 2
    {"float", 105, 8, 8},                          // 3
    {"smallfloat", 104, 4, 4},                     // 4
    {"decimal", 107, 22, 2},                       // 5
    {"serial", 102, 4, 4},                         // 6
    {"date", 110, 4, 4},                           // 7
    {"money", 111, 22, 2},                         // 8
    {"", -1, 0, 1},                                // 9, NULL
    {"datetime", 112, 24, 2},                      // 10
    {"byte", 113, 112, 8},                         // 11
    {"text", 113, 112, 8},                         // 12
    {"varchar", 114, low_byte_and_terminator, 1},  // 13
    {"interval", 115, 24, 2},                      // 14
    {"nchar", 100, n_and_terminator, 1},           // 15
    {"nvarchar", 114, low_byte_and_terminator, 1}, // 16
    {"int8", 117, 12, 4},                          // 17
    {"serial8", 117, 12, 4},                       // 18
    {"set", 118, 120, 8},                          // 19
    {"multiset", 118, 120, 8},                     // 20
    {"list", 118, 120, 8},                         // 21
    {"row", 123, 120, 8},                          // 22
    {"collection", 118, 120, 8},                   // 23
    {"", -1, 0, 1},                                // 24
    {"", -1, 0, 1},                                // 25
    {"", -1, 0, 1},                                // 26
    {"", -1, 0, 1},                                // 27
    {"", -1, 0, 1},                                // 28
    {"", -1, 0, 1},                                // 29
    {"", -1, 0, 1},                                // 30
    {"", -1, 0, 1},                                // 31
    {"", -1, 0, 1},                                // 32
    {"", -1, 0, 1},                                // 33
    {"", -1, 0, 1},                                // 34
    {"", -1, 0, 1},                                // 35
    {"", -1, 0, 1},                                // 36
    {"", -1, 0, 1},                                // 37
    {"", -1, 0, 1},                                // 38
    {"", -1, 0, 1},                                // 39
    {"variable udt", 121, n_bytes, 0},             // 40
    {"fixed udt", 120, n_bytes, 0},                // 41
    {"", 117, 0, 1},                               // 42
    {"lvarchar", 119, n_bytes, 1},                 // 43
    {"send/receive", 121, 0, 1},                   // 44
    {"boolean", 122, 1, 1},                        // 45
    {"import/export", -1, 0, 1},                   // 46
    {"import/export binary", -1, 0, 1},            // 47
    {"", -1, 0, 1},                                // 48
    {"dbsend/dbreceive", -1, 0, 1},                // 49
    {"srvsend/srvreceive", -1, 0, 1},              // 50
    {"", -1, 0, 1},                                // 51
    {"bigint", 125, 8, 8},                         // 52
    {"bigserial", 125, 8, 8},                      // 53
};
static_assert(std::size(sql_rows) == sql_type_count);

// How a variable holds NULL.
enum class null_form : uint8_t {
    none,
    first_byte,  // 0
    int16,       // -32768
    int32,       // -2147483648
    long64,      // -2147483648
    float_ones,  // all bits set
    double_ones, //
    decimal,     // the NULL decimal
    dated,       // the same after a qualifier
    blob,        // status -1
    int8,        // sign 0
    collection,  // a flag
    binary,      // a flag
    boolean,     // 0xFF
    bigint,      // INT64_MIN
};

struct host_entry {
    int16_t sql; // -1: none
    null_form null;
    int16_t size; // bytes, or a size_rule
    int16_t align;
};

// By code less 100. The records of collections and rows are aligned by their owner.
constexpr host_entry host_rows[] = {
    {0, null_form::first_byte, n_and_terminator, 1},         // 100
    {1, null_form::int16, 2, 2},                             // 101
    {2, null_form::int32, 4, 4},                             // 102
    {2, null_form::long64, 8, 8},                            // 103
    {4, null_form::float_ones, 4, 4},                        // 104
    {3, null_form::double_ones, 8, 8},                       // 105
    {-1, null_form::none, 0, 1},                             // 106
    {5, null_form::decimal, 22, 2},                          // 107
    {0, null_form::first_byte, n_bytes, 1},                  // 108
    {0, null_form::first_byte, n_and_terminator, 1},         // 109
    {7, null_form::int32, 4, 4},                             // 110
    {8, null_form::decimal, 22, 2},                          // 111
    {10, null_form::dated, 24, 2},                           // 112
    {11, null_form::blob, 112, 8},                           // 113
    {13, null_form::first_byte, low_byte_and_terminator, 1}, // 114
    {14, null_form::dated, 24, 2},                           // 115
    {11, null_form::first_byte, n_and_terminator, 8},        // 116
    {17, null_form::int8, 12, 4},                            // 117
    {23, null_form::collection, 120, 1},                     // 118
    {43, null_form::first_byte, n_bytes, 1},                 // 119
    {41, null_form::none, n_bytes, 0},                       // 120
    {40, null_form::binary, n_bytes, 0},                     // 121
    {45, null_form::boolean, 1, 1},                          // 122
    {22, null_form::collection, 120, 1},                     // 123
    {43, null_form::binary, n_bytes, 1},                     // 124
    {52, null_form::bigint, 8, 8},                           // 125
};
static_assert(std::size(host_rows) == host_bigint - host_text + 1);

const sql_entry *sql_row_of(int type) {
    return type >= 0 && type < sql_type_count ? &sql_rows[type] : nullptr;
}

const host_entry *host_row_of(int type) {
    return type >= host_text && type <= host_bigint ? &host_rows[type - host_text] : nullptr;
}

int host_of(int type) { return type < sql_type_count ? sqlctype(type) : type; }

struct keyword {
    const char *text;
    int type;
};

constexpr keyword keywords[] = {
    {"BIGINT", 52},   {"BIGSERIAL", 53},  {"BYTE", 11},    {"BOOLEAN", 45},  {"CHAR", 0},
    {"CHARACTER", 0}, {"COLLECTION", 23}, {"DATE", 7},     {"DECIMAL", 5},   {"DATETIME", 10},
    {"FLOAT", 3},     {"INT8", 17},       {"INT", 2},      {"INTEGER", 2},   {"INTERVAL", 14},
    {"LIST", 21},     {"LVARCHAR", 43},   {"MONEY", 8},    {"MULTISET", 20}, {"NCHAR", 15},
    {"NVARCHAR", 16}, {"NULL", 9},        {"ROW", 22},     {"SERIAL8", 18},  {"SERIAL", 6},
    {"SET", 19},      {"SMALLFLOAT", 4},  {"SMALLINT", 1}, {"TEXT", 12},     {"VARCHAR", 13},
};

int size_by_rule(int rule, int length) {
    const int n = length < 0 ? 0 : length;
    switch (rule) {
    case n_bytes:
        return n;
    case n_and_terminator:
        return n == INT32_MAX ? n : n + 1;
    case low_byte_and_terminator:
        return (n & 255) + 1;
    default:
        return rule;
    }
}

template <typename pattern_type> void write(void *variable, pattern_type pattern) {
    memcpy(variable, &pattern, sizeof pattern);
}

template <typename pattern_type> bool holds(const void *variable, pattern_type pattern) {
    return memcmp(variable, &pattern, sizeof pattern) == 0;
}

template <typename word_type> word_type word_at(const void *variable, size_t offset) {
    word_type word;
    memcpy(&word, static_cast<const char *>(variable) + offset, sizeof word);
    return word;
}

void set_bits(void *variable, size_t offset, uint32_t bits) {
    const uint32_t word = word_at<uint32_t>(variable, offset) | bits;
    memcpy(static_cast<char *>(variable) + offset, &word, sizeof word);
}

constexpr dec_value null_decimal = {0, dec_null_sign, 0, {}};

bool is_null_decimal(const void *decimal) {
    return word_at<int16_t>(decimal, offsetof(dec_value, sign)) == dec_null_sign;
}

} // namespace

int sqlctype(int type) {
    const sql_entry *row = sql_row_of(type);
    return row != nullptr ? row->host : -1;
}

int sqlstype(int type) {
    const host_entry *row = host_row_of(type);
    return row != nullptr ? row->sql : -1;
}

int rtosqltype(int type) { return sql_row_of(type) != nullptr ? type : sqlstype(type); }

int rtoctype(int type) {
    if (type == host_int32)
        return host_long;
    return host_of(type);
}

const char *rtypname(int type) {
    const sql_entry *row = sql_row_of(type);
    return row != nullptr ? row->name : "";
}

const char *qvt_typename(int type, int) { return rtypname(type); }

int rstr2type(char *text) {
    if (text == nullptr)
        return -1;
    for (char *at = text; *at != '\0'; ++at)
        if (*at >= 'a' && *at <= 'z')
            *at = static_cast<char>(*at - 'a' + 'A');
    for (const keyword &known : keywords)
        if (strcmp(text, known.text) == 0)
            return known.type;
    return -1;
}

int rtypmsize(int type, int length) {
    if (const sql_entry *row = sql_row_of(type))
        return size_by_rule(row->size, length);
    const host_entry *row = host_row_of(type);
    return row != nullptr ? size_by_rule(row->size, length) : 0;
}

size_t rtypalign(size_t address, int type) {
    const sql_entry *sql = sql_row_of(type);
    const host_entry *host = host_row_of(type);
    const int16_t align = sql != nullptr ? sql->align : host != nullptr ? host->align : int16_t{1};
    const auto mask = static_cast<size_t>(align) - 1;
    return align == 0 ? 0 : (address + mask) & ~mask;
}

size_t ralign(size_t address) { return (address + 7) & ~size_t{7}; }

int rsetnull(int type, void *variable) {
    const host_entry *row = host_row_of(host_of(type));
    if (row == nullptr)
        return 0;
    switch (row->null) {
    case null_form::none:
        break;
    case null_form::first_byte:
        write(variable, '\0');
        break;
    case null_form::int16:
        write(variable, int16_t{INT16_MIN});
        break;
    case null_form::int32:
        write(variable, int32_t{INT32_MIN});
        break;
    case null_form::long64:
        write(variable, int64_t{INT32_MIN});
        break;
    case null_form::float_ones:
        write(variable, UINT32_MAX);
        break;
    case null_form::double_ones:
        write(variable, UINT64_MAX);
        break;
    case null_form::decimal:
        write(variable, null_decimal);
        break;
    case null_form::dated:
        write(static_cast<char *>(variable) + offsetof(dtime_value, value), null_decimal);
        break;
    case null_form::blob:
        write(static_cast<char *>(variable) + offsetof(blob_rec, status), int32_t{-1});
        break;
    case null_form::int8:
        write(variable, int8_value{{0, 0}, 0});
        break;
    case null_form::collection:
        set_bits(variable, offsetof(collection_rec, cl_flags), collection_null);
        break;
    case null_form::binary:
        set_bits(variable, offsetof(host_binary, flags), host_binary_null);
        break;
    case null_form::boolean:
        write(variable, uint8_t{0xFF});
        break;
    case null_form::bigint:
        write(variable, INT64_MIN);
        break;
    }
    return 0;
}

int risnull(int type, const void *variable) {
    const host_entry *row = host_row_of(host_of(type));
    if (row == nullptr)
        return 0;
    switch (row->null) {
    case null_form::none:
        return 0;
    case null_form::first_byte:
        return holds(variable, '\0');
    case null_form::int16:
        return holds(variable, int16_t{INT16_MIN});
    case null_form::int32:
        return holds(variable, int32_t{INT32_MIN});
    case null_form::long64:
        return holds(variable, int64_t{INT32_MIN});
    case null_form::float_ones:
        return holds(variable, UINT32_MAX);
    case null_form::double_ones:
        return holds(variable, UINT64_MAX);
    case null_form::decimal:
        return is_null_decimal(variable);
    case null_form::dated:
        return is_null_decimal(static_cast<const char *>(variable) + offsetof(dtime_value, value));
    case null_form::blob:
        return word_at<int32_t>(variable, offsetof(blob_rec, status)) == -1;
    case null_form::int8:
        return word_at<int16_t>(variable, offsetof(int8_value, sign)) == 0;
    case null_form::collection:
        return (word_at<uint32_t>(variable, offsetof(collection_rec, cl_flags)) &
                collection_null) != 0;
    case null_form::binary:
        return (word_at<uint32_t>(variable, offsetof(host_binary, flags)) & host_binary_null) != 0;
    case null_form::boolean:
        return holds(variable, uint8_t{0xFF});
    case null_form::bigint:
        return holds(variable, INT64_MIN);
    }
    return 0;
}
