// Reading locale objects: what they mean, and what is refused.

#include "gls/locale_texts.h"
#include "gls/objects/locale_object.h"
#include <kestrion/categories.h>
#include <kestrion/char_case.h>
#include <kestrion/char_class.h>
#include <kestrion/char_length.h>
#include <kestrion/char_width.h>
#include <kestrion/code_set_registry.h>
#include <kestrion/gls_errors.h>
#include <kestrion/langinfo.h>

#include <random>
#include <sstream>

using namespace kestrion;

namespace {

// A record whose categories come from texts.
class record {
public:
    record() { gl_create_null_locale_4(&lc); }
    ~record() { gl_lc_unload(lc); }
    record(const record &) = delete;
    record &operator=(const record &) = delete;
    bool read(int32_t category, const std::string &text) {
        memory_file file(text);
        gl_free_category(lc, category);
        return gl_make_null_category(lc, category) == 0 &&
               read_one_category(lc, category, file.file) == 0;
    }
    bool read_all(const std::string &text) {
        bool read_every = true;
        for (int32_t c = GL_CAT_CTYPE; c <= GL_CAT_MESSAGES; ++c)
            read_every = read_every && read(c, text);
        return read_every;
    }
    locale_rec *operator->() const { return lc; }
    operator locale_rec *() const { return lc; }

