// Catalogue sources: what is accepted, and what is refused where and with which words.

#include "compilers/mkqem/catalogue_source.h"

#include <gtest/gtest.h>

using namespace kestrion;

namespace {

struct parsed {
    catalogue_source source;
    size_t errors;
    std::string said;
};

parsed parse(std::string text, code_set target = code_set::as_it_is) {
    char *said_text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&said_text, &size);
    diagnostics said(stream);
    catalogue_source source = parse_catalogue({"f", std::move(text)}, target, said);
    check_arguments(source, said);
    fclose(stream);
    parsed result = {std::move(source), said.errors(), said_text};
    free(said_text);
    return result;
}

} // namespace

TEST(CatalogueSource, TextsAreReadAsWritten) {
    const struct {
        const char *text;
        int32_t number;
        const char *wanted;
    } rows[] = {
        {"1 text", 1, "text"},
        {"1\ttext\n", 1, "text"},
        {"1  two blanks before, one after ", 1, " two blanks before, one after "},
        {"-84400 text", -84400, "text"},
        {"-2147483648 least\n2147483647 most\n", INT32_MIN, "least"},
        {"1 a\\tb\\n\\v\\b\\r\\f\\\\", 1, "a\tb\n\v\b\r\f\\"},
        {"1 \\101\\0602\\7x", 1, "A02\ax"}, // at most three octal digits
        {"1 one \\\n  line\\\n\n", 1, "one   line"},
        {"$quote \"\n1 \"a \\\"b\\\" \" \n", 1, "a \"b\" "},
        {"$quote x\n1 xaxx\n$quote\n", 0, nullptr}, // something after the closing quote
        {"$quote '\n1 don't\n", 1, "don't"},        // a quote inside is an ordinary character
        {"$quote '\n$quote\n1 'a'\n", 1, "'a'"},
        {"$ comment\n$\n\n  \n$set 1\n1 text\n", 1, "text"},
        {"$quote \"\n1 \"a\\\nb\"", 1, "ab"},
        {"1 caf\xE9", 1, "caf\xE9"},
    };
    for (const auto &row : rows) {
        const parsed result = parse(row.text);
        if (row.wanted == nullptr) {
            EXPECT_EQ(result.errors, 1U) << row.text;
            continue;
        }
        EXPECT_EQ(result.said, "") << row.text;
        ASSERT_TRUE(result.source.messages.contains(row.number)) << row.text;
        EXPECT_EQ(result.source.messages.at(row.number).text, row.wanted) << row.text;
    }
}

TEST(CatalogueSource, EachCauseIsReportedOnceAndWhereItIs) {
    const std::string long_text(32767, 'x');
    const struct {
        std::string text;
        const char *wanted; // start of what is said
    } rows[] = {
        {"", "f: error: the source holds no message"},
        {"$ only a comment\n", "f: error: the source holds no message"},
        {"text\n", "f:1:1: error: expected a message number"},
        {"1x text\n", "f:1:1: error: expected a message number"},
        {"+1 text\n", "f:1:1: error: expected a message number"},
        {" 1 text\n", "f:1:1: error: expected a message number"},
        {"- text\n", "f:1:1: error: expected a message number"},
        {"2147483648 text\n", "f:1:1: error: the number does not fit 32 bits"},
        {"99999999999999999999 text\n", "f:1:1: error: expected a message number"},
        {"1\n2 x\n", "f:1:2: error: message 1 has no text"},
        {"1 \n2 x\n", "f:1:3: error: message 1 has no text"},
        {"$quote \"\n1 \"\"\n2 x\n", "f:2:5: error: message 1 has no text"},
        {"1 a\n2 b\n1 c\n", "f:3:1: error: message 1 is in line 1 already"},
        {"1 " + long_text, "f:1:1: error: the text is longer than 32766 bytes"},
        {"1 a\\0 b\\\n not a message \\\n nor this\n2 x\n",
         "f:1:4: error: expected an octal number"},
        {"1 \\400\n2 x\n", "f:1:3: error: expected an octal number"},
        {"1 a\\\n", "f:1:4: error: the last line is continued"},
        {"$quote \"\n1 \"open\n2 x\n", "f:2:3: error: the quoted text does not end"},
        {"$quote ab\n1 x\n", "f:1:8: error: expected one character after $quote"},
        {"$set 1\n$set 2\n1 x\n", "f:2:1: error: a catalogue holds one set"},
        {"$delset 1\n1 x\n", "f:1:1: error: unknown directive $delset"},
        {"$comment\n1 x\n", "f:1:1: error: unknown directive $comment"},
        {"1 a\r\n2 b\r\n", "f:1:4: error: the line ends in carriage return"},
        {std::string("1 a\0b\n", 6), "f:1:4: error: the file holds a null byte"},
        {"$args\n1 x\n", "f:1:6: error: expected a message number after $args"},
        {"$args x text\n1 x\n", "f:1:7: error: expected a message number after $args"},
        {"$args 1\n1 x\n", "f:1:7: error: expected kinds"},
        {"$args 1 word\n1 x\n", "f:1:7: error: expected kinds"},
        {"$args 1 text unchecked\n1 x\n", "f:1:7: error: expected kinds"},
        {"$args 1 text\n$args 1 text\n1 %s\n", "f:2:7: error: the arguments are declared a second"},
        {"$args 2 text\n1 x\n", "f:1:7: error: no message has this number"},
        {"1 a\\\n%d\n", "f:2:1: error: '%d' has no argument"}, // the place after a continuation
        {"1 \\101%%%d\n", "f:1:9: error: '%d' has no argument"},
    };
    for (const auto &row : rows) {
        const parsed result = parse(row.text);
        EXPECT_TRUE(result.said.starts_with(row.wanted)) << row.text << "\n" << result.said;
        EXPECT_EQ(result.errors, 1U) << row.text << "\n" << result.said;
    }
}

