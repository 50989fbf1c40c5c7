// Bytes that end right before an unreadable page, so that a reader which passes their end by a
// single byte dies on the spot, with or without sanitizers.

#pragma once

#include <stdlib.h>
#include <string.h>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

class guarded_bytes {
public:
    explicit guarded_bytes(std::string_view bytes) : size_(bytes.size()) {
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        readable_ = (size_ / page + 1) * page;
        mapped_ = readable_ + page;
        map_ = static_cast<char *>(
            mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (map_ == MAP_FAILED || mprotect(map_ + readable_, page, PROT_NONE) != 0)
            abort();
        memcpy(data(), bytes.data(), size_);
    }
    ~guarded_bytes() { munmap(map_, mapped_); }
    guarded_bytes(const guarded_bytes &) = delete;
    guarded_bytes &operator=(const guarded_bytes &) = delete;

    char *data() { return map_ + readable_ - size_; }
    std::string_view view() { return {data(), size_}; }

private:
    size_t size_;
    size_t readable_;
    size_t mapped_;
    char *map_;
};
