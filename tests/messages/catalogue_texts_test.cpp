// The installed catalogues, looked up by programs that start as users' programs do: every error
// number has its text, in the file where it is looked up, and users get their language.

#include <kestrion/messages.h>

#include <kestrion/message_slots.h>

#include <charconv>
#include <fstream>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>
#include <vector>

namespace {

struct CatalogueTexts : testing::Test {
    void SetUp() override {
        for (const char *variable :
             {"DBLANG", "DBNLS", "LANG", "CLIENT_LOCALE", "DB_LOCALE", "DBDATE"})
            unsetenv(variable);
        setenv("KESTRIONDIR", INSTALLATION, 1);
    }

    static std::string text_of(int32_t number) {
        const char *text = rld_lmsg(number);
        return text == nullptr ? "" : text;
    }
};

// The numbers that a header gives names to.
std::vector<int32_t> named_numbers(const std::string &header) {
    std::ifstream in(KESTRION_SOURCE_DIR "/" + header);
    std::vector<int32_t> numbers;
    for (std::string line; std::getline(in, line);) {
        const size_t at = line.find("= -");
        int32_t number = 0;
        if (line.starts_with("    err_") && at != std::string::npos &&
            std::from_chars(line.data() + at + 2, line.data() + line.size(), number).ec ==
                std::errc{})
            numbers.push_back(number);
    }
    return numbers;
}

} // namespace

TEST_F(CatalogueTexts, EveryErrorNumberHasAText) {
    const std::vector<int32_t> numbers = named_numbers("include/kestrion/error_numbers.h");
    EXPECT_GT(numbers.size(), 60U);
    for (const int32_t number : numbers)
        EXPECT_GT(text_of(number).size(), 10U) << number;
    for (int32_t number = -84400; number >= -84415; --number)
        EXPECT_TRUE(text_of(number).ends_with('\n')) << number << " is printed as it is";
}

TEST_F(CatalogueTexts, SlotsOfTheRuntimeKeepTheirFixedTexts) {
    const std::string fixed[] = {s_unknown, s_presscr, s_msgfile, s_termtyp};
    ASSERT_EQ(rldinit(), 0);
    EXPECT_EQ(s_unknown + std::string("\n"), fixed[0]);
    EXPECT_EQ(s_presscr, fixed[1]);
    EXPECT_EQ(s_msgfile, fixed[2]);
    EXPECT_EQ(s_termtyp, fixed[3]);
}

TEST_F(CatalogueTexts, LanguageAndLocaleChooseGerman) {
    const struct {
        const char *variable, *value;
        const char *wanted; // of -84410, with u umlaut in the code set that the value names
    } rows[] = {
        {"DBLANG", "de_de/0333", "%s l\xE4sst sich nicht \xF6"},
        {"DBLANG", "de_DE.8859-1", "%s l\xE4sst sich nicht \xF6"},
        {"DBLANG", "de_de/e01c", "%s l\xC3\xA4sst sich nicht \xC3\xB6"},
        {"CLIENT_LOCALE", "de_DE.8859-1", "%s l\xE4sst sich nicht \xF6"},
        {"CLIENT_LOCALE", "de_DE.utf8", "%s l\xC3\xA4sst sich nicht \xC3\xB6"},
        {"CLIENT_LOCALE", "fr_FR.8859-1", "Cannot open %s."},
        {"DBLANG", "nowhere", "Cannot open %s."},
    };
    for (const auto &row : rows) {
        unsetenv("DBLANG");
        unsetenv("CLIENT_LOCALE");
        setenv(row.variable, row.value, 1);
        rmsg_init();
        EXPECT_TRUE(text_of(-84410).starts_with(row.wanted))
            << row.value << ": " << text_of(-84410);
        EXPECT_EQ(text_of(1202), "Press RETURN to continue.")
            << "English stands in for " << row.value;
    }
}

TEST_F(CatalogueTexts, ProgramUnderAGermanLocaleSpeaksGerman) {
    setenv("CLIENT_LOCALE", "de_DE.utf8", 1);
    EXPECT_EQ(rldinit(), 0);
    EXPECT_EQ(text_of(-84411).substr(0, 24), "Die Rechte einer Datei l");
}

TEST_F(CatalogueTexts, LocaleThatIsNotInstalledLeavesNoMessages) {
    setenv("CLIENT_LOCALE", "xx_XX.8859-1", 1);
    EXPECT_EQ(rldinit(), 32766) << "the first slot fails already";
    char buffer[100];
    EXPECT_EQ(rgetlmsg(1202, buffer, sizeof buffer, nullptr), -23101);
    EXPECT_STREQ(buffer, "Unable to load locale categories.");
}
