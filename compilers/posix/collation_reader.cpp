#include "compilers/posix/collation_order.h"
#include "compilers/posix/source_conditions.h"
#include "compilers/posix/symbolic_name.h"

#include <algorithm>
#include <map>
#include <utility>

namespace kestrion {
namespace {

constexpr size_t most_levels = 8;

class collation_reader {
public:
    collation_reader(diagnostics &said, collation_order &order) : said_(said), order_(order) {}

    void take(const source_statement &line);
    void finish();

private:
    // What the lines without a keyword are for.
    enum class state { declaring, ordering, reordering, moving_sections };
    struct keyword_row {
        std::string_view word;
        void (collation_reader::*take)(const source_statement &);
    };

    void collating_symbol(const source_statement &line);
    void collating_element(const source_statement &line);
    void symbol_equivalence(const source_statement &line);
    void order_start(const source_statement &line);
    void order_end(const source_statement &line);
    void reorder_after(const source_statement &line);
    void reorder_end(const source_statement &line);
    void reorder_sections_after(const source_statement &line);
    void reorder_sections_end(const source_statement &line);
    void pass_over(const source_statement &) {}

    void element_line(const source_statement &line);
    void section_line(const source_statement &line);
    void place_element(collation_element &element, const source_statement &line);
    void note_place(collation_element &element, const source_statement &line);
    void fill_range(const collation_element &last);

    void declare(const source_statement &line, std::string_view name);
    collation_element &mentioned(const source_statement &line, const text_element &what);
    collation_element &mentioned(const source_statement &line, size_t token);
    collation_weight weight_at(const source_statement &line, size_t token,
                               collation_element &element);
    std::vector<collation_weight> weights_of(const source_statement &line,
                                             collation_element &element);

    void begin(state what, const source_statement &line, collation_section &section,
               collation_element *after);
    void end(state what, const source_statement &line);
    void check_weights() const;

