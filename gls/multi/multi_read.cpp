// The reader of multi tables in object files.

#include <kestrion/multi_file.h>

#include "gls/multi/multi_tree.h"
#include <kestrion/readers.h>

#include <string.h>

using namespace kestrion;

namespace {

// End of file and read errors show as digits 0 in the fields, so each piece asks when it is done.
bool stream_ended(FILE *stream) { return _gl_ext_feof(stream) != 0 || _gl_ext_ferror(stream) != 0; }

// Reads an integer from `lowest` to `highest`.
bool read_int(FILE *stream, int32_t lowest, int32_t highest, int32_t &value) {
    const int64_t number = _gl_get_int(stream);
    value = static_cast<int32_t>(number);
    return number >= lowest && number <= highest;
}

// Makes room for one more entry in a list whose size is a power of two: it grows as the file is
// read, whatever count the file claims.
template <typename Entry> bool make_room(Entry *&list, int32_t count) {
    if ((count & (count - 1)) != 0)
        return true;
    const size_t capacity = count == 0 ? 1 : static_cast<size_t>(count) * 2;
    void *const bigger = _gl_ext_realloc(list, capacity * sizeof(Entry));
    if (bigger == nullptr)
        return false;
    list = static_cast<Entry *>(bigger);
    return true;
}

int read_flag(FILE *stream, void *flag, uint32_t) {
    const uint32_t value = _gl_get_hex_byte(stream);
    *static_cast<unsigned char *>(flag) = static_cast<unsigned char>(value);
    return value == MULTI_NONE || value == MULTI_CHILD || value == MULTI_END ? 0 : -1;
}

class table_reader {
public:
    table_reader(FILE *stream, multi_arr *table, multi_datum_reader reader)
        : stream_(stream), table_(table), read_datum_(reader) {}
    table_reader(const table_reader &) = delete;
    table_reader &operator=(const table_reader &) = delete;
    ~table_reader() { _gl_free_ptr(entry_); }

    // Returns the `err` of the load.
    int32_t read(int32_t greatest_len);

private:
    bool read_head();
    bool read_shared_arrays();
    bool read_plain_node(multi_node *node, int32_t depth);
    bool read_compressed_node(multi_node *node, int32_t depth);
    bool read_node(multi_node *node, int32_t depth) {
        return compressed_ ? read_compressed_node(node, depth) : read_plain_node(node, depth);
    }
    bool read_children(multi_node *node, int32_t depth);
    bool read_flags(unsigned char *flags) { return read_array(flags, 0, 1, read_flag); }
    bool read_data(unsigned char *data) {
        return read_array(data, table_->shift, table_->data_size, read_datum_);
    }
    bool read_array(unsigned char *array, int32_t shift, uint32_t size, multi_datum_reader reader);

