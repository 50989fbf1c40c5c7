// Catalogue sources: plain text that a translator writes.
//
//     $ A line that begins with "$ ", or a lone "$", is a comment.
//     $quote "
//     $args -84403 any
//     -84403 "Cannot read %s.\n"
//     1202 Press RETURN to continue.
//
// A message is its number, one blank, and its text up to the end of the line. A backslash at the
// end of a line continues it; \n \t \v \b \r \f \\ and \ddd (octal) are bytes. With a quote
// character set by $quote, a text may be in quotes. docs/formats/message-catalogue.md holds the
// grammar.

#pragma once

#include "compilers/diagnostics.h"
#include "compilers/mkqem/signature.h"

#include <map>
#include <stdint.h>
#include <string>
#include <vector>

namespace kestrion {

// One message; the compiler adds the line end that every stored text has.
struct source_message {
    source_position where; // of its number
    std::string text;
    std::vector<source_position> places; // of each byte of the text in the source, and of its end
};

struct declared_arguments {
    source_position where; // of the number in the $args line
    signature arguments;
};

struct catalogue_source {
    source_file file;
    std::map<int32_t, source_message> messages;
    std::map<int32_t, declared_arguments> declarations;

    // What message `number` takes: its declaration, or no arguments.
    signature arguments_of(int32_t number) const;
};

// Code set of the stored texts. Escaped bytes are stored as they are in each.
enum class code_set {
    as_it_is, // bytes pass unread
    utf_8,    // the source must be UTF-8
    latin_1   // the source is UTF-8; what ISO 8859-1 does not have is a loss and becomes '?'
};

// Reads a source; what is wrong with it goes to `said`, one message per cause.
catalogue_source parse_catalogue(source_file file, code_set target, diagnostics &said);

// Holds the texts of a source against the arguments that `english` declares, or against its own.
void check_arguments(const catalogue_source &source, diagnostics &said);
void check_translation(const catalogue_source &source, const catalogue_source &english,
                       diagnostics &said);

} // namespace kestrion
