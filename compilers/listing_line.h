// The lines of a listing, which is an object as a text that people can read and change.
//
//     class 41..5a upper alpha    a keyword and its operands, in words
//     head "SOURCE=en_US \xe4"    a word in quotes: \x and two hexadecimal digits are a byte,
//                                 a backslash before any other character keeps that character
//     # ...                       a comment, where a word may begin
//     end                         the last line: a listing that was cut has none
#pragma once

#include "compilers/posix/code_sequence.h"
#include "compilers/posix/source_place.h"

#include <functional>
#include <stddef.h>
#include <stdint.h>
#include <string>
#include <string_view>
#include <vector>

namespace kestrion {

// Words count from 0, the keyword; each operation throws source_error at a word that is missing or
// does not fit.
class listing_line {
public:
    listing_line(const source_file &source, size_t number);

    bool empty() const { return words_.empty(); }
    size_t size() const { return words_.size(); }     // words, the keyword included
    const std::string &operator[](size_t word) const; // without quotes and escapes

    void check_operands(size_t least, size_t most) const;
    int64_t number(size_t word, int64_t least, int64_t greatest, int base = 10) const;
    double real(size_t word, double least, double greatest) const;
    // One to four bytes in hexadecimal; `part` is the word or a piece of it.
    code_sequence sequence(size_t word, std::string_view part) const;
    code_sequence sequence(size_t word) const { return sequence(word, (*this)[word]); }

    // What is wrong with a word that is there.
    [[noreturn]] void fail(size_t word, const std::string &what, const std::string &remedy) const;
    source_place place(size_t word) const { return {source_, words_[word].offset}; }

private:
    struct word_read {
        std::string text;
        size_t offset; // in the source
    };
    word_read quoted_word(size_t &at, size_t end) const;

    const source_file *source_;
    std::vector<word_read> words_;
};

// A kind of line: how often a listing has it, and what to do with one.
enum class occurrence { once, at_most_once, any };
struct listing_statement {
    const char *keyword;
    occurrence occurs;
    size_t least_operands, most_operands;
    std::function<void(const listing_line &line)> read;
};
constexpr size_t any_operands = SIZE_MAX;

// Reads the lines of a listing but the first, which says that it is one. Throws source_error.
void read_statements(const source_file &source, const std::vector<listing_statement> &kinds);

// Bytes as a word in quotes.
std::string quoted(std::string_view bytes);

} // namespace kestrion
