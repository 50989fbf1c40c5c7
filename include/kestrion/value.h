// Values of any SQL type: one cell that carries them between columns, texts and variables.
//
//     value_rec cell = {0};
//     cell.type = sql_char;
//     cell.payload.text.data = "12.5";
//     cell.payload.text.text_length = 4;
//     unsigned char column[3];                             // DECIMAL(4,1)
//     rvaldata(&cell, column, sql_decimal, 0x0401, sizeof column);
//     rdataval(column, sql_decimal, 0x0401, &cell);        // type 5, a dec_value of 12.5
//
// The length word of a column is its precision * 256 + scale (scale 255: floating) for decimal and
// money, the qualifier for datetime and interval, else bytes; of a varchar the low byte is the
// greatest length. Cells start zeroed. They own nothing: texts and binary data are pointers, which
// live as long as what they point at.

#pragma once

#include <stdint.h>

#include <kestrion/decimal.h>
#include <kestrion/int8.h>
#include <kestrion/value_binary.h>

enum {
    value_keep_id = 0x800,   // type: a load keeps extended_id
    value_pad_zero = 0x20,   // text_flags: pad with zero bytes, not blanks
    column_not_null = 0x100, // column type word: the column refuses NULL
    word_smallint = 5 * 256, // length words of the numbers: digits * 256 + scale
    word_integer = 10 * 256,
    word_int8 = 19 * 256,
    word_smallfloat = 8 * 256 + 255,
    word_float = 16 * 256 + 255,
    collection_null = 4,             // cl_flags: the value is NULL
    collection_owns = 0x1000000,     // cl_flags: the record owns its block
    collection_owns_type = 0x2000000 // cl_flags: and its type
};

// A collection or row as a cell carries it.
typedef struct collection_rec {
    uint32_t reserved_first;
    uint32_t cl_handle; // server handle
    void *cl_curs;      // open cursors
    int32_t cl_len;     // bytes of all elements
    int32_t cl_cardinality;
    uint32_t cl_isfixed;
    uint32_t cl_elsize;
    uint32_t cl_flags; // collection_null ...
    void *words[10];   // change log, block and types: the collection's own business
} collection_rec;

static_assert(sizeof(collection_rec) == 120, "programs hold collections of this size");

// Texts (types 0, 13, 15, 16, 43) and binary (40, 41, 45; a boolean is one byte).
typedef struct value_text {
    const void *data;
    int32_t text_length; // bytes; of a date, which has none here, the length of its text
    uint32_t text_flags; // value_pad_zero
} value_text;

typedef struct value_rec {
    uint16_t type;        // SQL type in the low byte, value_keep_id; or a host type
    int16_t null_flag;    // 0, or -1 for NULL
    uint16_t extended_id; // of a user's type
    int32_t length_word;  // precision and scale, or qualifier
    union {
        int32_t integer;           // smallint, integer, serial, date
        float single;              // smallfloat
        double number;             // float
        dec_value decimal;         // decimal, money; datetime and interval with length_word
        int8_value int8;           // int8, serial8
        int64_t bigint;            // bigint, bigserial
        blob_rec blob;             // byte, text
        collection_rec collection; // set, multiset, list, row, collection
        value_text text;
    } payload;
} value_rec;

#ifdef __cplusplus
extern "C" {
#endif

// Converts a value to a column's type and stores it in `stored`, of as many bytes as the type and
// length say: char n, varchar 1 + the low byte, lvarchar and variable types at least
// binary_row_header. Where an error keeps the value from being stored, the NULL form or a part is.
//
//     column type      stored form
//     0, 15            the text, blank padded; NULL has a first byte 0
//     13, 16           a length byte, the text, zero bytes; NULL is 01 00 00 ...
//     1                2 bytes, most significant first
//     2, 6, 7, 52, 53  4 and 8 bytes (stlong, stbigint)
//     17, 18           10 bytes (stint8)
//     3, 4             8 and 4 bytes, in the database's byte order, see qvtGEN_setFloatType
//     5, 8, 10, 14     (precision + (scale & 1) + 3) >> 1 bytes (stdecimal)
//     11, 12           112 bytes (tblobstore)
//     40, 41, 43, 45   <kestrion/value_binary.h>
//
// Lengths of columns of types 40, 41, 43 and 45 are the bytes of data that they take, 0 for an
// lvarchar of 2048; the header comes on top.
//
// Returns 0 or an error, which is the conversion error as well:
//     err_no_block (-406), err_null_refused (-1225), err_blob_place (-608): checked first
//     err_no_routine (-1285)        a type without stored form
//     err_column_text_size (-1279)  a text that is too long, in an ANSI database
//     err_decimal_precision (-1226), err_smallfloat_range (-1222), err_binary_size (-1821),
//     err_coll_type (-9602), and those of <kestrion/value_steps.h>
int rvaldata(value_rec *value, void *stored, int column_type, int column_length);

// Loads a column. Texts and binary point into `stored`. The type is stored[...]'s own; extended_id
// is kept only where the cell's type has value_keep_id. A varchar whose length has a low byte of 0
// is as long as its length byte says: the caller answers for 256 bytes.
// Returns 0; err_no_routine; err_decimal_precision for a decimal column of more than 32 digits;
//         err_binary_size for a binary value that is longer than its column.
int rdataval(const void *stored, int column_type, int column_length, value_rec *value);

// Rounds a decimal to a column's scale, or to its precision where the scale floats, in place.
// Returns 0, or err_decimal_precision when it has too many digits before the point.
// Example 99.995 in (5,2) -> 100.00; 999.995 -> err_decimal_precision
int chkprec(dec_value *dec, int word);

#ifdef __cplusplus
}
#endif
