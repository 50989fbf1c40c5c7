#include "compilers/mklco/object.h"

#include "base/ascii_class.h"
#include "compilers/object_table.h"
#include "gls/objects/locale_object.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace kestrion {
namespace {

void append_hex(std::string &out, uint64_t value, int digits) {
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        out += "0123456789abcdef"[value >> shift & 15];
}

// A table of all characters with one of their numbers.
std::string character_table(const locale_object &object, uint16_t object_character::*datum,
                            const std::vector<object_character> &more = {}) {
    multi_table table = make_table(sizeof(uint16_t));
    for (const auto *characters : {&object.characters, &more})
        for (const object_character &character : *characters) {
            const uint16_t value = character.*datum;
            add_to_table(table.get(), character.sequence, value == 0 ? nullptr : &value);
        }
    return table_text(table.get(), ub2_writer);
}

void append_line(std::string &out, int64_t number) { out += std::to_string(number) + "\n"; }

void append_text(std::string &out, std::string_view text) {
    out += std::to_string(text.size());
    if (!text.empty())
        out += ' ';
    for (char c : text)
        append_hex(out, static_cast<unsigned char>(c), 2);
    out += '\n';
}

void append_head(std::string &out, const locale_object &object) {
    const std::string &name = object.code_set;
    if (!is_code_set_name(name))
        throw compiler_failure(
            "\"" + name +
            "\" is not a code set's name, which has 1 to 19 characters and no blanks");
    out += lco_file_type;
    out += lco_version;
    out += "HEADER_LINES=" + std::to_string(lco_head_lines + object.head.size()) + "\n";
    for (const std::string &line : object.head) {
        if (line.size() >= size_t{lco_line_limit} || line.find('\n') != std::string::npos)
            throw compiler_failure(
                "a head line of more than 126 characters, or with a line feed: " + line);
        out += line + "\n";
    }
    out += object.code_set + "\n";
}

void append_ctype(std::string &out, const locale_object &object) {
    out += category_markers[0];
    out += character_table(object, &object_character::classes);
    append_line(out, static_cast<int64_t>(object.class_names.size()));
    for (const auto &[bit, name] : object.class_names)
        out += std::to_string(bit) + " " + name + "\n";
    out += character_table(object, &object_character::case_index);
    if (object.pairs.size() > size_t{lco_pair_limit})
        throw compiler_failure("more than 65535 pairs of upper and lower case");
    out += std::to_string(object.pairs.size());
    for (const object_case_pair &pair : object.pairs) {
        out += '\n';
        append_hex(out, pair.upper, 8);
        append_hex(out, pair.lower, 8);
    }
    char number[32];
    auto end = std::to_chars(number, number + sizeof number, object.growth).ptr;
    out += '\n';
    out.append(number, end);
    if (object.growth == static_cast<int>(object.growth))
        out += ".0";
    out += '\n';
}

void append_length(std::string &out, const std::vector<uint32_t> &characters) {
    if (characters.size() > longest_collating_sequence)
        throw compiler_failure("a collating sequence of more than " +
                               std::to_string(longest_collating_sequence) + " characters");
    append_hex(out, characters.size(), 1);
}

void append_collation(std::string &out, const locale_object &object) {
    const object_collation &collation = object.collation;
    out += category_markers[1];
    if (collation.thai) {
        out += "thai_smo\n";
        return;
    }
    out += "as_specified\n";
    out += character_table(object, &object_character::row, collation.carriers);
    append_line(out, collation.code_order_form);
    append_line(out, static_cast<int64_t>(collation.rows.size()) - 1);
    append_line(out, static_cast<int64_t>(collation.levels.size()));
    append_line(out, static_cast<int64_t>(collation.contractions.size()));
    append_line(out, static_cast<int64_t>(collation.expansions.size()));
    append_line(out, collation.max_weight);
    for (uint16_t level : collation.levels)
        append_hex(out, level, 4);
    out += '\n';
    for (const auto &contraction : collation.contractions) {
        append_length(out, contraction.characters);
        append_hex(out, contraction.row, 4);
        for (uint32_t character : contraction.characters)
            append_hex(out, character, 8);
        out += '\n';
    }
    for (const auto &expansion : collation.expansions) {
        append_length(out, expansion);
        for (uint32_t character : expansion)
            append_hex(out, character, 8);
        out += '\n';
    }
    for (const auto &row : collation.rows) {
        for (uint16_t weight : row)
            append_hex(out, weight, 4);
        out += '\n';
    }
}

void append_field(std::string &out, const object_field &field, const object_field_value &value) {
    switch (field.kind) {
    case field_kind::line:
        out += value.texts[0] + "\n";
        break;
    case field_kind::counted:
        append_line(out, static_cast<int64_t>(value.texts.size()));
        [[fallthrough]];
    case field_kind::texts:
        for (const std::string &text : value.texts)
            append_text(out, text);
        break;
    case field_kind::group:
        out += std::to_string(value.numbers.size());
        for (int64_t size : value.numbers)
            out += " " + std::to_string(size);
        out += '\n';
        break;
    case field_kind::integer:
        append_line(out, value.numbers[0]);
        break;
    }
}

} // namespace

object_field_value &locale_object::field(object_section section, std::string_view keyword) {
    for (size_t i = 0; i < object_field_count; ++i)
        if (object_fields[i].section == section && object_fields[i].keyword == keyword)
            return fields[i];
    throw std::out_of_range("no field " + std::string(keyword));
}

std::string too_long_text(std::string_view text) {
    return "a text of " + std::to_string(text.size()) + " bytes, and an object holds at most " +
           std::to_string(max_text_length);
}

bool is_calendar(std::string_view name) {
    return std::any_of(std::begin(gls_canned_calendars), std::end(gls_canned_calendars),
                       [&](const auto &known) { return known.name == std::string(name) + "\n"; });
}

bool is_code_set_name(std::string_view name) {
    return !name.empty() && name.size() <= size_t{lco_cs_name_limit} &&
           std::all_of(name.begin(), name.end(), is_ascii_graphic);
}

std::string write_object(const locale_object &object) {
    std::string out;
    append_head(out, object);
    append_ctype(out, object);
    append_collation(out, object);
    for (size_t i = 0; i < object_field_count; ++i) {
        const object_field &field = object_fields[i];
        if (i == 0 || field.section != object_fields[i - 1].section)
            out += category_markers[2 + static_cast<int>(field.section)];
        append_field(out, field, object.fields[i]);
    }
    return out;
}

} // namespace kestrion
