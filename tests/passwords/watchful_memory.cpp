#include "passwords/watchful_memory.h"

#include <map>
#include <stdlib.h>
#include <string.h>

namespace watchful_memory {

namespace {

// Never destroyed, so that what the API loses by design is no leak of the test program.
auto &live = *new std::map<void *, size_t>;
auto &contexts = *new std::map<void *, size_t>; // these live on from test to test
std::vector<request> asked;
std::vector<std::string> secrets;
std::string seen;
int until_refusal = 0;

void inspect(const void *block, size_t size, const char *when) {
    for (const std::string &secret : secrets)
        if (memmem(block, size, secret.data(), secret.size()) != nullptr)
            seen += secret + " in a block of " + std::to_string(size) + when;
}

} // namespace

void reset() {
    for (const auto &[block, size] : live)
        ::free(block);
    live.clear();
    asked.clear();
    secrets.clear();
    seen.clear();
    until_refusal = 0;
}

void look_for(std::string_view secret) { secrets.emplace_back(secret); }
void refuse_request(int k) { until_refusal = k; }
const std::vector<request> &requests() { return asked; }
size_t live_blocks() { return live.size(); }

std::string found() {
    for (const auto &[block, size] : live)
        inspect(block, size, " that stayed\n");
    return seen;
}

pw_ctx *context() {
    static pw_ctx ctx;
    ctx = {.alloc_fn = alloc,
           .realloc_fn = realloc,
           .free_fn = free,
           .keystore_path = {},
           .install_dir = {},
           .counted_lines = -1};
    return &ctx;
}

void *alloc(size_t size, const char *source, int line) {
    asked.push_back({size, strcmp(source, "passwdapi") == 0 ? line : -1});
    if (until_refusal != 0 && --until_refusal == 0)
        return nullptr;
    void *block = ::malloc(size);
    memset(block, 0xee, size); // nothing may count on cleared memory
    (line == PW_LINE_CONTEXT ? contexts : live)[block] = size;
    return block;
}

// Always moves, and leaves what was there for inspection.
void *realloc(void *block, size_t size, const char *source, int line) {
    void *moved = alloc(size, source, line);
    if (moved == nullptr)
        return nullptr;
    const size_t old = live.at(block);
    memcpy(moved, block, old < size ? old : size);
    free(block);
    return moved;
}

void free(void *block) {
    auto &from = contexts.contains(block) ? contexts : live;
    const auto it = from.find(block);
    if (it == from.end())
        abort(); // not ours, or given back twice
    inspect(it->first, it->second, " that came back\n");
    ::free(it->first);
    from.erase(it);
}

} // namespace watchful_memory
