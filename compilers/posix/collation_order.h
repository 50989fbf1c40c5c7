// The order that LC_COLLATE of a locale source describes, with all that it copies and reorders.
//
// A source lists elements. An element is a symbol, which only weights name, a character, or a
// collating element, which is several characters. Its place in the list is what a weight that names
// it stands for; the weights of a character say which places count at each level:
//
//     collating-symbol <S0061>                        declares a symbol
//     <S0061>                                         gives it the next place
//     order_start <LATIN>;forward;forward;forward,position
//     <U0061> <S0061>;<BASE>;<U0061>                  "a": three levels, the last by its own place
//     <U00DF> "<S0073><S0073>";<BASE>;<U00DF>         sharp s: two places at level 1
//     <U0301> IGNORE;<AIGUT>;<U0301>                  nothing at level 1
//     .. ..;IGNORE;IGNORE                             the characters between its neighbours, each
//                                                     by its own place
//     order_end
//     reorder-after <S007A>                           what follows is placed after <S007A>
//     <a-ring>
//     <U00E5> <a-ring>;<BASE>;<U00E5>                 replaces the weights of "a" with ring
//     reorder-end
//
// A line without weights, or with fewer than its section has levels, weighs by its own place there.
// What names a section alone (script, order_start) makes a list of its own; the lists follow each
// other in the order of their order_start lines, which reorder-sections-after changes.
#pragma once

#include "compilers/posix/source_library.h"

#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

namespace kestrion {

struct collation_element;

// What counts of an element at one level: places, in the order in which they count. None: ignored.
using collation_weight = std::vector<const collation_element *>;

// How a section's characters are compared at one level.
struct collation_direction {
    bool backward = false;
    bool position = false; // what is ignored counts by its position
};

struct collation_section {
    std::string name;                        // empty for the lines outside a named one
    std::vector<collation_direction> levels; // none: only lists places
    source_place place;                      // of its order_start
    collation_element *first = nullptr;      // of its list
    collation_element *last = nullptr;
};

struct collation_element {
    std::string name;                      // of a symbol or a collating element
    std::vector<uint32_t> characters;      // code points; none: a symbol
    bool declared = false;                 // by a declaration or a place; characters always are
    bool listed = false;                   // it has a place
    bool in_table = false;                 // declared by a source that is no locale but a table
    uint32_t order = 0;                    // its place, from 0, once all is read
    std::vector<collation_weight> weights; // by level; for those left out, its own place
    collation_section *rules = nullptr;    // the section whose directions hold for it
    collation_section *list = nullptr;     // the section in whose list it is
    source_place place;                    // of the line that lists it, else of its first mention
    collation_element *previous = nullptr;
    collation_element *next = nullptr;

    // What counts of it at a level.
    collation_weight weight(size_t level) const {
        return level < weights.size() ? weights[level] : collation_weight{this};
    }
};

// Elements and sections stay where they are, since they point at each other.
class collation_order {
public:
    std::deque<collation_element> elements;
    std::deque<collation_section> sections;
    std::vector<collation_section *> section_order; // in which the lists follow each other

    // The element of a character or a name; a new one, not yet declared, when there is none.
    collation_element &character(uint32_t code_point);
    collation_element &named(std::string_view name);
    // Makes a name mean another element.
    void rename(std::string_view name, collation_element &meant);
    // The section of a name; a new one, last in order, when there is none.
    collation_section &section_named(std::string_view name);

    // Puts an element into a list after another one, at the start for null.
    void insert(collation_element &element, collation_section &list, collation_element *after);
    // Moves a section's list after another's.
    void move_section(collation_section &section, const collation_section &after);
    // Gives all listed elements the numbers of their places.
    void number_places();

    // The listed element of a character; null when the source does not order it.
    const collation_element *find(uint32_t code_point) const;
    // The most levels that a section has.
    size_t level_count() const;

private:
    void unlink(collation_element &element);

    std::unordered_map<uint32_t, collation_element *> characters_;
    std::unordered_map<std::string, collation_element *> names_;
};

// Reads LC_COLLATE of a source. What is odd and harmless is a warning in `said`. Throws
// source_error.
void read_collation_order(source_library &library, const locale_source &source, diagnostics &said,
                          collation_order &order);

} // namespace kestrion
