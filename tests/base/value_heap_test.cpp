#include "support/failing_malloc.h"
#include <kestrion/value_heap.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string.h>
#include <vector>

namespace {

struct heap_free {
    void operator()(value_heap *heap) const { rhpfree(heap); }
};
using owned_heap = std::unique_ptr<value_heap, heap_free>;

char *take(const owned_heap &heap, ptrdiff_t size) {
    return static_cast<char *>(do_rualloc(size, 0, heap.get()));
}

std::vector<int> room(const owned_heap &heap) {
    std::vector<int> bytes;
    for (const heap_page *page = heap->head; page != nullptr; page = page->next)
        bytes.push_back(page->free_bytes);
    return bytes;
}

TEST(Heap, FirstPageHolds976BytesBehindItsHandle) {
    owned_heap heap(do_rhpstart("texts", 11, 22));
    EXPECT_EQ(heap->stored[0], 11u);
    EXPECT_EQ(heap->stored[1], 22u);
    EXPECT_EQ(room(heap), std::vector<int>{976});
    // 16 bytes of header and 24 of handle lie before the first block.
    EXPECT_EQ(take(heap, 976), reinterpret_cast<char *>(heap->head) + 40);
    EXPECT_EQ(room(heap), std::vector<int>{0});
    EXPECT_NE(take(heap, 1), nullptr);
    EXPECT_EQ(room(heap), (std::vector<int>{992, 0}));
}

TEST(Heap, SizesRoundUpToEightAndDecideThePage) {
    const struct {
        ptrdiff_t size;
        std::vector<int> wanted; // room of the pages after a full first page and this request
    } rows[] = {
        {1, {992, 0}}, {8, {992, 0}}, {9, {984, 0}}, {496, {504, 0}},
        {497, {0, 0}}, {504, {0, 0}}, {976, {0, 0}}, {100000, {0, 0}},
    };
    for (const auto &row : rows) {
        owned_heap heap(rhpstart("sizes"));
        take(heap, 976);
        char *block = take(heap, row.size);
        ASSERT_NE(block, nullptr) << row.size;
        EXPECT_EQ(room(heap), row.wanted) << row.size;
        memset(block, 'x', static_cast<size_t>(row.size)); // all of it is there
    }
}

TEST(Heap, SmallestRoomThatFitsIsTakenAndEqualsStandBehind) {
    owned_heap heap(rhpstart("fit"));
    const heap_page *first = heap->head;
    take(heap, 976 - 496);
    const char *own = take(heap, 504) - 16;
    EXPECT_EQ(room(heap), (std::vector<int>{496, 0}));
    take(heap, 488);
    take(heap, 400);
    EXPECT_EQ(room(heap), (std::vector<int>{600, 8, 0}));
    take(heap, 1); // the least room that fits, not the first
    EXPECT_EQ(room(heap), (std::vector<int>{600, 0, 0}));
    EXPECT_EQ(heap->head->next, first);
    EXPECT_EQ(reinterpret_cast<const char *>(first->next), own);
}

// Blocks of random sizes never overlap, are zero, aligned and recognised, and the chain stays
// sorted.
TEST(Heap, BlocksAreZeroedDisjointAndRecognised) {
    std::mt19937 random(77);
    owned_heap heap(rhpstart("blocks"));
    struct block {
        char *start;
        size_t size;
        char mark;
    };
    std::vector<block> blocks;
    for (int i = 0; i < 4000; ++i) {
        const size_t size = 1 + random() % (i % 10 == 0 ? 1500 : 80);
        char *start = take(heap, static_cast<ptrdiff_t>(size));
        ASSERT_NE(start, nullptr);
        ASSERT_EQ(reinterpret_cast<uintptr_t>(start) % 8, 0u);
        ASSERT_TRUE(std::all_of(start, start + size, [](char c) { return c == 0; }));
        ASSERT_EQ(isfromheap(start, heap.get()), 1);
        const char mark = static_cast<char>(1 + random() % 200);
        memset(start, mark, size);
        blocks.push_back({start, size, mark});
        const std::vector<int> bytes = room(heap);
        ASSERT_TRUE(std::is_sorted(bytes.rbegin(), bytes.rend()));
    }
    for (const block &b : blocks)
        ASSERT_TRUE(std::all_of(b.start, b.start + b.size, [&](char c) { return c == b.mark; }));
    EXPECT_EQ(rmemcheck(heap.get()), HEAP_SOUND);
    const size_t pages = room(heap).size();
    failing_malloc::scope counted(0);
    heap.reset();
    EXPECT_EQ(counted.live(), -static_cast<long>(pages)) << "every page goes";
}

TEST(Heap, CheckTellsAnOverrunFromABadCount) {
    owned_heap heap(rhpstart("check"));
    char *block = take(heap, 5);
    EXPECT_EQ(rmemcheck(heap.get()), HEAP_SOUND);
    block[7] = 'x'; // still inside the rounded block
    EXPECT_EQ(rmemcheck(heap.get()), HEAP_SOUND);
    block[8] = 'x';
    EXPECT_EQ(rmemcheck(heap.get()), HEAP_OVERRUN);
    block[8] = 0;
    char *last = reinterpret_cast<char *>(heap->head) + heap_page_size - 1;
    *last = 1;
    EXPECT_EQ(rmemcheck(heap.get()), HEAP_OVERRUN);
    *last = 0;
    const int16_t free_bytes = heap->head->free_bytes;
    for (int bad : {-1, -32768, 1001, 32767}) {
        heap->head->free_bytes = static_cast<int16_t>(bad);
        EXPECT_EQ(rmemcheck(heap.get()), HEAP_BAD_COUNT) << bad;
    }
    heap->head->free_bytes = free_bytes;
    EXPECT_EQ(rmemcheck(nullptr), HEAP_NULL);
}

TEST(Heap, AddressesOfLargePagesAreKnownForAnOrdinaryPageOnly) {
    owned_heap heap(rhpstart("addresses"));
    char *large = take(heap, 5000);
    char *page = large - 16;
    EXPECT_EQ(isfromheap(page, heap.get()), 0);
    EXPECT_EQ(isfromheap(page + 1, heap.get()), 1);
    EXPECT_EQ(isfromheap(page + 1015, heap.get()), 1);
    EXPECT_EQ(isfromheap(page + 1016, heap.get()), 0);
    EXPECT_EQ(isfromheap(large + 4999, heap.get()), 0);
    EXPECT_EQ(isfromheap(&heap, heap.get()), 0);
    EXPECT_EQ(isfromheap(large, nullptr), 0);
}

TEST(Heap, AlignmentMovesTheFreePositionUpToEight) {
    alignas(16) char bytes[heap_page_size] = {};
    heap_page *page = reinterpret_cast<heap_page *>(bytes);
    const int rows[][2] = {{976, 976}, {971, 968}, {969, 968}, {8, 8}, {5, 0}, {1, 0}, {0, 0}};
    for (const auto &row : rows) {
        page->free_bytes = static_cast<int16_t>(row[0]);
        EXPECT_EQ(rmalign(page), row[1]) << row[0];
        EXPECT_EQ(page->free_bytes, row[1]);
    }
}

TEST(Heap, CurrentHeapServesTheShortFormsUntilItIsFreed) {
    EXPECT_EQ(rualloc(1), nullptr);
    currheap = rhpstart("current");
    char *first = static_cast<char *>(rualloc(3));
    EXPECT_EQ(static_cast<char *>(ralloc(3)), first + 8);
    EXPECT_EQ(isfromheap(first, currheap), 1);
    rhpfree(currheap);
    EXPECT_EQ(currheap, nullptr) << "a freed heap must not stay current";
    rhpfree(nullptr);
}

TEST(Heap, SizesThatCannotBeAreRefused) {
    owned_heap heap(rhpstart("sizes"));
    const ptrdiff_t sizes[] = {PTRDIFF_MIN, -1, 0, PTRDIFF_MAX / 2, PTRDIFF_MAX - 8, PTRDIFF_MAX};
    for (ptrdiff_t size : sizes)
        EXPECT_EQ(take(heap, size), nullptr) << size;
    EXPECT_EQ(take(heap, 1), reinterpret_cast<char *>(heap->head) + 40);
}

TEST(Heap, NoMemoryLeavesTheHeapAsItWas) {
    {
        failing_malloc::scope refused(1);
        EXPECT_EQ(rhpstart("none"), nullptr);
    }
    owned_heap heap(rhpstart("some"));
    take(heap, 970);
    const std::vector<int> before = room(heap);
    for (ptrdiff_t size : {8, 496, 504, 70000}) {
        failing_malloc::scope refused(1);
        EXPECT_EQ(take(heap, size), nullptr) << size;
        EXPECT_TRUE(refused.happened()) << size;
    }
    EXPECT_EQ(room(heap), before);
}

} // namespace
