// The comparers: against a plain second implementation, against each other, and in the cases that
// each is special in.

#include "gls/collation/order_text.h"
#include <kestrion/code_set_registry.h>
#include <kestrion/collation.h>
#include <kestrion/sort_key.h>

namespace {

int32_t size_of(const std::string &text) { return static_cast<int32_t>(text.size()); }

int sign(int32_t number) { return number < 0 ? -1 : number > 0; }

// A counted comparison at the end of readable memory.
int32_t compare(locale_rec *lc, gl_mbfscoll_fn fn, const std::string &a, const std::string &b) {
    guarded_bytes first(a), second(b);
    return fn(lc, first.data(), size_of(a), second.data(), size_of(b));
}

std::string key_of(locale_rec *lc, const std::string &text) {
    const int32_t length = lc->mbsxfrm_fn(lc, nullptr, text.c_str(), 0);
    std::string key(static_cast<size_t>(length) + 1, '?');
    EXPECT_EQ(lc->mbsxfrm_fn(lc, key.data(), text.c_str(), length + 1), length);
    EXPECT_EQ(key[static_cast<size_t>(length)], '\0');
    key.pop_back();
    return key;
}

class Orders : public testing::Test {
protected:
    void SetUp() override {
        gl_cache_registry(nullptr, "/nonexistent");
        seed = std::random_device{}();
        random.seed(seed);
    }
    // Makes random orders and calls `check` with the loaded locale and pairs of texts.
    template <class Check>
    void each_pair(const std::vector<code_set> &sets, const order_features &with, Check check) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        for (int round = 0; round < 80 && !HasFailure(); ++round) {
            const code_set &set = sets[random() % sets.size()];
            const random_order made = make_random_order(random, set, with);
            const loaded lc(set, made.order.object(set));
            for (int pair = 0; pair < 60 && !HasFailure(); ++pair) {
                const std::string front = made.text(random, random() % 20 == 0 ? 200 : 6);
                const std::string a = front + made.text(random, 5);
                const std::string b = front + made.text(random, 5);
                SCOPED_TRACE(set.name + ": " + testing::PrintToString(a) + " and " +
                             testing::PrintToString(b));
                check(lc.lc, set, made.order, a, b);
            }
        }
    }

    unsigned seed = 0;
    std::mt19937 random;
};

// ---- Against the second implementation

TEST_F(Orders, TheGeneralComparerFollowsTheRules) {
    each_pair(
        {latin1(), two_byte(), four_byte()}, {},
        [](locale_rec *lc, const code_set &set, const plain_order &order, const std::string &a,
           const std::string &b) {
            wide_text wide_a = wide_of(set, a), wide_b = wide_of(set, b);
            const int wanted = plain_compare(order, wide_a, wide_b);
            const int reversed = plain_compare(order, wide_b, wide_a);
            EXPECT_EQ(compare(lc, _qvt_gl_im_mbfscoll, a, b), wanted);
            EXPECT_EQ(compare(lc, _qvt_gl_im_mbfscoll, b, a), reversed);
            EXPECT_EQ(_gl_im_mbscoll(lc, a.c_str(), b.c_str()), wanted);
            for (int32_t levels = 1; levels <= 4; ++levels)
                EXPECT_EQ(
                    qvt_gl_compare_levels(lc, a.data(), size_of(a), b.data(), size_of(b), levels),
                    plain_compare(order, wide_a, wide_b, static_cast<size_t>(levels)));
            const auto a_length = static_cast<int32_t>(wide_a.size());
            const auto b_length = static_cast<int32_t>(wide_b.size());
            wide_a.push_back(0);
            wide_b.push_back(0);
            EXPECT_EQ(_qvt_gl_full_wcscoll(lc, wide_a.data(), a_length, wide_b.data(), b_length),
                      wanted);
            EXPECT_EQ(gl_full_wcscoll(lc, wide_a.data(), wide_b.data()), wanted);
            EXPECT_EQ(lc->err, 0);
        });
}

