#include "compilers/posix/locale_source.h"

#include <algorithm>
#include <charconv>

namespace kestrion {
namespace {

constexpr int deepest_copy = 16;

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

int hex_value(char c) {
    if (is_digit(c))
        return c - '0';
    c = static_cast<char>(c | 0x20);
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::string_view line_at(std::string_view text, size_t begin) {
    return text.substr(begin, std::min(text.find('\n', begin), text.size()) - begin);
}

std::string_view first_word(std::string_view line) {
    size_t begin = 0;
    while (begin < line.size() && is_blank(line[begin]))
        ++begin;
    size_t end = begin;
    while (end < line.size() && !is_blank(line[end]))
        ++end;
    return line.substr(begin, end - begin);
}

std::string_view behind_first_word(std::string_view line) {
    std::string_view word = first_word(line);
    return word.empty() ? word
                        : line.substr(static_cast<size_t>(word.data() + word.size() - line.data()));
}

// Length of the character of UTF-8 that begins at text[at], and its value; 0 when there is none.
size_t decode_utf8(std::string_view text, size_t at, uint32_t &value) {
    auto byte = [&](size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    unsigned lead = byte(at);
    if (lead < 0x80) {
        value = lead;
        return 1;
    }
    size_t length = lead >= 0xF5 ? 0 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
    if (length == 0)
        return 0;
    value = lead & (0x7FU >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80)
            return 0;
        value = value << 6 | (byte(at + i) & 0x3F);
    }
    return length;
}

// A byte as POSIX writes it behind the escape character: x41, d065 or 101. Gives the length of the
// form, 0 when this is none.
size_t byte_form(std::string_view text, unsigned &value) {
    if (text.empty())
        return 0;
    unsigned base = text[0] == 'x' ? 16 : text[0] == 'd' ? 10 : 8;
    size_t begin = base == 8 ? 0 : 1, at = begin;
    value = 0;
    for (; at < text.size() && at - begin < (base == 16 ? 2U : 3U); ++at) {
        int digit = hex_value(text[at]);
        if (digit < 0 || static_cast<unsigned>(digit) >= base)
            break;
        value = value * base + static_cast<unsigned>(digit);
    }
    return at - begin >= 2 && value < 256 ? at : 0;
}

} // namespace

locale_source::locale_source(const source_file &file) : file_(file) {
    std::string_view text = file_.text();
    category open;
    bool continued = false;
    for (size_t next = 0; next < text.size();) {
        size_t begin = next;
        std::string_view line = line_at(text, begin);
        next = begin + line.size() + 1;
        std::string_view word = first_word(line);
        bool starts_here = !continued;
        bool comment = starts_here && !word.empty() && word[0] == comment_char_;
        continued = !comment && !line.empty() && line.back() == escape_char_;
        if (!starts_here || word.empty() || comment)
            continue;
        std::string_view value = first_word(behind_first_word(line));
        uint32_t offset = static_cast<uint32_t>(begin);
        if (open.name.empty() && (word == "escape_char" || word == "comment_char")) {
            if (value.size() != 1)
                throw source_error(place(offset),
                                   "one character must stand behind " + std::string(word),
                                   "write it alone, without quotes");
            (word == "escape_char" ? escape_char_ : comment_char_) = value[0];
            continued = false;
        } else if (word == "END" && value.starts_with("LC_")) {
            if (value != open.name)
                throw source_error(
                    place(offset), "END " + std::string(value) + " closes no open category",
                    open.name.empty() ? "remove it" : "write END " + std::string(open.name));
            open.end = offset;
            categories_.push_back(open);
            open = {};
        } else if (word.starts_with("LC_") && open.name.empty()) {
            if (find(word) != nullptr)
                throw source_error(place(offset), std::string(word) + " stands here again",
                                   "make one category of the two");
            open = {word, static_cast<uint32_t>(std::min(next, text.size())), 0};
        }
    }
    if (!open.name.empty())
        throw source_error(place(static_cast<uint32_t>(open.name.data() - text.data())),
                           std::string(open.name) + " has no end",
                           "close it with END " + std::string(open.name));
}

const locale_source::category *locale_source::find(std::string_view name) const {
    for (const category &c : categories_)
        if (c.name == name)
            return &c;
    return nullptr;
}

std::vector<text_element> locale_source::elements(const source_token &token) const {
    std::vector<text_element> found;
    if (token.kind == token_kind::symbol) {
        bool coded = token.code_point != no_code_point;
        found.push_back({coded ? text_element::kind::code_point : text_element::kind::name,
                         coded ? token.code_point : 0, token.text, token.offset});
        return found;
    }
    std::string_view text = token.text;
    auto offset_of = [&](size_t at) {
        return static_cast<uint32_t>(text.data() + at - file_.text().data());
    };
    for (size_t at = 0; at < text.size();) {
        text_element element;
        element.offset = offset_of(at);
        if (text[at] == escape_char_ && at + 1 < text.size()) {
            unsigned byte = 0;
            if (text[at + 1] == '\n') {
                at += 2;
                continue;
            }
            if (size_t length = byte_form(text.substr(at + 1), byte)) {
                element.is = text_element::kind::byte;
                element.value = byte;
                found.push_back(element);
                at += 1 + length;
                continue;
            }
            ++at;
        } else if (text[at] == '<') {
            size_t end = at + 1;
            while (end < text.size() && text[end] != '>')
                end += text[end] == escape_char_ ? 2 : 1;
            if (end >= text.size())
                throw source_error(place(offset_of(at)), "this symbolic name does not end",
                                   "close it with >, or write the character as <U003C>");
            element.name = text.substr(at + 1, end - at - 1);
            element.value = code_point_of_name(element.name);
            if (element.value == no_code_point)
                element.is = text_element::kind::name;
            found.push_back(element);
            at = end + 1;
            continue;
        }
        size_t length = decode_utf8(text, at, element.value);
        if (length == 0)
            throw source_error(
                place(offset_of(at)), "this byte is no character of UTF-8",
                "write the character as <Uxxxx>, or the byte behind the escape character");
        found.push_back(element);
        at += length;
    }
    return found;
}

source_place source_statement::place(size_t token) const {
    return source->place(tokens[std::min(token, tokens.size() - 1)].offset);
}

std::string_view source_statement::keyword() const {
    return tokens.front().kind == token_kind::word ? tokens.front().text : std::string_view();
}

bool statement_reader::at_line_continuation(uint32_t offset) const {
    std::string_view text = source_.file().text();
    return offset + 1 < end_ && text[offset] == source_.escape_char() && text[offset + 1] == '\n';
}

// Moves to the next token of the statement that is being read; false at the end of its logical
// line. Before a statement's first token, line ends are passed over as well.
bool statement_reader::skip_to_token(bool anything_read) {
    std::string_view text = source_.file().text();
    while (at_ < end_) {
        if (is_blank(text[at_])) {
            ++at_;
        } else if (at_line_continuation(at_)) {
            at_ += 2;
        } else if (text[at_] == '\n') {
            ++at_;
            if (anything_read)
                return false;
        } else if (text[at_] == source_.comment_char()) {
            size_t line_end = std::min<size_t>(text.find('\n', at_), end_);
            bool continued = line_end > at_ && text[line_end - 1] == source_.escape_char();
            at_ = static_cast<uint32_t>(line_end) + (continued && line_end < end_ ? 1 : 0);
        } else {
            return true;
        }
    }
    return false;
}

bool statement_reader::next(source_statement &statement) {
    statement.source = &source_;
    statement.tokens.clear();
    while (skip_to_token(!statement.tokens.empty()))
        statement.tokens.push_back(next_token());
    return !statement.tokens.empty();
}

source_token statement_reader::symbol_token() {
    std::string_view text = source_.file().text();
    uint32_t begin = at_++;
    while (at_ < end_ && text[at_] != '>' && text[at_] != '\n')
        at_ += text[at_] == source_.escape_char() ? 2 : 1;
    if (at_ >= end_ || text[at_] != '>')
        throw source_error(source_.place(begin), "this symbolic name does not end on its line",
                           "close it with >");
    source_token token{token_kind::symbol, text.substr(begin + 1, at_ - begin - 1), no_code_point,
                       0, begin};
    token.code_point = code_point_of_name(token.text);
    ++at_;
    return token;
}

source_token statement_reader::string_token() {
    std::string_view text = source_.file().text();
    uint32_t begin = at_++;
    while (at_ < end_ && text[at_] != '"' && text[at_] != '\n')
        at_ += text[at_] == source_.escape_char() ? 2 : 1;
    if (at_ >= end_ || text[at_] != '"')
        throw source_error(
            source_.place(begin), "this text does not end on its line",
            "close it with a quotation mark, or continue the line with the escape character");
    ++at_;
    return {token_kind::string, text.substr(begin + 1, at_ - begin - 2), no_code_point, 0, begin};
}

source_token statement_reader::bytes_token() {
    std::string_view text = source_.file().text();
    uint32_t begin = at_;
    unsigned byte = 0;
    while (at_ < end_ && text[at_] == source_.escape_char()) {
        size_t length = byte_form(text.substr(at_ + 1, end_ - at_ - 1), byte);
        if (length == 0)
            break;
        at_ += 1 + static_cast<uint32_t>(length);
    }
    if (at_ == begin) { // an escaped character stands for itself
        uint32_t code_point = 0;
        size_t length = decode_utf8(text, std::min<size_t>(at_ + 1, end_), code_point);
        if (length == 0 || at_ + 1 + length > end_)
            throw source_error(source_.place(begin), "nothing stands behind this escape character",
                               "give a character or the number of a byte, or remove it");
        at_ += 1 + static_cast<uint32_t>(length);
        return {token_kind::symbol, text.substr(begin + 1, length), code_point, 0, begin};
    }
    return {token_kind::bytes, text.substr(begin, at_ - begin), no_code_point, 0, begin};
}

// Two points count code points, or hexadecimal numbers in names; "..(2).." takes every second one;
// three go from bytes to bytes; four count decimal numbers in names.
source_token statement_reader::ellipsis_token() {
    std::string_view text = source_.file().text();
    uint32_t begin = at_;
    int64_t step = 1;
    while (at_ < end_ && text[at_] == '.')
        ++at_;
    if (at_ - begin == 2 && text.substr(at_, 5) == "(2)..") {
        at_ += 5;
        step = 2;
    } else if (at_ - begin < 2 || at_ - begin > 4) {
        throw source_error(source_.place(begin), "this is no ellipsis", "write .., ... or ....");
    }
    return {token_kind::ellipsis, text.substr(begin, at_ - begin), no_code_point, step, begin};
}

source_token statement_reader::word_token() {
    std::string_view text = source_.file().text();
    uint32_t begin = at_;
    auto in_word = [&](char c) {
        return (static_cast<unsigned char>(c) > ' ' && static_cast<unsigned char>(c) < 0x7F) &&
               std::string_view("<>;,()\".").find(c) == std::string_view::npos &&
               c != source_.escape_char();
    };
    uint32_t code_point = no_code_point;
    if (size_t length = decode_utf8(text, at_, code_point); length != 1) {
        if (length == 0 || at_ + length > end_)
            throw source_error(source_.place(begin), "this byte is no character of UTF-8",
                               "write the character as <Uxxxx>");
        at_ += static_cast<uint32_t>(length);
        return {token_kind::symbol, text.substr(begin, length), code_point, 0, begin};
    }
    while (at_ < end_ && in_word(text[at_]))
        ++at_;
    if (at_ == begin) // a lone mark such as > stands for itself
        ++at_;
    std::string_view word = text.substr(begin, at_ - begin);
    source_token token{token_kind::word, word, no_code_point, 0, begin};
    auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), token.number);
    if (error == std::errc() && end == word.data() + word.size())
        token.kind = token_kind::number;
    else if (word.size() == 1)
        token.code_point = static_cast<unsigned char>(word[0]);
    return token;
}

