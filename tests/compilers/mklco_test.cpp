// The locale object compiler as a command: what it makes of sources, what it refuses and what it
// says.

#include "compilers/mklco/mklco.h"
#include "tests/compilers/command.h"

namespace fs = std::filesystem;
using namespace kestrion;

namespace {

outcome mklco(std::vector<std::string> words) { return run_command(mklco_main, std::move(words)); }

// What is in a text between `marker` and `end`.
std::string between(const std::string &text, const std::string &marker, const std::string &end) {
    size_t from = text.find(marker);
    if (from == std::string::npos)
        return "no " + marker;
    from += marker.size();
    return text.substr(from, text.find(end, from) - from);
}

constexpr const char *ctype =
    "LC_CTYPE\n"
    "upper A;B;<U00C4>\nlower a;b;<U00E4>;<U00DF>\ndigit <U0030>..<U0039>\n"
    "space <U0009>;<U0020>\ncntrl <U0000>;<U0009>\npunct <U0021>\nblank <U0009>\n"
    "toupper (a,A);(b,B);(<U00E4>,<U00C4>);(<U00FF>,<U0178>)\n"
    "tolower (A,a);(B,b);(<U00C4>,<U00E4>)\n"
    "class \"vowel\"; A;a;<U00C4>\nclass \"none\"; <U4E00>\n"
    "translit_start\n<U20AC> <U4E00>;\"EUR\"\n<U0300> \"\"\ntranslit_end\n";

struct Mklco : command_test {
    Mklco() {
        fs::create_directory("locales");
        fs::create_directory("charmaps");
        std::string rows;
        for (int i = 0; i < 128; ++i) {
            char row[32];
            snprintf(row, sizeof row, "<U%04X> /x%02x\n", static_cast<unsigned>(i),
                     static_cast<unsigned>(i));
            rows += row;
        }
        rows += "<U00C4> /xc4\n<U00E4> /xe4\n<U00DF> /xdf\n<U3000> /x81/x40\n"
                "%IRREVERSIBLE%<U0041> /x82/x41\n";
        std::ofstream("charmaps/T")
            << "<code_set_name> T\n<comment_char> %\n<escape_char> /\nCHARMAP\n"
            << rows << "END CHARMAP\nWIDTH\n<U3000> 2\n<U00DF> 0\nEND WIDTH\n";
        std::ofstream("old.lco") << "old";
    }

    // Compiles a source whose sections hold no more than these lines.
    outcome compile(const std::string &numeric, const std::string &monetary = "",
                    const std::string &time = "", const std::string &messages = "",
                    std::vector<std::string> more = {}) {
        std::ofstream("locales/tt") << "comment_char %\nescape_char /\n"
                                    << ctype << more_classes << "END LC_CTYPE\nLC_NUMERIC\n"
                                    << numeric << "END LC_NUMERIC\nLC_MONETARY\n"
                                    << monetary << "END LC_MONETARY\nLC_TIME\n"
                                    << time << "END LC_TIME\nLC_MESSAGES\n"
                                    << messages << "END LC_MESSAGES\n";
        std::vector<std::string> words = {"-I.", "-fT", "-c8859-1", "-onew.lco", "tt"};
        words.insert(words.end(), more.begin(), more.end());
        return mklco(words);
    }
    std::string more_classes; // lines at the end of LC_CTYPE
    std::string section(const char *marker) { return between(content("new.lco"), marker, "### "); }
};

} // namespace

// The whole of an object, by hand.
TEST(MklcoObject, LatinEnglishIsWhatAHandWouldWrite) {
    const std::string object = content(KESTRION_BUILD_DIR "/gls/lc11/en_us/0333.lco");
    EXPECT_TRUE(
        object.starts_with("FILE_TYPE=locale_object\nCOMPILER_VERSION=11\nHEADER_LINES=6\n"));
    EXPECT_NE(object.find("\nSOURCE=en_US ISO-8859-1\n"), std::string::npos);
    EXPECT_NE(object.find("\n8859-1\n### LC_CTYPE\n1 1 1 0000\n1 1\n0000110004\n0000000\n"
                          "000010090020\n090010010430\n0a0010040030\n0e0010120020\n200010010510\n"
                          "2100100f01c0\n3000100a0388\n3a00100701c0\n410010060385\n470010140185\n"
                          "5b00100601c0\n610010060386\n670010140186\n7b00100401c0\n7f0010210020\n"
                          "a000100a01c0\n"),
              std::string::npos);
    EXPECT_NE(object.find("\nf80010080186\n0000000\n0\n1 1 1 0000\n1 1\n0000110004\n0000000\n"
                          "4101a00100010002"),
              std::string::npos);
    EXPECT_NE(object.find("\n0000000\n56\n0000004100000061\n"), std::string::npos);
    EXPECT_NE(object.find("\n000000de000000fe\n1.0\n### LC_COLLATE\n"), std::string::npos);
    EXPECT_NE(
        object.find(
            "### LC_NUMERIC\n1 2e\n1 2c\n2 3 0\n1 2b\n1 2d\n"
            "### LC_MONETARY\n4 55534420\n1 24\n1 2e\n1 2c\n2 3 0\n0\n1 2d\n2\n2\n1\n0\n1\n0\n1\n1\n"
            "### LC_TIME\ngregorian\n3 53756e\n3 4d6f6e\n3 547565\n3 576564\n3 54"),
        std::string::npos);
    EXPECT_TRUE(object.ends_with(
        "\n14 2561202564202562202559202572\n8 256d2f25642f2559\n2 2572\n2 414d\n2 504d\n"
        "11 25493a254d3a2553202570\n0\n0\n0\n0\n0\n### LC_MESSAGES\n"
        "7 5e5b2b3179595d\n7 5e5b2d306e4e5d\n3 796573\n2 6e6f\n"));
}

