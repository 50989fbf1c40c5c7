// Values into the variables of programs, and back.
//
//     char name[11];
//     int16_t indicator;
//     rvalcvar(&cell, name, host_trimmed_text, sizeof name, &indicator);
//         indicator 0: "Ann"    -1: the value is NULL, name is ""    42: cut from 42 bytes    1: failed
//
//     value_rec cell;
//     int32_t count = 7;
//     rcvarval(&count, host_int32, &cell, 0, NULL);          // converts like an integer column
//
// Host types are those of <kestrion/value_types.h>; a SQL type stands for its host type. Lengths are
// bytes of the variable with its terminator. Datetimes and intervals are converted to the variable's
// own qualifier where that is valid, else to the one given as length, else they keep theirs.
// Variables of decimal and money take precision * 256 + scale as length; 0 and 22 ask for nothing.

#pragma once

#include <stdint.h>

#include <kestrion/value.h>

#ifdef __cplusplus
extern "C" {
#endif

enum blank_text {
    blank_by_environment = -1, // " " where BLANK_STRINGS_NOT_NULL is set, else ""
    blank_empty = 0,           // blanks alone give ""
    blank_kept = 1,            // ... give " "
};

// Converts a value into a variable.
// indicator   may be null; gets 0, -1 for NULL, 1 after an error, or the length of a text that was
//             cut, 32767 at most.
// blank_flag  of type 109: a blank_text.
// Returns 0 or an error, which is the conversion error, too. After an error a variable of a number,
// date or datetime is NULL, but for 16 and 32 bits of an integer that was cut down.
//     err_host_text_size (-1235)  a text variable of 1 byte or less, or a file name that is too long
//     err_blob_needed (-1269)     for a blob from another type, and for a file from one that isn't text
//     err_binary_size (-1821)     binary longer than the variable
//     err_no_buffer_memory (-837) a variable of type 121 or 124 could not grow; it is empty then
//     err_coll_type (-9602), err_decimal_precision (-1226), err_smallfloat_range (-1222), and those of
//     <kestrion/value_steps.h> and <kestrion/value_text.h>
int rvalcvar(value_rec *value, void *variable, int host_type, int host_length, int16_t *indicator);
int rvalcvar_flag(value_rec *value, void *variable, int host_type, int host_length,
                  int16_t *indicator, int blank_flag);

// Makes a value of a variable. Texts, files and binary data point at the variable. A negative
// indicator says NULL, else the variable's NULL form, which isn't looked for in varying text that
// has an indicator.
// host_length  where it is 0, a text goes to its terminator.
// Returns 0, or -1 for a null pointer, an unknown type, a decimal that decverify() refuses, and a
//         long integer beyond 32 bits.
int rcvarval(void *variable, int host_type, value_rec *value, int host_length,
             const int16_t *indicator);

#ifdef __cplusplus
}
#endif
