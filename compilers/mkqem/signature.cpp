#include "compilers/mkqem/signature.h"

#include <algorithm>

namespace kestrion {

namespace {

constexpr unsigned long number_limit = 1000; // of width and precision, as the printer has it

struct directive {
    size_t offset;   // of its percent sign
    size_t end;      // after it
    char conversion; // % s d u x c; 0 for one that would be printed as it is
};

size_t skip_digits(std::string_view text, size_t at, bool &in_range) {
    unsigned long number = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at)
        number = std::min(number * 10 + static_cast<unsigned long>(text[at] - '0'), number_limit);
    in_range = in_range && number < number_limit;
    return at;
}

directive read_directive(std::string_view text, size_t offset) {
    size_t at = offset + 1;
    if (at < text.size() && text[at] == '%')
        return {offset, at + 1, '%'};
    at = std::min(text.find_first_not_of("-+ #0", at), text.size());
    bool in_range = true;
    at = skip_digits(text, at, in_range);
    if (at < text.size() && text[at] == '.')
        at = skip_digits(text, at + 1, in_range);
    if (text.substr(at, 2) == "ld")
        ++at;
    const bool known = in_range && at < text.size() &&
                       std::string_view("sduxc").find(text[at]) != std::string_view::npos;
    return {offset, std::min(at + 1, text.size()), known ? text[at] : '\0'};
}

std::vector<directive> directives_of(std::string_view text) {
    std::vector<directive> found;
    for (size_t at = 0; (at = text.find('%', at)) != std::string_view::npos; at = found.back().end)
        found.push_back(read_directive(text, at));
    return found;
}

const char *kind_word(argument_kind kind) {
    constexpr const char *words[] = {"text", "number", "any"};
    return words[static_cast<size_t>(kind)];
}

const char *advice(argument_kind kind) {
    return kind == argument_kind::number ? "write %d here" : "write %s here";
}

bool fits(char conversion, argument_kind kind) {
    return conversion == 's' || kind == argument_kind::number;
}

} // namespace

std::optional<signature> parse_signature(const std::vector<std::string_view> &words) {
    if (words.size() == 1 && words[0] == "unchecked")
        return signature{.unchecked = true};
    signature declared;
    for (const std::string_view word : words) {
        if (word == "text")
            declared.arguments.push_back(argument_kind::text);
        else if (word == "number")
            declared.arguments.push_back(argument_kind::number);
        else if (word == "any")
            declared.arguments.push_back(argument_kind::any);
        else
            return std::nullopt;
    }
    return words.empty() ? std::nullopt : std::optional(declared);
}

std::string signature_words(const signature &declared) {
    if (declared.unchecked)
        return "unchecked";
    std::string words;
    for (const argument_kind kind : declared.arguments) {
        if (!words.empty())
            words += ' ';
        words += kind_word(kind);
    }
    return words.empty() ? "none" : words;
}

std::optional<misfit> find_misfit(std::string_view text, const signature &declared) {
    if (declared.unchecked)
        return std::nullopt;
    size_t taken = 0;
    for (const directive &found : directives_of(text)) {
        const std::string shown(text.substr(found.offset, found.end - found.offset));
        if (found.conversion == '%')
            continue;
        if (found.conversion == '\0')
            return misfit{found.offset,
                          "'" + shown + "' is not a directive and would be printed as it is",
                          "write %% for a percent sign; directives are %s %d %ld %u %x %c"};
        if (taken == declared.arguments.size())
            return misfit{found.offset,
                          "'" + shown + "' has no argument; the message takes " +
                              signature_words(declared),
                          "take it out, or write %% for a percent sign"};
        const argument_kind kind = declared.arguments[taken++];
        if (!fits(found.conversion, kind))
            return misfit{found.offset,
                          "'" + shown + "' does not fit argument " + std::to_string(taken) +
                              ", which is " + kind_word(kind),
                          advice(kind)};
    }
    if (taken == declared.arguments.size())
        return std::nullopt;
    return misfit{text.size(),
                  "the text does not show argument " + std::to_string(taken + 1) +
                      "; the message takes " + signature_words(declared),
                  advice(declared.arguments[taken])};
}

signature signature_of(std::string_view text) {
    signature shown;
    for (const directive &found : directives_of(text)) {
        if (found.conversion == '\0')
            return {.unchecked = true};
        if (found.conversion != '%')
            shown.arguments.push_back(found.conversion == 's' ? argument_kind::text
                                                              : argument_kind::number);
    }
    return shown;
}

} // namespace kestrion
