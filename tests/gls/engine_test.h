// What the tests of the engine share: an allocator that counts and fails, and files in memory.

#pragma once

#include <kestrion/ext_funcs.h>

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <string_view>

// Serves the engine's allocations while it lives: counts the blocks that are alive and lets one
// allocation fail.
class counting_allocator {
public:
    counting_allocator() {
        live = 0;
        calls = 0;
        fail_at = -1;
        set(GL_SLOT_MALLOC, reinterpret_cast<gl_function>(allocate));
        set(GL_SLOT_CALLOC, reinterpret_cast<gl_function>(allocate_zeroed));
        set(GL_SLOT_REALLOC, reinterpret_cast<gl_function>(reallocate));
        set(GL_SLOT_FREE, reinterpret_cast<gl_function>(release));
    }
    ~counting_allocator() {
        EXPECT_EQ(live, 0) << "blocks leaked";
        for (const gl_ext_slot slot :
             {GL_SLOT_MALLOC, GL_SLOT_CALLOC, GL_SLOT_REALLOC, GL_SLOT_FREE})
            _gl_set_ext_funcptr(slot, nullptr);
    }
    // Lets the call number `call` from now fail, counted from 0; -1 for none.
    static void fail_call(int call) {
        calls = 0;
        fail_at = call;
    }
    // True when the call that was to fail has come.
    static bool failed() { return fail_at >= 0 && calls > fail_at; }

    static inline int live = 0;

private:
    static inline int calls = 0;
    static inline int fail_at = -1;

    static void set(gl_ext_slot slot, gl_function function) {
        gl_setextfunc(nullptr, slot, function);
    }
    static bool fails() { return calls++ == fail_at; }
    static void *counted(void *block) {
        live += block != nullptr;
        return block;
    }
    static void *allocate(size_t size) {
        EXPECT_NE(size, 0u) << "nothing is asked for";
        return fails() ? nullptr : counted(malloc(size));
    }
    static void *allocate_zeroed(size_t count, size_t size) {
        EXPECT_NE(count * size, 0u) << "nothing is asked for";
        return fails() ? nullptr : counted(calloc(count, size));
    }
    static void *reallocate(void *block, size_t size) {
        if (fails())
            return nullptr;
        return block == nullptr ? counted(malloc(size)) : realloc(block, size);
    }
    static void release(void *block) {
        live -= block != nullptr;
        free(block);
    }
};

// A file in memory that holds `text`, to be read.
class memory_file {
public:
    explicit memory_file(std::string_view text) : text_(text) {
        file = fmemopen(text_.data(), text_.size(), "r");
        if (text_.empty()) { // fmemopen refuses nothing at all
            file = tmpfile();
        }
    }
    ~memory_file() { fclose(file); }
    memory_file(const memory_file &) = delete;
    memory_file &operator=(const memory_file &) = delete;
    // What has not been read yet.
    std::string rest() const {
        std::string left;
        for (int c; (c = fgetc(file)) != EOF;)
            left.push_back(static_cast<char>(c));
        return left;
    }

    FILE *file;

private:
    std::string text_;
};

// What `write` writes to a stream.
template <typename Write> std::string text_written(Write write) {
    char *text = nullptr;
    size_t size = 0;
    FILE *const stream = open_memstream(&text, &size);
    write(stream);
    fclose(stream);
    std::string written(text, size);
    free(text);
    return written;
}
