#include "isi/diagnostics.h"
#include "isi/installation.h"

#include <thread>

namespace {

struct BoundWrapper : testing::Test {
    installation here{FAKES "/version_1_2.so"};
    void SetUp() override { ASSERT_EQ(isi_init(), 0); }
};

void push(const char *text) { isi_err_stack_push(&isi_shared_thread_globals, 0, 0, text); }

} // namespace

TEST(Wrapper, AnswersItsDefaultWithoutAProvider) {
    unsigned char bytes[16] = {};
    int length = 5;
    push("kept");

    EXPECT_EQ(isi_cipher_ctx_new(), nullptr);
    EXPECT_EQ(isi_get_cipherbyname("AES-192-ECB"), nullptr);
    EXPECT_EQ(isi_obj_nid2sn(422), nullptr);
    for (int status :
         {isi_cipher_ctx_init(nullptr), isi_cipher_ctx_set_key_length(nullptr, 24),
          isi_cipher_ctx_set_padding(nullptr, 10), isi_cipher_ctx_cleanup(nullptr),
          isi_cipher_ctx_free(nullptr), isi_encrypt_init(nullptr, nullptr, bytes, nullptr),
          isi_encrypt_update(nullptr, bytes, &length, bytes, 16),
          isi_encrypt_final(nullptr, bytes, &length),
          isi_decrypt_init(nullptr, nullptr, bytes, nullptr),
          isi_decrypt_update(nullptr, bytes, &length, bytes, 16),
          isi_decrypt_final(nullptr, bytes, &length), isi_rand_bytes(bytes, 16),
          isi_rand_seed(bytes, 16), isi_generate_random_seed(16, bytes)})
        EXPECT_EQ(status, 1);
    for (int size : {isi_cipher_block_size(nullptr), isi_cipher_key_length(nullptr),
                     isi_cipher_iv_length(nullptr), isi_cipher_type(nullptr),
                     isi_lib_version_major(), isi_lib_version_minor(), isi_lib_base()})
        EXPECT_EQ(size, 0);
    EXPECT_EQ(isi_encode_block(bytes, bytes, 3), -1);
    EXPECT_EQ(isi_decode_block(bytes, bytes, 4), -1);
    EXPECT_EQ(isi_name2cipher("AES-192-ECB"), 26);
    EXPECT_EQ(isi_name2digest("SHA1"), 10);
    EXPECT_STREQ(isi_lib_version_string(), "unknown");
    EXPECT_STREQ(isi_crypto_version(), "unknown");

    EXPECT_EQ(length, 5);
    EXPECT_EQ(error_text(), "kept"); // an unbound call neither records nor resets
}

TEST_F(BoundWrapper, EachCallBeginsWithACleanStackOfItsOwnThread) {
    push("old");
    EXPECT_EQ(isi_cipher_ctx_init(nullptr), 0);
    EXPECT_EQ(error_text(), "");

    push("mine");
    void *record_there = nullptr;
    std::thread([&] {
        isi_cipher_ctx_init(nullptr);
        record_there = provider_variable<void *>("fake_record");
    }).join();
    EXPECT_NE(record_there, &isi_shared_thread_globals);
    EXPECT_EQ(error_text(), "mine");
}

TEST_F(BoundWrapper, ResultsAndArgumentsPassUnchanged) {
    int length = 0;
    EXPECT_EQ(isi_encrypt_update(nullptr, nullptr, &length, nullptr, -7), 0);
    EXPECT_EQ(length, -7);
    EXPECT_EQ(isi_cipher_ctx_set_padding(nullptr, -3), -3);
    EXPECT_EQ(isi_name2cipher("x"), 4);
}

TEST_F(BoundWrapper, ANullBufferNeverReachesTheRandomCalls) {
    EXPECT_EQ(isi_rand_bytes(nullptr, 5), 1);
    EXPECT_EQ(isi_rand_seed(nullptr, 5), 1);
    EXPECT_EQ(provider_variable<int>("fake_random_calls"), 0);
    isi_generate_random_seed(5, nullptr);
    EXPECT_EQ(provider_variable<int>("fake_random_calls"), 1);
}

TEST_F(BoundWrapper, AFunctionThatABoundProviderLacksIsAnError) {
    unsigned char byte = 0;
    isi_functab[IDX_ISI_RAND_BYTES].isi_fp.address = nullptr;
    EXPECT_EQ(isi_rand_bytes(&byte, 1), 1);
    EXPECT_EQ(error_text(), "(isi_functab[IDX_ISI_RAND_BYTES].isi_fp.p_ISI_RAND_BYTES): "
                            "function address not available");
}

TEST_F(BoundWrapper, TraceShowsCallsFromLevelThreeOn) {
    isi_set_trace_file(here.at("trace").c_str());
    auto ctx = reinterpret_cast<void *>(0x10);
    auto bytes = reinterpret_cast<unsigned char *>(0x20);
    int length = 0;
    int &answer = provider_variable<int>("fake_answer");

    isi_set_trace_level(2);
    isi_cipher_ctx_init(ctx);
    EXPECT_EQ(here.read("trace"), "");

    isi_set_trace_level(3);
    isi_cipher_ctx_set_padding(ctx, 10);
    isi_generate_random_seed(56, bytes);
    isi_obj_nid2sn(1);
    isi_get_cipherbyname(nullptr);
    answer = 0;
    isi_encrypt_update(ctx, bytes, &length, bytes, 8);
    answer = 5;
    isi_encrypt_update(ctx, bytes, &length, bytes, 8);
    isi_lib_version_major();
    isi_set_trace_level(0);

    char outl[32];
    snprintf(outl, sizeof outl, "%p", static_cast<void *>(&length));
    char found[32];
    snprintf(found, sizeof found, "%p", static_cast<void *>(&answer));
    std::string update =
        logged(std::string("ctx=0x10, out=0x20, outl=") + outl + ", in=0x20, inl=8");
    EXPECT_EQ(here.read("trace"),
              logged("enter: isi_cipher_ctx_set_padding ") + logged("ctx=0x10, padding=10") +
                  logged("ret=10") + logged("exit: isi_cipher_ctx_set_padding ") +
                  logged("enter: isi_generate_random_seed ") + logged("seedLength=56, seed=0x20") +
                  logged("ret=0") + logged("exit: isi_generate_random_seed ") +
                  logged("enter: isi_obj_nid2sn ") + logged("nid=1") + logged("ret=<null>") +
                  logged("exit: isi_obj_nid2sn ") + logged("enter: isi_get_cipherbyname ") +
                  logged("name=<null>") + logged(std::string("ret=") + found) +
                  logged("exit: isi_get_cipherbyname ") + logged("enter: isi_encrypt_update ") +
                  update + logged("ret=0, *outl=8") + logged("exit: isi_encrypt_update ") +
                  logged("enter: isi_encrypt_update ") + update + logged("ret=5, *outl=0") +
                  logged("exit: isi_encrypt_update "));
}
