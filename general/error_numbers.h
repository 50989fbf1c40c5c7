// Error numbers of the runtime, each with the rule it stands for.
//
// Negative numbers, with texts in the catalogues of the same number. Stored in other programs and
// in scripts: never renumber. A test holds that every number here has a text.

#pragma once

#include <stdint.h>

// -- Environment, as `gerrno` has them -----------------------------------------------------------
inline constexpr int32_t err_env_no_memory = -2;    // no memory for a value or a table
inline constexpr int32_t err_env_no_user = -3;      // the user has no account record
inline constexpr int32_t err_env_value_size = -4;   // a value over its limit, or empty
inline constexpr int32_t err_env_unknown_name = -5; // no such variable
inline constexpr int32_t err_env_null_name = -7;    // no name was given

// -- General -------------------------------------------------------------------------------------
inline constexpr int32_t err_no_block = -406;         // no memory, or no control block
inline constexpr int32_t err_blob_place = -608;       // a blob where none may stand
inline constexpr int32_t err_no_buffer_memory = -837; // no memory for a buffer or a collection
inline constexpr int32_t err_bad_character = -941;    // a character that the code set does not have
inline constexpr int32_t err_process_locale = -7206;  // the system refuses the locale

// -- Numbers -------------------------------------------------------------------------------------
inline constexpr int32_t err_overflow = -1200;          // exponent too great, integer too large
inline constexpr int32_t err_underflow = -1201;         // exponent too small
inline constexpr int32_t err_zero_divide = -1202;       // division by zero
inline constexpr int32_t err_display_width = -1207;     // value wider than its field
inline constexpr int32_t err_not_a_number = -1213;      // text is no number
inline constexpr int32_t err_smallint_range = -1214;    // outside -32767..32767
inline constexpr int32_t err_integer_range = -1215;     // outside -2147483647..2147483647
inline constexpr int32_t err_smallfloat_range = -1222;  // magnitude out of a smallfloat's range
inline constexpr int32_t err_float_range = -1223;       // not representable as a float
inline constexpr int32_t err_decimal_precision = -1226; // decimal does not fit its column
inline constexpr int32_t err_result_size = -1273;       // a text result does not fit its buffer

// -- Dates ---------------------------------------------------------------------------------------
inline constexpr int32_t err_date_year = -1204;      // invalid year
inline constexpr int32_t err_date_month = -1205;     // invalid month
inline constexpr int32_t err_date_day = -1206;       // invalid day
inline constexpr int32_t err_date_range = -1210;     // outside years 1 to 9999
inline constexpr int32_t err_date_no_memory = -1211; // no memory for a date format
inline constexpr int32_t err_date_format = -1212;    // DBDATE lacks a field or breaks its grammar
inline constexpr int32_t err_date_text = -1218;      // text is no date

// -- Message catalogues --------------------------------------------------------------------------
inline constexpr int32_t err_catalogue_not_opened = -1227; // the file cannot be opened
inline constexpr int32_t err_no_such_message = -1228;      // the number is not in the file
inline constexpr int32_t err_catalogue_magic = -1229;      // not a catalogue
inline constexpr int32_t err_catalogue_path = -1230;       // no path could be built
inline constexpr int32_t err_catalogue_cut = -1231;        // index or text reaches beyond the file
inline constexpr int32_t err_message_too_long = -1232;     // the text is longer than the buffer

// -- Conversions ---------------------------------------------------------------------------------
inline constexpr int32_t err_null_refused = -1225;     // NULL into a NOT NULL column
inline constexpr int32_t err_host_text_size = -1235;   // text longer than its host variable
inline constexpr int32_t err_no_conversion = -1260;    // impossible between these types
inline constexpr int32_t err_blob_needed = -1269;      // the host variable takes a blob only
inline constexpr int32_t err_column_text_size = -1279; // text too long, ANSI database
inline constexpr int32_t err_no_routine = -1285;       // type without a conversion routine
inline constexpr int32_t err_binary_size = -1821;      // binary data longer than the buffer

// -- Datetime and interval -----------------------------------------------------------------------
inline constexpr int32_t err_dt_first_field = -1261;  // too many digits in the first field
inline constexpr int32_t err_dt_character = -1262;    // no digit, or a delimiter is missing
inline constexpr int32_t err_dt_field_range = -1263;  // field out of range
inline constexpr int32_t err_dt_extra = -1264;        // extra characters at the end
inline constexpr int32_t err_intv_overflow = -1265;   // value too large for the interval
inline constexpr int32_t err_dt_incompatible = -1266; // qualifiers do not go together
inline constexpr int32_t err_dt_result = -1267;       // result out of range
inline constexpr int32_t err_dt_qualifier = -1268;    // invalid qualifier
inline constexpr int32_t err_dt_fraction = -1271;     // fraction without its point

// -- Collections ---------------------------------------------------------------------------------
inline constexpr int32_t err_coll_type = -9602;          // collection types do not match
inline constexpr int32_t err_coll_duplicate = -9874;     // element is in the SET already
inline constexpr int32_t err_coll_no_type = -9969;       // element type information missing
inline constexpr int32_t err_coll_element_size = -9973;  // size differs, fixed-size collection
inline constexpr int32_t err_coll_null = -9976;          // operation on a NULL collection
inline constexpr int32_t err_coll_null_element = -9978;  // NULL element refused
inline constexpr int32_t err_coll_position = -9980;      // position on other than a LIST
inline constexpr int32_t err_coll_delete_shared = -9981; // another cursor on the row to delete
inline constexpr int32_t err_coll_update_shared = -9982; // another cursor on the row to update
inline constexpr int32_t err_coll_row_deleted = -9983;   // change on a deleted row
inline constexpr int32_t err_coll_no_element = -9986;    // no element at the cursor
inline constexpr int32_t err_coll_cursor_open = -9987;   // cursor is open on it already

// -- Locale environment --------------------------------------------------------------------------
inline constexpr int32_t err_locale_load = -23101;        // locale categories cannot be loaded
inline constexpr int32_t err_locale_no_memory = -23102;   // no memory while the locale was set up
inline constexpr int32_t err_locale_conversion = -23104;  // conversion object cannot be opened
inline constexpr int32_t err_locale_structure = -23108;   // locale record cannot be made
inline constexpr int32_t err_locale_category = -23109;    // a category was not named
inline constexpr int32_t err_locale_environment = -23110; // environment variable processing failed
inline constexpr int32_t err_locale_argument = -23111;    // unknown kind of initialisation
inline constexpr int32_t err_locale_code_sets = -23115;   // categories in different code sets
inline constexpr int32_t err_locale_portable = -34394;    // code set fails the ABCDE check
