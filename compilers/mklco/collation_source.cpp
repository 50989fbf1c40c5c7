#include "compilers/mklco/collation_source.h"

#include "compilers/mklco/level_weights.h"
#include "compilers/posix/collation_order.h"
#include <kestrion/locale_rec.h>

#include <algorithm>
#include <optional>
#include <set>
#include <unordered_map>

namespace kestrion {
namespace {

constexpr uint32_t most_weights = coll_value_bits - 1; // row 0 has one more
constexpr uint32_t most_byte_weights = 252; // with row 0's, all that one digit of a key can say
constexpr size_t longest_sequence = 15;
constexpr size_t most_expansions = coll_value_bits + 1;
constexpr uint32_t ideographs = 0x2E80; // from here on a level's characters share weights in runs
constexpr uint32_t everything = 0;

// A character or a collating element of the code set.
struct bearer {
    const collation_element *element;
    std::vector<uint32_t> wide;            // its characters, packed
    object_character *character = nullptr; // null for a collating element
    std::vector<uint16_t> weights = {};    // by level
    const source_place &place() const { return element->place; }
};

level_key places(const collation_weight &weight) {
    level_key key;
    for (const collation_element *element : weight)
        key.push_back(element->order);
    return key;
}

bool all_alike(const level_key &key) {
    return std::all_of(key.begin(), key.end(), [&](uint32_t place) { return place == key[0]; });
}

class collation_compiler {
public:
    collation_compiler(const collation_order &order, const charmap &map, diagnostics &said,
                       locale_object &object)
        : order_(order), map_(map), said_(said), object_(object),
          single_byte_(map.mb_cur_max == 1) {}

    void run();

private:
    void gather_characters();
    void gather_contractions();
    void choose_directions();
    void drop_contractions(bool (collation_compiler::*goes)(const bearer &) const);
    bool is_of_the_table(const bearer &b) const { return b.element->in_table; }
    bool has_odd_strings(const bearer &b) const;
    bool weighs_as_its_characters(const bearer &b) const;
    void choose_contractions();

    void weigh_level(size_t level);
    bool expands_strings(size_t level) const;
    std::optional<level_key> expansion_of(const bearer &b, size_t level, bool strings_expand);
    void list_carriers(size_t level);
    bool make_carrier(uint32_t place, size_t level);
    uint16_t expansion(const level_key &places);
    void mark_told_apart(level_weights &weights) const;
    void number(level_weights &weights, size_t level);
    void note_placed_string(const bearer &b);

    void add_rows();
    uint16_t row_of(const std::vector<uint16_t> &weights);
    void loss(const source_place &place, const std::string &what, const std::string &remedy);

    level_key key(const bearer &b, size_t level) const { return places(b.element->weight(level)); }
    size_t last_level() const { return levels_ - 1; }

