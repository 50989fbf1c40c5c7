// One side of a conversion: the characters of a code set and the bytes that each is written by.
//
// A side is a charmap; or the fixed-width Unicode form UCS-2 or UCS-4, made of the other side's
// characters; or the 7-bit form of an EUC charmap with shift states: its single bytes in the normal
// state, its pairs of high bytes, without their high bits, in the shifted one, and the control
// characters in both.
#pragma once

#include "compilers/posix/charmap.h"

#include <optional>
#include <stdint.h>
#include <string>
#include <unordered_map>
#include <vector>

namespace kestrion {

struct side_row {
    code_sequence sequence;
    std::u32string characters; // one, or several that the row writes together
    bool one_way = false;      // read so, never written so
    bool shifted = false;      // of the shifted state
    source_place place;
};

// Bytes to write, all in one state.
struct written_bytes {
    code_sequence bytes;
    bool shifted = false;
};

struct code_set_side {
    std::string name;
    std::vector<side_row> rows; // ascending by sequence, each sequence once in a state
    bool stateful = false;
    code_sequence shift_in, shift_out; // of a stateful side
    int unicode_bytes = 0;             // 2 or 4 of a fixed-width Unicode form, else 0

    // The row that writes a character, or null: of several two-way rows the first of the charmap.
    const side_row *find(char32_t character) const;
    // Whether bytes can be written: a character in either state, or several in the normal one.
    std::optional<written_bytes> spelled(const code_sequence &bytes) const;

    void add(side_row row);
    void finish(); // sorts, drops sequences that are there twice, and indexes

private:
    std::unordered_map<char32_t, size_t> writers_;
};

// The side of a charmap. Rows named by anything but Unicode names are left out.
code_set_side side_of_charmap(const std::string &name, const charmap &map);

// The 7-bit form; rows that it cannot hold are losses.
code_set_side shifted_side(const std::string &name, const charmap &map,
                           const code_sequence &shift_in, const code_sequence &shift_out,
                           diagnostics &said);

// UCS-2 or UCS-4 with the characters of the other side and one more; UCS-2 lacks those beyond
// U+FFFF.
constexpr char32_t last_of_two_bytes = 0xffff;
code_set_side unicode_side(const code_set_side &other, int bytes,
                           std::optional<char32_t> more = std::nullopt);

} // namespace kestrion
