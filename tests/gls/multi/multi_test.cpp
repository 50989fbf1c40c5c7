#include "gls/engine_test.h"
#include "gls/multi/multi_reference.h"
#include "gls/multi/multi_tree.h"
#include "tests/support/guarded_bytes.h"
#include <kestrion/conversion.h>
#include <kestrion/conversion_routines.h>
#include <kestrion/multi.h>

namespace {

constexpr uint16_t zero = 0;

multi_arr *new_u16_table() { return _gl_create_multi(sizeof zero, 0, &zero); }

int insert(multi_arr *table, const std::string &sequence, uint16_t datum) {
    const gl_char_desc desc = desc_of(sequence);
    return _gl_insert_desc_multi(&desc, &datum, table);
}

// The datum of exactly this sequence, or -1.
int datum_of(const multi_arr *table, const std::string &sequence) {
    const gl_char_desc desc = desc_of(sequence);
    const void *const datum = _gl_retrieve_desc_multi(&desc, table);
    return datum != nullptr ? *static_cast<const uint16_t *>(datum) : -1;
}

const multi_node *child_of(const multi_arr *table, unsigned char lead) {
    return table->root->children[table->root->child_slot[lead]];
}

TEST(Multi, NoSequenceIsTheStartOfAnother) {
    const counting_allocator memory;
    multi_arr *const table = new_u16_table();
    EXPECT_EQ(insert(table, "AB", 1), 0);
    EXPECT_EQ(insert(table, "A", 2), -1);
    EXPECT_EQ(insert(table, "C", 3), 0);
    EXPECT_EQ(insert(table, "CD", 4), -1);
    EXPECT_EQ(insert(table, "CDEF", 5), -1);
    EXPECT_EQ(insert(table, "AB", 6), 0) << "the same one again overwrites";
    EXPECT_EQ(insert(table, "", 7), -1);
    EXPECT_EQ(insert(table, "ABCDE", 7), -1);
    EXPECT_EQ(datum_of(table, "AB"), 6);
    EXPECT_EQ(datum_of(table, "A"), -1);
    EXPECT_EQ(datum_of(table, "C"), 3);
    EXPECT_EQ(datum_of(table, "CD"), -1);
    EXPECT_EQ(_gl_multi_max_length(table), 2);
    EXPECT_EQ(_gl_multi_min_length(table), 1);
    int32_t data;
    int32_t flag;
    int32_t offset;
    EXPECT_EQ(_gl_multi_node_count(table, &data, &flag, &offset), 1);
    EXPECT_EQ(data, 2);
    EXPECT_EQ(flag, 2);
    _gl_free_multi(table);
}

TEST(Multi, SequenceWithoutDatumAnswersWithTheDefault) {
    const uint16_t standard = 0x1234;
    multi_arr *const table = _gl_create_multi(2, 0, &standard);
    const gl_char_desc desc = desc_of("xy");
    EXPECT_EQ(_gl_insert_desc_multi(&desc, nullptr, table), 0);
    EXPECT_EQ(datum_of(table, "xy"), 0x1234);
    EXPECT_EQ(kestrion::multi_flatten(table), 0);
    EXPECT_EQ(datum_of(table, "xy"), 0x1234);
    _gl_free_multi(table);
}

// The tree, the flat table, and both over shared arrays give the answers of a plain map; data of two
// bytes alone have a flat table.
TEST(Multi, AllFormsAgreeWithAPlainMap) {
    const unsigned seed = 20240611;
    std::mt19937 random(seed);
    for (int round = 0; round < 24; ++round) {
        const counting_allocator memory;
        const uint32_t data_size = static_cast<uint32_t>(round % 6);
        multi_reference reference;
        multi_arr *const table = random_multi(random, data_size, 40 + round * 20, reference);
        const std::string name = "round " + std::to_string(round);
        check_lookups(table, reference, random, name + " tree");
        const int flat = data_size == 2 ? 0 : -1;
        ASSERT_EQ(kestrion::multi_flatten(table), flat);
        check_lookups(table, reference, random, name + " flat");
        ASSERT_EQ(_gl_compress_multi(table), 0);
        EXPECT_EQ(table->walk, nullptr) << "a change drops the flat table";
        check_lookups(table, reference, random, name + " compressed");
        ASSERT_EQ(kestrion::multi_flatten(table), flat);
        check_lookups(table, reference, random, name + " compressed and flat");
        _gl_free_multi(table);
    }
}

// Plain tables have an array for each node, of which most are equal in a large code set.
TEST(Multi, EqualNodesOfAPlainTableAreOneState) {
    multi_arr *const table = new_u16_table();
    for (int i = 0; i < 0x10100; ++i)
        insert(table,
               {static_cast<char>(i >> 16), static_cast<char>(i >> 8), static_cast<char>(i), 'x'},
               7);
    EXPECT_EQ(kestrion::multi_flatten(table), 0);
    EXPECT_EQ(datum_of(table, std::string("\1\0\xFFx", 4)), 7);
    _gl_free_multi(table);
}

// States are numbered in 16 bits, and 1 is not one.
TEST(Multi, AsManyStatesAsAStepCanNumberAreMade) {
    multi_arr *const table = new_u16_table();
    const auto insert_leaf = [&](int i) {
        insert(table, {static_cast<char>(i >> 8), static_cast<char>(i), 'x'},
               static_cast<uint16_t>(i));
    };
    constexpr int leaves = 65535 - 1 - 255; // besides the root and its children
    for (int i = 0; i < leaves; ++i)
        insert_leaf(i);
    EXPECT_EQ(kestrion::multi_flatten(table), 0);
    EXPECT_EQ(datum_of(table, "\xFE\xFDx"), 0xFEFD);
    insert_leaf(leaves);
    EXPECT_EQ(kestrion::multi_flatten(table), -1);
    EXPECT_EQ(datum_of(table, "\xFE\xFDx"), 0xFEFD);
    _gl_free_multi(table);
}

TEST(Multi, InsertDropsTheFlatTable) {
    multi_arr *const table = new_u16_table();
    insert(table, "AB", 1);
    ASSERT_EQ(kestrion::multi_flatten(table), 0);
    EXPECT_EQ(insert(table, "AC", 2), 0);
    EXPECT_EQ(datum_of(table, "AC"), 2);
    _gl_free_multi(table);
}

TEST(Multi, LimitTellsCutOffFromWrong) {
    multi_arr *const table = new_u16_table();
    insert(table, "\xA1\xB2", 1);
    int32_t word = 0;
    int32_t used = 9;
    EXPECT_EQ(_gl_retrieve_text_multi_limit("\xA1\xB2", table, 1, &used, &word), nullptr);
    EXPECT_EQ(word, 7);
    EXPECT_EQ(used, 1);
    EXPECT_EQ(_gl_retrieve_text_multi_limit("\xA2", table, 1, &used, &word), nullptr);
    EXPECT_EQ(word, 1);
    EXPECT_EQ(used, 1);
    EXPECT_EQ(_gl_retrieve_text_multi_limit("\xA1\xB2", table, 0, &used, &word), nullptr);
    EXPECT_EQ(word, 7);
    EXPECT_EQ(used, 0);
    EXPECT_EQ(_gl_retrieve_text_multi_limit_nl("\xA1\xB2", table, -1, &word), nullptr);
    _gl_free_multi(table);
}

TEST(Multi, WideCharacterWalksAtLeastTheShortestLength) {
    multi_arr *const table = new_u16_table();
    insert(table, std::string("\0A", 2), 65);
    insert(table, "\xD8\x40\xDC\x0B", 7);
    int32_t word = 0;
    const auto found = [&](gl_wchar character) {
        const void *const datum = _gl_retrieve_wchar_multi_nl(&word, character, table);
        return datum != nullptr ? *static_cast<const uint16_t *>(datum) : -1;
    };
    EXPECT_EQ(found(65), 65) << "two levels, the first byte 0";
    EXPECT_EQ(found(0xD840DC0B), 7);
    EXPECT_EQ(word, 0);
    EXPECT_EQ(found(0xD840), -1) << "goes on after its last byte";
    EXPECT_EQ(found(0x4100), -1);
    EXPECT_EQ(word, 1);
    table->min_len = 5;
    EXPECT_EQ(found(65), -1) << "no such number of levels";
    _gl_free_multi(table);
}

TEST(Multi, LittleEndianUnitsMeetTheTreeFromTheirHighestByte) {
    multi_arr *const table = new_u16_table();
    insert(table, "\x30\x42", 1);
    insert(table, std::string("\0\1\xF6\0", 4), 2);
    cv_rec cv = {.source_min_len = 2, .source_max_len = 2};
    const auto found = [&](const char *text, int32_t limit) {
        const void *const datum = _gl_retrieve_little_endian_unicode_limit(text, table, limit, &cv);
        return datum != nullptr ? *static_cast<const uint16_t *>(datum) : -1;
    };
    EXPECT_EQ(found("\x42\x30", 2), 1);
    EXPECT_EQ(found("\x42\x30", 1), -1);
    EXPECT_EQ(cv.cv_err, 7);
    EXPECT_EQ(found("\x30\x42", 2), -1);
    EXPECT_EQ(cv.cv_err, 1);
    cv.source_min_len = cv.source_max_len = 4;
    EXPECT_EQ(found("\0\xF6\1\0", 4), 2);
    EXPECT_EQ(found("\0\xF6\1\0", 3), -1);
    EXPECT_EQ(cv.cv_err, 7);
    _gl_free_multi(table);
}

// Lookups without a limit rely on the terminator, which in wide code sets is several zero bytes.
TEST(Multi, UnlimitedLookupStopsAtTheTerminator) {
    multi_arr *const table = new_u16_table();
    insert(table, std::string("\0A", 2), 1);
    insert(table, "\xD8\x40\xDC\x0B", 2);
    insert(table, std::string("\xD8\x40\0\1", 4), 3);
    insert(table, "\xD8\x41\xDC\x0B", 4);
    const struct {
        std::string text;
        int32_t used;
        bool found;
    } rows[] = {
        {std::string("\0A\0\0", 4), 2, true},
        {std::string("\xD8\x40\0\0", 4), 2, false}, // a character that the terminator cuts off
        {std::string("\xD8\x40\0\1\0\0", 6), 4, true},
        {std::string("\xD8\x40\xDC\x0B\0\0", 6), 4, true},
        {std::string("\0\0", 2), 2, false},
    };
    for (const bool flat : {false, true}) {
        if (flat) {
            ASSERT_EQ(kestrion::multi_flatten(table), 0);
        }
        for (const auto &row : rows) {
            guarded_bytes text(row.text);
            int32_t word = 0;
            int32_t used = 0;
            const void *const datum = _gl_retrieve_text_multi(text.data(), table, &used, &word);
            EXPECT_EQ(datum != nullptr, row.found) << testing::PrintToString(row.text);
            EXPECT_EQ(used, row.used) << testing::PrintToString(row.text);
            EXPECT_EQ(word, row.found ? 0 : 1);
        }
    }
    _gl_free_multi(table);
}

TEST(Multi, EqualArraysAreKeptOnce) {
    const counting_allocator memory;
    multi_arr *const table = new_u16_table();
    for (const char *lead : {"\xA1", "\xA2", "\xA3"}) {
        for (int trail = 0xA1; trail <= 0xFE; ++trail)
            insert(table, lead + std::string(1, static_cast<char>(trail)), 7);
    }
    insert(table, "\xA3\xA1", 8);
    ASSERT_EQ(_gl_compress_multi(table), 0);
    const multi_node *const first = child_of(table, 0xA1);
    const multi_node *const second = child_of(table, 0xA2);
    const multi_node *const third = child_of(table, 0xA3);
    EXPECT_EQ(first->flag_index, second->flag_index);
    EXPECT_EQ(first->data_index, second->data_index);
    EXPECT_EQ(first->flag_index, third->flag_index);
    EXPECT_NE(first->data_index, third->data_index);
    EXPECT_EQ(table->flag_count, 2);
    EXPECT_EQ(table->data_count, 2);
    EXPECT_EQ(table->root->data_index, -1);
    EXPECT_EQ(table->shared_flag_children[table->root->flag_index], 3);
    EXPECT_EQ(insert(table, "\xA1\xA1", 9), -1) << "would change the other rows too";
    EXPECT_EQ(datum_of(table, "\xA2\xA1"), 7);
    _gl_free_multi(table);
}

TEST(Multi, EveryAllocationMayFail) {
    const counting_allocator memory;
    for (int call = 0;; ++call) {
        counting_allocator::fail_call(call);
        multi_arr *const table = new_u16_table();
        if (table == nullptr)
            continue;
        const int first = insert(table, "ABC", 1);
        const int second = insert(table, "ABD", 2);
        const int flat = kestrion::multi_flatten(table);
        EXPECT_EQ(datum_of(table, "ABC"), first == 0 ? 1 : -1);
        EXPECT_EQ(datum_of(table, "ABD"), second == 0 ? 2 : -1);
        const int compressed = _gl_compress_multi(table);
        EXPECT_EQ(datum_of(table, "ABD"), second == 0 ? 2 : -1);
        EXPECT_EQ((table->flags & multi_compressed) != 0, compressed == 0);
        if (first != 0 || second != 0 || flat != 0 || compressed != 0) {
            EXPECT_TRUE(counting_allocator::failed());
        }
        _gl_free_multi(table);
        if (!counting_allocator::failed())
            break;
    }
}

// An insert that runs out of memory leaves its child index spent; a slot is one byte, so no more
// than 256 can ever be given out.
TEST(Multi, SpentIndexesCountTowardsTheLimitOfChildren) {
    const counting_allocator memory;
    multi_arr *const table = new_u16_table();
    ASSERT_EQ(insert(table, "A1", 1), 0);
    for (int i = 0; i < 255; ++i) {
        counting_allocator::fail_call(1); // the child, after the places of the children
        EXPECT_EQ(insert(table, "B1", 2), -1);
    }
    counting_allocator::fail_call(-1);
    EXPECT_EQ(insert(table, "B1", 2), -1) << "no index is left";
    EXPECT_EQ(insert(table, "A2", 3), 0) << "children that exist go on taking sequences";
    EXPECT_EQ(datum_of(table, "A1"), 1);
    EXPECT_EQ(datum_of(table, "B1"), -1);
    _gl_free_multi(table);
}

} // namespace
