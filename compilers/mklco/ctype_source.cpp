#include "compilers/mklco/ctype_source.h"

#include "compilers/mklco/listing_words.h"
#include "gls/objects/locale_object.h"
#include <kestrion/locale_file.h>

#include <algorithm>
#include <map>
#include <set>

namespace kestrion {
namespace {

// Characters are known by keys: their code points, and behind those the rows of the charmap whose
// names are none.
// A class's line in the object has its bit and a blank in front of the name.
constexpr size_t longest_class_name = lco_line_limit - 2;

struct named_class {
    std::string name;
    source_place place;
    std::vector<uint32_t> keys;
};

struct implied_class {
    uint32_t of, also;
};
// In an order in which one pass is enough.
constexpr implied_class implied_classes[] = {
    {CT_UPPER | CT_LOWER, CT_ALPHA},
    {CT_ALPHA | CT_DIGIT | CT_PUNCT, CT_GRAPH},
    {CT_GRAPH, CT_PRINT},
};

class ctype_compiler {
public:
    ctype_compiler(source_library &library, const locale_source &source, const charmap &map,
                   diagnostics &said)
        : library_(library), source_(source), map_(map), said_(said),
          classes_(code_point_limit + map.rows.size()) {}

    void read();
    void fill(const charmap *widths, locale_object &object);

private:
    void statement(const source_statement &statement);
    void class_members(const source_statement &statement, size_t from, uint32_t mask,
                       std::vector<uint32_t> *keys);
    void range_members(const source_statement &statement, size_t ellipsis,
                       std::vector<uint32_t> &keys);
    static code_sequence bytes_of(const source_statement &statement, size_t token);
    void case_map(const source_statement &statement, std::map<uint32_t, uint32_t> &partners);
    named_class &named(std::string_view name, const source_place &place);
    bool key_of(const source_statement &statement, size_t token, uint32_t &key) const;
    uint32_t key_of(const charmap_row &row) const {
        return row.code_point < code_point_limit
                   ? row.code_point
                   : code_point_limit + static_cast<uint32_t>(&row - map_.rows.data());
    }
    const charmap_row *row_of(uint32_t key) const {
        return key < code_point_limit ? map_.find(key) : &map_.rows[key - code_point_limit];
    }

    void sort_rows();
    void set_widths(const charmap *widths, locale_object &object);
    void set_named_classes(locale_object &object);
    void set_case(locale_object &object);
    void add_missing_bytes(locale_object &object) const;
    uint32_t partner(const std::map<uint32_t, uint32_t> &partners, uint32_t key) const;
    void check_sequences() const;
    void note_growth(const code_sequence &from, uint32_t to_key, locale_object &object) const;

    source_library &library_;
    const locale_source &source_;
    const charmap &map_;
    diagnostics &said_;

