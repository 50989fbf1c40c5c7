#include <kestrion/code_set_registry.h>

#include "base/ascii_class.h"
#include "gls/base/engine_error.h"
#include <kestrion/ext_funcs.h>
#include <kestrion/path_search.h>

#include <iterator>
#include <string.h>
#include <string_view>

using namespace kestrion;

namespace {

constexpr size_t max_name_length = gl_code_set_name_size - 1;
constexpr uint32_t max_number = 0xFFFF;

// A name folded to lower case and cut to what the registry can hold.
struct folded_name {
    char text[gl_code_set_name_size];
    size_t length = 0;

    bool add(int c) {
        if (length == max_name_length)
            return false;
        text[length++] = ascii_lower(c);
        text[length] = '\0';
        return true;
    }
    std::string_view view() const { return {text, length}; }
};

enum class line_state {
    whole,        // a name and its number
    unterminated, // the same, in a last line without a line end
    end,          // end of the file, or a name that ends the reading
    bad           // no number where one must be, or a read error
};

// Reads the next line that is neither empty nor a comment.
class registry_file {
public:
    explicit registry_file(FILE *file) : file_(file) {}
    registry_file(const registry_file &) = delete;
    registry_file &operator=(const registry_file &) = delete;
    ~registry_file() { fclose(file_); }

    line_state next(folded_name &name, uint16_t &number);

private:
    bool skip_rest(int c) {
        while (c != '\n' && c != EOF)
            c = getc(file_);
        return c == '\n';
    }
    int first_of_name();

    FILE *file_;
};

// The first character of the next line with content.
int registry_file::first_of_name() {
    for (;;) {
        int c = getc(file_);
        while (is_ascii_white(c))
            c = getc(file_);
        if (c != '#' || !skip_rest(c))
            return c == '#' ? EOF : c;
    }
}

line_state registry_file::next(folded_name &name, uint16_t &number) {
    name.length = 0;
    int c = first_of_name();
    if (c == EOF)
        return ferror(file_) != 0 ? line_state::bad : line_state::end;
    for (; is_ascii_graphic(c); c = getc(file_)) {
        if (!name.add(c))
            return line_state::end;
    }
    while (is_ascii_white(c) && c != '\n')
        c = getc(file_);
    if (name.length == 0 || !is_ascii_digit(c))
        return line_state::bad;
    uint32_t value = 0;
    for (; is_ascii_digit(c); c = getc(file_)) {
        value = value * 10 + static_cast<uint32_t>(c - '0');
        if (value > max_number)
            return line_state::bad;
    }
    if (c == EOF)
        return line_state::bad;
    number = static_cast<uint16_t>(value);
    return skip_rest(c) ? line_state::whole : line_state::unterminated;
}

// Opens the registry; null with GLS_ERR_NO_REGISTRY, or GLS_ERR_NO_MEMORY when that was the cause.
FILE *open_registry(void *ctx, const char *regfile) {
    int32_t &word = *_gl_ext_errno(ctx);
    const int32_t word_before = word;
    word = GLS_OK;
    FILE *const file = regfile != nullptr && *regfile != '\0'
                           ? gl_ext_fopen(regfile, "r")
                           : gl_path_search_no_ext(ctx, "registry", "cm", "3");
    if (file != nullptr)
        word = word_before;
    else if (word != GLS_ERR_NO_MEMORY)
        word = GLS_ERR_NO_REGISTRY;
    return file;
}

void free_list(gls_registry_node *list) {
    while (list != nullptr) {
        gls_registry_node *const next = list->next;
        _gl_free_ptr(list->name);
        _gl_ext_free(list);
        list = next;
    }
}

gls_registry_node *make_node(const folded_name &name, uint16_t number) {
    auto *const node = static_cast<gls_registry_node *>(_gl_ext_malloc(sizeof(gls_registry_node)));
    char *const text = static_cast<char *>(_gl_ext_malloc(gl_code_set_name_size));
    if (node == nullptr || text == nullptr) {
        _gl_free_ptr(node);
        _gl_free_ptr(text);
        return nullptr;
    }
    memcpy(text, name.text, name.length + 1);
    *node = {.name = text, .number = number, .next = nullptr};
    return node;
}

// Reads the file into a list in its order; returns 0 or the error word, with what was read so far.
int32_t read_list(registry_file &file, gls_registry_node **list) {
    folded_name name;
    uint16_t number;
    for (;;) {
        switch (file.next(name, number)) {
        case line_state::end:
            return GLS_OK;
        case line_state::bad:
            return GLS_ERR_MALFORMED;
        case line_state::whole:
        case line_state::unterminated:
            break;
        }
        *list = make_node(name, number);
        if (*list == nullptr)
            return GLS_ERR_NO_MEMORY;
        list = &(*list)->next;
    }
}

// Reads the registry into a new list; returns 0 or the error word, with no list.
int32_t read_registry(void *ctx, const char *regfile, gls_registry_node **list) {
    *list = nullptr;
    FILE *const opened = open_registry(ctx, regfile);
    if (opened == nullptr)
        return *_gl_ext_errno(ctx);
    registry_file file(opened);
    const int32_t error = read_list(file, list);
    if (error != GLS_OK) {
        free_list(*list);
        *list = nullptr;
    }
    return error;
}

bool is_cached() {
    return gls_registry_list_cache != nullptr || gls_registry_array_cache != nullptr;
}

// Publishes a list, or the built-in table in the place of one that could not be read.
void publish(gls_registry_node *list, int32_t error) {
    gl_free_registry_cache();
    gls_registry_list_cache = list;
    gls_registry_array_cache = error == GLS_OK ? nullptr : gls_canned_registry;
}

// Fills the cache for a look-up, whose error word says how the look-up goes and not this.
void fill_cache(void *ctx) {
    int32_t &word = *_gl_ext_errno(ctx);
    const int32_t word_before = word;
    gls_registry_node *list;
    const int32_t error = read_registry(ctx, nullptr, &list);
    word = word_before;
    if (error != GLS_ERR_NO_MEMORY)
        publish(list, error);
}

// Number of a name, or -1 where the place that was asked does not have it.
int number_in_cache(std::string_view name) {
    for (const gls_registry_node *node = gls_registry_list_cache; node != nullptr;
         node = node->next) {
        if (name == node->name)
            return node->number;
    }
    for (const gls_registry_row *row = gls_registry_array_cache;
         row != nullptr && row->name != nullptr; ++row) {
        if (name == row->name)
            return static_cast<int>(row->number);
    }
    return -1;
}

// Looks the name up in the file itself; a failure is the error word in `error`.
int number_in_file(void *ctx, std::string_view wanted, const char *regfile, int32_t &error) {
    FILE *const opened = open_registry(ctx, regfile);
    if (opened == nullptr) {
        error = *_gl_ext_errno(ctx);
        return -1;
    }
    registry_file file(opened);
    folded_name name;
    uint16_t number;
    for (;;) {
        const line_state state = file.next(name, number);
        const bool has_number = state == line_state::whole || state == line_state::unterminated;
        if (has_number && name.view() == wanted)
            return number;
        if (state == line_state::end)
            return -1;
        if (state != line_state::whole) {
            error = GLS_ERR_MALFORMED;
            return -1;
        }
    }
}

// Value of a name that is a decimal number below 65536, else -1.
int decimal_value(std::string_view name) {
    uint32_t value = 0;
    for (const char c : name) {
        if (!is_ascii_digit(c))
            return -1;
        value = value * 10 + static_cast<uint32_t>(c - '0');
        if (value > max_number)
            return -1;
    }
    return name.empty() ? -1 : static_cast<int>(value);
}

// CCSID values of the engine's own numbers.
struct ccsid_row {
    uint16_t number;
    uint16_t ccsid;
    bool both_ways; // a CCSID that is not turned back into the number
};

// clang-format off
constexpr ccsid_row ccsid_rows[] = {
    // number ccsid   both ways
    {0xE005,   1202, true},
    {0xE006,    943, true},
    {0xE007,  33722, true},
    {0xE008,    950, true},
    {0xE00C,    949, true},
    {0xE00D,   1383, true},
    {0xE01C,   1208, true},
    {0xE01D,    874, true},
    {0xE01F,    964, true},
    {0xE026,    878, true},
    {0xE029,   1051, true},
    {0xE02C,    848, true},
    {0xE02E,    921, false},
    {0xE02F,    923, true},
    {0xE030,   1234, true},
};
// clang-format on

constexpr int first_own_number = gl_unknown_code_set;

} // namespace

