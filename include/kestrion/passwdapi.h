/* Loader API: how a program of the installation reads the entries of the sealed password file
 * $KESTRIONDIR/etc/passwd_file. No secret is asked of the caller: the sealed file opens itself, and
 * its mode is what protects it.
 *
 *     pw_ctx *ctx;
 *     int32_t count;
 *     if (pw_init(&ctx, my_alloc, my_realloc, my_free) == 0 && pwGetLineCount(ctx, &count) == 0) {
 *         pw_entry **table = calloc(count ? count : 1, sizeof *table);
 *         if (pwLoadPW(ctx, &count, table) == 0)
 *             ... table[0] to table[count - 1] ...
 *         // free each record through my_free, then the table
 *     }
 *     pw_cleanup(ctx);
 *
 * Every operation returns 0 for success and -1 for failure, and prints the reason to standard error.
 * Call pw_init before other threads start: it loads the settings and the provider of the process.
 * After that one thread at a time may use a context. All memory comes from the caller's three
 * functions and goes back to them; what held a key or plain text is wiped first, as is the stack that
 * an operation leaves. On failure some blocks stay allocated, so a caller that must give everything
 * back allocates from an arena of its own.
 */

#pragma once

#include <stddef.h>
#include <stdint.h>

/* The caller's memory functions. `source` and `line` are for its allocation trace: the source is
 * always "passwdapi", the line identifies the kind of block (see pw_source_line). Null is
 * failure. */
typedef void *(*pw_alloc_fn)(size_t size, const char *source, int line);
typedef void *(*pw_realloc_fn)(void *block, size_t size, const char *source, int line);
typedef void (*pw_free_fn)(void *block);

/* Line numbers that the memory functions are given. Traces are read by them: never renumber. */
enum pw_source_line {
    PW_LINE_ALLOC = 112,  /* every block but the two below */
    PW_LINE_GROW = 117,   /* growing the file buffer */
    PW_LINE_CONTEXT = 474 /* the context itself */
};

enum {
    PW_PATH_SIZE = 1025, /* a path and its terminator */
    PW_TOKENS = 4,       /* tokens of a line */
    PW_TOKEN_SIZE = 129  /* a token of 128 characters and its terminator */
};

/* One user of the API, made by pw_init. */
typedef struct pw_ctx {
    pw_alloc_fn alloc_fn;
    pw_realloc_fn realloc_fn;
    pw_free_fn free_fn;
    char keystore_path[PW_PATH_SIZE]; /* install_dir + "/etc/keystore"; for the caller */
    char install_dir[PW_PATH_SIZE];   /* KESTRIONDIR, by the environment or the configuration; in a
                                         set-user-id program the built-in directory */
    int32_t counted_lines;            /* result of the last good pwGetLineCount; -1 before it */
} pw_ctx;

/* One line of the password text: four texts of up to 128 characters. What they mean is the concern
 * of the programs that load them. */
typedef struct pw_entry {
    char token1[PW_TOKEN_SIZE];
    char token2[PW_TOKEN_SIZE];
    char token3[PW_TOKEN_SIZE];
    char token4[PW_TOKEN_SIZE];
} pw_entry;

#ifdef __cplusplus
extern "C" {
#endif

/* Makes a context in *ctx, which is set on success alone. The directory that KESTRIONDIR names must
 * be there; the provider library need not be: its absence shows at the first sealing or opening. */
int pw_init(pw_ctx **ctx, pw_alloc_fn alloc_fn, pw_realloc_fn realloc_fn, pw_free_fn free_fn);

/* Opens the sealed file and stores the number of its lines, which is the size that the table of
 * pwLoadPW needs. A null context or count is a failure without a message. */
int pwGetLineCount(pw_ctx *ctx, int32_t *count);

/* Opens the sealed file and stores its lines as new records in table[0] to table[*count - 1]; each
 * belongs to the caller, who frees it by the context's free_fn. A file that has grown since the
 * last pwGetLineCount of this context is refused at the first line too many; without one before it
 * nothing bounds the table, which must then be large enough by the caller's own knowledge.
 * On failure *count is 0; records of lines before the bad one are in the table. */
int pwLoadPW(pw_ctx *ctx, int32_t *count, pw_entry **table);

/* Frees the context; null is accepted. Always 0. */
int pw_cleanup(pw_ctx *ctx);

#ifdef __cplusplus
}
#endif