TEST_F(Mklco, ClassesAndCaseFollowTheCodeSet) {
    ASSERT_EQ(compile("").status, 1) << "the width 0 is lost";
    ASSERT_EQ(mklco({"--list", "-olist", "new.lco"}).status, 0);
    const std::string list = content("list");
    for (const char *line :
         {"class 09 space cntrl blank\n", "class 20 space print blank\n",
          "class 21 punct graph print\n", "class 30..39 digit graph print\n",
          "class 41 upper alpha graph print vowel\n", "class 42 upper alpha graph print\n",
          "class 63..7f -\n", "class 8140 full_width\n", "class c4 upper alpha graph print vowel\n",
          "class df lower alpha graph print\n",
          "class_name 0 full_width\nclass_name 1 vowel\nclass 00"})
        EXPECT_NE(list.find(line), std::string::npos) << line << "in\n" << list.substr(0, 1500);
    EXPECT_EQ(list.find("none"), std::string::npos) << "a class without members takes no bit";
    EXPECT_NE(list.find("pair 41 61\npair 42 62\npair - 61\npair c4 e4\n"
                        "case 41..42 1+\ncase 61..62 1+\ncase 8241 3\ncase c4 4\ncase e4 4\n"),
              std::string::npos)
        << list;
}

TEST_F(Mklco, CharactersThatTextsCannotHoldAreLostOrRefused) {
    const auto compile_with = [&](const char *row) {
        std::ofstream("charmaps/P") << "<code_set_name> P\n<escape_char> /\nCHARMAP\n<U0041> /x41\n"
                                    << row << "END CHARMAP\n";
        return compile("", "", "", "", {"-fP", "--losses=lost"});
    };
    EXPECT_EQ(compile_with("<U0042> /x41/x42\n<U0043> /x43/x44\n").status, 1);
    EXPECT_NE(content("lost").find("charmaps/P:5:1: these bytes begin with those"),
              std::string::npos)
        << content("lost");
    mklco({"--list", "-olist", "new.lco"});
    EXPECT_NE(content("list").find("class 41 upper alpha graph print vowel\nclass 4344 -\n"),
              std::string::npos)
        << content("list");
    const outcome zero = compile_with("<U0042> /x81/x00\n");
    EXPECT_EQ(zero.status, 4);
    EXPECT_NE(zero.said.find("charmaps/P:5:1: error"), std::string::npos) << zero.said;
}

TEST_F(Mklco, AnObjectHoldsFourNamedClassesBesideFullWidth) {
    for (const char *name : {"c2", "c3", "c4", "c5"})
        more_classes += "class \"" + std::string(name) + "\"; <U0042>\n";
    ASSERT_EQ(compile("", "", "", "", {"--losses=lost"}).status, 1);
    EXPECT_NE(content("lost").find("tt:22:7: class c5 with 1 characters is left out"),
              std::string::npos)
        << content("lost");
    mklco({"--list", "-olist", "new.lco"});
    EXPECT_NE(content("list").find("class 42 upper alpha graph print c2 c3 c4\n"),
              std::string::npos);
    EXPECT_EQ(content("list").find("c5"), std::string::npos);
}

