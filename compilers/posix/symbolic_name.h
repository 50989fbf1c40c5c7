// Symbolic names of characters, as charmaps and locale sources write them in angle brackets.
//
//     U0041  U00010400   a code point, in 4 or 8 hexadecimal digits
//     j0101  zero        any other name
#pragma once

#include <optional>
#include <stddef.h>
#include <stdint.h>
#include <string>
#include <string_view>

namespace kestrion {

constexpr uint32_t no_code_point = 0xFFFFFFFF;
constexpr uint32_t code_point_limit = 0x110000; // one more than the last of Unicode

// The code point that a name gives, else no_code_point.
uint32_t code_point_of_name(std::string_view name);

// "U+20AC", for messages.
std::string code_point_text(uint32_t code_point);

// The names of a range such as j0101 to j0194, whose numbers count up. They are made one by one.
class counted_names {
public:
    // In base 10 or 16; nothing when the two are not a range. A name has at most 64 characters.
    static std::optional<counted_names> between(std::string_view first, std::string_view last,
                                                int base);

    uint32_t size() const { return size_; } // 1 to code_point_limit
    std::string name(uint32_t index) const;

private:
    std::string_view prefix_; // of the first name
    size_t digits_ = 0;       // of its number, with leading zeros
    uint32_t from_ = 0;
    uint32_t size_ = 0;
    int base_ = 10;
};
constexpr char not_a_name_range[] = "these two names are not a range";
constexpr char name_range_remedy[] = "write the same text, of up to 64 characters, twice with a "
                                     "number after it, the lower one first";

} // namespace kestrion
