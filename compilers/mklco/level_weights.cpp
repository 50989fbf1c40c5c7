#include "compilers/mklco/level_weights.h"

#include <kestrion/locale_rec.h>

namespace kestrion {

void level_weights::add_character(const level_key &key, uint32_t code_point, uint32_t wide) {
    entry &e = keys_[key];
    e.may_join = key.size() == 1 && e.bearers == 0;
    ++e.bearers;
    e.code_point = code_point;
    e.wide = wide;
}

void level_weights::add_shared(const level_key &key) {
    entry &e = keys_[key];
    e.may_join = false;
    ++e.bearers;
}

void level_weights::mark_told_apart(const level_key &key) {
    entry &e = keys_.at(key);
    e.told_apart = e.may_join;
}

bool level_weights::number_sharing(uint32_t limit) {
    size_t too_many = keys_.size() + coll_ignored > limit ? keys_.size() + coll_ignored - limit : 0;
    uint32_t last = coll_ignored;
    bool shares = false; // the next key may take the weight of the one before
    for (auto &[key, e] : keys_) {
        if (shares && e.told_apart && too_many > 0)
            --too_many;
        else
            ++last;
        shares = e.told_apart;
        e.weight = static_cast<uint16_t>(last);
    }
    last_ = static_cast<uint16_t>(last);
    return too_many == 0;
}

bool level_weights::number(uint32_t limit, const uint32_t *cut) {
    uint32_t last = coll_ignored;
    entry *before = nullptr; // in the run that the next key may join
    for (auto &[key, e] : keys_) {
        const bool joins = cut != nullptr && e.may_join && e.code_point >= *cut;
        const bool goes_on = joins && before != nullptr && before->wide < e.wide;
        if (goes_on)
            before->weight |= coll_tie_on_char;
        else if (++last > limit)
            return false;
        e.weight = static_cast<uint16_t>(last | (goes_on ? coll_tie_on_char : 0));
        before = joins ? &e : nullptr;
    }
    last_ = static_cast<uint16_t>(last);
    return true;
}

void level_weights::number_with_rest(uint32_t limit) {
    uint32_t last = coll_ignored;
    for (auto &[key, e] : keys_) {
        last += last < limit;
        e.weight = static_cast<uint16_t>(last | (last == limit ? coll_tie_on_char : 0));
    }
    last_ = static_cast<uint16_t>(last);
}

} // namespace kestrion
