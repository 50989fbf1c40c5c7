#include "compilers/mkcvo/conversion.h"

#include "compilers/object_table.h"
#include "compilers/posix/source_place.h"

#include <charconv>
#include <functional>
#include <map>

// A listing is lines of a keyword and its values; "#" begins a comment:
//
//     conversion_listing 1
//     head SOURCE_CRC32=...          each line that the runtime skips, in order
//     states 0 0                     source, target
//     shifts - - 0e 0f               into and out of the shifted target, then source; - for none
//     lengths 1 2 1 2                target least and greatest, source least and greatest
//     byte_table 0                   1: the runtime may build one
//     expansion 1
//     normal 8140 12 a1a1            source, control byte, target; nothing behind a 00
//     shifted 3021 12 b0a1

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

// One line of a listing, word by word.
class line_reader {
public:
    line_reader(const source_file &source, size_t number)
        : source_(source), left_(source.line(number)) {}

    std::string_view word() {
        left_.remove_prefix(std::min(left_.find_first_not_of(' '), left_.size()));
        start_ = left_;
        const std::string_view found = left_.substr(0, left_.find(' '));
        left_.remove_prefix(found.size());
        return found;
    }

    std::string_view rest() {
        word_start();
        const std::string_view all = left_;
        left_ = {};
        return all;
    }

    int number(int least, int most) {
        const std::string_view text = word();
        int value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size() || value < least ||
            value > most)
            fail("a number from " + std::to_string(least) + " to " + std::to_string(most) +
                     " stands here",
                 "write it in decimal");
        return value;
    }

    double real() {
        const std::string_view text = word();
        double value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size())
            fail("a real number stands here", "write it with a decimal point");
        return value;
    }

    // Bytes in hexadecimal, or "-" for none.
    code_sequence sequence() {
        const std::string_view text = word();
        code_sequence bytes;
        if (text == "-")
            return bytes;
        if (text.empty() || text.size() % 2 != 0 || text.size() > 2 * size_t{max_sequence_length})
            fail("one to four bytes stand here", "write two hexadecimal digits for each");
        for (size_t i = 0; i < text.size(); i += 2) {
            const auto [end, error] =
                std::from_chars(text.data() + i, text.data() + i + 2, bytes.bytes[i / 2], 16);
            if (error != std::errc() || end != text.data() + i + 2)
                fail("a byte has two hexadecimal digits", "write them as 0 to 9 and a to f");
        }
        bytes.length = static_cast<uint8_t>(text.size() / 2);
        return bytes;
    }

    void finish() {
        if (!word().empty())
            fail("the line ends here", "take the words behind it away");
    }

    [[noreturn]] void fail(const std::string &what, const std::string &remedy) const {
        const size_t offset = static_cast<size_t>(start_.data() - source_.text().data());
        throw source_error({&source_, offset}, what, remedy);
    }

private:
    void word_start() {
        left_.remove_prefix(std::min(left_.find_first_not_of(' '), left_.size()));
        start_ = left_;
    }

    const source_file &source_;
    std::string_view left_;
    std::string_view start_ = left_;
};

conversion_entry read_entry(line_reader &line) {
    conversion_entry entry;
    entry.source = line.sequence();
    if (entry.source.length == 0)
        line.fail("a source character has at least one byte", "write its bytes in hexadecimal");
    const code_sequence control = line.sequence();
    if (control.length != 1)
        line.fail("the control byte stands here", "write two hexadecimal digits");
    entry.control = control.bytes[0];
    if ((entry.control & CV_LENGTH) != 0)
        entry.target = line.sequence();
    if (entry.target.length != (entry.control & CV_LENGTH))
        line.fail("the control byte counts other target bytes",
                  "make its low three bits their number");
    return entry;
}

using line_handler = std::function<void(line_reader &, conversion_object &)>;

const std::map<std::string_view, line_handler> handlers = {
    {"head",
     [](line_reader &line, conversion_object &object) { object.head.emplace_back(line.rest()); }},
    {"states",
     [](line_reader &line, conversion_object &object) {
         object.source_stateful = line.number(0, 1) != 0;
         object.target_stateful = line.number(0, 1) != 0;
     }},
    {"shifts",
     [](line_reader &line, conversion_object &object) {
         for (code_sequence &shift : object.shifts)
             shift = line.sequence();
     }},
    {"lengths",
     [](line_reader &line, conversion_object &object) {
         object.target_min = line.number(0, max_sequence_length);
         object.target_max = line.number(1, max_sequence_length);
         object.source_min = line.number(0, max_sequence_length);
         object.source_max = line.number(0, max_sequence_length);
     }},
    {"byte_table",
     [](line_reader &line, conversion_object &object) {
         object.no_byte_table = line.number(0, 1) == 0;
     }},
    {"expansion",
     [](line_reader &line, conversion_object &object) { object.expansion = line.real(); }},
    {"normal", [](line_reader &line,
                  conversion_object &object) { object.normal.push_back(read_entry(line)); }},
    {"shifted", [](line_reader &line,
                   conversion_object &object) { object.shifted.push_back(read_entry(line)); }},
};

} // namespace

bool is_listing(std::string_view text) { return text.starts_with(listing_mark); }

std::string listing_text(const conversion_object &object) {
    std::string out(listing_mark);
    out += "\n";
    for (const std::string &line : object.head)
        out += "head " + line + "\n";
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
    for (size_t number = 2; number <= source.line_count(); ++number) {
        line_reader line(source, number);
        const std::string_view keyword = line.word();
        if (keyword.empty() || keyword[0] == '#')
            continue;
        const auto handler = handlers.find(keyword);
        if (handler == handlers.end())
            line.fail("no line of a listing begins so",
                      "the first word is head, states, shifts, lengths, "
                      "byte_table, expansion, normal or shifted");
        handler->second(line, object);
        line.finish();
    }
    return object;
}

} // namespace kestrion
