// Token boundaries beside those of another database's scanner, on what the two languages share: words,
// numbers, quoted texts, operators and "--" comments that end with their line.

#include <kestrion/sql_tokens.h>

#include <gtest/gtest.h>
#include <pg_query.h>
#include <pg_query/pg_query.pb-c.h>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using places = std::vector<std::pair<int, int>>;

places ours(const std::string &text) {
    places found;
    const char *end = text.c_str();
    for (;;) {
        const char *start = sqltoken(end, &end);
        if (start == end)
            return found;
        found.emplace_back(start - text.c_str(), end - text.c_str());
    }
}

// Comments are tokens there.
bool theirs(const std::string &text, places &found) {
    const PgQueryScanResult result = pg_query_scan(text.c_str());
    bool good = result.error == nullptr;
    PgQuery__ScanResult *scan =
        good ? pg_query__scan_result__unpack(nullptr, result.pbuf.len,
                                             reinterpret_cast<const uint8_t *>(result.pbuf.data))
             : nullptr;
    for (size_t i = 0; scan != nullptr && i < scan->n_tokens; ++i) {
        const PgQuery__ScanToken &token = *scan->tokens[i];
        if (text[static_cast<size_t>(token.start)] != '-' || token.end - token.start < 2)
            found.emplace_back(token.start, token.end);
    }
    if (scan != nullptr)
        pg_query__scan_result__free_unpacked(scan, nullptr);
    pg_query_free_scan_result(result);
    return good;
}

TEST(SqlTokens, BoundariesAreThoseOfAnotherScanner) {
    // Left out, since the grammars differ: "{" comments, "set" and its blanks, "1." (a number there),
    // numbers that touch a word, doubled operators, "!=", longer runs of operators, and quoted texts on two
    // lines (one text there).
    const char *const pieces[] = {
        "select ",    "From",      " x_1",  "(",    ")",      " ,",       ";",
        " 'a''b' ,",  " 12 ",      " 1.5 ", " .5 ", " 2e10 ", " 3.5E-2 ", " \"a b\"",
        " -- c 'd\n", " /* e */ ", "\n",    "\t",   " <> ",   " <= ",     " >= ",
        " = ",        " || ",      " + ",   " * ",  " 'x' ,", " where",   " order by "};
    std::mt19937 random(3);
    int compared = 0;
    for (int round = 0; round < 5000; ++round) {
        std::string text;
        for (int i = 0; i < 20; ++i)
            text += pieces[random() % std::size(pieces)];
        places wanted;
        if (!theirs(text, wanted))
            continue;
        std::erase_if(wanted, [&](const auto &place) {
            return text.compare(static_cast<size_t>(place.first), 2, "/*") == 0;
        });
        ++compared;
        ASSERT_EQ(ours(text), wanted) << text;
    }
    EXPECT_GT(compared, 4000);
}

} // namespace