TEST_F(Mklco, RangesCountAsTheirEllipsisSays) {
    std::ofstream("charmaps/R") << "<code_set_name> R\n<escape_char> /\nCHARMAP\n"
                                   "<U0058>..<U005A> /x58\n<U0104> /xa1\n<U02D8> /xa2\n"
                                   "<U0141> /xa3\n<a9> /xb9\n<a10> /xb1\nEND CHARMAP\n";
    const struct {
        const char *range, *members; // null: refused
    } rows[] = {
        {"<U0058>..<U005A>", "class 58..5a z\n"},
        {"<U0058>..(2)..<U005A>", "class 58 z\nclass 59 -\nclass 5a z\n"},
        {"/xa1.../xa3", "class a1..a3 z\n"},
        {"<a9>....<a10>", "class b1 z\nclass b2..b8 -\nclass b9 z\n"},
        {"<U0058>...<U005A>", nullptr},
        {"<U0058>....<U005A>", nullptr},
        {"<U005A>..<U0058>", nullptr},
        {"<U0058>..<U00110000>", nullptr},
        {"<U0058>../xa3", nullptr},
        {"/xa1../xa3", nullptr},
        {"<a10>....<a9>", nullptr},
    };
    for (const auto &row : rows) {
        std::ofstream("locales/rr") << "comment_char %\nescape_char /\nLC_CTYPE\nclass \"z\"; "
                                    << row.range << "\nEND LC_CTYPE\n";
        more_classes = "copy \"rr\"\n";
        const outcome result = compile("", "", "", "", {"-fR"});
        if (row.members == nullptr) {
            EXPECT_EQ(result.status, 4) << row.range;
            EXPECT_NE(result.said.find("locales/rr:4:"), std::string::npos) << result.said;
            continue;
        }
        mklco({"--list", "-olist", "new.lco"});
        EXPECT_NE(content("list").find(row.members), std::string::npos) << row.range << result.said;
    }
}

TEST_F(Mklco, SectionsTakeTheirFieldsFromTheSource) {
    ASSERT_EQ(
        compile(
            "decimal_point \",\"\nthousands_sep \".\"\ngrouping 3;2\n",
            "int_curr_symbol \"EUR \"\ncurrency_symbol \"<U20AC><U0300>\"\nmon_decimal_point \",\"\n"
            "mon_thousands_sep \".\"\nmon_grouping -1\nint_frac_digits -1\np_cs_precedes 0\nn_sign_posn -1\n",
            "am_pm \"<U4E00>\";\"/x7e\"\nalt_digits \"0\";\"1\"\nweek 7;1;2\n",
            "yesexpr \"^[y<U00E4>]\"\n")
            .status,
        1);
    EXPECT_EQ(section("### LC_NUMERIC\n"), "1 2c\n1 2e\n3 3 2 0\n1 2b\n1 2d\n");
    EXPECT_EQ(section("### LC_MONETARY\n"),
              "4 45555220\n3 455552\n1 2c\n1 2e\n1 -1\n0\n0\n-1\n-1\n0\n0\n1\n0\n1\n1\n");
    EXPECT_NE(
        section("### LC_TIME\n")
            .find("\n0\n0\n0\n1 3f\n1 7e\n11 25493a254d3a2553202570\n0\n0\n0\n0\n2\n1 30\n1 31\n"),
        std::string::npos)
        << section("### LC_TIME\n");
    EXPECT_EQ(section("### LC_MESSAGES\n"), "5 5e5b79e45d\n0\n0\n0\n");
}

TEST_F(Mklco, GroupSizesEndAsTheObjectCountsThem) {
    const struct {
        const char *source, *object;
    } rows[] = {
        {"3;3", "2 3 0"}, {"3", "2 3 0"},     {"3;2", "3 3 2 0"}, {"2;2;2;3", "5 2 2 2 3 0"},
        {"-1", "1 -1"},   {"3;-1", "2 3 -1"}, {"0;0", "0"},       {"127", "1 -1"},
    };
    for (const auto &row : rows) {
        compile(std::string("grouping ") + row.source + "\n");
        EXPECT_EQ(section("### LC_NUMERIC\n"),
                  "0\n0\n" + std::string(row.object) + "\n1 2b\n1 2d\n")
            << row.source;
    }
}

TEST_F(Mklco, FormatsSpeakTheFormattersConversions) {
    const struct {
        const char *source, *object; // null: refused
    } rows[] = {
        {"%F", "%Y-%m-%d"},
        {"%l:%M %P", "%I:%M %p"},
        {"%k", "%H"},
        {"%-d.%-m.", "%d.%m."},
        {"%OB %Op %Od %Ey", "%B %p %Od %Ey"},
        {"%r %Z", "%r"},
        {"%Z %I", "%I"},
        {"(%z)", "()"},
        {"%T<U00A0>%Z", "%T"},
        {"100%%", "100%%"},
        {"%s", nullptr},
        {"%g", nullptr},
        {"%G", nullptr},
        {"%5d", nullptr},
        {"%_d", nullptr},
        {"%", nullptr},
        {"%E", nullptr},
        {"%EB", nullptr},
        {"<U4E00>", nullptr},
    };
    for (const auto &row : rows) {
        std::string source = row.source;
        outcome result = compile("", "", "d_fmt \"" + source + "\"\n");
        if (row.object == nullptr) {
            EXPECT_EQ(result.status, 4) << row.source;
            EXPECT_NE(result.said.find("locales/tt:"), std::string::npos) << result.said;
            continue;
        }
        ASSERT_EQ(result.status, 1) << row.source << result.said;
        mklco({"--list", "-olist", "new.lco"});
        EXPECT_EQ(between(content("list"), "LC_TIME d_fmt \"", "\"\n"), row.object) << row.source;
    }
}

