#include "isi/diagnostics.h"
#include "isi/installation.h"

#include <array>
#include <set>
#include <stdio.h>
#include <string.h>
#include <thread>
#include <vector>

namespace {

using bytes = std::vector<unsigned char>;

bytes counting(size_t size, int step) {
    bytes result(size);
    for (size_t i = 0; i < size; ++i)
        result[i] = static_cast<unsigned char>(static_cast<int>(i) * step);
    return result;
}

// The published example of the cipher: FIPS 197, appendix C.2.
const bytes key = counting(24, 0x01);
const bytes plain_block = counting(16, 0x11);
const bytes cipher_block = {0xdd, 0xa9, 0x7c, 0xa4, 0x86, 0x4c, 0xdf, 0xe0,
                            0x6e, 0xaf, 0x70, 0xa0, 0xec, 0x0d, 0x71, 0x91};

class Provider : public testing::Test {
protected:
    Provider() : here(PROVIDER) {
        EXPECT_EQ(isi_init(), 0) << error_text();
        ctx = isi_cipher_ctx_new();
        cipher = isi_get_cipherbyname("AES-192-ECB");
    }
    ~Provider() override { isi_cipher_ctx_free(ctx); }

    // Feeds `in` in pieces of the size; false when a step fails.
    bool encrypt(const bytes &in, int piece, bytes &out) {
        return run(in, piece, out, isi_encrypt_update, isi_encrypt_final);
    }
    bool decrypt(const bytes &in, int piece, bytes &out) {
        return run(in, piece, out, isi_decrypt_update, isi_decrypt_final);
    }

    installation here;
    void *ctx;
    void *cipher;

private:
    template <class Update, class Final>
    bool run(const bytes &in, int piece, bytes &out, Update update, Final final) {
        out.resize(in.size() + 32);
        int used = 0;
        int length = 0;
        for (size_t at = 0; at < in.size(); at += static_cast<size_t>(piece)) {
            int size = std::min(piece, static_cast<int>(in.size() - at));
            if (update(ctx, out.data() + used, &length, in.data() + at, size) != 0)
                return false;
            used += length;
        }
        if (final(ctx, out.data() + used, &length) != 0)
            return false;
        out.resize(static_cast<size_t>(used + length));
        return true;
    }
};

} // namespace

TEST_F(Provider, GivesThePublishedCipherText) {
    EXPECT_EQ(isi_cipher_block_size(cipher), 16);
    EXPECT_EQ(isi_cipher_key_length(cipher), 24);
    EXPECT_EQ(isi_cipher_iv_length(cipher), 0);
    EXPECT_STREQ(isi_obj_nid2sn(isi_cipher_type(cipher)), "AES-192-ECB");

    bytes out;
    ASSERT_EQ(isi_cipher_ctx_set_padding(ctx, 0), 0);
    ASSERT_EQ(isi_encrypt_init(ctx, cipher, key.data(), nullptr), 0);
    ASSERT_TRUE(encrypt(plain_block, 16, out));
    EXPECT_EQ(out, cipher_block);
    ASSERT_EQ(isi_decrypt_init(ctx, cipher, key.data(), nullptr), 0);
    ASSERT_TRUE(decrypt(cipher_block, 16, out));
    EXPECT_EQ(out, plain_block);
}

// Set once, before there is a cipher, the padding holds for each start that follows.
TEST_F(Provider, PaddingOutlivesEveryStart) {
    bytes out;
    bytes back;
    ASSERT_EQ(isi_cipher_ctx_init(ctx), 0);
    ASSERT_EQ(isi_cipher_ctx_set_padding(ctx, 10), 0);
    for (size_t size : {0u, 1u, 15u, 16u, 17u, 24u, 1000u})
        for (int piece : {1, 7, 16, 1000}) {
            bytes in = counting(size, 3);
            ASSERT_EQ(isi_encrypt_init(ctx, cipher, nullptr, nullptr), 0);
            ASSERT_EQ(isi_cipher_ctx_set_key_length(ctx, 24), 0);
            ASSERT_EQ(isi_encrypt_init(ctx, cipher, key.data(), nullptr), 0);
            ASSERT_TRUE(encrypt(in, piece, out));
            EXPECT_EQ(out.size(), size / 16 * 16 + 16);
            ASSERT_EQ(isi_decrypt_init(ctx, cipher, key.data(), nullptr), 0);
            ASSERT_TRUE(decrypt(out, piece, back));
            EXPECT_EQ(back, in);
        }
    isi_cipher_ctx_set_padding(ctx, 0);
    ASSERT_EQ(isi_encrypt_init(ctx, cipher, key.data(), nullptr), 0);
    EXPECT_FALSE(encrypt(counting(15, 1), 15, out));
    EXPECT_NE(error_text().find("data not multiple of block length (OpenSSL:"), std::string::npos);
}

