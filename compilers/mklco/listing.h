// A locale object as a text that people can read and change, and that compiles to the same bytes.
//
//     locale_object 11
//     head "SOURCE=en_US ISO-8859-1"
//     code_set "8859-1"
//     class_name 0 full_width       a class of its own, by its bit; "class" may then name it
//     class 00..08 cntrl            characters by their bytes, ranges in the last byte
//     class 30..39 digit graph print xdigit
//     class 80 -                    a character without a class
//     pair 41 61                    upper and lower case, - for none; the first pair has index 1
//     case 41..5a 1+                index of the first character, counting up
//     growth 1
//     collation as_specified        or thai_smo, with no more of the next seven
//     code_order 1
//     max_weight 257
//     levels 1 2                    directions
//     row 00..ff 0+                 like case
//     carrier f7bfbfbf 9            row of a sequence that is not a character
//     contraction 5 63 68           row, characters
//     expansion 61 65               characters
//     weights 0 2 2                 of row 0, one for each level
//     LC_NUMERIC decimal_point "."  bytes outside ASCII as \xa0
//     LC_NUMERIC grouping 3 0
//     end
//
// Numbers of case, row and of rows, code_order and max_weight are decimal, all others hexadecimal.
// Statements may come in any order, but for those that count (pair, expansion, contraction,
// weights), for class_name before class, and levels before weights. docs/man/mklco.1 has more.
#pragma once

#include "compilers/mklco/object.h"
#include "compilers/posix/source_place.h"

#include <string>

namespace kestrion {

std::string write_listing(const locale_object &object);

// True when the text is a listing and not a locale source.
bool is_listing(const source_file &source);

// The object of a listing. Throws source_error.
locale_object read_listing(const source_file &source);

} // namespace kestrion