    locale_rec *lc;
};

// Compares a zero-ended wide text with ASCII.
bool is_wide(const gl_wchar *wide, std::string_view text) {
    for (char c : text)
        if (*wide++ != static_cast<unsigned char>(c))
            return false;
    return *wide == 0;
}

std::vector<int> texts_of(const char *bytes, size_t count) {
    return std::vector<int>(bytes, bytes + count);
}

TEST(LocaleObject, ThePagesExampleMeansWhatThePageSays) {
    std::ifstream page(KESTRION_SOURCE_DIR "/docs/formats/locale-object.md");
    std::stringstream whole;
    whole << page.rdbuf();
    std::string text = whole.str();
    size_t from = text.find("```\nFILE_TYPE");
    ASSERT_NE(from, std::string::npos);
    text = text.substr(from + 4, text.rfind("```") - from - 4);

    record lc;
    ASSERT_TRUE(lc.read_all(text)) << "error " << lc->err;
    update_locale(lc);
    EXPECT_STREQ(lc->cs_names[0], "ksc");
    EXPECT_EQ(gl_mb_loc_max(lc), 2);
    EXPECT_EQ(_gl_im_iswctype(lc, 'Q', 0xffff), CT_PRINT);
    EXPECT_EQ(_gl_im_iswctype(lc, 'A', 0xffff), 0x105u);
    EXPECT_EQ(gl_wcwidth(lc, 0xa2fe), 2);
    EXPECT_EQ(_gl_im_iswctype(lc, 0xa2ff, 0xffff), 0u);
    EXPECT_EQ(_gl_im_towupper(lc, 'a'), 'A');
    EXPECT_EQ(_gl_im_towupper(lc, 'b'), 'b');
    EXPECT_EQ(lc->case_expansion, 1.0);
    EXPECT_EQ(lc->collate_cat.max_weight, 2u);
    EXPECT_EQ(lc->collate_cat.level_weights[0][0], 0x8002);
    EXPECT_EQ(lc->code_set_order, 1);
    EXPECT_EQ(lc->numeric_cat.grouping.count, 2);
    EXPECT_EQ(lc->numeric_cat.grouping.sizes[1], 0u);
    EXPECT_STREQ(lc->monetary_cat.int_curr_symbol, "KRW ");
    EXPECT_EQ(lc->monetary_cat.wide_currency_symbol[0], 0xa1a1u);
    EXPECT_EQ(lc->monetary_cat.n_sign_posn, 1);
    EXPECT_STREQ(lc->time_cat.mon[1], "Two");
    EXPECT_TRUE(is_wide(lc->time_cat.wide_d_fmt, "%Y-%m-%d"));
    EXPECT_EQ(lc->time_cat.eras[0].start_year, 1950);
    EXPECT_STREQ(lc->messages_cat.noexpr, "^[n]");
    for (multi_arr *table :
         {lc->ctype_cat.class_table, lc->ctype_cat.case_index, lc->collate_cat.row_table}) {
        const std::string written =
            text_written([&](FILE *f) { _gl_fprintf_multi(f, table, ub2_writer); });
        EXPECT_NE(text.find("\n" + written), std::string::npos) << "this is written:\n" << written;
    }
}

// Fields whose places could be exchanged without breaking the grammar.
TEST(LocaleObject, FieldsGoWhereTheyBelong) {
    record lc;
    ASSERT_TRUE(lc.read_all(object_of(latin1()).all()));
    const time_rec &t = lc->time_cat;
    EXPECT_STREQ(t.abday[6], "Sat");
    EXPECT_STREQ(t.day[6], "Saturday");
    EXPECT_STREQ(t.d_t_fmt, "%a %d %b %Y %r");
    EXPECT_STREQ(t.t_fmt, "%r");
    EXPECT_STREQ(t.pm, "PM");
    EXPECT_TRUE(is_wide(t.wide_t_fmt_ampm, "%I:%M:%S %p"));
    EXPECT_STREQ(t.alt_digits[1], "1");
    EXPECT_STREQ(lc->monetary_cat.mon_thousands_sep, ",");
    EXPECT_EQ(lc->monetary_cat.p_sep_by_space, 0);
    EXPECT_STREQ(lc->messages_cat.yesstr, "yes");
    EXPECT_STREQ(gl_nl_langinfo(lc, GL_ITEM_DATE_FORMAT), "%m/%d/%Y");
    EXPECT_STREQ(gl_nl_langinfo(lc, GL_ITEM_CALENDAR), "gregorian");
    EXPECT_EQ(gl_nl_langinfo(lc, 62), nullptr);
    EXPECT_EQ(gl_nl_langinfo(nullptr, GL_ITEM_CALENDAR), nullptr);
}

TEST(LocaleObject, ErasAreTakenApart) {
    record lc;
    ASSERT_TRUE(lc.read_all(object_of(latin1()).all()));
    ASSERT_EQ(lc->time_cat.era_count, 2);
    const era_rec &first = lc->time_cat.eras[0];
    const era_rec &last = lc->time_cat.eras[1];
    EXPECT_EQ(first.direction, 1);
    EXPECT_GT(first.open_end, 0);
    EXPECT_STREQ(first.name, "New");
    EXPECT_TRUE(is_wide(first.wide_second_name, "N"));
    EXPECT_EQ(last.direction, -1);
    EXPECT_EQ(last.open_end, 0);
    EXPECT_EQ(last.end_year, -4);
    EXPECT_EQ(last.end_day, 1);
    EXPECT_STREQ(last.format, "a:b") << "colons in the format are text";

    const char *bad[] = {"",
                         "+:1:2000/01/01:+*:a:b",
                         "*:1:2000/01/01:+*:a:b:c",
                         "+:x:2000/01/01:+*:a:b:c",
                         "+:1:2000/13/01:+*:a:b:c",
                         "+:1:2000/01/32:+*:a:b:c",
                         "+:1:2000/01:+*:a:b:c",
                         "+:1:2000/01/01:+:a:b:c",
                         "+:1:12345678901/01/01:+*:a:b:c",
                         "+:1:2000/01/01x:+*:a:b:c"};
    std::string section = object_of(latin1()).one(GL_CAT_TIME);
    std::string good = field("+:1:2000/01/01:+*:New:N:%EC %Ey");
    for (const char *era : bad) {
        std::string text = section;
        text.replace(text.find(good), good.size(), field(era));
        lc->err = 0;
        EXPECT_FALSE(lc.read(GL_CAT_TIME, text)) << era;
        EXPECT_EQ(lc->err, GLS_ERR_MALFORMED) << era;
    }
}

// Two levels over a b c d e and the sequence "ch":
//   row 0 nothing, row 1 ignored (a), row 2 (b), row 3 like row 2 (c), row 4 expands to "bc" (d),
//   row 5 like row 2 (the contraction ch), row 6 with ties (e), row 7 like row 6: no class.
object_text analysed_object() {
    code_set set = latin1();
    std::vector<std::pair<std::string, uint16_t>> rows;
    for (const auto &[bytes, facts] : set.characters)
        rows.emplace_back(bytes, static_cast<uint16_t>(0));
    const std::pair<char, uint16_t> placed[] = {{'a', 1}, {'b', 2}, {'c', 3},
                                                {'d', 4}, {'e', 6}, {'f', 7}};
    for (auto [byte, row] : placed)
        rows[static_cast<size_t>(byte)].second = row;
    object_text object = object_of(set);
    object.sections[1] =
        "as_specified\n" + table_text(rows) +
        "0\n7 2\n1 1\n9\n00010002\n"
        "200050000006300000068\n" // "ch", row 5
        "20000006200000063\n"     // "bc"
        "00090009\n00010001\n00020003\n00020003\n40004000\n00020003\n80028003\n80028003\n";
    return object;
}

TEST(Collation, RowsTellIgnoredAndEquivalentCharacters) {
    object_text object = analysed_object();
    record lc;
    ASSERT_TRUE(lc.read_all(object.all())) << lc->err;
    const collate_rec &r = lc->collate_cat;
    EXPECT_EQ(lc->max_expansion, 2.0);
    EXPECT_EQ(r.level_order[1], 2);
    ASSERT_NE(r.ignorable_chars, nullptr);
    EXPECT_EQ(texts_of(r.ignorable_chars[0], 5), (std::vector<int>{'a', 0, 0, 0, 0}));
    EXPECT_EQ(r.ignorable_chars[1], nullptr);
    ASSERT_NE(r.equiv_pairs, nullptr);
    // Rows 2, 3 and 5 are one class: "ch" comes first, then the characters. The class of row 4 has
    // the text of its expansion and "d".
    const std::pair<const char *, const char *> wanted[] = {{"ch", "c"}, {"b", "c"}, {"bc", "d"}};
    size_t i = 0;
    for (; r.equiv_pairs[i].member != nullptr; ++i) {
        ASSERT_LT(i, std::size(wanted));
        EXPECT_STREQ(r.equiv_pairs[i].member, wanted[i].first);
        EXPECT_STREQ(r.equiv_pairs[i].last, wanted[i].second);
    }
    EXPECT_EQ(i, std::size(wanted));
    EXPECT_EQ(r.sb_expansions[0][size_t{'d'}], &r.expansions[0]);
    EXPECT_EQ(r.sb_expansions[1][size_t{'b'}], nullptr);
    EXPECT_EQ(r.contraction_start[size_t{'c'}], 1);
    EXPECT_EQ(r.contraction_start[size_t{'h'}], 0);

    lc->err = GLS_ERR_SPECIFIER;
    ASSERT_TRUE(lc.read(GL_CAT_COLLATE, object_of(latin1()).all()));
    EXPECT_EQ(lc->err, GLS_OK)
        << "collation clears the word, also when there is nothing to analyse";
    object.sections[1] = "thai_smo\n";
    ASSERT_TRUE(lc.read(GL_CAT_COLLATE, object.all()));
    EXPECT_EQ(lc->collate_cat.coll_method, COLL_THAI_SMO);
    object.sections[1] = "as_written\n";
    EXPECT_FALSE(lc.read(GL_CAT_COLLATE, object.all()));
    EXPECT_EQ(lc->collate_cat.coll_method, COLL_NONE);
}

TEST(LocaleObject, GrowthLineMayBeEmptyAndNothingElse) {
    struct {
        const char *line;
        double growth; // below 0: refused
    } const cases[] = {{"\n", 4.0},  {"1.5\n", 1.5}, {"16\n", 16.0}, {"0.25\n", 1.0},
                       {"17\n", -1}, {"nan\n", -1},  {"-1\n", -1},   {"x\n", -1},
                       {"2 \n", -1}, {"", -1},       {"2", -1}};
    object_text object = object_of(latin1());
    std::string &section = object.sections[0];
    section.resize(section.rfind("1.0\n"));
    for (const auto &c : cases) {
        record lc;
        bool read = lc.read(GL_CAT_CTYPE, object.one(GL_CAT_CTYPE) + c.line);
        EXPECT_EQ(read, c.growth >= 0) << c.line;
        if (read) {
            EXPECT_EQ(lc->case_expansion, c.growth) << c.line;
        } else {
            EXPECT_EQ(lc->err, GLS_ERR_MALFORMED) << c.line;
        }
    }
}

// The default index may belong to single bytes, whatever the table says of its shortest sequence.
TEST(LocaleObject, PartnersOfTheDefaultIndexCountForTheGrowth) {
    object_text object = object_of(four_byte());
    std::string masks = object.sections[0].substr(0, object.sections[0].find("1\n0 full_width"));
    object.sections[0] =
        masks + "0\n0 4 1 0001\n1 0\n0000110004\n0000000\n" + "1\n00000041f09f9880\n1.0\n";
    record lc;
    ASSERT_TRUE(lc.read(GL_CAT_CTYPE, object.one(GL_CAT_CTYPE)));
    EXPECT_EQ(lc->case_expansion, 4.0);
}

// A text of the file that ends inside a character takes zero bytes to its end; the terminator of
// the code set still follows it.
TEST(LocaleObject, TextsThatEndInsideACharacterAreTerminated) {
    object_text object = object_of(latin1());
    const std::string zeros(3, '\0');
    object.sections[0] = table_text({{"aaa", 0}, {"a" + zeros.substr(1), 0}, {zeros, 0}}) + "0\n" +
                         table_text({}) + "0\n\n";
    object.sections[5] = fields({"aaaa", "", "", ""});
    record lc;
    ASSERT_TRUE(lc.read(GL_CAT_CTYPE, object.all()));
    ASSERT_TRUE(lc.read(GL_CAT_MESSAGES, object.all()));
    const gl_wchar *wide = lc->messages_cat.wide_yesexpr;
    EXPECT_EQ(std::vector<gl_wchar>(wide, wide + 3),
              (std::vector<gl_wchar>{0x616161, 0x610000, 0}));
}

// One change of a good object each, and the error that it is.
TEST(LocaleObject, EachFaultHasItsError) {
    struct {
        int32_t category;
        const char *from, *to;
        int32_t error; // 0: read
    } const cases[] = {
        {2, "FILE_TYPE=locale_object", "FILE_TYPE=other", 11},
        {2, "COMPILER_VERSION=11", "COMPILER_VERSION=10", 51},
        {2, "HEADER_LINES=4\nSOURCE=test", "HEADER_LINES=3", 0},
        {2, "HEADER_LINES=4\nSOURCE=test", "HEADER_LINES=1", 0},
        {2, "HEADER_LINES=4\nSOURCE=test", "HEADER_LINES=-1", 0},
        {2, "HEADER_LINES=4", "HEADER_LINES=9999999", 11},
        {2, "HEADER_LINES=4", "HEADER_LINES", 11},
        {2, "HEADER_LINES=4", "HEADER_LINES=x", 11},
        {2, "\nutf8\n", "\nname-of-20-characters\n", 11},
        {2, "\nutf8\n", "\n8859-1-of-19-charac\n", 0},
        {2, "\nutf8\n", "\n8859-1-of-20-charact\n", 11},
        {2, "\nutf8\n", "\n\n", 11},
        {2, "### LC_CTYPE", "#### LC_CTYPE", 11},
        {2, "\n1\n0 full_width\n", "\n0\n", 0},
        {2, "\n1\n0 full_width\n", "\n-1\n", 0},
        {2, "\n1\n0 full_width\n", "\n2\n0 full_width\n", 11},
        {2, "\n1\n0 full_width\n", "\n1\n0 full width\n", 11},
        {2, "\n1\n0 full_width\n", "\n1\n0\n", 11},
        {2, "4 1 1 0000", "5 1 1 0000", 21},
        {2, "4 1 1 0000", "4 1 0 0000", 3},
        {2, "4 1 1 0000", "4 2 1 0000",
         11}, // the case table differs, and a terminator begins characters
        {2, "\n0000004100000061", "0000004100000061", 11},
        {3, "as_specified\n", "thai_smo\n", 0},
        {3, "as_specified\n", "thai_smo", 11},
        {3, "\n1\n0\n0\n", " 1  0\n\n0\n", 0},
        {3, "\n1\n0\n0\n", "\n9\n0\n0\n", 11},
        {3, "\n1\n0\n0\n", "\n-1\n0\n0\n", 11},
        {3, "\n1\n0\n0\n", "\n1\n1\n0\n", 11},
        {3, "\n1\n0\n0\n", "\n1\n0\n16385\n", 11},
        {3, "\n0001\n", "\n0001", 11},
        {3, "\n0003\n", "\n4003\n", 11}, // no such expansion
        {4, "2 3 0\n", "15 1 2 3 4 5 6 7 8 9 10 11 12 13 14 -1\n", 0},
        {4, "2 3 0\n", "16 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\n", 4},
        {4, "2 3 0\n", "-1\n", 4},
        {4, "2 3 0\n", "2 3 0 0\n", 11},
        {4, "2 3 0\n", "1 4294967296\n", 11},
        {4, "1 2e\n", "1 2e2e\n", 8},
        {4, "1 2e\n", "0\n", 0},
        {4, "1 2e\n", "-1\n", 11},
        {4, "1 2e\n", "65536 2e\n", 11},
        {4, "1 2e\n", "1 ff\n", 1}, // no character of the code set
        {5, "\n2\n2\n", "\n2\n-1\n", 0},
        {5, "\n2\n2\n", "\n2\n2x\n", 11},
        {5, "\n2\n2\n", "\n2\n2147483648\n", 11},
        {6, "gregorian\n", "arabic\n", 0},
        {6, "gregorian\n", "gregorian \n", 50},
        {6, "gregorian\n", "julian\n", 50},
        {6, "12\n3 4a616e\n", "11\n3 4a616e\n", 11},
        {6, "3 446563\n12\n3 4a616e\n", "3 446563\n11\n", 11}, // fewer in full than abbreviated
        {6, "12\n3 4a616e\n", "1001\n3 4a616e\n", 11},
        {7, "3 796573\n", "3 79657\n", 8},
    };
    object_text object = object_of(four_byte());
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.from) + " -> " + c.to);
        counting_allocator memory;
        record lc;
        ASSERT_TRUE(lc.read(GL_CAT_CTYPE, object.one(GL_CAT_CTYPE)));
        std::string text = object.one(c.category);
        size_t at = text.find(c.from);
        ASSERT_NE(at, std::string::npos);
        text.replace(at, strlen(c.from), c.to);
        lc->err = 0;
        EXPECT_EQ(lc.read(c.category, text), c.error == 0);
        EXPECT_EQ(lc->err, c.error);
    }
}

