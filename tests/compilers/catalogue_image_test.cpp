// The bytes of compiled catalogues.

#include "compilers/diagnostics.h"
#include "compilers/mkqem/catalogue_image.h"
#include "compilers/mkqem/catalogue_source.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <sstream>

using namespace kestrion;

namespace {

// A block of the format's page, from ```kind to ```.
std::string page_block(const std::string &kind) {
    std::ifstream in(KESTRION_SOURCE_DIR "/docs/formats/message-catalogue.md");
    const std::string page{std::istreambuf_iterator<char>(in), {}};
    const size_t start = page.find("```" + kind + "\n") + kind.size() + 4;
    return page.substr(start, page.find("```", start) - start);
}

std::string bytes_of_hex(const std::string &text) {
    std::string bytes;
    std::istringstream in(text);
    for (std::string word; in >> word;)
        for (size_t i = 0; i < word.size(); i += 2)
            bytes += static_cast<char>(std::stoi(word.substr(i, 2), nullptr, 16));
    return bytes;
}

} // namespace

TEST(CatalogueImage, BytesAreThoseOfTheFormatsPage) {
    const std::string bytes = bytes_of_hex(page_block("hex"));
    const catalogue_texts texts = {{-84401, "No.\n"}, {-84400, "Yes.\n"}};
    EXPECT_EQ(encode_catalogue(texts), bytes);
    EXPECT_EQ(decode_catalogue(bytes), texts);
    diagnostics said;
    const catalogue_source source =
        parse_catalogue({"page", page_block("msg")}, code_set::as_it_is, said);
    ASSERT_EQ(source.messages.size(), 2U);
    EXPECT_EQ(source.messages.at(-84400).text + "\n", texts.at(-84400));

    // Its sister with short records, worked by hand; a window after record 2 needs no filling.
    EXPECT_EQ(encode_catalogue({{-2, "No.\n"}, {1204, "Yes.\n"}}),
              bytes_of_hex("FE68 0002 FFFE 0004 00000014 04B4 0005 00000018 4E6F2E0A 5965732E0A"));
}

TEST(CatalogueImage, RecordsAreLongOnlyWhenANumberNeedsIt) {
    const auto is_long = [](int32_t number) {
        return encode_catalogue({{0, "x\n"}, {number, "x\n"}})[1] == '\x69';
    };
    for (const int32_t number : {-32768, -1, 1, 32767})
        EXPECT_FALSE(is_long(number)) << number;
    for (const int32_t number : {INT32_MIN, -32769, 32768, INT32_MAX})
        EXPECT_TRUE(is_long(number)) << number;
}

TEST(CatalogueImage, LastWindowOfEveryIndexLiesInsideTheFile) {
    for (const size_t count : {1U, 2U, 7U, 8U, 9U, 300U})
        for (const int32_t first : {0, 100000}) {
            catalogue_texts texts;
            for (size_t i = 0; i < count; ++i)
                texts[first + static_cast<int32_t>(i)] = std::string("\n");
            const size_t record = first == 0 ? 8 : 10;
            EXPECT_GE(encode_catalogue(texts).size(),
                      4 + (count - 1 + std::min<size_t>(count, 8)) * record);
        }
}

TEST(CatalogueImage, ListingsOfRandomTextsComeBack) {
    const uint32_t seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 200; ++round) {
        catalogue_texts texts;
        for (auto i = random() % 20 + 1; i > 0; --i) {
            std::string text(random() % 12 + 1, 'x');
            for (char &c : text)
                c = random() % 4 == 0 ? "%s\\\"$n0 "[random() % 8]
                                      : static_cast<char>(random() % 255 + 1);
            texts[static_cast<int32_t>(random() % 2 == 0 ? random() : random() % 100)] =
                text + "\n";
        }
        diagnostics said;
        const catalogue_source source =
            parse_catalogue({"listing", list_catalogue(texts)}, code_set::as_it_is, said);
        check_arguments(source, said);
        ASSERT_EQ(said.errors() + said.warnings(), 0U) << list_catalogue(texts);
        catalogue_texts again;
        for (const auto &[number, message] : source.messages)
            again[number] = message.text + "\n";
        EXPECT_EQ(again, texts);
        EXPECT_EQ(decode_catalogue(encode_catalogue(texts)), texts);
    }
}

TEST(CatalogueImage, DamagedCataloguesAreRefused) {
    const catalogue_texts texts = {{1, "one\n"}, {2, "two\n"}};
    const std::string whole = encode_catalogue(texts);
    const auto damaged = [&](size_t at, char byte) {
        std::string bytes = whole;
        bytes[at] = byte;
        return bytes;
    };
    const std::string rows[] = {
        damaged(0, '\0'),   damaged(1, '\x6A'), // magic
        damaged(2, '\x80'),                     // negative count
        damaged(2, '\x7F'),                     // count beyond the file
        damaged(3, '\0'),                       // no message
        damaged(5, '\2'),   damaged(5, '\3'),   // numbers twice, and descending
        damaged(6, '\x80'), damaged(7, '\0'),   // length negative, and 0
        damaged(7, '\x40'),                     // text beyond the file
        damaged(8, '\xFF'), damaged(10, '\1'),  // offset negative, and beyond the file
    };
    for (const std::string &bytes : rows)
        EXPECT_THROW(decode_catalogue(bytes), compiler_failure) << testing::PrintToString(bytes);
    for (size_t size = 0; size < whole.size(); ++size)
        EXPECT_THROW(decode_catalogue(whole.substr(0, size)), compiler_failure) << size;
}
