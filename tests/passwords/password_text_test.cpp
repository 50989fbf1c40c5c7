#include "passwords/password_text.h"
#include "passwords/watchful_memory.h"
#include "support/guarded_bytes.h"

#include <gtest/gtest.h>
#include <string.h>
#include <string>

using namespace kestrion;

namespace {

using watchful_memory::context;

constexpr int32_t places = 101;
pw_entry *const untouched = reinterpret_cast<pw_entry *>(0x1);

struct parsed {
    int result;
    int32_t count;
    std::string entries; // tokens in brackets
    std::string words;   // standard error
};

struct table {
    pw_entry *rows[places + 1];
    table() { std::fill(std::begin(rows), std::end(rows), untouched); }
};

std::string shown(const table &t) {
    std::string text;
    for (const pw_entry *entry : t.rows) {
        if (entry == untouched)
            break;
        if (entry == nullptr)
            text += "null";
        else
            for (const char *token : {entry->token1, entry->token2, entry->token3, entry->token4})
                text.append("[").append(token).append("]");
    }
    return text;
}

// The text lies against an unreadable page.
parsed parse(const std::string &text, int32_t capacity = places) {
    guarded_bytes copy({text.c_str(), text.size() + 1});
    table t;
    parsed p = {};
    p.count = -7;
    testing::internal::CaptureStderr();
    p.result = kestrion::parse_lines(context(), copy.data(), static_cast<int32_t>(text.size()),
                                     &p.count, t.rows, capacity);
    p.words = testing::internal::GetCapturedStderr();
    p.entries = shown(t);
    return p;
}

std::string lines(int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "a b c d\n";
    return text;
}

TEST(PasswordText, LinesOfFourTokensBecomeEntries) {
    const struct {
        const char *text;
        int32_t count;
        const char *entries;
    } cases[] = {
        {"", 0, ""},
        {"a b c d", 0, ""}, // no line feed, no line
        {"a b c d\ne f", 1, "[a][b][c][d]"},
        {"a\tb  c\bd\n", 1, "[a][b][c][d]"},
        {" \b\ta b c d \t\b\n", 1, "[a][b][c][d]"},
        {"a b c d\r\n", 1, "[a][b][c][d\r]"},
        {"# b c \"d\n1 2 3 4\n", 2, "[#][b][c][\"d][1][2][3][4]"},
    };
    for (const auto &c : cases) {
        const parsed p = parse(c.text);
        EXPECT_EQ(p.result, 0) << c.text;
        EXPECT_EQ(p.count, c.count) << c.text;
        EXPECT_EQ(p.entries, c.entries) << c.text;
        EXPECT_EQ(p.words, "") << c.text;
    }
}

TEST(PasswordText, ABadLineIsToldInWordsAndEndsTheParsing) {
    const std::string first_missing =
        "Format Error: There are less than four tokens on this line\nstart=";
    const std::string later_missing = "Format Error: a line has fewer than four tokens\nstart=";
    const std::string too_many = "Format Error: a line has more than four tokens\n";
    const std::string incorrect = ": Error: Incorrect password file format\nDATA=";
    const struct {
        const char *text;
        std::string words;
        const char *entries;
    } cases[] = {
        {"\n", first_missing + "\nLine:1" + incorrect + "\n", "null"},
        {" \t\n", first_missing + " \t\nLine:1" + incorrect + " \t\n", "null"},
        {"a\n", later_missing + "a\nLine:1" + incorrect + "a\n", "null"},
        {" a b c\n", later_missing + " a\nLine:1" + incorrect + " a\n", "null"},
        {"a b c d e\n", too_many + "Line:1" + incorrect + "a\n", "null"},
        {"a b c d\n\ne f g h\n", first_missing + "\nLine:2" + incorrect + "a\n",
         "[a][b][c][d]null"},
        {"a b c d\nx y\n", later_missing + "x\nLine:2" + incorrect + "a\n", "[a][b][c][d]null"},
    };
    for (const auto &c : cases) {
        const parsed p = parse(c.text);
        EXPECT_EQ(p.result, -1) << c.text;
        EXPECT_EQ(p.count, -7) << "the count is not set: " << c.text;
        EXPECT_EQ(p.entries, c.entries) << c.text;
        EXPECT_EQ(p.words, c.words) << c.text;
    }
}

// Fields lie 129 bytes apart in 516: a long token runs into the fields after it.
TEST(PasswordText, ALongTokenRunsOnButNeverPastTheRecord) {
    const auto x = [](size_t count) { return std::string(count, 'x'); };
    const parsed longest = parse(x(515) + " b c " + x(128) + "\n");
    EXPECT_EQ(longest.result, 0);
    EXPECT_EQ(longest.entries, "[" + x(129) + "b][b][c][" + x(128) + "]");

    for (const std::string &text : {x(516) + " b c d\n", "a " + x(387) + " c d\n",
                                    "a b " + x(258) + " d\n", "a b c " + x(129) + "\n"}) {
        const parsed p = parse(text);
        EXPECT_EQ(p.result, -1);
        EXPECT_EQ(p.words.find("Format Error: A token on this line is too long\nLine:1: Error"), 0u)
            << p.words;
    }
}

TEST(PasswordText, ALineBeyondTheTableIsRefusedBeforeItsRecordIsMade) {
    EXPECT_EQ(parse(lines(places)).count, places);

    watchful_memory::reset();
    const parsed p = parse(lines(places + 1));
    EXPECT_EQ(p.result, -1);
    EXPECT_EQ(p.words, "Line:102: Error: Incorrect password file format\nDATA=a\n");
    EXPECT_EQ(watchful_memory::requests().size(), 1u + places); // the scratch block and 101 records
}

// The record of a bad line is lost by design; what it held is not.
TEST(PasswordText, TheLostRecordOfABadLineIsWiped) {
    watchful_memory::reset();
    watchful_memory::look_for("rosebud");
    parse("dbadmin rosebud primary\n");
    EXPECT_EQ(watchful_memory::live_blocks(), 2u);
    EXPECT_EQ(watchful_memory::found(), "");
}

} // namespace
