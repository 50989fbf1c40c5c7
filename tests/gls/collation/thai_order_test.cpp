// The Thai method, against words worked by hand. A1 and A2 are consonants, D2 a vowel that is
// written after its consonant, E0 and E1 vowels that are written before it, E8 and E9 tones.

#include "gls/locale_texts.h"
#include <kestrion/char_convert.h>
#include <kestrion/collation.h>
#include <kestrion/sort_key.h>
#include <kestrion/thai_order.h>

namespace {

object_text thai_object(const code_set &set) {
    object_text object = object_of(set);
    object.sections[1] = "thai_smo\n";
    return object;
}

int32_t size_of(const std::string &text) { return static_cast<int32_t>(text.size()); }

int sign(int32_t number) { return number < 0 ? -1 : number > 0; }

TEST(ThaiOrder, Keys) {
    const code_set set = latin1();
    const loaded lc(set, thai_object(set));
    const struct {
        const char *text;
        std::string key;
    } rows[] = {
        {"", ""},
        {"\xa1\xd2", "\xa1\xd2"},
        {"\xe0\xa1\xa7", "\xa1\xe0\xa7"},     // the vowel goes after its consonant
        {"\xa1\xe8\xd2", "\xa1\xd2\x02\x8f"}, // the tone goes to the end, after position 2
        {"\xa1\xe9\xd2", "\xa1\xd2\x02\x90"},
        {"\xe8", "\x01\x8f"},
        {"\xe0", "\xe0"},                             // a vowel with nothing to follow
        {"\xe0\xe1", "\xe1\xe0"},                     // two vowels: the second goes first
        {"\xe0\xe1\xa1\xe8", "\xe1\xe0\xa1\x05\x8f"}, // positions: 1, +1, +2, +1
        {"\xe0\xa1\xe8\xa7\xe7", "\xa1\xe0\xa7\x03\x8f\x04\x8e"},
        {"ab \xee", "ab \x04\x95"},
        {"\xd1\xef\xe7", "\xd1\xef\x03\x8e"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        std::string text = row.text, key(row.key.size() + 1, '?');
        EXPECT_EQ(lc.lc->mbsxfrm_fn(lc, text.data(), key.data(), size_of(key)), size_of(row.key));
        EXPECT_EQ(key, row.key + '\0');
        EXPECT_EQ(text, row.text) << "the first text is the source";
        EXPECT_EQ(gl_full_mbsxfrm(lc, nullptr, row.text, 0), size_of(row.key));
        std::string by_wide(row.key.size() + 1, '?');
        EXPECT_EQ(gl_full_mbsxfrm(lc, by_wide.data(), row.text, size_of(by_wide)),
                  size_of(row.key));
        EXPECT_EQ(by_wide, row.key + '\0');
    }
}

TEST(ThaiOrder, AKeyStoresNoMoreThan256Bytes) {
    const code_set set = latin1();
    const loaded lc(set, thai_object(set));
    std::string text(300, '\xa1');
    text += "\xe8";
    std::string key(400, '?');
    EXPECT_EQ(_gl_thaismoxfrm(lc, text.data(), key.data(), 400), 302);
    EXPECT_EQ(key, std::string(256, '\xa1') + std::string(144, '?')) << "and no terminator then";
    EXPECT_EQ(_gl_thaismoxfrm(lc, text.data(), key.data(), 10), 302);
    text = std::string(255, '\xa1') + "\xe8"; // position 256 is the byte 0
    EXPECT_EQ(_gl_thaismoxfrm(lc, text.data(), key.data(), 400), 257);
    EXPECT_EQ(key.substr(250, 7), std::string("\xa1\xa1\xa1\xa1\xa1\0?", 7));
}

// Thirty words in order; those on a line are equal.
const std::vector<std::vector<const char *>> words = {
    {"", " ", "  "},      {"  a"},
    {"a", "a "},          {"\xa1", "\xa1 ", "\xa1  "},
    {"\xa1\xe8"},         {"\xa1\xe9"},
    {"\xa1\xa1"},         {"\xa1\xa1\xe8"},
    {"\xa1\xe8\xa1\xe8"}, {"\xa1\xe9\xa1"},
    {"\xa1\xa2"},         {"\xa1\xd2", "\xa1\xd2 "},
    {"\xa1\xe8\xd2"},     {"\xa1\xe9\xd2"},
    {"\xa1\xd2\xa1"},     {"\xa1\xd2\xa7"},
    {"\xe0\xa1\xa7"},     {"\xe0\xa1\xe8\xa7"},
    {"\xe1\xa1\xa7"},     {"\xa2"},
    {"\xa2\xe8"},         {"\xa2\xd2"},
    {"\xe0\xa2\xa7"},     {"\xe1\xa2"},
};

TEST(ThaiOrder, WordsOrderAsInADictionary) {
    const code_set set = latin1();
    const loaded lc(set, thai_object(set));
    EXPECT_EQ(lc.lc->mbfscoll_fn, _qvt_gl_thaismoncoll);
    EXPECT_EQ(lc.lc->mbscoll_fn, _gl_thaismocoll);
    size_t count = 0;
    for (size_t i = 0; i < words.size(); ++i)
        for (const char *a : words[i]) {
            ++count;
            for (size_t k = 0; k < words.size(); ++k)
                for (const char *b : words[k]) {
                    const int wanted = i < k ? -1 : i > k;
                    SCOPED_TRACE(testing::PrintToString(a) + " and " + testing::PrintToString(b));
                    EXPECT_EQ(sign(_gl_thaismocoll(lc, a, b)), wanted);
                    guarded_bytes first(a), second(b);
                    EXPECT_EQ(sign(_qvt_gl_thaismoncoll(lc, first.data(), size_of(a), second.data(),
                                                        size_of(b))),
                              wanted);
                    gl_wchar wide[2][8] = {};
                    _gl_is_mbstowcs(lc, wide[0], a, 8);
                    _gl_is_mbstowcs(lc, wide[1], b, 8);
                    EXPECT_EQ(sign(gl_full_wcscoll(lc, wide[0], wide[1])), wanted);
                }
        }
    EXPECT_GE(count, 30u);
}

// Where the comparison stops being an order of words it still does what it says: these are the
// steps that no pair of plain words meets.
TEST(ThaiOrder, OddPairs) {
    const code_set set = latin1();
    const loaded lc(set, thai_object(set));
    const struct {
        const char *a;
        const char *b;
        int32_t result;
    } rows[] = {
        {"\xe8", "", 1},              // a tone against the end
        {"\xe8", "\xe9", -1},         // two tones: their difference
        {"\xe8\xe8", "\xe9\xe7", -1}, // the first difference of tones stays
        {"\xe0", "\xa1", -1},         // nothing follows the vowel
        {"\xe0\xa1", "\xa1", 1},      // the vowel's consonant is that of the other text
        {"\xa1", "\xe0\xa1", -1},
        {"\xe0\xa5", "\xa1", 4}, // it is another one
        {"\xa1", "\xe0\xa5", -4},
        {"\xa1", "\xe0", 1},
        {"\xe0\xa1", "\xe1\xa1", -1}, // the vowels alone differ
        {"\xe4\xa1", "\xe0\xa5", -4}, // the consonants count first
        {"\xe0", "\xe1\xa1", -1},
        {"\xe1\xa1", "\xe0", 1},
        {"\xe0", "\xe1", -1},
        {"a  ", "a b", ' ' - 'b'}, // a blank at the end against one inside
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.a) + " and " + testing::PrintToString(row.b));
        EXPECT_EQ(_gl_thaismocoll(lc, row.a, row.b), row.result);
    }
    EXPECT_EQ(_qvt_gl_thaismoncoll(lc, "a", -1, "b", 1), 0);
    EXPECT_EQ(lc.error(), GLS_ERR_ONE_LENGTH);
    EXPECT_EQ(_gl_thaismocoll(lc, "a", nullptr), 0);
    EXPECT_EQ(lc.error(), GLS_ERR_NULL_ARGUMENT);
}

} // namespace
