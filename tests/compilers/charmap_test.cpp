#include "compilers/posix/charmap.h"
#include "compilers/posix/source_place.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iconv.h>
#include <map>

namespace kestrion {
namespace {

constexpr const char *charmap_directory = "/usr/share/i18n/charmaps";

std::string head_and(const std::string &rows) {
    return "<code_set_name> TEST\n<comment_char> %\n<escape_char> /\n% alias OTHER\nCHARMAP\n" +
           rows + "END CHARMAP\n";
}

TEST(Charmap, RowsRangesAndNamesAreSpeltOut) {
    source_file source(
        "test", head_and("<U0041> /x41 LETTER\n% a comment\n"
                         "<U4E00>..<U4E02> /xb0/xff\n" // the last byte carries into the first
                         "<euro>  /d128/101\n"
                         "<j08>...<j11> /xc0\n"
                         "<U0001F600> /xf0/x9f/x98/x80\n"
                         "%IRREVERSIBLE%<U0041> /x81/x60\n"));
    charmap map(source);
    EXPECT_EQ(map.code_set_name, "TEST");
    ASSERT_EQ(map.aliases, std::vector<std::string>{"OTHER"});
    EXPECT_EQ(map.mb_cur_max, 4);
    ASSERT_EQ(map.rows.size(), 11u);
    EXPECT_EQ(map.find(0x4E00)->sequence.packed(), 0xB0FFu);
    EXPECT_EQ(map.find(0x4E02)->sequence.packed(), 0xB101u);
    EXPECT_EQ(map.find_name("euro")->sequence.packed(), 0x8041u);
    EXPECT_EQ(map.find_name("j10")->sequence.packed(), 0xC2u);
    EXPECT_EQ(map.find_name("U0001F600")->sequence.length, 4);
    EXPECT_EQ(map.find(0x41)->sequence.packed(), 0x41u) << "a one-way row is never written";
    EXPECT_TRUE(map.rows.back().one_way);
    EXPECT_EQ(map.find(0x42), nullptr);
    EXPECT_EQ(map.find_name("j12"), nullptr);
}

TEST(Charmap, WidthRangesRunInTheOrderOfTheBytes) {
    source_file source(
        "test",
        head_and("<U0041> /x41\n<U0300> /x42\n<U3000> /xa1/xa1\n<U5000> /xa1/xa2\n"
                 "<U4000> /xa1/xa3\n<U6000> /xa1/xa4\n%IRREVERSIBLE%<U3000> /xf0/xa1\n") +
            "WIDTH_DEFAULT 1\nWIDTH\n<U0300> 0\n<U0301>...<U4000> 1\n<U3000>...<U4000> 2 % not U+6000\nEND WIDTH\n");
    charmap map(source);
    const std::map<uint32_t, int> wanted = {{0x41, 1},   {0x300, 0},  {0x3000, 2},
                                            {0x5000, 2}, {0x4000, 2}, {0x6000, 1}};
    for (auto [code_point, width] : wanted)
        EXPECT_EQ(map.find(code_point)->width, width) << std::hex << code_point;
    EXPECT_EQ(map.rows.back().width, 2) << "a one-way row is as wide as its character";
}

// Later lines win. Row by row these would be four thousand million steps.
TEST(Charmap, OverlappingWidthsCostNoMoreThanTheirLines) {
    std::string widths;
    for (unsigned i = 0; i < 4000; ++i) {
        char line[64];
        snprintf(line, sizeof line, "<U00000001>...<U%08X> %u\n", 0x10FFFF - i, i % 3);
        widths += line;
    }
    source_file source("test", head_and("<U00000000>..<U0010FFFF> /x80/x00/x00/x00\n") + "WIDTH\n" +
                                   widths + "<U00000010> 2\nEND WIDTH\n");
    charmap map(source);
    EXPECT_EQ(map.find(0)->width, -1);
    EXPECT_EQ(map.find(1)->width, 3999 % 3);
    EXPECT_EQ(map.find(0x10)->width, 2);
    for (unsigned i = 0; i < 4000; ++i)
        ASSERT_EQ(map.find(0x10FFFF - i)->width, static_cast<int>(i % 3)) << i;
}

TEST(Charmap, FaultsAreReportedWithTheirPlace) {
    struct {
        std::string text;
        size_t line, column;
        const char *what;
    } const rows[] = {
        {head_and(""), 6, 12, "no characters"},
        {"<escape_char> /\nCHARMAP\n<U0041> /x41\n", 3, 13, "no end"},
        {head_and("<U0041 /x41\n"), 6, 1, "does not end"},
        {head_and("<U0041> x41\n"), 6, 9, "bytes of the character"},
        {head_and("<U0041> /x4g\n"), 6, 9, "number of a byte"},
        {head_and("<U0041> /d256\n"), 6, 9, "number of a byte"},
        {head_and("<U0041> /x1\n"), 6, 9, "number of a byte"},
        {head_and("<U0041> /x1a/x2b/x3c/x4d/x5e\n"), 6, 9, "more than 4"},
        {head_and("<U0041>.<U0042> /x41\n"), 6, 8, "two to four points"},
        {head_and("<U0042>..<U0041> /x41\n"), 6, 1, "ends before it begins"},
        {head_and("<x1>..<y2> /x41\n"), 6, 1, "not a range"},
        {head_and("<U0041>..<U0043> /xfe\n"), 6, 1, "goes on after"},
        {head_and("<U0041> /x41\n") + "WIDTH\n<U0041> two\nEND WIDTH\n", 9, 9, "number"},
        {head_and("<U00000000>..<U0010FFFF> /x00/x00/x00/x00\n"
                  "<U00000000>..<U0010FFFF> /x00/x00/x00/x00\n<U0041> /x41\n"),
         8, 1, "more than"},
        {head_and("<" + std::string(65, 'x') + "1>....<" + std::string(65, 'x') + "2> /x41\n"), 6,
         1, "not a range"},
        {head_and("<x000000>....<x262144> /x00/x00/x00/x00\n"), 6, 1, "more than 262144 names"},
        {head_and("<U0041> /x41\n") + head_and("<U0042> /x42\n"), 12, 8, "second section CHARMAP"},
        {head_and("<U0041> /x41\n") + "WIDTH\nEND WIDTH\nWIDTH\nEND WIDTH\n", 10, 6,
         "second section WIDTH"},
        {"<colour> red\n", 1, 1, "unknown name"},
        {"CHARMAP\n<U0041> \\x41\nEND WIDTH\n", 3, 5, "another section"},
    };
    for (const auto &row : rows) {
        source_file source("test", row.text);
        try {
            charmap map(source);
            ADD_FAILURE() << "accepted: " << row.text;
        } catch (const source_error &error) {
            source_position at = error.where.position();
            EXPECT_EQ(at.line, row.line) << row.text << error.what();
            EXPECT_EQ(at.column, row.column) << row.text << error.what();
            EXPECT_NE(std::string(error.what()).find(row.what), std::string::npos) << error.what();
            EXPECT_FALSE(error.remedy.empty());
        }
    }
}

TEST(Charmap, FilesThatCannotBeReadAreReportedByName) {
    std::filesystem::path directory = testing::TempDir() + "charmap_test";
    std::filesystem::create_directories(directory);
    std::string whole(std::istreambuf_iterator<char>(
                          std::ifstream(std::string(charmap_directory) + "/KOI8-R.gz").rdbuf()),
                      {});
    std::ofstream(directory / "CUT.gz", std::ios::binary) << whole.substr(0, whole.size() / 2);
    for (const char *name : {"CUT", "MISSING"}) {
        try {
            find_source_file(name, {directory.string()});
            ADD_FAILURE() << name;
        } catch (const compiler_failure &failure) {
            EXPECT_NE(std::string(failure.what()).find(name), std::string::npos) << failure.what();
        }
    }
}

// Two of the installed files are rows without the section round them.
bool has_no_section(const std::string &name) {
    return name == "EBCDIC-PT" || name == "MAC-CENTRALEUROPE";
}

// What the C library's own converter makes of each byte sequence, for every charmap that is there.
// Charmap and converter are kept by hand beside each other, so single rows are known to differ; a
// fault of the reader would show as hundreds.
TEST(Charmap, EveryRowIsWhatTheConverterSays) {
    size_t compared = 0;
    for (const auto &entry : std::filesystem::directory_iterator(charmap_directory)) {
        std::string name = entry.path().stem().string();
        auto source = find_source_file(name, {charmap_directory});
        if (has_no_section(name)) {
            EXPECT_THROW(charmap{*source}, source_error) << name;
            continue;
        }
        iconv_t converter = iconv_open("UCS-4BE", name.c_str());
        if (converter == reinterpret_cast<iconv_t>(-1))
            continue;
        charmap map(*source);
        size_t differing = 0;
        for (const charmap_row &row : map.rows) {
            code_sequence sequence = row.sequence;
            char *in = reinterpret_cast<char *>(sequence.bytes);
            unsigned char result[16] = {};
            char *out = reinterpret_cast<char *>(result);
            size_t in_left = sequence.length, out_left = sizeof result;
            iconv(converter, nullptr, nullptr, nullptr, nullptr);
            size_t done = iconv(converter, &in, &in_left, &out, &out_left);
            iconv(converter, nullptr, nullptr, &out, &out_left); // some hold a character back
            uint32_t value = uint32_t{result[0]} << 24 | uint32_t{result[1]} << 16 |
                             uint32_t{result[2]} << 8 | result[3];
            if (row.code_point != no_code_point)
                differing += done == static_cast<size_t>(-1) || value != row.code_point;
        }
        iconv_close(converter);
        ++compared;
        EXPECT_LE(differing, name == "UTF-8" ? 0 : map.rows.size() / 20)
            << name << " of " << map.rows.size();
    }
    EXPECT_GT(compared, 100u);
}

} // namespace
} // namespace kestrion
