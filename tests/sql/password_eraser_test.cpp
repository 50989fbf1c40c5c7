#include <kestrion/password_eraser.h>

#include "sql/random_statements.h"
#include "support/guarded_bytes.h"
#include <kestrion/sql_tokens.h>

#include <ctype.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

std::string erased(const std::string &text) {
    guarded_bytes bytes(std::string_view(text.c_str(), text.size() + 1));
    erasepassword(bytes.data());
    return std::string(bytes.data());
}

TEST(PasswordEraser, SecretsBecomeTheirLength) {
    const struct {
        const char *text;
        const char *wanted;
    } rows[] = {
        {"SELECT encrypt_aes('abc', 'key') FROM t", "SELECT encrypt_aes('XXX', 'XXX') FROM t"},
        {"select Encrypt_TDES (a, f(\"k'\", 'z'), '') , 'b'",
         "select Encrypt_TDES (a, f(\"XX\", 'X'), '') , 'b'"},
        {"decrypt_binary/*c*/('a') decrypt_char{c}('b') x('c')",
         "decrypt_binary/*c*/('X') decrypt_char{c}('X') x('c')"},
        {"set encryption password 'secret' with hint 'a'",
         "set encryption password 'XXXXXX' with hint 'X'"},
        {"encryption password f('it''s')", "encryption password f('XXXXX')"},
        {"encrypt_aes encrypt_aes('a','b')", "encrypt_aes encrypt_aes('X','X')"},
        {"encryption encryption password 'a'", "encryption encryption password 'X'"},
        {"encrypt_aes({+ 'h'} 'a')", "encrypt_aes({+ 'h'} 'X')"},
        {"encrypt_aes('a' /*+ 'b", "encrypt_aes('X' /*+ 'b"},
        {"encrypt_aes('a', 'open", "encrypt_aes('X', 'open"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(erased(row.text), row.wanted) << row.text;
}

TEST(PasswordEraser, AllElseIsLeftAlone) {
    for (const char *text :
         {"encrypt_aes x 'a'", "\"encryption\" password 'a'", "encryption {+ x} password 'a'",
          "encrypt_aess('a')", "x.password 'a'", "encrypt_aes", "", "cry 'a'",
          // What cannot be ended ends the walk, and what follows it stays readable.
          "select {open encrypt_aes('a')", "'open encrypt_aes(\"a\")",
          "select \x83{, encrypt_aes('a', 'b')", "set {it's} x = encrypt_aes('a')"})
        EXPECT_EQ(erased(text), text);
}

// A plain second way: all tokens first, then the rules over their list.
std::string erased_by_list(std::string text) {
    struct token {
        size_t at;
        std::string bytes;
    };
    std::vector<token> tokens;
    const char *end = text.c_str();
    for (;;) {
        const char *start = sqltoken(end, &end);
        if (start == end)
            break;
        tokens.push_back({static_cast<size_t>(start - text.c_str()), std::string(start, end)});
    }
    const auto lower = [&](size_t i) {
        std::string word = i < tokens.size() ? tokens[i].bytes : "";
        for (char &c : word)
            c = static_cast<char>(tolower(c));
        return word;
    };
    const auto mask = [&](size_t i) {
        if (tokens[i].bytes[0] == '\'' || tokens[i].bytes[0] == '"')
            text.replace(tokens[i].at + 1, tokens[i].bytes.size() - 2,
                         std::string(tokens[i].bytes.size() - 2, 'X'));
    };
    for (size_t i = 0; i < tokens.size(); ++i) {
        const std::string word = lower(i);
        if (word == "encryption" && lower(i + 1) == "password") {
            for (; i < tokens.size(); ++i)
                mask(i);
        } else if ((word == "encrypt_aes" || word == "decrypt_char") && lower(i + 1) == "(") {
            int depth = 1;
            for (i += 2; i < tokens.size() && depth > 0; ++i) {
                mask(i);
                depth += tokens[i].bytes == "(" ? 1 : tokens[i].bytes == ")" ? -1 : 0;
            }
            --i;
        }
    }
    return text;
}

TEST(PasswordEraser, GoesByTheTokensAndErasesOnce) {
    std::mt19937 random(2);
    for (int round = 0; round < 20000; ++round) {
        const std::string text = random_statement(random, 30);
        const std::string once = erased(text);
        ASSERT_EQ(once, erased_by_list(text)) << text;
        ASSERT_EQ(erased(once), once) << text;
    }
}

} // namespace
