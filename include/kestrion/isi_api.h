/*
 * The crypto bridge. The system does no cryptography of its own: isi_init finds a provider library,
 * binds 110 functions of it into `isi_functab`, and every ISI_name of the table that the system
 * uses has a wrapper isi_name here.
 *
 * - A wrapper is safe to call when no provider is bound: it then answers its default, given below.
 * - A wrapper empties the thread's error stack and hands arguments and result on unchanged.
 *   Status results are 0 for success.
 * - What went wrong is read, once, with isi_get_err.
 * - The calling program must export its symbols (-rdynamic) if callbacks are named in the
 *   environment, and use a dynamic C library.
 *
 * Compiles as C11 and as C++.
 *
 *     isi_init();                                   a failure shows in the first call that fails
 *     void *ctx = isi_cipher_ctx_new();
 *     if (ctx == NULL)
 *         puts(isi_get_err('\n'));              "cannot access /opt/lib/libisi.so.1\n..."
 */
#ifndef ISI_API_H
#define ISI_API_H

#include <kestrion/isi_shared.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#define ISI_PRINTF(format_index, first_argument)                                                   \
    __attribute__((format(printf, format_index, first_argument)))
#else
#define ISI_PRINTF(format_index, first_argument)
#endif

/* The table of functions. */

/* Index of each row: IDX_ISI_INIT_INT is 0, IDX_ISI_KS_GETSTASHPATH 109. */
enum isi_function_index {
#define ISI_TYPED(symbol, upper, result, parameters) IDX_##upper,
#define ISI_OPAQUE(symbol, upper)                    IDX_##upper,
    ISI_FUNCTIONS(ISI_TYPED, ISI_OPAQUE)
#undef ISI_TYPED
#undef ISI_OPAQUE
        ISI_FUNCTION_COUNT
};

/* A bound function: `address` is what is stored and read; the p_ members tell each row's type. */
typedef union isi_fp {
    void (*address)(void);
#define ISI_TYPED(symbol, upper, result, parameters) result(*p_##upper) parameters;
#define ISI_OPAQUE(symbol, upper)                    void (*p_##upper)(void);
    ISI_FUNCTIONS(ISI_TYPED, ISI_OPAQUE)
#undef ISI_TYPED
#undef ISI_OPAQUE
} isi_fp;

typedef struct isi_functab_row {
    const char *name;    /* the exported symbol */
    union isi_fp isi_fp; /* null until isi_init fills it */
} isi_functab_row;

extern struct isi_functab_row isi_functab[ISI_FUNCTION_COUNT];
extern void *libisiHandle; /* the provider library; null when none is loaded */

/* Binding. */

/*
 * Loads $KESTRIONDIR/lib/libisi.so.1 (or the file named by LIBISI_NAME there) and binds it. Not
 * locked: to be called once, before threads start; a second call after a success does nothing.
 *
 * Only a regular file is loaded. For root it must be root's own, and what is loaded is the file that
 * was judged, through /proc, even if its path is given to another one meanwhile. A process with
 * raised privileges (set-user-id and the like) takes no setting from its environment: it loads the
 * built-in directory's lib/libisi.so.1 ("/usr/kestrion" unless built otherwise), traces nothing and
 * calls nobody back.
 *
 * Returns 0 when the provider is bound, 1 when it isn't, 2 when memory ran out. A failure lies on
 * the error stack and leaves the bridge unbound.
 */
int isi_init(void);
void isi_cleanup(void); /* unbinds and unloads the provider; keeps the error stack */

/* Version of provider that the bridge asks for: this major, at least this minor. */
int isi_build_version_major(void);
int isi_build_version_minor(void);

/* Default 0 for numbers, "unknown" for texts. */
int isi_lib_version_major(void);
int isi_lib_version_minor(void);
const char *isi_lib_version_string(void);
int isi_lib_base(void);
const char *isi_crypto_version(void);

/* Memory and settings. */

/* For the bridge's and the provider's blocks; null leaves that one as it is. To be called before
 * anything is allocated, since blocks go back to the function that is set then. */
void isi_set_memfunc(isi_allocate_fn allocate, isi_free_fn release);
int isi_use_threads(int threads); /* returns the old value */
void *isi_malloc(size_t size);
void isi_free(void *block); /* null is ignored */

/* Replaces the owned text at *slot by a copy of `text`; null clears. Returns 0, or 2 without
 * memory, and then the old text stays. */