TEST_F(Orders, KeysFollowTheRulesAndOrderAsTheComparer) {
    each_pair({latin1(), two_byte(), four_byte()}, {.gaps = false},
              [this](locale_rec *lc, const code_set &set, const plain_order &order,
                     const std::string &a, const std::string &b) {
                  const std::string key =
                      a.empty() ? "" : plain_key(order, wide_of(set, a), lc->ctype_cat.mb_loc_max);
                  EXPECT_EQ(key_of(lc, a), key);
                  // The first text's weight alone says whether a tie is broken; where both say the
                  // same, keys order as texts do.
                  bool alike = !a.empty() && !b.empty();
                  for (const auto &weights : order.weights)
                      for (uint16_t weight : weights)
                          alike = alike && !(weight & 0x8000);
                  if (alike) {
                      EXPECT_EQ(sign(key.compare(key_of(lc, b))),
                                _gl_im_mbscoll(lc, a.c_str(), b.c_str()));
                  }
                  // What fits of a key is the same whatever its room.
                  const auto size = static_cast<int32_t>(random() % (key.size() + 2));
                  std::string part(key.size() + 2, '?');
                  EXPECT_EQ(gl_full_mbsxfrm(lc, part.data(), a.c_str(), size), size_of(key));
                  std::string wanted = (key + '\0').substr(0, static_cast<size_t>(size));
                  wanted.resize(key.size() + 2, '?');
                  EXPECT_EQ(part, wanted);
                  wide_text wide = wide_of(set, a);
                  wide.push_back(0);
                  std::string by_wide(key.size() + 9, '?');
                  const int32_t length =
                      gl_wcsxfrm(lc, by_wide.data(), wide.data(), size_of(by_wide));
                  if (!a.empty()) {
                      EXPECT_EQ(by_wide.substr(0, static_cast<size_t>(length)), key);
                  } else {
                      EXPECT_EQ(length, lc->collate_cat.level_count - 1) << "separators alone";
                  }
              });
}

// ---- The comparers of single bytes against the general one

TEST_F(Orders, SingleByteComparersAgreeWithTheGeneralOne) {
    const struct {
        const char *name;
        order_features with;
        gl_mbfscoll_fn counted;
        gl_mbscoll_fn terminated;
    } rows[] = {
        {"exp", {true, false, false, true, false}, _qvt_gl_is_mbfscoll_exp, _gl_is_mbscoll_exp},
        {"elem", {false, true, false, false, false}, _qvt_gl_is_mbfscoll_elem, _gl_is_mbscoll_elem},
        {"back", {false, false, true, false, false}, _qvt_gl_is_mbfscoll_back, _gl_is_mbscoll_back},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        each_pair({latin1()}, row.with,
                  [&row](locale_rec *lc, const code_set &, const plain_order &,
                         const std::string &a, const std::string &b) {
                      EXPECT_EQ(lc->mbfscoll_fn, row.counted);
                      EXPECT_EQ(lc->mbscoll_fn, row.terminated);
                      const int32_t wanted = compare(lc, _qvt_gl_im_mbfscoll, a, b);
                      EXPECT_EQ(compare(lc, row.counted, a, b), wanted);
                      EXPECT_EQ(row.terminated(lc, a.c_str(), b.c_str()), wanted);
                  });
    }
}

// The comparer for both features goes by the last characters where a level ends in a tie, so it
// agrees as long as no text ends in what is ignored or expands.
TEST_F(Orders, TheComparerForBothFeaturesAgreesButForTheLastCharacters) {
    each_pair({latin1()}, {true, true, false, false, false},
              [](locale_rec *lc, const code_set &, const plain_order &order, const std::string &a,
                 const std::string &b) {
                  EXPECT_EQ(lc->mbfscoll_fn, _qvt_gl_is_mbfscoll_exp_elem);
                  for (const plain_contraction &c : order.contractions)
                      for (const auto &weights : order.weights) {
                          const auto first = std::string(1, static_cast<char>(c.characters[0]));
                          const auto row = order.rows.find(first);
                          // A contraction never expands here, and an expansion goes before it.
                          if (weights[c.row] & 0x4000 ||
                              weights[row == order.rows.end() ? 0 : row->second] & 0x4000)
                              return;
                      }
                  const int32_t general = compare(lc, _qvt_gl_im_mbfscoll, a, b);
                  const int32_t special = compare(lc, _qvt_gl_is_mbfscoll_exp_elem, a, b);
                  EXPECT_EQ(special, -compare(lc, _qvt_gl_is_mbfscoll_exp_elem, b, a));
                  if (order.directions.size() == 1 && general != 0) {
                      EXPECT_EQ(special, general);
                  }
              });
}

// ---- What each comparer is special in

