#include "compilers/mkcvo/join.h"

#include <algorithm>
#include <string.h>

namespace kestrion {

namespace {

// The bytes of several characters together, when they fit one mapping.
std::optional<written_bytes> write(const code_set_side &target, std::u32string_view characters) {
    written_bytes out;
    if (target.unicode_bytes != 0 && characters.size() != 1)
        return {}; // a mapping always writes one character there
    for (size_t i = 0; i < characters.size(); ++i) {
        const side_row *row = target.find(characters[i]);
        if (row == nullptr || out.bytes.length + row->sequence.length > gl_char_bytes ||
            (i > 0 && row->shifted != out.shifted))
            return {};
        memcpy(out.bytes.bytes + out.bytes.length, row->sequence.bytes, row->sequence.length);
        out.bytes.length = static_cast<uint8_t>(out.bytes.length + row->sequence.length);
        out.shifted = row->shifted;
    }
    return out;
}

// An empty transliteration drops the character: its mapping has no bytes.
std::optional<written_bytes> write_substitute(const code_set_side &target, char32_t character,
                                              const substitutes &instead) {
    if (const auto near = instead.near_bytes.find(character); near != instead.near_bytes.end())
        return target.spelled(near->second);
    if (instead.translit != nullptr)
        if (const auto *choices = instead.translit->find(character); choices != nullptr)
            for (const std::u32string &choice : *choices)
                if (const auto out = write(target, choice))
                    return out;
    if (instead.character)
        return write(target, std::u32string_view(&*instead.character, 1));
    return {};
}

// Reports what the target cannot write.
void check_substitutes(const code_set_side &target, const substitutes &instead, diagnostics &said) {
    for (const auto &[character, bytes] : instead.near_bytes)
        if (!target.spelled(bytes))
            said.error(target.name + " does not have the bytes " + hex_text(bytes.text()),
                       "give --near bytes of its characters");
    if (instead.character && target.find(*instead.character) == nullptr)
        said.error(target.name + " does not have " + code_point_text(*instead.character),
                   "give --substitute one of its characters");
}

unsigned char control_byte(const written_bytes &out, char32_t first, bool inexact) {
    unsigned control = CV_MAPPED | out.bytes.length;
    if (first == 0)
        control |= CV_TERMINATOR;
    if (inexact)
        control |= CV_INEXACT;
    if (out.shifted)
        control |= CV_SHIFTED;
    return static_cast<unsigned char>(control);
}

void add_loss(const code_set_side &target, const side_row &row, diagnostics &said) {
    std::string what;
    for (const char32_t character : row.characters)
        what += (what.empty() ? "" : " ") + code_point_text(character);
    what += " has no counterpart in " + target.name;
    constexpr char remedy[] = "--near, --translit or --substitute gives it an inexact one";
    if (row.place.file != nullptr)
        said.loss(*row.place.file, row.place.position(), what, remedy);
    else
        said.loss(what, remedy);
}

conversion_entry entry_of(const code_set_side &target, const side_row &row,
                          const substitutes &instead, diagnostics &said) {
    std::optional<written_bytes> out = write(target, row.characters);
    const bool exact = out.has_value();
    if (!exact && row.characters.size() == 1)
        out = write_substitute(target, row.characters[0], instead);
    if (!out) {
        add_loss(target, row, said);
        return {row.sequence, 0, {}};
    }
    return {row.sequence, control_byte(*out, row.characters[0], !exact), out->bytes};
}

// Tables hold no character that begins with the bytes of another: the longer one is read as several.
std::vector<const side_row *> rows_for_table(const code_set_side &source, diagnostics &said) {
    std::vector<const side_row *> kept;
    for (const side_row &row : source.rows) {
        const bool extends = !kept.empty() && kept.back()->shifted == row.shifted &&
                             row.sequence.extends(kept.back()->sequence);
        if (!extends)
            kept.push_back(&row);
        else
            said.loss(*row.place.file, row.place.position(), prefix_loss, prefix_remedy);
    }
    return kept;
}

// The sequences that change the source's state, each in the state where it does; in the other state
// they write nothing.
void add_switches(const code_set_side &source, conversion_object &object) {
    constexpr unsigned char change = CV_SWITCH | CV_MAPPED;
    constexpr unsigned char pass = CV_MAPPED;
    object.normal.push_back({source.shift_in, change, {}});
    object.normal.push_back({source.shift_out, pass, {}});
    object.shifted.push_back({source.shift_out, change, {}});
    object.shifted.push_back({source.shift_in, pass, {}});
}

bool looks_fixed_width(int least, int greatest) {
    return least == greatest && (least == 2 || least == 4);
}

void check_widths(const code_set_side &side, int least, int greatest) {
    if (side.unicode_bytes == 0 && !side.stateful && looks_fixed_width(least, greatest))
        throw compiler_failure(side.name + ": all characters have " + std::to_string(least) +
                               " bytes, which the runtime takes for a fixed-width Unicode form");
}

} // namespace

conversion_object join(const code_set_side &source, const code_set_side &target,
                       const substitutes &instead, diagnostics &said) {
    conversion_object object;
    check_substitutes(target, instead, said);
    if (said.failed())
        return object;
    // The runtime keeps shift states of either side only for an object with two tables.
    object.source_stateful = source.stateful || target.stateful;
    object.target_stateful = target.stateful;
    object.shifts = {target.shift_in, target.shift_out, source.shift_in, source.shift_out};
    for (const side_row *row : rows_for_table(source, said))
        (row->shifted ? object.shifted : object.normal)
            .push_back(entry_of(target, *row, instead, said));
    if (source.stateful)
        add_switches(source, object);
    std::stable_sort(object.normal.begin(), object.normal.end(), by_source);
    std::stable_sort(object.shifted.begin(), object.shifted.end(), by_source);
    measure(object);
    if (object.target_max == 0)
        throw compiler_failure(source.name + " and " + target.name +
                               " have no character in common");
    check_widths(source, object.source_min, object.source_max);
    check_widths(target, object.target_min, object.target_max);
    return object;
}

} // namespace kestrion
