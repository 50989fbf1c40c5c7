// Memory functions for pw_init that note what is asked of them, refuse on demand, and look at what
// comes back for bytes that had to be wiped. Each block has its exact size, so that sanitizers see
// every overrun.

#pragma once

#include <kestrion/passwdapi.h>

#include <string>
#include <string_view>
#include <vector>

namespace watchful_memory {

struct request {
    size_t size;
    int line;
    bool operator==(const request &) const = default;
};

void reset(); // also frees what the API has lost by design, contexts excepted
void look_for(std::string_view secret); // in every block that comes back
void refuse_request(int k);             // the k-th from here on; 0 refuses none

const std::vector<request> &requests();
std::string found(); // secrets seen in blocks that came back, or still there in blocks that did not
size_t live_blocks(); // but contexts

// A context made of these functions, without pw_init.
pw_ctx *context();

void *alloc(size_t size, const char *source, int line);
void *realloc(void *block, size_t size, const char *source, int line);
void free(void *block);

} // namespace watchful_memory
