// Error numbers of the locale engine.
//
// An operation that fails stores one of these in the error word of its context: the first 32-bit
// field of a locale or conversion record, or `temperr` for a null context (<kestrion/ext_funcs.h>).
// Success leaves the word alone. A few numbers are used by several subjects in different senses;
// the header of each operation says which sense it means.

#pragma once

#include <stdint.h>

enum gls_error {
    GLS_OK = 0,
    GLS_ERR_BAD_CHARACTER = 1,    // no such character in the code set; no mapping in a conversion
    GLS_ERR_NULL_ARGUMENT = 2,    // an argument that must be given is null
    GLS_ERR_NO_MEMORY = 3,        // an allocation failed; as `err` of a table: a bad tree or array
    GLS_ERR_COUNT = 4,            // a negative count, or more than 15 group sizes
    GLS_ERR_END_BEFORE_START = 5, // the first pointer lies beyond the end pointer
    GLS_ERR_RANGE = 6,            // a scanned number does not fit
    GLS_ERR_SPECIFIER = 7,        // bad specifier or name; a character cut off or not measurable
    GLS_ERR_FILE = 8,             // a file can't be opened; a setting that can't be used
    GLS_ERR_ARGUMENT = 9,         // bad argument, category or base; no pattern or era matches
    GLS_ERR_MALFORMED = 11,       // a registry or locale object file breaks its grammar
    GLS_ERR_MIXED_CODE_SETS = 12, // the categories of one locale differ in code set
    GLS_ERR_READ = 13,            // read error on a file
    GLS_ERR_NO_ROOM = 14,         // the destination is too small
    GLS_ERR_NO_REGISTRY = 15,     // no registry file; a format that ends inside a directive
    GLS_ERR_END_OF_FILE = 16,     // end of file before a character
    GLS_ERR_MONEY_FORMAT = 20,    // bad conversion in a money format
    GLS_ERR_TABLE_LENGTH = 21,    // a table's sequences are longer than its reader allows
    GLS_ERR_FORMAT = 22,          // bad conversion in a format; text that doesn't match it
    GLS_ERR_FRACTION = 23,        // fraction of a second out of range
    GLS_ERR_SECOND = 24,          // second out of range
    GLS_ERR_MINUTE = 25,          // minute out of range
    GLS_ERR_HOUR = 26,            // hour out of range
    GLS_ERR_DAY = 27,             // day of the month out of range
    GLS_ERR_WEEKDAY = 28,         // day of the week out of range
    GLS_ERR_DAY_OF_YEAR = 29,     // day of the year out of range
    GLS_ERR_MONTH = 30,           // month out of range
    GLS_ERR_YEAR = 31,            // year out of range
    GLS_ERR_YEAR_NOT_WRITABLE = 41, // the year can't be written in this form
    GLS_ERR_PRECISION = 45,         // malformed precision in a format
    GLS_ERR_FLOAT_RANGE = 46,       // a floating number out of range
    GLS_ERR_CALENDAR = 50,          // a locale object names an unknown calendar
    GLS_ERR_OBJECT_VERSION = 51,    // a locale object of another compiler version
    GLS_ERR_CATEGORY = 55,          // a category failed without a word of its own
    GLS_ERR_ONE_LENGTH = 56,        // exactly one of two texts is counted
    GLS_ERR_OTHER_CODE_SET = 58     // a category's code set is not that of the first one
};
