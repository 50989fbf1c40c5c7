// POSIX locale sources: their categories, statements and tokens.
//
// A source begins with comment_char and escape_char lines and holds categories, "LC_TIME" to
// "END LC_TIME". A category is read statement by statement; a statement is one logical line (an
// escape character at the end of a line continues it) and comes as its tokens:
//
//     toupper /                    word "toupper"
//        (<U0061>,<U0041>);(b,B)   open, symbol U+0061, comma, symbol U+0041, close,
//                                  semicolon, open, word "b" ...
//     upper <U0041>..<U005A>       word "upper", symbol U+0041, ellipsis, symbol U+005A
//     day "<U0044>o//n";-1         word "day", string, semicolon, number -1
//
// A comment character where a token may begin ends the line; when the line ends in an escape
// character it ends only that physical line. Bare characters outside ASCII are symbols too.
#pragma once

#include "compilers/posix/source_place.h"
#include "compilers/posix/symbolic_name.h"

#include <map>
#include <stdint.h>
#include <string>
#include <string_view>
#include <vector>

namespace kestrion {

enum class token_kind : uint8_t {
    word,     // keyword or plain characters: text
    symbol,   // <name>: text is the name without brackets, code_point is set for <Uxxxx>
    bytes,    // the bytes of a character, /x41/d065/101 in a row: text as it is in the source
    string,   // text is what the quotes enclose, with its escapes and continuations
    number,   // decimal, with a sign: number
    ellipsis, // number is the step, 1 or 2; text is the ellipsis itself
    semicolon,
    comma,
    open,
    close,
};

struct source_token {
    token_kind kind = token_kind::word;
    std::string_view text;
    uint32_t code_point = no_code_point;
    int64_t number = 0;
    uint32_t offset = 0; // of the token's first character in the file
};

// One character of a string token: a code point, a name other than <Uxxxx>, or a byte.
struct text_element {
    enum class kind : uint8_t { code_point, name, byte } is = kind::code_point;
    uint32_t value = 0;    // the code point or the byte
    std::string_view name; // without its brackets
    uint32_t offset = 0;
};

class locale_source {
public:
    // Finds the head and the categories; `file` must outlive the source. Throws source_error.
    explicit locale_source(const source_file &file);

    struct category {
        std::string_view name; // "LC_CTYPE"
        uint32_t begin = 0;    // after its first line
        uint32_t end = 0;      // at its END line
    };

    const source_file &file() const { return file_; }
    source_place place(uint32_t offset) const { return {&file_, offset}; }
    char escape_char() const { return escape_char_; }
    char comment_char() const { return comment_char_; }
    const category *find(std::string_view name) const; // null: the source has no such category

    // The characters of a string token, or of a bytes or symbol token. Throws source_error.
    std::vector<text_element> elements(const source_token &token) const;

private:
    void set_special(std::string_view keyword, std::string_view value, const source_place &here);
    void close(category &open, std::string_view name, const source_place &end);
    size_t read_element(std::string_view text, text_element &element) const;
    size_t read_name(std::string_view text, text_element &element) const;

    const source_file &file_;
    char escape_char_ = '\\';
    char comment_char_ = '#';
    std::map<std::string_view, category> categories_; // by name
};

// A statement: its tokens, never none. The first is the keyword in most categories.
struct source_statement {
    const locale_source *source = nullptr;
    std::vector<source_token> tokens;

    source_place place(size_t token = 0) const;
    // The word that begins the statement; empty when it begins with anything else.
    std::string_view keyword() const;
};

} // namespace kestrion