TEST_F(Provider, TellsWhyAnOpeningFailed) {
    bytes out;
    isi_set_err_file(here.at("log").c_str());
    ASSERT_EQ(isi_decrypt_init(ctx, cipher, key.data(), nullptr), 0);
    EXPECT_FALSE(decrypt(cipher_block, 16, out));
    std::string text = error_text();
    EXPECT_NE(text.find("bad decrypt (OpenSSL:"), std::string::npos) << text;
    EXPECT_EQ(here.read("log"), logged(text)); // logged when it was pushed
    EXPECT_EQ(error_text(), "");
}

TEST_F(Provider, RefusesMisuseWithAWord) {
    int length = 0;
    unsigned char out[32];
    const unsigned char *in = plain_block.data();
    void *fresh = isi_cipher_ctx_new();
    struct {
        const char *name;
        int result;
        std::string text;
    } const cases[] = {
#define CASE(call) {#call, call, error_text()}
        CASE(isi_encrypt_init(nullptr, cipher, key.data(), nullptr)),
        CASE(isi_encrypt_init(fresh, nullptr, key.data(), nullptr)),
        CASE(isi_encrypt_update(fresh, out, &length, in, 16)),
        CASE(isi_encrypt_final(fresh, out, &length)),
        CASE(isi_cipher_ctx_set_key_length(fresh, 24)),
        CASE(isi_encrypt_init(fresh, cipher, nullptr, nullptr) +
             isi_encrypt_update(fresh, out, &length, in, 16)),
        CASE(isi_encrypt_init(fresh, cipher, key.data(), nullptr) +
             isi_cipher_ctx_set_key_length(fresh, 16)),
        CASE(isi_encrypt_update(fresh, out, &length, in, -16)),
        CASE(isi_decrypt_update(fresh, out, &length, in, 16)),
        CASE(isi_decrypt_init(fresh, cipher, nullptr, nullptr) +
             isi_decrypt_update(fresh, out, &length, in, 16)),
        CASE(isi_encrypt_update(fresh, out, nullptr, in, 16)),
        CASE(isi_encrypt_init(fresh, isi_get_cipherbyname("AES-192-CTR"), key.data(), in) +
             isi_encrypt_update(fresh, out, &length, in, -1)),
        CASE(isi_encrypt_init(fresh, cipher, key.data(), nullptr) + isi_cipher_ctx_cleanup(fresh) +
             isi_encrypt_update(fresh, out, &length, in, 16)),
        CASE(isi_cipher_ctx_free(nullptr)),
        CASE(isi_get_cipherbyname("AES-193-ECB") == nullptr),
        CASE(isi_cipher_block_size(nullptr) == 0),
        CASE(isi_obj_nid2sn(123456789) == nullptr),
        CASE(isi_rand_bytes(out, -1)),
        CASE(isi_generate_random_seed(5, nullptr)),
#undef CASE
    };
    for (const auto &row : cases) {
        EXPECT_EQ(row.result, 1) << row.name;
        EXPECT_NE(row.text, "") << row.name;
    }
    isi_cipher_ctx_free(fresh);
}

TEST_F(Provider, KnowsTheOtherCiphersOfItsLibrary) {
    void *cbc = isi_get_cipherbyname("AES-256-CBC");
    ASSERT_NE(cbc, nullptr);
    EXPECT_EQ(isi_cipher_iv_length(cbc), 16);
    bytes long_key = counting(32, 1);
    bytes out;
    bytes back;
    ASSERT_EQ(isi_encrypt_init(ctx, cbc, long_key.data(), plain_block.data()), 0);
    ASSERT_TRUE(encrypt(plain_block, 5, out));
    ASSERT_EQ(isi_decrypt_init(ctx, cbc, long_key.data(), plain_block.data()), 0);
    ASSERT_TRUE(decrypt(out, 5, back));
    EXPECT_EQ(back, plain_block);
}

TEST_F(Provider, RandomBytesFillTheWholeBuffer) {
    std::set<std::array<unsigned char, 56>> seen;
    for (int i = 0; i < 50; ++i) {
        std::array<unsigned char, 56> seed = {};
        ASSERT_EQ(isi_generate_random_seed(56, seed.data()), 0);
        EXPECT_EQ(isi_rand_seed(seed.data(), 56), 0);
        seen.insert(seed);
        ASSERT_EQ(isi_rand_bytes(seed.data(), 56), 0);
        seen.insert(seed);
    }
    EXPECT_EQ(seen.size(), 100u);
    for (size_t at = 0; at < 56; ++at) { // a byte that is never set would be the same in all
        std::set<unsigned char> values;
        for (const auto &seed : seen)
            values.insert(seed[at]);
        EXPECT_GT(values.size(), 10u) << at;
    }
}