// Rows 0 to 9: weights 2 to 9 for the letters a to h, ignored ".", and "x" for what a test wants.
plain_order letters(size_t levels) {
    plain_order order;
    for (char c = 'a'; c <= 'h'; ++c)
        order.rows[std::string(1, c)] = static_cast<uint16_t>(c - 'a');
    order.rows["."] = 8;
    order.rows["x"] = 9;
    order.directions.assign(levels, 1);
    order.weights.assign(levels, {2, 3, 4, 5, 6, 7, 8, 9, 1, 10});
    order.max_weight = 200;
    return order;
}

struct case_row {
    const char *a;
    const char *b;
    int order;
};

void check_rows(locale_rec *lc, const std::vector<case_row> &rows) {
    for (const case_row &row : rows) {
        SCOPED_TRACE(std::string(row.a) + " and " + row.b);
        EXPECT_EQ(compare(lc, lc->mbfscoll_fn, row.a, row.b), row.order);
        EXPECT_EQ(lc->mbscoll_fn(lc, row.a, row.b), row.order);
        EXPECT_EQ(lc->err, 0);
    }
}

TEST_F(Orders, IgnoredLastCharactersCountWhereExpansionsMeetContractions) {
    plain_order order = letters(1);
    order.weights[0][9] = 0x4000;
    order.expansions = {{'a', 'b'}};
    order.contractions = {{{'c', 'h'}, 4}};
    const code_set set = latin1();
    const loaded both(set, order.object(set));
    check_rows(both, {{"a.", "a", -1}, // weight 1 of the "." against 2
                      {"a", "a.", 1},
                      {"a..", "a.", 0},
                      {"", ".", -1},
                      {"x", "ab", 0},
                      {"chb", "eb", 0},
                      {"c.h", "e", -1},
                      {"ax", "aab", 0}});
    EXPECT_EQ(key_of(both, "a."), key_of(both, "a")) << "keys do not know of it";
    order.contractions.clear();
    const loaded expanding(set, order.object(set));
    check_rows(expanding, {{"a.", "a", 0}, {"x", "ab", 0}, {"x", "abc", -1}, {"xc", "abc", 0}});
}

TEST_F(Orders, AForwardTieLooksAtTheFollowingBytes) {
    plain_order order = letters(2);
    for (auto &weight : order.weights[0])
        weight = weight == 1 ? 1 : 0x8002;
    order.weights[1].assign(10, 2);
    const code_set set = latin1();
    const loaded forward(set, order.object(set));
    check_rows(forward, {{"a", "b", 0},     // nothing follows either
                         {"ac", "bc", 0},   // the same follows both
                         {"ad", "ac", 1},   // what follows the first
                         {"a.b", "b.c", 0}, // "." follows both
                         {"a.", "b", 1},    // "." against the end
                         {"ab", "ac", -1}});
    order.directions = {2, 1};
    const loaded backward(set, order.object(set));
    check_rows(backward, {{"a", "b", -1}, {"ac", "bc", -1}, {"ba", "ab", -1}, {"a.", "b", -1}});
}

TEST_F(Orders, AnExpandingContractionExpandsOncePerCharacter) {
    plain_order order = letters(1);
    order.weights[0][9] = 0x4000;
    order.expansions = {{'a'}};
    order.contractions = {{{'c', 'd', 'e'}, 9}};
    const code_set set = four_byte();
    const loaded lc(set, order.object(set));
    check_rows(lc, {{"cde", "aaa", 0}, {"cde", "x", 1}, {"x", "a", 0}, {"cdea", "aaab", -1}});
    EXPECT_EQ(key_of(lc, "cdeb"), "\2\2\2\3");
}

TEST_F(Orders, AnExpansionInsideAnotherReplacesIt) {
    plain_order order = letters(1);
    order.weights[0][9] = 0x4001; // x -> b y c, y -> a d
    order.weights[0].push_back(0x4000);
    order.rows["y"] = 10;
    order.expansions = {{'a', 'd'}, {'b', 'y', 'c'}};
    for (const code_set &set : {latin1(), four_byte()}) {
        const loaded lc(set, order.object(set));
        check_rows(lc, {{"x", "bad", 0}, {"xe", "bade", 0}, {"yx", "adbad", 0}});
    }
}

