#include <kestrion/sql_tokens.h>

#include "sql/words.h"

#include <kestrion/character_tables.h>

#include <string.h>

#include <string_view>

using namespace kestrion;

namespace {

constexpr size_t longest_compared_word = 15;

bool has_class(char byte, int classes) {
    return (_ixctype[static_cast<unsigned char>(byte) + 1] & classes) != 0;
}
bool is_space(char byte) { return has_class(byte, CHARACTER_SPACE); }
bool is_digit(char byte) { return has_class(byte, CHARACTER_DIGIT); }
bool is_letter(char byte) { return has_class(byte, CHARACTER_UPPER | CHARACTER_LOWER); }
bool begins_word(char byte) { return is_letter(byte) || byte == '_'; }
bool continues_word(char byte) { return begins_word(byte) || is_digit(byte); }

const char *past_spaces(const char *at) {
    while (is_space(*at))
        ++at;
    return at;
}

const char *past_digits(const char *at) {
    while (is_digit(*at))
        ++at;
    return at;
}

// How a comment is opened and closed. What `unclosed_ends` reaches to the end of the text.
struct comment_form {
    std::string_view open;
    const char *close;
    bool unclosed_ends;
};

constexpr comment_form comment_forms[] = {
    {"{", "}", false},
    {"--", "\n", false},
    {"/*", "*/", true},
};

const comment_form *comment_at(const char *at) {
    for (const comment_form &form : comment_forms) {
        if (*at == form.open[0] && strncmp(at, form.open.data(), form.open.size()) == 0)
            return &form;
    }
    return nullptr;
}

// The place after a comment, or null for one that is not closed and does not end with the text.
const char *past_comment(const char *at, const comment_form &form) {
    const char *inside = at + form.open.size();
    const char *close = strstr(inside, form.close);
    if (close != nullptr)
        return close + strlen(form.close);
    return form.unclosed_ends ? inside + strlen(inside) : nullptr;
}

// The place after a quoted text, or the start of one that is not closed.
const char *past_quoted(const char *start) {
    const char *at = start;
    do {
        at = strchr(at + 1, *start);
        if (at == nullptr)
            return start;
        ++at; // a second quote directly after the first one is a quote within the text
    } while (*at == *start);
    return at;
}

// A point and an "E" belong to the number only with a digit after them.
const char *past_number(const char *at) {
    at = past_digits(at);
    if (*at == '.' && is_digit(at[1]))
        at = past_digits(at + 1);
    if (*at == 'e' || *at == 'E') {
        const char *exponent = at + 1;
        if (*exponent == '+' || *exponent == '-')
            ++exponent;
        if (is_digit(*exponent))
            return past_digits(exponent);
    }
    return at;
}

bool opens_collection(const char *word, size_t length) {
    for (const char *name : {"set", "multiset", "list"}) {
        if (is_word(word, length, name))
            return true;
    }
    return false;
}

const char *past_word(const char *start) {
    const char *at = start;
    while (continues_word(*at))
        ++at;
    const auto length = static_cast<size_t>(at - start);
    if (length > longest_compared_word || !opens_collection(start, length))
        return at;
    at = past_spaces(at);
    return *at == '{' ? at + 1 : at;
}

bool is_pair(const char *at) {
    switch (*at) {
    case '<':
        return at[1] == '=' || at[1] == '>';
    case '>':
    case '!':
        return at[1] == '=';
    case '|':
    case ':':
        return at[1] == *at;
    default:
        return false;
    }
}

} // namespace

const char *sqltoken(const char *text, const char **end) {
    const char *at = text;
    for (;;) {
        at = past_spaces(at);
        *end = at;
        if (*at == '\0')
            return at;
        const comment_form *comment = comment_at(at);
        if (comment == nullptr)
            break;
        const char *after = past_comment(at, *comment);
        if (after == nullptr)
            return at;
        if (at[comment->open.size()] == '+') {
            *end = after;
            return at;
        }
        at = after;
    }
    if (begins_word(*at))
        *end = past_word(at);
    else if (is_digit(*at) || (*at == '.' && is_digit(at[1])))
        *end = past_number(at);
    else if (*at == '"' || *at == '\'')
        *end = past_quoted(at);
    else
        *end = at + (is_pair(at) ? 2 : 1);
    return at;
}