// Some of these return pointers; the low half of the register is enough.
#ifdef __clang__
__attribute__((no_sanitize("function")))
#endif
static int
call_as_int(const char *name) {
    auto function = reinterpret_cast<int (*)()>(dlsym(libisiHandle, name));
    return function != nullptr ? function() : -2;
}

TEST_F(Provider, RefusesWhatItDoesNotDo) {
    for (const char *name : {
#define ISI_TYPED(symbol, upper, result, parameters)
#define ISI_OPAQUE(symbol, upper) #symbol,
             ISI_FUNCTIONS(ISI_TYPED, ISI_OPAQUE)
#undef ISI_TYPED
#undef ISI_OPAQUE
         }) {
        int answer = call_as_int(name);
        EXPECT_TRUE(answer >= -1 && answer <= 1) << name;
        EXPECT_EQ(error_text(), "not supported by this provider") << name;
    }
    EXPECT_EQ(isi_name2cipher("AES-192-ECB"), 26);
    EXPECT_EQ(isi_name2digest("SHA1"), 10);
    EXPECT_EQ(isi_encode_block(nullptr, nullptr, 0), -1);
    EXPECT_EQ(isi_decode_block(nullptr, nullptr, 0), -1);
    EXPECT_EQ(error_text(), "not supported by this provider");
}

TEST_F(Provider, ReportsToTheThreadThatCalled) {
    std::string there;
    isi_cipher_ctx_free(nullptr);
    std::thread([&] {
        isi_cipher_block_size(nullptr);
        there = error_text();
        isi_clear_err();
    }).join();
    EXPECT_EQ(there, "no cipher");
    EXPECT_EQ(error_text(), "no cipher context");
}

TEST_F(Provider, StaysMappedWhenUnbound) {
    isi_cleanup();
    void *handle = dlopen(here.library().c_str(), RTLD_NOW | RTLD_NOLOAD);
    EXPECT_NE(handle, nullptr);
    ASSERT_EQ(isi_init(), 0);
    EXPECT_EQ(isi_get_cipherbyname("AES-192-ECB"), cipher);
}

TEST(ProviderFile, ExportsTheFunctionsAndNothingElse) {
    std::set<std::string> exported;
    FILE *listing = popen("nm -D --defined-only '" PROVIDER "'", "r");
    char line[512];
    while (fgets(line, sizeof line, listing) != nullptr) {
        std::string name = strrchr(line, ' ') + 1;
        name.pop_back();
        exported.insert(name);
    }
    ASSERT_EQ(pclose(listing), 0);
    std::set<std::string> wanted;
    for (const isi_functab_row &row : isi_functab)
        wanted.insert(row.name);
    EXPECT_EQ(wanted.size(), 110u);
    EXPECT_EQ(exported, wanted);
}

namespace {

long blocks;

void *own_malloc(size_t size) {
    ++blocks;
    return malloc(size);
}

void own_free(void *block) {
    --blocks;
    free(block);
}

} // namespace

// Another program, which has its own records and never saw the bridge.
TEST(ProviderFile, ServesAnyProgramThatKeepsToTheRecords) {
    void *library = dlopen(PROVIDER, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    auto function = [library]<class Type>(Type, const char *name) {
        return reinterpret_cast<Type>(dlsym(library, name));
    };
#define FUNCTION(symbol, upper) function(decltype(isi_fp::p_##upper)(), #symbol)
    auto init = FUNCTION(ISI_init_int, ISI_INIT_INT);
    auto cleanup = FUNCTION(ISI_cleanup_int, ISI_CLEANUP_INT);
    auto block_size = FUNCTION(ISI_cipher_block_size, ISI_CIPHER_BLOCK_SIZE);
    auto push = FUNCTION(ISI_err_stack_push_km_error, ISI_ERR_STACK_PUSH_KM_ERROR);

    cleanup(); // before any start, as the calls before it: nothing to report to
    EXPECT_EQ(block_size(nullptr), 0);

    struct isi_shared_globals globals = {};
    globals.allocate = own_malloc;
    globals.release = own_free;
    isi_err_stack record = {};
    EXPECT_NE(init(nullptr, &record), 0);
    ASSERT_EQ(init(&globals, &record), 0);
    block_size(nullptr);
    EXPECT_EQ(push(12), 0);
    EXPECT_EQ(blocks, 3); // two items, one text
    ASSERT_NE(record.first, nullptr);
    EXPECT_STREQ(record.first->text, "no cipher");
    EXPECT_EQ(record.last, record.first->next);
    EXPECT_EQ(record.last->previous, record.first);
    EXPECT_EQ(record.last->kind, ISI_ERR_KM);
    EXPECT_EQ(record.last->code, 12);

    cleanup();
    block_size(nullptr);
    EXPECT_EQ(blocks, 3);
    own_free(record.first->text);
    own_free(record.first);
    own_free(record.last);
}
