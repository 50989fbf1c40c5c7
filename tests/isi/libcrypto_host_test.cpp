// The provider in a program that uses libcrypto for itself.

#include "isi/installation.h"

#include <malloc.h>
#include <openssl/crypto.h>
#include <openssl/objects.h>
#include <string.h>

namespace {

unsigned char key[24];
bool key_in_released_memory;

void look_and_free(void *block, const char *, int) {
    if (block != nullptr && memmem(block, malloc_usable_size(block), key, sizeof key) != nullptr)
        key_in_released_memory = true;
    free(block);
}

void *plain_malloc(size_t size, const char *, int) { return malloc(size); }
void *plain_realloc(void *block, size_t size, const char *, int) { return realloc(block, size); }

void use_key(void *ctx) {
    void *cipher = isi_get_cipherbyname("AES-192-ECB");
    ASSERT_EQ(isi_encrypt_init(ctx, cipher, key, nullptr), 0);
}

} // namespace

// The schedule of an encryption begins with the key itself.
TEST(LibcryptoHost, KeysAreWipedBeforeTheirMemoryIsReleased) {
    ASSERT_EQ(CRYPTO_set_mem_functions(plain_malloc, plain_realloc, look_and_free), 1);
    memset(key, 0xa5, sizeof key);
    void *seen = CRYPTO_malloc(100, "", 0);
    memcpy(seen, key, sizeof key);
    CRYPTO_free(seen, "", 0);
    ASSERT_TRUE(key_in_released_memory); // it would be noticed
    key_in_released_memory = false;

    installation here(PROVIDER);
    ASSERT_EQ(isi_init(), 0) << error_text();
    void *ctx = isi_cipher_ctx_new();
    use_key(ctx);
    EXPECT_EQ(isi_cipher_ctx_cleanup(ctx), 0);
    use_key(ctx);
    EXPECT_EQ(isi_cipher_ctx_init(ctx), 0);
    use_key(ctx);
    EXPECT_EQ(isi_cipher_ctx_free(ctx), 0);
    EXPECT_FALSE(key_in_released_memory);
}

// Not reading libcrypto's configuration saves time, but is not this library's to decide here.
TEST(LibcryptoHost, TheProgramKeepsItsConfiguration) {
    installation here(PROVIDER);
    std::ofstream(here.file("libcrypto.cnf")) << "openssl_conf = main\n"
                                                 "[main]\n"
                                                 "oid_section = oids\n"
                                                 "[oids]\n"
                                                 "isiTestName = 1.2.3.4.5.6\n";
    setenv("OPENSSL_CONF", here.file("libcrypto.cnf").c_str(), 1);
    ASSERT_EQ(isi_init(), 0) << error_text();
    OPENSSL_init_crypto(OPENSSL_INIT_LOAD_CONFIG, nullptr);
    EXPECT_NE(OBJ_txt2nid("isiTestName"), NID_undef);
}
