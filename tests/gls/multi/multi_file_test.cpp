#include "gls/engine_test.h"
#include "gls/multi/multi_reference.h"
#include "gls/multi/multi_tree.h"
#include "tests/support/temp_dir.h"
#include <kestrion/multi_file.h>

namespace {

constexpr uint16_t zero = 0;

// ASCII, and the lead bytes A1 and A2 with trail bytes A1-FE.
constexpr char shared_rows[] = "2 1 3 0000\n"
                               "2 2\n"
                               "0000108004\n"
                               "a100100201\n"
                               "0000000\n"
                               "a100105e04\n"
                               "0000000\n"
                               "000010800100\n"
                               "0000000\n"
                               "a100105e01c4\n"
                               "0000000\n"
                               "1 1 0 0\n"
                               "1 1 1 1\n"
                               "1 1 1 1\n";

// The same table with nothing shared, worked by hand.
constexpr char plain_rows[] = "2 1 1 0000\n"
                              "1 1\n"
                              "0000108004\n"
                              "a10020010101\n" // two equal entries are no run yet
                              "0000000\n"
                              "000010800100\n"
                              "0000000\n"
                              "1 1\n"
                              "a100105e04\n"
                              "0000000\n"
                              "a100105e01c4\n"
                              "0000000\n"
                              "1 1\n"
                              "a100105e04\n"
                              "0000000\n"
                              "a100105e01c4\n"
                              "0000000\n";

// Reads a table of 16-bit data and gives the table back, or its `err`.
int32_t read_text(std::string_view text, multi_arr **out = nullptr, int32_t greatest = 4) {
    memory_file file(text);
    multi_arr *const table = _gl_create_multi(2, 0, &zero);
    if (table == nullptr)
        return GLS_ERR_NO_MEMORY;
    const int result = _gl_fscanf_multi(file.file, table, greatest, ub2_reader);
    const int32_t err = _gl_multi_err(table);
    EXPECT_EQ(result, err == 0 ? 0 : -1);
    EXPECT_NE(table->root, nullptr);
    if (out != nullptr && err == 0)
        *out = table;
    else
        _gl_free_multi(table);
    return err;
}

std::string written(multi_arr *table, multi_datum_writer writer = ub2_writer) {
    return text_written([&](FILE *stream) { _gl_fprintf_multi(stream, table, writer); });
}

int datum_of(const multi_arr *table, const char *text) {
    int32_t word = 0;
    const void *const datum = _gl_retrieve_text_multi_nl(text, table, &word);
    return datum != nullptr ? *static_cast<const uint16_t *>(datum) : -word;
}

TEST(MultiFile, BothFormsReadAsTheSameTable) {
    for (const char *text : {shared_rows, plain_rows}) {
        const counting_allocator memory;
        multi_arr *table = nullptr;
        ASSERT_EQ(read_text(text, &table), 0) << text;
        EXPECT_EQ(datum_of(table, "A"), 0x100);
        EXPECT_EQ(datum_of(table, ""), 0x100);
        EXPECT_EQ(datum_of(table, "\xA1\xA1"), 0x1C4);
        EXPECT_EQ(datum_of(table, "\xA2\xFE"), 0x1C4);
        EXPECT_EQ(datum_of(table, "\xA2\xFF"), -1);
        EXPECT_EQ(datum_of(table, "\xA3\xA1"), -1);
        EXPECT_EQ(datum_of(table, "\x80"), -1);
        EXPECT_EQ(table->root->child_count, 2);
        EXPECT_EQ(table->offset_count, 1);
        EXPECT_EQ(table->max_len, 2);
        if (text == plain_rows) {
            EXPECT_EQ(written(table), plain_rows);
            ASSERT_EQ(_gl_compress_multi(table), 0);
        }
        EXPECT_EQ(table->flag_count, 2);
        EXPECT_EQ(table->shared_flag_children[0], 2);
        std::string wanted = shared_rows;
        wanted.replace(wanted.find("a100100201"), 10, "a10020010101");
        EXPECT_EQ(written(table), wanted);
        _gl_free_multi(table);
    }
}

TEST(MultiFile, ExampleOfTheFormatsPageIsReadAndWritten) {
    const std::string page = file_text(KESTRION_SOURCE_DIR "/docs/formats/multi-table.md");
    const size_t start = page.rfind("```\n2 1 3") + 4;
    const std::string example = page.substr(start, page.find("```", start) - start);
    multi_arr *table = nullptr;
    ASSERT_EQ(read_text(example, &table), 0) << example;
    EXPECT_EQ(datum_of(table, "\xA2\xA1"), 0x1C4);
    EXPECT_EQ(written(table), example);
    _gl_free_multi(table);
}

TEST(MultiFile, ArrayLinesEndBeforeRunsOfFour) {
    const struct {
        std::map<int, uint16_t> entries;
        const char *lines;
    } rows[] = {
        {{{0x10, 1}, {0x11, 1}, {0x12, 1}}, "10003001000100010001\n"},
        {{{0x10, 1}, {0x11, 1}, {0x12, 1}, {0x13, 1}}, "100010040001\n"},
        {{{0x10, 9}, {0x11, 1}, {0x12, 1}, {0x13, 1}, {0x14, 1}}, "100010010009\n110010040001\n"},
        // three empty entries are written out, four end the line
        {{{0x10, 1}, {0x14, 2}}, "1000500100010000000000000002\n"},
        {{{0x10, 1}, {0x15, 2}}, "100010010001\n150010010002\n"},
        // nothing empty is written after the last entry
        {{{0xFD, 7}}, "fd0010010007\n"},
    };
    for (const auto &row : rows) {
        multi_arr *const table = _gl_create_multi(2, 0, &zero);
        for (const auto &[byte, datum] : row.entries) {
            const gl_char_desc desc = {.length = 1, .bytes = {static_cast<unsigned char>(byte)}};
            ASSERT_EQ(_gl_insert_desc_multi(&desc, &datum, table), 0);
        }
        EXPECT_EQ(written(table),
                  "1 1 1 0000\n1 1\n0000110004\n0000000\n" + std::string(row.lines) + "0000000\n");
        _gl_free_multi(table);
    }
}

TEST(MultiFile, EveryByteIsACharacterWhereOnlySingleBytesAre) {
    multi_arr *const table = _gl_create_multi(2, 0, &zero);
    EXPECT_EQ(written(table), "0 4 1 0000\n1 0\n0000000\n")
        << "nothing says that bytes are characters";
    table->min_len = 1;
    EXPECT_EQ(written(table), "0 1 1 0000\n1 0\n0000110004\n0000000\n");
    EXPECT_EQ(datum_of(table, "\xFF"), 0);
    _gl_free_multi(table);
}

TEST(MultiFile, RepeatedPatternsOfAnyLengthAreRead) {
    multi_arr *table = nullptr;
    ASSERT_EQ(read_text("1 1 1 00ff\n1 1\n0000110004\n0000000\n"
                        "40003003000100020003\n" // nine entries
                        "FE0020010004000A\n"     // up to the last slot, capitals
                        "600010000007\n"         // repeated no times
                        "0000000\n",
                        &table),
              0);
    EXPECT_EQ(datum_of(table, "\x40"), 1);
    EXPECT_EQ(datum_of(table, "\x47"), 2);
    EXPECT_EQ(datum_of(table, "\x48"), 3);
    EXPECT_EQ(datum_of(table, "\x49"), 0xFF);
    EXPECT_EQ(datum_of(table, "\x60"), 0xFF);
    EXPECT_EQ(datum_of(table, "\xFF"), 10);
    _gl_free_multi(table);
}

TEST(MultiFile, BadTablesAreRefused) {
    const struct {
        const char *what;
        const char *text;
        int32_t err;
    } rows[] = {
        {"longer than the caller allows", "5 1 1 0000\n1 1\n0000000\n0000000\n", 21},
        {"much longer", "99999999999999999999 1 1 0000\n", 21},
        {"negative length", "-1 1 1 0000\n1 0\n0000000\n", 3},
        {"shortest 0", "2 0 1 0000\n1 0\n0000000\n", 3},
        {"shortest above the longest", "1 2 1 0000\n1 0\n0000000\n", 3},
        {"no flags bit", "1 1 2 0000\n1 0\n0000000\n", 3},
        {"no line end after the head", "1 1 1 0000 \n1 0\n0000000\n", 3},
        {"root without flags", "1 1 1 0000\n0 1\n0000000\n", 3},
        {"count for a flag", "1 1 1 0000\n2 0\n0000000\n", 3},
        {"unknown flag value", "1 1 1 0000\n1 0\n0000110005\n0000000\n", 3},
        {"array beyond its end", "1 1 1 0000\n1 0\n0100110004\n0000000\n", 3},
        {"pattern beyond its end", "1 1 1 0000\n1 0\nf0004005040404040\n0000000\n", 3},
        {"pattern of 4095", "1 1 1 0000\n1 0\n00fff00004\n0000000\n", 3},
        {"no line end in an array", "1 1 1 0000\n1 0\n0000110004 0000000\n", 3},
        {"an end of eight zeros", "1 1 1 0000\n1 1\n00000000\n410010010007\n0000000\n", 3},
        {"goes on at the longest", "1 1 1 0000\n1 0\n4100100101\n0000000\n1 0\n0000000\n", 3},
        {"a tree of five levels",
         "4 1 1 0000\n1 0\n4100100101\n0000000\n1 0\n4100100101\n0000000\n1 0\n4100100101\n0000000\n"
         "1 0\n4100100101\n0000000\n1 0\n4100100104\n0000000\n",
         3},
        {"negative count", "1 1 3 0000\n-1 0\n1 0 0 0\n", 3},
        {"data but no flags", "1 1 3 0000\n0 1\n0000000\n1 0 0 0\n", 3},
        {"huge count", "1 1 3 0000\n2000000000 0\n0000000\n1 0 0 0\n", 3},
        {"flag index outside", "1 1 3 0000\n1 0\n0000110004\n0000000\n1 0 1 0\n", 3},
        {"negative flag index", "1 1 3 0000\n1 0\n0000110004\n0000000\n1 0 -1 0\n", 3},
        {"data index outside", "1 1 3 0000\n1 0\n0000110004\n0000000\n1 1 0 0\n", 3},
        {"node that is its own child", "2 1 3 0000\n1 0\n4100100101\n0000000\n1 0 0 0\n1 0 0 0\n",
         3},
        {"byte 0 inside a character",
         "2 1 1 0000\n1 0\na100100101\n0000000\n1 0\n0000110004\n0000000\n", 3},
        {"byte 0 goes on", "2 1 1 0000\n1 0\n0000100101\n0000000\n1 0\na100104004\n0000000\n", 3},
        {"terminator of two goes on",
         "3 2 1 0000\n1 0\n0000100101\n0000000\n1 0\n0000100101\n0000000\n1 0\n4100100104\n0000000\n",
         3},
    };
    for (const auto &row : rows) {
        const counting_allocator memory;
        EXPECT_EQ(read_text(row.text), row.err) << row.what;
    }
}

TEST(MultiFile, GreatestLengthIsTheCallers) {
    EXPECT_EQ(read_text(shared_rows, nullptr, 2), 0);
    EXPECT_EQ(read_text(shared_rows, nullptr, 1), 21);
}

TEST(MultiFile, EveryTruncationIsRefusedAndNothingLeaks) {
    for (const std::string_view whole :
         {std::string_view(shared_rows), std::string_view(plain_rows)}) {
        const counting_allocator memory;
        ASSERT_EQ(read_text(whole), 0);
        for (size_t length = 0; length < whole.size(); ++length)
            EXPECT_EQ(read_text(whole.substr(0, length)), 3) << "cut to " << length;
    }
}

TEST(MultiFile, EveryAllocationOfALoadMayFail) {
    for (const char *text : {shared_rows, plain_rows}) {
        const counting_allocator memory;
        int failures = 0;
        for (int call = 0;; ++call) {
            counting_allocator::fail_call(call);
            const int32_t err = read_text(text);
            if (!counting_allocator::failed())
                break;
            EXPECT_EQ(err, 3) << "call " << call;
            ++failures;
        }
        EXPECT_GT(failures, 10);
    }
}

TEST(MultiFile, FailedLoadIsForgottenByTheNext) {
    multi_arr *const table = _gl_create_multi(2, 0, &zero);
    memory_file bad("5 1 1 0000\n");
    EXPECT_EQ(_gl_fscanf_multi(bad.file, table, 4, ub2_reader), -1);
    EXPECT_EQ(_gl_multi_err(table), 21);
    memory_file good(std::string(shared_rows) + "next section");
    EXPECT_EQ(_gl_fscanf_multi(good.file, table, 4, ub2_reader), 0);
    EXPECT_EQ(_gl_multi_err(table), 0);
    EXPECT_EQ(good.rest(), "next section") << "the reader takes its own lines and no more";
    _gl_free_multi(table);
}

TEST(MultiFile, TableThatWasReadTakesMoreSequences) {
    const counting_allocator memory;
    multi_arr *table = nullptr;
    ASSERT_EQ(read_text(plain_rows, &table), 0);
    for (int lead = 0xB0; lead < 0xF0; ++lead) {
        const gl_char_desc desc = {.length = 2, .bytes = {static_cast<unsigned char>(lead), 'x'}};
        const uint16_t datum = 7;
        ASSERT_EQ(_gl_insert_desc_multi(&desc, &datum, table), 0);
    }
    EXPECT_EQ(datum_of(table, "\xB0x"), 7);
    EXPECT_EQ(datum_of(table, "\xEFx"), 7);
    EXPECT_EQ(datum_of(table, "\xA2\xA1"), 0x1C4);
    EXPECT_EQ(table->root->child_count, 66);
    _gl_free_multi(table);
}

int three_byte_reader(FILE *stream, void *datum, uint32_t size) {
    for (uint32_t i = 0; i < size; ++i) {
        char digits[3] = {};
        for (int k = 0; k < 2; ++k)
            digits[k] = static_cast<char>(_gl_ext_fgetc(stream));
        static_cast<unsigned char *>(datum)[i] =
            static_cast<unsigned char>(strtoul(digits, nullptr, 16));
    }
    return 0;
}

void three_byte_writer(FILE *stream, const void *datum) {
    for (int i = 0; i < 3; ++i)
        fprintf(stream, "%02x", static_cast<const unsigned char *>(datum)[i]);
}

TEST(MultiFile, RandomTablesSurviveWritingAndReading) {
    const unsigned seed = 771;
    std::mt19937 random(seed);
    for (int round = 0; round < 20; ++round) {
        const counting_allocator memory;
        const uint32_t size = round % 2 == 0 ? 2 : 3;
        const auto writer = size == 2 ? ub2_writer : three_byte_writer;
        multi_reference reference;
        multi_arr *const table = random_multi(random, size, 30 + round * 15, reference);
        if (round % 4 >= 2) {
            ASSERT_EQ(_gl_compress_multi(table), 0);
        }
        const std::string text = written(table, writer);
        const std::string other_default(size, '\x77');
        multi_arr *const again = _gl_create_multi(size, 0, other_default.data());
        memory_file file(text);
        ASSERT_EQ(_gl_fscanf_multi(file.file, again, 4, size == 2 ? ub2_reader : three_byte_reader),
                  0)
            << text;
        EXPECT_EQ(written(again, writer), text);
        int32_t counts[2][3];
        multi_arr *const both[] = {table, again};
        for (int i = 0; i < 2; ++i)
            _gl_multi_node_count(both[i], &counts[i][0], &counts[i][1], &counts[i][2]);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(counts[0][i], counts[1][i]);
        check_lookups(again, reference, random, "read");
        ASSERT_EQ(kestrion::multi_flatten(again), size == 2 ? 0 : -1);
        check_lookups(again, reference, random, "read and flat");
        _gl_free_multi(table);
        _gl_free_multi(again);
    }
}

} // namespace
