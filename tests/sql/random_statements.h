// Statements by chance, over the pieces that decide anything.

#pragma once

#include <random>
#include <string>

inline std::string random_statement(std::mt19937 &random, int pieces) {
    static const char *const words[] = {
        "select ", "SET",         "set {",     "encrypt_aes",    "(",
        ")",       "'abc'",       "\"k\"",     "'it''s'",        "'",
        "\"",      "{",           "}",         "{+ h}",          "-- c\n",
        "--",      "/* c */",     "/*",        "/*+ h",          "*/",
        "1.5e-3",  "1e",          ".5",        "2..3",           "||",
        "<>",      "<=",          "!",         "a_b1",           " ",
        "\n",      "encryption ", "password ", "decrypt_char (", ",",
        ";",       "list ",       "\xE9",      "\x83{",          "multiset{1}"};
    std::string text;
    for (int i = 0; i < pieces; ++i)
        text += words[random() % std::size(words)];
    return text;
}
