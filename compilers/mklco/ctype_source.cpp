#include "compilers/mklco/ctype_source.h"

#include "compilers/mklco/character_keys.h"
#include "compilers/mklco/listing_words.h"
#include "gls/objects/locale_object.h"
#include <kestrion/locale_file.h>

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>

namespace kestrion {
namespace {

// A class's line in the object has its bit and a blank before the name.
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

struct exclusive_class {
    uint32_t of, not_also;
};
constexpr exclusive_class exclusive_classes[] = {
    {CT_UPPER | CT_LOWER | CT_ALPHA, CT_CNTRL | CT_DIGIT | CT_PUNCT | CT_SPACE},
    {CT_DIGIT, CT_CNTRL | CT_PUNCT | CT_SPACE},
    {CT_CNTRL, CT_PUNCT | CT_GRAPH | CT_PRINT},
};

class ctype_compiler {
public:
    ctype_compiler(source_library &library, const locale_source &source, const charmap &map,
                   diagnostics &said)
        : library_(library), source_(source), map_(map), said_(said), keys_(map),
          classes_(keys_.count()) {}

    void read();
    void fill(const charmap *widths, locale_object &object);

private:
    void statement(const source_statement &statement);
    void class_members(const source_statement &statement, size_t from, uint32_t mask,
                       std::vector<uint32_t> *keys);
    void case_map(const source_statement &statement, std::map<uint32_t, uint32_t> &partners);
    named_class &named(std::string_view name, const source_place &place);
    std::string_view class_of(const source_statement &statement) const;
    void note_class_line(const source_statement &statement);
    void check_exclusive_classes();

    void sort_rows();
    void drop_extensions();
    void check_sequences() const;
    void set_widths(const charmap *widths, locale_object &object);
    void set_named_classes(locale_object &object);
    void set_case(locale_object &object);
    void add_missing_bytes(locale_object &object) const;
    uint32_t partner(const std::map<uint32_t, uint32_t> &partners, uint32_t key) const;
    void note_growth(const code_sequence &from, uint32_t to_key, locale_object &object) const;

    source_library &library_;
    const locale_source &source_;
    const charmap &map_;
    diagnostics &said_;
    character_keys keys_;

