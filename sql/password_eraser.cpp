#include <kestrion/password_eraser.h>

#include "sql/words.h"

#include <kestrion/character_tables.h>
#include <kestrion/sql_tokens.h>

#include <stdint.h>
#include <string.h>

#include <algorithm>

using namespace kestrion;

namespace {

constexpr size_t longest_keyword = 31;

// A walk through the tokens of a statement.
struct token_walk {
    char *start;
    const char *end;

    explicit token_walk(char *statement) : start(statement), end(statement) { next(); }

    void next() { start = const_cast<char *>(sqltoken(end, &end)); }
    size_t length() const { return static_cast<size_t>(end - start); }
    bool over() const { return end == start; }
    bool is(char character) const { return length() == 1 && *start == character; }
    bool is(const char *word) const {
        return length() <= longest_keyword && is_word(start, length(), word);
    }
    bool is_cipher_call() const {
        return is("encrypt_aes") || is("encrypt_tdes") || is("decrypt_binary") ||
               is("decrypt_char");
    }
    void erase_quoted() {
        if (*start == '\'' || *start == '"')
            memset(start + 1, 'X', length() - 2);
    }
};

void erase_arguments(token_walk &walk) {
    int64_t depth = 1;
    for (walk.next(); !walk.over(); walk.next()) {
        walk.erase_quoted();
        if (walk.is('('))
            ++depth;
        else if (walk.is(')') && --depth == 0)
            return walk.next();
    }
}

void erase_rest(token_walk &walk) {
    for (; !walk.over(); walk.next())
        walk.erase_quoted();
}

// Whether exactly the two cases of `letter` have it as their lower-case form.
bool is_folded_plainly(unsigned char letter) {
    int folded = 0;
    for (const unsigned char lower : _ix2lowmap)
        folded += lower == letter;
    return folded == 2 && _ix2lowmap[letter] == letter && _ix2lowmap[letter - 32] == letter;
}

// Whether a statement may hold one of the words: all of them have the letters "cryp". Most statements
// have none, and are seen through many bytes at a time.
bool may_hold_secrets(const char *statement) {
    for (const char letter : {'c', 'r', 'y', 'p'}) {
        if (!is_folded_plainly(static_cast<unsigned char>(letter)))
            return true;
    }
    const size_t length = strlen(statement);
    constexpr size_t block = 1024;
    for (size_t from = 0; from + 3 < length; from += block) {
        const size_t to = std::min(from + block, length - 3);
        unsigned char found = 0;
        for (size_t i = from; i < to; ++i)
            found |= static_cast<unsigned char>(
                ((statement[i] | 0x20) == 'c') & ((statement[i + 1] | 0x20) == 'r') &
                ((statement[i + 2] | 0x20) == 'y') & ((statement[i + 3] | 0x20) == 'p'));
        if (found != 0)
            return true;
    }
    return false;
}

} // namespace

void erasepassword(char *statement) {
    if (!may_hold_secrets(statement))
        return;
    token_walk walk(statement);
    while (!walk.over()) {
        if (walk.is_cipher_call()) {
            walk.next();
            if (walk.is('('))
                erase_arguments(walk);
        } else if (walk.is("encryption")) {
            walk.next();
            if (walk.is("password"))
                return erase_rest(walk);
        } else {
            walk.next();
        }
    }
}