    std::vector<uint16_t> classes_;  // by key
    std::vector<named_class> named_; // in the order of the source
    std::set<std::string, std::less<>>
        ignored_; // keywords of maps that the object has no place for
    std::map<uint32_t, uint32_t> upper_, lower_; // partners by key
    source_place transliteration_; // where the one that is being passed over began, or no file
    std::vector<const charmap_row *> rows_; // one for each sequence, in the order of the bytes
};

void ctype_compiler::read() {
    library_.for_each_statement(source_, "LC_CTYPE",
                                [this](const source_statement &s) { statement(s); });
    if (transliteration_.file != nullptr)
        throw source_error(transliteration_, "the transliterations have no end",
                           "close them with translit_end");
    for (const implied_class &rule : implied_classes)
        for (uint16_t &mask : classes_)
            if (mask & rule.of)
                mask = static_cast<uint16_t>(mask | rule.also);
    classes_[' '] |= CT_PRINT | CT_SPACE | CT_BLANK;
}

named_class &ctype_compiler::named(std::string_view name, const source_place &place) {
    for (named_class &known : named_)
        if (known.name == name)
            return known;
    if (name.empty() || name.size() > longest_class_name ||
        name.find_first_of(" \t\n\v\f\r") != std::string_view::npos)
        throw source_error(place,
                           "the name of a class is one word of at most " +
                               std::to_string(longest_class_name) + " characters",
                           "rename the class");
    return named_.emplace_back(named_class{std::string(name), place, {}});
}

void ctype_compiler::statement(const source_statement &statement) {
    std::string_view keyword = statement.keyword();
    if (keyword == "translit_start" || keyword == "translit_end") {
        transliteration_ = keyword == "translit_start" ? statement.place() : source_place{};
        return;
    }
    if (transliteration_.file != nullptr || keyword == "outdigit" || ignored_.contains(keyword))
        return;
    const std::vector<source_token> &tokens = statement.tokens;
    // class "upper" is another way to write upper.
    const size_t members = keyword != "class"                                             ? 1
                           : tokens.size() > 2 && tokens[2].kind == token_kind::semicolon ? 3
                                                                                          : 2;
    for (const class_word &known : class_words)
        if (keyword == known.word ||
            (members > 1 && tokens.size() > 1 && tokens[1].text == known.word))
            return class_members(statement, members, known.mask, nullptr);
    bool declares =
        keyword == "class" || keyword == "map" || keyword == "charclass" || keyword == "charconv";
    if (declares && tokens.size() < 2)
        throw source_error(statement.place(), "a name must stand behind " + std::string(keyword),
                           "name the class or map");
    if (keyword == "toupper" || keyword == "tolower") {
        case_map(statement, keyword == "toupper" ? upper_ : lower_);
    } else if (keyword == "class") {
        class_members(statement, members, 0, &named(tokens[1].text, statement.place(1)).keys);
    } else if (keyword == "charclass") {
        for (size_t i = 1; i < tokens.size(); i += 2)
            named(tokens[i].text, statement.place(i));
    } else if (keyword == "charconv") {
        for (size_t i = 1; i < tokens.size(); i += 2)
            ignored_.emplace(tokens[i].text);
    } else if (keyword != "map") {
        for (named_class &known : named_)
            if (keyword == known.name)
                return class_members(statement, 1, 0, &known.keys);
        throw source_error(statement.place(),
                           "\"" + std::string(tokens[0].text) + "\" is no keyword of LC_CTYPE",
                           "declare a class of this name by charclass, or remove the line");
    }
}

// The key of a character that one token names; false when the charmap lacks it and nothing is to be
// done.
bool ctype_compiler::key_of(const source_statement &statement, size_t token, uint32_t &key) const {
    const source_token &at = statement.tokens[token];
    key = at.code_point;
    if (at.kind == token_kind::number && at.text.size() == 1)
        key = static_cast<unsigned char>(at.text[0]);
    if (key < code_point_limit)
        return true;
    const charmap_row *row = nullptr;
    if (at.kind == token_kind::symbol)
        row = map_.find_name(at.text);
    else if (at.kind == token_kind::bytes)
        row = map_.find_bytes(bytes_of(statement, token));
    else
        throw source_error(statement.place(token), "a character must stand here",
                           "write it as <Uxxxx>");
    if (row != nullptr)
        key = key_of(*row);
    return row != nullptr;
}

code_sequence ctype_compiler::bytes_of(const source_statement &statement, size_t token) {
    code_sequence found;
    for (const text_element &element : statement.source->elements(statement.tokens[token])) {
        if (found.length == gl_char_bytes)
            throw source_error(statement.place(token), "a character of more than 4 bytes",
                               "give one character");
        found.bytes[found.length++] = static_cast<unsigned char>(element.value);
    }
    return found;
}

// The characters from the token in front of an ellipsis to the one behind it. Characters count by
// code point, bytes by the order of the charmap's sequences, other names by the numbers in them.
void ctype_compiler::range_members(const source_statement &statement, size_t ellipsis,
                                   std::vector<uint32_t> &keys) {
    enum class named_by { code_point, bytes, name };
    auto form = [&](size_t token) {
        const source_token &at = statement.tokens[token];
        return at.kind == token_kind::bytes ? named_by::bytes
               : at.kind == token_kind::symbol && at.code_point == no_code_point
                   ? named_by::name
                   : named_by::code_point;
    };
    if (ellipsis + 1 >= statement.tokens.size())
        throw source_error(statement.place(ellipsis), "a range without an end",
                           "name its last character");
    const source_token &dots = statement.tokens[ellipsis];
    const size_t first = ellipsis - 1, last = ellipsis + 1;
    const named_by by = form(first);
    if (form(last) != by || (by == named_by::bytes) != (dots.text == "...") ||
        (by == named_by::code_point && dots.text == "...."))
        throw source_error(statement.place(ellipsis), "this is no ellipsis for these characters",
                           "write .. between <Uxxxx>, ... between bytes, and .. or .... between "
                           "names that end in numbers");
    keys.clear();
    if (by == named_by::code_point) {
        uint32_t from = 0, to = 0;
        if (!key_of(statement, first, from) || !key_of(statement, last, to) || from > to ||
            to >= code_point_limit)
            throw source_error(statement.place(ellipsis),
                               "this range ends before it begins, or behind U+10FFFF",
                               "give the lower end first");
        for (uint32_t key = from; key <= to; key += static_cast<uint32_t>(dots.number))
            keys.push_back(key);
    } else if (by == named_by::bytes) {
        const code_sequence from = bytes_of(statement, first), to = bytes_of(statement, last);
        if (from.length != to.length || from.packed() > to.packed())
            throw source_error(statement.place(ellipsis), "these bytes make no range",
                               "give two characters of one length, the lower first");
        for (const charmap_row &row : map_.rows)
            if (row.sequence.length == from.length && row.sequence.packed() >= from.packed() &&
                row.sequence.packed() <= to.packed())
                keys.push_back(key_of(row));
    } else {
        const std::vector<std::string> names =
            counted_names(statement.tokens[first].text, statement.tokens[last].text,
                          dots.text == "...." ? 10 : 16);
        if (names.empty())
            throw source_error(statement.place(ellipsis), "these names make no range",
                               "both must be the same text with a number behind it, the lower "
                               "first");
        for (size_t i = 0; i < names.size(); i += static_cast<size_t>(dots.number))
            if (const charmap_row *row = map_.find_name(names[i]))
                keys.push_back(key_of(*row));
    }
}

void ctype_compiler::class_members(const source_statement &statement, size_t from, uint32_t mask,
                                   std::vector<uint32_t> *keys) {
    std::vector<uint32_t> found;
    for (size_t i = from; i < statement.tokens.size();) {
        found.clear();
        uint32_t key = 0;
        if (key_of(statement, i, key))
            found.push_back(key);
        ++i;
        if (i < statement.tokens.size() && statement.tokens[i].kind == token_kind::ellipsis) {
            range_members(statement, i, found);
            i += 2;
        }
        for (uint32_t member : found)
            classes_[member] = static_cast<uint16_t>(classes_[member] | mask);
        if (keys != nullptr)
            keys->insert(keys->end(), found.begin(), found.end());
        if (i < statement.tokens.size() && statement.tokens[i++].kind != token_kind::semicolon)
            throw source_error(statement.place(i - 1), "a semicolon must stand here",
                               "separate the characters by ;");
    }
}

// (from,to);(from,to) ...
void ctype_compiler::case_map(const source_statement &statement,
                              std::map<uint32_t, uint32_t> &partners) {
    constexpr token_kind form[] = {token_kind::open, token_kind::symbol, token_kind::comma,
                                   token_kind::symbol, token_kind::close};
    const std::vector<source_token> &tokens = statement.tokens;
    for (size_t i = 1; i < tokens.size(); i += 6) {
        uint32_t keys[2] = {};
        bool there = true;
        for (size_t k = 0; k < std::size(form); ++k) {
            if (i + k >= tokens.size() ||
                (form[k] != token_kind::symbol && tokens[i + k].kind != form[k]))
                throw source_error(statement.place(i + k), "a pair of characters must stand here",
                                   "write (<U0061>,<U0041>)");
            if (form[k] == token_kind::symbol)
                there = key_of(statement, i + k, keys[k / 2]) && there;
        }
        if (there)
            partners.try_emplace(keys[0], keys[1]);
        if (i + 5 < tokens.size() && tokens[i + 5].kind != token_kind::semicolon)
            throw source_error(statement.place(i + 5), "a semicolon must stand here",
                               "separate the pairs by ;");
    }
}

// Of several rows with the same bytes the first two-way one counts.
void ctype_compiler::sort_rows() {
    for (const charmap_row &row : map_.rows)
        rows_.push_back(&row);
    std::stable_sort(rows_.begin(), rows_.end(), [](const charmap_row *a, const charmap_row *b) {
        uint32_t left = a->sequence.order(), right = b->sequence.order();
        return left != right ? left < right
                             : std::pair(a->sequence.length, a->one_way) <
                                   std::pair(b->sequence.length, b->one_way);
    });
    rows_.erase(std::unique(rows_.begin(), rows_.end(),
                            [](const charmap_row *a, const charmap_row *b) {
                                return a->sequence == b->sequence;
                            }),
                rows_.end());
}

// A character may not begin another one, and only the terminator has the byte 0: texts could not be
// walked.
void ctype_compiler::check_sequences() const {
    for (size_t i = 0; i < rows_.size(); ++i) {
        const code_sequence &here = rows_[i]->sequence;
        if (std::count(here.bytes + 1, here.bytes + here.length, 0) != 0 && here.length > 1)
            throw source_error(map_.place(*rows_[i]),
                               "this character has a zero byte behind its first",
                               "a terminated text cannot hold it; choose another charmap");
        if (i + 1 < rows_.size() && rows_[i + 1]->sequence.length > here.length &&
            std::equal(here.bytes, here.bytes + here.length, rows_[i + 1]->sequence.bytes))
            throw source_error(map_.place(*rows_[i + 1]),
                               "the bytes of another character begin this one",
                               "remove one of the two from the charmap");
    }
}

void ctype_compiler::set_widths(const charmap *widths, locale_object &object) {
    bool any = false;
    std::map<uint32_t, std::pair<const charmap_row *, size_t>> no_width; // by the line that says so
    for (size_t i = 0; i < rows_.size(); ++i) {
        const charmap_row *row = rows_[i];
        if (!map_.has_widths && widths != nullptr)
            row = row->code_point == no_code_point ? nullptr : widths->find(row->code_point);
        if (row == nullptr || row->width < 0)
            continue;
        if (row->width == 2) {
            object.characters[i].classes |= CT_NAMED;
            any = true;
        } else if (row->width == 0 && (object.characters[i].classes & CT_PRINT)) {
            no_width.try_emplace(row->width_offset, row, 0).first->second.second++;
        }
    }
    if (any)
        object.class_names.emplace_back(0, ct_full_width);
    const charmap &said_by = map_.has_widths || widths == nullptr ? map_ : *widths;
    for (const auto &[offset, lost] : no_width)
        said_.loss(said_by.source(), source_place{&said_by.source(), offset}.position(),
                   "the width 0 of " + std::to_string(lost.second) +
                       " characters from here on becomes 1",
                   "an object knows the widths 1 and 2");
}

void ctype_compiler::set_named_classes(locale_object &object) {
    int bit = 1;
    for (const named_class &named : named_) {
        std::set<uint32_t> keys(named.keys.begin(), named.keys.end());
        std::vector<size_t> members;
        for (size_t i = 0; i < rows_.size(); ++i)
            if (keys.contains(key_of(*rows_[i])))
                members.push_back(i);
        if (members.empty())
            continue;
        if (bit == ct_named_limit) {
            said_.loss(
                *named.place.file, named.place.position(),
                "class " + named.name + " with " + std::to_string(members.size()) +
                    " characters is left out",
                "an object holds four named classes beside full_width; the first four are kept");
            continue;
        }
        for (size_t i : members)
            object.characters[i].classes |= static_cast<uint16_t>(CT_NAMED << bit);
        object.class_names.emplace_back(bit++, named.name);
    }
}

uint32_t ctype_compiler::partner(const std::map<uint32_t, uint32_t> &partners, uint32_t key) const {
    auto found = partners.find(key);
    return found == partners.end() ? key : found->second;
}

void ctype_compiler::note_growth(const code_sequence &from, uint32_t to_key,
                                 locale_object &object) const {
    if (const charmap_row *to = row_of(to_key))
        object.growth =
            std::max(object.growth, static_cast<double>(to->sequence.length) / from.length);
}

void ctype_compiler::set_case(locale_object &object) {
    std::map<object_case_pair, uint16_t> indexes;
    for (size_t i = 0; i < rows_.size(); ++i) {
        uint32_t key = key_of(*rows_[i]);
        uint32_t upper = partner(upper_, key), lower = partner(lower_, key);
        // A character is its own partner where another one shares the pair; in a one-way row that
        // would turn it into the bytes that it is written by.
        auto packed = [&](uint32_t of) {
            const charmap_row *row = of == key && rows_[i]->one_way ? nullptr : row_of(of);
            return row == nullptr ? 0 : row->sequence.packed();
        };
        object_case_pair pair{packed(upper), packed(lower)};
        uint32_t own = packed(key);
        if ((pair.upper == 0 || pair.upper == own) && (pair.lower == 0 || pair.lower == own))
            continue;
        note_growth(rows_[i]->sequence, upper, object);
        note_growth(rows_[i]->sequence, lower, object);
        auto [at, added] =
            indexes.try_emplace(pair, static_cast<uint16_t>(object.pairs.size() + 1));
        if (added)
            object.pairs.push_back(pair);
        object.characters[i].case_index = at->second;
    }
}

// The terminator is a character, and in a single-byte code set so is every other byte.
void ctype_compiler::add_missing_bytes(locale_object &object) const {
    bool there[256] = {};
    bool single_byte = true;
    for (const charmap_row *row : rows_) {
        single_byte = single_byte && row->sequence.length == 1;
        there[row->sequence.bytes[0]] = true;
    }
    for (unsigned byte = 0; byte < (single_byte ? 256U : 1U); ++byte)
        if (!there[byte])
            object.characters.push_back({{1, {static_cast<unsigned char>(byte)}}});
    std::stable_sort(object.characters.begin(), object.characters.end(), by_bytes);
}

void ctype_compiler::fill(const charmap *widths, locale_object &object) {
    sort_rows();
    check_sequences();
    for (const charmap_row *row : rows_)
        object.characters.push_back({row->sequence, classes_[key_of(*row)]});
    set_widths(widths, object);
    set_named_classes(object);
    set_case(object);
    add_missing_bytes(object);
}

} // namespace

void compile_ctype(source_library &library, const locale_source &source, const charmap &map,
                   const charmap *widths, diagnostics &said, locale_object &object) {
    ctype_compiler compiler(library, source, map, said);
    compiler.read();
    compiler.fill(widths, object);
}

} // namespace kestrion