    std::vector<uint16_t> classes_;                            // by key
    std::vector<named_class> named_;                           // in the order of the source
    std::map<std::string, size_t, std::less<>> named_indexes_; // in named_, by name
    std::set<std::string, std::less<>> ignored_; // keywords of maps that the object cannot hold
    std::map<uint32_t, uint32_t> upper_, lower_; // partners by key
    std::map<std::string, source_place, std::less<>> class_lines_; // the last line of each class
    source_place transliteration_;          // where an open one began, or no file
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
    check_exclusive_classes();
}

// The name of the class that a statement defines; empty when it defines none.
std::string_view ctype_compiler::class_of(const source_statement &statement) const {
    const std::string_view keyword = statement.keyword();
    if (keyword == "class")
        return statement.tokens.size() > 1 ? statement.tokens[1].text : std::string_view();
    const bool standard =
        std::any_of(std::begin(class_words), std::end(class_words),
                    [&](const class_word &known) { return keyword == known.word; });
    return standard || named_indexes_.contains(keyword) ? keyword : std::string_view();
}

void ctype_compiler::note_class_line(const source_statement &statement) {
    const std::string_view name = class_of(statement);
    if (name.empty())
        return;
    const auto [line, added] = class_lines_.try_emplace(std::string(name), statement.place());
    if (!added && line->second.file == &statement.source->file())
        said_.warning(statement.source->file(), statement.place().position(),
                      "a second line of the class " + std::string(name),
                      "give all its characters in one");
    line->second = statement.place();
}

// Reports the first character of each kind that is in two classes of which one excludes the other.
void ctype_compiler::check_exclusive_classes() {
    const auto word_in = [](uint32_t mask) {
        return std::find_if(std::begin(class_words), std::end(class_words),
                            [&](const class_word &known) { return (known.mask & mask) != 0; })
            ->word;
    };
    for (const exclusive_class &rule : exclusive_classes)
        for (const charmap_row &row : map_.rows) {
            const uint32_t mask = classes_[keys_.of(row)];
            if ((mask & rule.of) == 0 || (mask & rule.not_also) == 0)
                continue;
            const char *first = word_in(mask & rule.of), *second = word_in(mask & rule.not_also);
            const auto line = class_lines_.find(second);
            const source_place place =
                line == class_lines_.end() ? source_place{&source_.file(), 0} : line->second;
            said_.warning(*place.file, place.position(),
                          code_point_text(keys_.of(row)) + " is " + first + " and " + second,
                          "remove it from one of the two");
            break;
        }
}

named_class &ctype_compiler::named(std::string_view name, const source_place &place) {
    if (const auto known = named_indexes_.find(name); known != named_indexes_.end())
        return named_[known->second];
    if (name.empty() || name.size() > longest_class_name ||
        name.find_first_of(" \t\n\v\f\r") != std::string_view::npos)
        throw source_error(place,
                           "expected a name of one word and at most " +
                               std::to_string(longest_class_name) + " characters",
                           "rename the class");
    named_indexes_.emplace(name, named_.size());
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
    note_class_line(statement);
    // class "upper" is another way to write upper; a semicolon may follow the name.
    size_t members = 1;
    if (keyword == "class")
        members = tokens.size() > 2 && tokens[2].kind == token_kind::semicolon ? 3 : 2;
    for (const class_word &known : class_words)
        if (keyword == known.word ||
            (members > 1 && tokens.size() > 1 && tokens[1].text == known.word))
            return class_members(statement, members, known.mask, nullptr);
    bool declares =
        keyword == "class" || keyword == "map" || keyword == "charclass" || keyword == "charconv";
    if (declares && tokens.size() < 2)
        throw source_error(statement.place(), "expected a name after " + std::string(keyword),
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
        if (named_indexes_.contains(keyword))
            return class_members(statement, 1, 0, &named(keyword, statement.place()).keys);
        throw source_error(statement.place(),
                           "unknown keyword " + std::string(tokens[0].text) + " in LC_CTYPE",
                           "declare a class of this name by charclass, or remove the line");
    }
}

void ctype_compiler::class_members(const source_statement &statement, size_t from, uint32_t mask,
                                   std::vector<uint32_t> *keys) {
    const std::vector<source_token> &tokens = statement.tokens;
    for (size_t i = from; i < tokens.size();) {
        std::vector<uint32_t> found;
        if (const auto key = keys_.find(statement, i))
            found.push_back(*key);
        ++i;
        if (i < tokens.size() && tokens[i].kind == token_kind::ellipsis) {
            found = keys_.range(statement, i);
            i += 2;
        }
        for (const uint32_t member : found)
            classes_[member] = static_cast<uint16_t>(classes_[member] | mask);
        if (keys != nullptr)
            keys->insert(keys->end(), found.begin(), found.end());
        if (i < tokens.size() && tokens[i++].kind != token_kind::semicolon)
            throw source_error(statement.place(i - 1), "expected a semicolon",
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
        for (size_t k = 0; k < std::size(form); ++k)
            if (i + k >= tokens.size() ||
                (form[k] != token_kind::symbol && tokens[i + k].kind != form[k]))
                throw source_error(statement.place(i + k), "expected a pair of characters",
                                   "write (<U0061>,<U0041>)");
        const auto key = keys_.find(statement, i + 1), partner = keys_.find(statement, i + 3);
        if (key && partner)
            partners.try_emplace(*key, *partner);
        if (i + 5 < tokens.size() && tokens[i + 5].kind != token_kind::semicolon)
            throw source_error(statement.place(i + 5), "expected a semicolon",
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

// A character may not begin another one: texts could not be walked.
void ctype_compiler::drop_extensions() {
    const charmap_row *last = nullptr;
    std::erase_if(rows_, [&](const charmap_row *row) {
        const bool extends = last != nullptr && row->sequence.extends(last->sequence);
        if (extends)
            said_.loss(map_.source(), map_.place(*row).position(), prefix_loss, prefix_remedy);
        else
            last = row;
        return extends;
    });
}

// Only the terminator has the byte 0.
void ctype_compiler::check_sequences() const {
    for (const charmap_row *row : rows_)
        if (row->sequence.length > 1 &&
            row->sequence.text().find('\0', 1) != std::string_view::npos)
            throw source_error(map_.place(*row), "this character has a zero byte after its first",
                               "a terminated text cannot hold it; choose another charmap");
}

void ctype_compiler::set_widths(const charmap *widths, locale_object &object) {
    const charmap &giving = map_.has_widths || widths == nullptr ? map_ : *widths;
    bool any_wide = false;
    size_t lost = 0, first_lost = 0; // an offset in the charmap that gives the widths
    for (size_t i = 0; i < rows_.size(); ++i) {
        const charmap_row *row = rows_[i];
        if (&giving != &map_)
            row = row->code_point == no_code_point ? nullptr : giving.find(row->code_point);
        if (row != nullptr && row->width == 2) {
            object.characters[i].classes |= CT_NAMED;
            any_wide = true;
        } else if (row != nullptr && row->width == 0 && (object.characters[i].classes & CT_PRINT)) {
            first_lost =
                lost++ == 0 ? row->width_offset : std::min<size_t>(first_lost, row->width_offset);
        }
    }
    if (any_wide)
        object.class_names.emplace_back(0, ct_full_width);
    if (lost != 0)
        said_.loss(giving.source(), source_place{&giving.source(), first_lost}.position(),
                   "the width 0 of " + std::to_string(lost) + " characters becomes 1",
                   "an object has the widths 1 and 2");
}

void ctype_compiler::set_named_classes(locale_object &object) {
    std::unordered_multimap<uint32_t, size_t> indexes; // several rows may be one character
    for (size_t i = 0; i < rows_.size(); ++i)
        indexes.emplace(keys_.of(*rows_[i]), i);
    int bit = 1;
    for (const named_class &named : named_) {
        std::set<size_t> members;
        for (const uint32_t key : named.keys)
            for (auto [at, end] = indexes.equal_range(key); at != end; ++at)
                members.insert(at->second);
        if (members.empty())
            continue;
        if (bit == ct_named_limit) {
            said_.loss(*named.place.file, named.place.position(),
                       "class " + named.name + " with " + std::to_string(members.size()) +
                           " characters is left out",
                       "an object holds four named classes beside full_width, the first four");
            continue;
        }
        for (const size_t i : members)
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
    if (const charmap_row *to = keys_.row(to_key))
        object.growth =
            std::max(object.growth, static_cast<double>(to->sequence.length) / from.length);
}

void ctype_compiler::set_case(locale_object &object) {
    std::map<object_case_pair, uint16_t> indexes;
    for (size_t i = 0; i < rows_.size(); ++i) {
        uint32_t key = keys_.of(*rows_[i]);
        uint32_t upper = partner(upper_, key), lower = partner(lower_, key);
        // A character is its own partner where another one shares the pair; in a one-way row that
        // would turn it into the bytes that it is written by.
        auto packed = [&](uint32_t of) {
            const charmap_row *row = of == key && rows_[i]->one_way ? nullptr : keys_.row(of);
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
    drop_extensions();
    check_sequences();
    for (const charmap_row *row : rows_)
        object.characters.push_back({row->sequence, classes_[keys_.of(*row)]});
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
