// Operations on characters, held against plain sets of characters.

#include "gls/locale_texts.h"
#include <kestrion/categories.h>
#include <kestrion/char_case.h>
#include <kestrion/char_class.h>
#include <kestrion/char_convert.h>
#include <kestrion/char_length.h>
#include <kestrion/char_width.h>
#include <kestrion/gls_errors.h>

#include <ctype.h>
#include <random>

namespace {

std::string hex(std::string_view bytes) {
    std::string text;
    for (char byte : bytes)
        text += hex_text(static_cast<unsigned char>(byte), 2);
    return text;
}

// Random text: characters of the set, and now and then a stray byte.
std::string random_text(const code_set &set, std::mt19937 &random, size_t characters, bool stray) {
    std::vector<std::string> all;
    for (const auto &[bytes, facts] : set.characters)
        if (packed(bytes) != 0)
            all.push_back(bytes);
    std::string text;
    for (size_t i = 0; i < characters; ++i)
        if (stray && random() % 8 == 0)
            text += static_cast<char>(1 + random() % 255);
        else if (random() % 2)
            text += all[random() % all.size()];
        else // runs of single bytes
            text += set.first_length("Mixed Case") ? std::string("aZ").substr(random() % 2, 1)
                                                   : all[random() % all.size()];
    return text;
}

TEST(NullLocale, AnswersLikeTheCLibraryForAscii) {
    struct {
        const char *name;
        int (*is)(int);
    } const classes[] = {{"upper", isupper}, {"lower", islower},   {"alpha", isalpha},
                         {"digit", isdigit}, {"alnum", isalnum},   {"space", isspace},
                         {"cntrl", iscntrl}, {"punct", ispunct},   {"graph", isgraph},
                         {"print", isprint}, {"xdigit", isxdigit}, {"blank", isblank}};
    for (gl_wchar c = 0; c < 256; ++c) {
        int byte = static_cast<int>(c);
        for (const auto &row : classes)
            EXPECT_EQ(_gl_im_iswctype(nullptr, c, gl_ctype(nullptr, row.name)) != 0,
                      row.is(byte) != 0)
                << row.name << " of " << c;
        EXPECT_EQ(_gl_im_towupper(nullptr, c), static_cast<gl_wchar>(toupper(byte)));
        EXPECT_EQ(_gl_im_towlower(nullptr, c), static_cast<gl_wchar>(tolower(byte)));
        EXPECT_EQ(gl_wcwidth(nullptr, c), c == 0 ? 0 : isprint(byte) ? 1 : -1);
    }
    char text[20];
    EXPECT_EQ(gl_tombsupper(nullptr, text, "caf\xe9 7"), 6);
    EXPECT_STREQ(text, "CAF\xe9 7");
    EXPECT_EQ(gl_mbsbytes(nullptr, "abc"), 4);
    EXPECT_EQ(_gl_im_mbslen(nullptr, "abc"), 3);
    EXPECT_EQ(gl_mb_loc_max(nullptr), 1);
}

TEST(EmptyLocale, HasNoCharacters) {
    locale_rec *lc;
    gl_wchar wide[4];
    char text[8] = "abc";
    ASSERT_EQ(gl_create_null_locale_4(&lc), 0);
    EXPECT_EQ(gl_mb_loc_max(lc), 0);
    EXPECT_EQ(gl_mb_loc_min(lc), 4);
    EXPECT_EQ(gl_full_mbtowc(lc, wide, "abc", 3), -1);
    EXPECT_EQ(gl_mbsterm(lc, text), 4);
    EXPECT_EQ(_gl_im_mbstowcs(lc, wide, "a\0\0\0", 4), -1);
    EXPECT_EQ(_gl_im_towupper(lc, 'a'), 'a');
    EXPECT_EQ(lc->err, GLS_ERR_BAD_CHARACTER);
    gl_lc_unload(lc);
}

TEST(CharClass, NamesAreLookedUpInTheirOrder) {
    loaded lc(two_byte());
    EXPECT_EQ(gl_ctype(lc, "alnum"), 12u);
    EXPECT_EQ(gl_ctype(lc, "alpha "), 0u);
    EXPECT_EQ(gl_ctype(lc, "full_width"), 2048u);
    EXPECT_EQ(gl_ctype(lc, "fancy"), 4096u);
    EXPECT_EQ(gl_ctype(lc, "beyond"), 0u) << "no mask holds bit 25";
    EXPECT_EQ(gl_ctype(lc, ""), 0u);
}

TEST(Decoding, LimitsAndErrors) {
    loaded lc(four_byte());
    struct {
        const char *text;
        int32_t limit, length;
        gl_wchar wide;
        int32_t error;
    } const cases[] = {
        {"A", 1, 1, 'A', 0},
        {"\xe2\xb1\xa5", 3, 3, 0xe2b1a5, 0},
        {"\xf0\x9f\x98\x80", 9, 4, 0xf09f9880, 0},
        {"\xe2\xb1\xa5", 2, -1, 0, GLS_ERR_SPECIFIER}, // cut off
        {"\xe2\xb1", 3, -1, 0, GLS_ERR_BAD_CHARACTER}, // the terminator is not a trail byte
        {"\xff", 1, -1, 0, GLS_ERR_BAD_CHARACTER},
        {"A", 0, -1, 0, GLS_ERR_SPECIFIER},
        {"A", -1, -1, 0, GLS_ERR_SPECIFIER},
        {"", 1, 0, 0, 0},
    };
    for (const auto &c : cases) {
        gl_wchar wide = 0;
        SCOPED_TRACE(hex(c.text) + " limit " + std::to_string(c.limit));
        EXPECT_EQ(gl_full_mbtowc(lc, &wide, c.text, c.limit), c.length);
        EXPECT_EQ(lc.error(), c.error);
        EXPECT_EQ(wide, c.wide);
        EXPECT_EQ(gl_full_mblen(lc, c.text, c.limit), c.length);
        EXPECT_EQ(lc.error(), c.error);
    }
    gl_wchar wide;
    uint32_t mask = 77;
    EXPECT_EQ(_qvt_gl_full_mblen(lc, "", 1), 1) << "the zero character has its length here";
    EXPECT_EQ(_qvt_gl_full_mbtowc(lc, &wide, "\xc3\x89x", -1), 2);
    EXPECT_EQ(_qvt_gl_full_mbtowc(lc, &wide, "", -1), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_SPECIFIER);
    EXPECT_EQ(_qvt_gl_full_mbtowc(lc, &wide, "a\xff", -1), -1) << "the whole text is measured";
    EXPECT_EQ(lc.error(), GLS_ERR_BAD_CHARACTER);
    EXPECT_EQ(_qvt_gl_full_mbtowc(lc, &wide, nullptr, -1), 0);
    EXPECT_EQ(_qvt_gl_full_mbdescribe(lc, &wide, "\xc3\x89x", &mask, CT_UPPER | CT_DIGIT, 2), 2);
    EXPECT_EQ(mask, CT_UPPER);
    EXPECT_EQ(_qvt_gl_full_mbdescribe(lc, &wide, "\xc3", &mask, CT_UPPER, 1), -1);
    EXPECT_EQ(mask, 0u);
}

// Every operation that decodes, on random texts good and bad that end at an unreadable page.
TEST(Decoding, AgreesWithThePlainSetOnRandomText) {
    unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (const code_set &set : {latin1(), two_byte(), four_byte()}) {
        loaded lc(set);
        mbl_state walk;
        ASSERT_EQ(_qvt_gl_getmbl(lc, &walk), 0);
        for (int round = 0; round < 3000; ++round) {
            std::string text = random_text(set, random, random() % 6, true);
            guarded_bytes guarded(text + '\0');
            std::string_view left = text;
            bool valid = true;
            int32_t characters = 0;
            while (valid && !left.empty()) {
                const char *at = guarded.data() + (text.size() - left.size());
                int32_t length = static_cast<int32_t>(set.first_length(left));
                int32_t wanted = length == 0 ? -1 : length;
                SCOPED_TRACE(set.name + ": " + hex(left));
                EXPECT_EQ(_qvt_gl_fast_mblen(&walk, at), wanted);
                EXPECT_EQ(gl_full_mblen(lc, at, static_cast<int32_t>(left.size())), wanted);
                gl_wchar wide = 0, swift = 0;
                gl_full_mbtowc(lc, &wide, at, static_cast<int32_t>(left.size()) + 1);
                EXPECT_EQ(_qvt_gl_full_mbtowc(lc, &swift, at, 4), wanted) << "not after the zero";
                EXPECT_EQ(swift, wide);
                std::string first(left.substr(0, static_cast<size_t>(length)));
                EXPECT_EQ(wide, packed(first));
                uint16_t mask = length ? set.characters.at(first).mask : 0;
                EXPECT_EQ(_gl_im_ismctype(lc, at, 0xffff), mask);
                EXPECT_EQ(gl_full_mbsnext(lc, at), length ? at + length : nullptr);
                if (length) {
                    EXPECT_EQ(_gl_im_iswctype(lc, wide, 0xffff), mask);
                }
                valid = length != 0;
                characters += valid;
                left.remove_prefix(static_cast<size_t>(length));
            }
            EXPECT_EQ(_gl_im_mbslen(lc, guarded.data()), valid ? characters : -1);
            bool all_bytes = lc.lc->is_single_byte;
            EXPECT_EQ(gl_mbsbytes(lc, guarded.data()),
                      valid || all_bytes ? static_cast<int32_t>(text.size()) + 1 : 0);
            EXPECT_EQ(_qvt_gl_im_mbfslen(lc, guarded.data(), static_cast<int32_t>(text.size())),
                      valid ? characters : -1);
        }
    }
}

TEST(WideText, CountsFollowTheirFormulas) {
    loaded lc(two_byte());
    gl_wchar wide[12];
    EXPECT_EQ(_qvt_gl_im_mbfstowcfs(lc, wide, "0123456789", 10, 3), 4) << "filled: size + 1";
    EXPECT_EQ(_qvt_gl_im_mbfstowcfs(lc, wide, "0123456789", 10, 10), 10);
    EXPECT_EQ(_qvt_gl_im_mbfstowcfs(lc, wide, "0\xa1\xa2z", 4, 12), 3);
    EXPECT_EQ(wide[1], 0xa1a2u);
    EXPECT_EQ(_qvt_gl_im_mbfstowcfs(lc, wide, "01", 2, 0), 1);
    EXPECT_EQ(_qvt_gl_im_mbfstowcfs(lc, wide, "01", 0, 0), 1);
    EXPECT_EQ(_qvt_gl_im_mbfstowcfs(lc, wide, "01", 0, 5), 0);
    EXPECT_EQ(_gl_im_mbstowcs(lc, wide, "01", 0), 0);
    EXPECT_EQ(_gl_im_mbstowcs(lc, wide, "01", 2), 2);
    wide[2] = 7;
    EXPECT_EQ(_gl_im_mbstowcs(lc, wide, "01", 3), 2);
    EXPECT_EQ(wide[2], 0u) << "the zero is stored and not counted";
    EXPECT_EQ(_qvt_gl_im_mbfstowcfs(lc, wide, "0\xa1", 2, 5), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_BAD_CHARACTER) << "not the error of a limit";

    wide[2] = 7;
    EXPECT_EQ(_gl_is_mbstowcs(nullptr, wide, "\xff\x41", 3), 2);
    EXPECT_EQ(wide[0], 0xffu);
    EXPECT_EQ(wide[2], 0u);
    EXPECT_EQ(_gl_is_mbstowcs(nullptr, wide, "abc", 2), 2);
    wide[2] = 7;
    EXPECT_EQ(_qvt_gl_is_mbfstowcfs(nullptr, wide, "a\0b", 3, 9), 3) << "zero bytes count";
    EXPECT_EQ(wide[1], 0u);
    EXPECT_EQ(_qvt_gl_is_mbfstowcfs(nullptr, wide, "a", 1, 0), 0);
}

TEST(WideText, BackToBytesKeepsWithinTheRoom) {
    loaded lc(two_byte());
    const gl_wchar text[] = {'a', 0xa1a2, 'b', 0};
    char out[8];
    struct {
        int32_t length, size, result;
        const char *bytes; // X marks a byte that must stay
    } const cases[] = {
        {-1, 5, 4,
         "a\xa1\xa2"
         "b"}, // with a terminator
        {-1, 4, 4,
         "a\xa1\xa2"
         "bX"},           // no room for one, and no error
        {-1, 2, 1, "aX"}, // the second character does not fit
        {2, 8, 3, "a\xa1\xa2X"},
        {0, 8, 1, "aX"}, // one element all the same
        {-1, 0, 0, "X"},
    };
    for (const auto &c : cases) {
        memset(out, 'X', sizeof out);
        EXPECT_EQ(_qvt_gl_full_wcstombs(lc, out, text, c.length, c.size), c.result);
        EXPECT_EQ(memcmp(out, c.bytes, strlen(c.bytes)), 0) << c.length << ", " << c.size;
        EXPECT_EQ(out[c.result], c.result < c.size && c.length < 0 && c.result == 4 ? 0 : 'X');
    }
    const gl_wchar bad[] = {'a', 0x141, 0};
    EXPECT_EQ(gl_full_wcstombs(lc, out, bad, 8), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_BAD_CHARACTER);
    loaded narrow(latin1());
    EXPECT_EQ(gl_full_wcstombs(narrow, out, bad, 8), 2) << "the low byte is stored untested";
    EXPECT_STREQ(out, "aA");
    EXPECT_EQ(_gl_is_wcstombs(narrow, out, bad, 8), -1);
    EXPECT_EQ(_qvt_gl_is_wcstombs(narrow, out, text, 0, 8), 1);
    EXPECT_EQ(_gl_is_wcstombs(narrow, out, text, 0), 0);
    EXPECT_EQ(gl_wclen(lc, 0xa1a2), 2);
    EXPECT_EQ(gl_wclen(lc, 0x141), -1);
    EXPECT_EQ(gl_wclen(narrow, 0x141), 1);
    EXPECT_EQ(gl_wcsbytes(lc, text), 16);
}

TEST(WideUnits, CharactersAndTerminatorsKeepTheirWidth) {
    loaded lc(wide_units(), wide_unit_object());
    char out[4] = {1, 1, 1, 1};
    EXPECT_EQ(gl_full_wctomb(lc, out, 0x41), 2);
    EXPECT_EQ(memcmp(out, "\0A\1", 3), 0);
    EXPECT_EQ(gl_mbsterm(lc, out), 2);
    EXPECT_EQ(gl_full_mblen(lc, "\0\0", 2), 0);
    gl_wchar wide = 1;
    EXPECT_EQ(_qvt_gl_full_mbtowc(lc, &wide, "\0\0\0", 4), 0);
    EXPECT_EQ(wide, 0u);
    EXPECT_EQ(_qvt_gl_full_mblen(lc, "\0\0", 2), 2);
    EXPECT_EQ(gl_mbsbytes(lc, "\0A\5\0\4\x10\0\0"), 8) << "a zero byte inside ends nothing";
    EXPECT_EQ(gl_ismbsterm(lc, "\0A"), 0);
    EXPECT_EQ(lc.lc->numeric_cat.wide_decimal_point[0], '.');
    // A character that is open before the terminator does not swallow it.
    guarded_bytes cut(std::string("\0A\xd8\1\0\0", 6));
    EXPECT_EQ(_gl_im_mbslen(lc, cut.data()), -1);
    EXPECT_EQ(_gl_im_mbslen(lc, "\xd8\1\xdc\1\0\0"), 1);
    char upper[8];
    EXPECT_EQ(gl_tombsupper(lc, upper, "\0a\4\x30\0\0"), 4);
    EXPECT_EQ(memcmp(upper, "\0A\4\x10\0\0", 6), 0);
    mbl_state walk;
    _qvt_gl_getmbl(lc, &walk);
    EXPECT_EQ(_qvt_gl_fast_mblen(&walk, "\0A\0"), 2);
    EXPECT_EQ(_qvt_gl_fast_mblen(&walk, "\0\0"), 0);
}

TEST(CharCase, OneCharacterReportsWhatItReadAndWrote) {
    loaded lc(four_byte());
    struct {
        const char *text;
        bool upper;
        int32_t result;
        const char *written;
        int32_t error;
    } const cases[] = {
        {"a", true, 0x101, "A", 0},
        {"\xc3\xa9", true, 0x202, "\xc3\x89", 0},
        {"\xe2\xb1\xa5", true, 0x302, "\xc8\xba", 0},
        {"\xc8\xba", false, 0x203, "\xe2\xb1\xa5", 0},
        {"\xc4\xb1", true, 0x201, "I", 0},
        {"\xc4\xb1", false, 0x202, "\xc4\xb1", 0},
        {"\xff"
         "a",
         true, 0x101, "\xff", GLS_ERR_BAD_CHARACTER},
        {"\xe2\xff"
         "a",
         true, 0x202, "\xe2\xff", GLS_ERR_BAD_CHARACTER},
        {"\xe2", true, 0x101, "\xe2", GLS_ERR_BAD_CHARACTER}, // not the terminator as well
    };
    for (const auto &c : cases) {
        char out[8] = {};
        SCOPED_TRACE(hex(c.text));
        EXPECT_EQ(c.upper ? _gl_im_tomupper(lc, out, c.text) : _gl_im_tomlower(lc, out, c.text),
                  c.result);
        EXPECT_STREQ(out, c.written);
        EXPECT_EQ(lc.error(), c.error);
    }
    char out[8] = "X";
    EXPECT_EQ(_qvt_gl_im_tomupper(lc, out, "\xff", 1), 0);
    EXPECT_EQ(lc.error(), GLS_ERR_BAD_CHARACTER);
    EXPECT_EQ(_qvt_gl_im_tomupper(lc, out, "\xc3\xa9", 1), 0);
    EXPECT_EQ(lc.error(), GLS_ERR_SPECIFIER);
    EXPECT_STREQ(out, "X");
    EXPECT_EQ(_qvt_gl_im_tomlower(lc, out, "\xc3\x89", 2), 0x202);
    EXPECT_EQ(_gl_im_towlower(lc, 0xc8ba), 0xe2b1a5u);
}

// The wide forms take the case of short characters from a list of their own. The byte forms do not.
TEST(CharCase, ShortWideCharactersAreTheirBytes) {
    loaded lc(four_byte());
    for (gl_wchar wide = 1; wide < 0x10000; ++wide) {
        char bytes[8] = {}, upper[8] = {}, lower[8] = {};
        bool known = gl_full_wctomb(lc, bytes, wide) > 0;
        gl_wchar wide_upper = wide, wide_lower = wide;
        if (known) {
            gl_full_mbtowc(lc, &wide_upper, upper, _gl_im_tomupper(lc, upper, bytes) & 0xff);
            gl_full_mbtowc(lc, &wide_lower, lower, _gl_im_tomlower(lc, lower, bytes) & 0xff);
        }
        static_cast<locale_rec *>(lc)->err = 0;
        ASSERT_EQ(_gl_im_towupper(lc, wide), wide_upper) << std::hex << wide;
        ASSERT_EQ(_gl_im_towlower(lc, wide), wide_lower) << std::hex << wide;
        ASSERT_EQ(lc.error(), known ? 0 : GLS_ERR_BAD_CHARACTER) << std::hex << wide;
    }
}

// The whole-text forms run ASCII by the word; here they meet every mixture, in buffers of the size
// that the engine asks for, source and destination each against an unreadable page.
TEST(CharCase, TextsAreTheirCharactersOneByOne) {
    unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (const code_set &set : {latin1(), two_byte(), four_byte()}) {
        loaded lc(set);
        for (int round = 0; round < 2000; ++round) {
            std::string text = random_text(set, random, random() % 40, false);
            bool to_upper = round % 2;
            std::string wanted;
            for (std::string_view left = text; !left.empty();) {
                size_t length = set.first_length(left);
                wanted += set.other_case(std::string(left.substr(0, length)), to_upper);
                left.remove_prefix(length);
            }
            int32_t room = gl_case_conv_outbuflen(lc, static_cast<int32_t>(text.size())) + 1;
            guarded_bytes source(text + '\0');
            guarded_bytes target(std::string(static_cast<size_t>(room), 'X'));
            int32_t written = to_upper ? gl_tombsupper(lc, target.data(), source.data())
                                       : gl_tombslower(lc, target.data(), source.data());
            EXPECT_EQ(hex(target.data()), hex(wanted)) << hex(text);
            EXPECT_EQ(written, static_cast<int32_t>(wanted.size()));

            gl_wchar wide[64];
            std::vector<gl_wchar> wide_wanted(64);
            int32_t count = lc.lc->mbstowcs_fn(lc, wide, text.c_str(), 64);
            ASSERT_EQ(lc.lc->mbstowcs_fn(lc, wide_wanted.data(), wanted.c_str(), 64), count);
            EXPECT_EQ(to_upper ? gl_towcsupper(lc, wide, wide) : gl_towcslower(lc, wide, wide), 0);
            EXPECT_TRUE(std::equal(wide, wide + count + 1, wide_wanted.begin())) << hex(text);
        }
    }
}

TEST(CharCase, CountsEndTextsOnlyAtACharactersEnd) {
    loaded lc(two_byte());
    const char *text = "\xa2\xc1\xa2\xc2"
                       "abcdefghijk";
    char out[32];
    struct {
        int32_t count, written;
    } const cases[] = {
        {0, 0},   {2, 2},   {4, 4},   {5, 5},  {12, 12},
        {15, 15}, {99, 15}, {-1, 15}, {1, 15}, {3, 15}}; // the last two fall inside a character
    for (const auto &c : cases) {
        EXPECT_EQ(_qvt_gl_tombsupper_len(lc, out, text, c.count), c.written) << c.count;
        EXPECT_EQ(strlen(out), static_cast<size_t>(c.written));
        EXPECT_EQ(strncmp(out,
                          "\xa2\xa1\xa2\xa2"
                          "ABCDEFGHIJK",
                          static_cast<size_t>(c.written)),
                  0);
    }
    EXPECT_EQ(_qvt_gl_tombslower_len(lc, out, "AB\xff", 2), 2) << "nothing after the count is read";
    EXPECT_EQ(gl_tombslower(lc, out, "AB\xff"), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_BAD_CHARACTER);
    loaded narrow(latin1());
    EXPECT_EQ(_qvt_gl_tombsupper_len(narrow, out, "abc", 2), 2);
    EXPECT_STREQ(out, "AB");
    const gl_wchar high[] = {0x100, 0};
    gl_wchar wide[2];
    EXPECT_EQ(gl_towcsupper(narrow, wide, high), -1);
}

TEST(CharCase, RoomCoversTheWorstPair) {
    struct {
        const char *growth;
        int32_t length, room;
    } const cases[] = {{"1.0", 10, 20}, // the set has a pair of two and three bytes
                       {"", 10, 40},
                       {"4.0", INT32_MAX, INT32_MAX},
                       {"3", 0, 0}};
    for (const auto &c : cases) {
        code_set set = four_byte();
        set.growth = c.growth;
        loaded lc(set);
        EXPECT_EQ(gl_case_conv_outbuflen(lc, c.length), c.room) << c.growth;
    }
    loaded narrow(latin1());
    EXPECT_EQ(gl_case_conv_outbuflen(narrow, 10), 10);
}

TEST(CharWidth, PrintableCharactersHaveOneColumnOrTwo) {
    loaded lc(two_byte());
    EXPECT_EQ(gl_wcwidth(lc, 'a'), 1);
    EXPECT_EQ(gl_wcwidth(lc, 0xa1a2), 2);
    EXPECT_EQ(gl_wcwidth(lc, 0), 0);
    EXPECT_EQ(gl_wcwidth(lc, 7), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_SPECIFIER);
    EXPECT_EQ(gl_mbwidth(lc, "\x07"), 1) << "unlike the wide form";
    EXPECT_EQ(gl_mbwidth(lc, "\xa3\xa1"), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_SPECIFIER);
    EXPECT_EQ(gl_mbwidth(lc, ""), 0);
    EXPECT_EQ(gl_mbwidth(lc, nullptr), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_NULL_ARGUMENT);

    const gl_wchar wide[] = {'a', 0xa1a2, 'b', 7, 0};
    const char *text = "a\xa1\xa2"
                       "b\x07";
    EXPECT_EQ(gl_wcswidth(lc, wide, 3), 4);
    EXPECT_EQ(gl_mbswidth(lc, text, 3), 4);
    EXPECT_EQ(gl_mbswidth(lc, "ab", 99), 2);
    EXPECT_EQ(gl_wcswidth(lc, wide, 4), -1);
    EXPECT_EQ(gl_mbswidth(lc, text, 4), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_SPECIFIER);
    EXPECT_EQ(gl_wcswidth(lc, wide, -1), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_COUNT);
    EXPECT_EQ(gl_mbspwidth(lc, text, text + 3), 3);
    EXPECT_EQ(gl_mbspwidth(lc, text + 1, text), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_END_BEFORE_START);
    const char *bad = "\xff";
    EXPECT_EQ(gl_mbspwidth(lc, bad, bad + 1), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_BAD_CHARACTER) << "what the walk said stays";
    EXPECT_EQ(gl_wcspwidth(lc, wide, wide + 2), 3);
    loaded plain(latin1());
    EXPECT_EQ(gl_wcwidth(plain, 0xe9), 1) << "a locale without the class";
    EXPECT_EQ(gl_wcwidth(plain, 0x1e9), -1);
}

TEST(CharWidth, PrivateCharactersAreLookedUpInTheSitesMap) {
    loaded lc(two_byte());
    temp_dir site;
    site.write("gls/etc/pua.map", "a \xa3\xa2 2\n\xa3\xa3 x\n\xa3\xa4\n 1\n\xa3\xa5");
    unsetenv("KESTRIONDIR");
    EXPECT_EQ(gl_mbwidth_PUA(lc, "\xa3\xa2"), -1);
    setenv("KESTRIONDIR", site.path().c_str(), 1);
    EXPECT_EQ(gl_mbwidth_PUA(lc, "\xa3\xa2"), 2);
    EXPECT_EQ(gl_mbwidth_PUA(lc, "\xa3\xa3"), 1) << "no digit";
    EXPECT_EQ(gl_mbwidth_PUA(lc, "\xa3\xa4"), 1);
    EXPECT_EQ(gl_mbwidth_PUA(lc, "\xa3\xa5"), 1) << "the map ends";
    EXPECT_EQ(gl_mbwidth_PUA(lc, "\xa3\xa6"), -1);
    EXPECT_EQ(gl_mbwidth_PUA(lc, "a"), -1) << "a printable character is not a private one";
    EXPECT_EQ(gl_mbwidth_PUA(lc, ""), -1);
}

TEST(Stepping, BackwardsFromFilesAndOverBlanks) {
    loaded lc(two_byte());
    const char *text = "a\xa1\xa2"
                       "b";
    EXPECT_EQ(gl_full_mbsprev(lc, text, text + 3), text + 1);
    EXPECT_EQ(gl_full_mbsprev(lc, text, text + 1), text);
    EXPECT_EQ(gl_full_mbsprev(lc, text, text), nullptr);
    EXPECT_EQ(gl_full_mbsnext(lc, nullptr), nullptr);
    EXPECT_EQ(lc.error(), GLS_ERR_NULL_ARGUMENT);
    EXPECT_EQ(gl_full_mbsnext(lc, ""), nullptr);
    EXPECT_EQ(lc.error(), 0);

    struct {
        std::string bytes;
        int32_t length, kept;
    } const blanks[] = {{"ab  ", 4, 2},
                        {"a\xa1\xa1 ", 4, 1}, // the wide blank
                        {"  ", 2, 0},
                        {"a \xff"
                         "b",
                         4, 1}, // a break in the text ends the walk
                        {"ab", 2, 2}};
    for (const auto &c : blanks)
        EXPECT_EQ(_qvt_gl_mbsntsbytes(lc, c.bytes.data(), c.length), c.kept) << hex(c.bytes);

    memory_file file("a\xa1\xa2\xa1"
                     "b\xa1");
    char bytes[4];
    EXPECT_EQ(gl_full_fgetmb(lc, bytes, file.file), 1);
    EXPECT_EQ(gl_full_fgetmb(lc, bytes, file.file), 2);
    EXPECT_EQ(gl_full_fgetmb(lc, bytes, file.file), -1) << "two bytes consumed";
    EXPECT_EQ(lc.error(), GLS_ERR_BAD_CHARACTER);
    EXPECT_EQ(gl_full_fgetmb(lc, bytes, file.file), -1) << "cut off by the end of the file";
    EXPECT_EQ(lc.error(), GLS_ERR_BAD_CHARACTER);
    EXPECT_EQ(gl_full_fgetmb(lc, bytes, file.file), -1);
    EXPECT_EQ(lc.error(), GLS_ERR_END_OF_FILE);
}

} // namespace
