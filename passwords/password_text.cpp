#include "passwords/password_text.h"

#include "base/print_as_format.h"
#include "passwords/memory.h"
#include "passwords/message_texts.h"
#include <kestrion/strings.h>

#include <stdio.h>
#include <string.h>

namespace kestrion {

namespace {

constexpr char separators[] = "\t \b"; // the backspace belongs to them: old texts hold it

static_assert(sizeof(pw_entry) == PW_TOKENS * PW_TOKEN_SIZE);

// Prints a line that shows password text. Not by fprintf, whose work buffer on the stack would keep
// a copy of it.
void print_text_line(const char *label, const char *text) {
    fputs(label, stderr);
    fputs(text, stderr);
    fputs("\n", stderr);
}

void print_missing_token(int token, const char *line) {
    // Only the first has a fixed message.
    if (token == 0)
        fputs("Format Error: There are less than four tokens on this line\n", stderr);
    else
        print_as_format(stderr, s_err_less_tok, nullptr, 0);
    print_text_line("start=", line);
}

// Copies a token to its field. There is no limit of 128 characters: a longer one runs on into the
// fields after it, which the next tokens then overwrite, and only the end of the record stops it.
int store_token(pw_entry *entry, int token, const char *text) {
    const size_t offset = static_cast<size_t>(token) * PW_TOKEN_SIZE;
    const size_t size = strlen(text) + 1;
    if (size > sizeof *entry - offset) {
        fputs("Format Error: A token on this line is too long\n", stderr);
        return -1;
    }
    memcpy(reinterpret_cast<char *>(entry) + offset, text, size);
    return 0;
}

int fill_entry(pw_entry *entry, char *line) {
    char *save = nullptr;
    for (int token = 0; token < PW_TOKENS; ++token) {
        const char *text = qvt_strtok(token == 0 ? line : nullptr, separators, &save);
        if (text == nullptr) {
            print_missing_token(token, line);
            return -1;
        }
        if (store_token(entry, token, text) != 0)
            return -1;
    }
    if (qvt_strtok(nullptr, separators, &save) != nullptr) {
        print_as_format(stderr, s_err_more_tok, nullptr, 0);
        return -1;
    }
    return 0;
}

// Returns the record of one line, or null with the reason on standard error.
pw_entry *new_entry(pw_ctx *ctx, char *line) {
    auto *entry = static_cast<pw_entry *>(ctx_malloc(ctx, sizeof(pw_entry)));
    if (entry == nullptr) {
        fputs("Memory allocation failure\n", stderr);
        return nullptr;
    }
    memset(entry, 0, sizeof *entry);
    if (fill_entry(entry, line) == 0)
        return entry;
    explicit_bzero(entry, sizeof *entry); // kept allocated, as the callers' traces have it
    return nullptr;
}

} // namespace

int parse_lines(pw_ctx *ctx, char *text, int32_t length, int32_t *count, pw_entry **table,
                int32_t capacity) {
    // Nothing uses the scratch block since the splitter keeps its own place; callers' allocators
    // still see it come and, but for a bad line, go.
    void *scratch = ctx_malloc(ctx, length > 0 ? static_cast<size_t>(length) : 1);
    if (scratch == nullptr) {
        fputs("Memory allocation failure\n", stderr);
        return -1;
    }
    int32_t number = 0;
    char *line = text;
    for (char *end; (end = strchr(line, '\n')) != nullptr; line = end + 1) {
        *end = '\0';
        const bool has_place = capacity == any_line_count || number < capacity;
        pw_entry *entry = has_place ? new_entry(ctx, line) : nullptr;
        if (has_place)
            table[number] = entry;
        if (entry == nullptr) {
            fprintf(stderr, "Line:%d: Error: Incorrect password file format\n", number + 1);
            print_text_line("DATA=", text); // cut by now: shows the first token of the first line
            return -1;
        }
        ++number;
    }
    *count = number;
    ctx->free_fn(scratch);
    return 0;
}

int parse_file(pw_ctx *ctx, char *text, int32_t length, int32_t *count, pw_entry **table) {
    return parse_lines(ctx, text, length, count, table, any_line_count);
}

} // namespace kestrion