constinit gls_registry_node *gls_registry_list_cache = nullptr;
constinit const gls_registry_row *gls_registry_array_cache = nullptr;

void gl_cache_registry(void *ctx, const char *regfile) {
    gls_registry_node *list;
    const int32_t error = read_registry(ctx, regfile, &list);
    if (error != GLS_OK)
        set_engine_error(ctx, error);
    // Whatever goes wrong leaves the system working: with the built-in table, or with the names
    // that it already had when there is no memory to read them again.
    if (error != GLS_ERR_NO_MEMORY || gls_registry_list_cache == nullptr)
        publish(list, error);
}

void gl_free_registry_cache(void) {
    free_list(gls_registry_list_cache);
    gls_registry_list_cache = nullptr;
    gls_registry_array_cache = nullptr;
}

int gl_cs_name2cs_num(void *ctx, const char *name, const char *regfile) {
    folded_name wanted;
    while (name != nullptr && name[wanted.length] != '\0' && wanted.add(name[wanted.length])) {
    }
    int32_t error = GLS_OK;
    // A file that one caller names is not everybody's.
    if (!is_cached() && (regfile == nullptr || *regfile == '\0'))
        fill_cache(ctx);
    int number = is_cached() ? number_in_cache(wanted.view())
                             : number_in_file(ctx, wanted.view(), regfile, error);
    if (number < 0 && error == GLS_OK) {
        number = decimal_value(wanted.view());
        error = number < 0 ? GLS_ERR_SPECIFIER : GLS_OK;
    }
    if (error == GLS_OK)
        return number;
    set_engine_error(ctx, error);
    return gl_unknown_code_set;
}

int gl_cs_nums2ccsid(void *, int number) {
    if (number < first_own_number)
        return number;
    for (const ccsid_row &row : ccsid_rows) {
        if (row.number == number)
            return row.ccsid;
    }
    return 0;
}

int gl_ccsid2cs_nums(void *, int ccsid) {
    if (ccsid >= first_own_number)
        return 0;
    for (const ccsid_row &row : ccsid_rows) {
        if (row.ccsid == ccsid && row.both_ways)
            return row.number;
    }
    return ccsid;
}
