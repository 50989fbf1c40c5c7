#include "compilers/posix/statement_reader.h"

#include "base/ascii_class.h"
#include "compilers/posix/code_sequence.h"
#include "compilers/utf8.h"

#include <algorithm>
#include <charconv>

namespace kestrion {

bool statement_reader::at_line_continuation() const {
    return at_ + 1 < text_.size() && text_[at_] == source_.escape_char() && text_[at_ + 1] == '\n';
}

// Moves to the next token of the statement that is being read; false at the end of its logical
// line. Empty lines before its first token are ignored.
bool statement_reader::skip_to_token(bool anything_read) {
    while (at_ < text_.size()) {
        if (text_[at_] == '\n') {
            ++at_;
            if (anything_read)
                return false;
        } else if (is_ascii_white(text_[at_])) {
            ++at_;
        } else if (at_line_continuation()) {
            at_ += 2;
        } else if (text_[at_] == source_.comment_char()) {
            const size_t line_end = std::min(text_.find('\n', at_), text_.size());
            const bool continued = line_end > at_ && text_[line_end - 1] == source_.escape_char();
            at_ = static_cast<uint32_t>(line_end) + (continued && line_end < text_.size() ? 1 : 0);
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

// Moves over what goes up to `mark`, and over the mark; a text may run over lines by continuations
// only. False when the mark is missing.
bool statement_reader::skip_past(char mark) {
    while (at_ < text_.size() && text_[at_] != mark && text_[at_] != '\n')
        at_ += text_[at_] == source_.escape_char() ? 2 : 1;
    return at_ < text_.size() && text_[at_++] == mark;
}

source_token statement_reader::symbol_token() {
    const uint32_t begin = at_++;
    if (!skip_past('>'))
        throw source_error(source_.place(begin), "this symbolic name does not end on its line",
                           "close it with >");
    const std::string_view name = text_.substr(begin + 1, at_ - begin - 2);
    return {token_kind::symbol, name, code_point_of_name(name), 0, begin};
}

source_token statement_reader::string_token() {
    const uint32_t begin = at_++;
    if (!skip_past('"'))
        throw source_error(
            source_.place(begin), "this text does not end on its line",
            "close it with a quotation mark, or continue the line with the escape character");
    return {token_kind::string, text_.substr(begin + 1, at_ - begin - 2), no_code_point, 0, begin};
}

source_token statement_reader::bytes_token() {
    const uint32_t begin = at_;
    while (at_ < text_.size() && text_[at_] == source_.escape_char()) {
        unsigned char byte = 0;
        const size_t length = read_byte_form(text_.substr(at_ + 1), byte);
        if (length == 0)
            break;
        at_ += 1 + static_cast<uint32_t>(length);
    }
    return at_ == begin ? escaped_token()
                        : source_token{token_kind::bytes, text_.substr(begin, at_ - begin),
                                       no_code_point, 0, begin};
}

// An escape character takes the special meaning from the character after it.
source_token statement_reader::escaped_token() {
    const uint32_t begin = at_;
    uint32_t code_point = 0;
    const size_t length = decode_utf8(text_.substr(begin + 1), code_point);
    if (length == 0)
        throw source_error(source_.place(begin), "expected a character after the escape character",
                           "give a character or the number of a byte, or remove it");
    at_ += 1 + static_cast<uint32_t>(length);
    return {token_kind::symbol, text_.substr(begin + 1, length), code_point, 0, begin};
}

// Two points count code points, or hexadecimal numbers in names; "..(2).." takes every second one;
// three go from bytes to bytes; four count decimal numbers in names.
source_token statement_reader::ellipsis_token() {
    const uint32_t begin = at_;
    int64_t step = 1;
    while (at_ < text_.size() && text_[at_] == '.')
        ++at_;
    if (at_ - begin == 2 && text_.substr(at_, 5) == "(2)..") {
        at_ += 5;
        step = 2;
    } else if (at_ - begin < 2 || at_ - begin > 4) {
        throw source_error(source_.place(begin), "expected two to four points",
                           "write .., ... or ....");
    }
    return {token_kind::ellipsis, text_.substr(begin, at_ - begin), no_code_point, step, begin};
}

source_token statement_reader::word_token() {
    const uint32_t begin = at_;
    const auto in_word = [&](char c) {
        return is_ascii_graphic(c) &&
               std::string_view("<>;,()\".").find(c) == std::string_view::npos &&
               c != source_.escape_char();
    };
    uint32_t code_point = no_code_point;
    if (const size_t length = decode_utf8(text_.substr(begin), code_point); length != 1) {
        if (length == 0)
            throw source_error(source_.place(begin),
                               "this byte does not begin a character of UTF-8",
                               "write the character as <Uxxxx>");
        at_ += static_cast<uint32_t>(length);
        return {token_kind::symbol, text_.substr(begin, length), code_point, 0, begin};
    }
    while (at_ < text_.size() && in_word(text_[at_]))
        ++at_;
    if (at_ == begin) // a lone mark such as > is a word
        ++at_;
    const std::string_view word = text_.substr(begin, at_ - begin);
    source_token token{token_kind::word, word, no_code_point, 0, begin};
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), token.number);
    if (error == std::errc() && end == word.data() + word.size())
        token.kind = token_kind::number;
    else if (word.size() == 1)
        token.code_point = static_cast<unsigned char>(word[0]);
    return token;
}

source_token statement_reader::next_token() {
    const auto mark = [&](token_kind kind) {
        ++at_;
        return source_token{kind, text_.substr(at_ - 1, 1), no_code_point, 0, at_ - 1};
    };
    const char c = text_[at_];
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

} // namespace kestrion
