// Charmaps: which byte sequences a code set has and which character each of them is.
//
// A charmap is a POSIX character set description: a head of <name> value lines, the section CHARMAP
// with a row per character, and optionally a section WIDTH. The record has a row for every
// character, also where the source gives a range:
//
//     <U4E00>..<U4E02> /xb0/xa1        three rows: U+4E00 b0a1, U+4E01 b0a2, U+4E02 b0a3
//     %IRREVERSIBLE%<U005C> /x81/x5f   one-way: these bytes are read as U+005C, which is
//                                      written by the bytes of another row
//
// Ranges of WIDTH run in the order of the byte sequences between the two ends, all of one length;
// those with an end that has no row are ignored.
#pragma once

#include "compilers/posix/code_sequence.h"
#include "compilers/posix/source_place.h"
#include "compilers/posix/symbolic_name.h"

#include <span>
#include <stdint.h>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrion {

struct charmap_row {
    uint32_t code_point = no_code_point; // no_code_point: the row's name is not of the form <Uxxxx>
    uint32_t offset = 0;                 // of the row in the source
    uint32_t width_offset = 0;           // of the line that gives the width
    code_sequence sequence;
    int8_t width = -1;    // columns; -1: the charmap does not say
    bool one_way = false; // read so, never written so
};

class charmap {
public:
    // Reads a charmap; `source` must outlive it. Throws source_error.
    explicit charmap(const source_file &source);

    std::string code_set_name;
    std::vector<std::string> aliases;
    int mb_cur_min = 1;
    int mb_cur_max = 1;      // what the head says, raised to the longest sequence that a row has
    bool has_widths = false; // there is a section WIDTH
    std::vector<charmap_row> rows; // in the order of the source, one-way rows among them

    // The row that a character is written by; null when the code set lacks it.
    const charmap_row *find(uint32_t code_point) const;
    // The same for any symbolic name, without its angle brackets.
    const charmap_row *find_name(std::string_view name) const;
    // The row, two-way or one-way, that bytes are read as; null when they are not a character.
    const charmap_row *find_bytes(const code_sequence &wanted) const;
    // The rows, by their numbers, whose sequences lie between two of one length, in their order.
    std::span<const uint32_t> between(const code_sequence &first, const code_sequence &last) const;

    const source_file &source() const { return source_; }
    source_place place(const charmap_row &row) const { return {&source_, row.offset}; }

private:
    friend class charmap_reader;
    void index_rows();

    const source_file &source_;
    std::vector<std::vector<uint32_t>> pages_; // by code point / 256 and % 256: row + 1, or 0
    std::unordered_map<std::string, uint32_t> named_rows_;
    std::vector<uint32_t> by_bytes_; // rows by length and bytes, two-way ones first
};

// The loss of a character that begins with the bytes of another one, which tables cannot hold.
constexpr char prefix_loss[] = "these bytes begin with those of another character";
constexpr char prefix_remedy[] = "the object reads them as several characters";

} // namespace kestrion
