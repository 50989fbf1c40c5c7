// The type codes of values: SQL types 0 to 53, host types 100 to 125, and what belongs to each.
//
//     code  name        host type  bytes      width     code  name           host type  bytes
//     0     char        100        n + 1      n         17    int8           117        12
//     1     smallint    101        2          6         19    set            118        120
//     2     integer     102        4          11        22    row            123        120
//     3     float       105        8          14        40    variable udt   121        n
//     5     decimal     107        22                   43    lvarchar       119        n
//     7     date        110        4                    45    boolean        122        1
//     10    datetime    112        24                   52    bigint         125        8
//
// A SQL type says what a column holds, a host type what a program's variable is. Where an operation
// takes either, codes below 54 are SQL types. n is the column's or the variable's length.
//
//     char name[] = "int8";
//     int type = rstr2type(name);            // 17, and `name` is "INT8"
//     int8_value count;
//     rsetnull(sqlctype(type), &count);      // sign 0

#pragma once

#include <stddef.h>
#include <stdint.h>

// Stored in columns and used by other programs: never renumber.
enum sql_type {
    sql_char = 0,
    sql_smallint = 1,
    sql_integer = 2,
    sql_float = 3,
    sql_smallfloat = 4,
    sql_decimal = 5,
    sql_serial = 6,
    sql_date = 7,
    sql_money = 8,
    sql_null = 9,
    sql_datetime = 10,
    sql_byte = 11,
    sql_text = 12,
    sql_varchar = 13,
    sql_interval = 14,
    sql_nchar = 15,
    sql_nvarchar = 16,
    sql_int8 = 17,
    sql_serial8 = 18,
    sql_set = 19,
    sql_multiset = 20,
    sql_list = 21,
    sql_row = 22,
    sql_collection = 23,
    sql_variable_udt = 40,
    sql_fixed_udt = 41,
    sql_lvarchar = 43,
    sql_boolean = 45,
    sql_bigint = 52,
    sql_bigserial = 53,
    sql_type_count = 54,
};

enum host_type {
    host_text = 100,            // terminated
    host_int16 = 101,           // NULL -32768
    host_int32 = 102,           // NULL -2147483648
    host_long = 103,            // int64_t with the range and the NULL of 102
    host_float = 104,           // NULL: all bits set
    host_double = 105,          // NULL: all bits set
    host_decimal = 107,         // dec_value
    host_fixed_text = 108,      // blank padded, no terminator
    host_trimmed_text = 109,    // terminated, without trailing blanks
    host_date = 110,            // int32_t
    host_money = 111,           // dec_value
    host_datetime = 112,        // dtime_value
    host_blob = 113,            // blob_rec; NULL: status -1
    host_varying_text = 114,    // terminated
    host_interval = 115,        // intv_value
    host_file = 116,            // text that names a file
    host_int8 = 117,            // int8_value
    host_collection = 118,      // collection_rec
    host_long_text = 119,       // terminated
    host_fixed_binary = 120,    // bytes; has no NULL
    host_variable_binary = 121, // host_binary
    host_boolean = 122,         // one byte; NULL 0xFF
    host_row = 123,             // collection_rec
    host_text_pointer = 124,    // host_binary
    host_bigint = 125,          // int64_t; NULL INT64_MIN
};

#ifdef __cplusplus
extern "C" {
#endif

// -- Codes ---------------------------------------------------------------------------------------

// The host type of a SQL type, and the SQL type of a host type; -1 for none.
int sqlctype(int type);
int sqlstype(int type);

// The SQL type of either kind of code, and the host type; -1 for none. rtoctype(102) is 103, for
// programs whose integers are long; other host codes, and all above 53, stay as they are.
int rtosqltype(int type);
int rtoctype(int type);

// The name of a SQL type in small letters, empty for none; NULL has none either.
const char *rtypname(int type);
const char *qvt_typename(int type, int extended_id); // the same

// The SQL type of a keyword, which is raised to capitals in place, ASCII letters alone; -1 for a
// null pointer and for a text that is not a keyword. Example "character" -> 0, "null" -> 9.
int rstr2type(char *keyword);

// -- Sizes ---------------------------------------------------------------------------------------

// Bytes of a value in memory; 0 for an unknown type. Example 13 (varchar), 20 -> 21.
int rtypmsize(int type, int length);

// The address rounded up to the type's alignment; 0 for fixed and variable binary types, whose
// alignment is their own business.
size_t rtypalign(size_t address, int type);

// The address rounded up to 8.
size_t ralign(size_t address);

// -- NULL ----------------------------------------------------------------------------------------

// Writes a type's NULL into a variable. Unknown types and fixed binary leave it alone. Of datetimes
// and intervals the qualifier stays; of collections and variable binary only a flag is set.
// Always 0.
int rsetnull(int type, void *variable);

// 1 when the variable holds its type's NULL, else 0. Texts are NULL when their first byte is 0.
int risnull(int type, const void *variable);

#ifdef __cplusplus
}
#endif