TEST_F(Mklco, ErasGetTheSignOfTheirDirection) {
    const char *eras =
        "era \"+:2:2020//01//01:+*:R:%EC%Ey\";\"+:1:2019//05//01:2019//12//31:R:%EC\";/\n"
        "\"+:1:-0001//12//31:-*:B:%EC\";\"-:1:1911//12//31:1900//01//01:X:%EC\"\n";
    ASSERT_EQ(compile("", "", eras).status, 1);
    mklco({"--list", "-olist", "new.lco"});
    EXPECT_EQ(between(content("list"), "LC_TIME era ", "\n"),
              "\"+:2:2020/01/01:+*:R:R:%EC%Ey\" \"+:1:2019/05/01:2019/12/31:R:R:%EC\" "
              "\"-:1:0000/12/31:-*:B:B:%EC\" \"-:1:1911/12/31:1900/01/01:X:X:%EC\"");
    for (const char *bad :
         {"+:1:2019//05:+*:R:%EC", "+:1:2019//05//01:+*:R", "+:1:2019//13//01:+*:R:%EC",
          "+:1:2019-05-01:+*:R:%EC", "+:9999999999:2019//05//01:+*:R:%EC",
          "*:1:2019//05//01:+*:R:%EC", "+:x:2019//05//01:+*:R:%EC"})
        EXPECT_EQ(compile("", "", "era \"" + std::string(bad) + "\"\n").status, 4) << bad;
}

TEST_F(Mklco, YearsOfErasAreCountedThroughZero) {
    const struct {
        const char *source, *object;
    } rows[] = {
        {"-0001//12//31:-*", "0000/12/31:-*"},
        {"-543//01//01:+*", "-542/01/01:+*"},
        {"-1000//1//1:-999//1//1", "-0999/1/1:-998/1/1"},
        {"-0//1//1:-10//1//1", "0/1/1:-09/1/1"},
        {"0001//01//01:+*", "0001/01/01:+*"},
    };
    for (const auto &row : rows) {
        ASSERT_EQ(compile("", "", "era \"+:1:" + std::string(row.source) + ":N:%EC\"\n").status, 1);
        mklco({"--list", "-olist", "new.lco"});
        const std::string era = between(content("list"), "LC_TIME era ", "\n");
        EXPECT_EQ(era.substr(5, era.size() - 14), row.object) << row.source;
    }
}

TEST_F(Mklco, MissingEraFormatsAreThePlainOnes) {
    const std::string plain = "d_fmt \"%d\"\nt_fmt \"%H\"\nd_t_fmt \"%d %H\"\nera_t_fmt \"%EC\"\n";
    const auto era_formats = [&](const std::string &eras) {
        EXPECT_EQ(compile("", "", plain + eras).status, 1);
        mklco({"--list", "-olist", "new.lco"});
        return between(content("list"), "LC_TIME era_d_fmt ", "LC_TIME alt_digits");
    };
    EXPECT_EQ(era_formats(""), "\"\"\nLC_TIME era_t_fmt \"%EC\"\nLC_TIME era_d_t_fmt \"\"\n");
    EXPECT_EQ(era_formats("era \"+:1:1//1//1:+*:N:%EC\"\n"),
              "\"%d\"\nLC_TIME era_t_fmt \"%EC\"\nLC_TIME era_d_t_fmt \"%d %H\"\n");
}

TEST_F(Mklco, HebrewCalendarsHaveThirteenMonthNames) {
    std::string twelve = "mon \"1\"";
    for (int month = 2; month <= 12; ++month)
        twelve += ";\"" + std::to_string(month) + "\"";
    const std::string thirteen = twelve + ";\"13\"\n";
    twelve += "\n";
    EXPECT_EQ(compile("", "", twelve).status, 1);
    EXPECT_EQ(compile("", "", thirteen).status, 4);
    EXPECT_EQ(compile("", "", thirteen, "", {"--calendar=hebrew"}).status, 1);
    const outcome refused = compile("", "", twelve, "", {"--calendar=hebrew"});
    EXPECT_EQ(refused.status, 4);
    EXPECT_NE(refused.said.find("mon has 12 texts"), std::string::npos) << refused.said;
    EXPECT_NE(refused.said.find("give 13"), std::string::npos) << refused.said;
}

TEST_F(Mklco, CaseTablesHoldWhatIsNotOneToOne) {
    ASSERT_EQ(mklco({"-otr.lco", "-fUTF-8", "-cutf8", "tr_TR"}).status, 1);
    ASSERT_EQ(mklco({"--list", "-olist", "tr.lco"}).status, 0);
    const std::string list = content("list");
    // I and dotless i; dotted I and i; the final sigma; the title-case letter DZ.
    for (const char *pair : {"pair 49 c4b1\n", "pair c4b0 69\n", "pair cea3 cf83\n",
                             "pair cea3 cf82\n", "pair c7b1 c7b3\n"})
        EXPECT_NE(list.find(pair), std::string::npos) << pair;
    EXPECT_EQ(between(list, "growth ", "\n"), "2") << "i has one byte, its upper case two";
}

