#include "compilers/mkcvo/conversion.h"

#include "compilers/listing_line.h"

#include <algorithm>

// The lines of a listing:
//
//     conversion_listing 1
//     head "SOURCE_CRC32=..."        each line that the runtime skips, in order
//     states 0 0                     source, target
//     shifts - - 0e 0f               into and out of the shifted target, then source; - for none
//     normal 8140 12 a1a1            source, control byte, target; no target after a 00
//     shifted 3021 12 b0a1
//     end
//
// Lengths, expansion and whether there is a byte table follow from the rows.

namespace kestrion {

namespace {

constexpr std::string_view listing_mark = "conversion_listing 1";

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

// A row of the listing with its place in it.
struct placed_entry {
    conversion_entry entry;
    source_place place;
};

// The entries of one state, in the order of their source bytes. Throws source_error for those that
// no table can hold together.
std::vector<conversion_entry> sorted_entries(std::vector<placed_entry> rows) {
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto &a, const auto &b) { return by_source(a.entry, b.entry); });
    std::vector<conversion_entry> entries;
    for (const auto &[entry, place] : rows) {
        if (!entries.empty() && entries.back().source == entry.source)
            throw source_error(place, "a second meaning of " + hex_text(entry.source.text()),
                               "remove one of the two lines");
        if (!entries.empty() && entry.source.extends(entries.back().source))
            throw source_error(place, prefix_loss, "remove one of the two");
        entries.push_back(entry);
    }
    return entries;
}

struct listing_reader {
    conversion_object object = {};
    std::vector<placed_entry> normal = {}, shifted = {};

    std::vector<listing_statement> statements();
    void finish(const source_file &source);
};

std::vector<listing_statement> listing_reader::statements() {
    const size_t shifts = object.shifts.size();
    return {
        {"head", occurrence::any, 1, 1,
         [&](const listing_line &line) { object.head.push_back(line[1]); }},
        {"states", occurrence::once, 2, 2,
         [&](const listing_line &line) {
             object.source_stateful = line.number(1, 0, 1) != 0;
             object.target_stateful = line.number(2, 0, 1) != 0;
         }},
        {"shifts", occurrence::once, shifts, shifts,
         [&](const listing_line &line) {
             for (size_t i = 0; i < object.shifts.size(); ++i)
                 object.shifts[i] = sequence_or_none(line, 1 + i);
         }},
        {"normal", occurrence::any, 2, 3,
         [&](const listing_line &line) {
             normal.push_back({entry_of(line), line.place(0)});
         }},
        {"shifted", occurrence::any, 2, 3,
         [&](const listing_line &line) {
             shifted.push_back({entry_of(line), line.place(0)});
         }},
    };
}

void listing_reader::finish(const source_file &source) {
    if (!shifted.empty() && !object.source_stateful)
        throw source_error(shifted[0].place, "there is no shifted state",
                           "write states 1 0 or 1 1, or remove the shifted lines");
    object.normal = sorted_entries(std::move(normal));
    object.shifted = sorted_entries(std::move(shifted));
    measure(object);
    if (object.target_max == 0)
        throw source_error({&source, source.text().size()}, "no row has a target",
                           "write rows with target bytes");
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
    out += "\n";
    append_entries(out, "normal", object.normal);
    append_entries(out, "shifted", object.shifted);
    return out + "end\n";
}

conversion_object read_listing(const source_file &source) {
    listing_reader reader;
    read_statements(source, reader.statements());
    reader.finish(source);
    return std::move(reader.object);
}

} // namespace kestrion
