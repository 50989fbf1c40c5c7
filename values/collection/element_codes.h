// The SQL type codes that an element's form depends on.

#pragma once

namespace kestrion {

// Stored in columns: never renumber.
enum element_code {
    sql_char = 0,
    sql_smallint = 1,
    sql_integer = 2,
    sql_float = 3,
    sql_smallfloat = 4,
    sql_decimal = 5,
    sql_serial = 6,
    sql_date = 7,
    sql_money = 8,
    sql_datetime = 10,
    sql_varchar = 13,
    sql_interval = 14,
    sql_nchar = 15,
    sql_nvarchar = 16,
    sql_int8 = 17,
    sql_serial8 = 18,
    sql_variable_udt = 40,
    sql_fixed_udt = 41,
    sql_lvarchar = 43,
    sql_boolean = 45,
    sql_bigint = 52,
    sql_bigserial = 53,
};

} // namespace kestrion