TEST_F(Mklco, FaultsAreReportedWithTheirPlaceAndNothingIsWritten) {
    const std::string long_text = "d_fmt \"" + std::string(65536, 'x') + "\"\n";
    const struct {
        const char *numeric, *monetary, *time, *place;
    } rows[] = {
        {"decimal_point \".\" \",\"\n", "", "", "tt:21:19: error"},
        {"grouping 3;x\n", "", "", "tt:21:12: error"},
        {"grouping 3;-2\n", "", "", "tt:21:12: error"},
        {"grouping 1;2;3;4;5;6;7;8;9;1;2;3;4;5;6\n", "", "", "tt:21:1: error"},
        {"copy \"nowhere\"\n", "", "", "tt:21:6: error"},
        {"", "frac_digits two\n", "", "tt:23:13: error"},
        {"", "p_sign_posn 5\n", "", "tt:23:13: error"},
        {"", "int_n_cs_precedes 0;1\n", "", "tt:23:21: error"},
        {"", "", "abday \"a\";\"b\"\n", "tt:25:1: error"},
        {"", "", "am_pm \"/x81/x40\";\"/x81\"\n", "tt:25:19: error"},
        {"", "", "d_fmt \"%d<U4E00>\"\n", "tt:25:10: error"},
        {"", "", long_text.c_str(), "tt:25:7: error: a text of 65536 bytes"},
        {"", "", "am_pm \"<eur0>\";\"\"\n", "tt:25:8: error: unknown name <eur0>"},
        {"END LC_NUMERIC\ndecimal_piont \".\"\nLC_X\nEND LC_X\nLC_Y\n", "", "", "tt:22:1: error"},
    };
    for (const auto &row : rows) {
        outcome result = compile(row.numeric, row.monetary, row.time, "", {"-oold.lco"});
        EXPECT_EQ(result.status, 4) << row.place;
        EXPECT_NE(result.said.find(row.place), std::string::npos) << result.said;
        EXPECT_EQ(content("old.lco"), "old");
    }
    // The runtime would refuse the object.
    for (const std::string &line :
         {std::string("class \"two words\"; A"), "class \"" + std::string(126, 'x') + "\"; A",
          std::string("translit_start")}) {
        std::ofstream("locales/tt") << "LC_CTYPE\n" << line << "\nEND LC_CTYPE\n";
        outcome result = mklco({"-I.", "-fT", "-c8859-1", "-oold.lco", "tt"});
        EXPECT_EQ(result.status, 4) << line;
        EXPECT_NE(result.said.find("tt:2:"), std::string::npos) << result.said;
    }
}

TEST_F(Mklco, WhatIsProbablyAMistakeIsAWarning) {
    const struct {
        const char *classes, *monetary, *time, *said;
    } rows[] = {
        {"class \"vowel\"; <U0042>\n", "", "",
         "tt:19:1: warning: a second line of the class vowel"},
        {"upper <U0042>\n", "", "", "tt:19:1: warning: a second line of the class upper"},
        {"class \"digit\"; <U0030>\n", "", "",
         "tt:19:1: warning: a second line of the class digit"},
        {"charclass z\nclass \"z\"; <U0042>\n", "", "", nullptr},
        {"digit <U0041>\n", "", "", "tt:19:1: warning: U+0041 is upper and digit"},
        {"cntrl <U0022>\npunct <U0022>\n", "", "", "tt:20:1: warning: U+0022 is cntrl and punct"},
        {"", "int_curr_symbol \"EURO \"\n", "", "tt:24:17: warning: expected 4 characters"},
        {"", "int_curr_symbol \"\"\n", "", nullptr},
        {"", "copy \"loose\"\nfrac_digits 2\n", "", "tt:25:1: warning: frac_digits follows a copy"},
        {"copy \"loose\"\nclass \"z\"; <U0042>\n", "", "", nullptr},
        {"", "", "d_fmt \"%Z\"\n", "tt:26:7: warning: nothing is left of this format"},
        {"", "", "d_fmt \"\"\n", nullptr},
    };
    std::ofstream("locales/loose")
        << "LC_CTYPE\nEND LC_CTYPE\nLC_MONETARY\nfrac_digits 3\nEND LC_MONETARY\n";
    for (const auto &row : rows) {
        more_classes = row.classes;
        const outcome result = compile("decimal_point \".\"\n", row.monetary, row.time);
        EXPECT_EQ(result.status, 1) << row.said;
        EXPECT_EQ(result.said.find("warning") != std::string::npos, row.said != nullptr)
            << result.said;
        EXPECT_NE(result.said.find(row.said == nullptr ? "" : row.said), std::string::npos)
            << result.said;
    }
}

