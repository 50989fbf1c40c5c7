#include "compilers/listing_line.h"

#include <algorithm>
#include <charconv>

namespace kestrion {
namespace {

constexpr std::string_view end_keyword = "end";
constexpr std::string_view white_space = " \t\r";

// True when the whole text is a number of this type and base.
template <typename Number, typename... Base>
bool read_whole(std::string_view text, Number &value, Base... base) {
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), value, base...);
    return error == std::errc() && end == text.data() + text.size();
}

std::string shown(double value) {
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

void read_statement(const listing_line &line, const std::vector<listing_statement> &kinds,
                    std::vector<bool> &seen) {
    size_t kind = 0;
    while (kind < kinds.size() && line[0] != kinds[kind].keyword)
        ++kind;
    if (kind == kinds.size())
        line.fail(0, "unknown keyword " + line[0], "write one that --list prints");
    if (seen[kind] && kinds[kind].occurs != occurrence::any)
        line.fail(0, "a second " + line[0] + " line", "remove one of the two");
    seen[kind] = true;
    line.check_operands(kinds[kind].least_operands, kinds[kind].most_operands);
    kinds[kind].read(line);
}

} // namespace

listing_line::listing_line(const source_file &source, size_t number) : source_(&source) {
    const std::string_view text = source.text();
    const std::string_view line = source.line(number);
    size_t at = static_cast<size_t>(line.data() - text.data());
    for (const size_t end = at + line.size(); at < end;) {
        if (white_space.find(text[at]) != std::string_view::npos) {
            ++at;
        } else if (text[at] == '#') {
            return;
        } else if (text[at] == '"') {
            words_.push_back(quoted_word(at, end));
        } else {
            const size_t stop = std::min(text.find_first_of(white_space, at), end);
            words_.push_back({std::string(text.substr(at, stop - at)), at});
            at = stop;
        }
    }
}

listing_line::word_read listing_line::quoted_word(size_t &at, size_t end) const {
    const std::string_view text = source_->text();
    word_read word{"", at};
    for (++at; at < end && text[at] != '"'; ++at) {
        if (text[at] != '\\') {
            word.text += text[at];
        } else if (++at < end && text[at] != 'x') {
            word.text += text[at];
        } else {
            const auto byte = sequence_of_hex(text.substr(std::min(at + 1, end), 2));
            if (end - at < 3 || !byte)
                throw source_error({source_, at - 1}, "expected two hexadecimal digits after \\x",
                                   "write the byte as \\x0a");
            word.text += byte->text();
            at += 2;
        }
    }
    if (at >= end)
        throw source_error({source_, word.offset}, "this text does not end on its line",
                           "close it with a quotation mark");
    ++at;
    return word;
}

const std::string &listing_line::operator[](size_t word) const {
    if (word >= words_.size())
        fail(words_.size() - 1, "expected one more word after this one",
             "complete the " + words_[0].text + " line");
    return words_[word].text;
}

void listing_line::fail(size_t word, const std::string &what, const std::string &remedy) const {
    throw source_error(place(word), what, remedy);
}

void listing_line::check_operands(size_t least, size_t most) const {
    if (words_.size() <= least)
        (*this)[words_.size()];
    if (words_.size() - 1 > most)
        fail(most + 1, "unexpected words at the end of the line", "remove them");
}

int64_t listing_line::number(size_t word, int64_t least, int64_t greatest, int base) const {
    int64_t value = 0;
    if (!read_whole((*this)[word], value, base) || value < least || value > greatest)
        fail(word,
             "expected a number from " + std::to_string(least) + " to " + std::to_string(greatest),
             base == 16 ? "write it in hexadecimal" : "write it in decimal");
    return value;
}

double listing_line::real(size_t word, double least, double greatest) const {
    double value = 0;
    if (!read_whole((*this)[word], value) || !(value >= least && value <= greatest))
        fail(word, "expected a real number from " + shown(least) + " to " + shown(greatest),
             "write it with a decimal point");
    return value;
}

code_sequence listing_line::sequence(size_t word, std::string_view part) const {
    const auto found = sequence_of_hex(part);
    if (!found)
        fail(word, "expected one to four bytes", "write two hexadecimal digits for each");
    return *found;
}

void read_statements(const source_file &source, const std::vector<listing_statement> &kinds) {
    std::vector<bool> seen(kinds.size());
    bool ended = false;
    for (size_t number = 2; number <= source.line_count(); ++number) {
        const listing_line line(source, number);
        if (line.empty())
            continue;
        if (ended)
            line.fail(0, "unexpected line after end", "remove it");
        ended = line[0] == end_keyword;
        if (ended)
            line.check_operands(0, 0);
        else
            read_statement(line, kinds, seen);
    }
    const source_place end{&source, source.text().size()};
    if (!ended)
        throw source_error(end, "the listing is cut: its last line is not end",
                           "list the object again");
    for (size_t i = 0; i < kinds.size(); ++i)
        if (kinds[i].occurs == occurrence::once && !seen[i])
            throw source_error(end, std::string("the ") + kinds[i].keyword + " line is missing",
                               "write one, as --list does");
}

std::string quoted(std::string_view bytes) {
    std::string text = "\"";
    for (const char c : bytes) {
        if (c < ' ' || c > '~')
            text += "\\x" + hex_text({&c, 1});
        else if (c == '"' || c == '\\')
            text.append("\\").append(1, c);
        else
            text += c;
    }
    return text + '"';
}

} // namespace kestrion
