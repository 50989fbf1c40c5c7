// Which arguments a message takes, and whether a text fits them.
//
// A program passes each message a fixed list of arguments. The English source declares that list
// once ("$args -84404 text"); every text of the number, in any language, must take exactly these,
// in this order. The directives are those of base/print_as_format.h: %% and, with flags, width and
// precision, %s %d %ld %u %x %c.
//
//     $args kind   the text may use
//     text         %s
//     number       %d %ld %u %x %c, and %s, which prints a number in decimal
//     any          %s alone: callers differ in what they hand over
//     unchecked    (alone) anything: the text is not printed as a format
//
// A message without a declaration takes no arguments; a percent sign in it is written %%.

#pragma once

#include <optional>
#include <stddef.h>
#include <string>
#include <string_view>
#include <vector>

namespace kestrion {

enum class argument_kind { text, number, any };

struct signature {
    std::vector<argument_kind> arguments;
    bool unchecked = false;
};

// The first thing in a text that does not fit its signature.
struct misfit {
    size_t offset; // into the text; its length when something is missing at its end
    std::string what;
    std::string remedy;
};

// Reads the words after the number of a $args line. Nothing for words that are not a list of kinds.
std::optional<signature> parse_signature(const std::vector<std::string_view> &words);

// The words for it, "none" for no arguments.
std::string signature_words(const signature &declared);

std::optional<misfit> find_misfit(std::string_view text, const signature &declared);

// The signature that `text` by itself shows; unchecked when it is not a proper format.
signature signature_of(std::string_view text);

} // namespace kestrion