TEST_F(Mklco, ThaiOrderIsForThaiCodeSets) {
    compile("");
    const outcome latin = mklco({"-I.", "-fISO-8859-1", "-ox", "--collation=thai_smo", "tt"});
    EXPECT_EQ(latin.status, 4);
    EXPECT_NE(latin.said.find("ISO-8859-1 does not have the Thai letters"), std::string::npos);
    EXPECT_EQ(mklco({"-I.", "-fUTF-8", "-ox", "--collation=thai_smo", "tt"}).status, 4);
    EXPECT_LE(mklco({"-I.", "-fTIS-620", "-ox", "--collation=thai_smo", "th_TH"}).status, 1);
    EXPECT_EQ(between(content("x"), "### LC_COLLATE\n", "### "), "thai_smo\n");
}

TEST_F(Mklco, ATwelveHourFormatIsMadeWhereItsTextsAre) {
    const struct {
        const char *time, *format;
    } rows[] = {
        {"am_pm \"AM\";\"PM\"\n", "%I:%M:%S %p"},
        {"am_pm \"AM\";\"PM\"\nt_fmt_ampm \"\"\n", "%I:%M:%S %p"},
        {"am_pm \"AM\";\"PM\"\nt_fmt_ampm \"%p %I\"\n", "%p %I"},
        {"am_pm \"\";\"\"\n", ""},
        {"", ""},
    };
    for (const auto &row : rows) {
        ASSERT_EQ(compile("", "", row.time).status, 1);
        mklco({"--list", "-olist", "new.lco"});
        EXPECT_EQ(between(content("list"), "t_fmt_ampm \"", "\"\n"), row.format) << row.time;
    }
}

// The registry is the file that --registry names, else the table that the runtime has without one.
TEST_F(Mklco, CodeSetsThatTheRegistryLacksAreWarnedOf) {
    compile("decimal_point \".\"\n");
    const auto warned = [](std::vector<std::string> more) {
        more.insert(more.begin(), {"-I.", "-fT", "-onew.lco", "tt"});
        return mklco(more).said.find("warning: the registry of code sets has no name") !=
               std::string::npos;
    };
    EXPECT_TRUE(warned({"-cnobody"}));
    EXPECT_FALSE(warned({"-c8859-1"}));
    EXPECT_FALSE(warned({"-c57000"})) << "a number is its own name";
    std::ofstream("registry") << "nobody 57000\n";
    EXPECT_FALSE(warned({"-cnobody", "--registry=registry"}));
    EXPECT_TRUE(warned({"-csomebody", "--registry=registry"}));
    EXPECT_EQ(mklco({"-I.", "-fT", "-cx", "-onew.lco", "--registry=missing", "tt"}).status, 4);
}

// Each would take minutes or all the memory.
TEST_F(Mklco, SourcesThatAskForTooMuchAreRefused) {
    std::string many, names, substitutes = "translit_start\n<U20AC> \"\"";
    for (int i = 0; i < 64; ++i)
        many += "class \"z\"; <U0000>..<U0010FFFF>\n";
    for (int i = 0; i < 1001; ++i)
        names += "class_name 7 n" + std::to_string(i) + "\n";
    for (int i = 0; i < 200; ++i)
        substitutes += ";\"\"";
    const struct {
        std::string lines;
        const char *said;
    } rows[] = {
        {many, "tt:34:19: error: the class lines name more than 16777216 characters"},
        {substitutes + "\ntranslit_end\n", "tt:20:1: error: more than 100 substitutes"},
    };
    for (const auto &row : rows) {
        more_classes = row.lines;
        const outcome result = compile("", "", "", "yesstr \"<U20AC>\"\n");
        EXPECT_EQ(result.status, 4);
        EXPECT_NE(result.said.find(row.said), std::string::npos) << result.said;
    }
    std::ofstream("names") << "locale_object 11\n" << names;
    EXPECT_NE(mklco({"-ox", "names"}).said.find("names:1002:1: error"), std::string::npos);
}

TEST_F(Mklco, LossesAreListedAndCanBeErrors) {
    ASSERT_EQ(compile("thousands_sep \",\"\n", "mon_thousands_sep \".\"\nint_p_sign_posn 4\n", "",
                      "yesstr \"<U4E00>\"\n", {"--losses=lost"})
                  .status,
              1);
    const std::string lost = content("lost");
    for (const char *place : {"charmaps/T:141:1: ", "tt:24:1: ", "tt:25:1: ", "tt:30:9: "})
        EXPECT_NE(lost.find(place), std::string::npos) << place << "in\n" << lost;
    EXPECT_EQ(std::count(lost.begin(), lost.end(), '\n'), 4) << lost;
    EXPECT_EQ(compile("", "", "", "", {"--werror=loss", "-oold.lco"}).status, 4);
    EXPECT_EQ(content("old.lco"), "old");
}

// Of a UTF-8 charmap it would be hundreds of lines.
TEST_F(Mklco, TheWidthZeroIsOneLoss) {
    std::string charmap = content("charmaps/T");
    charmap.insert(charmap.find("END WIDTH"), "<U00C4> 0\n<U00E4> 0\n");
    std::ofstream("charmaps/T") << charmap;
    ASSERT_EQ(compile("", "", "", "", {"--losses=lost"}).status, 1);
    EXPECT_EQ(content("lost"), "./charmaps/T:141:1: the width 0 of 3 characters becomes 1\n");
}

