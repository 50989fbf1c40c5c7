#include "compilers/mklco/character_keys.h"

namespace kestrion {
namespace {

constexpr size_t most_named = size_t{1} << 24;

code_sequence bytes_of(const source_statement &statement, size_t token) {
    code_sequence found;
    for (const text_element &element : statement.source->elements(statement.tokens[token])) {
        if (found.length == gl_char_bytes)
            throw source_error(statement.place(token), "a character of more than 4 bytes",
                               "give one character");
        found.bytes[found.length++] = static_cast<unsigned char>(element.value);
    }
    return found;
}

// The ways in which a source names characters, each with its ellipses.
enum class named_by { code_point, bytes, name };

named_by form_of(const source_token &token) {
    if (token.kind == token_kind::bytes)
        return named_by::bytes;
    const bool name = token.kind == token_kind::symbol && token.code_point == no_code_point;
    return name ? named_by::name : named_by::code_point;
}

bool counts(std::string_view ellipsis, named_by form) {
    switch (form) {
    case named_by::bytes:
        return ellipsis == "...";
    case named_by::name:
        return ellipsis != "...";
    default:
        return ellipsis != "..." && ellipsis != "....";
    }
}

} // namespace

uint32_t character_keys::of(const charmap_row &row) const {
    return row.code_point < code_point_limit
               ? row.code_point
               : code_point_limit + static_cast<uint32_t>(&row - map_.rows.data());
}

const charmap_row *character_keys::row(uint32_t key) const {
    return key < code_point_limit ? map_.find(key) : &map_.rows[key - code_point_limit];
}

std::optional<uint32_t> character_keys::find(const source_statement &statement,
                                             size_t token) const {
    const source_token &at = statement.tokens[token];
    if (at.kind == token_kind::number && at.text.size() == 1)
        return static_cast<unsigned char>(at.text[0]);
    if (at.code_point < code_point_limit)
        return at.code_point;
    if (at.kind != token_kind::symbol && at.kind != token_kind::bytes)
        throw source_error(statement.place(token), "expected a character", "write it as <Uxxxx>");
    const charmap_row *row = at.kind == token_kind::symbol
                                 ? map_.find_name(at.text)
                                 : map_.find_bytes(bytes_of(statement, token));
    return row != nullptr ? std::optional(of(*row)) : std::nullopt;
}

std::vector<uint32_t> character_keys::range(const source_statement &statement, size_t ellipsis) {
    if (ellipsis + 1 >= statement.tokens.size())
        throw source_error(statement.place(ellipsis), "a range without an end",
                           "name its last character");
    const named_by form = form_of(statement.tokens[ellipsis - 1]);
    if (form_of(statement.tokens[ellipsis + 1]) != form ||
        !counts(statement.tokens[ellipsis].text, form))
        throw source_error(statement.place(ellipsis), "these characters need another ellipsis",
                           "write .. between <Uxxxx>, ... between bytes, and .. or .... between "
                           "names that end in numbers");
    switch (form) {
    case named_by::bytes:
        return sequences(statement, ellipsis);
    case named_by::name:
        return names(statement, ellipsis);
    default:
        return code_points(statement, ellipsis);
    }
}

std::vector<uint32_t> character_keys::code_points(const source_statement &statement,
                                                  size_t ellipsis) {
    const auto first = find(statement, ellipsis - 1), last = find(statement, ellipsis + 1);
    if (!first || !last || *first > *last || *last >= code_point_limit)
        throw source_error(statement.place(ellipsis),
                           "the range ends before it begins, or after U+10FFFF",
                           "give the lower end first");
    const auto step = static_cast<uint32_t>(statement.tokens[ellipsis].number);
    count_named(statement, ellipsis, (*last - *first) / step + 1);
    std::vector<uint32_t> keys;
    for (uint32_t key = *first; key <= *last; key += step)
        keys.push_back(key);
    return keys;
}

std::vector<uint32_t> character_keys::sequences(const source_statement &statement,
                                                size_t ellipsis) {
    const code_sequence first = bytes_of(statement, ellipsis - 1);
    const code_sequence last = bytes_of(statement, ellipsis + 1);
    if (first.length != last.length || first.packed() > last.packed())
        throw source_error(statement.place(ellipsis), "these bytes are not a range",
                           "give two characters of one length, the lower one first");
    const std::span<const uint32_t> rows = map_.between(first, last);
    count_named(statement, ellipsis, rows.size());
    std::vector<uint32_t> keys;
    for (const uint32_t row : rows)
        keys.push_back(of(map_.rows[row]));
    return keys;
}

std::vector<uint32_t> character_keys::names(const source_statement &statement, size_t ellipsis) {
    const source_token &points = statement.tokens[ellipsis];
    const auto names = counted_names::between(statement.tokens[ellipsis - 1].text,
                                              statement.tokens[ellipsis + 1].text,
                                              points.text == "...." ? 10 : 16);
    if (!names)
        throw source_error(statement.place(ellipsis), not_a_name_range, name_range_remedy);
    count_named(statement, ellipsis, names->size());
    std::vector<uint32_t> keys;
    for (uint32_t i = 0; i < names->size(); i += static_cast<uint32_t>(points.number))
        if (const charmap_row *row = map_.find_name(names->name(i)))
            keys.push_back(of(*row));
    return keys;
}

void character_keys::count_named(const source_statement &statement, size_t ellipsis,
                                 size_t characters) {
    named_ += characters;
    if (named_ > most_named)
        throw source_error(statement.place(ellipsis),
                           "the class lines name more than " + std::to_string(most_named) +
                               " characters",
                           "name each character once");
}

} // namespace kestrion
