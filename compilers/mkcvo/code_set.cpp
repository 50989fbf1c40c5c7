#include "compilers/mkcvo/code_set.h"

#include <algorithm>
#include <set>
#include <string.h>

namespace kestrion {

namespace {

constexpr unsigned char high_bit = 0x80;
constexpr unsigned char first_graphic = 0x21;

bool precedes(const side_row &a, const side_row &b) {
    if (a.shifted != b.shifted)
        return b.shifted;
    const int order = memcmp(a.sequence.bytes, b.sequence.bytes, sizeof a.sequence.bytes);
    if (order != 0 || a.sequence.length != b.sequence.length)
        return order != 0 ? order < 0 : a.sequence.length < b.sequence.length;
    return a.one_way < b.one_way; // the row that writes comes first
}

bool same_place(const side_row &a, const side_row &b) {
    return a.sequence == b.sequence && a.shifted == b.shifted;
}

// The characters of a row named <Uxxxx><Uyyyy>; empty for any other name.
std::u32string composite_characters(std::string_view text) {
    std::u32string characters;
    while (text.starts_with("<")) {
        const size_t end = text.find('>');
        const uint32_t code_point = end == std::string_view::npos
                                        ? no_code_point
                                        : code_point_of_name(text.substr(1, end - 1));
        if (code_point == no_code_point)
            return {};
        characters += static_cast<char32_t>(code_point);
        text.remove_prefix(end + 1);
    }
    return characters;
}

code_sequence without_high_bits(code_sequence sequence) {
    for (int i = 0; i < sequence.length; ++i)
        sequence.bytes[i] &= static_cast<unsigned char>(~high_bit);
    return sequence;
}

bool high_pair(const code_sequence &sequence) {
    return sequence.length == 2 && sequence.bytes[0] >= (high_bit | first_graphic) &&
           sequence.bytes[1] >= (high_bit | first_graphic);
}

bool seven_bit(const code_sequence &sequence) {
    return sequence.length == 1 && sequence.bytes[0] < high_bit;
}

bool control_character(const code_sequence &sequence) {
    return seven_bit(sequence) && (sequence.bytes[0] < first_graphic || sequence.bytes[0] == 0x7f);
}

} // namespace

const side_row *code_set_side::find(char32_t character) const {
    const auto found = writers_.find(character);
    return found == writers_.end() ? nullptr : &rows[found->second];
}

void code_set_side::add(side_row row) { rows.push_back(std::move(row)); }

void code_set_side::finish() {
    std::stable_sort(rows.begin(), rows.end(), precedes);
    rows.erase(std::unique(rows.begin(), rows.end(), same_place), rows.end());
    for (size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].one_way || rows[i].characters.size() != 1)
            continue;
        // Control characters are in both states, the normal one of which comes first.
        size_t &writer = writers_.try_emplace(rows[i].characters[0], i).first->second;
        if (rows[i].place.offset < rows[writer].place.offset)
            writer = i;
    }
}

std::optional<written_bytes> code_set_side::spelled(const code_sequence &bytes) const {
    if (unicode_bytes != 0)
        return bytes.length == unicode_bytes ? std::optional(written_bytes{bytes}) : std::nullopt;
    const auto has = [&](std::string_view text, bool shifted) {
        return std::any_of(rows.begin(), rows.end(), [&](const side_row &row) {
            return row.shifted == shifted && row.sequence.text() == text;
        });
    };
    if (has(bytes.text(), true))
        return written_bytes{bytes, true};
    for (std::string_view left = bytes.text(); !left.empty();) {
        size_t length = 1;
        while (length <= left.size() && !has(left.substr(0, length), false))
            ++length;
        if (length > left.size())
            return {};
        left.remove_prefix(length);
    }
    return written_bytes{bytes};
}

code_set_side side_of_charmap(const std::string &name, const charmap &map) {
    code_set_side side;
    side.name = name;
    for (const charmap_row &row : map.rows) {
        side_row own{row.sequence, {}, row.one_way, false, map.place(row)};
        if (row.code_point != no_code_point)
            own.characters.assign(1, static_cast<char32_t>(row.code_point));
        else
            own.characters = composite_characters(map.source().text().substr(row.offset));
        if (!own.characters.empty())
            side.add(std::move(own));
    }
    side.finish();
    return side;
}

code_set_side shifted_side(const std::string &name, const charmap &map,
                           const code_sequence &shift_in, const code_sequence &shift_out,
                           diagnostics &said) {
    code_set_side side;
    side.name = name;
    side.stateful = true;
    side.shift_in = shift_in;
    side.shift_out = shift_out;
    for (side_row row : side_of_charmap(name, map).rows) {
        if (row.sequence == shift_in || row.sequence == shift_out)
            continue; // these bytes change the state
        if (high_pair(row.sequence)) {
            row.sequence = without_high_bits(row.sequence);
            row.shifted = true;
            side.add(row);
        } else if (seven_bit(row.sequence)) {
            side.add(row);
            row.shifted = true;
            if (control_character(row.sequence))
                side.add(row);
        } else {
            said.loss(*row.place.file, row.place.position(),
                      "the 7-bit form has no place for this character",
                      "it holds single bytes below 80 and pairs of bytes from A1 to FE");
        }
    }
    side.finish();
    return side;
}

code_set_side unicode_side(const code_set_side &other, int bytes, std::optional<char32_t> more) {
    code_set_side side;
    side.name = bytes == 2 ? "UCS-2" : "UCS-4";
    side.unicode_bytes = bytes;
    std::set<char32_t> characters;
    if (more)
        characters.insert(*more);
    for (const side_row &row : other.rows)
        characters.insert(row.characters.begin(), row.characters.end());
    for (const char32_t character : characters) {
        if (bytes == 2 && character > last_of_two_bytes)
            continue;
        side_row row;
        row.sequence.length = static_cast<uint8_t>(bytes);
        store_big_endian<uint32_t>(character, row.sequence.bytes, row.sequence.length);
        row.characters.assign(1, character);
        side.add(std::move(row));
    }
    side.finish();
    return side;
}

} // namespace kestrion