TEST_F(Mklco, CommandLinesThatSayTooLittleOrTooMuchAreRefused) {
    compile("");
    for (const std::vector<std::string> &words :
         std::vector<std::vector<std::string>>{{},
                                               {"-fT", "tt"},
                                               {"-ox", "locales/tt"},
                                               {"--list", "-fT", "new.lco"},
                                               {"-ox", "-fT", "--calendar=mayan", "tt"},
                                               {"-ox", "-fT", "--collation=dictionary", "tt"},
                                               {"-ox", "-fT", "tt", "tt"}})
        EXPECT_EQ(mklco(words).status, 2);
    EXPECT_EQ(mklco({"-I.", "-ox", "-fNOWHERE", "tt"}).status, 4);
    EXPECT_EQ(mklco({"-I.", "-ox", "-fT", "nowhere"}).status, 4);
    for (const char *name : {"-ca-name-of-20-letters", "-ctwo words", "-ctwo\nlines"})
        EXPECT_EQ(mklco({"-I.", "-ox", "-fT", name, "tt"}).status, 4) << name;
    EXPECT_NE(mklco({"-zf"}).said.find("'-z'"), std::string::npos);
    mklco({"--list", "-olist", "new.lco"});
    EXPECT_EQ(mklco({"-ox", "-c8859-1", "list"}).status, 2)
        << "a listing names its code set itself";
    EXPECT_FALSE(fs::exists("x"));
}

// Neither the directory, the environment nor the way that the source is named shows in an object.
TEST_F(Mklco, TheSameSourcesGiveTheSameBytes) {
    std::ofstream("locales/base") << "LC_NUMERIC\nthousands_sep \".\"\nEND LC_NUMERIC\n";
    compile("copy \"base\"\n");
    const std::string first = content("new.lco");
    setenv("LANG", "tr_TR.UTF-8", 1);
    const fs::path here = fs::current_path();
    fs::create_directory("elsewhere");
    fs::current_path("elsewhere");
    EXPECT_EQ(mklco({"-I", here.string(), "-fT", "-c8859-1", "-oother.lco",
                     (here / "locales/tt").string()})
                  .status,
              1);
    EXPECT_EQ(content("other.lco"), first);
    fs::current_path(here);
    std::ofstream("locales/tt", std::ios::app) << "% a comment more\n";
    ASSERT_EQ(mklco({"-I.", "-fT", "-c8859-1", "-onew.lco", "tt"}).status, 1);
    EXPECT_NE(between(content("new.lco"), "SOURCE_CRC32=", "\n"),
              between(first, "SOURCE_CRC32=", "\n"));
}

TEST_F(Mklco, ListingsOfAllShippedObjectsCompileToTheirBytes) {
    size_t objects = 0;
    for (const auto &entry : fs::recursive_directory_iterator(KESTRION_BUILD_DIR "/gls/lc11")) {
        if (entry.path().extension() != ".lco")
            continue;
        ASSERT_EQ(mklco({"--list", "-olist", entry.path().string()}).status, 0) << entry.path();
        ASSERT_EQ(mklco({"-onew.lco", "list"}).status, 0) << entry.path();
        EXPECT_TRUE(content("new.lco") == content(entry.path())) << entry.path();
        EXPECT_LT(fs::file_size(entry.path()), size_t{4} << 20);
        ++objects;
    }
    EXPECT_GE(objects, 27u);
}

TEST_F(Mklco, ListingsTellOddClassNamesApart) {
    more_classes = "class \"#x\"; <U0041>\nclass \"full_width\"; <U0042>\nclass \"bit1\"; <U0043>\n"
                   "class \"upper\"; <U0044>\n";
    ASSERT_EQ(compile("").status, 1);
    ASSERT_EQ(mklco({"--list", "-olist", "new.lco"}).status, 0);
    const std::string list = content("list");
    EXPECT_NE(list.find("class 44 upper alpha graph print\n"), std::string::npos) << list;
    ASSERT_EQ(mklco({"-oagain.lco", "list"}).status, 0);
    EXPECT_EQ(content("again.lco"), content("new.lco"));
}

TEST_F(Mklco, ListingsHoldCollationsOfEveryShape) {
    compile("");
    mklco({"--list", "-olist", "new.lco"});
    std::string list = content("list");
    size_t from = list.find("code_order "), to = list.find("LC_NUMERIC");
    list.replace(
        from, to - from,
        "code_order 0\nmax_weight 9\nlevels 1 2 1\nrow 41..43 1+\nrow 61..63 1+\nrow c4 4\n"
        "contraction 4 63 68\nexpansion 61 65\nweights 0 1 1 1\nweights 1 2 2 2\n"
        "weights 2 3 2 2\nweights 3 4 2 2\nweights 4 4000 8003 2\n");
    std::ofstream("edited") << list;
    ASSERT_EQ(mklco({"-oedited.lco", "edited"}).status, 0);
    EXPECT_NE(content("edited.lco")
                  .find("\n0\n4\n3\n1\n1\n9\n000100020001\n200040000006300000068\n2"
                        "0000006100000065\n000100010001\n000200020002\n"),
              std::string::npos);
    ASSERT_EQ(mklco({"--list", "-oagain", "edited.lco"}).status, 0);
    EXPECT_EQ(content("again"), list);
}

