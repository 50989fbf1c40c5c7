// Reading catalogue files, sound, cut and damaged ones. Every case runs twice: with the file in
// memory, and, as when there is no memory for it, by windows.

#include "messages/catalogue_files.h"
#include "messages/message_file.h"
#include "support/failing_malloc.h"
#include "support/temp_dir.h"
#include <kestrion/error_numbers.h>

#include <algorithm>
#include <gtest/gtest.h>

using namespace kestrion;

namespace {

struct MessageFile : testing::TestWithParam<bool> {
    void TearDown() override { catalogue_close(&catalogue); }

    int32_t open(const std::string &bytes) {
        catalogue_close(&catalogue);
        const std::string path = dir.write("x.qem", bytes);
        const bool by_windows = GetParam();
        const failing_malloc::scope refused(by_windows ? 1 : 0);
        status = catalogue_open(&catalogue, path.c_str());
        EXPECT_TRUE(status != 0 || (catalogue.image == nullptr) == by_windows);
        return status;
    }

    // The text of a message, or "" with the status in `status`.
    std::string text_of(int32_t number) {
        message_place place = {};
        status = catalogue_find(&catalogue, number, &place);
        if (status != 0)
            return {};
        std::string text(static_cast<size_t>(place.length), '?');
        status = catalogue_read(&catalogue, place.offset, text.data(), place.length);
        return text;
    }

    int32_t status_of(int32_t number) {
        text_of(number);
        return status;
    }

    gen_catalogue catalogue = {.fd = -1};
    temp_dir dir;
    int32_t status = 0;
};

std::map<int32_t, std::string> texts_for(const std::vector<int32_t> &numbers) {
    std::map<int32_t, std::string> texts;
    for (const int32_t number : numbers)
        texts[number] = "text " + std::to_string(number) + "\n";
    return texts;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(InMemoryAndByWindows, MessageFile, testing::Bool());

TEST_P(MessageFile, EveryMessageIsFoundInAnyOrder) {
    for (const bool is_long : {false, true})
        for (const int count : {1, 2, 7, 8, 9, 16, 17, 40, 300}) {
            std::vector<int32_t> numbers;
            for (int i = 0; i < count; ++i)
                numbers.push_back((i - count / 2) * (is_long ? 70000 : 3));
            const auto texts = texts_for(numbers);
            ASSERT_EQ(open(catalogue_bytes(is_long, texts)), 0);
            std::stable_sort(numbers.begin(), numbers.end(),
                             [](int32_t a, int32_t b) { return (a & 7) < (b & 7); });
            for (const int32_t number : numbers) {
                EXPECT_EQ(text_of(number), texts.at(number)) << count;
                EXPECT_EQ(status_of(number + 1), err_no_such_message) << number;
            }
        }
}

TEST_P(MessageFile, ShortRecordsHoldNoNumberBeyond16Bits) {
    ASSERT_EQ(open(catalogue_bytes(false, texts_for({-18863, 1}))), 0); // -84400 less its high half
    EXPECT_EQ(status_of(-84399), err_no_such_message);
    EXPECT_EQ(status_of(65537), err_no_such_message);
    ASSERT_EQ(open(catalogue_bytes(true, texts_for({INT32_MIN, -84399, INT32_MAX}))), 0);
    EXPECT_EQ(text_of(-84399), "text -84399\n");
    EXPECT_EQ(text_of(INT32_MIN), "text -2147483648\n");
}

TEST_P(MessageFile, FileCutAtEveryByteGivesWholeTextsOrAStatus) {
    for (const bool is_long : {false, true}) {
        const auto texts = texts_for({-3, 5, 6, 8, 9, 10, 11, 12, 13, 20});
        const std::string whole = catalogue_bytes(is_long, texts);
        for (size_t size = 0; size < whole.size(); ++size) {
            if (size < 4) {
                EXPECT_EQ(open(whole.substr(0, size)), err_catalogue_magic);
                continue;
            }
            ASSERT_EQ(open(whole.substr(0, size)), 0);
            for (const auto &[number, wanted] : texts) {
                const std::string text = text_of(number);
                EXPECT_TRUE(status == err_catalogue_cut || (status == 0 && text == wanted))
                    << size << ": " << number << " gives " << status << " " << text;
            }
        }
    }
}

TEST_P(MessageFile, DamagedRecordsAreRefused) {
    const std::string texts(100, 'x');
    const struct {
        int count;
        test_record record; // the second of two
        int32_t wanted;
    } rows[] = {
        {2, {7, 1, 24}, 0},
        {2, {7, 100, 24}, 0}, // to the last byte
        {2, {7, 101, 24}, err_catalogue_cut},
        {2, {7, 1, 124}, err_catalogue_cut},
        {2, {7, 1, -1}, err_catalogue_cut},
        {2, {7, 1, INT32_MAX}, err_catalogue_cut},
        {2, {7, 0, 24}, err_no_such_message},
        {2, {7, -1, 24}, err_no_such_message},
        {0, {7, 1, 24}, err_no_such_message},
        {-1, {7, 1, 24}, err_no_such_message},
        {1, {7, 1, 24}, err_no_such_message},   // the record lies after the index
        {32767, {7, 1, 24}, err_catalogue_cut}, // an index far beyond the file
    };
    for (const auto &row : rows) {
        ASSERT_EQ(open(index_bytes(true, row.count, {{1, 4, 24}, row.record}) + texts), 0);
        EXPECT_EQ(status_of(7), row.wanted)
            << row.count << " " << row.record.length << " " << row.record.offset;
    }
}

TEST_P(MessageFile, IndexThatEndsTheFileCannotBeReadWhole) {
    const auto texts = texts_for({1, 2, 3, 4, 5, 6, 7, 8, 9});
    const std::string index = catalogue_bytes(false, texts).substr(0, 4 + 9 * 8);
    ASSERT_EQ(open(index), 0); // the first window asked for begins at the fifth of nine records
    EXPECT_EQ(status_of(1), err_catalogue_cut);
    EXPECT_EQ(status_of(9), err_catalogue_cut);
}

TEST_P(MessageFile, BytesBehindTheIndexAreNoRecords) {
    std::vector<test_record> records;
    for (int32_t i = 1; i <= 9; ++i)
        records.push_back({i, 1, 4});
    records.push_back({99, 1, 4}); // where texts should be, and inside the last window
    ASSERT_EQ(open(index_bytes(true, 9, records) + std::string(100, 'x')), 0);
    EXPECT_EQ(status_of(9), 0);
    EXPECT_EQ(status_of(99), err_no_such_message);
}

TEST_P(MessageFile, WhatIsNoCatalogueIsRefusedAndClosed) {
    for (const int magic : {0, 65127, 65130, 26878}) // the last is a magic in the other byte order
        EXPECT_EQ(open(big_endian(magic, 2) + std::string(100, '\0')), err_catalogue_magic)
            << magic;
    EXPECT_EQ(catalogue.fd, -1);
    EXPECT_EQ(catalogue_open(&catalogue, "/"), err_catalogue_not_opened);
    EXPECT_EQ(catalogue_open(&catalogue, "/nowhere"), err_catalogue_not_opened);
    EXPECT_EQ(catalogue.fd, -1);
}
