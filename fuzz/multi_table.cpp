// The reader of multi tables: whatever the bytes are, a table is refused or safe to look things up
// in and to write, and reading what was written gives the same text again.

#include "gls/multi/multi_tree.h"
#include <kestrion/multi_file.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace {

multi_arr *read(const char *text, size_t size) {
    const uint16_t zero = 0;
    multi_arr *const table = _gl_create_multi(2, 0, &zero);
    FILE *const file = fmemopen(const_cast<char *>(text), size, "r");
    const int result = _gl_fscanf_multi(file, table, 4, ub2_reader);
    fclose(file);
    if (result == 0)
        return table;
    if (table->err != 3 && table->err != 21)
        abort();
    _gl_free_multi(table);
    return nullptr;
}

char *write(multi_arr *table, size_t &size) {
    char *text = nullptr;
    FILE *const file = open_memstream(&text, &size);
    _gl_fprintf_multi(file, table, ub2_writer);
    fclose(file);
    return text;
}

// Looks up texts of two bytes from all over, each terminated.
void look_up_pairs(const multi_arr *table) {
    int32_t word;
    int32_t used;
    for (unsigned pair = 0; pair <= 0xFFFF; pair += 97) {
        // In a block of exactly this size, so that an overread is seen.
        const size_t size = 2 + static_cast<size_t>(table->min_len);
        char *const text = static_cast<char *>(calloc(size, 1));
        text[0] = static_cast<char>(pair >> 8);
        text[1] = static_cast<char>(pair);
        if (table->min_len <= 2)
            _gl_retrieve_text_multi(text, table, &used, &word);
        _gl_retrieve_text_multi_limit(text, table, 2, &used, &word);
        _gl_retrieve_wchar_multi_nl(&word, pair << 16 | pair, table);
        free(text);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0 || size > 1 << 16)
        return 0;
    multi_arr *const table = read(reinterpret_cast<const char *>(data), size);
    if (table == nullptr)
        return 0;
    look_up_pairs(table);
    if (kestrion::multi_flatten(table) == 0)
        look_up_pairs(table);
    size_t first_size;
    char *const first = write(table, first_size);
    multi_arr *const again = read(first, first_size);
    if (again == nullptr)
        abort();
    size_t second_size;
    char *const second = write(again, second_size);
    if (first_size != second_size || memcmp(first, second, first_size) != 0)
        abort();
    free(first);
    free(second);
    _gl_free_multi(again);
    _gl_free_multi(table);
    return 0;
}
