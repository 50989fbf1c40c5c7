#include "compilers/object_table.h"

#include "compilers/diagnostics.h"
#include "gls/multi/multi_tree.h"

#include <new>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vector>

namespace kestrion {

namespace {

std::string written_text(multi_arr *table, multi_datum_writer writer) {
    char *text = nullptr;
    size_t length = 0;
    FILE *stream = open_memstream(&text, &length);
    if (stream == nullptr)
        throw std::bad_alloc();
    _gl_fprintf_multi(stream, table, writer);
    const bool written = fclose(stream) == 0;
    std::string result = written ? std::string(text, length) : std::string();
    free(text);
    if (!written)
        throw std::bad_alloc();
    return result;
}

void visit_node(const multi_arr *table, const multi_node *node, code_sequence prefix,
                const std::function<void(const code_sequence &, const unsigned char *)> &visit) {
    const int depth = prefix.length++;
    for (size_t b = 0; b < gl_bytes; ++b) {
        const auto byte = static_cast<unsigned char>(b);
        prefix.bytes[depth] = byte;
        if (multi_flag_at(node, byte) == MULTI_CHILD)
            visit_node(table, multi_child_at(node, byte), prefix, visit);
        else if (multi_flag_at(node, byte) == MULTI_END)
            visit(prefix,
                  node->data == nullptr ? table->default_datum : multi_slot(table, node->data, b));
    }
}

} // namespace

multi_table make_table(uint32_t data_size) {
    const std::vector<unsigned char> zero(data_size);
    multi_table table(_gl_create_multi(data_size, 0, zero.data()));
    if (!table)
        throw std::bad_alloc();
    return table;
}

void add_to_table(multi_arr *table, const code_sequence &sequence, const void *datum) {
    gl_char_desc desc{sequence.length, {}};
    memcpy(desc.bytes, sequence.bytes, sizeof desc.bytes);
    if (_gl_insert_desc_multi(&desc, datum, table) == 0)
        return;
    throw compiler_failure("the character " + hex_text(sequence.text()) +
                           " is the beginning of another, or begins with one");
}

void for_each_entry(
    const multi_arr *table,
    const std::function<void(const code_sequence &, const unsigned char *)> &visit) {
    visit_node(table, table->root, {}, visit);
}

std::string table_text(multi_arr *table, multi_datum_writer writer) {
    std::string plain = written_text(table, writer);
    if (_gl_compress_multi(table) != 0)
        throw std::bad_alloc();
    std::string compressed = written_text(table, writer);
    return compressed.size() < plain.size() ? compressed : plain;
}

} // namespace kestrion