TEST_F(Orders, ContractionsEndWithTheTextAndTheFirstOfTheTableWins) {
    plain_order order = letters(1);
    order.contractions = {{{'a', 'b', 'c'}, 7}, {{'a', 'b'}, 6}, {{'b', 'c'}, 5}};
    for (const code_set &set : {latin1(), four_byte()}) {
        const loaded lc(set, order.object(set));
        check_rows(
            lc,
            {{"abc", "h", 0}, {"ab", "g", 0}, {"aabc", "ah", 0}, {"bc", "f", 0}, {"a", "a", 0}});
        const std::string text = "abc";
        EXPECT_EQ(lc.lc->mbfscoll_fn(lc, text.data(), 2, "g", 1), 0) << "not across the end";
        EXPECT_EQ(lc.lc->mbfscoll_fn(lc, text.data(), 1, "a", 1), 0);
        // The common front "ab" ends inside contractions.
        check_rows(lc, {{"abc", "abd", 1}, {"ab", "abc", -1}, {"dabc", "dabd", 1}});
    }
}

TEST_F(Orders, KeysOfOneAndTwoDigits) {
    plain_order order = letters(2);
    order.weights[0][0] = 5;
    order.weights[1][0] = 7;
    const code_set set = latin1();
    const loaded one(set, order.object(set));
    EXPECT_EQ(key_of(one, "a"), "\x05\x01\x07");
    EXPECT_EQ(key_of(one, ""), "");
    order.max_weight = 300;
    order.weights[0][1] = 300;
    const loaded two(set, order.object(set));
    EXPECT_EQ(key_of(two, "b"), "\x03\x2e\x01\x02\x03");
    const gl_wchar nothing[] = {0};
    EXPECT_EQ(gl_wcsxfrm(two, nullptr, nothing, 0), 1) << "the separator alone";
}

TEST_F(Orders, LongTextsNeedMemoryAndShortOnesDoNot) {
    const code_set set = four_byte();
    plain_order order = letters(2);
    order.contractions = {{{'c', 'h'}, 4}};
    const loaded lc(set, order.object(set));
    for (const size_t length : {127u, 128u}) {
        const std::string a = std::string(length - 1, 'b') + "a", b = std::string(length, 'a');
        const std::string c = "." + b; // its ignored character leaves nothing to skip
        wide_text wide(length, 'a');
        wide.push_back(0);
        counting_allocator memory;
        counting_allocator::fail_call(0);
        EXPECT_EQ(_gl_im_mbscoll(lc, a.c_str(), b.c_str()), 1) << "settled by the first character";
        EXPECT_EQ(lc.error(), 0);
        counting_allocator::fail_call(0);
        EXPECT_EQ(gl_full_wcscoll(lc, wide.data(), wide.data()), 0);
        EXPECT_EQ(lc.error(), length > 127 ? GLS_ERR_NO_MEMORY : GLS_OK);
        counting_allocator::fail_call(0);
        EXPECT_EQ(gl_full_mbsxfrm(lc, nullptr, b.c_str(), 0), length > 127 ? -1 : 255);
        EXPECT_EQ(lc.error(), length > 127 ? GLS_ERR_NO_MEMORY : GLS_OK);
        counting_allocator::fail_call(0);
        EXPECT_EQ(_gl_im_mbscoll(lc, c.c_str(), b.c_str() + 1), length > 126 ? 0 : 1);
        EXPECT_EQ(lc.error(), length > 126 ? GLS_ERR_NO_MEMORY : GLS_OK);
        counting_allocator::fail_call(-1);
    }
}

// ---- Arguments and failures