    FILE *stream_;
    multi_arr *table_;
    multi_datum_reader read_datum_;
    unsigned char *entry_ = nullptr; // one datum or flag
    int32_t max_len_ = 0;
    int32_t min_len_ = 0;
    bool compressed_ = false;
};

bool table_reader::read_head() {
    int32_t flags;
    if (!read_int(stream_, 1, gl_char_bytes, min_len_) || (max_len_ != 0 && min_len_ > max_len_) ||
        !read_int(stream_, 0, INT32_MAX, flags) || (flags & multi_has_flags) == 0)
        return false;
    _gl_skip_space_if_needed(stream_);
    if (read_datum_(stream_, entry_, table_->data_size) != 0 || _gl_skip_nl(stream_) == 0)
        return false;
    memcpy(table_->default_datum, entry_, table_->data_size);
    table_->flags = flags;
    compressed_ = (flags & multi_compressed) != 0;
    return true;
}

// Reads the lines of an array up to its end; entries are spread over slots of 1 << shift bytes.
bool table_reader::read_array(unsigned char *array, int32_t shift, uint32_t size,
                              multi_datum_reader reader) {
    for (;;) {
        const uint32_t start = _gl_get_hex(stream_, 2);
        const uint32_t length = _gl_get_hex(stream_, 3);
        const uint32_t repeats = _gl_get_hex(stream_, 3);
        if (stream_ended(stream_))
            return false;
        // The end is seven zeros; the line end after them was the last digit of `repeats`.
        if (length == 0)
            return true;
        if (length > gl_bytes || start + length * repeats > gl_bytes)
            return false;
        for (uint32_t i = 0; i < length; ++i) {
            if (reader(stream_, entry_, size) != 0)
                return false;
            for (uint32_t at = start + i, r = 0; r < repeats; at += length, ++r)
                memcpy(array + (static_cast<size_t>(at) << shift), entry_, size);
        }
        if (_gl_skip_nl(stream_) == 0)
            return false;
    }
}

bool table_reader::read_plain_node(multi_node *node, int32_t depth) {
    int32_t has_flags;
    int32_t has_data;
    if (!read_int(stream_, 0, 1, has_flags) || !read_int(stream_, 0, 1, has_data) ||
        _gl_skip_nl(stream_) == 0)
        return false;
    if (has_flags != 0) {
        node->flag_bytes = multi_make_byte_array();
        if (node->flag_bytes == nullptr)
            return false;
        ++table_->flag_count;
        if (!read_flags(node->flag_bytes))
            return false;
    }
    if (has_data != 0) {
        node->data = multi_make_data_array(table_);
        if (node->data == nullptr)
            return false;
        ++table_->data_count;
        if (!read_data(node->data))
            return false;
    }
    const int32_t children = has_flags != 0 ? multi_count_children(node->flag_bytes) : 0;
    return children == 0 || (node->child_count = children, read_children(node, depth));
}

bool table_reader::read_shared_arrays() {
    int32_t flag_count;
    int32_t data_count;
    // The root has flags, so there is at least one array of them.
    if (!read_int(stream_, 1, INT32_MAX, flag_count) ||
        !read_int(stream_, 0, INT32_MAX, data_count) || _gl_skip_nl(stream_) == 0)
        return false;
    // The counts of the table are those of the arrays made so far, for the release of a bad one.
    while (table_->flag_count < flag_count) {
        const int32_t at = table_->flag_count;
        if (!make_room(table_->shared_flags, at) || !make_room(table_->shared_flag_children, at))
            return false;
        unsigned char *const flags = multi_make_byte_array();
        if (flags == nullptr)
            return false;
        table_->shared_flags[at] = flags;
        ++table_->flag_count;
        if (!read_flags(flags))
            return false;
        table_->shared_flag_children[at] = multi_count_children(flags);
    }
    while (table_->data_count < data_count) {
        const int32_t at = table_->data_count;
        if (!make_room(table_->shared_data, at))
            return false;
        unsigned char *const data = multi_make_data_array(table_);
        if (data == nullptr)
            return false;
        table_->shared_data[at] = data;
        ++table_->data_count;
        if (!read_data(data))
            return false;
    }
    return true;
}

bool table_reader::read_compressed_node(multi_node *node, int32_t depth) {
    int32_t has_flags;
    int32_t has_data;
    int32_t flag_index;
    int32_t data_index;
    if (!read_int(stream_, 0, 1, has_flags) || !read_int(stream_, 0, 1, has_data) ||
        !read_int(stream_, 0, INT32_MAX, flag_index) ||
        !read_int(stream_, 0, INT32_MAX, data_index) || _gl_skip_nl(stream_) == 0)
        return false;
    if (has_data != 0) {
        if (data_index >= table_->data_count)
            return false;
        node->data_index = data_index;
        node->data = table_->shared_data[data_index];
    }
    if (has_flags == 0)
        return true;
    if (flag_index >= table_->flag_count)
        return false;
    node->flag_index = flag_index;
    node->flag_bytes = table_->shared_flags[flag_index];
    node->child_count = table_->shared_flag_children[flag_index];
    return node->child_count == 0 || read_children(node, depth);
}

// Reads the children of a node, whose flags and child_count are set. Slots are given out in the
// order of the bytes, which is the order of the children.
bool table_reader::read_children(multi_node *node, int32_t depth) {
    const size_t count = static_cast<size_t>(node->child_count);
    node->children = static_cast<multi_node **>(_gl_ext_calloc(count, sizeof(multi_node *)));
    node->child_slot = multi_make_byte_array();
    if (node->children == nullptr || node->child_slot == nullptr)
        return false;
    ++table_->offset_count;
    // No lookup walks beyond max_len bytes, and the recursion ends with it.
    if (depth >= max_len_)
        return false;
    size_t slot = 0;
    for (size_t b = 0; b < gl_bytes; ++b) {
        if (node->flag_bytes[b] != MULTI_CHILD)
            continue;
        multi_node *const child = multi_make_node();
        if (child == nullptr)
            return false;
        node->child_slot[b] = static_cast<unsigned char>(slot);
        node->children[slot++] = child;
        if (!read_node(child, depth + 1))
            return false;
    }
    return true;
}

// True when a byte 0 inside a sequence leads anywhere in this node or below.
bool goes_on_at_zero(const multi_node *node) {
    if (multi_flag_at(node, 0) != MULTI_NONE)
        return true;
    for (int32_t i = 0; i < node->child_count; ++i) {
        if (goes_on_at_zero(node->children[i]))
            return true;
    }
    return false;
}

// True when a lookup on a terminated text could read beyond the terminator. With characters of one
// byte and more, no sequence may hold the byte 0 unless it is the whole of it; with wider ones, the
// terminator itself must not go on.
bool passes_terminator(const multi_arr *table) {
    const multi_node *node = table->root;
    if (table->min_len <= 1) {
        if (multi_flag_at(node, 0) == MULTI_CHILD)
            return true;
        for (int32_t i = 0; i < node->child_count; ++i) {
            if (goes_on_at_zero(node->children[i]))
                return true;
        }
        return false;
    }
    for (int32_t level = 1; multi_flag_at(node, 0) == MULTI_CHILD; ++level) {
        if (level == table->min_len)
            return true;
        node = multi_child_at(node, 0);
    }
    return false;
}

int32_t table_reader::read(int32_t greatest_len) {
    const int64_t max_len = _gl_get_int(stream_);
    if (max_len > greatest_len)
        return GLS_ERR_TABLE_LENGTH;
    if (max_len < 0 || max_len > gl_char_bytes)
        return GLS_ERR_NO_MEMORY;
    max_len_ = static_cast<int32_t>(max_len);
    entry_ = static_cast<unsigned char *>(
        _gl_ext_malloc(table_->data_size == 0 ? 1 : table_->data_size));
    if (entry_ == nullptr || !read_head() || (compressed_ && !read_shared_arrays()) ||
        !read_node(table_->root, 1) || table_->root->flag_bytes == nullptr)
        return GLS_ERR_NO_MEMORY;
    table_->max_len = max_len_;
    table_->min_len = min_len_;
    return passes_terminator(table_) ? GLS_ERR_NO_MEMORY : GLS_OK;
}

} // namespace

int _gl_fscanf_multi(FILE *stream, multi_arr *table, int32_t greatest_len,
                     multi_datum_reader reader) {
    multi_empty(table);
    table->err = table_reader(stream, table, reader).read(greatest_len);
    if (table->err == GLS_OK)
        return 0;
    multi_empty(table);
    table->max_len = 0;
    table->min_len = gl_char_bytes;
    table->flags = multi_has_flags;
    return -1;
}

int ub2_reader(FILE *stream, void *datum, uint32_t data_size) {
    const uint16_t value = static_cast<uint16_t>(_gl_get_hex(stream, 4));
    if (data_size != sizeof value)
        return -1;
    memcpy(datum, &value, sizeof value);
    return 0;
}