source_token statement_reader::next_token() {
    std::string_view text = source_.file().text();
    auto mark = [&](token_kind kind) {
        ++at_;
        return source_token{kind, text.substr(at_ - 1, 1), no_code_point, 0, at_ - 1};
    };
    char c = text[at_];
    if (c == source_.escape_char())
        return bytes_token();
    switch (c) {
    case '<':
        return symbol_token();
    case '"':
        return string_token();
    case ';':
        return mark(token_kind::semicolon);
    case ',':
        return mark(token_kind::comma);
    case '(':
        return mark(token_kind::open);
    case ')':
        return mark(token_kind::close);
    case '.':
        return ellipsis_token();
    default:
        return word_token();
    }
}

const locale_source &source_library::open(const std::string &name) {
    std::unique_ptr<source_file> &file = files_[name];
    if (!file)
        file = find_source_file(name, directories_);
    std::unique_ptr<locale_source> &source = sources_[name];
    if (!source)
        source = std::make_unique<locale_source>(*file);
    return *source;
}

const locale_source &source_library::open_from(const source_place &place, const std::string &name) {
    try {
        return open(name);
    } catch (const compiler_failure &missing) {
        throw source_error(place, missing.what(), "put the source there, or name its directory");
    }
}

// Who copies whom, from the innermost source outwards.
struct source_library::copy_chain {
    const locale_source *source;
    copy_chain *outer;
    source_place copied_at;
    int depth;
};

