/* Lists the entries of $KESTRIONDIR/etc/passwd_file, one a line, tokens separated by tabs.
 *
 *     cc -std=c11 list_entries_c.c $(pkg-config --cflags --libs kestrion)
 */

#include <kestrion/passwdapi.h>

#include <stdio.h>
#include <stdlib.h>

/* The API says what each block is for by a source name and a line number; a program that keeps no
 * allocation trace has no use for them. */
static void *allocate(size_t size, const char *source, int line) {
    (void)source;
    (void)line;
    return malloc(size);
}

static void *reallocate(void *block, size_t size, const char *source, int line) {
    (void)source;
    (void)line;
    return realloc(block, size);
}

/* An entry holds a password: it is wiped before its memory goes back. */
static void release(pw_entry *entry) {
    volatile char *bytes = (volatile char *)entry;
    for (size_t i = 0; entry != NULL && i < sizeof *entry; ++i)
        bytes[i] = 0;
    free(entry);
}

static int list(pw_ctx *ctx) {
    int32_t count = 0;
    if (pwGetLineCount(ctx, &count) != 0)
        return -1;
    const size_t places = (size_t)count;
    pw_entry **table = calloc(places + 1, sizeof *table);
    if (table == NULL)
        return -1;
    const int result = pwLoadPW(ctx, &count, table);
    for (size_t i = 0; i < places; ++i) {
        const pw_entry *entry = table[i];
        if (result == 0 && entry != NULL)
            printf("%s\t%s\t%s\t%s\n", entry->token1, entry->token2, entry->token3, entry->token4);
        release(table[i]);
    }
    free(table);
    return result;
}

int main(void) {
    pw_ctx *ctx = NULL;
    if (pw_init(&ctx, allocate, reallocate, free) != 0)
        return EXIT_FAILURE; /* the API has told why */
    const int result = list(ctx);
    pw_cleanup(ctx);
    return result == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