TEST_F(Mklco, BadListingsAreRefusedWithTheirPlace) {
    compile("");
    mklco({"--list", "-olist", "new.lco"});
    std::string list = content("list");
    const std::string long_text = "LC_MESSAGES yesstr \"" + std::string(65536, 'x') + "\"";
    const std::string long_head = "head \"" + std::string(127, 'x') + "\"";
    const struct {
        const char *line, *place; // put after the first line
    } rows[] = {
        {"colour red", ":2:1: error"},
        {"class 41..3f upper", ":2:7: error"},
        {"class 4 upper", ":2:7: error"},
        {"class 4142434445 -", ":2:7: error"},
        {"class 41 upper fancy", ":2:16: error"},
        {"case ff 1", ":2:6: error"},
        {"row 41 65536", ":2:8: error"},
        {"head \"x", ":2:6: error"},
        {"head \"\\xg0\"", ":2:7: error"},
        {"pair 41", ":2:6: error"},
        {"growth x", ":2:8: error"},
        {"LC_TIME day \"x\"", ":2:13: error"},
        {"LC_TIME hour 1", ":2:9: error"},
        {"LC_TIME calendar \"hebrew\"", ":64:9: error"},
        {"weights 7 1", ":2:9: error"},
        {"collation x", ":2:11: error"},
        {"max_weight 1 junk", ":2:14: error"},
        {"growth 1", "error: a second growth line"},
        {"levels 1", "error: a second levels line"},
        {"end", ":3:1: error: unexpected line after end"},
        {"contraction 0 1 2 3 4 5 6 7 8 9 a b c d e f 10", ":2:45: error: unexpected words"},
        {"LC_NUMERIC grouping 1 2 3 4 5 6 7 8 9 1 2 3 4 5 6 7", ":2:51: error: unexpected words"},
        {"LC_TIME calendar \"mayan\"", ":2:18: error: expected a calendar"},
        {"code_set \"two words\"", ":2:10: error: expected 1 to 19 characters"},
        {long_text.c_str(), ":2:20: error: a text of 65536 bytes"},
        {long_head.c_str(), ":2:6: error: expected at most 126 characters"},
    };
    for (const auto &row : rows) {
        std::ofstream("bad") << "locale_object 11\n" << row.line << list.substr(list.find('\n'));
        outcome result = mklco({"-oold.lco", "bad"});
        EXPECT_EQ(result.status, 4) << row.line;
        EXPECT_NE(result.said.find(row.place), std::string::npos) << row.line << "\n"
                                                                  << result.said;
    }
    std::ofstream("bad") << list.substr(0, list.size() - 4);
    EXPECT_NE(mklco({"-oold.lco", "bad"}).said.find("the listing is cut"), std::string::npos);
    list.insert(list.size() - 4, "class 41 upper\n");
    std::ofstream("bad") << list;
    EXPECT_NE(mklco({"-oold.lco", "bad"}).said.find("character 41 has two"), std::string::npos);
    list.replace(list.find("class 41 upper\nend"), 8, "class 4142");
    std::ofstream("bad") << list;
    EXPECT_NE(mklco({"-oold.lco", "bad"}).said.find("error: these bytes begin with"),
              std::string::npos);
    list = content("list");
    list.replace(list.find("LC_TIME mon"), 11, "LC_TIME mon \"Smarch\"");
    std::ofstream("months") << list;
    const outcome months = mklco({"-oold.lco", "months"});
    EXPECT_NE(months.said.find("months: LC_TIME cannot be loaded: it is malformed (error 11)"),
              std::string::npos)
        << months.said;
    EXPECT_EQ(content("old.lco"), "old");
}

// An object cut at any byte, or with any byte changed, is refused or listed, and never read beyond.
TEST_F(Mklco, DamagedObjectsDoNoHarm) {
    compile("");
    const std::string object = content("new.lco");
    for (size_t length = 0; length < object.size(); length += 7) {
        std::ofstream("cut.lco", std::ios::binary) << object.substr(0, length);
        EXPECT_EQ(mklco({"--list", "-olist", "cut.lco"}).status, 4) << length;
    }
    for (size_t at = 0; at < object.size(); at += 3) {
        std::string changed = object;
        changed[at] = static_cast<char>(changed[at] ^ (at % 2 ? 0x01 : 0x08));
        std::ofstream("changed.lco", std::ios::binary) << changed;
        EXPECT_NE(mklco({"--list", "-olist", "changed.lco"}).status, 2) << at;
    }
}
