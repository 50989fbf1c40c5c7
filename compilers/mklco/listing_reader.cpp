#include "compilers/mklco/listing.h"

#include "compilers/listing_line.h"
#include "compilers/mklco/listing_words.h"
#include "gls/objects/locale_object.h"

#include <algorithm>
#include <charconv>
#include <string.h>

namespace kestrion {
namespace {

constexpr size_t most_classes_of_a_line = 64; // far more than there are

class listing_reader {
public:
    explicit listing_reader(const source_file &source) : source_(source) {}
    locale_object read();

private:
    // What a line gives to a range of characters: a datum of each.
    struct range_value {
        code_sequence first, last;
        uint16_t value;
        bool up; // the datum counts up from character to character
        source_place place;
    };

    [[noreturn]] void fail_at_end(const std::string &what, const std::string &remedy) const {
        throw source_error({&source_, source_.text().size()}, what, remedy);
    }

    std::vector<listing_statement> statements();
    static range_value range(const listing_line &line);
    static range_value numbered_range(const listing_line &line);
    static std::vector<uint32_t> hex_numbers(const listing_line &line, size_t first,
                                             uint32_t greatest);

    void head_line(const listing_line &line);
    void code_set_line(const listing_line &line);
    uint32_t class_mask(const std::string &word) const;
    void class_line(const listing_line &line);
    void collation_line(const listing_line &line);
    void weights_line(const listing_line &line);
    static void read_field(const listing_line &line, const object_field &field,
                           object_field_value &value);
    void field_line(const listing_line &line);

    void sort_characters();
    source_place class_place(const code_sequence &sequence) const;
    void apply(const std::vector<range_value> &values, uint16_t object_character::*datum);
    void check_all_is_there() const;