    diagnostics &said_;
    collation_order &order_;
    source_conditions conditions_;
    state state_ = state::declaring;
    source_place opened_;                  // the line that began the state
    collation_section *section_ = nullptr; // where the next element goes,
    collation_element *cursor_ = nullptr;  // and after which one; null: at the start
    source_statement ellipsis_; // waits for the element that ends it; no tokens: none does
    std::map<const locale_source *, size_t> read_up_to_; // offsets in each source
    std::map<const collation_element *, const source_file *> reordered_;
    std::map<const collation_element *, source_place>
        used_; // symbols, where a weight named them first
};

source_error bad(const source_statement &line, size_t token, const std::string &what,
                 const std::string &remedy) {
    return source_error(line.place(token), what, remedy);
}

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

// The name after a keyword.
std::string_view name_after(const source_statement &line) {
    if (line.tokens.size() < 2 || line.tokens[1].text.empty())
        throw bad(line, 0, "expected a name after " + std::string(line.keyword()),
                  "write it in angle brackets");
    return line.tokens[1].text;
}

void expect_end(const source_statement &line, size_t tokens) {
    if (line.tokens.size() > tokens)
        throw bad(line, tokens, "unexpected words at the end of the line", "remove them");
}

// A source of nothing but an order, which locales copy.
bool is_table(const locale_source &source) { return source.find("LC_CTYPE") == nullptr; }

// ---- Elements

// The element that a part of a text names.
collation_element &collation_reader::mentioned(const source_statement &line,
                                               const text_element &what) {
    const source_place place = line.source->place(what.offset);
    if (what.is == text_element::kind::byte)
        throw source_error(place, "a byte has no place in an order",
                           "write the character as <Uxxxx>, which holds in every code set");
    collation_element &element = what.is == text_element::kind::code_point
                                     ? order_.character(what.value)
                                     : order_.named(what.name);
    if (element.place.file == nullptr)
        element.place = place;
    return element;
}

// The element that a token names: <Uxxxx>, <symbol> or a bare character.
collation_element &collation_reader::mentioned(const source_statement &line, size_t token) {
    const source_token &t = line.tokens[token];
    text_element what = {text_element::kind::code_point, t.code_point, t.text, t.offset};
    if (t.code_point == no_code_point && t.kind == token_kind::symbol)
        what.is = text_element::kind::name;
    else if (t.code_point == no_code_point && t.text.size() == 1)
        what.value = static_cast<unsigned char>(t.text[0]);
    else if (t.code_point == no_code_point)
        throw bad(line, token, "expected a character or a symbol, found " + quoted(t.text),
                  "write <Uxxxx>, or a symbol in angle brackets");
    return mentioned(line, what);
}

void collation_reader::declare(const source_statement &line, std::string_view name) {
    collation_element &element = order_.named(name);
    if (!element.characters.empty())
        throw bad(line, 1, "<" + std::string(name) + "> is a collating element already",
                  "choose another name");
    element.declared = true;
    if (!element.listed)
        element.place = line.place(1);
}

// collating-symbol <S0009>..<S327F>
void collation_reader::collating_symbol(const source_statement &line) {
    const std::string_view first = name_after(line);
    if (line.tokens.size() < 4 || line.tokens[2].kind != token_kind::ellipsis) {
        expect_end(line, 2);
        return declare(line, first);
    }
    expect_end(line, 4);
    const int base = line.tokens[2].text.size() == 4 ? 10 : 16;
    const auto names = counted_names::between(first, line.tokens[3].text, base);
    if (!names)
        throw bad(line, 2, not_a_name_range, name_range_remedy);
    for (uint32_t i = 0; i < names->size(); ++i)
        declare(line, names->name(i));
}

// collating-element <c-h> from "ch"
void collation_reader::collating_element(const source_statement &line) {
    const std::string_view name = name_after(line);
    if (line.tokens.size() < 4 || line.tokens[2].text != "from" ||
        line.tokens[3].kind != token_kind::string)
        throw bad(line, 0, "expected collating-element <name> from \"characters\"",
                  "write the characters in quotation marks");
    expect_end(line, 4);
    collation_element &element = order_.named(name);
    if (element.declared)
        throw bad(line, 1, "<" + std::string(name) + "> is declared already",
                  "remove one of the two lines, or choose another name");
    for (const text_element &part : line.source->elements(line.tokens[3])) {
        if (part.is != text_element::kind::code_point)
            throw source_error(line.source->place(part.offset),
                               "a collating element is made of characters",
                               "write each as <Uxxxx> or as it is");
        element.characters.push_back(part.value);
    }
    if (element.characters.size() < 2)
        throw bad(line, 3, "a collating element has at least two characters",
                  "order a single character by its own line");
    element.declared = true;
    element.in_table = is_table(*line.source);
    element.place = line.place(1);
}

// symbol-equivalence <new> <known>
void collation_reader::symbol_equivalence(const source_statement &line) {
    const std::string_view name = name_after(line);
    if (line.tokens.size() < 3)
        throw bad(line, 0, "expected two symbols", "write the new one first");
    order_.rename(name, mentioned(line, 2));
}

// ---- Sections and states

void collation_reader::begin(state what, const source_statement &line, collation_section &section,
                             collation_element *after) {
    if (state_ == state::ordering || (state_ == state::moving_sections && what != state_))
        throw bad(line, 0, std::string(line.keyword()) + " inside an order that is not ended",
                  "end that one first");
    state_ = what;
    opened_ = line.place();
    section_ = &section;
    cursor_ = after;
}

void collation_reader::end(state what, const source_statement &line) {
    if (state_ != what)
        throw bad(line, 0, std::string(line.keyword()) + " ends nothing", "remove the line");
    if (!ellipsis_.tokens.empty())
        throw bad(ellipsis_, 0, "no character follows this ellipsis",
                  "write the last character of the range after it");
    state_ = state::declaring;
}

// order_start <LATIN>;forward;backward;forward,position
void collation_reader::order_start(const source_statement &line) {
    const bool named = line.tokens.size() > 1 && line.tokens[1].kind == token_kind::symbol;
    collation_section &section = order_.section_named(named ? line.tokens[1].text : "");
    if (!section.levels.empty())
        throw bad(line, named ? 1 : 0, "this section is ordered already",
                  "make one order of the two");
    begin(state::ordering, line, section, section.last);
    section.place = line.place();
    section.levels.emplace_back();
    for (size_t i = named ? 3 : 1; i < line.tokens.size(); ++i) {
        const source_token &t = line.tokens[i];
        if (t.kind == token_kind::semicolon)
            section.levels.emplace_back();
        else if (t.text == "backward")
            section.levels.back().backward = true;
        else if (t.text == "position")
            section.levels.back().position = true;
        else if (t.kind != token_kind::comma && t.text != "forward")
            throw bad(line, i, "expected forward, backward or position, found " + quoted(t.text),
                      "separate the words of a level by commas, levels by semicolons");
    }
    if (section.levels.size() > most_levels)
        throw bad(line, 1, "more than 8 levels", "remove those after the eighth");
}

void collation_reader::order_end(const source_statement &line) { end(state::ordering, line); }

void collation_reader::reorder_after(const source_statement &line) {
    name_after(line);
    collation_element &target = mentioned(line, 1);
    if (!target.listed)
        throw bad(line, 1, quoted(line.tokens[1].text) + " has no place in the order",
                  "name an element that is listed above");
    begin(state::reordering, line, *target.list, &target);
}

void collation_reader::reorder_end(const source_statement &line) { end(state::reordering, line); }

void collation_reader::reorder_sections_after(const source_statement &line) {
    const std::string_view name = name_after(line);
    for (collation_section &section : order_.sections)
        if (section.name == name)
            return begin(state::moving_sections, line, section, nullptr);
    throw bad(line, 1, "no section " + quoted(name), "name a section that is ordered above");
}

void collation_reader::reorder_sections_end(const source_statement &line) {
    end(state::moving_sections, line);
}

// A line of reorder-sections-after: the section goes after the one before it.
void collation_reader::section_line(const source_statement &line) {
    for (collation_section &section : order_.sections)
        if (section.name == line.tokens[0].text && &section != section_) {
            order_.move_section(section, *section_);
            section_ = &section;
            return;
        }
    throw bad(line, 0, "no section " + quoted(line.tokens[0].text) + " to move",
              "name a section that is ordered above");
}

// ---- Places and weights

collation_weight collation_reader::weight_at(const source_statement &line, size_t token,
                                             collation_element &element) {
    const source_token &t = line.tokens[token];
    if (t.kind == token_kind::word && t.text == "IGNORE")
        return {};
    // An ellipsis as a weight is the character of the line, which its range gives.
    if (t.kind == token_kind::ellipsis)
        return {&element};
    collation_weight weight;
    if (t.kind == token_kind::string)
        for (const text_element &part : line.source->elements(t))
            weight.push_back(&mentioned(line, part));
    else
        weight.push_back(&mentioned(line, token));
    for (const collation_element *named : weight)
        if (named->characters.empty())
            used_.emplace(named, line.place(token));
    return weight;
}

// The weights after the first token, separated by semicolons.
std::vector<collation_weight> collation_reader::weights_of(const source_statement &line,
                                                           collation_element &element) {
    std::vector<collation_weight> weights;
    for (size_t i = 1; i < line.tokens.size(); ++i) {
        if (weights.empty() || line.tokens[i - 1].kind == token_kind::semicolon)
            weights.emplace_back(line.tokens[i].kind == token_kind::semicolon
                                     ? collation_weight{&element}
                                     : collation_weight{});
        if (line.tokens[i].kind == token_kind::semicolon)
            continue;
        const collation_weight more = weight_at(line, i, element);
        weights.back().insert(weights.back().end(), more.begin(), more.end());
    }
    if (weights.size() > most_levels)
        throw bad(line, 1, "more than 8 weights", "remove those after the eighth");
    return weights;
}

// A symbol that begins a line is declared by that. A source moves it once: of two places only one
// can be meant.
void collation_reader::note_place(collation_element &element, const source_statement &line) {
    if (!element.declared)
        said_.warning(*line.place().file, line.place().position(),
                      "<" + element.name + "> is not declared",
                      "write collating-symbol <" + element.name + "> above");
    element.declared = true;
    element.place = line.place();
    if (state_ != state::reordering || !element.characters.empty())
        return;
    const source_file *&source = reordered_[&element];
    if (source == line.place().file)
        throw bad(line, 0, quoted(line.tokens[0].text) + " is reordered twice",
                  "remove one of the two lines");
    source = line.place().file;
}

void collation_reader::place_element(collation_element &element, const source_statement &line) {
    order_.insert(element, *section_, cursor_);
    cursor_ = &element;
    if (element.rules == nullptr || state_ == state::ordering)
        element.rules = section_;
    if (line.tokens.size() > 1 || state_ == state::ordering)
        element.weights = weights_of(line, element);
}

// Places the characters between the ends of an ellipsis.
void collation_reader::fill_range(const collation_element &last) {
    const source_statement line = std::exchange(ellipsis_, {});
    const auto is_character = [](const collation_element *e) {
        return e != nullptr && e->characters.size() == 1;
    };
    if (!is_character(cursor_) || !is_character(&last) ||
        last.characters[0] < cursor_->characters[0] || last.characters[0] >= code_point_limit)
        throw bad(line, 0, "an ellipsis stands between two characters, the lesser one first",
                  "write the characters one by one");
    for (uint32_t c = cursor_->characters[0] + 1; c < last.characters[0]; ++c)
        place_element(order_.character(c), line);
}

void collation_reader::element_line(const source_statement &line) {
    if (state_ == state::moving_sections)
        return section_line(line);
    if (state_ == state::declaring) {
        section_ = &order_.section_named("");
        cursor_ = section_->last;
    }
    if (line.tokens[0].kind == token_kind::ellipsis) {
        if (!ellipsis_.tokens.empty())
            throw bad(line, 0, "two ellipses in a row", "write a character between them");
        ellipsis_ = line;
        return;
    }
    collation_element &element = mentioned(line, 0);
    note_place(element, line);
    if (!ellipsis_.tokens.empty())
        fill_range(element);
    place_element(element, line);
}

// ---- The whole

void collation_reader::take(const source_statement &line) {
    static constexpr keyword_row keywords[] = {
        {"collating-element", &collation_reader::collating_element},
        {"collating-symbol", &collation_reader::collating_symbol},
        {"order_end", &collation_reader::order_end},
        {"order_start", &collation_reader::order_start},
        {"reorder-after", &collation_reader::reorder_after},
        {"reorder-end", &collation_reader::reorder_end},
        {"reorder-sections-after", &collation_reader::reorder_sections_after},
        {"reorder-sections-end", &collation_reader::reorder_sections_end},
        // The lists follow each other as they are ordered; a declaration adds nothing.
        {"script", &collation_reader::pass_over},
        {"section", &collation_reader::pass_over},
        {"symbol-equivalence", &collation_reader::symbol_equivalence},
        // What is not listed goes last, whatever weights this line gives it.
        {"UNDEFINED", &collation_reader::pass_over},
    };
    // A source that is copied a second time is there already: two locales that a third one copies may
    // begin with the same table.
    size_t &read_up_to = read_up_to_[line.source];
    if (line.tokens[0].offset < read_up_to)
        return;
    read_up_to = line.tokens[0].offset + 1;
    if (conditions_.take(line) || !conditions_.hold())
        return;
    for (const keyword_row &row : keywords)
        if (row.word == line.keyword())
            return (this->*row.take)(line);
    element_line(line);
}

void collation_reader::check_weights() const {
    for (const auto &[symbol, place] : used_) {
        const std::string name = "<" + symbol->name + ">";
        if (!symbol->declared)
            throw source_error(place, name + " is not known",
                               "declare it by collating-symbol and give it a place");
        if (!symbol->listed)
            throw source_error(place, name + " has no place in the order",
                               "list it on a line of its own");
    }
}

void collation_reader::finish() {
    conditions_.check_all_are_closed();
    if (state_ == state::ordering)
        throw source_error(opened_, "this order is not ended", "write order_end after it");
    if (state_ != state::declaring)
        throw source_error(opened_, "this reordering is not ended",
                           state_ == state::reordering ? "write reorder-end after it"
                                                       : "write reorder-sections-end after it");
    check_weights();
    order_.number_places();
}

} // namespace

void read_collation_order(source_library &library, const locale_source &source, diagnostics &said,
                          collation_order &order) {
    collation_reader reader(said, order);
    library.for_each_statement(source, "LC_COLLATE",
                               [&](const source_statement &line) { reader.take(line); });
    reader.finish();
}

} // namespace kestrion
