#include "compilers/mklco/listing.h"

#include "compilers/mklco/listing_words.h"
#include "compilers/object_table.h"

#include <charconv>
#include <string.h>

namespace kestrion {
namespace {

std::string hex(uint64_t value) {
    char digits[20];
    return {digits, std::to_chars(digits, digits + sizeof digits, value, 16).ptr};
}

std::string quoted(std::string_view bytes) {
    std::string text = "\"";
    for (char c : bytes) {
        auto byte = static_cast<unsigned char>(c);
        if (byte < ' ' || byte > '~')
            text.append("\\x").append(hex_text({&c, 1}));
        else if (c == '"' || c == '\\')
            text.append("\\").append(1, c);
        else
            text += c;
    }
    return text + '"';
}

// True when b is the sequence directly behind a and only the last byte tells them apart.
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
             end++) {
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

// True when a text can stand without quotes.
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

std::string class_list(const locale_object &object, uint32_t mask) {
    std::string list;
    for (const class_word &word : class_words)
        if (mask & word.mask)
            list.append(" ").append(word.word);
    for (int bit = 0; bit < ct_named_limit; ++bit) {
        if (!(mask & CT_NAMED << bit))
            continue;
        std::string name = "bit" + std::to_string(bit);
        for (size_t i = 0; i < object.class_names.size(); ++i)
            if (object.class_names[i].first == bit && is_plain_class(object, i))
                name = object.class_names[i].second;
        list.append(" ").append(name);
    }
    return list.empty() ? " -" : list;
}

void append_numbered(std::string &out, const char *keyword, const locale_object &object,
                     uint16_t object_character::*datum) {
    for_each_run(object, datum, true, [&](const std::string &range, uint16_t value, bool up) {
        if (value != 0 || up)
            out.append(keyword)
                .append(" ")
                .append(range)
                .append(" ")
                .append(std::to_string(value))
                .append(up ? "+\n" : "\n");
    });
}

void append_ctype(std::string &out, const locale_object &object) {
    for (const auto &[bit, name] : object.class_names)
        out.append("class_name ")
            .append(std::to_string(bit))
            .append(" ")
            .append(is_word(name) ? name : quoted(name))
            .append("\n");
    for_each_run(
        object, &object_character::classes, false,
        [&](const std::string &range, uint16_t mask, bool) {
            out.append("class ").append(range).append(class_list(object, mask)).append("\n");
        });
    for (const object_case_pair &pair : object.pairs)
        out.append("pair ")
            .append(pair.upper ? hex(pair.upper) : "-")
            .append(" ")
            .append(pair.lower ? hex(pair.lower) : "-")
            .append("\n");
    append_numbered(out, "case", object, &object_character::case_index);
    char number[32];
    auto end = std::to_chars(number, number + sizeof number, object.growth).ptr;
    out.append("growth ").append(number, end).append("\n");
}

void append_collation(std::string &out, const locale_object &object) {
    const object_collation &collation = object.collation;
    out.append("collation ").append(collation.thai ? "thai_smo\n" : "as_specified\n");
    if (collation.thai)
        return;
    out.append("code_order ").append(std::to_string(collation.code_order_form));
    out.append("\nmax_weight ").append(std::to_string(collation.max_weight)).append("\nlevels");
    for (uint16_t level : collation.levels)
        out.append(" ").append(hex(level));
    out += '\n';
    append_numbered(out, "row", object, &object_character::row);
    for (const auto &contraction : collation.contractions) {
        out.append("contraction ").append(std::to_string(contraction.row));
        for (uint32_t character : contraction.characters)
            out.append(" ").append(hex(character));
        out += '\n';
    }
    for (const auto &expansion : collation.expansions) {
        out += "expansion";
        for (uint32_t character : expansion)
            out.append(" ").append(hex(character));
        out += '\n';
    }
    for (size_t row = 0; row < collation.rows.size(); ++row) {
        out.append("weights ").append(std::to_string(row));
        for (uint16_t weight : collation.rows[row])
            out.append(" ").append(hex(weight));
        out += '\n';
    }
}

} // namespace

std::string write_listing(const locale_object &object) {
    std::string out = "locale_object 11\n";
    for (const std::string &line : object.head)
        out.append("head ").append(quoted(line)).append("\n");
    out.append("code_set ").append(quoted(object.code_set)).append("\n");
    append_ctype(out, object);
    append_collation(out, object);
    for (size_t i = 0; i < object_field_count; ++i) {
        const object_field &field = object_fields[i];
        out.append(object_section_names[static_cast<int>(field.section)])
            .append(" ")
            .append(field.keyword);
        for (const std::string &text : object.fields[i].texts)
            out.append(" ").append(quoted(text));
        for (int64_t number : object.fields[i].numbers)
            out.append(" ").append(std::to_string(number));
        out += '\n';
    }
    return out;
}

} // namespace kestrion
