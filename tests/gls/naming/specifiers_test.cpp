#include "gls/engine_test.h"
#include "tests/support/guarded_bytes.h"
#include "tests/support/temp_dir.h"
#include <kestrion/code_set_registry.h>
#include <kestrion/specifiers.h>

namespace {

// Specifiers are tested over the built-in table.
class Specifiers : public testing::Test {
protected:
    Specifiers() {
        setenv("GL_PATH", "/no/such/directory", 1);
        gl_cache_registry(nullptr, nullptr);
    }
    ~Specifiers() override { gl_free_registry_cache(); }
};

using operation = int(void *, const char *, char *, const char *);

// Result of an operation in a buffer of exactly the size that its caller must give, or "error N".
std::string result_of(operation *run, const std::string &text, size_t size) {
    guarded_bytes out(std::string(size, '?'));
    int32_t word = 0;
    if (run(&word, text.c_str(), out.data(), nullptr) != 0)
        return "error " + std::to_string(word);
    EXPECT_EQ(word, 0);
    return out.data();
}

int file_name(void *ctx, const char *spec, char *out, const char *regfile) {
    return gl_lc_spec2lc_fname(ctx, spec, out, regfile, nullptr);
}

int message_directory(void *ctx, const char *spec, char *out, const char *regfile) {
    return gl_lc_spec2msg_dname(ctx, spec, out, regfile, nullptr);
}

std::string all_six(const std::string &value) {
    return "GL_CTYPE = " + value + " ; GL_COLLATE = " + value + " ; GL_NUMERIC = " + value +
           " ; GL_MONETARY = " + value + " ; GL_TIME = " + value + " ; GL_MESSAGES = " + value;
}

TEST_F(Specifiers, SimpleSpecifiersNameFiles) {
    const struct {
        const char *spec;
        const char *wanted;
    } rows[] = {
        {"en_US.8859-1", "en_us/0333.lco"},
        {"EN_us.819", "en_us/0333.lco"},
        {"ja_JP.UTF8", "ja_jp/e01c.lco"},
        {"fil_PH.819@Dict", "fil_ph/0333Dict.lco"},
        {"de_DE.819@a1B2", "de_de/0333a1B2.lco"},
        {"de_DE.65535", "de_de/ffff.lco"},
        {"", "error 7"},
        {"en_US", "error 7"},
        {"en_US.", "error 7"},
        {"en_US.@dict", "error 7"},
        {"e_US.819", "error 7"},
        {"engl_US.819", "error 7"},
        {"en_USA.819", "error 7"},
        {"en-US.819", "error 7"},
        {"e1_US.819", "error 7"},
        {"en_US.#819", "error 7"},
        {"en_US.819 ", "error 7"},
        {"en_US.819@abcde", "error 7"},
        {"en_US.819@a_b", "error 7"},
        {"en_US.819@a@b", "error 7"},
        {"en_US.81\t9", "error 7"},
        {"en_US.nowhere", "error 7"},
        {"en_US.65536", "error 7"},
        {"en_US.57344", "error 7"},
        {"en_US.819\x80", "error 7"},
        {"en_US.../../etc/passwd", "error 7"},
        {"en_US.000000000000000000819", "en_us/0333.lco"}, // 21 characters
        {"en_US.0000000000000000000819", "error 7"},       // 22
        {"fil_PH.000000000000000000819@dict", "fil_ph/0333dict.lco"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(result_of(file_name, row.spec, gl_simple_spec_size), row.wanted) << row.spec;
        int32_t word = 5;
        EXPECT_EQ(gl_is_lc_spec(&word, row.spec), row.wanted[0] != 'e' || row.wanted[1] != 'r');
        EXPECT_EQ(word, 5);
    }
    EXPECT_EQ(result_of(message_directory, "en_US.8859-1@dict", 34), "en_us/0333");
}

TEST_F(Specifiers, CompositeSpecifiersHoldOneCodeSet) {
    const struct {
        const char *spec;
        const char *wanted;
    } rows[] = {
        {"GL_TIME = de_DE.819", "GL_TIME = de_de/0333.lco"},
        {"GL_TIME = de_DE.819 ; ", "GL_TIME = de_de/0333.lco"},
        {"GL_TIME = de_DE.819 ; GL_CTYPE = fr_FR.8859-1@euro",
         "GL_TIME = de_de/0333.lco ; GL_CTYPE = fr_fr/0333euro.lco"},
        {"GL_TIME = de_DE.819 ; GL_CTYPE = fr_FR.912", "error 7"},
        {"GL_TIME = de_DE.819 ; GL_TIME = de_DE.819", "error 7"},
        {"GL_TIME = de_DE.819 GL_CTYPE = de_DE.819", "error 7"},
        {"GL_TIME = de_DE.819; GL_CTYPE = de_DE.819", "error 7"},
        {"GL_TIME = de_DE.819 ;", "error 7"},
        {"GL_TIME = de_DE.819 ; x", "error 7"},
        {"GL_TIME = ", "error 7"},
        {"GL_TIME=de_DE.819", "error 7"},
        {"GL_TIMES = de_DE.819", "error 7"},
        {" GL_TIME = de_DE.819", "error 7"},
        {"GL_TIME = GL_TIME = de_DE.819", "error 7"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(result_of(file_name, row.spec, 512), row.wanted) << row.spec;
    EXPECT_EQ(result_of(file_name, all_six("fil_PH.819@abcd"), 512),
              all_six("fil_ph/0333abcd.lco"));
    EXPECT_EQ(result_of(file_name, all_six("fil_PH.000000000000000000819@abcd"), 512), "error 7")
        << "more than 285 characters";
    EXPECT_EQ(result_of(message_directory, "GL_TIME = de_DE.819 ; GL_MESSAGES = fr_FR.819", 512),
              "fr_fr/0333");
    EXPECT_EQ(result_of(message_directory, "GL_TIME = de_DE.819", 512), "error 7");
    int32_t word = 0;
    EXPECT_EQ(gl_lc_spec2cs_num(&word, all_six("en_US.utf8").c_str(), nullptr), 0xE01C);
    EXPECT_EQ(gl_lc_spec2cs_num(&word, "en_US.none", nullptr), 57344);
    EXPECT_EQ(word, 7);
}

TEST_F(Specifiers, DirectoriesComeFirstWithAMark) {
    int32_t word = 0;
    char out[64];
    EXPECT_EQ(gl_lc_spec2lc_fname(&word, "en_US.819", out, nullptr, "/a/b"), 0);
    EXPECT_STREQ(out, "/a/b\xFF"
                      "en_us/0333.lco");
    EXPECT_EQ(gl_lc_spec2msg_dname(&word, "en_US.819", out, nullptr, "d"), 0);
    EXPECT_STREQ(out, "d\xFF"
                      "en_us/0333");
    EXPECT_EQ(gl_cs_nums2cv_fname(&word, 0x333, 0xE01C, out, nullptr), 0);
    EXPECT_STREQ(out, "0333e01c.cvo");
    guarded_bytes exact(std::string(14 + 2, '?'));
    EXPECT_EQ(gl_cs_nums2cv_fname(&word, 0xE01C, 0x1B5, exact.data(), "dd"), 0);
    EXPECT_STREQ(exact.data(), "dd\xFF"
                               "e01c01b5.cvo");
    // A directory counts for each of six names.
    const std::string dir(200, 'd');
    guarded_bytes all(std::string(512 + 6 * 201, '?'));
    EXPECT_EQ(gl_lc_spec2lc_fname(&word, all_six("fil_PH.819@dict").c_str(), all.data(), nullptr,
                                  dir.c_str()),
              0);
    EXPECT_EQ(all.data(), all_six(dir + "\xFF"
                                        "fil_ph/0333dict.lco"));
}

// Every operation takes the longest simple specifier; a whole text has at most 285 characters.
TEST_F(Specifiers, TheLongestOnesAreTaken) {
    const std::string longest = "fil_PH.000000000000000000819@dict";
    ASSERT_EQ(longest.size(), 33u);
    EXPECT_EQ(result_of(gl_lc_spec2lc_short, longest, 34), longest);
    EXPECT_EQ(result_of(gl_lc_spec2lc_norm, longest, 34), "fil_PH.819@dict");
    char out[34];
    int32_t word = 0;
    EXPECT_EQ(gl_lc_spec2category(&word, longest.c_str(), GL_CAT_TIME, out, nullptr), 0);
    EXPECT_EQ(out, longest);
    std::string whole = all_six(longest) + " ; ";
    whole.erase(whole.find("0000"), whole.size() - 286);
    EXPECT_EQ(result_of(file_name, whole, 512), "error 7");
    whole.erase(whole.find("0000"), 1);
    EXPECT_EQ(result_of(file_name, whole, 512), all_six("fil_ph/0333dict.lco"));
}

TEST_F(Specifiers, FileNamesFallIntoPiecesAndBack) {
    const struct {
        const char *fname;
        const char *lang;
        const char *cs;
        const char *modifier;
        const char *spec;
    } rows[] = {
        {"en_us/0333.lco", "en_US", "819", "", "en_US.819"},
        {"fil_ph\\e01cdict.lco", "fil_PH", "57372", "dict", "fil_PH.57372@dict"},
        {"en_us/0333", "en_US", "819", "", "en_US.819"},
        {"en_us/33.lco", "en_US", "51", "", "en_US.51"},
        {"EN_us/ffffabcdefg", "en_US", "65535", "abcd", "en_US.65535@abcd"},
    };
    char lang[7];
    char cs[6];
    char modifier[5];
    int32_t word = 0;
    for (const auto &row : rows) {
        ASSERT_EQ(gl_lc_fname2lc_pieces(&word, row.fname, lang, cs, modifier), 0) << row.fname;
        EXPECT_STREQ(lang, row.lang);
        EXPECT_STREQ(cs, row.cs);
        EXPECT_STREQ(modifier, row.modifier);
        guarded_bytes out(std::string(gl_simple_spec_size, '?'));
        EXPECT_EQ(gl_lc_pieces2lc_spec(&word, lang, cs, modifier, out.data()), 0);
        EXPECT_STREQ(out.data(), row.spec);
    }
    EXPECT_EQ(gl_lc_fname2lc_pieces(&word, "en_us0333.lco", lang, cs, modifier), -1);
    EXPECT_EQ(gl_lc_fname2lc_pieces(&word, "en_us", lang, cs, modifier), -1);
    EXPECT_EQ(word, 0) << "a wrong separator carries no word";
    EXPECT_EQ(gl_lc_fname2lc_pieces(&word, "os/en_us", lang, cs, modifier), -1);
    EXPECT_EQ(word, 7);

    char out[gl_simple_spec_size];
    EXPECT_EQ(gl_lc_pieces2lc_spec(&word, "en_US.8859-1", "819123", nullptr, out), 0);
    EXPECT_STREQ(out, "en_US.81912") << "a point ends the language, five characters the code set";
    const char *const bad[][3] = {
        {"", "819", ""},   {"en_US", "", ""},    {"en_US", "x19", ""},    {"english", "819", ""},
        {"en", "819", ""}, {"en_US", "8 9", ""}, {"en_US", "819", "a b"}, {"en_US", "8@9", ""},
    };
    for (const auto &row : bad) {
        word = 0;
        EXPECT_EQ(gl_lc_pieces2lc_spec(&word, row[0], row[1], row[2], out), -1) << row[0] << row[1];
        EXPECT_EQ(word, 7);
    }
}

TEST_F(Specifiers, NormalFormIsByNumber) {
    EXPECT_EQ(result_of(gl_lc_spec2lc_norm, "EN_us.Latin-1@dict", 34), "en_US.819@dict");
    EXPECT_EQ(result_of(gl_lc_spec2lc_norm, all_six("en_us.8859-1") + " ; ", 512),
              all_six("en_US.819"));
    EXPECT_EQ(result_of(gl_lc_spec2lc_norm, "GL_TIME = en_US.819", 512), "error 7")
        << "all six categories are wanted";
}

TEST_F(Specifiers, ShortAndLongFormsAreInverse) {
    const std::string mixed =
        "GL_CTYPE = en_US.819 ; GL_COLLATE = sv_SE.819 ; GL_NUMERIC = en_US.819 ; GL_MONETARY = "
        "de_DE.8859-1 ; GL_TIME = en_US.819 ; GL_MESSAGES = fr_FR.819@x";
    EXPECT_EQ(result_of(gl_lc_spec2lc_short, mixed, 512),
              "en_US.819;sv_SE.819;en_US.819;de_DE.8859-1;en_US.819;fr_FR.819@x");
    EXPECT_EQ(result_of(gl_lc_spec2lc_short, all_six("en_US.819"), 512), "en_US.819");
    EXPECT_EQ(result_of(gl_lc_spec2lc_short, "en_US.8859-1", 34), "en_US.8859-1");
    const struct {
        const char *text;
        std::string wanted;
    } rows[] = {
        {"en_US.819", all_six("en_US.819")},
        {"en_US.819;;;;;", all_six("en_US.819")},
        {"en_US.819;sv_SE.819;;de_DE.8859-1;;fr_FR.819@x", mixed},
        {"en_US.819;;;;;;", "error 7"},
        {"en_US.819;;;;;;en_US.819", "error 7"},
        {";en_US.819", "error 7"},
        {"", "error 7"},
        {"en_US.819;sv_SE.912", "error 7"},
        {"en_US.819 ;sv_SE.819", "error 7"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(result_of(gl_lc_short2lc_long, row.text, 512), row.wanted) << row.text;
}

TEST_F(Specifiers, OneCategoryCanBeTakenOut) {
    const char *const composite = "GL_TIME = de_DE.819 ; GL_CTYPE = fr_FR.8859-1";
    char out[gl_simple_spec_size];
    int32_t word = 0;
    EXPECT_EQ(gl_lc_spec2category(&word, composite, GL_CAT_TIME, out, nullptr), 0);
    EXPECT_STREQ(out, "de_DE.819");
    EXPECT_EQ(gl_lc_spec2category(&word, "ja_JP.sjis", GL_CAT_COLLATE, out, nullptr), 0);
    EXPECT_STREQ(out, "ja_JP.sjis");
    EXPECT_EQ(gl_lc_spec2category(&word, composite, GL_CAT_COLLATE, out, nullptr), -1);
    EXPECT_EQ(word, 7);
    EXPECT_EQ(gl_lc_spec2category(&word, composite, GL_CAT_ALL, out, nullptr), -1);
    EXPECT_EQ(word, 9);
}

TEST_F(Specifiers, FilesNameTheirCodeSet) {
    const temp_dir dir;
    setenv("GL_PATH", dir.path().c_str(), 1);
    const std::string head = "FILE_TYPE=locale_object\nCOMPILER_VERSION=11\nHEADER_LINES=3\n";
    dir.write("en_us/0333.lco", head + "8859-1\n### LC_CTYPE\n");
    dir.write("fil_ph/0333dict.lco", head + "latin-1\n");
    dir.write("sv_se/0333.lco", head);
    dir.write("nb_no/0333.lco", head + "8859 1\n");
    dir.write("nb_no/0333/x", head + "8859-1\n");
    const struct {
        std::string fname;
        std::string wanted;
    } rows[] = {
        {"en_us/0333.lco", "en_US.8859-1"},
        {"fil_ph/0333dict.lco", "fil_PH.latin-1@dict"},
        {"GL_TIME = fil_ph/0333dict.lco ; GL_CTYPE = en_us/0333.lco ; ",
         "GL_TIME = fil_PH.latin-1@dict ; GL_CTYPE = en_US.8859-1"},
        {"sv_se/0333.lco", "error 11"},
        {"nb_no/0333.lco", "error 11"}, // its code set's line is not a name
        {"nb_no/0333/x", "error 7"},    // a directory is not a modifier
        {"en_us/0333abcd/../0333.lco", "error 7"},
        {"de_de/0333.lco", "error 8"},
        {"GL_TIME = en_us/0333.lco ; GL_CTYPE = de_de/0333.lco", "error 8"},
        {"os/en_US", "error 7"},
        {"en_us-0333.lco", "error 7"},
        {"en_us/0333" + std::string(40, 'x'), "error 7"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(result_of(gl_lc_fname2lc_spec, row.fname, row.fname[0] == 'G' ? 512 : 34),
                  row.wanted);
}

// The keywords' numbers follow an order of their own, which callers know.
TEST_F(Specifiers, KeywordsHaveTheirOwnNumbers) {
    const char *const keywords[] = {
        "", "GL_CTYPE", "GL_COLLATE", "GL_TIME", "GL_MONETARY", "GL_NUMERIC", "GL_MESSAGES"};
    for (int i = 1; i <= 6; ++i) {
        int32_t length = 0;
        EXPECT_EQ(_gl_is_category((std::string(keywords[i]) + " = x").c_str(), &length), i);
        EXPECT_EQ(length, static_cast<int32_t>(strlen(keywords[i])));
    }
    EXPECT_EQ(_gl_is_category("gl_ctype", nullptr), 0);
    EXPECT_EQ(_gl_is_xopen_spec("en_US.819@ab ; GL", 17, nullptr), 12);
    EXPECT_EQ(_gl_is_xopen_spec("en_US.819", 7, nullptr), 7) << "counted, not terminated";
}

} // namespace
