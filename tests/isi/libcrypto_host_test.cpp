// The provider in a program that uses libcrypto for itself.

#include "isi/installation.h"

#include <algorithm>
#include <malloc.h>
#include <openssl/crypto.h>
#include <openssl/objects.h>
#include <set>
#include <string.h>

namespace {

unsigned char key[24];
std::set<void *> live;
bool key_in_released_memory;

// The schedule of an encryption begins with the key itself.
bool holds_key(void *block) {
    return memmem(block, malloc_usable_size(block), key, sizeof key) != nullptr;
}

void *noted(void *block) {
    live.insert(block);
    return block;
}

void look_and_free(void *block, const char *, int) {
    if (live.erase(block) != 0)
        key_in_released_memory |= holds_key(block);
    free(block);
}

void *noted_malloc(size_t size, const char *, int) { return noted(malloc(size)); }
void *noted_realloc(void *block, size_t size, const char *, int) {
    live.erase(block);
    return noted(realloc(block, size));
}

bool is_key_kept_after_cleanup(void *ctx) {
    EXPECT_EQ(isi_encrypt_init(ctx, isi_get_cipherbyname("AES-192-ECB"), key, nullptr), 0);
    EXPECT_TRUE(std::any_of(live.begin(), live.end(), holds_key)); // a key would be noticed
    EXPECT_EQ(isi_cipher_ctx_cleanup(ctx), 0);
    return std::any_of(live.begin(), live.end(), holds_key);
}

} // namespace

TEST(LibcryptoHost, KeysAreWipedBeforeTheirMemoryIsReleased) {
    ASSERT_EQ(CRYPTO_set_mem_functions(noted_malloc, noted_realloc, look_and_free), 1);
    memset(key, 0xa5, sizeof key);
    installation here(PROVIDER);
    ASSERT_EQ(isi_init(), 0) << error_text();
    void *ctx = isi_cipher_ctx_new();
    EXPECT_FALSE(is_key_kept_after_cleanup(ctx));
    EXPECT_EQ(isi_encrypt_init(ctx, isi_get_cipherbyname("AES-192-ECB"), key, nullptr), 0);
    EXPECT_EQ(isi_cipher_ctx_free(ctx), 0);
    EXPECT_TRUE(std::none_of(live.begin(), live.end(), holds_key));
    EXPECT_FALSE(key_in_released_memory);
}

// Not reading libcrypto's configuration saves time, but is not this library's to decide here.
TEST(LibcryptoHost, TheProgramKeepsItsConfiguration) {
    installation here(PROVIDER);
    std::ofstream(here.at("libcrypto.cnf")) << "openssl_conf = main\n"
                                               "[main]\n"
                                               "oid_section = oids\n"
                                               "[oids]\n"
                                               "isiTestName = 1.2.3.4.5.6\n";
    setenv("OPENSSL_CONF", here.at("libcrypto.cnf").c_str(), 1);
    ASSERT_EQ(isi_init(), 0) << error_text();
    OPENSSL_init_crypto(OPENSSL_INIT_LOAD_CONFIG, nullptr);
    EXPECT_NE(OBJ_txt2nid("isiTestName"), NID_undef);
}
