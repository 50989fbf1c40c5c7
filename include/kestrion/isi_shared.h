/*
 * What the crypto bridge and a provider library share: three records and the list of functions.
 *
 * The bridge hands the addresses of `isi_shared_globals` and of the calling thread's record to
 * ISI_init_int, and the current thread's record to ISI_set_shared_thread_globals_ptr before every
 * other call. The provider reads the first and may push items on the second. So field order and
 * natural alignment below are a binary interface, and every item and text of an error stack is
 * allocated by the globals' allocate function and released by their free function, on both sides.
 *
 * Compiles as C11 and as C++.
 */
#ifndef ISI_SHARED_H
#define ISI_SHARED_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef void *(*isi_allocate_fn)(size_t size);
typedef void (*isi_free_fn)(void *block);
typedef int (*isi_line_callback)(const char *line); /* non-zero: the line goes no further */

/* Kinds of error items. Part of the binary interface: never renumber. */
enum isi_err_kind {
    ISI_ERR_MESSAGE = 0, /* a plain message */
    ISI_ERR_PLACE = 1,   /* where it happened; logged, but left out of the stack's text */
    ISI_ERR_ERRNO = 2,   /* an errno with its strerror */
    ISI_ERR_ERRNO_2 = 3, /* the same */
    ISI_ERR_DLERROR = 4, /* the text of dlerror */
    ISI_ERR_CRYPTO = 5,  /* a provider's crypto code */
    ISI_ERR_SSL = 6,     /* a provider's connection code */
    ISI_ERR_KM = 7       /* a provider's key manager code */
};

typedef struct isi_err_item isi_err_item;
struct isi_err_item {
    int32_t kind;                  /* enum isi_err_kind */
    int64_t code;                  /* an errno or a provider code; 0 for none */
    char *text;                    /* owned message, or null */
    struct isi_err_item *next;     /* towards the newest */
    struct isi_err_item *previous; /* towards the oldest */
};

/* One per thread: the thread's error stack. */
struct isi_shared_thread_globals {
    struct isi_err_item *first; /* oldest item, or null */
    struct isi_err_item *last;  /* newest item, or null */
    char *text;                 /* owned result of the last isi_err_stack_text, or null */
};
typedef struct isi_shared_thread_globals isi_err_stack;

/* One per process. */
struct isi_shared_globals {
    isi_allocate_fn allocate;         /* what isi_malloc calls; malloc at first */
    isi_free_fn release;              /* what isi_free calls; free at first */
    void *main_handle;                /* the running program, where callbacks are looked up */
    int32_t trace_level;              /* 0 none, 1 load and version, 2 functions, 3 calls */
    char *trace_file;                 /* owned; "stdout" and "stderr" mean the streams */
    isi_line_callback trace_callback; /* sees each trace line first */
    char *err_file;                   /* owned; as trace_file, for the error log */
    isi_line_callback err_callback;   /* sees each line of the error log first */
    int32_t threads;                  /* last value given to isi_use_threads */
};

/*
 * The functions that a provider exports, in the order of the bridge's table: all of them, or the
 * provider is not used. TYPED rows (symbol, SYMBOL, result, parameters) are those that the bridge
 * calls; OPAQUE rows (symbol, SYMBOL) must only be there. A status result is 0 for success.
 */
