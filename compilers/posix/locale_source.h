// POSIX locale sources: their categories, statements and tokens.
//
// A source begins with comment_char and escape_char lines and holds categories, "LC_TIME" to
// "END LC_TIME". A category is read statement by statement; a statement is one logical line (an
// escape character at the end of a line continues it) and comes as its tokens:
//
//     toupper /                    word "toupper"
//        (<U0061>,<U0041>);(b,B)   open, symbol U+0061, comma, symbol U+0041, close, semicolon,
//        open, word "b" ...
//     upper <U0041>..<U005A>       word "upper", symbol U+0041, ellipsis (hexadecimal), symbol
//     U+005A day "<U0044>o//n";-1         word "day", string, semicolon, number -1
//
// A comment character that stands where a token may begin ends the line; when the line ends in an
// escape character it ends only that physical line. Bare characters outside ASCII are symbols too.
#pragma once

#include "compilers/posix/charmap.h"
#include "compilers/posix/source_place.h"

#include <functional>
#include <map>
#include <memory>
#include <stdint.h>
#include <string>
#include <string_view>
#include <vector>

namespace kestrion {

enum class token_kind : uint8_t {
    word,   // keyword or plain characters: text
    symbol, // <name>: text is what stands between the brackets, code_point when it is <Uxxxx>
    bytes,  // a character given by its bytes, /x41, /d065 or /101, any number in a row: text as it
            // stands
    string, // text is what stands between the quotes, escapes and continuations included
    number, // decimal, with a sign: number
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

// One character of a string token: a code point, a name that is no <Uxxxx>, or a byte.
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
        uint32_t begin = 0;    // behind its first line
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
    const source_file &file_;
    char escape_char_ = '\\';
    char comment_char_ = '#';
    std::vector<category> categories_;
};

// A statement: its tokens, never none. The first is the keyword in most categories.
struct source_statement {
    const locale_source *source = nullptr;
    std::vector<source_token> tokens;

    source_place place(size_t token = 0) const;
    // The word that begins the statement; empty when it begins with anything else.
    std::string_view keyword() const;
};

// Reads the statements of one category, copy statements as they stand.
class statement_reader {
public:
    statement_reader(const locale_source &source, const locale_source::category &category)
        : source_(source), at_(category.begin), end_(category.end) {}

    // False at the end of the category. Throws source_error.
    bool next(source_statement &statement);

private:
    bool skip_to_token(bool anything_read);
    source_token next_token();
    source_token symbol_token(), string_token(), word_token(), bytes_token(), ellipsis_token();
    bool at_line_continuation(uint32_t offset) const;

    const locale_source &source_;
    uint32_t at_;
    uint32_t end_;
};

// The sources of one compilation: finds them by name, reads each once, and keeps them.
class source_library {
public:
    explicit source_library(std::vector<std::string> directories)
        : directories_(std::move(directories)) {}

    // A locale source by its name or path. Throws compiler_failure or source_error.
    const locale_source &open(const std::string &name);
    // The same for a source that another one names at `place`: what is missing is a source_error
    // there.
    const locale_source &open_from(const source_place &place, const std::string &name);

    // The files read so far, by the names that they were asked for.
    const std::map<std::string, std::unique_ptr<source_file>> &files() const { return files_; }

    // Hands each statement of a category to `handler`, and in place of copy "name" the statements
    // of that source's category of the same name. A source without the category, a copy of a copy
    // of itself, or copies nested deeper than 16 are a source_error.
    void for_each_statement(const locale_source &source, std::string_view category,
                            const std::function<void(const source_statement &)> &handler);

private:
    struct copy_chain;
    void walk(const locale_source &source, std::string_view category,
              const std::function<void(const source_statement &)> &handler, copy_chain *chain);

    std::vector<std::string> directories_;
    std::map<std::string, std::unique_ptr<source_file>> files_;
    std::map<std::string, std::unique_ptr<locale_source>> sources_;
};

} // namespace kestrion
