// Lists the entries of $KESTRIONDIR/etc/passwd_file, one a line, tokens separated by tabs.
//
//     c++ -std=c++20 list_entries.cpp $(pkg-config --cflags --libs kestrion)

#include <kestrion/passwdapi.h>

#include <memory>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vector>

namespace {

// The API says what each block is for by a source name and a line number; a program that keeps no
// allocation trace has no use for them.
void *allocate(size_t size, const char *, int) { return malloc(size); }
void *reallocate(void *block, size_t size, const char *, int) { return realloc(block, size); }

struct end_context {
    void operator()(pw_ctx *ctx) const { pw_cleanup(ctx); }
};

// An entry holds a password: it is wiped before its memory goes back.
struct end_entry {
    void operator()(pw_entry *entry) const {
        explicit_bzero(entry, sizeof *entry);
        free(entry);
    }
};

using entry_ptr = std::unique_ptr<pw_entry, end_entry>;

bool load(pw_ctx *ctx, std::vector<entry_ptr> &entries) {
    int32_t count = 0;
    if (pwGetLineCount(ctx, &count) != 0)
        return false;
    std::vector<pw_entry *> table(static_cast<size_t>(count) + 1, nullptr);
    const bool loaded = pwLoadPW(ctx, &count, table.data()) == 0;
    for (pw_entry *entry : table)
        if (entry != nullptr)
            entries.emplace_back(entry);
    return loaded;
}

} // namespace

int main() {
    pw_ctx *made = nullptr;
    if (pw_init(&made, allocate, reallocate, free) != 0)
        return EXIT_FAILURE; // the API has told why
    const std::unique_ptr<pw_ctx, end_context> ctx(made);

    std::vector<entry_ptr> entries;
    if (!load(ctx.get(), entries))
        return EXIT_FAILURE;
    for (const entry_ptr &entry : entries)
        printf("%s\t%s\t%s\t%s\n", entry->token1, entry->token2, entry->token3, entry->token4);
    return EXIT_SUCCESS;
}
