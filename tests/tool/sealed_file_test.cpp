#include "tool/sealed_file.h"

#include "isi/isi_api.h"
#include "support/guarded_bytes.h"
#include "tool/keys.h"
#include "tool/memory.h"
#include "tool/toy_provider.h"
#include "tool/watchful_memory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

namespace {

using watchful_memory::context;

constexpr char plain_text[] = "stores dbadmin rosebud primary\n";
constexpr char access_key[] = "opensesame";
const std::string damaged = "FATAL error! password file is damaged\n";

std::string words_of(const std::function<void()> &action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

// One sealed text and the cipher that made it.
struct sealing {
    cipher_ctx cipher = {};
    char internal_key[32] = {};
    char *block = nullptr;
    int32_t length = 0;
    std::string bytes;

    sealing() { cipher_init(&cipher); }
    ~sealing() {
        if (block != nullptr)
            kestrion::release_wiped(context(), block, static_cast<size_t>(length));
        isi_cipher_ctx_free(cipher.cipher_handle);
    }

    int seal(const std::string &text, const char *key) {
        if (generate_internal_key(context(), key, internal_key) != 0)
            return -1;
        if (pw_encrypt(context(), &cipher, text.data(), static_cast<int32_t>(text.size()),
                       internal_key, key, &block, &length) != 0)
            return -1;
        bytes.assign(block, static_cast<size_t>(length));
        return 0;
    }
};

struct opened {
    int result = -1;
    std::string key; // the access key
    std::string text;
};

opened open_file(cipher_ctx *cipher, const std::string &file) {
    guarded_bytes bytes(file);
    char internal[32];
    char access[32];
    char *text = nullptr;
    int32_t length = static_cast<int32_t>(file.size());
    int32_t text_length = 0;
    opened o;
    if (extract_keys(context(), cipher, bytes.data(), &length, internal, access) != 0)
        return o;
    o.key = access;
    o.result =
        pw_decrypt(context(), cipher, bytes.data(), length, internal, access, &text, &text_length);
    if (o.result == 0)
        o.text.assign(text, static_cast<size_t>(text_length) + 1); // with its zero byte
    kestrion::release_wiped(context(), text, static_cast<size_t>(text_length));
    return o;
}

class SealedFile : public testing::Test {
protected:
    void SetUp() override {
        toy_provider::install();
        watchful_memory::reset();
    }
};

// Sizes worked from the layout: PL + EI + EA + D1 + D2 + 29.
TEST_F(SealedFile, HasTheFieldsOfTheLayoutAndOpensAgain) {
    const std::string key24 = "abcdefghijklmnopqrstuvwx";
    const struct {
        size_t text;
        size_t key;
        size_t file;
        const char *access_length;
    } cases[] = {
        {0, 0, 16 + 32 + 16 + 2 + 2 + 29, "162"},
        {100, 15, 193, "162"},
        {15, 16, 16 + 32 + 32 + 2 + 2 + 29, "322"},
        {16, 24, 32 + 32 + 32 + 2 + 2 + 29, "322"},
    };
    for (const auto &c : cases) {
        toy_provider::install();
        sealing s;
        const std::string text(c.text, 't');
        ASSERT_EQ(s.seal(text, key24.substr(0, c.key).c_str()), 0);
        const size_t end = s.bytes.size();
        EXPECT_EQ(end, c.file);
        EXPECT_EQ(s.bytes.substr(end - 3), "242");
        EXPECT_EQ(s.bytes[end - 27], 24) << "the wrap key is the second of the random keys";
        EXPECT_EQ(s.bytes.substr(end - 30, 3), c.access_length);
        EXPECT_EQ(s.bytes.substr((c.text / 16 + 1) * 16 + 32, 3), "322");

        const opened o = open_file(&s.cipher, s.bytes);
        EXPECT_EQ(o.result, 0);
        EXPECT_EQ(o.key, key24.substr(0, c.key));
        EXPECT_EQ(o.text, text + '\0');
    }
}

TEST_F(SealedFile, TwelveCharactersOfTheAccessKeyCountForThePayload) {
    char key[32] = {};
    char same[32] = {};
    combine_keys(key, "abcdefghijklm");
    combine_keys(same, "abcdefghijklXYZ");
    EXPECT_EQ(std::string(key, 32), std::string(same, 32));
    EXPECT_EQ(std::string(key, 24), std::string("a\0b\0c\0d\0e\0f\0g\0h\0i\0j\0k\0l\0", 24));
    EXPECT_EQ(compare_keys("abcdefghijklm", "abcdefghijklXYZ"), 1);
    EXPECT_EQ(compare_keys("abc", "abc"), 0);
}

// The last bytes of a file, behind a payload and an internal key that would do.
TEST_F(SealedFile, ATailThatTellsMoreThanIsThereIsRefusedBeforeAnythingIsOpened) {
    const std::string wrap(24, 'w');
    const std::string stored(32, 's');
    const std::string front = std::string(16, 'p') + stored + "322";
    const std::string cases[] = {
        "",
        "2",
        "0",
        "242",
        wrap.substr(1) + "242",
        front + stored + "322" + wrap + "24 ",
        front + stored + "322" + wrap + "2a2",
        front + stored + "322" + wrap + "-12",
        front + stored + "322" + std::string(32, 'w') + "322",
        front + stored + "322" + wrap + "9999999999",
        front + "0" + "1" + wrap + "242",
        front + stored + "0" + wrap + "242",
        front + stored + "9999" + "4" + wrap + "242",
        std::string(32, 's') + "01" + stored + "322" + wrap + "242",
        std::string(65, 's') + "652" + stored + "322" + wrap + "242",
        std::string(31, 's') + "322" + stored + "322" + wrap + "242",
    };
    sealing s;
    for (const std::string &file : cases) {
        const std::string words =
            words_of([&] { EXPECT_EQ(open_file(&s.cipher, file).result, -1) << file; });
        EXPECT_EQ(words, damaged) << file;
    }
    EXPECT_TRUE(watchful_memory::requests().empty());

    int32_t negative = -5;
    EXPECT_EQ(
        words_of([&] { extract_keys(context(), &s.cipher, "", &negative, nullptr, nullptr); }),
        "FATAL error! data size negative -5\n");
}

TEST_F(SealedFile, AnOpenedKeyThatOverrunsItsBufferIsRefused) {
    sealing s;
    char *stored = nullptr;
    int32_t length = 0;
    const std::string wrap(24, 'w');
    const std::string key(32, 'k');
    ASSERT_EQ(encrypt_key(context(), &s.cipher, key.data(), 32, wrap.data(), &stored, &length), 0);
    const std::string access = std::string(stored, static_cast<size_t>(length)) + "482";
    watchful_memory::free(stored);
    const std::string words = words_of([&] {
        open_file(&s.cipher,
                  std::string(48, 'p') + std::string(32, 's') + "322" + access + wrap + "242");
    });
    EXPECT_EQ(words, damaged);
}

// Another writer's wrap key of another length: filled up with zero bytes.
TEST_F(SealedFile, AShorterWrapKeyIsFollowed) {
    sealing s;
    ASSERT_EQ(s.seal(plain_text, access_key), 0);
    const size_t wrap_at = s.bytes.size() - 27;
    char *stored[2] = {};
    int32_t length[2] = {};
    const char wrap[25] = "short";
    encrypt_key(context(), &s.cipher, s.internal_key, 24, wrap, &stored[0], &length[0]);
    encrypt_key(context(), &s.cipher, access_key, 10, wrap, &stored[1], &length[1]);
    std::string file = s.bytes.substr(0, wrap_at - 32 - 3 - 16 - 3);
    file +=
        std::string(stored[0], 32) + "322" + std::string(stored[1], 16) + "162" + "short" + "51";
    for (char *block : stored)
        watchful_memory::free(block);
    EXPECT_EQ(open_file(&s.cipher, file).text, std::string(plain_text) + '\0');
}

TEST_F(SealedFile, EveryCutAndEveryFlippedByteEndsInWordsOrText) {
    sealing s;
    ASSERT_EQ(s.seal(plain_text, access_key), 0);
    testing::internal::CaptureStderr();
    for (size_t i = 0; i < s.bytes.size(); ++i) {
        EXPECT_EQ(open_file(&s.cipher, s.bytes.substr(0, i)).text.find("rosebud"),
                  std::string::npos);
        for (const int flip : {0x01, 0x80, 0xff}) {
            std::string file = s.bytes;
            file[i] = static_cast<char>(file[i] ^ flip);
            open_file(&s.cipher, file);
        }
    }
    testing::internal::GetCapturedStderr();
}

// Seals and opens while refusing one thing after the other; nothing secret may come back or stay.
void refuse_each(void (*refuse)(int), bool (*happened)(int)) {
    for (int k = 1;; ++k) {
        toy_provider::install();
        watchful_memory::reset();
        watchful_memory::look_for("rosebud");
        watchful_memory::look_for(access_key);
        watchful_memory::look_for(std::string("\x06\x07\x08\x09\x0a\x0b", 6)); // internal key
        sealing s;
        refuse(k);
        opened o;
        const std::string words = words_of([&] {
            if (s.seal(plain_text, access_key) == 0)
                o = open_file(&s.cipher, s.bytes);
        });
        if (!happened(k)) {
            EXPECT_GT(k, 5);
            EXPECT_EQ(o.text, std::string(plain_text) + '\0');
            return;
        }
        EXPECT_EQ(watchful_memory::found(), "") << k;
    }
}

TEST_F(SealedFile, ARefusedAllocationLeavesNothingSecretBehind) {
    refuse_each(watchful_memory::refuse_request,
                [](int k) { return watchful_memory::requests().size() >= static_cast<size_t>(k); });
}

TEST_F(SealedFile, ARefusedProviderCallLeavesNothingSecretBehind) {
    refuse_each(toy_provider::refuse_call, [](int) { return toy_provider::refused(); });
}

TEST_F(SealedFile, AbsurdFiguresOfTheProviderAreFailures) {
    for (const int size : {0, -1, 65, INT32_MIN, INT32_MAX}) {
        toy_provider::install();
        toy_provider::block_size = size;
        sealing s;
        EXPECT_EQ(s.seal(plain_text, access_key), -1) << size;
        EXPECT_EQ(s.block, nullptr);
    }
    for (const int extra : {-17, 64, INT32_MAX - 64}) {
        toy_provider::install();
        sealing s;
        ASSERT_EQ(s.seal(plain_text, access_key), 0);
        toy_provider::extra_length = extra;
        sealing other;
        EXPECT_EQ(other.seal(plain_text, access_key), -1) << extra;
        EXPECT_EQ(open_file(&s.cipher, s.bytes).result, -1) << extra;
    }
}

TEST_F(SealedFile, WithoutAHandleEveryOperationFailsAndCleanupSaysSo) {
    toy_provider::refuse_call(3); // the padding, behind the new context and its start
    sealing s;
    EXPECT_EQ(s.cipher.cipher_handle, nullptr);
    EXPECT_EQ(s.seal(plain_text, access_key), -1);
    EXPECT_EQ(words_of([&] { EXPECT_EQ(cipher_cleanup(context(), &s.cipher), -1); }),
              "Error freeing up cipher context\n");
}

} // namespace