TEST_F(Orders, BadArgumentsGiveZeroAndAnError) {
    const code_set set = latin1(), multi = four_byte();
    const loaded lc(set, letters(1).object(set)), utf8(multi, letters(1).object(multi));
    const gl_mbfscoll_fn counted[] = {_qvt_gl_im_mbfscoll, _qvt_gl_is_mbfscoll_exp,
                                      _qvt_gl_is_mbfscoll_elem, _qvt_gl_is_mbfscoll_exp_elem,
                                      _qvt_gl_is_mbfscoll_back};
    for (const gl_mbfscoll_fn fn : counted) {
        EXPECT_EQ(fn(lc, "b", -1, "a", 1), 0);
        EXPECT_EQ(lc.error(), GLS_ERR_ONE_LENGTH);
        EXPECT_EQ(fn(lc, nullptr, -1, "a", -1), 0);
        EXPECT_EQ(lc.error(), GLS_ERR_NULL_ARGUMENT);
        temperr = 0;
        EXPECT_EQ(fn(nullptr, "b", 1, "a", 1), 0);
        EXPECT_EQ(temperr, GLS_ERR_NULL_ARGUMENT);
        EXPECT_EQ(fn(lc, "", 0, "", 0), 0);
        EXPECT_EQ(fn(lc, "", 0, "a", 1), -1);
        EXPECT_EQ(lc.error(), 0);
    }
    const gl_wchar wide[] = {'a', 0};
    EXPECT_EQ(_qvt_gl_full_wcscoll(lc, wide, -1, wide, 1), 0);
    EXPECT_EQ(lc.error(), GLS_ERR_ONE_LENGTH);
    EXPECT_EQ(gl_full_wcscoll(lc, wide, nullptr), 0);
    EXPECT_EQ(lc.error(), GLS_ERR_NULL_ARGUMENT);
    // An invalid character counts wherever it is, also after what would have settled it.
    for (const char *text : {"\xff", "b\xff", "bcdefghhgfedcba\xe2", "bcdefghhgfedcba\xe2x"}) {
        EXPECT_EQ(compare(utf8, _qvt_gl_im_mbfscoll, text, "a"), 0) << text;
        EXPECT_EQ(utf8.error(), GLS_ERR_BAD_CHARACTER);
        EXPECT_EQ(_gl_im_mbscoll(utf8, "a", text), 0) << text;
        EXPECT_EQ(utf8.error(), GLS_ERR_BAD_CHARACTER);
        EXPECT_EQ(gl_full_mbsxfrm(utf8, nullptr, text, 0), -1) << text;
        EXPECT_EQ(utf8.error(), GLS_ERR_BAD_CHARACTER);
    }
}

TEST_F(Orders, WithoutAnOrderAllTextsAreEqual) {
    const code_set set = latin1();
    const loaded lc(set);
    gl_free_category(lc, GL_CAT_COLLATE);
    gl_make_null_category(lc, GL_CAT_COLLATE);
    update_locale(lc);
    lc.error(); // no code set is another than that of the rest
    check_rows(lc, {{"a", "b", 0}, {"", "b", 0}});
    EXPECT_EQ(key_of(lc, "abc"), "");
}

TEST_F(Orders, LocalesOfCodeOrderCompareCodes) {
    for (const code_set &set : {latin1(), two_byte(), four_byte()}) {
        const loaded lc(set); // code order
        std::vector<std::string> characters;
        for (const auto &[bytes, facts] : set.characters)
            if (bytes[0] != 0)
                characters.push_back(bytes);
        for (int pair = 0; pair < 500; ++pair) {
            std::string text[2];
            for (auto &t : text)
                for (size_t n = random() % 4; n > 0; --n)
                    t += characters[random() % characters.size()];
            const wide_text a = wide_of(set, text[0]), b = wide_of(set, text[1]);
            const int wanted = a < b ? -1 : a > b;
            EXPECT_EQ(sign(compare(lc, _qvt_gl_im_mbfscoll, text[0], text[1])), wanted);
            EXPECT_EQ(sign(lc.lc->mbscoll_fn(lc, text[0].c_str(), text[1].c_str())), wanted);
            EXPECT_EQ(key_of(lc, text[0]), text[0]);
        }
    }
}

// ---- Some of the levels

TEST_F(Orders, LeadingPartsAreTheShortestThatMatch) {
    // Level 2 tells "E" from "e"; "x" expands to "ab", "ch" is one, "." counts at level 2 alone.
    plain_order order = letters(2);
    order.rows["E"] = 10;
    order.weights[0].push_back(6);
    order.weights[1].assign(11, 2);
    order.weights[1][10] = order.weights[1][8] = 3;
    order.weights[0][9] = order.weights[1][9] = 0x4000;
    order.expansions = {{'a', 'b'}};
    order.contractions = {{{'c', 'h'}, 5}};
    const code_set set = four_byte();
    const loaded lc(set, order.object(set));
    const struct {
        const char *text;
        const char *start;
        int32_t levels;
        int32_t bytes;
    } rows[] = {
        {"abc", "ab", 1, 2}, {"abc", "", 1, 0},   {"abc", "abc", 2, 3}, {"abc", "abcd", 1, -1},
        {"Ed", "e", 1, 1},   {"Ed", "e", 2, -1},  {"xd", "ab", 2, 1},   {"xd", "a", 1, -1},
        {"abd", "x", 2, 2},  {"chd", "c", 1, -1}, {"chd", "ch", 2, 2},  {".ab", "a", 1, 2},
        {"a.b", "a", 1, 1},  {"a.b", "a.", 2, 2}, {"a.b", "a.", 1, 1},  {"ab", "b", 0, 0},
        {"", "", 2, 0},      {"", "a", 2, -1},    {"a..", "a..", 2, 3},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row.text) + " begins with " + row.start);
        EXPECT_EQ(qvt_gl_begins_with(lc, row.text, -1, row.start, -1, row.levels), row.bytes);
        if (row.bytes >= 0) {
            EXPECT_EQ(qvt_gl_compare_levels(lc, row.text, row.bytes, row.start,
                                            static_cast<int32_t>(strlen(row.start)), row.levels),
                      0);
        }
    }
}

