#include <kestrion/statement_check.h>

#include "base/ascii_class.h"
#include "sql/statement_cursor.h"

#include <kestrion/case_shift.h>
#include <kestrion/gls_env.h>
#include <kestrion/statement_walk.h>

#include <stdlib.h>

#include <string_view>

using namespace kestrion;

namespace {

// Whether the text at the cursor begins with the lower-case word, in any case.
bool begins_with(const statement_cursor &cursor, std::string_view word) {
    if (cursor.left(word.size()) < word.size())
        return false;
    for (size_t i = 0; i < word.size(); ++i) {
        if (ascii_lower(static_cast<unsigned char>(cursor.at[i])) != word[i])
            return false;
    }
    return true;
}

// The same for a whole word: no letter, digit or "_" follows it.
bool is_at(const statement_cursor &cursor, std::string_view word) {
    if (!begins_with(cursor, word))
        return false;
    statement_cursor after = cursor;
    after.at += word.size();
    return !after.is('_') && !after.has_class(CT_ALNUM);
}

// ---- Complete statements

enum class word { other, end, routine, semicolon, external };

struct known_word {
    std::string_view text;
    word kind;
};
constexpr known_word known_words[] = {
    {"end", word::end},
    {"procedure", word::routine},
    {"function", word::routine},
    {"external", word::external},
};

constexpr std::string_view create = "create";
constexpr ptrdiff_t external_to_name = 9; // "external" and one character

bool ends_other_word(const statement_cursor &cursor) {
    return cursor.over() || cursor.has_class(CT_SPACE) || cursor.is(';') || cursor.is('{') ||
           (cursor.is('-') && cursor.is_next('-', 1)) || cursor.is_quote();
}

bool names_external(const statement_cursor &cursor) {
    statement_cursor name = cursor;
    if (name.left(external_to_name) < external_to_name)
        return false;
    name.at += external_to_name;
    return is_at(name, "name");
}

// Takes one word, quoted text or ";".
word take_word(statement_cursor &cursor) {
    if (cursor.is(';')) {
        ++cursor.at;
        return word::semicolon;
    }
    if (cursor.is_quote()) {
        cursor.skip_to_closing_quote();
        cursor.step();
        return word::other;
    }
    for (const known_word &known : known_words) {
        if (is_at(cursor, known.text)) {
            const bool external = known.kind == word::external;
            const word kind = external && !names_external(cursor) ? word::other : known.kind;
            cursor.at += known.text.size();
            return kind;
        }
    }
    do
        cursor.step();
    while (!ends_other_word(cursor));
    return word::other;
}

// The words after the head of a CREATE text.
struct statement_body {
    word last = word::other;
    bool closed = false;
    bool external = false;

    void take(word next) {
        closed = closed || (next == word::routine && last == word::end);
        external = external || next == word::external;
        last = next;
    }
};

// ---- Parameter lists

// The ")" that closes the first parentheses, or null.
const char *end_of_parameters(statement_cursor cursor) {
    for (int64_t depth = 0; !cursor.over(); cursor.step()) {
        if (cursor.is('\''))
            cursor.skip_to_closing_quote();
        else if (cursor.is('('))
            ++depth;
        else if (cursor.is(')') && --depth == 0)
            return cursor.at;
    }
    return nullptr;
}

bool ends_search(const char *at) { return *at == '\0' || *at == ';'; }

const char *next_word(const char *at) { return skipwhite(skipword(at)); }

// The "type" of "of type", or the ";" or the end before it.
const char *type_after_of(const char *at) {
    constexpr ptrdiff_t of_to_type = 3;
    for (; !ends_search(at); at = next_word(at)) {
        if (cbncmpr("of", at, 2) == 0 && at[2] != '\0' && cbncmpr("type", at + of_to_type, 4) == 0)
            return at + of_to_type;
    }
    return at;
}

} // namespace

int32_t chkstmt(const char *text, int32_t length) {
    statement_cursor cursor = {
        .lc = qvt_get_gl_locale_thread(), .at = text, .end = text + (length > 0 ? length : 0)};
    if (!begins_with(cursor, create))
        return 0;
    cursor.at += create.size();
    cursor.step(); // whatever separates it from the next word
    if (!cursor.skip_comments())
        return 1;
    if (is_at(cursor, "dba")) {
        cursor.at += 3;
        if (!cursor.skip_comments())
            return 1;
    }
    if (cursor.over())
        return 1;
    const bool function = is_at(cursor, "function");
    if (!function && !is_at(cursor, "procedure"))
        return 0;
    take_word(cursor);

    statement_body body;
    while (cursor.skip_comments()) {
        if (cursor.over()) {
            const bool finished =
                (body.last == word::semicolon && body.closed) || (function && body.external);
            return finished ? 0 : 1;
        }
        body.take(take_word(cursor));
    }
    return 1;
}

const char *extpos(const char *text, const char *keyword) {
    if (ends_search(text))
        return text;
    const statement_cursor start = {.lc = qvt_get_gl_locale_thread(), .at = text};
    const char *at = end_of_parameters(start);
    if (at == nullptr)
        at = type_after_of(text);
    if (ends_search(at))
        return at;
    at = skipwhite(at + 1);
    if (keyword == nullptr || *keyword == '\0')
        return at;
    const int32_t characters = _gl_im_mbslen(start.lc, keyword);
    const int32_t count = characters < 0 ? INT32_MAX : characters; // which matches nothing
    while (!ends_search(at) && cbncmpr(keyword, at, count) != 0)
        at = next_word(at);
    return at;
}

int32_t collection_literal(const char *start, const char *last) {
    constexpr size_t room = 100; // for all that is worth a copy on the stack
    if (last < start || strchr("sSlLmM", *start) == nullptr || *start == '\0')
        return 0;
    const auto length = static_cast<size_t>(last - start) + 1;
    char short_copy[room];
    char *copy = length < room ? short_copy : static_cast<char *>(malloc(length + 1));
    if (copy == nullptr)
        return 0;
    memcpy(copy, start, length);
    copy[length] = '\0';
    rdownshift(copy);

    int32_t found = 0;
    for (const char *name : {"set", "list", "multiset"}) {
        if (strncmp(copy, name, strlen(name)) == 0 && *skipwhite(copy + strlen(name)) == '{')
            found = 1;
    }
    if (copy != short_copy)
        free(copy);
    return found;
}
