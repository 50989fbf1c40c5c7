// What this provider exports and does not do. Each function says so on the caller's stack and
// answers the value that means failure for its kind of result. The operations have no callers here
// and so no parameter lists; the platform's calling convention lets a caller pass any.

#include "isi/provider/provider.h"

namespace {

constexpr int no_cipher = 26;
constexpr int no_digest = 10;

template <class Result> Result refuse(Result answer) {
    kestrion::report_message("not supported by this provider");
    return answer;
}

} // namespace

int ISI_name2digest(const char *) { return refuse(no_digest); }
int ISI_name2cipher(const char *) { return refuse(no_cipher); }
int ISI_encode_block(unsigned char *, const unsigned char *, int) { return refuse(-1); }
int ISI_decode_block(unsigned char *, const unsigned char *, int) { return refuse(-1); }

#define STATUS(symbol)                                                                             \
    int symbol() { return refuse(kestrion::provider_failed); }
#define POINTER(symbol)                                                                            \
    void *symbol() { return refuse<void *>(nullptr); }
#define SIZE(symbol)                                                                               \
    int symbol() { return refuse(0); }
#define COUNT(symbol)                                                                              \
    int symbol() { return refuse(-1); }

extern "C" {
// clang-format off
POINTER(ISI_digest2name)
POINTER(ISI_digest_get)
POINTER(ISI_digest_ctx_new)
STATUS(ISI_digest_ctx_init)
STATUS(ISI_digest_ctx_cleanup)
STATUS(ISI_digest_ctx_free)
POINTER(ISI_get_digestbyname)
STATUS(ISI_digest_init)
STATUS(ISI_digest_update)
STATUS(ISI_digest_final)
STATUS(ISI_digest)
STATUS(ISI_digest_rsa_sign)
STATUS(ISI_digest_rsa_verify)
POINTER(ISI_hmac_ctx_new)
STATUS(ISI_hmac_ctx_free)
STATUS(ISI_hmac_init)
STATUS(ISI_hmac_update)
STATUS(ISI_hmac_final)
STATUS(ISI_hmac)
POINTER(ISI_cipher2name)
POINTER(ISI_cipher_get)
STATUS(ISI_encrypt)
STATUS(ISI_decrypt)
POINTER(ISI_bn_new)
STATUS(ISI_bn_clear_free)
SIZE(ISI_bn_num_bits)
SIZE(ISI_bn_num_bytes)
POINTER(ISI_bn_bin2bn)
SIZE(ISI_bn_bn2bin)
SIZE(ISI_bn_hex2bn)
STATUS(ISI_des_set_odd_parity)
POINTER(ISI_dh_new)
STATUS(ISI_dh_free)
SIZE(ISI_dh_size)
STATUS(ISI_dh_check)
STATUS(ISI_dh_generate_parameters)
STATUS(ISI_dh_generate_key)
COUNT(ISI_dh_compute_key)
POINTER(ISI_dh_get_publickey)
STATUS(ISI_dh_get_pqg)
STATUS(ISI_dh_set_pqg)
POINTER(ISI_d2i_DHparams)
COUNT(ISI_i2d_DHparams)
POINTER(ISI_ssl_env_new)
STATUS(ISI_ssl_env_free)
STATUS(ISI_ssl_env_setopt)
STATUS(ISI_ssl_env_init)
SIZE(ISI_ssl_env_is_initialized)
POINTER(ISI_ssl_soc_new)
STATUS(ISI_ssl_soc_free)
STATUS(ISI_ssl_soc_setopt)
STATUS(ISI_ssl_accept)
STATUS(ISI_ssl_connect)
COUNT(ISI_ssl_read)
COUNT(ISI_ssl_write)
STATUS(ISI_ssl_close)
STATUS(ISI_ks_StashPw)
STATUS(ISI_ks_Open)
STATUS(ISI_ks_Close)
STATUS(ISI_ks_GetSecretKey)
STATUS(ISI_ks_PutSecretKey)
STATUS(ISI_ks_List)
STATUS(ISI_ks_ListFree)
STATUS(ISI_ks_ChangePw)
STATUS(ISI_ks_DeleteItem)
STATUS(ISI_ks_PwGetFromUser)
STATUS(ISI_ks_MemFree)
STATUS(ISI_ks_Remove)
STATUS(ISI_ks_PemImport)
STATUS(ISI_ks_SetStash)
STATUS(ISI_ks_GetStashPath)
// clang-format on
}