TEST(LocaleObject, LongSequencesAndIndexesBeyondTheirTablesAreRefused) {
    object_text object = object_of(latin1());
    const std::string zeros(2, '\0');
    struct {
        int32_t category;
        std::string section;
        int32_t error;
    } const cases[] = {
        {2, table_text({{"a", 0}}) + "0\n" + table_text({{"a", 2}}) + "1\n0000004100000061\n\n",
         11},
        {2, table_text({{"a", 0}}) + "0\n" + table_text({{"a", 0}}) + "65536\n", 11},
        // A zero byte that begins a longer character would lead a walk beyond the text.
        {2, table_text({{std::string("\0a", 2), 0}, {"a", 0}}) + "0\n" + table_text({}) + "0\n\n",
         3},
        // Steps of another length would pass a terminator of two bytes.
        {2, table_text({{"ab", 0}, {"cde", 0}}) + "0\n" + table_text({}) + "0\n\n", 11},
        {2,
         table_text({{"ab", 0}, {"cd", 0}, {zeros, 0}}) + "0\n" +
             table_text({{"abc", 0}, {"d" + zeros.substr(1), 0}, {zeros, 0}}) + "0\n\n1\n",
         11},
        {3, "as_specified\n" + table_text({{"a", 1}}) + "1\n0\n1\n0\n0\n2\n0001\n0002\n", 11},
        {3, "as_specified\n" + table_text({{"a", 0}}) + "1\n0\n1\n0\n1\n2\n0001\n0\n0002\n", 11},
        {3,
         "as_specified\n" + table_text({{"a", 0}}) +
             "1\n0\n1\n1\n0\n2\n0001\n1000100000061\n0002\n",
         11},
        {3, "as_specified\n" + table_text({{"a", 0}}) + "1\n65536\n1\n0\n0\n2\n0001\n0002\n", 11},
    };
    for (const auto &c : cases) {
        counting_allocator memory;
        record lc;
        object.sections[c.category - gl_first_category] = c.section;
        EXPECT_FALSE(lc.read(c.category, object.one(c.category))) << c.section;
        EXPECT_EQ(lc->err, c.error) << c.section;
    }
}