    const source_file &source_;
    locale_object object_;
    std::vector<range_value> classes_, cases_, rows_;
    bool filled_[object_field_count] = {};
};

std::vector<listing_statement> listing_reader::statements() {
    object_collation &collation = object_.collation;
    const auto partner = [](const listing_line &line, size_t word) {
        return line[word] == "-" ? 0 : static_cast<uint32_t>(line.number(word, 1, UINT32_MAX, 16));
    };
    std::vector<listing_statement> kinds = {
        {"head", occurrence::any, 1, 1, [&](const auto &line) { head_line(line); }},
        {"code_set", occurrence::once, 1, 1, [&](const auto &line) { code_set_line(line); }},
        {"class_name", occurrence::any, 2, 2,
         [&](const auto &line) {
             if (object_.class_names.size() == most_class_names)
                 line.fail(0, "too many class names", "five of them are of use");
             const auto bit = static_cast<int>(line.number(1, INT32_MIN, INT32_MAX));
             object_.class_names.emplace_back(bit, line[2]);
         }},
        {"class", occurrence::any, 2, most_classes_of_a_line,
         [&](const auto &line) { class_line(line); }},
        {"pair", occurrence::any, 2, 2,
         [&](const auto &line) {
             object_.pairs.push_back({partner(line, 1), partner(line, 2)});
         }},
        {"growth", occurrence::once, 1, 1,
         [&](const auto &line) { object_.growth = line.real(1, 0, lco_growth_limit); }},
        {"case", occurrence::any, 2, 2,
         [&](const auto &line) { cases_.push_back(numbered_range(line)); }},
        {"row", occurrence::any, 2, 2,
         [&](const auto &line) { rows_.push_back(numbered_range(line)); }},
        {"collation", occurrence::once, 1, 1, [&](const auto &line) { collation_line(line); }},
        {"code_order", occurrence::at_most_once, 1, 1,
         [&](const auto &line) {
             collation.code_order_form = static_cast<int32_t>(line.number(1, 0, INT32_MAX));
         }},
        {"max_weight", occurrence::at_most_once, 1, 1,
         [&](const auto &line) {
             collation.max_weight = static_cast<uint32_t>(line.number(1, 0, UINT32_MAX));
         }},
        {"levels", occurrence::at_most_once, 1, any_operands,
         [&](const auto &line) {
             for (const uint32_t level : hex_numbers(line, 1, UINT16_MAX))
                 collation.levels.push_back(static_cast<uint16_t>(level));
         }},
        {"carrier", occurrence::any, 2, 2,
         [&](const auto &line) {
             object_character carrier = {line.sequence(1, line[1])};
             carrier.row = static_cast<uint16_t>(line.number(2, 0, UINT16_MAX));
             collation.carriers.push_back(carrier);
         }},
        {"contraction", occurrence::any, 1, 1 + longest_collating_sequence,
         [&](const auto &line) {
             collation.contractions.push_back({static_cast<uint16_t>(line.number(1, 0, UINT16_MAX)),
                                               hex_numbers(line, 2, UINT32_MAX)});
         }},
        {"expansion", occurrence::any, 0, longest_collating_sequence,
         [&](const auto &line) {
             collation.expansions.push_back(hex_numbers(line, 1, UINT32_MAX));
         }},
        {"weights", occurrence::any, 1, any_operands,
         [&](const auto &line) { weights_line(line); }},
    };
    for (const char *section : object_section_names)
        kinds.push_back({section, occurrence::any, 1, any_operands,
                         [&](const auto &line) { field_line(line); }});
    return kinds;
}

// "41" or "e38182..e38185" as the first operand.
listing_reader::range_value listing_reader::range(const listing_line &line) {
    const std::string_view word = line[1];
    const size_t points = word.find("..");
    range_value value{};
    value.place = line.place(1);
    value.first = line.sequence(1, word.substr(0, points));
    value.last =
        points == std::string_view::npos ? value.first : line.sequence(1, word.substr(points + 2));
    const auto stem = static_cast<size_t>(value.first.length - 1);
    if (value.first.length != value.last.length ||
        memcmp(value.first.bytes, value.last.bytes, stem) != 0 ||
        value.first.bytes[stem] > value.last.bytes[stem])
        line.fail(1, "these two characters are not a range",
                  "give two that differ in the last byte only, the lower one first");
    return value;
}

// "case 41..5a 1+", "row 00 7".
listing_reader::range_value listing_reader::numbered_range(const listing_line &line) {
    range_value value = range(line);
    std::string_view text = line[2];
    value.up = text.ends_with('+');
    if (value.up)
        text.remove_suffix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value.value);
    if (error != std::errc() || end != text.data() + text.size())
        line.fail(2, "expected a number from 0 to 65535", "write 7, or 7+ to count up");
    return value;
}

std::vector<uint32_t> listing_reader::hex_numbers(const listing_line &line, size_t first,
                                                  uint32_t greatest) {
    std::vector<uint32_t> found;
    for (size_t word = first; word < line.size(); ++word)
        found.push_back(static_cast<uint32_t>(line.number(word, 0, greatest, 16)));
    return found;
}

void listing_reader::head_line(const listing_line &line) {
    if (line[1].size() >= size_t{lco_line_limit} || line[1].find('\n') != std::string::npos)
        line.fail(1,
                  "expected at most " + std::to_string(lco_line_limit - 1) +
                      " characters and no line feed",
                  "shorten it");
    object_.head.push_back(line[1]);
}

void listing_reader::code_set_line(const listing_line &line) {
    if (!is_code_set_name(line[1]))
        line.fail(1, "expected 1 to 19 characters without a blank",
                  "give the code set's name in the registry");
    object_.code_set = line[1];
}

// The mask of a class; 0 for a word that names none.
uint32_t listing_reader::class_mask(const std::string &word) const {
    for (int bit = 0; bit < ct_named_limit; ++bit)
        if (word == bit_word(bit))
            return uint32_t{CT_NAMED} << bit;
    for (const class_word &known : class_words)
        if (word == known.word)
            return known.mask;
    for (const auto &[bit, name] : object_.class_names)
        if (word == name && bit >= 0 && bit < ct_named_limit)
            return uint32_t{CT_NAMED} << bit;
    return 0;
}

void listing_reader::class_line(const listing_line &line) {
    const range_value value = range(line);
    const bool no_class = line.size() == 3 && line[2] == "-";
    uint32_t mask = 0;
    for (size_t word = 2; word < line.size() && !no_class; ++word) {
        const uint32_t found = class_mask(line[word]);
        if (found == 0)
            line.fail(word, "unknown class " + line[word],
                      "name it by a class_name line before this one");
        mask |= found;
    }
    classes_.push_back(value);
    for (code_sequence at = value.first;; ++at.bytes[at.length - 1]) {
        object_.characters.push_back({at, static_cast<uint16_t>(mask)});
        if (at == value.last)
            break;
    }
}

void listing_reader::collation_line(const listing_line &line) {
    object_.collation.thai = line[1] == "thai_smo";
    if (!object_.collation.thai && line[1] != "as_specified")
        line.fail(1, "expected as_specified or thai_smo", "write one of the two");
}

void listing_reader::weights_line(const listing_line &line) {
    object_collation &collation = object_.collation;
    if (static_cast<size_t>(line.number(1, 0, UINT16_MAX)) != collation.rows.size())
        line.fail(1, "expected row " + std::to_string(collation.rows.size()),
                  "give the weights of the rows in their order");
    std::vector<uint16_t> &row = collation.rows.emplace_back();
    for (const uint32_t weight : hex_numbers(line, 2, UINT16_MAX))
        row.push_back(static_cast<uint16_t>(weight));
    if (row.size() != collation.levels.size())
        line.fail(1, "expected " + std::to_string(collation.levels.size()) + " weights",
                  "give one for each level");
}

void listing_reader::read_field(const listing_line &line, const object_field &field,
                                object_field_value &value) {
    const bool numbers = field.kind == field_kind::group || field.kind == field_kind::integer;
    if (field.kind == field_kind::group)
        line.check_operands(1, 1 + size_t{gl_group_limit});
    else if (field.kind != field_kind::counted)
        line.check_operands(1U + field.count, 1U + field.count);
    for (size_t word = 2; word < line.size(); ++word) {
        if (numbers)
            value.numbers.push_back(line.number(word, INT32_MIN, UINT32_MAX));
        else
            value.texts.push_back(line[word]);
        if (line[word].size() > max_text_length)
            line.fail(word, too_long_text(line[word]), "shorten it");
    }
    if (field.kind == field_kind::line && !is_calendar(line[2]))
        line.fail(2, "expected a calendar", "write gregorian, hebrew, islamic or arabic");
}

void listing_reader::field_line(const listing_line &line) {
    for (size_t i = 0; i < object_field_count; ++i) {
        const object_field &field = object_fields[i];
        if (line[0] != section_name(field.section) || line[1] != field.keyword)
            continue;
        if (filled_[i])
            line.fail(1, "this field has a line already", "remove one of the two");
        read_field(line, field, object_.fields[i]);
        filled_[i] = true;
        return;
    }
    line.fail(1, "unknown field " + line[1] + " of " + line[0], "write one that --list prints");
}

void listing_reader::sort_characters() {
    std::vector<object_character> &all = object_.characters;
    std::stable_sort(all.begin(), all.end(), by_bytes);
    for (size_t i = 1; i < all.size(); ++i) {
        const code_sequence &before = all[i - 1].sequence, &here = all[i].sequence;
        if (here == before)
            throw source_error(class_place(here),
                               "the character " + hex_text(here.text()) + " has two class lines",
                               "give all its classes in one");
        if (here.extends(before))
            throw source_error(class_place(here), prefix_loss, "remove one of the two");
    }
}

// The last class line that has a character.
source_place listing_reader::class_place(const code_sequence &sequence) const {
    const auto has = [&](const range_value &value) {
        return value.first.length == sequence.length && value.first.packed() <= sequence.packed() &&
               sequence.packed() <= value.last.packed();
    };
    return std::find_if(classes_.rbegin(), classes_.rend(), has)->place;
}

// Gives their numbers to the characters of ranges; the characters are sorted by now.
void listing_reader::apply(const std::vector<range_value> &values,
                           uint16_t object_character::*datum) {
    for (const range_value &value : values) {
        auto at = std::lower_bound(object_.characters.begin(), object_.characters.end(),
                                   object_character{value.first}, by_bytes);
        uint16_t number = value.value;
        for (code_sequence wanted = value.first;; ++wanted.bytes[wanted.length - 1], ++at) {
            if (at == object_.characters.end() || at->sequence != wanted)
                throw source_error(value.place, "a character of this range has no class line",
                                   "give it one, with - for no class");
            (*at).*datum = number;
            number = static_cast<uint16_t>(number + (value.up ? 1 : 0));
            if (wanted == value.last)
                break;
        }
    }
}

void listing_reader::check_all_is_there() const {
    for (size_t i = 0; i < object_field_count; ++i)
        if (!filled_[i])
            fail_at_end(std::string("there is no ") + section_name(object_fields[i].section) + " " +
                            object_fields[i].keyword,
                        "write that line, even with nothing after the keyword");
    if (object_.characters.empty() || (!object_.collation.thai && object_.collation.rows.empty()))
        fail_at_end("characters or weights are missing", "write class and weights lines");
}

locale_object listing_reader::read() {
    read_statements(source_, statements());
    sort_characters();
    apply(cases_, &object_character::case_index);
    apply(rows_, &object_character::row);
    check_all_is_there();
    return std::move(object_);
}

} // namespace

bool is_listing(const source_file &source) { return source.line(1).starts_with(listing_mark); }

locale_object read_listing(const source_file &source) { return listing_reader(source).read(); }

} // namespace kestrion
