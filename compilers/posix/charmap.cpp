#include "compilers/posix/charmap.h"

#include "compilers/posix/charmap_reader.h"

#include <algorithm>
#include <numeric>

namespace kestrion {
namespace {

constexpr uint32_t page_size = 256; // code points in a page of the index

// Orders sequences by their length, then by their bytes.
uint64_t byte_key(const code_sequence &sequence) {
    return uint64_t{sequence.length} << 32 | sequence.packed();
}

} // namespace

charmap::charmap(const source_file &source) : source_(source) {
    charmap_reader(*this, source).read();
    // Another sequence for a character is as wide as the one that it is written by.
    for (charmap_row &row : rows)
        if (const charmap_row *written = row.one_way ? find(row.code_point) : nullptr) {
            row.width = written->width;
            row.width_offset = written->width_offset;
        }
}

void charmap::index_rows() {
    for (size_t i = 0; i < rows.size(); ++i) {
        const uint32_t code_point = rows[i].code_point;
        if (code_point >= code_point_limit || rows[i].one_way)
            continue;
        const uint32_t page = code_point / page_size;
        if (page >= pages_.size())
            pages_.resize(page + 1);
        if (pages_[page].empty())
            pages_[page].resize(page_size);
        uint32_t &slot = pages_[page][code_point % page_size];
        if (slot == 0)
            slot = static_cast<uint32_t>(i) + 1;
    }
    by_bytes_.resize(rows.size());
    std::iota(by_bytes_.begin(), by_bytes_.end(), 0);
    std::stable_sort(by_bytes_.begin(), by_bytes_.end(), [this](uint32_t a, uint32_t b) {
        const uint64_t left = byte_key(rows[a].sequence), right = byte_key(rows[b].sequence);
        return left != right ? left < right : rows[a].one_way < rows[b].one_way;
    });
}

const charmap_row *charmap::find(uint32_t code_point) const {
    const uint32_t page = code_point / page_size;
    if (page >= pages_.size() || pages_[page].empty())
        return nullptr;
    const uint32_t slot = pages_[page][code_point % page_size];
    return slot == 0 ? nullptr : &rows[slot - 1];
}

const charmap_row *charmap::find_bytes(const code_sequence &wanted) const {
    const std::span<const uint32_t> found = between(wanted, wanted);
    return found.empty() ? nullptr : &rows[found.front()];
}

std::span<const uint32_t> charmap::between(const code_sequence &first,
                                           const code_sequence &last) const {
    const auto below = [this](uint32_t row, uint64_t key) {
        return byte_key(rows[row].sequence) < key;
    };
    const auto from = std::lower_bound(by_bytes_.begin(), by_bytes_.end(), byte_key(first), below);
    const auto to = std::lower_bound(from, by_bytes_.end(), byte_key(last) + 1, below);
    return {from, to};
}

const charmap_row *charmap::find_name(std::string_view name) const {
    const uint32_t code_point = code_point_of_name(name);
    if (code_point != no_code_point)
        return find(code_point);
    const auto found = named_rows_.find(std::string(name));
    return found == named_rows_.end() ? nullptr : &rows[found->second];
}

} // namespace kestrion