TEST(LocaleObject, TheFirstMarkerThatBeginsALineWins) {
    object_text object = object_of(latin1());
    std::string messages = std::string(category_markers[5]) + fields({"a", "b", "c", "d"});
    std::string noise(126, 'x'); // a piece ends before the marker, and the line goes on
    record lc;
    ASSERT_TRUE(lc.read(GL_CAT_CTYPE, object.one(GL_CAT_CTYPE)));
    ASSERT_TRUE(lc.read(GL_CAT_MESSAGES,
                        object.head + noise + "x" + category_markers[5] + messages + object.all()));
    EXPECT_STREQ(lc->messages_cat.nostr, "d");
    const std::string zeros = std::string("zero bytes ") + '\0' + "in a line" + '\0' + "\n";
    ASSERT_TRUE(lc.read(GL_CAT_MESSAGES, object.head + zeros + messages));
}

TEST(LocaleObject, EveryCutIsRefusedAndNothingLeaks) {
    code_set plain = two_byte();
    plain.compressed = false;
    for (const object_text &object : {object_of(plain), object_of(two_byte()), analysed_object()}) {
        for (int32_t c = GL_CAT_CTYPE; c <= GL_CAT_MESSAGES; ++c) {
            std::string whole = object.one(c);
            for (size_t cut = 0; cut < whole.size(); ++cut) {
                counting_allocator memory;
                record lc;
                if (c != GL_CAT_CTYPE) {
                    ASSERT_TRUE(lc.read(GL_CAT_CTYPE, object.one(GL_CAT_CTYPE)));
                }
                ASSERT_FALSE(lc.read(c, whole.substr(0, cut))) << c << " at " << cut;
                ASSERT_NE(lc->err, 0) << c << " at " << cut;
            }
        }
    }
}

