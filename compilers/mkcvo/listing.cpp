#include "compilers/mkcvo/conversion.h"

#include "compilers/listing_line.h"

#include <charconv>

// The lines of a listing:
//
//     conversion_listing 1
//     head "SOURCE_CRC32=..."        each line that the runtime skips, in order
//     states 0 0                     source, target
//     shifts - - 0e 0f               into and out of the shifted target, then source; - for none
//     lengths 1 2 1 2                target least and greatest, source least and greatest
//     byte_table 0                   1: the runtime may build one
//     expansion 1
//     normal 8140 12 a1a1            source, control byte, target; no target after a 00
//     shifted 3021 12 b0a1

namespace kestrion {

namespace {

constexpr std::string_view listing_mark = "conversion_listing 1";
// A byte that becomes a shift sequence, a character and a shift sequence.
constexpr double most_expansion = 3 * gl_char_bytes;

std::string hex(const code_sequence &sequence) {
    return sequence.length == 0 ? "-" : hex_text(sequence.text());
}

void append_entries(std::string &out, const char *keyword,
                    const std::vector<conversion_entry> &entries) {
    for (const conversion_entry &entry : entries) {
        out += keyword;
        out += " " + hex(entry.source) + " ";
        out += hex_text({reinterpret_cast<const char *>(&entry.control), 1});
        if (entry.target.length != 0)
            out += " " + hex(entry.target);
        out += "\n";
    }
}

// The bytes of a word; none for "-".
code_sequence sequence_or_none(const listing_line &line, size_t word) {
    return line[word] == "-" ? code_sequence{} : line.sequence(word);
}

conversion_entry entry_of(const listing_line &line) {
    conversion_entry entry;
    entry.source = line.sequence(1);
    const code_sequence control = line.sequence(2);
    if (control.length != 1)
        line.fail(2, "expected a control byte", "write two hexadecimal digits");
    entry.control = control.bytes[0];
    if (line.size() > 3)
        entry.target = line.sequence(3);
    if (entry.target.length != (entry.control & CV_LENGTH))
        line.fail(line.size() - 1, "the control byte counts other target bytes",
                  "make its low three bits their number");
    return entry;
}

std::vector<listing_statement> statements(conversion_object &object) {
    constexpr int longest = gl_char_bytes;
    return {
        {"head", 1, 1, [&](const listing_line &line) { object.head.push_back(line[1]); }},
        {"states", 2, 2,
         [&](const listing_line &line) {
             object.source_stateful = line.number(1, 0, 1) != 0;
             object.target_stateful = line.number(2, 0, 1) != 0;
         }},
        {"shifts", object.shifts.size(), object.shifts.size(),
         [&](const listing_line &line) {
             for (size_t i = 0; i < object.shifts.size(); ++i)
                 object.shifts[i] = sequence_or_none(line, 1 + i);
         }},
        {"lengths", 4, 4,
         [&](const listing_line &line) {
             object.target_min = static_cast<int>(line.number(1, 0, longest));
             object.target_max = static_cast<int>(line.number(2, 1, longest));
             object.source_min = static_cast<int>(line.number(3, 0, longest));
             object.source_max = static_cast<int>(line.number(4, 0, longest));
         }},
        {"byte_table", 1, 1,
         [&](const listing_line &line) { object.no_byte_table = line.number(1, 0, 1) == 0; }},
        {"expansion", 1, 1,
         [&](const listing_line &line) { object.expansion = line.real(1, 0, most_expansion); }},
        {"normal", 2, 3,
         [&](const listing_line &line) { object.normal.push_back(entry_of(line)); }},
        {"shifted", 2, 3,
         [&](const listing_line &line) { object.shifted.push_back(entry_of(line)); }},
    };
}

} // namespace

bool is_listing(std::string_view text) { return text.starts_with(listing_mark); }

std::string listing_text(const conversion_object &object) {
    std::string out(listing_mark);
    out += "\n";
    for (const std::string &line : object.head)
        out += "head " + quoted(line) + "\n";
    out += "states " + std::to_string(object.source_stateful) + " " +
           std::to_string(object.target_stateful);
    out += "\nshifts";
    for (const code_sequence &shift : object.shifts)
        out += " " + hex(shift);
    out += "\nlengths " + std::to_string(object.target_min) + " " +
           std::to_string(object.target_max) + " " + std::to_string(object.source_min) + " " +
           std::to_string(object.source_max);
    out += "\nbyte_table " + std::to_string(!object.no_byte_table) + "\nexpansion ";
    char number[32];
    out.append(
        number,
        std::to_chars(number, number + sizeof number, static_cast<float>(object.expansion)).ptr);
    out += "\n";
    append_entries(out, "normal", object.normal);
    append_entries(out, "shifted", object.shifted);
    return out;
}

conversion_object read_listing(const source_file &source) {
    conversion_object object;
    read_statements(source, statements(object));
    return object;
}

} // namespace kestrion
