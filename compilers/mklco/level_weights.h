// The numbering of one level: which places of the order get which weight.
//
// What counts of a character at a level is a key, the places that its source names there. Keys are
// numbered from 2 up in the order of their places, so that <BASE><AIGUT> comes after <BASE> and
// before <GRAVE>:
//
//     key              borne by      weight
//     3                a             2
//     3 17             e acute       3
//     5                b             4
//     9000             U+4E00        8005    a run: neighbouring keys of one character each, in the
//     9001             U+4E01        8005    order of their codes, share a weight and go by code
//
// Runs keep a level within the 14 bits of a weight, and keys short where a character has most of a
// weight for itself; the shortest form goes to what texts hold most of.
#pragma once

#include <map>
#include <stddef.h>
#include <stdint.h>
#include <vector>

namespace kestrion {

using level_key = std::vector<uint32_t>; // places

class level_weights {
public:
    // Adds a key that an entry bears. A character that is alone with its key may join a run.
    void add_character(const level_key &key, uint32_t code_point, uint32_t wide);
    // Says of a key that its character is told from all others by the levels before.
    void mark_told_apart(const level_key &key);
    void add_shared(const level_key &key);

    // Numbers all keys with weights up to `limit`. Characters from `cut` up may join runs; a null
    // cut allows none. Returns false when there are too many.
    bool number(uint32_t limit, const uint32_t *cut);
    // Numbers them up to the limit by letting neighbours that are told apart share a weight: where
    // texts are equal at the levels before, these have the same characters of them.
    bool number_sharing(uint32_t limit);
    // Numbers them in any case: those that are left over share the last weight and go by code.
    void number_with_rest(uint32_t limit);

    // The weight of a key, tie bit included.
    uint16_t weight(const level_key &key) const { return keys_.at(key).weight; }
    uint16_t last() const { return last_; } // the greatest

private:
    struct entry {
        uint32_t bearers = 0;
        uint32_t code_point = 0; // of its only bearer, when that is a character
        uint32_t wide = 0;
        bool may_join = false;
        bool told_apart = false;
        uint16_t weight = 0;
    };
    std::map<level_key, entry> keys_;
    uint16_t last_ = 1;
};

} // namespace kestrion
