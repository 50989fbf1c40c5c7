// The conversion compiler as a command: what it makes of two charmaps, what it cannot hold, what it
// refuses, and its objects beside the C library's conversions.

#include "compilers/mkcvo/mkcvo.h"
#include "gls/conversion/conversion_objects.h"
#include "tests/compilers/command.h"

#include <iconv.h>

namespace fs = std::filesystem;
using namespace kestrion;
using namespace std::string_literals;

namespace {

outcome mkcvo(std::vector<std::string> words) { return run_command(mkcvo_main, std::move(words)); }

std::string charmap_text(const std::string &rows) {
    return "<code_set_name> T\n<comment_char> %\n<escape_char> /\n<mb_cur_min> 1\n<mb_cur_max> 2\n"
           "CHARMAP\n<U0000> /x00 NULL\n" +
           rows + "END CHARMAP\n";
}

struct Mkcvo : command_test {
    Mkcvo() {
        std::ofstream("from") << charmap_text("<U0041>..<U0043> /x41 A to C\n"
                                              "<U0044> /x81/x40 D\n"
                                              "%IRREVERSIBLE%<U0041> /x81/x41 A again\n"
                                              "<U0042><U0044> /x81/x42 B D\n"
                                              "<U00E4> /xe4 a with diaeresis\n"
                                              "<U20AC> /x80 euro\n");
        std::ofstream("to") << charmap_text("<U0041> /x61 A\n<U0042> /x62 B\n<U0044> /xa1/xa1 D\n"
                                            "%IRREVERSIBLE%<U0043> /x63 C\n"
                                            "<U003F> /x3f question mark\n<U0045> /x65 E\n");
        std::ofstream("pairs")
            << "<code_set_name> P\n<escape_char> /\nCHARMAP\n<U0041> /x41/x41 A\n"
               "END CHARMAP\n";
        std::ofstream("other") << "<code_set_name> O\n<escape_char> /\nCHARMAP\n<U0061> /x61 a\n"
                                  "END CHARMAP\n";
        std::ofstream("prefix") << charmap_text("<U0041> /x41 A\n<U0042> /x41/x42 B\n");
        std::ofstream("broken") << charmap_text("<U0041> x41 A\n");
        std::ofstream("loc") << "comment_char %\nescape_char /\nLC_CTYPE\ntranslit_start\n"
                                "<U00E4> \"<U0041><U0045>\"\n<U20AC> \"<U20A0>\";\"<U0045>\"\n"
                                "<U0043> \"\"\n"
                                "translit_end\nEND LC_CTYPE\n";
        std::ofstream("old.cvo") << "old";
    }
    // The object of a command line, loaded.
    static std::string object(std::vector<std::string> words) {
        words.insert(words.begin(), {"-o", "x.cvo"});
        const outcome ran = mkcvo(words);
        EXPECT_LE(ran.status, 1) << ran.said;
        return content("x.cvo");
    }
};

TEST_F(Mkcvo, RowsAreJoinedByTheirCharacters) {
    loaded_object loaded(object({"./from", "./to"}));
    ASSERT_EQ(loaded.result, 0);
    const struct {
        const char *what;
        std::string source;
        conversion_result wanted;
    } rows[] = {
        {"one to one", "A", {0, 0, "a", 1, 7, 0}},
        {"two bytes", "\x81\x40", {0, 0, "\xa1\xa1", 2, 6, 0}},
        {"a row that is read only", "\x81\x41", {0, 0, "a", 2, 7, 0}},
        {"a row of two characters", "\x81\x42", {0, 0, "b\xa1\xa1", 2, 5, 0}},
        {"a row that is not written", "C", {-1, 1, "", 0, 8, 0}},
        {"no counterpart", "\xe4", {-1, 1, "", 0, 8, 0}},
        {"no character", "\x82", {-1, 1, "", 0, 8, 0}},
    };
    for (const auto &row : rows)
        EXPECT_EQ(convert(loaded.cv, row.source, 8), row.wanted) << row.what;
    EXPECT_EQ(convert(loaded.cv, "A\0A"s, 8, nullptr, text_form::terminated).text, "a\0"s);
    EXPECT_EQ(std::tie(loaded.cv->source_min_len, loaded.cv->source_max_len,
                       loaded.cv->target_min_len, loaded.cv->target_max_len),
              std::make_tuple(1, 2, 1, 3));
    EXPECT_EQ(loaded.cv->expansion, 1.5F);
}

TEST_F(Mkcvo, SubstitutesAreInexactAndHaveAnOrder) {
    const struct {
        std::vector<std::string> options;
        const char *umlaut, *euro, *c; // what E4, 80 and 43 become; null for nothing
    } rows[] = {
        {{"--near=U+00E4=a1a1"}, "\xa1\xa1", nullptr, nullptr},
        {{"--near=U+00E4=6165"}, "ae", nullptr, nullptr},
        {{"--translit=./loc"}, "ae", "e", ""},
        {{"-s", "U+003F"}, "?", "?", "?"},
        {{"-t", "./loc", "-sU+003F", "-n", "U+00E4=61"}, "a", "e", ""},
    };
    for (const auto &row : rows) {
        std::vector<std::string> words = row.options;
        words.insert(words.end(), {"./from", "./to"});
        loaded_object loaded(object(words));
        for (const auto &[source, wanted] :
             {std::pair("\xe4", row.umlaut), {"\x80", row.euro}, {"C", row.c}}) {
            const conversion_result r = convert(loaded.cv, source, 8);
            EXPECT_EQ(r.result, wanted == nullptr ? -1 : 0) << row.options[0];
            EXPECT_EQ(r.text, wanted == nullptr ? "" : wanted) << row.options[0];
            EXPECT_EQ(r.lossy, wanted != nullptr);
        }
        EXPECT_EQ(convert(loaded.cv, "A\x81\x40").lossy, 0);
    }
}

// As iconv does; EUC-TW, for one, has characters twice.
TEST_F(Mkcvo, ACharacterWithSeveralRowsIsWrittenByTheFirst) {
    std::ofstream("twice") << charmap_text("<U0041> /x80/x42 A\n<U0041> /x80/x41 A\n"
                                           "%IRREVERSIBLE%<U0042> /x80/x43 B\n<U0042> /x62 B\n");
    loaded_object there(object({"./from", "./twice"}));
    EXPECT_EQ(convert(there.cv, "AB", 8).text, "\x80\x42\x62");
    loaded_object back(object({"./twice", "UCS-4"}));
    EXPECT_EQ(convert(back.cv, "\x80\x41", 8).text, "A\0\0\0"s);
}

TEST_F(Mkcvo, CommandsEndInTheirStatus) {
    const struct {
        std::vector<std::string> words;
        int status;
        const char *said;
    } rows[] = {
        {{"-o", "x", "./to", "./to"}, 1, "U+0043 has no counterpart in ./to"},
        {{"-o", "x", "./other", "./other"}, 0, ""},
        {{"-o", "x", "./from", "./to"}, 1, "./from:12:1: loss: U+00E4 has no counterpart in ./to"},
        {{"-o", "old.cvo", "--werror=loss", "./from", "./to"}, 4, "U+20AC"},
        {{"-o", "old.cvo", "./nothing", "./to"}, 4, "./nothing"},
        {{"-o", "old.cvo", "nosuchcharmap", "./to"}, 4, "/usr/share/i18n/charmaps/nosuchcharmap"},
        {{"-o", "old.cvo", "./to", "./broken"}, 4, "./broken:8:"},
        {{"-o", "old.cvo", "./other", "./to"}, 4, "have no character in common"},
        {{"-o", "old.cvo", "./pairs", "./to"}, 4, "takes for a fixed-width Unicode form"},
        {{"-o", "old.cvo", "./to", "./pairs"}, 4, "takes for a fixed-width Unicode form"},
        {{"-o", "x", "./prefix", "./to"}, 1, "./prefix:9:1: loss: these bytes begin with those"},
        {{"-o", "old.cvo", "-sU+FFFD", "./from", "./to"}, 4, "./to does not have U+FFFD"},
        {{"-o", "old.cvo", "-nU+00E4=c4a1", "./from", "./to"},
         4,
         "./to does not have the bytes c4a1"},
        {{"-o", "./loc", "-t", "./loc", "./from", "./to"}, 2, "./loc was read"},
        {{"-o", "to", "./from", "./to"}, 2, "to was read"},
        {{"-o", "old.cvo", "-t", "./nolocale", "./from", "./to"}, 4, "./nolocale"},
        {{"-o", "old.cvo", "--list", "./to"}, 4, "this is not a conversion object"},
        {{"-o", "old.cvo", "./to"}, 2, "./to is not a listing; to join charmaps, name two"},
        {{"-o", "old.cvo", "ISO-8859-1"}, 2, "there is no listing ISO-8859-1; to join charmaps"},
        {{"-o", "old.cvo", "UCS-2", "UCS-4"}, 2, "one of the code sets must be a charmap"},
        {{"./from", "./to"}, 2, "no output is named"},
        {{"-o", "old.cvo", "-s", "?", "./from", "./to"}, 2, "'?' is not a character"},
        {{"-o", "old.cvo", "-n", "U+0041", "./from", "./to"}, 2, "has no '='"},
        {{"-o", "old.cvo", "--shift-in=0e0f0e0f0e", "./from", "./to"}, 2, "'0e0f0e0f0e' is not"},
    };
    for (const auto &row : rows) {
        const outcome ran = mkcvo(row.words);
        EXPECT_EQ(ran.status, row.status) << row.words[1] << row.words.back() << ran.said;
        EXPECT_NE(ran.said.find(row.said), std::string::npos) << row.said << "\n" << ran.said;
        EXPECT_EQ(content("old.cvo"), "old");
    }
}

// The head says what was read, and not by which path.
TEST_F(Mkcvo, TheSameSourcesGiveTheSameBytes) {
    const std::string here = fs::current_path().string();
    const std::string first = object({"-tloc", "-L.", "./from", "./to"});
    EXPECT_EQ(object({"-t", here + "/loc", here + "/from", here + "/to"}), first);
    for (const char *source : {"to", "loc"}) {
        std::ofstream(source, std::ios::app) << "% a comment more\n";
        EXPECT_NE(object({"-tloc", "-L.", "./from", "./to"}), first) << source;
    }
}

TEST_F(Mkcvo, ListingsCompileToTheSameBytes) {
    const std::vector<std::vector<std::string>> objects = {
        {"./from", "./to"},          {"./from", "UCS-4"},
        {"UCS-2", "./to"},           {"ISO-8859-1", "UTF-8"},
        {"SHIFT_JIS", "EUC-JP"},     {"EUC-KR", "shifted:EUC-KR"},
        {"shifted:EUC-KR", "UTF-8"}, {"--near=U+20AC=65", "./from", "./to"},
    };
    for (const auto &words : objects) {
        const std::string compiled = object(words);
        EXPECT_EQ(mkcvo({"-l", "-o", "listing", "x.cvo"}).status, 0) << words[0];
        EXPECT_EQ(mkcvo({"-o", "again.cvo", "listing"}).status, 0) << words[0];
        EXPECT_EQ(content("again.cvo") == compiled, true) << words[0] << words[1];
    }
}

TEST_F(Mkcvo, ListingsNeedRowsAndAreMeasuredByThem) {
    const std::string head = "conversion_listing 1\nstates 0 0\nshifts - - - -\n";
    std::ofstream("none") << head << "normal 61 00\nend\n";
    EXPECT_NE(mkcvo({"-o", "old.cvo", "none"}).said.find("none:5:4: error: no row has a target"),
              std::string::npos);
    std::ofstream("some") << head << "normal 4142 13 616263\nnormal 43 11 63\nend\n";
    loaded_object loaded(object({"some"}));
    EXPECT_EQ(std::tie(loaded.cv->source_min_len, loaded.cv->source_max_len,
                       loaded.cv->target_min_len, loaded.cv->target_max_len, loaded.cv->expansion),
              std::make_tuple(1, 2, 1, 3, 1.5F));
    std::ofstream("other.cvo") << object_lines{
        .expansion = "9.0",
        .normal = {{"A", "\x11z"}}}.text();
    const outcome other = mkcvo({"-l", "-o", "listing", "other.cvo"});
    EXPECT_EQ(other.status, 1);
    EXPECT_NE(other.said.find("not to the same bytes"), std::string::npos);
    EXPECT_EQ(mkcvo({"-o", "again.cvo", "listing"}).status, 0);
}

TEST_F(Mkcvo, ListingsAreCheckedLineByLine) {
    object({"./other", "./other"});
    mkcvo({"-l", "-o", "listing", "x.cvo"});
    const std::string good = content("listing");
    const struct {
        const char *from, *to, *said;
    } rows[] = {
        {"states 0", "states 2", "bad:5:8: error: expected a number from 0 to 1"},
        {"states 0 0", "states 0 0\nstates 0 0", "bad:6:1: error: a second states line"},
        {"normal 61 11 61", "shifted 61 11 61", ": error: there is no shifted state"},
        {"normal 61 11 61", "normal 61 11 61\nnormal 61 12 6161",
         ": error: a second meaning of 61"},
        {"normal 61 11 61", "normal 61 11 61\nnormal 6161 11 62",
         ": error: these bytes begin with those"},
        {"shifts - - - -\n", "", ": error: the shifts line is missing"},
        {"\nend", "", ": error: the listing is cut: its last line is not end"},
        {"\nend", "\nend\nnormal 61 11 61", ": error: unexpected line after end"},
        {"normal 61", "normal 6", "expected one to four bytes"},
        {"normal 61", "normal 6x", "expected one to four bytes"},
        {"normal 61", "normal -", "expected one to four bytes"},
        {"11 61", "12 61", "the control byte counts other target bytes"},
        {"11 61", "11 61 62", "unexpected words at the end of the line"},
        {"normal", "norml", "unknown keyword norml"},
    };
    for (const auto &row : rows) {
        std::string bad = good;
        ASSERT_NE(bad.find(row.from), std::string::npos) << good;
        bad.replace(bad.find(row.from), strlen(row.from), row.to);
        std::ofstream("bad") << bad;
        const outcome ran = mkcvo({"-o", "old.cvo", "bad"});
        EXPECT_EQ(ran.status, 4) << row.to;
        EXPECT_NE(ran.said.find(row.said), std::string::npos) << ran.said;
        EXPECT_EQ(ran.said.find("bad:"), 0u) << ran.said;
    }
}

// The C library's conversion of a text; empty when it fails.
std::string by_c_library(const char *from, const char *to, std::string text) {
    iconv_t cd = iconv_open(to, from);
    char *source = text.data();
    size_t length = text.size();
    std::string out(8 * text.size() + 16, '\0');
    char *target = out.data();
    size_t room = out.size();
    const bool whole = iconv(cd, &source, &length, &target, &room) == 0;
    iconv(cd, nullptr, nullptr, &target, &room);
    iconv_close(cd);
    out.resize(whole ? out.size() - room : 0);
    return out;
}

std::vector<std::string> korean_characters() {
    std::vector<std::string> found;
    for (int b = 0; b < 0x80; ++b)
        found.emplace_back(1, static_cast<char>(b));
    for (int b = 0xa1; b < 0xff; ++b)
        for (int c = 0xa1; c < 0xff; ++c) {
            const std::string two{static_cast<char>(b), static_cast<char>(c)};
            if (!by_c_library("EUC-KR", "UTF-8", two).empty())
                found.push_back(two);
        }
    return found;
}

TEST_F(Mkcvo, WideFormsAreThoseOfTheCLibrary) {
    const std::vector<std::string> characters = korean_characters();
    EXPECT_GT(characters.size(), 8300u);
    for (const auto &[form, peer] : {std::pair("UCS-2", "UTF-16LE"), {"UCS-4", "UTF-32LE"}}) {
        loaded_object there(object({"EUC-KR", form}));
        loaded_object back(object({form, "EUC-KR"}));
        for (const std::string &character : characters) {
            const std::string wide = by_c_library("EUC-KR", peer, character);
            EXPECT_EQ(convert(there.cv, character, 8).text, wide) << form;
            EXPECT_EQ(convert(back.cv, wide, 8).text, character) << form;
        }
    }
}

// A table cannot hold a character that begins with another one's bytes; it can be written, though.
TEST_F(Mkcvo, ACharacterThatBeginsWithAnotherIsLostAsASource) {
    loaded_object there(object({"TCVN5712-1", "UTF-8"}));
    EXPECT_EQ(convert(there.cv, "Ti\xd5ng", 16).text, "Ti\xe1\xba\xbfng");
    EXPECT_EQ(convert(there.cv, "c\xb3", 16).text, "c\xcc\x81") << "a letter and an accent";
    loaded_object back(object({"./to", "./prefix"}));
    EXPECT_EQ(convert(back.cv, "ab", 8).text, "AAB");
}

TEST_F(Mkcvo, ATwoWayRowGoesBeforeAOneWayRowOfTheSameBytes) {
    for (const char *rows : {"%IRREVERSIBLE%<U0042> /x80 B\n<U0041> /x80 A\n",
                             "<U0041> /x80 A\n%IRREVERSIBLE%<U0042> /x80 B\n"}) {
        std::ofstream("both") << charmap_text(rows);
        loaded_object loaded(object({"./both", "./to"}));
        EXPECT_EQ(convert(loaded.cv, "\x80", 8).text, "a") << rows;
    }
}

TEST_F(Mkcvo, AByteTableNeedsEveryByte) {
    std::string rows;
    for (unsigned byte = 1; byte < 256; ++byte) {
        char row[32];
        snprintf(row, sizeof row, "<U%04X> /x%02x\n", byte, byte);
        rows += row;
    }
    std::ofstream("all") << charmap_text(rows);
    std::ofstream("most") << charmap_text(rows.substr(rows.find('\n') + 1));
    EXPECT_EQ(loaded_object(object({"./all", "./all"})).cv->no_sb_table, 0);
    EXPECT_EQ(loaded_object(object({"./most", "./most"})).cv->no_sb_table, 1);
    EXPECT_EQ(loaded_object(object({"./all", "./most"})).cv->no_sb_table, 1);
}

TEST_F(Mkcvo, TwoByteFormHasNothingBeyondSixteenBits) {
    std::ofstream("wide") << charmap_text(
        "<U00010400> /x41 deseret\n<U0041> /x61 A\n<UFFFF> /x62\n");
    const outcome there = mkcvo({"-o", "x.cvo", "./wide", "UCS-2"});
    EXPECT_EQ(there.status, 1);
    EXPECT_NE(there.said.find("U+10400 has no counterpart in UCS-2"), std::string::npos);
    loaded_object loaded(content("x.cvo"));
    EXPECT_EQ(convert(loaded.cv, "abA", 8), (conversion_result{-1, 1, "A\0\xff\xff"s, 2, 4, 0}));
    const outcome back = mkcvo({"-o", "x.cvo", "UCS-2", "./wide"});
    EXPECT_EQ(back.status, 1);
    EXPECT_NE(back.said.find("1 characters of ./wide lie beyond U+FFFF"), std::string::npos);
}

// The shifted form is that of ISO-2022-KR, which in addition begins with the sequence that
// designates its only second set.
TEST_F(Mkcvo, ShiftedFormIsThatOfTheCLibrary) {
    const std::string header = "\x1b$)C";
    loaded_object there(object({"EUC-KR", "shifted:EUC-KR"}));
    loaded_object back(object({"shifted:EUC-KR", "EUC-KR"}));
    ASSERT_EQ(there.result + back.result, 0);
    unsigned mix = 1;
    std::string text;
    for (const std::string &character : korean_characters()) {
        if (character.size() == 1 && static_cast<unsigned char>(character[0]) < 0x20)
            continue; // the shifts themselves, and the escape of the header
        mix = mix * 1103515245u + 12345u;
        text += character + (mix >> 16 & 1 ? "z" : "");
        const std::string peer = by_c_library("EUC-KR", "ISO-2022-KR", character);
        EXPECT_EQ(header + convert(there.cv, character, 16).text, peer);
    }
    const std::string shifted = convert(there.cv, text).text;
    EXPECT_EQ(header + shifted, by_c_library("EUC-KR", "ISO-2022-KR", text));
    EXPECT_EQ(convert(back.cv, shifted).text, text);
    EXPECT_LE(shifted.size(),
              static_cast<size_t>(gl_cv_outbuflen(there.cv, static_cast<int32_t>(text.size()))));
    EXPECT_LE(convert(there.cv, "\xb0\xa1").text.size(),
              static_cast<size_t>(gl_cv_outbuflen(there.cv, 2)));
}

TEST_F(Mkcvo, ShiftedFormHoldsWhatOneStateCanWrite) {
    std::ofstream("mixed") << charmap_text("<UAC00> /x81 ga\n<UAC00><U0041> /x82 ga, A\n"
                                           "<U0041><U0042> /x83 A, B\n<U0041> /x84 A\n");
    loaded_object there(object({"./mixed", "shifted:EUC-KR"}));
    EXPECT_EQ(convert(there.cv, "\x81\x83", 16).text, "\x0e\x30\x21\x0f"
                                                      "AB");
    EXPECT_EQ(convert(there.cv, "\x82", 16).result, -1) << "its bytes are of two states";
    EXPECT_EQ(there.cv->expansion, 4.0F) << "one byte becomes two with a shift on either side";
    std::ofstream("edge") << charmap_text("<U007F> /x7f\n<U0080> /x80\n");
    loaded_object back(object({"shifted:./edge", "./edge"}));
    EXPECT_EQ(convert(back.cv, "\x7f", 8).text, "\x7f");
    EXPECT_EQ(convert(back.cv, "\x80", 8).result, -1);
}

TEST_F(Mkcvo, ShiftSequencesAreTheOptions) {
    loaded_object loaded(
        object({"--shift-in=1b284a", "--shift-out=1b2842", "EUC-KR", "shifted:EUC-KR"}));
    EXPECT_EQ(convert(loaded.cv, "A\xb0\xa1").text, "A\x1b(J0!\x1b(B");
}

} // namespace