void source_library::for_each_statement(
    const locale_source &source, std::string_view category,
    const std::function<void(const source_statement &)> &handler) {
    walk(source, category, handler, nullptr);
}

void source_library::walk(const locale_source &source, std::string_view category,
                          const std::function<void(const source_statement &)> &handler,
                          copy_chain *chain) {
    source_place asked_at = chain != nullptr ? chain->copied_at : source_place{&source.file(), 0};
    for (copy_chain *c = chain; c != nullptr; c = c->outer)
        if (c->source == &source || c->depth >= deepest_copy)
            throw source_error(asked_at, "this copy comes back to itself or goes too deep",
                               "copy a category that stands by itself");
    const locale_source::category *found = source.find(category);
    if (found == nullptr)
        throw source_error(asked_at, source.file().name() + " has no " + std::string(category),
                           "write the category, or copy it from another source");
    statement_reader reader(source, *found);
    source_statement statement;
    while (reader.next(statement)) {
        if (statement.keyword() != "copy") {
            handler(statement);
            continue;
        }
        if (statement.tokens.size() != 2 || statement.tokens[1].kind != token_kind::string)
            throw source_error(statement.place(), "copy names no source", "write copy \"NAME\"");
        copy_chain here{&source, chain, statement.place(1),
                        chain != nullptr ? chain->depth + 1 : 1};
        const locale_source &other =
            open_from(statement.place(1), std::string(statement.tokens[1].text));
        walk(other, category, handler, &here);
    }
}

} // namespace kestrion
