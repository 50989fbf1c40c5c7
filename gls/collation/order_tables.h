// What the comparers look up, made from the rows when the category is read.
//
// The rows of a locale object say what each character weighs; a walk through a text wants to know
// it in one step. So each expansion is kept with the rows of its characters, contractions are found
// by their first character, and the rows whose first weight settles a comparison by itself carry
// that weight in a table of their own.

#pragma once

#include <kestrion/locale_rec.h>
#include <kestrion/multi.h>

#include <stddef.h>
#include <stdint.h>

// A piece of a text with a row of its own: a character, or a contraction as met at one of its
// characters.
struct coll_unit {
    gl_wchar element; // the character; contraction_element for a contraction
    uint16_t row;
    uint8_t step; // characters to the next unit; 0 for a character without a row
};

struct order_tables {
    const multi_step *walk;  // flat form of row_table; never null
    uint16_t byte_rows[256]; // row by byte in a single-byte code set, the default for the rest
    uint8_t *row_facts;      // by row: bits of kestrion::row_fact
    uint16_t
        *first_weights; // by row: weight at the first level when it settles a comparison, else 0
    coll_unit *expansion_units; // the characters of all expansions
    uint32_t *expansion_starts; // by expansion, and one more: where its characters begin
    int32_t
        *contractions_by_start; // numbers of contractions by first character, then in table order
    int32_t ascii_rows;         // 1: the bytes 01-7F are characters with a row
    int32_t any_backward;       // 1: some level is walked backward
    int32_t any_dead_end;       // 1: some expansion holds a character without a row
};

namespace kestrion {

enum row_fact : uint8_t {
    opens_contraction = 1,    // some character of the row begins a contraction
    inside_contraction = 2,   // some character of the row continues one
    continues_contraction = 4 // some character of the row stands before the end of one
};

// The element of every contraction.
constexpr gl_wchar contraction_element = 1;

// The longest text, in characters, that is compared without an allocation.
constexpr int32_t stack_units = 127;

// Makes the tables of a category that has been read. Refuses what the walks could not serve:
// expansions that never end.
bool make_order_tables(locale_rec *lc);

void free_order_tables(collate_rec &r);

// The flat form of the row table if it has exactly the characters of the class table, so that one
// walk decodes a character and finds its row; else null.
const multi_step *walk_of_both(const locale_rec *lc);

// The unit of a character.
coll_unit unit_of(const collate_rec &r, gl_wchar wc);

// The first contraction of the table that the next characters spell, or null. `character` gives the
// character at an offset below `left`.
template <class Characters>
const coll_contraction *find_contraction(const collate_rec &r, const Characters &character,
                                         int32_t left) {
    const int32_t *numbers = r.order->contractions_by_start;
    const gl_wchar first = character(0);
    int32_t low = 0;
    for (int32_t high = r.contraction_count; low < high;) {
        const int32_t middle = low + (high - low) / 2;
        if (r.contractions[numbers[middle]].chars[0] < first)
            low = middle + 1;
        else
            high = middle;
    }
    for (; low < r.contraction_count; ++low) {
        const coll_contraction &c = r.contractions[numbers[low]];
        if (c.chars[0] != first)
            return nullptr;
        int32_t same = 1;
        while (same < c.length && same < left && c.chars[same] == character(same))
            ++same;
        if (same == c.length)
            return &c;
    }
    return nullptr;
}

} // namespace kestrion
