#include "compilers/posix/locale_source.h"
#include "compilers/posix/source_library.h"
#include "compilers/posix/statement_reader.h"
#include "compilers/posix/transliteration.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace kestrion {
namespace {

constexpr const char *locale_directory = "/usr/share/i18n/locales";

source_file file_of(const std::string &body) {
    return {"test", "comment_char %\nescape_char /\nLC_X\n" + body + "END LC_X\n"};
}

// The tokens of all statements, one letter for the kind and the text; " | " after each statement.
std::string tokens_of(const source_file &file) {
    locale_source source(file);
    const char letters[] = "wybsne;,()";
    std::string found;
    statement_reader reader(source, *source.find("LC_X"));
    source_statement statement;
    while (reader.next(statement)) {
        for (const source_token &token : statement.tokens) {
            found += letters[static_cast<int>(token.kind)];
            if (token.kind == token_kind::symbol && token.code_point != no_code_point) {
                char text[16];
                snprintf(text, sizeof text, "U%X", token.code_point);
                found += text;
            } else if (token.kind == token_kind::number) {
                found += std::to_string(token.number);
            } else if (token.kind < token_kind::semicolon) {
                found += token.text;
            }
            found += ' ';
        }
        found += "| ";
    }
    return found;
}

TEST(LocaleSource, StatementsFallIntoTokens) {
    struct {
        const char *text, *tokens;
    } const rows[] = {
        {"upper <U0041>..<U00010400>;<a-grave>\n", "wupper yU41 e.. yU10400 ; ya-grave | "},
        {"toupper /\n  (<U0061>,<U0041>); /\n(b,B)\n", "wtoupper ( yU61 , yU41 ) ; ( wb , wB ) | "},
        {"day \"a<U0041>;//\";/\n   \"b/\"c\" % rest\nweek 7;-1\n",
         "wday sa<U0041>;// ; sb/\"c | wweek n7 ; n-1 | "},
        {"% whole line /\nx 1\n%\n\n  y\t2\n", "wx n1 | wy n2 | "},
        {"class \"z\"; /\n% one line of the list /\n  <U0001>\n", "wclass sz ; yU1 | "},
        {"a ä \xE2\x80\xA6 /x41/x42 /; ..(2).. ... ....\n",
         "wa yUE4 yU2026 b/x41/x42 yU3B e..(2).. e... e.... | "},
        {"<S0061> <S0061>;<BASE>;IGNORE % A\n", "yS0061 yS0061 ; yBASE ; wIGNORE | "},
        {"d \"one/\ntwo\"\n", "wd sone/\ntwo | "},
        {"e <a/>b>\n", "we ya/>b | "},
        {"x 1\n% the end follows /\n", "wx n1 | "},
        {"a /d255/d256 /377/400\n", "wa b/d255 yU64 n256 b/377 yU34 n0 | "},
    };
    for (const auto &row : rows)
        EXPECT_EQ(tokens_of(file_of(row.text)), row.tokens) << row.text;
}

TEST(LocaleSource, TextsComeCharacterByCharacter) {
    source_file file = file_of("t \"A<U00E9>/\"//é<eacute>/xff/d255/\n/e\"\n");
    locale_source source(file);
    statement_reader reader(source, *source.find("LC_X"));
    source_statement statement;
    ASSERT_TRUE(reader.next(statement));
    std::string found;
    for (const text_element &element : source.elements(statement.tokens[1])) {
        if (element.is == text_element::kind::name)
            found.append("[").append(element.name).append("]");
        else
            found.append(element.is == text_element::kind::byte ? "b" : "u")
                .append(std::to_string(element.value));
    }
    EXPECT_EQ(found, "u65u233u34u47u233[eacute]b255b255u101");
}

TEST(LocaleSource, FaultsAreReportedWithTheirPlace) {
    struct {
        const char *text;
        size_t line, column;
    } const rows[] = {
        {"upper <U0041\n", 4, 7},    {"day \"Mon\n", 4, 5},  {"upper <U0041>.....<U0042>\n", 4, 14},
        {"a \"x\";/\n  .b\n", 5, 3}, {"upper \xE4\n", 4, 7}, {"a;\n\n  \"\n", 6, 3},
    };
    for (const auto &row : rows) {
        source_file file = file_of(row.text);
        try {
            tokens_of(file);
            ADD_FAILURE() << "accepted: " << row.text;
        } catch (const source_error &error) {
            source_position at = error.where.position();
            EXPECT_EQ(at.line, row.line) << row.text << error.what();
            EXPECT_EQ(at.column, row.column) << row.text << error.what();
        }
    }
    for (const char *text : {"LC_TIME\nday \"a\"\n", "LC_TIME\nEND LC_CTYPE\n", "END LC_TIME\n",
                             "LC_TIME\nEND LC_TIME\nLC_TIME\nEND LC_TIME\n",
                             "escape_char //\nLC_TIME\nEND LC_TIME\n"}) {
        source_file file("test", text);
        EXPECT_THROW(locale_source{file}, source_error) << text;
    }
}

TEST(LocaleSource, CopiesAreFollowedAndCannotGoInCircles) {
    std::filesystem::path directory = testing::TempDir() + "locale_source_test";
    std::filesystem::create_directories(directory);
    auto write = [&](const char *name, const std::string &body) {
        std::ofstream(directory / name) << "LC_T\n" << body << "END LC_T\n";
    };
    write("base", "one 1\n");
    write("middle", "before 0\ncopy \"base\"\nafter 2\n");
    write("top", "copy \"middle\"\nlast 3\n");
    write("self", "copy \"other\"\n");
    write("other", "copy \"self\"\n");
    write("lost", "copy \"nowhere\"\n");
    source_library library({directory.string()});
    std::string seen;
    library.for_each_statement(library.open("top"), "LC_T", [&](const source_statement &statement) {
        seen += std::string(statement.keyword()) + " " +
                statement.source->file().name().substr(directory.string().size()) + ";";
    });
    EXPECT_EQ(seen, "before /middle;one /base;after /middle;last /top;");
    for (const char *name : {"self", "lost"})
        EXPECT_THROW(
            library.for_each_statement(library.open(name), "LC_T", [](const source_statement &) {}),
            source_error)
            << name;
    // Copied ten times at each of twelve levels, yet read once.
    std::string ten;
    for (int i = 0; i < 10; ++i)
        ten += "copy \"level1\"\n";
    write("level0", ten);
    for (char level = 'a'; level < 'm'; ++level) {
        const std::string name = std::string("level") + (level == 'a' ? '1' : level);
        std::string next;
        for (int i = 0; i < 10; ++i)
            next += std::string("copy \"level") + static_cast<char>(level + 1) + "\"\n";
        write(name.c_str(), next);
    }
    write("levelm", "one 1\n");
    size_t statements = 0;
    library.for_each_statement(library.open("level0"), "LC_T",
                               [&](const source_statement &) { ++statements; });
    EXPECT_EQ(statements, 1U);
    EXPECT_THROW(
        library.for_each_statement(library.open("base"), "LC_U", [](const source_statement &) {}),
        source_error);
}

TEST(Transliteration, ALocalesOwnLinesGoBeforeThoseItIncludesOrCopies) {
    std::filesystem::path directory = testing::TempDir() + "transliteration_test";
    std::filesystem::create_directories(directory);
    const auto write = [&](const char *name, const std::string &start, const std::string &lines) {
        std::ofstream(directory / name) << "comment_char %\nescape_char /\nLC_CTYPE\n"
                                        << start << "translit_start\n"
                                        << lines << "translit_end\nEND LC_CTYPE\n";
    };
    write("base", "", "<U00E4> \"1\"\n<U00E5> \"1\"\n<U00E6> \"1\"\n<U00E7> \"1\"\n");
    write("copied", "", "<U00E4> \"2\"\n<U00E5> \"2\"\n<U00E6> \"2\"\n");
    write("own", "copy \"copied\"\n", "include \"base\";\"\"\n<U00E4> \"3\"\n<U00E8> \"\"\n");
    write("first", "", "<U00E5> \"3\"\ninclude \"base\";\"\"\n");
    source_library library({directory.string()});
    const transliteration found(library, library.open("own"));
    EXPECT_EQ(*found.find(0xE4), std::vector<std::u32string>{U"3"});
    EXPECT_EQ(*found.find(0xE5), std::vector<std::u32string>{U"2"});
    EXPECT_EQ(*found.find(0xE7), std::vector<std::u32string>{U"1"});
    EXPECT_EQ(*found.find(0xE8), std::vector<std::u32string>{U""});
    EXPECT_EQ(found.find(0xE9), nullptr);
    const transliteration first(library, library.open("first"));
    EXPECT_EQ(*first.find(0xE5), std::vector<std::u32string>{U"3"});
}

TEST(LocaleSource, EveryInstalledSourceReadsToItsEnd) {
    size_t sources = 0, statements = 0;
    for (const auto &entry : std::filesystem::directory_iterator(locale_directory)) {
        auto file = find_source_file(entry.path().string(), {});
        locale_source source(*file);
        for (const char *name :
             {"LC_CTYPE", "LC_COLLATE", "LC_TIME", "LC_NUMERIC", "LC_MONETARY", "LC_MESSAGES"}) {
            const locale_source::category *category = source.find(name);
            if (category == nullptr)
                continue;
            statement_reader reader(source, *category);
            source_statement statement;
            while (reader.next(statement)) {
                ++statements;
                for (const source_token &token : statement.tokens)
                    if (token.kind == token_kind::string)
                        source.elements(token);
            }
        }
        ++sources;
    }
    EXPECT_GT(sources, 300u);
    EXPECT_GT(statements, 50000u);
}

} // namespace
} // namespace kestrion
