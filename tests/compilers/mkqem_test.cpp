// The catalogue compiler as a command: command lines, exit statuses, what it says and writes.

#include "compilers/mkqem/mkqem.h"
#include "tests/compilers/command.h"

namespace fs = std::filesystem;
using namespace kestrion;

namespace {

outcome mkqem(std::vector<std::string> words) { return run_command(mkqem_main, std::move(words)); }

struct Mkqem : command_test {
    Mkqem() {
        std::ofstream("en.msg") << "$args 2 text\n1 one\n2 two %s\n";
        std::ofstream("part.msg") << "1 eins\n";
        std::ofstream("wide.msg") << "1 \xE2\x82\xAC\n2 %s\n"; // EURO SIGN
        std::ofstream("bad.msg") << "1 one %d\n";
        std::ofstream("extra.msg") << "1 eins\n2 zwei\n";
        std::ofstream("old.qem") << "old";
    }
};

} // namespace

TEST_F(Mkqem, OutputsReplaceNothingThatWasRead) {
    fs::create_symlink("en.msg", "link");
    fs::create_hard_link("en.msg", "twin");
    for (const std::string output : {"en.msg", "./en.msg", "link", "twin"})
        for (const char *option : {"--output=", "--losses="}) {
            const outcome result = mkqem({"-oold.qem", option + output, "-ren.msg", "part.msg"});
            EXPECT_EQ(result.status, 2) << option << output << result.said;
            EXPECT_NE(result.said.find(output + " was read"), std::string::npos) << result.said;
            EXPECT_EQ(content("en.msg"), "$args 2 text\n1 one\n2 two %s\n");
            EXPECT_EQ(content("old.qem"), "old");
        }
    EXPECT_EQ(mkqem({"-oold.qem", "en.msg"}).status, 0);
    EXPECT_EQ(mkqem({"-oen.msg", "part.msg"}).status, 0) << "this run has not read it";
}

TEST_F(Mkqem, ExitStatusTellsWhetherAFileWasWritten) {
    const struct {
        std::vector<std::string> words;
        int status;
    } rows[] = {
        {{"-o", "old.qem", "en.msg"}, 0},
        {{"en.msg", "--output=old.qem"}, 0}, // options may follow the source
        {{"-o", "old.qem", "-r", "en.msg", "en.msg", "-c", "utf-8"}, 4}, // $args in a translation
        {{"-o", "old.qem", "-r", "en.msg", "part.msg"}, 1},
        {{"-o", "old.qem", "-r", "en.msg", "part.msg", "--werror=loss"}, 4},
        {{"-o", "old.qem", "-r", "en.msg", "-c", "8859-1", "wide.msg"}, 1},
        {{"-o", "old.qem", "-r", "en.msg", "-c", "utf-8", "wide.msg"}, 0},
        {{"-o", "old.qem", "wide.msg"}, 4}, // %s without a declaration
        {{"-o", "old.qem", "bad.msg"}, 4},
        {{"-o", "old.qem", "-r", "bad.msg", "part.msg"}, 4},
        {{"-o", "old.qem", "-r", "part.msg", "extra.msg"}, 4}, // a number that English lacks
        {{"-o", "old.qem", "missing.msg"}, 4},
        {{"-o", "no/such/directory", "en.msg"}, 4},
        {{"-o", "old.qem", "en.msg", "--losses", "no/such/directory"}, 4},
        {{"--list", "en.msg"}, 4}, // no catalogue
        {{"-o", "old.qem"}, 2},
        {{"en.msg"}, 2},
        {{"-o", "old.qem", "en.msg", "part.msg"}, 2},
        {{"-o", "old.qem", "en.msg", "--werror=all"}, 2},
        {{"-o", "old.qem", "en.msg", "-c", "koi8"}, 2},
        {{"-o", "old.qem", "en.msg", "--unknown"}, 2},
        {{"en.msg", "-o"}, 2},
        {{"--list", "old.qem", "-r", "en.msg"}, 2},
        {{"-o", "old.qem", "--losses", "./old.qem", "en.msg"}, 2},
        {{"-o", "new.qem", "--losses", "./new.qem", "en.msg"}, 2},
    };
    for (const auto &row : rows) {
        std::ofstream("old.qem") << "old";
        const outcome result = mkqem(row.words);
        EXPECT_EQ(result.status, row.status) << testing::PrintToString(row.words) << result.said;
        EXPECT_EQ(content("old.qem") == "old", row.status > 1) << testing::PrintToString(row.words);
        EXPECT_EQ(result.said.empty(), row.status == 0) << result.said;
    }
}

TEST_F(Mkqem, DiagnosticShowsPlaceLineCaretAndRemedy) {
    std::ofstream("x.msg") << "$ \xC3\xA4\n1 \xC3\xBC\tA %d\n";
    EXPECT_EQ(mkqem({"-o", "x.qem", "x.msg"}).said,
              "x.msg:2:8: error: '%d' has no argument; the message takes none\n"
              "    2 | 1 \xC3\xBC\tA %d\n"
              "      |    \t  ^\n"
              "      = take it out, or write %% for a percent sign\n");
}

TEST_F(Mkqem, LossesAreListed) {
    const outcome result =
        mkqem({"-o", "de.qem", "-r", "en.msg", "--losses", "list", "-c", "8859-1", "part.msg"});
    EXPECT_EQ(content("list"), "part.msg: message 2 has no translation\n");
    EXPECT_NE(result.said.find("part.msg: loss: message 2 has no translation\n"),
              std::string::npos);
    mkqem({"-o", "en.qem", "--losses", "list", "en.msg"});
    EXPECT_EQ(content("list"), "") << "a list without losses is empty, not old";
    mkqem({"-o", "de.qem", "-r", "en.msg", "--werror=loss", "--losses", "no", "part.msg"});
    EXPECT_FALSE(fs::exists("no")) << "nothing is written, the list neither";
}

TEST_F(Mkqem, ListingCompilesToTheSameBytes) {
    for (const char *leaf :
         {"en_us/0333/os", "en_us/0333/pwseal", "de_de/0333/pwseal", "de_de/e01c/pwseal"}) {
        const std::string catalogue = std::string(KESTRION_BUILD_DIR "/msg/") + leaf + ".qem";
        EXPECT_EQ(mkqem({"--list", "-o", "list.msg", catalogue}).status, 0) << catalogue;
        EXPECT_EQ(mkqem({"-o", "again.qem", "list.msg"}).status, 0) << content("list.msg");
        EXPECT_EQ(content("again.qem"), content(catalogue)) << leaf;
    }
    // Twelve bytes of padding that mkqem would not have put there: the messages are the same.
    mkqem({"-o", "x.qem", "en.msg"});
    std::ofstream("x.qem", std::ios::app) << "twelve bytes";
    EXPECT_EQ(mkqem({"--list", "-o", "list.msg", "x.qem"}).status, 1);
    EXPECT_EQ(content("list.msg"), "$quote \"\n1 \"one\"\n$args 2 text\n2 \"two %s\"\n");
    // The first text without its line feed: the listing must not pass for the same message.
    std::string bytes = content("x.qem");
    bytes[bytes.find("one\n") + 3] = '!';
    std::ofstream("x.qem") << bytes;
    mkqem({"--list", "-o", "list.msg", "--losses", "lost", "x.qem"});
    EXPECT_EQ(content("lost"), "x.qem: a source cannot hold message 1\n");
}