    const collation_order &order_;
    const charmap &map_;
    diagnostics &said_;
    locale_object &object_;
    bool single_byte_;
    bool keeps_contractions_ = true; // in a single-byte code set, in place of expansions
    bool noted_string_ = false;
    size_t levels_ = 1;
    std::vector<bearer> characters_;
    std::vector<bearer> contractions_;
    std::vector<object_character *> unlisted_;
    std::vector<uint16_t> last_weights_;              // by level
    std::unordered_map<uint32_t, uint32_t> carriers_; // of the level: place to wide character
    std::map<std::vector<uint32_t>, uint16_t> expansions_;
    std::map<std::vector<uint16_t>, uint16_t> rows_;
    struct made_carrier {
        size_t level;
        uint32_t place;
        object_character character;
    };
    std::vector<made_carrier> made_;
};

void collation_compiler::loss(const source_place &place, const std::string &what,
                              const std::string &remedy) {
    said_.loss(*place.file, place.position(), what, remedy);
}

// ---- What the code set has

void collation_compiler::gather_characters() {
    std::unordered_map<uint64_t, uint32_t> code_points;
    for (const charmap_row &row : map_.rows)
        code_points.emplace(uint64_t{row.sequence.length} << 32 | row.sequence.packed(),
                            row.code_point);
    for (object_character &character : object_.characters) {
        const code_sequence &sequence = character.sequence;
        const auto found = code_points.find(uint64_t{sequence.length} << 32 | sequence.packed());
        const collation_element *element =
            found != code_points.end() ? order_.find(found->second) : nullptr;
        if (element != nullptr)
            characters_.push_back({element, {sequence.packed()}, &character});
        else
            unlisted_.push_back(&character);
    }
}

void collation_compiler::gather_contractions() {
    for (const collation_element &element : order_.elements) {
        if (element.characters.size() < 2 || !element.listed)
            continue;
        bearer b = {&element, {}};
        for (uint32_t c : element.characters)
            if (const charmap_row *row = map_.find(c))
                b.wide.push_back(row->sequence.packed());
        if (b.wide.size() != element.characters.size())
            continue;
        if (b.wide.size() <= longest_sequence)
            contractions_.push_back(b);
        else
            loss(element.place, "a collating element of more than 15 characters",
                 "it sorts as its characters");
    }
    // The first that fits wins: longer ones of a character come first.
    std::sort(contractions_.begin(), contractions_.end(), [](const bearer &a, const bearer &b) {
        if (a.wide[0] != b.wide[0])
            return a.wide[0] < b.wide[0];
        return a.wide.size() != b.wide.size() ? a.wide.size() > b.wide.size() : a.wide < b.wide;
    });
}

// ---- Directions: the object has one a level, those of the section of the letter a

void collation_compiler::choose_directions() {
    levels_ = std::max<size_t>(order_.level_count(), 1);
    const collation_element *letter = order_.find('a');
    const collation_section *chosen = letter != nullptr ? letter->rules : nullptr;
    const auto direction = [](const collation_section *s, size_t level) {
        return s != nullptr && level < s->levels.size() ? s->levels[level] : collation_direction{};
    };
    for (size_t level = 0; level < levels_; ++level)
        object_.collation.levels.push_back(direction(chosen, level).backward ? coll_backward
                                                                             : coll_forward);
    std::set<const collation_section *> others;
    for (const bearer &b : characters_)
        for (size_t level = 0; level < levels_; ++level)
            if (b.element->rules != chosen && !b.element->weight(level).empty() &&
                direction(b.element->rules, level).backward != direction(chosen, level).backward)
                others.insert(b.element->rules);
    for (const collation_section *section : others)
        loss(section->levels.empty() ? source_place(chosen->place) : section->place,
             "an object has one direction a level, that of the letter a",
             "the characters of <" + section->name + "> are compared in that one");
    for (size_t level = 0; chosen != nullptr && level < levels_; ++level)
        if (direction(chosen, level).position)
            loss(chosen->place, "an object does not compare by position",
                 "ignored characters order by themselves, wherever they are");
}

// ---- Which collating elements stay

// Whether some string between the first and the last level is not one place over and over.
bool collation_compiler::has_odd_strings(const bearer &b) const {
    for (size_t level = 1; level + 1 < levels_; ++level) {
        const level_key k = key(b, level);
        if (k.size() > 1 && (k.size() != b.wide.size() || !all_alike(k)))
            return true;
    }
    return false;
}

bool collation_compiler::weighs_as_its_characters(const bearer &b) const {
    level_key joined;
    for (uint32_t c : b.element->characters)
        if (const collation_element *part = order_.find(c)) {
            const level_key k = places(part->weight(0));
            joined.insert(joined.end(), k.begin(), k.end());
        }
    return joined == key(b, 0);
}

void collation_compiler::choose_contractions() {
    const auto dropped = [&](const bearer &b) {
        return single_byte_ ? !keeps_contractions_ : b.element->in_table && has_odd_strings(b);
    };
    keeps_contractions_ = std::any_of(contractions_.begin(), contractions_.end(),
                                      [](const bearer &b) { return !b.element->in_table; });
    for (const bearer &b : contractions_)
        if (dropped(b) && !weighs_as_its_characters(b))
            loss(b.place(), "the collating element <" + b.element->name + "> is dropped",
                 "it sorts as its characters");
    std::erase_if(contractions_, dropped);
}

// ---- Weights of a level

void collation_compiler::list_carriers(size_t level) {
    carriers_.clear();
    for (const bearer &b : characters_)
        if (const level_key k = key(b, level); k.size() == 1)
            carriers_.emplace(k[0], b.wide[0]);
}

// Makes a character that no text can hold bear a place. Returns false when the code set leaves no
// byte sequence for it.
bool collation_compiler::make_carrier(uint32_t place, size_t level) {
    if (single_byte_)
        return false;
    // A first byte that begins no character; 80-BF at the end leaves every code set's own alone.
    std::set<unsigned char> firsts;
    for (const object_character &c : object_.characters)
        firsts.insert(c.sequence.bytes[0]);
    int first = 0xF7;
    while (first >= 0x80 && firsts.contains(static_cast<unsigned char>(first)))
        --first;
    if (first < 0x80 || made_.size() >= 64)
        return false;
    const auto last = static_cast<unsigned char>(0xBF - made_.size());
    object_character character;
    character.sequence = {4, {static_cast<unsigned char>(first), 0xBF, 0xBF, last}};
    made_.push_back({level, place, character});
    carriers_[place] = character.sequence.packed();
    return true;
}

// Whether the strings of a level between the first and the last become expansions.
bool collation_compiler::expands_strings(size_t level) const {
    if (single_byte_ || level == 0 || level == last_level())
        return false;
    return std::all_of(contractions_.begin(), contractions_.end(), [&](const bearer &b) {
        const level_key k = key(b, level);
        return k.size() < 2 || (k.size() == b.wide.size() && all_alike(k));
    });
}

// The places whose bearers an entry expands to at a level; none when it has a weight there. An
// expansion that a contraction has is walked once for each of its characters, so that one bearer
// stands for copies of a place.
std::optional<level_key> collation_compiler::expansion_of(const bearer &b, size_t level,
                                                          bool strings_expand) {
    level_key k = key(b, level);
    const bool contraction = b.character == nullptr;
    if (k.size() < 2 || k.size() > longest_sequence || expansions_.size() >= most_expansions)
        return std::nullopt;
    if (contraction && !(all_alike(k) && !single_byte_ && (level == 0 || strings_expand)))
        return std::nullopt;
    if (contraction)
        k.resize(1);
    const bool first_level = level == 0 && (!single_byte_ || !keeps_contractions_);
    if (!first_level && !strings_expand)
        return std::nullopt;
    for (uint32_t place : k)
        if (!carriers_.contains(place) &&
            ((level == 0 && !contraction) || !make_carrier(place, level)))
            return std::nullopt;
    return k;
}

uint16_t collation_compiler::expansion(const level_key &places) {
    std::vector<uint32_t> characters;
    for (uint32_t place : places)
        characters.push_back(carriers_.at(place));
    const auto [at, added] =
        expansions_.emplace(characters, static_cast<uint16_t>(expansions_.size()));
    if (added)
        object_.collation.expansions.push_back(characters);
    return static_cast<uint16_t>(coll_expands | at->second);
}

// Marks the last level's characters that have one place at each level before, and one that no other
// character and no part of another has.
void collation_compiler::mark_told_apart(level_weights &weights) const {
    std::map<std::vector<level_key>, size_t> parts;
    const auto part = [&](const bearer &b, size_t i) {
        std::vector<level_key> found;
        for (size_t level = 0; level < last_level(); ++level) {
            const level_key k = key(b, level);
            found.push_back(i < k.size() ? level_key{k[i]} : level_key{});
        }
        return found;
    };
    const auto longest = [&](const bearer &b) {
        size_t most = 0;
        for (size_t level = 0; level < last_level(); ++level)
            most = std::max(most, key(b, level).size());
        return most;
    };
    for (const auto *bearers : {&characters_, &contractions_})
        for (const bearer &b : *bearers)
            for (size_t i = 0; i < longest(b); ++i)
                ++parts[part(b, i)];
    for (const bearer &b : characters_) {
        bool one_each = true;
        for (size_t level = 0; level < levels_; ++level)
            one_each = one_each && key(b, level).size() == 1;
        if (one_each && parts[part(b, 0)] == 1)
            weights.mark_told_apart(key(b, last_level()));
    }
}

void collation_compiler::number(level_weights &weights, size_t level) {
    if (single_byte_) {
        weights.number_sharing(most_byte_weights);
        return;
    }
    const bool by_sequence = level == last_level() && level > 0;
    if ((!by_sequence && weights.number(most_weights, nullptr)) ||
        weights.number(most_weights, &ideographs) || weights.number(most_weights, &everything))
        return;
    weights.number_with_rest(most_weights);
    loss(characters_[0].place(),
         "level " + std::to_string(level + 1) + " has more than 16382 weights",
         "the characters after those go by their codes");
}

// Between two weights there is room for a string of places, but not for how it goes on in the next
// character.
void collation_compiler::note_placed_string(const bearer &b) {
    if (!noted_string_)
        loss(b.place(), "several places at one level become one weight",
             "texts order otherwise only where a longer string meets the next character's");
    noted_string_ = true;
}

void collation_compiler::weigh_level(size_t level) {
    list_carriers(level);
    const bool strings_expand = expands_strings(level);
    level_weights weights;
    std::vector<std::pair<bearer *, level_key>> expanding;
    for (auto *bearers : {&characters_, &contractions_})
        for (bearer &b : *bearers) {
            const level_key k = key(b, level);
            if (const std::optional<level_key> expanded = expansion_of(b, level, strings_expand)) {
                expanding.emplace_back(&b, *expanded);
                for (uint32_t place : *expanded)
                    weights.add_shared({place});
            } else if (b.character != nullptr && k.size() == 1) {
                weights.add_character(k, b.element->characters[0], b.wide[0]);
            } else if (!k.empty()) {
                weights.add_shared(k);
            }
            if (k.size() > 1 && (expanding.empty() || expanding.back().first != &b))
                note_placed_string(b);
        }
    if (single_byte_ && level == last_level())
        mark_told_apart(weights);
    number(weights, level);
    last_weights_.push_back(weights.last());
    for (auto *bearers : {&characters_, &contractions_})
        for (bearer &b : *bearers) {
            const level_key k = key(b, level);
            b.weights.push_back(k.empty() ? uint16_t{coll_ignored} : uint16_t{0});
        }
    for (const auto &[b, expanded] : expanding)
        b->weights[level] = expansion(expanded);
    for (auto *bearers : {&characters_, &contractions_})
        for (bearer &b : *bearers)
            if (b.weights[level] == 0)
                b.weights[level] = weights.weight(key(b, level));
    for (made_carrier &made : made_)
        if (made.level == level)
            made.character.row = weights.weight({made.place}); // until it has a row
}

// ---- Rows

uint16_t collation_compiler::row_of(const std::vector<uint16_t> &weights) {
    const auto [at, added] =
        rows_.emplace(weights, static_cast<uint16_t>(object_.collation.rows.size()));
    if (added)
        object_.collation.rows.push_back(weights);
    if (object_.collation.rows.size() > 0x10000)
        throw compiler_failure("the order needs more than 65536 rows");
    return at->second;
}

void collation_compiler::add_rows() {
    object_collation &collation = object_.collation;
    // Row 0: after all that is listed. In a single-byte code set it is for the bytes that are no
    // characters, after those that are.
    std::vector<uint16_t> last;
    for (uint16_t weight : last_weights_)
        last.push_back(static_cast<uint16_t>((weight + 1) | (single_byte_ ? 0 : coll_tie_on_char)));
    std::vector<uint16_t> row = last;
    if (single_byte_)
        row[0] = static_cast<uint16_t>(row[0] + unlisted_.size());
    row_of(row);
    row = last;
    for (object_character *character : unlisted_) {
        character->row = single_byte_ ? row_of(row) : uint16_t{0};
        ++row[0];
    }
    for (bearer &b : characters_)
        b.character->row = row_of(b.weights);
    for (bearer &b : contractions_)
        collation.contractions.push_back({row_of(b.weights), b.wide});
    for (made_carrier &made : made_) {
        std::vector<uint16_t> weights(levels_, uint16_t{coll_ignored});
        weights[made.level] = made.character.row;
        made.character.row = row_of(weights);
        collation.carriers.push_back(made.character);
    }
    for (const auto &weights : collation.rows)
        for (uint16_t weight : weights)
            if (!(weight & coll_expands))
                collation.max_weight =
                    std::max<uint32_t>(collation.max_weight, weight & coll_value_bits);
}

void collation_compiler::run() {
    object_.collation = {};
    gather_characters();
    gather_contractions();
    choose_directions();
    choose_contractions();
    for (size_t level = 0; level < levels_; ++level)
        weigh_level(level);
    add_rows();
}

} // namespace

void compile_collation(source_library &library, const locale_source &source, const charmap &map,
                       diagnostics &said, locale_object &object) {
    collation_order order;
    read_collation_order(library, source, said, order);
    collation_compiler(order, map, said, object).run();
}

} // namespace kestrion