int isi_setstr(char **slot, const char *text);

/* Each empties the thread's error stack first. Return 0, or 2 without memory. */
int isi_set_trace_level(int level);
int isi_set_trace_file(const char *name);
int isi_set_trace_callback(isi_line_callback callback);
int isi_set_err_file(const char *name);
int isi_set_err_callback(isi_line_callback callback);

/* Diagnostics. */

/*
 * Texts of the thread's error stack, newest first, separated by `delimiter`; "" when there are
 * none. Empties the stack; the text stays valid until this thread's next call.
 */
const char *isi_get_err(signed char delimiter);
void isi_clear_err(void); /* empties the thread's stack and drops its text */

/* Prints to the trace, if the trace level is at least `level`. Returns 0. */
int isi_trace(int level, const char *format, ...) ISI_PRINTF(2, 3);
void isi_err(const char *format, ...) ISI_PRINTF(1, 2); /* prints to the error log */

/*
 * Pushes up to three items on the thread's stack: what `kind` (enum isi_err_kind) asks for, then
 * the place, if there is an operation, then the plain message, if there is a format.
 */
void isi_log_err(int kind, const char *operation, long code, const char *function,
                 const char *source, int line, const char *format, ...) ISI_PRINTF(7, 8);

isi_err_stack *isi_err_stack_new(void);
void isi_err_stack_free(isi_err_stack **stack);
void isi_err_stack_init(isi_err_stack *stack);
void isi_err_stack_reset(isi_err_stack *stack); /* frees the items, keeps the text */
void isi_err_stack_clear(isi_err_stack *stack); /* frees both */
void isi_err_stack_push(isi_err_stack *stack, int kind, long code, const char *text);
const char *isi_err_stack_text(isi_err_stack *stack, char delimiter); /* null with no items */

/* Bytes of the item's text with the delimiter after it, written to `buffer` unless that is null.
 * No terminator is added. */
size_t isi_err_item_text(const struct isi_err_item *item, char *buffer, char delimiter);

/* Push a provider's code on the stack that the provider was last given; with no provider, on the
 * thread's own. Return 0. */
int isi_err_stack_push_crypto_error(long code);
int isi_err_stack_push_ssl_error(long code);
int isi_err_stack_push_km_error(long code);

/* The provider's text for a code; null with no provider. */
const char *isi_get_crypto_error_string(long code);
const char *isi_get_ssl_error_string(long code);
const char *isi_get_km_error_string(long code);

/* Wrappers. */

/* Default null. */
void *isi_cipher_ctx_new(void);
void *isi_get_cipherbyname(const char *name);
const char *isi_obj_nid2sn(int nid);

/* Default 1, "failed". */
int isi_cipher_ctx_init(void *ctx);
int isi_cipher_ctx_set_key_length(void *ctx, int keylen);
int isi_cipher_ctx_set_padding(void *ctx, int padding); /* 10 switches block padding on */
int isi_cipher_ctx_cleanup(void *ctx);
int isi_cipher_ctx_free(void *ctx);

int isi_encrypt_init(void *ctx, void *type, const unsigned char *key, const unsigned char *iv);
int isi_encrypt_update(void *ctx, unsigned char *out, int *outl, const unsigned char *in, int inl);
int isi_encrypt_final(void *ctx, unsigned char *out, int *outl);
int isi_decrypt_init(void *ctx, void *type, const unsigned char *key, const unsigned char *iv);
int isi_decrypt_update(void *ctx, unsigned char *out, int *outl, const unsigned char *in, int inl);
int isi_decrypt_final(void *ctx, unsigned char *out, int *outl);

int isi_rand_bytes(unsigned char *buf, int num);
int isi_rand_seed(const unsigned char *buf, int num);
int isi_generate_random_seed(int seedLength, unsigned char *seed); /* count first */

/* Default 0. */
int isi_cipher_block_size(void *cipher);
int isi_cipher_key_length(void *cipher);
int isi_cipher_iv_length(void *cipher);
int isi_cipher_type(void *cipher);

/* Default -1. */
int isi_encode_block(unsigned char *out, const unsigned char *in, int inl);
int isi_decode_block(unsigned char *out, const unsigned char *in, int inl);

/* Default: the "none" of the enumeration. */
enum { ISI_NO_DIGEST = 10, ISI_NO_CIPHER = 26 };
int isi_name2digest(const char *name);
int isi_name2cipher(const char *name);

#ifdef __cplusplus
}
#endif

#endif
