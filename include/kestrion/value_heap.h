// Value heap: many small zeroed blocks that go away all at once.
//
// A heap is a chain of pages, sorted by room, most first. Blocks have no header and are never freed
// one by one; rhpfree() frees the whole heap. One thread at a time uses a heap.
//
//     0        16                                         1016 - free_bytes      1016
//     | header | blocks handed out, rounded up to 8 bytes | free bytes, all zero |
//
// The handle lies in the body of the first page made, which leaves 976 bytes free in it. A request
// that fits no page gets a new one: of 1016 bytes up to 496, else a page of its own size with no
// room left.

#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

enum { heap_page_size = 1016, heap_page_header = 16 };

typedef struct heap_page heap_page;
struct heap_page {
    heap_page *next;    // page with as much room or less, null at the end
    int16_t free_bytes; // bytes free at the page's end; 0 in a page of its own size
};
static_assert(sizeof(heap_page) == heap_page_header, "stated size");

typedef struct value_heap {
    heap_page *head;    // page with the most room
    uint64_t stored[2]; // the caller's words of do_rhpstart
} value_heap;
static_assert(sizeof(value_heap) == 24, "stated size");

enum heap_state {
    HEAP_SOUND = 0,
    HEAP_OVERRUN = 1,   // a byte of free space was written
    HEAP_NULL = 2,      // no heap given
    HEAP_BAD_COUNT = 3, // a page's free count is negative or beyond its body
};

#ifdef __cplusplus
extern "C" {
#endif

extern value_heap *currheap; // heap that rualloc and ralloc use; its users set it and put it back

// A new heap, or null. The name is for the reader's eyes only and is not stored.
value_heap *rhpstart(const char *name);
value_heap *do_rhpstart(const char *name, uint64_t first_word, uint64_t second_word);

// A zeroed block of `size` bytes from `currheap`, or null for no heap, a size below 1, or no
// memory; the heap is then as it was.
void *rualloc(ptrdiff_t size);
void *ralloc(ptrdiff_t size);
void *do_rualloc(ptrdiff_t size, uint64_t unused, value_heap *heap);

// Frees all pages and with them the handle; ignores null. do_rhpfree is a second name.
void rhpfree(value_heap *heap);
void do_rhpfree(value_heap *heap);

int rmemcheck(const value_heap *heap); // a heap_state

// Moves the page's next free position up to a multiple of 8, at most to the page's end. Returns the
// new free_bytes.
int rmalign(heap_page *page);

// 1 when `address` lies inside the first 1016 bytes of one of the heap's pages, else 0. A page of
// its own size that is larger counts no further than that.
int isfromheap(const void *address, const value_heap *heap);

#ifdef __cplusplus
}
#endif