TEST(CatalogueSource, BackslashBeforeNoEscapeIsDroppedWithAWarning) {
    const parsed result = parse("1 \\q\\'\n");
    EXPECT_EQ(result.errors, 0U);
    EXPECT_TRUE(result.said.starts_with("f:1:3: warning: ")) << result.said;
    EXPECT_EQ(result.source.messages.at(1).text, "q'");
}

TEST(CatalogueSource, CharactersAreStoredInTheWantedCodeSet) {
    const struct {
        const char *text;
        code_set target;
        const char *wanted;
    } rows[] = {
        {"1 \xC3\xBC\\374", code_set::latin_1, "\xFC\xFC"}, // escapes are bytes already
        {"1 \xC3\xBC\\374", code_set::utf_8, "\xC3\xBC\xFC"},
        {"1 \xC3\xBF\xC4\x80", code_set::latin_1, "\xFF?"},
        {"1 \xF0\x9F\x98\x80", code_set::utf_8, "\xF0\x9F\x98\x80"},
        {"1 \xFC", code_set::utf_8, nullptr},             // a lone byte of 8859-1
        {"1 \xC0\x80", code_set::utf_8, nullptr},         // longer than needed
        {"1 \xE0\x9F\xBF", code_set::latin_1, nullptr},   // longer than needed
        {"1 \xED\xA0\x80", code_set::utf_8, nullptr},     // surrogate
        {"1 \xF4\x90\x80\x80", code_set::utf_8, nullptr}, // above U+10FFFF
        {"1 \xE2\x82", code_set::utf_8, nullptr},         // cut off
    };
    for (const auto &row : rows) {
        const parsed result = parse(row.text, row.target);
        EXPECT_EQ(result.errors, row.wanted == nullptr ? 1U : 0U) << row.text << result.said;
        if (row.wanted != nullptr) {
            EXPECT_EQ(result.source.messages.at(1).text, row.wanted) << row.text;
        }
    }
}

TEST(CatalogueSource, TextsFitTheirSignatures) {
    const struct {
        const char *words, *text;
        const char *wanted; // what is said of it; null: it fits
    } rows[] = {
        {"text", "%s", nullptr},
        {"text", "100%% of %-10.3s", nullptr},
        {"number number", "%d %08x", nullptr},
        {"number number", "%ld%c", nullptr},
        {"any", "%s", nullptr},
        {"number", "%s", nullptr},
        {"unchecked", "100% %n %", nullptr},
        {"text", "%d", "'%d' does not fit argument 1, which is text"},
        {"any", "%d", "'%d' does not fit argument 1, which is any"},
        {"text number", "%d %s", "'%d' does not fit argument 1"},
        {"text", "%s %s", "'%s' has no argument; the message takes text"},
        {"text number", "%s", "the text does not show argument 2; the message takes text number"},
        {"text", "%n", "'%n' is not a directive"},
        {"text", "%*s", "'%*' is not a directive"},
        {"number", "%lu", "'%l' is not a directive"},
        {"text", "%1$s", "'%1$' is not a directive"},
        {"text", "%1000s", "'%1000s' is not a directive"},
        {"text", "%s%", "'%' is not a directive"},
        {"text", "%s 5 % ", "'% ' is not a directive"},
    };
    for (const auto &row : rows) {
        const parsed result = parse(std::string("$args 1 ") + row.words + "\n1 " + row.text + "\n");
        EXPECT_EQ(result.errors, row.wanted == nullptr ? 0U : 1U) << row.text << result.said;
        if (row.wanted != nullptr) {
            EXPECT_NE(result.said.find(row.wanted), std::string::npos) << row.text << result.said;
        }
    }
}
