#include <kestrion/sql_tokens.h>

#include "sql/random_statements.h"
#include "support/guarded_bytes.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

// The tokens of a text that ends, with its terminator, at an unreadable page.
std::vector<std::string> tokens_of(const std::string &text) {
    guarded_bytes bytes(std::string_view(text.c_str(), text.size() + 1));
    std::vector<std::string> tokens;
    const char *end = bytes.data();
    for (;;) {
        const char *start = sqltoken(end, &end);
        if (end == start)
            return tokens;
        tokens.emplace_back(start, end);
    }
}

using list = std::vector<std::string>;

TEST(SqlTokens, EachFormIsTakenWhole) {
    const struct {
        const char *text;
        list wanted;
    } rows[] = {
        {"SELECT", {"SELECT"}},
        {" a<>b", {"a", "<>", "b"}},
        {"a=b", {"a", "=", "b"}},
        {"a||b::c!=d>=e<=f|g:h!<>>",
         {"a", "||", "b", "::", "c", "!=", "d", ">=", "e", "<=", "f", "|", "g", ":", "h", "!", "<>",
          ">"}},
        {"'it''s' \"a\"\"b\"", {"'it''s'", "\"a\"\"b\""}},
        {"''", {"''"}},
        {"1e 1e5 .5 1. 2..3 1.5E-3 1e+ .e 7.25.5",
         {"1", "e", "1e5", ".5", "1", ".", "2", ".", ".3", "1.5E-3", "1", "e", "+", ".", "e",
          "7.25", ".5"}},
        {"_a1 $b a$", {"_a1", "$", "b", "a", "$"}},
        {"a {c} -- d\n /* e */ f", {"a", "f"}},
        {"{+ h} --+ i\n/*+ j*/k", {"{+ h}", "--+ i\n", "/*+ j*/", "k"}},
        {"/*/ a */ b", {"b"}},
        {"set {1} SET{2} list  x multiset\n{3}",
         {"set {", "1", "}", "SET{", "2", "}", "list  ", "x", "multiset\n{", "3", "}"}},
        {"sets {a} b", {"sets", "b"}},
        {"set /*c*/ {a} b", {"set ", "b"}},
        {"abcdefghijklmnop abcdefghijklmno", {"abcdefghijklmnop", "abcdefghijklmno"}},
    };
    for (const auto &row : rows)
        EXPECT_EQ(tokens_of(row.text), row.wanted) << row.text;
}

TEST(SqlTokens, WhatIsNeverClosedEndsTheWalk) {
    const struct {
        const char *text;
        list wanted;
    } rows[] = {
        {"", {}},
        {" \t\n", {}},
        {"a 'open", {"a"}},
        {"a \"open''", {"a"}},
        {"a {open", {"a"}},
        {"a -- open", {"a"}},
        {"a {+ open", {"a"}},
        {"a --+ open", {"a"}},
        {"a /* open", {"a"}},
        {"a /*+ open", {"a", "/*+ open"}},
        {"'a''", {}},
    };
    for (const auto &row : rows)
        EXPECT_EQ(tokens_of(row.text), row.wanted) << row.text;
}

// Where the tokens of a text begin and end.
std::vector<std::pair<size_t, size_t>> places_of(const std::string &text) {
    std::vector<std::pair<size_t, size_t>> places;
    const char *end = text.c_str();
    for (;;) {
        const char *start = sqltoken(end, &end);
        if (end == start)
            return places;
        places.emplace_back(start - text.c_str(), end - text.c_str());
    }
}

TEST(SqlTokens, ACutLeavesTheTokensBeforeItAsTheyWere) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        const std::string text = random_statement(random, 25);
        const auto whole = places_of(text);
        for (size_t length = 0; length < text.size(); ++length) {
            const auto cut = places_of(text.substr(0, length));
            for (size_t i = 0; i < whole.size() && whole[i].second < length; ++i) {
                ASSERT_LT(i, cut.size()) << text << "\ncut to " << length;
                ASSERT_EQ(cut[i], whole[i]) << text << "\ncut to " << length;
            }
        }
    }
}

} // namespace
