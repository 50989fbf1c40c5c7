// Sharing of equal arrays in a multi table.

#include "gls/multi/multi_tree.h"

#include <string.h>

using namespace kestrion;

namespace {

// Finds the first array of a growing list that equals a given one, by a hash over its bytes: a
// large code set has tens of thousands of nodes, too many to hold each against all.
class array_list {
public:
    array_list(size_t slot_size, size_t data_size) : slot_(slot_size), data_(data_size) {}
    array_list(const array_list &) = delete;
    array_list &operator=(const array_list &) = delete;
    ~array_list() {
        _gl_free_ptr(arrays);
        _gl_free_ptr(places_);
    }

    // Makes room for as many arrays as there are; the only step that can fail.
    bool reserve(int32_t present);
    // Index of the first equal array, or of this one after the last.
    int32_t index_of(unsigned char *array);

    unsigned char **arrays = nullptr; // taken over by the table in the end
    int32_t count = 0;

private:
    uint64_t hash(const unsigned char *array) const;
    bool equal(const unsigned char *a, const unsigned char *b) const;

    size_t slot_; // bytes from one entry to the next
    size_t data_; // bytes of an entry that count
    int32_t *places_ = nullptr;
    size_t capacity_ = 1; // a power of two
};

bool array_list::reserve(int32_t present) {
    const size_t room = present < 1 ? 1 : static_cast<size_t>(present);
    while (capacity_ < room * 2)
        capacity_ *= 2;
    arrays = static_cast<unsigned char **>(_gl_ext_malloc(room * sizeof *arrays));
    places_ = static_cast<int32_t *>(_gl_ext_malloc(capacity_ * sizeof *places_));
    if (arrays == nullptr || places_ == nullptr)
        return false;
    for (size_t i = 0; i < capacity_; ++i)
        places_[i] = -1;
    return true;
}

uint64_t array_list::hash(const unsigned char *array) const {
    uint64_t value = 0xCBF29CE484222325u;
    for (size_t b = 0; b < gl_bytes; ++b) {
        for (size_t i = 0; i < data_; ++i)
            value = (value ^ array[b * slot_ + i]) * 0x100000001B3u;
    }
    return value ^ value >> 32;
}

bool array_list::equal(const unsigned char *a, const unsigned char *b) const {
    if (slot_ == data_)
        return memcmp(a, b, gl_bytes * slot_) == 0;
    for (size_t i = 0; i < gl_bytes; ++i) {
        if (memcmp(a + i * slot_, b + i * slot_, data_) != 0)
            return false;
    }
    return true;
}

int32_t array_list::index_of(unsigned char *array) {
    for (size_t i = hash(array);; ++i) {
        int32_t &place = places_[i & (capacity_ - 1)];
        if (place < 0) {
            arrays[count] = array;
            place = count;
            return count++;
        }
        if (equal(arrays[place], array))
            return place;
    }
}

// Replaces an array by its equal in the list, if there is one; returns its index.
int32_t share(unsigned char *&array, array_list &list) {
    if (array == nullptr)
        return -1;
    const int32_t index = list.index_of(array);
    if (list.arrays[index] != array)
        _gl_ext_free(array);
    array = list.arrays[index];
    return index;
}

void share_below(multi_node *node, array_list &flags, array_list &data) {
    node->flag_index = share(node->flag_bytes, flags);
    node->data_index = share(node->data, data);
    for (size_t b = 0; b < gl_bytes; ++b) {
        const unsigned char byte = static_cast<unsigned char>(b);
        if (multi_flag_at(node, byte) == MULTI_CHILD)
            share_below(multi_child_at(node, byte), flags, data);
    }
}

} // namespace

int _gl_compress_multi(multi_arr *table) {
    single_byte_exists(table);
    if (table->shared_flags != nullptr)
        return 0;
    array_list flags(1, 1);
    array_list data(size_t{1} << table->shift, table->data_size);
    const size_t flag_room = table->flag_count < 1 ? 1 : static_cast<size_t>(table->flag_count);
    int32_t *const children = static_cast<int32_t *>(_gl_ext_malloc(flag_room * sizeof(int32_t)));
    if (children == nullptr || !flags.reserve(table->flag_count) ||
        !data.reserve(table->data_count)) {
        _gl_free_ptr(children);
        return -1;
    }
    multi_drop_flat(table);
    share_below(table->root, flags, data);
    for (int32_t i = 0; i < flags.count; ++i)
        children[i] = multi_count_children(flags.arrays[i]);
    table->flags |= multi_compressed;
    table->flag_count = flags.count;
    table->data_count = data.count;
    table->shared_flags = flags.arrays;
    table->shared_data = data.arrays;
    table->shared_flag_children = children;
    flags.arrays = data.arrays = nullptr;
    return 0;
}
