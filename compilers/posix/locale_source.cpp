#include "compilers/posix/locale_source.h"

#include "base/ascii_class.h"
#include "compilers/posix/code_sequence.h"
#include "compilers/utf8.h"

#include <algorithm>

namespace kestrion {
namespace {

std::string_view line_at(std::string_view text, size_t begin) {
    return text.substr(begin, std::min(text.find('\n', begin), text.size()) - begin);
}

std::string_view first_word(std::string_view line) {
    size_t begin = 0;
    while (begin < line.size() && is_ascii_white(line[begin]))
        ++begin;
    size_t end = begin;
    while (end < line.size() && !is_ascii_white(line[end]))
        ++end;
    return line.substr(begin, end - begin);
}

std::string_view after_word(std::string_view line, std::string_view word) {
    return line.substr(static_cast<size_t>(word.data() + word.size() - line.data()));
}

} // namespace

locale_source::locale_source(const source_file &file) : file_(file) {
    const std::string_view text = file_.text();
    category open;
    bool continued = false;
    for (size_t next = 0; next < text.size();) {
        const size_t begin = next;
        const std::string_view line = line_at(text, begin);
        next = begin + line.size() + 1;
        const std::string_view word = first_word(line);
        const bool starts_here = !continued;
        const bool comment = starts_here && !word.empty() && word[0] == comment_char_;
        continued = !comment && !line.empty() && line.back() == escape_char_;
        if (!starts_here || word.empty() || comment)
            continue;
        const std::string_view value = first_word(after_word(line, word));
        const source_place here{&file_, begin};
        if (open.name.empty() && (word == "escape_char" || word == "comment_char")) {
            set_special(word, value, here);
            continued = false;
        } else if (word == "END" && value.starts_with("LC_")) {
            close(open, value, here);
        } else if (word.starts_with("LC_") && open.name.empty()) {
            if (find(word) != nullptr)
                throw source_error(here, "a second " + std::string(word),
                                   "make one category of the two");
            open = {word, static_cast<uint32_t>(std::min(next, text.size())), 0};
        } else if (open.name.empty()) {
            throw source_error(here, "expected a category, not " + std::string(word),
                               "move the line into a category, or make it a comment");
        }
    }
    if (!open.name.empty())
        throw source_error(place(static_cast<uint32_t>(open.name.data() - text.data())),
                           std::string(open.name) + " has no end",
                           "close it with END " + std::string(open.name));
}

void locale_source::set_special(std::string_view keyword, std::string_view value,
                                const source_place &here) {
    if (value.size() != 1)
        throw source_error(here, "expected one character after " + std::string(keyword),
                           "write it alone, without quotes");
    (keyword == "escape_char" ? escape_char_ : comment_char_) = value[0];
}

void locale_source::close(category &open, std::string_view name, const source_place &end) {
    if (name != open.name)
        throw source_error(end, "END " + std::string(name) + " closes no open category",
                           open.name.empty() ? "remove it" : "write END " + std::string(open.name));
    open.end = static_cast<uint32_t>(end.offset);
    categories_.emplace(name, open);
    open = {};
}

const locale_source::category *locale_source::find(std::string_view name) const {
    const auto found = categories_.find(name);
    return found == categories_.end() ? nullptr : &found->second;
}

std::vector<text_element> locale_source::elements(const source_token &token) const {
    std::vector<text_element> found;
    if (token.kind == token_kind::symbol) {
        const bool coded = token.code_point != no_code_point;
        found.push_back({coded ? text_element::kind::code_point : text_element::kind::name,
                         coded ? token.code_point : 0, token.text, token.offset});
        return found;
    }
    const std::string_view text = token.text;
    const auto start = static_cast<size_t>(text.data() - file_.text().data());
    for (size_t at = 0; at < text.size();) {
        if (text.substr(at).starts_with(escape_char_) && text.substr(at + 1).starts_with('\n')) {
            at += 2; // the text goes on in the next line
            continue;
        }
        text_element element;
        element.offset = static_cast<uint32_t>(start + at);
        at += read_element(text.substr(at), element);
        found.push_back(element);
    }
    return found;
}

// Reads what `text` begins with; returns its length.
size_t locale_source::read_element(std::string_view text, text_element &element) const {
    if (text[0] == '<')
        return read_name(text, element);
    const size_t escape = text[0] == escape_char_ && text.size() > 1 ? 1 : 0;
    unsigned char byte = 0;
    if (const size_t length = escape != 0 ? read_byte_form(text.substr(1), byte) : 0) {
        element.is = text_element::kind::byte;
        element.value = byte;
        return escape + length;
    }
    const size_t length = decode_utf8(text.substr(escape), element.value);
    if (length == 0)
        throw source_error(place(element.offset), "this byte does not begin a character of UTF-8",
                           "write the character as <Uxxxx>, or the number of the byte after the "
                           "escape character");
    return escape + length;
}

size_t locale_source::read_name(std::string_view text, text_element &element) const {
    size_t end = 1;
    while (end < text.size() && text[end] != '>')
        end += text[end] == escape_char_ ? 2 : 1;
    if (end >= text.size())
        throw source_error(place(element.offset), "this symbolic name does not end",
                           "close it with >, or write the character as <U003C>");
    element.name = text.substr(1, end - 1);
    element.value = code_point_of_name(element.name);
    if (element.value == no_code_point)
        element.is = text_element::kind::name;
    return end + 1;
}

source_place source_statement::place(size_t token) const {
    return source->place(tokens[std::min(token, tokens.size() - 1)].offset);
}

std::string_view source_statement::keyword() const {
    return tokens.front().kind == token_kind::word ? tokens.front().text : std::string_view();
}

} // namespace kestrion
