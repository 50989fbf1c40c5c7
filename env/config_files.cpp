#include <kestrion/config_files.h>

#include "base/regular_file.h"
#include "env/language_setting.h"
#include <kestrion/character_tables.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/files.h>
#include <kestrion/strings.h>

#include <stdlib.h>

namespace {

constexpr int line_read = 0;
constexpr int file_ended = -1;

constexpr size_t line_step = 128;
constexpr int end_of_file_byte = 255; // what a reader of signed bytes takes for the end of the file

// Bytes of a descriptor, read `step` at a time.
struct byte_source {
    int descriptor;
    size_t step;
    ssize_t at = 0;
    ssize_t end = 0;
    unsigned char bytes[1024];

    // Returns the next byte, or -1 at the end of the file and when a read fails.
    int next() {
        if (at == end) {
            at = 0;
            end = qvt_fd_read(descriptor, bytes, step);
            if (end <= 0) {
                end = 0;
                return -1;
            }
        }
        return bytes[at++];
    }
};

bool grow_line(char **buffer, size_t *size) {
    void *grown = realloc(*buffer, *size + line_step);
    if (grown == nullptr) { // the old block is still the caller's to free
        *size = 0;
        return false;
    }
    *buffer = static_cast<char *>(grown);
    *size += line_step;
    return true;
}

int next_line(byte_source &source, char **buffer, size_t *size, uint32_t *line) {
    enum { at_start, in_comment, in_text } state = at_start;
    size_t count = 0;
    if (*size < 2 && !grow_line(buffer, size))
        return err_env_no_memory;
    for (int byte = source.next(); byte >= 0; byte = source.next()) {
        if (state == in_comment) {
            if (byte == '\n')
                state = at_start;
            continue;
        }
        if (state == at_start) {
            ++*line;
            if (byte == '#')
                state = in_comment;
            if (byte == '#' || byte == '\n')
                continue;
            state = in_text; // any byte begins a text, even the one that would end it later
        } else if (byte == '\n' || byte == end_of_file_byte) {
            (*buffer)[count] = '\0';
            return byte == '\n' ? line_read : file_ended;
        }
        (*buffer)[count++] = static_cast<char>(byte);
        if (count == *size - 1 && !grow_line(buffer, size))
            return err_env_no_memory;
    }
    return file_ended;
}

bool is_space(char byte) {
    return (_ixctype[static_cast<unsigned char>(byte) + 1] & CHARACTER_SPACE) != 0;
}

// Ends a line after its name and returns its value.
char *split_line(char *text) {
    while (*text != '\0' && !is_space(*text))
        ++text;
    if (*text == '\0')
        return text;
    *text++ = '\0';
    while (*text != '\0' && is_space(*text))
        ++text;
    return text;
}

struct language_variable {
    const char *name;
    language_flag flag;
};
constexpr language_variable language_variables[] = {
    {"LANG", LANGUAGE_LANG},
    {"LC_COLLATE", LANGUAGE_LC_COLLATE},
    {"LC_CTYPE", LANGUAGE_LC_CTYPE},
    {"LC_MONETARY", LANGUAGE_LC_MONETARY},
    {"LC_NUMERIC", LANGUAGE_LC_NUMERIC},
    {"LC_TIME", LANGUAGE_LC_TIME},
    {"DBNLS", LANGUAGE_DBNLS},
};

const language_variable *language_named(const char *name) {
    for (const language_variable &variable : language_variables) {
        if (stcmpr(name, variable.name) == 0)
            return &variable;
    }
    return nullptr;
}

// Stores what one line says. An empty value counts for every variable but those of the language.
int store_line(const char *name, const char *value, const env_name_list *ignore, uint32_t *flags) {
    if (_gsrchnamelist(ignore, name) >= 0)
        return 0;
    const language_variable *language = language_named(name);
    if (language != nullptr && *value == '\0')
        return 0;
    const int status = ginsenv(name, value, nullptr);
    if (status == 0 && language != nullptr &&
        (language->flag != LANGUAGE_DBNLS || kestrion::language_mode(value) != 0))
        *flags |= language->flag;
    return status;
}

int load_lines(int descriptor, char **buffer, size_t size, const env_name_list *ignore,
               uint32_t *line, uint32_t *flags) {
    byte_source source{.descriptor = descriptor, .step = sizeof source.bytes};
    int status = 0;
    int result = 0;
    while ((result = next_line(source, buffer, &size, line)) == line_read) {
        char *value = split_line(*buffer);
        status = store_line(*buffer, value, ignore, flags);
        if (status != 0 && status != err_env_unknown_name)
            return status;
    }
    if (result == err_env_no_memory)
        return err_env_no_memory;
    // An unknown name goes unnoticed except here: as the last line it fails the file.
    return status == err_env_unknown_name ? err_env_value_size : 0;
}

} // namespace

int _ggetcfline(int descriptor, char **buffer, size_t *size, uint32_t *line) {
    byte_source source{.descriptor = descriptor, .step = 1}; // the rest stays in the descriptor
    return next_line(source, buffer, size, line);
}

int ldcffile(const char *path, const env_name_list *ignore, uint32_t *line, uint32_t *flags) {
    *line = 0;
    const int descriptor = kestrion::open_regular_file(path);
    if (descriptor < 0)
        return 0;
    int status = err_env_no_memory;
    auto *buffer = static_cast<char *>(malloc(line_step));
    if (buffer != nullptr)
        status = load_lines(descriptor, &buffer, line_step, ignore, line, flags);
    free(buffer);
    qvt_fd_close(descriptor);
    return status;
}
