// The units of datetimes and intervals, and the word that says which of them a value has.
//
// A qualifier is one 16-bit word, (length << 8) | (start << 4) | end: the first and the last unit
// of a value and the count of its decimal digits. Each field has two digits; a datetime's year has
// four, the first field of an interval as many as wanted, a fraction as many as its unit says.
//
//     qualifier               word            first field
//     YEAR TO DAY             2052  0x0804    4 + 2 + 2 digits
//     HOUR TO MINUTE          1128  0x0468
//     YEAR TO FRACTION(3)     4365  0x110d    4 + 5 * 2 + 3 digits
//     DAY(9) TO SECOND        3914  0x0f4a    9 digits of days
//     FRACTION TO FRACTION(3)  973  0x03cd    a start is always 12, whatever the end
//
// Digits of the first field: start - end + length.

#pragma once

enum datetime_unit {
    unit_year = 0,
    unit_month = 2,
    unit_day = 4,
    unit_hour = 6,
    unit_minute = 8,
    unit_second = 10,
    unit_fraction1 = 11, // as an end: one digit
    unit_fraction2 = 12,
    unit_fraction3 = 13,
    unit_fraction4 = 14,
    unit_fraction5 = 15,
    unit_fraction = 12, // as a start
};

// The word for `length` digits from unit `start` to unit `end`.
#define qualifier_word(length, start, end) ((length)*256 + (start)*16 + (end))

enum datetime_qualifier {
    qualifier_year_to_day = qualifier_word(8, unit_year, unit_day),
    qualifier_year_to_second = qualifier_word(14, unit_year, unit_second),
    qualifier_day9_to_second = qualifier_word(15, unit_day, unit_second),
    qualifier_year_to_fraction3 = qualifier_word(17, unit_year, unit_fraction3),
    qualifier_year_to_fraction5 = qualifier_word(19, unit_year, unit_fraction5),
    qualifier_length_limit = 25, // a value has fewer digits
};
