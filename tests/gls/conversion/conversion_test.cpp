// Opening, converting and measuring: the five routines with their oddities, and the stand-ins.

#include "gls/conversion/conversion_objects.h"
#include "support/guarded_bytes.h"
#include "support/temp_dir.h"
#include <kestrion/conversion.h>
#include <kestrion/conversion_routines.h>

#include <fstream>
#include <stdlib.h>
#include <unistd.h>

namespace {

using namespace std::string_literals;

const conversion_entries multibyte = {{"\0"s, "\x19\0"s},
                                      {"A", "\x11"
                                            "a"},
                                      {"B", "\x33"
                                            "bcd"},
                                      {"\x81\x40", "\x12xy"},
                                      {"\x81\x41", "\0"s},
                                      {"C", "\x10"}};
const object_lines multibyte_object{.lengths = "1 3 0 0 1 2", .normal = multibyte};

TEST(Conversion, EachEndHasItsResult) {
    loaded_object loaded(multibyte_object.text());
    ASSERT_EQ(loaded.cv->convert, mb_miconv);
    const struct {
        const char *what;
        std::string source;
        text_form form;
        int32_t room;
        conversion_result wanted;
    } rows[] = {
        {"nothing", "", text_form::counted, 5, {0, 0, "", 0, 5, 0}},
        {"plain", "A\x81@", text_form::counted, 5, {0, 0, "axy", 3, 2, 0}},
        {"inexact goes on", "BA", text_form::counted, 5, {0, 0, "bcda", 2, 1, 1}},
        {"no bytes", "CA", text_form::counted, 5, {0, 0, "a", 2, 4, 0}},
        {"terminated", "A\0A"s, text_form::terminated, 5, {0, 0, "a\0"s, 2, 3, 0}},
        {"counted", "A\0A"s, text_form::counted, 5, {0, 0, "a\0a"s, 3, 2, 0}},
        {"not mapped",
         "A\x81"
         "AA",
         text_form::counted,
         5,
         {-1, 1, "a", 1, 4, 0}},
        {"no character", "AZ", text_form::counted, 5, {-1, 1, "a", 1, 4, 0}},
        {"cut off", "A\x81", text_form::counted, 5, {-1, 7, "a", 1, 4, 0}},
        {"a terminator inside", "A\x81", text_form::terminated, 5, {-1, 1, "a", 1, 4, 0}},
        {"no room", "AB", text_form::counted, 3, {-1, 14, "a", 1, 2, 0}},
        {"not mapped before no room",
         "\x81"
         "A",
         text_form::counted,
         0,
         {-1, 1, "", 0, 0, 0}},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(convert(loaded.cv, row.source, row.room, nullptr, row.form), row.wanted)
            << row.what;
        if (row.form == text_form::terminated)
            continue;
        conversion_result measured = row.wanted;
        measured.text = "";
        EXPECT_EQ(measure(loaded.cv, row.source, row.room), measured) << row.what;
    }
}

TEST(Conversion, TheRoutineFollowsFromTheLengths) {
    const struct {
        const char *states, *lengths;
        cv_routine routine;
    } rows[] = {
        {"0 0", "1 1 0 0 1 1", sb_miconv},
        {"0 1", "1 1 0 0 1 1", mb_miconv},
        {"0 0", "1 2 0 0 1 1", mb_miconv},
        {"0 0", "2 2 0 0 1 3", little_endian_unicode_target_miconv},
        {"0 0", "4 4 0 0 1 1", little_endian_unicode_target_miconv},
        {"0 1", "2 2 0 0 1 1", mb_miconv},
        {"0 0", "3 3 0 0 1 1", mb_miconv},
        {"0 0", "2 2 0 0 2 2", little_endian_unicode_source_miconv},
        {"0 1", "1 1 0 0 4 4", little_endian_unicode_source_miconv},
        {"1 0", "1 1 0 0 2 2", mb_miconv},
    };
    for (const auto &row : rows) {
        loaded_object loaded(object_lines{
            .states = row.states,
            .lengths = row.lengths,
            .normal = {{"AA",
                        "\x11"
                        "a"}}}.text());
        ASSERT_EQ(loaded.result, 0);
        EXPECT_EQ(loaded.cv->convert, row.routine) << row.states << ", " << row.lengths;
    }
}

conversion_entries all_bytes(unsigned char unmapped = 0) {
    conversion_entries entries;
    for (int b = 0; b < 256; ++b)
        if (b == 0 || b != unmapped)
            entries[std::string(1, static_cast<char>(b))] =
                b == 0 ? "\x19\0"s : "\x11"s + static_cast<char>(b ^ 0x80);
    return entries;
}

TEST(Conversion, ByteTableOnlyWhereEveryByteMaps) {
    const object_lines whole{.no_byte_table = "0", .normal = all_bytes()};
    loaded_object loaded(whole.text());
    const unsigned char *table = qvt_gl_cv_sb2sb_table(loaded.cv);
    ASSERT_NE(table, nullptr);
    for (int b = 1; b < 256; ++b)
        EXPECT_EQ(table[b], b ^ 0x80);
    EXPECT_EQ(loaded_object(object_lines{.normal = all_bytes()}.text()).cv->sb_table, nullptr);
    loaded_object holed(object_lines{.no_byte_table = "0", .normal = all_bytes(0x90)}.text());
    EXPECT_EQ(qvt_gl_cv_sb2sb_table(holed.cv), nullptr);
    EXPECT_EQ(std::make_pair(holed.result, holed.cv->cv_err), std::make_pair(0, 0));
    for (const cv_rec *none : {static_cast<const cv_rec *>(nullptr), &std::as_const(cd_fileerr)})
        EXPECT_EQ(qvt_gl_cv_sb2sb_table(none), nullptr);
}

// Each output byte of a single-byte pair counts as one, whatever the control byte says.
TEST(Conversion, SingleBytesMoveOneByOne) {
    loaded_object loaded(object_lines{
        .normal = {{"A", "\x10"
                         "a"},
                   {"B", "\x31"
                         "b"},
                   {"C",
                    "\x11"
                    "c"}}}.text());
    ASSERT_EQ(loaded.cv->convert, sb_miconv);
    EXPECT_EQ(convert(loaded.cv, "ABC", 3), (conversion_result{0, 0, "\0bc"s, 3, 0, 1}));
    EXPECT_EQ(convert(loaded.cv, "CC", 1), (conversion_result{-1, 14, "c", 1, 0, 0}));
}

// Two bytes of room let a unit of four in: what fits is stored, and the room ends below zero.
TEST(Conversion, WideTargetTestsForTwoBytes) {
    loaded_object four(object_lines{.lengths = "4 4 0 0 1 1",
                                    .normal = {{"A", "\x14\0\x01\xf6\x00"s}, {"B", "\x12\0B"s}}}
                           .text());
    EXPECT_EQ(convert(four.cv, "AB", 8),
              (conversion_result{0, 0, "\0\xf6\x01\0\0\0B\0"s, 2, 0, 0}));
    EXPECT_EQ(convert(four.cv, "AB", 2), (conversion_result{-1, 14, "\0\xf6"s, 1, -2, 0}));
    EXPECT_EQ(convert(four.cv, "A", 3), (conversion_result{0, 0, "\0\xf6\x01"s, 1, -1, 0}));
    EXPECT_EQ(measure(four.cv, "AB", 2), (conversion_result{-1, 14, "", 1, -2, 0}));
    EXPECT_EQ(convert(four.cv, "A", 1).error, 14);
    loaded_object two(
        object_lines{.lengths = "2 2 0 0 1 1", .normal = {{"A", "\x12\xac\x20"}}}.text());
    EXPECT_EQ(convert(two.cv, "AA", 4), (conversion_result{0, 0, "\x20\xac\x20\xac", 2, 0, 0}));
}

TEST(Conversion, WideSourceIsReadFromItsHighestByte) {
    const conversion_entries two{{"\0\0"s, "\x19\0"s}, {"\x20\xac", "\x13\xe2\x82\xac"}};
    loaded_object narrow(object_lines{.lengths = "1 3 0 0 2 2", .normal = two}.text());
    EXPECT_EQ(convert(narrow.cv, "\xac\x20\0\0\xac\x20"s, 9).text, "\xe2\x82\xac\0\xe2\x82\xac"s);
    EXPECT_EQ(convert(narrow.cv, "\xac\x20\0\0\xac\x20"s, 9, nullptr, text_form::terminated).used,
              4);
    EXPECT_EQ(convert(narrow.cv, "\xac\x20\xac", 9),
              (conversion_result{-1, 7, "\xe2\x82\xac", 2, 6, 0}));
    EXPECT_EQ(convert(narrow.cv, "\x20\xac").error, 1);
    loaded_object wide(
        object_lines{.lengths = "2 2 0 0 4 4", .normal = {{"\0\0\x20\xac"s, "\x12\x20\xac"}}}
            .text());
    EXPECT_EQ(convert(wide.cv, "\xac\x20\0\0"s, 2), (conversion_result{0, 0, "\xac\x20", 4, 0, 0}));
    EXPECT_EQ(convert(wide.cv, "\xac\x20\0"s, 2).error, 7);
}

// A table that maps the zero character like any other must not lead beyond a terminated text.
TEST(Conversion, ZeroEndsATerminatedTextWithoutItsMark) {
    for (const char *lengths : {"1 1 0 0 1 1", "1 2 0 0 1 1"}) {
        loaded_object loaded(object_lines{
            .lengths = lengths,
            .normal = {{"\0"s, "\x11\0"s},
                       {"A",
                        "\x11"
                        "a"}}}.text());
        guarded_bytes text("AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\0"s);
        const char *source = text.data();
        int32_t room = 100, lossy;
        EXPECT_EQ(gl_miconv(loaded.cv, &source, nullptr, nullptr, &room, &lossy), 0) << lengths;
        EXPECT_EQ(room, 60);
    }
}

// Where no character is a single byte, one may go on into the terminator, or bring the walk out of
// step with it.
TEST(Conversion, NothingIsReadAfterATerminator) {
    const conversion_entries pairs{{"\0\0"s, "\x19\0"s}, {"AB", "\x11p"}, {"C\0"s, "\x11q"}};
    const conversion_entries longer{{"\0\0"s, "\x19\0"s}, {"ABC", "\x11r"}, {"CD\0\0"s, "\x11s"}};
    const struct {
        const char *lengths;
        const conversion_entries &entries;
        std::string text;
        int32_t result, error;
        int64_t used;
    } rows[] = {
        {"1 2 0 0 1 2", pairs, "\0"s, -1, 1, 0},
        {"1 2 0 0 1 2", pairs, "ABC\0"s, -1, 1, 2},
        {"1 2 0 0 2 3", pairs, "ABC\0\0\0"s, 0, 0, 6},
        {"1 2 0 0 2 4", longer, "CD\0\0"s, -1, 1, 0},
        {"1 2 0 0 3 4", pairs, "AB\0\0\0"s, -1, 1, 0}, // the terminator is not on a unit
        {"1 2 0 0 2 4", longer, "ABCD\0\0"s, -1, 1, 0},
    };
    for (const auto &row : rows) {
        loaded_object loaded(object_lines{.lengths = row.lengths, .normal = row.entries}.text());
        guarded_bytes text(row.text);
        const char *source = text.data();
        int32_t room = 100, lossy;
        EXPECT_EQ(gl_miconv(loaded.cv, &source, nullptr, nullptr, &room, &lossy), row.result);
        EXPECT_EQ(std::make_pair(loaded.cv->cv_err, source - text.data()),
                  std::make_pair(row.error, row.used))
            << row.lengths;
    }
}

const object_lines stateful_target{.states = "1 1",
                                   .shifts = "10e10f00",
                                   .lengths = "1 2 0 0 1 2",
                                   .normal = {{"\0"s, "\x19\0"s},
                                              {"A", "\x11"
                                                    "A"},
                                              {"\xb0\xa1", "\x52\x30\x21"}}};
const object_lines stateful_source{
    .states = "1 0",
    .shifts = "0010e10f",
    .lengths = "1 2 0 0 1 2",
    .normal = {{"\0"s, "\x19\0"s},
               {"A", "\x11"
                     "A"},
               {"\x0e", "\x90"},
               {"\x0f", "\x10"}},
    .shifted = {{"0!", "\x12\xb0\xa1"}, {"\0"s, "\x19\0"s}, {"\x0f", "\x90"}, {"\x0e", "\x10"}}};

TEST(Conversion, ShiftSequencesComeFirstAndCloseTheText) {
    loaded_object loaded(stateful_target.text());
    const std::string one = "A\xb0\xa1\xb0\xa1"
                            "A\xb0\xa1";
    EXPECT_EQ(convert(loaded.cv, one, 20), (conversion_result{0, 0,
                                                              "A\x0e"
                                                              "0!0!\x0f"
                                                              "A\x0e"
                                                              "0!\x0f",
                                                              8, 8, 0}));
    cv_state open = {.reset = 1, .flush = 0, .source_shifted = 1, .target_shifted = 1};
    EXPECT_EQ(convert(loaded.cv, one, 20, &open).text, "A\x0e"
                                                       "0!0!\x0f"
                                                       "A\x0e"
                                                       "0!");
    EXPECT_EQ(open.target_shifted, 1);
    open.reset = 0;
    EXPECT_EQ(convert(loaded.cv, "A", 20, &open).text, "\x0f"
                                                       "A");
    EXPECT_EQ(convert(loaded.cv, "\xb0\xa1\0A"s, 20, nullptr, text_form::terminated).text,
              "\x0e"
              "0!\x0f\0"s);
    // All three lengths must fit before anything is stored.
    EXPECT_EQ(convert(loaded.cv, "\xb0\xa1", 3), (conversion_result{-1, 14, "", 0, 3, 0}));
    EXPECT_EQ(convert(loaded.cv, "\xb0\xa1", 4).text, "\x0e"
                                                      "0!\x0f");
}

TEST(Conversion, TheSourceStateCountsFromTheNextCharacter) {
    loaded_object loaded(stateful_source.text());
    EXPECT_EQ(convert(loaded.cv,
                      "A\x0e"
                      "0!\x0e"
                      "0!\x0f\x0f"
                      "A",
                      20)
                  .text,
              "A\xb0\xa1\xb0\xa1"
              "A");
    EXPECT_EQ(convert(loaded.cv, "0!").error, 1);
    EXPECT_EQ(convert(loaded.cv, "\x0e"
                                 "0"),
              (conversion_result{-1, 7, "", 1, 1 << 20, 0}));
}

TEST(Conversion, PiecesGiveTheSameAsTheWhole) {
    const struct {
        const object_lines &lines;
        std::string text;
        int32_t widest; // with its shift sequences
    } rows[] = {{multibyte_object, "AB\x81@A\x81@\x81@BBA", 3},
                {stateful_target,
                 "A\xb0\xa1\xb0\xa1"
                 "AA\xb0\xa1",
                 4},
                {stateful_source,
                 "A\x0e"
                 "0!0!\x0f"
                 "A\x0e"
                 "0!0!\x0f",
                 2}};
    for (const auto &row : rows) {
        loaded_object loaded(row.lines.text());
        const conversion_result whole = convert(loaded.cv, row.text);
        ASSERT_EQ(whole.result, 0);
        for (size_t cut = 0; cut <= row.text.size(); ++cut)
            for (int32_t room = row.widest; room < 12; ++room)
                EXPECT_EQ(in_pieces(loaded.cv, row.text, cut, room), whole.text)
                    << cut << " " << room;
        for (int32_t room = 0; room <= static_cast<int32_t>(whole.text.size()); ++room) {
            const conversion_result stored = convert(loaded.cv, row.text, room);
            conversion_result measured = measure(loaded.cv, row.text, room);
            measured.text = stored.text;
            EXPECT_EQ(measured, stored);
            EXPECT_EQ(whole.text.compare(0, stored.text.size(), stored.text), 0);
        }
    }
}

TEST(Conversion, OutputLengthIsTheRoundedExpansionTimesTheLength) {
    const struct {
        float expansion;
        int32_t length, wanted;
    } rows[] = {{1.5F, 10, 20},         {2.0F, 10, 20}, {2.01F, 10, 30},
                {1.0F, 0, 0},           {0.0F, 10, 0},  {3.0F, 1 << 30, 0x7fffffff},
                {3e38F, 1, 0x7fffffff}, {1.0F, -4, 0}};
    for (const auto &row : rows) {
        cv_rec cv = {};
        cv.expansion = row.expansion;
        EXPECT_EQ(gl_cv_outbuflen(&cv, row.length), row.wanted) << row.expansion;
    }
}

TEST(Conversion, OpensAnswerWithARecordAStandInOrNothing) {
    const temp_dir site;
    const std::string dir = site.path();
    const std::string object = multibyte_object.text();
    for (const char *file : {"/0333e01c.cvo", "/8859-1_utf8.cvo"})
        std::ofstream(dir + file) << object;
    std::ofstream(dir + "/e01c0333.cvo") << "FILE_TYPE=locale\n";
    setenv("GL_PATH", (dir + ":" KESTRION_SOURCE_DIR "/locales").c_str(), 1);
    const std::string long_name = "a." + std::string(1024, 'x');
    const std::string half = std::string(510, 'x');
    const struct {
        const char *what;
        int32_t (*open)(cv_rec **, const std::string &, const char *, const char *);
        std::string to, from;
        int32_t result, error; // error of the record; -1: none was handed out
        const cv_rec *stand_in;
    } rows[] = {
#define LOAD(dir_name)                                                                             \
    [](cv_rec **cv, const std::string &d, const char *t, const char *f) {                          \
        (void)d;                                                                                   \
        return gl_cv_load(cv, t, f, nullptr, dir_name);                                            \
    }
#define CALL(function)                                                                             \
    [](cv_rec **cv, const std::string &, const char *t, const char *f) {                           \
        return function(cv, t, f);                                                                 \
    }
        {"load", LOAD(nullptr), "en_US.utf8", "de_DE.8859-1", 1, 0, nullptr},
        {"load from a directory", LOAD(d.c_str()), "en_US.utf8", "de_DE.819", 1, 0, nullptr},
        {"one code set, no file", LOAD("/nowhere"), "en_US.8859-1", "de_DE.819@x", 0, -1, nullptr},
        {"unknown code set", LOAD(nullptr), "en_US.nosuchset", "de_DE.819", -1, 7, &cd_einval},
        {"no specifier", LOAD(nullptr), "en_US.utf8", "de_DE", -1, 7, &cd_einval},
        {"no file", LOAD("/nowhere"), "en_US.utf8", "de_DE.819", -1, 8, nullptr},
        {"another file", LOAD(nullptr), "de_DE.819", "en_US.utf8", -1, 8, nullptr},
        {"by names", CALL(gl_cv_open), "en_US.utf8", "de_DE.8859-1 x", 1, 0, nullptr},
        {"one name", CALL(gl_cv_open), "en_US.utf8", "de_DE.utf8@x", 0, -1, nullptr},
        {"one set by two names", CALL(gl_cv_open), "a.819", "a.8859-1", -1, 8, nullptr},
        {"no name", CALL(gl_cv_open), "en_US.utf8", "de_DE", -1, 8, &cd_fileerr},
        {"name too long", CALL(gl_cv_open), long_name, "a.utf8", -1, 8, &cd_fileerr},
        {"iconv", CALL(gl_iconv_open), "utf8", "8859-1", 0, 0, nullptr},
        {"iconv of one", CALL(gl_iconv_open), "utf8", "utf8", -1, 8, &cd_fileerr},
        {"1018 characters", CALL(gl_iconv_open), half.substr(2), half, -1, 8, nullptr},
        {"1019 characters", CALL(gl_iconv_open), half.substr(1), half, -1, 8, &cd_fileerr},
#undef LOAD
#undef CALL
    };
    for (const auto &row : rows) {
        cv_rec *cv = &cd_enomem;
        EXPECT_EQ(row.open(&cv, dir, row.to.c_str(), row.from.c_str()), row.result) << row.what;
        EXPECT_EQ(cv == nullptr, row.error == -1) << row.what;
        if (cv == nullptr)
            continue;
        EXPECT_EQ(cv->cv_err, row.error) << row.what;
        if (row.stand_in != nullptr) {
            EXPECT_EQ(cv, row.stand_in) << row.what;
        }
        const char *source = "A";
        int32_t length = 1, room = 1, lossy = 0;
        EXPECT_EQ(gl_miconv(cv, &source, &length, nullptr, &room, &lossy), row.result < 0 ? -1 : 0);
        EXPECT_EQ(gl_cv_unload(cv), 0);
    }
    EXPECT_EQ(gl_cv_unload(nullptr), -1);
    cv_rec *cv = nullptr;
    EXPECT_EQ(gl_iconv_open1(&cv, nullptr), -1);
    EXPECT_EQ(cv->cv_err, 8);
    gl_cv_unload(cv);
}

TEST(Conversion, ARefusedObjectLeavesNoFileOpen) {
    const temp_dir site;
    site.write("0333e01c.cvo", "FILE_TYPE=locale\n");
    setenv("GL_PATH", (site.path() + ":" KESTRION_SOURCE_DIR "/locales").c_str(), 1);
    const auto next_descriptor = [] {
        const int fd = dup(STDERR_FILENO);
        close(fd);
        return fd;
    };
    const int before = next_descriptor();
    cv_rec *cv = nullptr;
    EXPECT_EQ(gl_cv_load(&cv, "de_DE.utf8", "de_DE.819", nullptr, site.path().c_str()), -1);
    EXPECT_EQ(cv->cv_err, GLS_ERR_FILE);
    gl_cv_unload(cv);
    EXPECT_EQ(gl_iconv_open1(&cv, "0333e01c.cvo"), -1);
    gl_cv_unload(cv);
    EXPECT_EQ(next_descriptor(), before);
}

TEST(Conversion, WithoutMemoryTheStandInSaysSo) {
    setenv("GL_PATH", KESTRION_SOURCE_DIR "/locales", 1);
    counting_allocator allocator;
    for (int call = 0; call < 2; ++call) {
        counting_allocator::fail_call(call);
        cv_rec *cv = nullptr;
        EXPECT_EQ(call == 0 ? gl_iconv_open1(&cv, "x") : gl_iconv_open(&cv, "a", "b"), -1);
        counting_allocator::fail_call(-1);
        if (call == 0) {
            EXPECT_EQ(cv, &cd_enomem);
        }
        gl_cv_unload(cv);
    }
    EXPECT_EQ(cd_enomem.cv_err, 3);
}

} // namespace
