#include "compilers/posix/charmap.h"

#include "compilers/posix/charmap_reader.h"

namespace kestrion {
namespace {

constexpr uint32_t page_size = 256; // code points in a page of the index

} // namespace

charmap::charmap(const source_file &source) : source_(source) {
    charmap_reader(*this, source).read();
    index_code_points();
    // Another sequence for a character is as wide as the one that it is written by.
    for (charmap_row &row : rows)
        if (const charmap_row *written = row.one_way ? find(row.code_point) : nullptr) {
            row.width = written->width;
            row.width_offset = written->width_offset;
        }
}

void charmap::index_code_points() {
    pages_.clear();
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
}

const charmap_row *charmap::find(uint32_t code_point) const {
    const uint32_t page = code_point / page_size;
    if (page >= pages_.size() || pages_[page].empty())
        return nullptr;
    const uint32_t slot = pages_[page][code_point % page_size];
    return slot == 0 ? nullptr : &rows[slot - 1];
}

const charmap_row *charmap::find_bytes(const code_sequence &wanted) const {
    const charmap_row *found = nullptr;
    for (const charmap_row &row : rows)
        if (row.sequence == wanted && (found == nullptr || (found->one_way && !row.one_way)))
            found = &row;
    return found;
}

const charmap_row *charmap::find_name(std::string_view name) const {
    const uint32_t code_point = code_point_of_name(name);
    if (code_point != no_code_point)
        return find(code_point);
    const auto found = named_rows_.find(std::string(name));
    return found == named_rows_.end() ? nullptr : &rows[found->second];
}

} // namespace kestrion