/* clang-format off */
#define ISI_FUNCTIONS(TYPED, OPAQUE) \
    TYPED(ISI_init_int,                      ISI_INIT_INT,                      int,          (struct isi_shared_globals *globals, struct isi_shared_thread_globals *record)) \
    TYPED(ISI_cleanup_int,                   ISI_CLEANUP_INT,                   void,         (void)) \
    TYPED(ISI_set_shared_thread_globals_ptr, ISI_SET_SHARED_THREAD_GLOBALS_PTR, void,         (struct isi_shared_thread_globals *record)) \
    TYPED(ISI_lib_version_major,             ISI_LIB_VERSION_MAJOR,             int,          (void)) \
    TYPED(ISI_lib_version_minor,             ISI_LIB_VERSION_MINOR,             int,          (void)) \
    TYPED(ISI_lib_version_string,            ISI_LIB_VERSION_STRING,            const char *, (void)) \
    TYPED(ISI_lib_base,                      ISI_LIB_BASE,                      int,          (void)) \
    TYPED(ISI_crypto_version,                ISI_CRYPTO_VERSION,                const char *, (void)) \
    TYPED(ISI_get_crypto_error_string,       ISI_GET_CRYPTO_ERROR_STRING,       const char *, (long code)) \
    TYPED(ISI_get_ssl_error_string,          ISI_GET_SSL_ERROR_STRING,          const char *, (long code)) \
    TYPED(ISI_get_km_error_string,           ISI_GET_KM_ERROR_STRING,           const char *, (long code)) \
    TYPED(ISI_err_stack_push_crypto_error,   ISI_ERR_STACK_PUSH_CRYPTO_ERROR,   int,          (long code)) \
    TYPED(ISI_err_stack_push_ssl_error,      ISI_ERR_STACK_PUSH_SSL_ERROR,      int,          (long code)) \
    TYPED(ISI_err_stack_push_km_error,       ISI_ERR_STACK_PUSH_KM_ERROR,       int,          (long code)) \
    TYPED(ISI_name2digest,                   ISI_NAME2DIGEST,                   int,          (const char *name)) \
    OPAQUE(ISI_digest2name,                  ISI_DIGEST2NAME) \
    OPAQUE(ISI_digest_get,                   ISI_DIGEST_GET) \
    OPAQUE(ISI_digest_ctx_new,               ISI_DIGEST_CTX_NEW) \
    OPAQUE(ISI_digest_ctx_init,              ISI_DIGEST_CTX_INIT) \
    OPAQUE(ISI_digest_ctx_cleanup,           ISI_DIGEST_CTX_CLEANUP) \
    OPAQUE(ISI_digest_ctx_free,              ISI_DIGEST_CTX_FREE) \
    OPAQUE(ISI_get_digestbyname,             ISI_GET_DIGESTBYNAME) \
    OPAQUE(ISI_digest_init,                  ISI_DIGEST_INIT) \
    OPAQUE(ISI_digest_update,                ISI_DIGEST_UPDATE) \
    OPAQUE(ISI_digest_final,                 ISI_DIGEST_FINAL) \
    OPAQUE(ISI_digest,                       ISI_DIGEST) \
    OPAQUE(ISI_digest_rsa_sign,              ISI_DIGEST_RSA_SIGN) \
    OPAQUE(ISI_digest_rsa_verify,            ISI_DIGEST_RSA_VERIFY) \
    OPAQUE(ISI_hmac_ctx_new,                 ISI_HMAC_CTX_NEW) \
    OPAQUE(ISI_hmac_ctx_free,                ISI_HMAC_CTX_FREE) \
    OPAQUE(ISI_hmac_init,                    ISI_HMAC_INIT) \
    OPAQUE(ISI_hmac_update,                  ISI_HMAC_UPDATE) \
    OPAQUE(ISI_hmac_final,                   ISI_HMAC_FINAL) \
    OPAQUE(ISI_hmac,                         ISI_HMAC) \
    TYPED(ISI_name2cipher,                   ISI_NAME2CIPHER,                   int,          (const char *name)) \
    OPAQUE(ISI_cipher2name,                  ISI_CIPHER2NAME) \
    OPAQUE(ISI_cipher_get,                   ISI_CIPHER_GET) \
    TYPED(ISI_cipher_ctx_new,                ISI_CIPHER_CTX_NEW,                void *,       (void)) \
    TYPED(ISI_cipher_ctx_init,               ISI_CIPHER_CTX_INIT,               int,          (void *ctx)) \
    TYPED(ISI_cipher_ctx_set_key_length,     ISI_CIPHER_CTX_SET_KEY_LENGTH,     int,          (void *ctx, int keylen)) \
    TYPED(ISI_cipher_ctx_set_padding,        ISI_CIPHER_CTX_SET_PADDING,        int,          (void *ctx, int padding)) \
    TYPED(ISI_cipher_ctx_cleanup,            ISI_CIPHER_CTX_CLEANUP,            int,          (void *ctx)) \
    TYPED(ISI_cipher_ctx_free,               ISI_CIPHER_CTX_FREE,               int,          (void *ctx)) \
    TYPED(ISI_get_cipherbyname,              ISI_GET_CIPHERBYNAME,              void *,       (const char *name)) \
    TYPED(ISI_cipher_block_size,             ISI_CIPHER_BLOCK_SIZE,             int,          (void *cipher)) \
    TYPED(ISI_cipher_key_length,             ISI_CIPHER_KEY_LENGTH,             int,          (void *cipher)) \
    TYPED(ISI_cipher_iv_length,              ISI_CIPHER_IV_LENGTH,              int,          (void *cipher)) \
    TYPED(ISI_cipher_type,                   ISI_CIPHER_TYPE,                   int,          (void *cipher)) \
    TYPED(ISI_encrypt_init,                  ISI_ENCRYPT_INIT,                  int,          (void *ctx, void *type, const unsigned char *key, const unsigned char *iv)) \
    TYPED(ISI_encrypt_update,                ISI_ENCRYPT_UPDATE,                int,          (void *ctx, unsigned char *out, int *outl, const unsigned char *in, int inl)) \
    TYPED(ISI_encrypt_final,                 ISI_ENCRYPT_FINAL,                 int,          (void *ctx, unsigned char *out, int *outl)) \
    OPAQUE(ISI_encrypt,                      ISI_ENCRYPT) \
    TYPED(ISI_decrypt_init,                  ISI_DECRYPT_INIT,                  int,          (void *ctx, void *type, const unsigned char *key, const unsigned char *iv)) \
    TYPED(ISI_decrypt_update,                ISI_DECRYPT_UPDATE,                int,          (void *ctx, unsigned char *out, int *outl, const unsigned char *in, int inl)) \
    TYPED(ISI_decrypt_final,                 ISI_DECRYPT_FINAL,                 int,          (void *ctx, unsigned char *out, int *outl)) \
    OPAQUE(ISI_decrypt,                      ISI_DECRYPT) \
    TYPED(ISI_encode_block,                  ISI_ENCODE_BLOCK,                  int,          (unsigned char *out, const unsigned char *in, int inl)) \
    TYPED(ISI_decode_block,                  ISI_DECODE_BLOCK,                  int,          (unsigned char *out, const unsigned char *in, int inl)) \
    OPAQUE(ISI_bn_new,                       ISI_BN_NEW) \
    OPAQUE(ISI_bn_clear_free,                ISI_BN_CLEAR_FREE) \
    OPAQUE(ISI_bn_num_bits,                  ISI_BN_NUM_BITS) \
    OPAQUE(ISI_bn_num_bytes,                 ISI_BN_NUM_BYTES) \
    OPAQUE(ISI_bn_bin2bn,                    ISI_BN_BIN2BN) \
    OPAQUE(ISI_bn_bn2bin,                    ISI_BN_BN2BIN) \
    OPAQUE(ISI_bn_hex2bn,                    ISI_BN_HEX2BN) \
    OPAQUE(ISI_des_set_odd_parity,           ISI_DES_SET_ODD_PARITY) \
    OPAQUE(ISI_dh_new,                       ISI_DH_NEW) \
    OPAQUE(ISI_dh_free,                      ISI_DH_FREE) \
    OPAQUE(ISI_dh_size,                      ISI_DH_SIZE) \
    OPAQUE(ISI_dh_check,                     ISI_DH_CHECK) \
    OPAQUE(ISI_dh_generate_parameters,       ISI_DH_GENERATE_PARAMETERS) \
    OPAQUE(ISI_dh_generate_key,              ISI_DH_GENERATE_KEY) \
    OPAQUE(ISI_dh_compute_key,               ISI_DH_COMPUTE_KEY) \
    OPAQUE(ISI_dh_get_publickey,             ISI_DH_GET_PUBLICKEY) \
    OPAQUE(ISI_dh_get_pqg,                   ISI_DH_GET_PQG) \
    OPAQUE(ISI_dh_set_pqg,                   ISI_DH_SET_PQG) \
    OPAQUE(ISI_d2i_DHparams,                 ISI_D2I_DHPARAMS) \
    OPAQUE(ISI_i2d_DHparams,                 ISI_I2D_DHPARAMS) \
    TYPED(ISI_obj_nid2sn,                    ISI_OBJ_NID2SN,                    const char *, (int nid)) \
    TYPED(ISI_rand_bytes,                    ISI_RAND_BYTES,                    int,          (unsigned char *buf, int num)) \
    TYPED(ISI_rand_seed,                     ISI_RAND_SEED,                     int,          (const unsigned char *buf, int num)) \
    TYPED(ISI_generate_random_seed,          ISI_GENERATE_RANDOM_SEED,          int,          (int seedLength, unsigned char *seed)) \
    OPAQUE(ISI_ssl_env_new,                  ISI_SSL_ENV_NEW) \
    OPAQUE(ISI_ssl_env_free,                 ISI_SSL_ENV_FREE) \
    OPAQUE(ISI_ssl_env_setopt,               ISI_SSL_ENV_SETOPT) \
    OPAQUE(ISI_ssl_env_init,                 ISI_SSL_ENV_INIT) \
    OPAQUE(ISI_ssl_env_is_initialized,       ISI_SSL_ENV_IS_INITIALIZED) \
    OPAQUE(ISI_ssl_soc_new,                  ISI_SSL_SOC_NEW) \
    OPAQUE(ISI_ssl_soc_free,                 ISI_SSL_SOC_FREE) \
    OPAQUE(ISI_ssl_soc_setopt,               ISI_SSL_SOC_SETOPT) \
    OPAQUE(ISI_ssl_accept,                   ISI_SSL_ACCEPT) \
    OPAQUE(ISI_ssl_connect,                  ISI_SSL_CONNECT) \
    OPAQUE(ISI_ssl_read,                     ISI_SSL_READ) \
    OPAQUE(ISI_ssl_write,                    ISI_SSL_WRITE) \
    OPAQUE(ISI_ssl_close,                    ISI_SSL_CLOSE) \
    OPAQUE(ISI_ks_StashPw,                   ISI_KS_STASHPW) \
    OPAQUE(ISI_ks_Open,                      ISI_KS_OPEN) \
    OPAQUE(ISI_ks_Close,                     ISI_KS_CLOSE) \
    OPAQUE(ISI_ks_GetSecretKey,              ISI_KS_GETSECRETKEY) \
    OPAQUE(ISI_ks_PutSecretKey,              ISI_KS_PUTSECRETKEY) \
    OPAQUE(ISI_ks_List,                      ISI_KS_LIST) \
    OPAQUE(ISI_ks_ListFree,                  ISI_KS_LISTFREE) \
    OPAQUE(ISI_ks_ChangePw,                  ISI_KS_CHANGEPW) \
    OPAQUE(ISI_ks_DeleteItem,                ISI_KS_DELETEITEM) \
    OPAQUE(ISI_ks_PwGetFromUser,             ISI_KS_PWGETFROMUSER) \
    OPAQUE(ISI_ks_MemFree,                   ISI_KS_MEMFREE) \
    OPAQUE(ISI_ks_Remove,                    ISI_KS_REMOVE) \
    OPAQUE(ISI_ks_PemImport,                 ISI_KS_PEMIMPORT) \
    OPAQUE(ISI_ks_SetStash,                  ISI_KS_SETSTASH) \
    OPAQUE(ISI_ks_GetStashPath,              ISI_KS_GETSTASHPATH)
/* clang-format on */

/* The bridge's two records: the process's and the calling thread's. The provider is given their addresses. */
extern struct isi_shared_globals isi_shared_globals;
#ifdef __cplusplus
extern constinit thread_local struct isi_shared_thread_globals isi_shared_thread_globals;
#else
extern _Thread_local struct isi_shared_thread_globals isi_shared_thread_globals;
#endif

#ifdef __cplusplus
}
#endif

#endif
