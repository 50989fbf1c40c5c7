// Error numbers of the runtime, each with the rule it stands for.
//
// Negative numbers, with texts in the catalogues of the same number. Stored in other programs and
// in scripts: never renumber. A test holds that every number here has a text.

#pragma once

#include <stdint.h>

// -- Environment, as `gerrno` has them -----------------------------------------------------------
enum {
    err_env_no_memory = -2,    // no memory for a value or a table
    err_env_no_user = -3,      // the user has no account record
    err_env_value_size = -4,   // a value over its limit, or empty
    err_env_unknown_name = -5, // no such variable
    err_env_null_name = -7     // no name was given
};

// -- General -------------------------------------------------------------------------------------
enum {
    err_no_block = -406,         // no memory, or no control block
    err_blob_place = -608,       // a blob where none is allowed
    err_no_buffer_memory = -837, // no memory for a buffer or a collection
    err_bad_character = -941,    // a character that the code set does not have
    err_process_locale = -7206   // the system refuses the locale
};

// -- Numbers -------------------------------------------------------------------------------------
enum {
    err_overflow = -1200,          // exponent too great, integer too large
    err_underflow = -1201,         // exponent too small
    err_zero_divide = -1202,       // division by zero
    err_display_width = -1207,     // value wider than its field
    err_not_a_number = -1213,      // text is not a number
    err_smallint_range = -1214,    // outside -32767..32767
    err_integer_range = -1215,     // outside -2147483647..2147483647
    err_smallfloat_range = -1222,  // magnitude out of a smallfloat's range
    err_float_range = -1223,       // not representable as a float
    err_decimal_precision = -1226, // decimal does not fit its column
    err_result_size = -1273        // a text result does not fit its buffer
};

// -- Dates ---------------------------------------------------------------------------------------
enum {
    err_date_year = -1204,      // invalid year
    err_date_month = -1205,     // invalid month
    err_date_day = -1206,       // invalid day
    err_date_range = -1210,     // outside years 1 to 9999
    err_date_no_memory = -1211, // no memory for a date format
    err_date_format = -1212,    // DBDATE lacks a field or breaks its grammar
    err_date_text = -1218       // text is not a date
};

// -- Message catalogues --------------------------------------------------------------------------
enum {
    err_catalogue_not_opened = -1227, // the file cannot be opened
    err_no_such_message = -1228,      // the number is not in the file
    err_catalogue_magic = -1229,      // not a catalogue
    err_catalogue_path = -1230,       // no path could be built
    err_catalogue_cut = -1231,        // index or text reaches beyond the file
    err_message_too_long = -1232      // the text is longer than the buffer
};

// -- Conversions ---------------------------------------------------------------------------------
enum {
    err_null_refused = -1225,     // NULL into a NOT NULL column
    err_host_text_size = -1235,   // text longer than its host variable
    err_no_conversion = -1260,    // impossible between these types
    err_blob_needed = -1269,      // the host variable takes a blob only
    err_column_text_size = -1279, // text too long, ANSI database
    err_no_routine = -1285,       // type without a conversion routine
    err_binary_size = -1821       // binary data longer than the buffer
};

// -- Datetime and interval -----------------------------------------------------------------------
enum {
    err_dt_first_field = -1261,  // too many digits in the first field
    err_dt_character = -1262,    // not a digit, or a delimiter is missing
    err_dt_field_range = -1263,  // field out of range
    err_dt_extra = -1264,        // extra characters at the end
    err_intv_overflow = -1265,   // value too large for the interval
    err_dt_incompatible = -1266, // qualifiers do not go together
    err_dt_result = -1267,       // result out of range
    err_dt_qualifier = -1268,    // invalid qualifier
    err_dt_fraction = -1271      // fraction without its point
};

// -- Collections ---------------------------------------------------------------------------------
enum {
    err_coll_type = -9602,          // collection types do not match
    err_coll_duplicate = -9874,     // element is in the SET already
    err_coll_no_type = -9969,       // element type information missing
    err_coll_element_size = -9973,  // size differs, fixed-size collection
    err_coll_null = -9976,          // operation on a NULL collection
    err_coll_null_element = -9978,  // NULL element refused
    err_coll_position = -9980,      // position on other than a LIST
    err_coll_delete_shared = -9981, // another cursor on the row to delete
    err_coll_update_shared = -9982, // another cursor on the row to update
    err_coll_row_deleted = -9983,   // change on a deleted row
    err_coll_no_element = -9986,    // no element at the cursor
    err_coll_cursor_open = -9987    // cursor is open on it already
};

// -- Locale environment --------------------------------------------------------------------------
enum {
    err_locale_load = -23101,        // locale categories cannot be loaded
    err_locale_no_memory = -23102,   // no memory while the locale was set up
    err_locale_conversion = -23104,  // conversion object cannot be opened
    err_locale_structure = -23108,   // locale record cannot be made
    err_locale_category = -23109,    // a category was not named
    err_locale_environment = -23110, // environment variable processing failed
    err_locale_argument = -23111,    // unknown kind of initialisation
    err_locale_code_sets = -23115,   // categories in different code sets
    err_locale_portable = -34394     // code set fails the ABCDE check
};
