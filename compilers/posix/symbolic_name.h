// Symbolic names of characters, as charmaps and locale sources write them in angle brackets.
//
//     U0041  U00010400   a code point, in 4 or 8 hexadecimal digits
//     j0101  zero        any other name
#pragma once

#include <stdint.h>
#include <string>
#include <string_view>
#include <vector>

namespace kestrion {

constexpr uint32_t no_code_point = 0xFFFFFFFF;
constexpr uint32_t code_point_limit = 0x110000; // one more than the last of Unicode

// The code point that a name gives, else no_code_point.
uint32_t code_point_of_name(std::string_view name);

// "U+20AC", for messages.
std::string code_point_text(uint32_t code_point);

// The names of a range such as j0101 to j0194, whose numbers count up in base 10 or 16; none when
// the two make no range.
std::vector<std::string> counted_names(std::string_view first, std::string_view last, int base);

} // namespace kestrion
