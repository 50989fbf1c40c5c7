#include <kestrion/statement_check.h>

#include "support/guarded_bytes.h"

#include <gtest/gtest.h>
#include <string>

namespace {

// The counted text ends at an unreadable page.
int check(const std::string &text) {
    guarded_bytes bytes(text);
    return chkstmt(bytes.data(), static_cast<int32_t>(text.size()));
}

TEST(StatementCheck, ARoutineIsFinishedByItsEnd) {
    const struct {
        const char *text;
        int wanted;
    } rows[] = {
        {"select 1", 0},
        {" create procedure p()", 0}, // must begin with the word
        {"creat", 0},
        {"create", 1},
        {"CREATE ", 1},
        {"create table t (a int)", 0},
        {"create procedures x", 0},
        {"create procedure p()", 1},
        {"create dba procedure p() end procedure;", 0},
        {"create dba", 1},
        {"create dbas procedure p() end procedure;", 0}, // not a routine at all
        {"create {c} dba -- d\n Function f() return 1; End {e} Function ;", 0},
        {"create function f() end function", 1},
        {"create function f() end; function;", 1},
        {"create procedure p() end if; procedure;", 1},
        {"create procedure p() end procedure; x", 1},
        {"create procedure p() 'end procedure;'", 1},
        {"create procedure p() ends procedure;", 1},
        {"create procedure p() end procedure_1;", 1},
        {"create procedure p() {end procedure;", 1},
        {"create procedure p() end procedure; -- open", 1},
        {"create procedure p() end procedure; -- closed\n", 0},
        // A function with an external body is finished as it is; a procedure still wants its end.
        {"create function f() returns int external name 'x' language c", 0},
        {"create procedure p() external name 'x' language c", 1},
        {"create procedure p() external name 'x' language c end procedure;", 0},
        {"create function f() external  name 'x'", 1}, // one character between the two words
        {"create function f() external name_1", 1},
        {"create function f() externals name", 1},
    };
    for (const auto &row : rows)
        EXPECT_EQ(check(row.text), row.wanted) << row.text;
    EXPECT_EQ(chkstmt("create procedure p() end procedure;", -1), 0);
}

TEST(StatementCheck, AKeywordIsFoundAfterTheParameters) {
    const struct {
        const char *text;
        const char *keyword;
        const char *rest; // what the answer points at
    } rows[] = {
        {"create function f(a returning, b g(')')) returning int", "returning", "returning int"},
        {"create function f() RETURNING int;", "returning", "RETURNING int;"},
        {"f() returnings", "returning", "returnings"}, // the beginning of a word is enough
        {"f() 'returning' x; returning", "returning", "; returning"},
        {"f() a b c", "returning", ""},
        {"create row of type r external", "external", "external"},
        {"create row of types; external", "external", "; external"},
        {"a ; external", "external", "; external"},
        {"", "x", ""},
        {"; f() x", "x", "; f() x"},
        {"f(a", "x", ""},
        {"f()   a b", "", "a b"},
        {"f()   a b", nullptr, "a b"},
        {"f()", "x", ""},
        {"of", "x", ""},
        {"a of ", "x", ""},
    };
    for (const auto &row : rows) {
        guarded_bytes text(std::string_view(row.text, strlen(row.text) + 1));
        EXPECT_STREQ(extpos(text.data(), row.keyword), row.rest) << row.text;
    }
}

TEST(StatementCheck, ACollectionLiteralBeginsWithItsKindAndABrace) {
    const std::string blanks(300, ' ');
    const struct {
        std::string text;
        int wanted;
    } rows[] = {
        {"set{1}", 1}, {"SET {", 1}, {"List\t{1}", 1},    {"multiset" + blanks + "{}", 1},
        {"set", 0},    {"set 1", 0}, {"sets{1}", 0},      {"xset{", 0},
        {"{", 0},      {"l", 0},     {"set" + blanks, 0}, {"", 0},
    };
    for (const auto &row : rows) {
        guarded_bytes text(row.text);
        EXPECT_EQ(collection_literal(text.data(), text.data() + row.text.size() - 1), row.wanted)
            << row.text;
    }
    EXPECT_EQ(collection_literal("set {", "set {" + 3), 0) << "the last character is the blank";
}

} // namespace
