// The writer of multi tables in object files.

#include <kestrion/multi_file.h>

#include "gls/multi/multi_tree.h"

#include <stdarg.h>
#include <string.h>

using namespace kestrion;

namespace {

// Equal neighbours from which on a repeat is shorter than writing them out.
constexpr size_t shortest_run = 4;

void write_text(FILE *stream, const char *text, int length) {
    _gl_ext_fwrite(text, 1, static_cast<size_t>(length), stream);
}

// Formats a short line of integers.
[[gnu::format(printf, 2, 3)]] void write_numbers(FILE *stream, const char *format, ...) {
    char line[64]; // four integers and their blanks
    va_list numbers;
    va_start(numbers, format);
    write_text(stream, line, vsnprintf(line, sizeof line, format, numbers));
    va_end(numbers);
}

void write_flag(FILE *stream, const void *flag) {
    write_numbers(stream, "%02x", static_cast<unsigned>(*static_cast<const unsigned char *>(flag)));
}

// The 256 entries of an array, of which the empty ones are not written.
struct entry_list {
    const unsigned char *array;
    int32_t shift;
    size_t size; // bytes of an entry
    const void *empty;

    const unsigned char *at(size_t i) const { return array + (i << shift); }
    bool is_empty(size_t i) const { return memcmp(at(i), empty, size) == 0; }
    // Length of the run of equal entries from i on.
    size_t run_from(size_t i) const {
        size_t end = i + 1;
        while (end < gl_bytes && memcmp(at(end), at(i), size) == 0)
            ++end;
        return end - i;
    }
    // End of the literal from i on: its last entry that is not empty, before the next run.
    size_t literal_end(size_t i) const {
        size_t end = i;
        for (size_t run; i < gl_bytes && (run = run_from(i)) < shortest_run; i += run) {
            if (!is_empty(i))
                end = i + run;
        }
        return end;
    }
};

void write_array(FILE *stream, const entry_list &entries, multi_datum_writer write_entry) {
    for (size_t start = 0; start < gl_bytes;) {
        if (entries.is_empty(start)) {
            ++start;
            continue;
        }
        const size_t run = entries.run_from(start);
        const bool repeat = run >= shortest_run;
        const size_t length = repeat ? 1 : entries.literal_end(start) - start;
        const size_t repeats = repeat ? run : 1;
        write_numbers(stream, "%02x%03x%03x", static_cast<unsigned>(start),
                      static_cast<unsigned>(length), static_cast<unsigned>(repeats));
        for (size_t i = 0; i < length; ++i)
            write_entry(stream, entries.at(start + i));
        write_text(stream, "\n", 1);
        start += length * repeats;
    }
    // Exactly seven zeros: the reader takes the line end as the eighth character of this line.
    write_text(stream, "0000000\n", 8);
}

struct table_writer {
    FILE *stream;
    const multi_arr *table;
    multi_datum_writer write_datum;

    void write_flags(const unsigned char *flags) const {
        const unsigned char none = MULTI_NONE;
        write_array(stream, {.array = flags, .shift = 0, .size = 1, .empty = &none}, write_flag);
    }
    void write_data(const unsigned char *data) const {
        write_array(stream,
                    {.array = data,
                     .shift = table->shift,
                     .size = table->data_size,
                     .empty = table->default_datum},
                    write_datum);
    }
    void write_plain_node(const multi_node *node) const;
    void write_shared_arrays() const;
    void write_compressed_node(const multi_node *node) const;
};

void table_writer::write_plain_node(const multi_node *node) const {
    write_numbers(stream, "%d %d\n", node->flag_bytes != nullptr, node->data != nullptr);
    if (node->flag_bytes != nullptr)
        write_flags(node->flag_bytes);
    if (node->data != nullptr)
        write_data(node->data);
    for (size_t b = 0; b < gl_bytes; ++b) {
        const unsigned char byte = static_cast<unsigned char>(b);
        if (multi_flag_at(node, byte) == MULTI_CHILD)
            write_plain_node(multi_child_at(node, byte));
    }
}

void table_writer::write_shared_arrays() const {
    write_numbers(stream, "%d %d\n", table->flag_count, table->data_count);
    for (int32_t i = 0; i < table->flag_count; ++i)
        write_flags(table->shared_flags[i]);
    for (int32_t i = 0; i < table->data_count; ++i)
        write_data(table->shared_data[i]);
}

void table_writer::write_compressed_node(const multi_node *node) const {
    const bool has_flags = node->flag_bytes != nullptr;
    const bool has_data = node->data != nullptr;
    write_numbers(stream, "%d %d %u %u\n", has_flags, has_data,
                  has_flags ? static_cast<unsigned>(node->flag_index) : 0u,
                  has_data ? static_cast<unsigned>(node->data_index) : 0u);
    for (size_t b = 0; b < gl_bytes; ++b) {
        const unsigned char byte = static_cast<unsigned char>(b);
        if (multi_flag_at(node, byte) == MULTI_CHILD)
            write_compressed_node(multi_child_at(node, byte));
    }
}

} // namespace

void _gl_fprintf_multi(FILE *stream, multi_arr *table, multi_datum_writer writer) {
    single_byte_exists(table);
    // A table made with the bit has nothing to share before `_gl_compress_multi`.
    const bool compressed = table->shared_flags != nullptr;
    const int32_t form = compressed ? multi_compressed : 0;
    write_numbers(stream, "%d %d %d ", table->max_len, table->min_len,
                  (table->flags & ~multi_compressed) | form);
    writer(stream, table->default_datum);
    write_text(stream, "\n", 1);
    const table_writer out = {.stream = stream, .table = table, .write_datum = writer};
    if (compressed) {
        out.write_shared_arrays();
        out.write_compressed_node(table->root);
    } else {
        out.write_plain_node(table->root);
    }
}

void ub2_writer(FILE *stream, const void *datum) {
    uint16_t value;
    memcpy(&value, datum, sizeof value);
    write_numbers(stream, "%04x", static_cast<unsigned>(value));
}
