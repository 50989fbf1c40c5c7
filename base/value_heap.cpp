#include <kestrion/value_heap.h>

#include <algorithm>
#include <stdlib.h>
#include <string.h>

namespace {

constexpr ptrdiff_t block_unit = 8;        // blocks are multiples of it
constexpr ptrdiff_t shared_page_end = 500; // rounded sizes from here on get a page of their own
constexpr ptrdiff_t page_body = heap_page_size - heap_page_header;
constexpr ptrdiff_t largest_request = PTRDIFF_MAX - 2 * heap_page_header;

// The stricter of the alignments that older callers know by the numbers 2 and 3.
constexpr ptrdiff_t strictest_alignment = 8;

char *start_of(heap_page *page) { return reinterpret_cast<char *>(page); }
const char *start_of(const heap_page *page) { return reinterpret_cast<const char *>(page); }

heap_page *new_page(ptrdiff_t size) {
    return static_cast<heap_page *>(calloc(1, static_cast<size_t>(size)));
}

// Puts `page` into the chain that begins at `link`, after all pages with more room and before
// those with as much.
void insert_page(heap_page **link, heap_page *page) {
    while (*link != nullptr && (*link)->free_bytes > page->free_bytes)
        link = &(*link)->next;
    page->next = *link;
    *link = page;
}

// The link to the page with the least room that still holds `size` bytes; to the head if none does.
heap_page **best_fit(heap_page **link, ptrdiff_t size) {
    while ((*link)->next != nullptr && (*link)->next->free_bytes >= size)
        link = &(*link)->next;
    return link;
}

void *take_from(heap_page **link, ptrdiff_t size) {
    heap_page *page = *link;
    char *block = start_of(page) + heap_page_size - page->free_bytes;
    page->free_bytes = static_cast<int16_t>(page->free_bytes - size);
    *link = page->next;
    insert_page(link, page);
    return block;
}

void *take_from_new_page(value_heap *heap, ptrdiff_t size) {
    const ptrdiff_t page_size =
        size < shared_page_end ? ptrdiff_t{heap_page_size} : size + heap_page_header;
    heap_page *page = new_page(page_size);
    if (page == nullptr)
        return nullptr;
    page->free_bytes = static_cast<int16_t>(page_size - size - heap_page_header);
    insert_page(&heap->head, page);
    return start_of(page) + heap_page_header;
}

} // namespace

constinit value_heap *currheap = nullptr;

value_heap *rhpstart(const char *name) { return do_rhpstart(name, 0, 0); }

value_heap *do_rhpstart(const char *, uint64_t first_word, uint64_t second_word) {
    heap_page *page = new_page(heap_page_size);
    if (page == nullptr)
        return nullptr;
    page->free_bytes = page_body - ptrdiff_t{sizeof(value_heap)};
    value_heap *heap = reinterpret_cast<value_heap *>(start_of(page) + heap_page_header);
    *heap = {.head = page, .stored = {first_word, second_word}};
    return heap;
}

void *rualloc(ptrdiff_t size) { return do_rualloc(size, 0, currheap); }
void *ralloc(ptrdiff_t size) { return do_rualloc(size, 0, currheap); }

void *do_rualloc(ptrdiff_t size, uint64_t, value_heap *heap) {
    if (heap == nullptr || size < 1 || size > largest_request)
        return nullptr;
    const ptrdiff_t rounded = (size + block_unit - 1) / block_unit * block_unit;
    heap_page **link = best_fit(&heap->head, rounded);
    if ((*link)->free_bytes >= rounded)
        return take_from(link, rounded);
    return take_from_new_page(heap, rounded);
}

void rhpfree(value_heap *heap) { do_rhpfree(heap); }

void do_rhpfree(value_heap *heap) {
    if (heap == nullptr)
        return;
    if (heap == currheap)
        currheap = nullptr;
    // The handle goes with the page that it lies in, which may be any of the chain.
    for (heap_page *page = heap->head; page != nullptr;) {
        heap_page *next = page->next;
        free(page);
        page = next;
    }
}

int rmemcheck(const value_heap *heap) {
    if (heap == nullptr)
        return HEAP_NULL;
    for (const heap_page *page = heap->head; page != nullptr; page = page->next) {
        if (page->free_bytes < 0 || page->free_bytes > page_body)
            return HEAP_BAD_COUNT;
        const char *end = start_of(page) + heap_page_size;
        if (page->free_bytes > 0 &&
            std::any_of(end - page->free_bytes, end, [](char byte) { return byte != 0; }))
            return HEAP_OVERRUN;
    }
    return HEAP_SOUND;
}

int rmalign(heap_page *page) {
    const uintptr_t position = reinterpret_cast<uintptr_t>(start_of(page)) +
                               static_cast<uintptr_t>(heap_page_size - page->free_bytes);
    const ptrdiff_t distance =
        static_cast<ptrdiff_t>((0 - position) % uintptr_t{strictest_alignment});
    page->free_bytes =
        static_cast<int16_t>(distance < page->free_bytes ? page->free_bytes - distance : 0);
    return page->free_bytes;
}

int isfromheap(const void *address, const value_heap *heap) {
    if (heap == nullptr)
        return 0;
    const uintptr_t wanted = reinterpret_cast<uintptr_t>(address);
    for (const heap_page *page = heap->head; page != nullptr; page = page->next) {
        const uintptr_t start = reinterpret_cast<uintptr_t>(page);
        if (wanted > start && wanted - start < uintptr_t{heap_page_size})
            return 1;
    }
    return 0;
}
