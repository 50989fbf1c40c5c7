#include "compilers/mklco/listing.h"

#include "compilers/listing_line.h"
#include "compilers/mklco/listing_words.h"

#include <charconv>
#include <string.h>

namespace kestrion {
namespace {

std::string hex(uint64_t value) {
    char digits[20];
    return {digits, std::to_chars(digits, digits + sizeof digits, value, 16).ptr};
}

// True when b is the sequence directly after a and they differ in the last byte alone.
bool follows(const code_sequence &a, const code_sequence &b) {
    int last = a.length - 1;
    return a.length == b.length && memcmp(a.bytes, b.bytes, static_cast<size_t>(last)) == 0 &&
           a.bytes[last] + 1 == b.bytes[last];
}

// Calls write(range, first value, counting up) for each run of characters whose numbers are equal,
// or, where `counting` allows it, go up by one.
template <typename Write>
void for_each_run(const locale_object &object, uint16_t object_character::*datum, bool counting,
                  Write write) {
    const std::vector<object_character> &all = object.characters;
    for (size_t begin = 0, end; begin < all.size(); begin = end) {
        bool up = false;
        for (end = begin + 1; end < all.size() && follows(all[end - 1].sequence, all[end].sequence);
             ++end) {
            int step = all[end].*datum - all[end - 1].*datum;
            if (end == begin + 1 && counting)
                up = step == 1;
            if (step != (up ? 1 : 0))
                break;
        }
        std::string range = hex_text(all[begin].sequence.text());
        if (end - begin > 1)
            range.append("..").append(hex_text(all[end - 1].sequence.text()));
        write(range, all[begin].*datum, up);
    }
}

// True when a text needs no quotes.
bool is_word(const std::string &text) {
    return !text.empty() && text.find_first_of("\"#\\ ") == std::string::npos &&
           quoted(text).size() == text.size() + 2;
}

// True when a word of a class line means this named class and nothing else.
bool is_plain_class(const locale_object &object, size_t index) {
    const std::string &name = object.class_names[index].second;
    bool plain = is_word(name) && name != "-" && !name.starts_with("bit");
    for (const class_word &word : class_words)
        plain = plain && name != word.word;
    for (size_t i = 0; i < index; ++i)
        plain = plain && name != object.class_names[i].second;
    return plain;
}

std::vector<std::string> class_list(const locale_object &object, uint32_t mask) {
    std::vector<std::string> words;
    for (const class_word &known : class_words)
        if (mask & known.mask)
            words.emplace_back(known.word);
    for (int bit = 0; bit < ct_named_limit; ++bit) {
        if ((mask & uint32_t{CT_NAMED} << bit) == 0)
            continue;
        std::string name = bit_word(bit);
        for (size_t i = 0; i < object.class_names.size(); ++i)
            if (object.class_names[i].first == bit && is_plain_class(object, i))
                name = object.class_names[i].second;
        words.push_back(name);
    }
    return words.empty() ? std::vector<std::string>{"-"} : words;
}

void append_line(std::string &out, std::string_view keyword,
                 const std::vector<std::string> &operands) {
    out += keyword;
    for (const std::string &operand : operands)
        out.append(" ").append(operand);
    out += '\n';
}

template <typename Numbers> std::vector<std::string> hex_words(const Numbers &numbers) {
    std::vector<std::string> words;
    for (const auto number : numbers)
        words.push_back(hex(number));
    return words;
}

void append_numbered(std::string &out, const char *keyword, const locale_object &object,
                     uint16_t object_character::*datum) {
    for_each_run(object, datum, true, [&](const std::string &range, uint16_t value, bool up) {
        if (value != 0 || up)
            append_line(out, keyword, {range, std::to_string(value) + (up ? "+" : "")});
    });
}

void append_ctype(std::string &out, const locale_object &object) {
    for (const auto &[bit, name] : object.class_names)
        append_line(out, "class_name", {std::to_string(bit), is_word(name) ? name : quoted(name)});
    for_each_run(object, &object_character::classes, false,
                 [&](const std::string &range, uint16_t mask, bool) {
                     std::vector<std::string> operands = class_list(object, mask);
                     operands.insert(operands.begin(), range);
                     append_line(out, "class", operands);
                 });
    const auto partner = [](uint32_t character) { return character ? hex(character) : "-"; };
    for (const object_case_pair &pair : object.pairs)
        append_line(out, "pair", {partner(pair.upper), partner(pair.lower)});
    append_numbered(out, "case", object, &object_character::case_index);
    char number[32];
    const auto end = std::to_chars(number, number + sizeof number, object.growth).ptr;
    append_line(out, "growth", {std::string(number, end)});
}

void append_collation(std::string &out, const locale_object &object) {
    const object_collation &collation = object.collation;
    append_line(out, "collation", {collation.thai ? "thai_smo" : "as_specified"});
    if (collation.thai)
        return;
    append_line(out, "code_order", {std::to_string(collation.code_order_form)});
    append_line(out, "max_weight", {std::to_string(collation.max_weight)});
    append_line(out, "levels", hex_words(collation.levels));
    append_numbered(out, "row", object, &object_character::row);
    for (const object_character &carrier : collation.carriers)
        out.append("carrier ")
            .append(hex_text(carrier.sequence.text()))
            .append(" ")
            .append(std::to_string(carrier.row))
            .append("\n");
    for (const auto &contraction : collation.contractions) {
        std::vector<std::string> operands = hex_words(contraction.characters);
        operands.insert(operands.begin(), std::to_string(contraction.row));
        append_line(out, "contraction", operands);
    }
    for (const auto &expansion : collation.expansions)
        append_line(out, "expansion", hex_words(expansion));
    for (size_t row = 0; row < collation.rows.size(); ++row) {
        std::vector<std::string> operands = hex_words(collation.rows[row]);
        operands.insert(operands.begin(), std::to_string(row));
        append_line(out, "weights", operands);
    }
}

void append_field(std::string &out, const object_field &field, const object_field_value &value) {
    std::vector<std::string> operands = {field.keyword};
    for (const std::string &text : value.texts)
        operands.push_back(quoted(text));
    for (const int64_t number : value.numbers)
        operands.push_back(std::to_string(number));
    append_line(out, section_name(field.section), operands);
}

} // namespace

std::string write_listing(const locale_object &object) {
    std::string out = std::string(listing_mark) + '\n';
    for (const std::string &line : object.head)
        append_line(out, "head", {quoted(line)});
    append_line(out, "code_set", {quoted(object.code_set)});
    append_ctype(out, object);
    append_collation(out, object);
    for (size_t i = 0; i < object_field_count; ++i)
        append_field(out, object_fields[i], object.fields[i]);
    append_line(out, "end", {});
    return out;
}

} // namespace kestrion