// ---- Hostile objects

TEST_F(Orders, SectionsThatWouldMisleadAComparerAreRefused) {
    const struct {
        const char *what;
        void (*spoil)(plain_order &);
    } rows[] = {
        {"direction 0", [](plain_order &o) { o.directions[1] = 0; }},
        {"direction 3", [](plain_order &o) { o.directions[1] = 3; }},
        {"weight 0", [](plain_order &o) { o.weights[1][2] = 0; }},
        {"weight 0 with a tie", [](plain_order &o) { o.weights[1][2] = 0x8000; }},
        {"weight 1 with a tie", [](plain_order &o) { o.weights[1][2] = 0x8001; }},
        {"weight above the largest", [](plain_order &o) { o.weights[0][2] = 201; }},
        {"an expansion of itself", [](plain_order &o) { o.expansions = {{'x'}}; }},
        {"a cycle of two",
         [](plain_order &o) {
             o.expansions = {{'a', 'h'}, {'b', 'x'}};
         }},
        {"a character of an expansion that is no byte",
         [](plain_order &o) { o.expansions = {{12345}}; }},
        {"a zero in an expansion",
         [](plain_order &o) {
             o.expansions = {{'a', 0}};
         }},
        {"no such expansion", [](plain_order &o) { o.expansions.clear(); }},
    };
    const code_set set = latin1();
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        plain_order order = letters(2);
        order.weights[1][9] = 0x4000;
        order.expansions = {{'a'}, {'b'}};
        order.weights[1][7] = 0x4001;
        const loaded good(set, order.object(set));
        EXPECT_EQ(good.lc->collate_cat.level_count, 2);
        row.spoil(order);
        memory_file file(order.object(set).all());
        gl_free_category(good, GL_CAT_COLLATE);
        gl_make_null_category(good, GL_CAT_COLLATE);
        EXPECT_NE(read_one_category(good, GL_CAT_COLLATE, file.file), 0);
        EXPECT_EQ(good.error(), GLS_ERR_MALFORMED);
        update_locale(good);
        good.error();
        check_rows(good, {{"a", "b", 0}});
    }
}

// Any bytes in place of some: the section is refused, or it loads and the comparers live with it.
TEST_F(Orders, MutatedSectionsAreRefusedOrServe) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const code_set sets[] = {latin1(), two_byte(), four_byte()};
    for (int round = 0; round < 600 && !HasFailure(); ++round) {
        const code_set &set = sets[random() % 3];
        const random_order made = make_random_order(random, set, {});
        object_text object = made.order.object(set);
        std::string &section = object.sections[1];
        if (round % 5 == 0)
            section.resize(random() % section.size());
        for (auto changes = random() % 4; changes > 0 && !section.empty(); --changes)
            section[random() % section.size()] = "0123456789abcdef \n-"[random() % 19];
        counting_allocator memory;
        locale_rec *lc;
        ASSERT_EQ(gl_create_null_locale_4(&lc), 0);
        for (const int32_t category : {GL_CAT_CTYPE, GL_CAT_COLLATE}) {
            memory_file file(object.all());
            gl_free_category(lc, category);
            gl_make_null_category(lc, category);
            read_one_category(lc, category, file.file);
        }
        update_locale(lc);
        for (int pair = 0; pair < 4; ++pair) {
            const std::string a = made.text(random, 9), b = made.text(random, 9);
            const gl_mbfscoll_fn all[] = {lc->mbfscoll_fn,          _qvt_gl_im_mbfscoll,
                                          _qvt_gl_is_mbfscoll_exp,  _qvt_gl_is_mbfscoll_elem,
                                          _qvt_gl_is_mbfscoll_back, _qvt_gl_is_mbfscoll_exp_elem};
            for (const gl_mbfscoll_fn fn : all)
                compare(lc, fn, a, b);
            char key[40];
            gl_full_mbsxfrm(lc, key, a.c_str(), sizeof key);
        }
        gl_lc_unload(lc);
    }
}

} // namespace
