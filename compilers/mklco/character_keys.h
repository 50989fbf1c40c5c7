// The characters that LC_CTYPE of a locale source names, as numbers.
//
// A key is a code point, or after all code points the row of a charmap whose name gives none:
//
//     <U0041>      0x41
//     <j0101>      0x110000 + its row in the charmap
//
// A source names characters for all code sets at once; those that the charmap lacks have a key when
// they are code points.
#pragma once

#include "compilers/posix/charmap.h"
#include "compilers/posix/locale_source.h"

#include <optional>
#include <stddef.h>
#include <stdint.h>
#include <vector>

namespace kestrion {

class character_keys {
public:
    explicit character_keys(const charmap &map) : map_(map) {}

    size_t count() const { return code_point_limit + map_.rows.size(); } // above every key
    uint32_t of(const charmap_row &row) const;
    // The row that writes a character; null when the charmap lacks it.
    const charmap_row *row(uint32_t key) const;

    // The character that a token names; nothing when it is a name or bytes that the charmap lacks.
    // Throws source_error.
    std::optional<uint32_t> find(const source_statement &statement, size_t token) const;

    // The characters from the token before an ellipsis to the one after it. Throws source_error.
    //
    //     <U0041>..<U005A>          counts code points; "..(2).." takes every second one
    //     /xa1.../xa3               what the code set has between these bytes
    //     <j0101>....<j0109>        counts names in decimal; ".." in hexadecimal
    // All ranges of a source together have at most 16 million characters, some twenty times those of
    // the largest sources that there are.
    std::vector<uint32_t> range(const source_statement &statement, size_t ellipsis);

private:
    std::vector<uint32_t> code_points(const source_statement &statement, size_t ellipsis);
    std::vector<uint32_t> sequences(const source_statement &statement, size_t ellipsis);
    std::vector<uint32_t> names(const source_statement &statement, size_t ellipsis);
    void count_named(const source_statement &statement, size_t ellipsis, size_t characters);

    const charmap &map_;
    size_t named_ = 0; // characters of all ranges
};

} // namespace kestrion