// What is read in spite of a mutation must serve: the operations run over it, under the sanitizers
// too.
TEST(LocaleObject, MutatedObjectsAreRefusedOrServe) {
    unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const std::string whole[] = {object_of(two_byte()).all(), wide_unit_object().all(),
                                 object_of(four_byte()).all(), analysed_object().all()};
    const std::string texts[] = {"Abc \xa1\xa2\xc3\xa9\xf0\x9f\x98\x80",
                                 std::string("\0A\xd8\1\xdc\1\4\x10", 8), "\xe2"};
    for (int round = 0; round < 1500; ++round) {
        std::string text = whole[random() % std::size(whole)];
        for (auto changes = 1 + random() % 3; changes > 0; --changes)
            text[random() % text.size()] = "0123456789abcdef \n-"[random() % 19];
        counting_allocator memory;
        record lc;
        for (int32_t c = GL_CAT_CTYPE; c <= GL_CAT_MESSAGES; ++c)
            lc.read(c, text);
        update_locale(lc);
        std::string sample = texts[random() % std::size(texts)];
        // A character of wide units that is cut off takes zero bytes; the terminator follows.
        sample.append(gl_mb_loc_min(lc) == 1 ? 1 : 7, '\0');
        guarded_bytes guarded(sample);
        std::vector<char> out(
            static_cast<size_t>(gl_case_conv_outbuflen(lc, static_cast<int32_t>(sample.size()))) +
            4);
        gl_tombsupper(lc, out.data(), guarded.data());
        gl_mbsbytes(lc, guarded.data());
        gl_mbswidth(lc, guarded.data(), 99);
    }
}

