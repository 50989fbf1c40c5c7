// Conversion objects as files: what the reader takes and refuses, and what it leaves.

#include "gls/conversion/conversion_objects.h"
#include <kestrion/conversion_file.h>
#include <kestrion/gls_log.h>

#include <fstream>
#include <iterator>
#include <random>

namespace {

using namespace std::string_literals;

// Two bytes to one or two, a terminator, an inexact one, a character of two bytes.
std::string small_object() {
    return object_lines{.lengths = "1 2 3 4 1 2",
                        .expansion = "2.0",
                        .normal = {{"\0"s, "\x19\0"s},
                                   {"A", "\x11"
                                         "a"},
                                   {"B", "\x32"
                                         "bb"},
                                   {"\x81\x40", "\x12xy"},
                                   {"\x81\x41", "\x00"s}}}
        .text();
}

std::string replaced(std::string text, const std::string &from, const std::string &to) {
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

// Loads with the log on the standard output and returns what it said.
std::string said_by_load(const std::string &text, int32_t &result, int32_t &error) {
    gls_debug_initialized = 1;
    gls_popups = 1;
    testing::internal::CaptureStdout();
    {
        loaded_object loaded(text);
        result = loaded.result;
        error = loaded.cv->cv_err;
    }
    fflush(stdout);
    std::string said = testing::internal::GetCapturedStdout();
    gls_popups = 0;
    return said;
}

TEST(ConversionFile, EachFaultHasItsErrorAndMessage) {
    const struct {
        const char *what, *from, *to;
        int32_t result, error;
        const char *message; // null: none
    } rows[] = {
        {"as it is", "HEADER", "HEADER", 0, 0, "CVO file loaded successfully."},
        {"no line skipped", "LINES=4\nCOMPILER=test\n", "LINES=3\n", 0, 0, "loaded"},
        {"a count below three", "LINES=4\nCOMPILER=test\n", "LINES=-9223372036854775808\n", 0, 0,
         "loaded"},
        {"any name before the count", "HEADER_LINES=", "=", 0, 0, "loaded"},
        {"expansion without a point", "2.0", "2", 0, 0, "loaded"},
        {"another type", "=codeset", "=Codeset", -1, 8, "Invalid CVO file. Wrong FILE_TYPE."},
        {"a blank after the type", "object\n", "object \n", -1, 8, "Wrong FILE_TYPE."},
        {"another version", "VERSION=9", "VERSION=10", -1, 8, "Invalid CVO file. Wrong Version."},
        {"no =", "HEADER_LINES=4", "HEADER_LINES 4", -1, 8, nullptr},
        {"more lines than there are", "LINES=4", "LINES=99999999999", -1, 8, nullptr},
        {"sequence of five bytes", "\n0000\n", "\n50102030405000\n", -1, 8, nullptr},
        {"sequences too short", "\n0000\n", "\n10e00\n", -1, 0, nullptr},
        {"expansion beyond 32 bits", "2.0", "1e300", -1, 8, nullptr},
        {"a number too many", "0 0\n", "0 0 0\n", -1, 0, nullptr},
        {"a number too few", "1 2 3 4 1 2\n", "1 2 3 4 1\n", -1, 0, nullptr},
        {"target of no bytes", "1 2 3 4 1 2\n", "1 0 3 4 1 2\n", -1, 0,
         "cv->target_max_len should be in range 1..4"},
        {"target of five bytes", "1 2 3 4 1 2\n", "1 5 3 4 1 2\n", -1, 0,
         "cv->target_max_len should be in range 1..4"},
        {"target beyond 32 bits", "1 2 3 4 1 2\n", "1 4294967298 3 4 1 2\n", -1, 0, "range 1..4"},
        {"datum beyond the target", "1 2 3 4 1 2\n", "1 1 3 4 1 2\n", -1, 3, nullptr},
        {"five-byte characters", "2 1 1 00", "5 1 1 00", -1, 21, nullptr},
        {"no second table", "0 0\n", "1 0\n", -1, 3, nullptr},
    };
    for (const auto &row : rows) {
        counting_allocator no_leak;
        int32_t result, error;
        const std::string said =
            said_by_load(replaced(small_object(), row.from, row.to), result, error);
        EXPECT_EQ(result, row.result) << row.what;
        EXPECT_EQ(error, row.error) << row.what;
        if (row.message == nullptr)
            EXPECT_EQ(said, "") << row.what;
        else
            EXPECT_NE(said.find(row.message), std::string::npos) << row.what << ": " << said;
    }
}

TEST(ConversionFile, FieldsLandWhereTheyBelong) {
    object_lines lines{.states = "1 7",
                       .shifts = "10e10f21b2431b2428",
                       .lengths = "1 2 3 4 1 2",
                       .no_byte_table = "0",
                       .expansion = "1.5",
                       .normal = {{"A", "\x11"
                                        "a"}},
                       .shifted = {{"A", "\x11"
                                         "b"}}};
    loaded_object loaded(lines.text());
    ASSERT_EQ(loaded.result, 0);
    const cv_rec &cv = *loaded.cv;
    EXPECT_EQ(std::tie(cv.source_stateful, cv.target_stateful), std::make_tuple(1, 7));
    EXPECT_EQ(std::tie(cv.shift_in_len, cv.shift_out_len, cv.source_shift_in_len,
                       cv.source_shift_out_len),
              std::make_tuple(1, 1, 2, 3));
    EXPECT_EQ(memcmp(cv.source_shift_in, "\x1b\x24\0\0", 4), 0);
    EXPECT_EQ(std::tie(cv.target_min_len, cv.target_max_len, cv.unused1, cv.unused2,
                       cv.source_min_len, cv.source_max_len),
              std::make_tuple(1, 2, 3, 4, 1, 2));
    EXPECT_EQ(gl_iconv_expansion(&cv, 0), 1.5);
}

// A cut file is refused with nothing leaked; only its very end says nothing.
TEST(ConversionFile, EveryCutIsRefusedWithoutALeak) {
    const std::string whole = small_object();
    for (size_t size = 0; size + 2 < whole.size(); ++size) {
        counting_allocator no_leak;
        loaded_object loaded(whole.substr(0, size));
        if (loaded.result == 0) {
            EXPECT_EQ(whole.find_first_not_of("0\n", size), std::string::npos) << size;
        }
    }
}

// Damaged objects load or don't; those that do convert the same with and without derived tables,
// and read nothing after a text.
TEST(ConversionFile, DamageNeverLeadsOutsideOfText) {
    const std::string objects[] = {small_object(),
                                   object_lines{.lengths = "2 2 0 0 1 1",
                                                .normal = {{"A", "\x12\0"
                                                                 "A"s}}}
                                       .text(),
                                   object_lines{.lengths = "1 1 0 0 2 2",
                                                .normal = {{"\0A"s, "\x11"
                                                                    "A"}}}
                                       .text(),
                                   object_lines{.states = "1 1",
                                                .shifts = "10e10f00",
                                                .normal = {{"A", "\x51"
                                                                 "a"}},
                                                .shifted = {{"B", "\x91"
                                                                  "b"}}}
                                       .text(),
                                   object_lines{.no_byte_table = "0",
                                                .normal = {{"A", "\x11"
                                                                 "a"}}}
                                       .text()};
    std::mt19937 random(20261122);
    int accepted = 0;
    for (int round = 0; round < 6000; ++round) {
        std::string text = objects[random() % std::size(objects)];
        const size_t head = text.find("test\n") + 5;
        for (unsigned long damage = random() % 3 + 1; damage > 0; --damage)
            text[head + random() % (text.size() - head)] = "0123456789abcf \n"[random() % 16];
        counting_allocator no_leak;
        loaded_object loaded(text);
        if (loaded.result != 0)
            continue;
        ++accepted;
        std::string source(40, 'A');
        for (char &c : source)
            c = "AAAB\x81@"[random() % 6];
        const conversion_result fast = convert(loaded.cv, source, 100);
        void *tables = std::exchange(loaded.cv->fast, nullptr);
        EXPECT_EQ(convert(loaded.cv, source, 100), fast) << text;
        loaded.cv->fast = tables;
        source.push_back('\0');
        source.resize(source.size() + (4 - source.size() % 4), '\0'); // for units of 4
        convert(loaded.cv, source, 200, nullptr, text_form::terminated);
    }
    EXPECT_GT(accepted, 1000) << "most damage is seen at once";
}

TEST(ConversionFile, WithoutMemoryNothingIsLeaked) {
    const std::string text = small_object();
    for (int call = 0;; ++call) {
        counting_allocator allocator;
        counting_allocator::fail_call(call);
        loaded_object loaded(text);
        const bool failed = counting_allocator::failed();
        counting_allocator::fail_call(-1);
        if (!failed)
            break;
        if (loaded.cv == nullptr)
            continue;
        if (loaded.result == 0) { // without the derived tables the conversion is the same
            EXPECT_EQ(convert(loaded.cv, "AB\x81\x40"s).text, "abbxy") << call;
        } else {
            EXPECT_EQ(loaded.cv->cv_err, 3) << call;
        }
    }
}

// The example of the format's page, read and written back byte for byte.
TEST(ConversionFile, TheDocumentedExampleIsTrue) {
    std::ifstream page(KESTRION_SOURCE_DIR "/docs/formats/conversion-object.md");
    const std::string all{std::istreambuf_iterator<char>(page), {}};
    std::string example;
    for (size_t at = all.find("\n    FILE_TYPE="); all.compare(at, 5, "\n    ") == 0;) {
        const size_t end = all.find('\n', at + 1);
        example += all.substr(at + 5, std::min(end, all.find("  ", at + 5)) - at - 5) + "\n";
        at = end;
    }
    loaded_object loaded(example);
    ASSERT_EQ(loaded.result, 0) << example;
    EXPECT_EQ(convert(loaded.cv, "a\xe9\x80"s).text, "a\xc3\xa9\xe2\x82\xac");
    EXPECT_EQ(convert(loaded.cv, "b"s).error, 1);
    const std::string head = example.substr(0, example.find("1 1 1 00"));
    const std::string table = text_written(
        [&](FILE *stream) { _gl_fprintf_multi(stream, loaded.cv->table_normal, conv_writer); });
    EXPECT_EQ(head + table, example);
}

} // namespace
