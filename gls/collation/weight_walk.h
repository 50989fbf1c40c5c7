// Texts as units, and the walk that gives their weights level by level.
//
// A text is turned into units once: each character with its row, and each contraction, which is one
// unit however many characters it has. All levels then walk the same units, so that nothing is
// looked up twice. A walk gives the weights of a level that are not ignored, in the level's
// direction; a unit that expands gives those of its expansion's characters instead.
//
// The four characters of "a", a contraction "ch" and "o":
//
//     element   a   1   1   o
//     row       2   9   9   5
//     step      1   2   2   1

#pragma once

#include "gls/collation/order_tables.h"
#include <kestrion/ext_funcs.h>

namespace kestrion {

struct unit_range {
    const coll_unit *units;
    int32_t count;
};

// The units of a text: on the stack up to stack_units of them.
class unit_list {
public:
    ~unit_list() { _gl_free_ptr(heap_); }
    unit_list() {}
    unit_list(const unit_list &) = delete;
    unit_list &operator=(const unit_list &) = delete;

    coll_unit *units = stack_;
    int32_t count = 0;

    // Makes room for `most` units in all. Returns false without memory.
    bool reserve(size_t most);
    bool full() const { return count == room_; }
    unit_range range() const { return {units, count}; }

private:
    coll_unit stack_[stack_units];
    coll_unit *heap_ = nullptr;
    int32_t room_ = stack_units;
};

// Replaces the characters of each contraction by its unit.
void join_contractions(const collate_rec &r, unit_list &list);

// Turns a wide text into units. Returns false without memory, with the error word set.
bool list_wide_units(locale_rec *lc, const gl_wchar *text, int32_t length, unit_list &list);

// Turns the bytes from `text` to `end` into units. Returns false with the error word set.
bool list_text_units(locale_rec *lc, const char *text, const char *end, unit_list &list);

// A text on its walk through one level.
struct coll_state {
    const coll_unit *units;
    const uint16_t *weights; // of the level, by row
    const order_tables *tables;
    const coll_unit *expansion; // the one that is walked, or null
    int32_t expansion_length;
    int32_t expansion_index; // its next character
    int32_t position;
    int32_t count;
    int32_t direction; // +1 or -1
    bool finished;
};

inline coll_state init_coll_state(const collate_rec &r, int32_t level, unit_range text) {
    const bool forward = r.level_order[level] & coll_forward;
    return {.units = text.units,
            .weights = r.level_weights[level],
            .tables = r.order,
            .expansion = nullptr,
            .expansion_length = 0,
            .expansion_index = 0,
            .position = forward ? 0 : text.count - 1,
            .count = text.count,
            .direction = forward ? 1 : -1,
            .finished = text.count == 0};
}

inline void enter_expansion(coll_state &s, uint16_t weight) {
    const uint32_t *start = s.tables->expansion_starts + (weight & coll_value_bits);
    s.expansion = s.tables->expansion_units + start[0];
    s.expansion_length = static_cast<int32_t>(start[1] - start[0]);
    s.expansion_index = s.direction > 0 ? 0 : s.expansion_length - 1;
}

inline coll_unit next_of_expansion(coll_state &s) {
    const coll_unit unit = s.expansion[s.expansion_index];
    s.expansion_index += s.direction;
    if (s.expansion_index < 0 || s.expansion_index == s.expansion_length)
        s.expansion = nullptr;
    return unit;
}

// Gives the next weight that is not ignored, with its element; 0 at the end of the text, and for
// good at a character without a row.
//
// Two things look wrong and are meant so. A character inside an expansion that expands itself
// replaces the expansion, and the rest of the outer one is lost. And an expansion steps on by one
// character, also when a contraction expanded: it is walked once for each character of the
// contraction.
inline uint16_t next_weight(coll_state &s, gl_wchar &element) {
    element = 0;
    while (!s.finished) {
        const coll_unit unit = s.expansion != nullptr ? next_of_expansion(s) : s.units[s.position];
        if (unit.step == 0) {
            s.finished = true;
            return 0;
        }
        uint16_t weight = s.weights[unit.row];
        if (weight & coll_expands) {
            enter_expansion(s, weight);
            continue;
        }
        if (s.expansion == nullptr) {
            s.position += unit.step * s.direction;
            s.finished = s.position < 0 || s.position >= s.count;
        }
        if (weight != coll_ignored) {
            element = unit.element;
            return weight;
        }
    }
    return 0;
}

// Compares two texts at a level: -1, 0 or 1.
int32_t compare_level(const collate_rec &r, int32_t level, unit_range a, unit_range b);

// The same at the levels from `level` up to `end`.
int32_t compare_levels(const collate_rec &r, int32_t level, int32_t end, unit_range a,
                       unit_range b);

} // namespace kestrion