// The record that a failure leaves serves, and takes the object once there is memory.
TEST(LocaleObject, EachFailedAllocationIsErrorThree) {
    temp_dir directory;
    const std::string dir = directory.path();
    gl_cache_registry(nullptr, "/nonexistent"); // the built-in one
    for (const object_text &object : {object_of(two_byte()), analysed_object()}) {
        directory.write("test.lco", object.all());
        bool loaded = false;
        for (int call = 0; !loaded && !HasFailure(); ++call) {
            SCOPED_TRACE("call " + std::to_string(call));
            counting_allocator memory;
            counting_allocator::fail_call(call);
            locale_rec *lc = nullptr;
            loaded = gl_lc_load(&lc, "test.lco", nullptr, dir.c_str()) == 0;
            bool failed = counting_allocator::failed();
            counting_allocator::fail_call(-1);
            ASSERT_NE(lc, nullptr);
            // The names of the code sets are looked up without need for memory, and a walk without
            // the flat table of the rows is only slower.
            if (failed && !loaded) {
                EXPECT_EQ(lc->err, GLS_ERR_NO_MEMORY);
            }
            char upper[8] = "";
            EXPECT_TRUE(gl_tombsupper(lc, upper, "ab") == -1 || strcmp(upper, "AB") == 0);
            if (lc != &loc_nomem) {
                char *names = set_categories(lc, GL_CAT_ALL, "test.lco", dir.c_str());
                EXPECT_NE(names, nullptr);
                gl_destroystring(names);
                EXPECT_EQ(gl_tombsupper(lc, upper, "ab"), 2);
            }
            loaded = loaded && !failed;
            gl_lc_unload(lc);
        }
    }
}

} // namespace
