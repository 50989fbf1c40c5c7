#include "passwords/own_stack.h"
#include "passwords/sealed_file.h"
#include "passwords/sealing.h"
#include "passwords/toy_provider.h"
#include "support/guarded_bytes.h"

using namespace kestrion;

namespace {

using watchful_memory::context;

constexpr char plain_text[] = "stores dbadmin rosebud primary\n";
constexpr char access_key[] = "opensesame";
const std::string damaged = "FATAL error! password file is damaged\n";

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

// A key as it is stored under a wrap key.
std::string stored_key(const cipher_ctx *cipher, std::string_view key, const char (&wrap)[25]) {
    char *stored = nullptr;
    int32_t length = 0;
    EXPECT_EQ(encrypt_key(context(), cipher, key.data(), static_cast<uint8_t>(key.size()), wrap,
                          &stored, &length),
              0);
    const std::string bytes(stored, static_cast<size_t>(length));
    watchful_memory::free(stored);
    return bytes;
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

// The last bytes of a file, after a payload and an internal key that would do.
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
        front + stored + "322" + "0",
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
    constexpr char wrap[] = "wwwwwwwwwwwwwwwwwwwwwwww";
    for (const size_t length : {31, 32}) {
        const std::string stored = stored_key(&s.cipher, std::string(length, 'k'), wrap);
        const std::string file = std::string(48, 'p') +
                                 stored_key(&s.cipher, std::string(24, 'i'), wrap) + "322" +
                                 stored + std::to_string(stored.size()) + "2" + wrap + "242";
        opened o;
        EXPECT_EQ(words_of([&] { o = open_file(&s.cipher, file); }) == damaged, length == 32);
        EXPECT_EQ(o.key, length == 31 ? std::string(length, 'k') : "");
    }
}

TEST_F(SealedFile, TheAccessKeyGoesOverTheEvenBytesOfACipherKeyAlone) {
    char key[32];
    memset(key, '#', sizeof key);
    combine_keys(key, "abcdefghijklmnopqrstuvwx");
    EXPECT_EQ(std::string(key, sizeof key), "a#b#c#d#e#f#g#h#i#j#k#l#########");
}

// Another writer's wrap key of another length: filled up with zero bytes.
TEST_F(SealedFile, AShorterWrapKeyIsFollowed) {
    sealing s;
    ASSERT_EQ(s.seal(plain_text, access_key), 0);
    constexpr char wrap[25] = "short";
    const std::string file = s.bytes.substr(0, 32) + // the payload
                             stored_key(&s.cipher, {s.internal_key, 24}, wrap) + "322" +
                             stored_key(&s.cipher, access_key, wrap) + "162" + wrap + "51";
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

TEST_F(SealedFile, KeysAreWipedFromTheStackTheyWereOn) {
    sealing first; // binds the functions of libraries, which saves registers on the stack
    ASSERT_EQ(first.seal(plain_text, access_key), 0);
    ASSERT_EQ(open_file(&first.cipher, first.bytes).result, 0);

    sealing s;
    int32_t length = 0;
    int result = -1;
    own_stack sealing_stack;
    sealing_stack.run([&] {
        result = pw_encrypt(context(), &s.cipher, plain_text, sizeof plain_text - 1, s.internal_key,
                            access_key, &s.block, &s.length);
    });
    ASSERT_EQ(result, 0);
    const std::string wrap_key(s.block + s.length - 27, 24);
    EXPECT_FALSE(sealing_stack.holds_part_of(wrap_key));

    char internal[32];
    char access[32];
    length = s.length;
    own_stack opening_stack;
    opening_stack.run(
        [&] { result = extract_keys(context(), &s.cipher, s.block, &length, internal, access); });
    ASSERT_EQ(result, 0);
    EXPECT_FALSE(opening_stack.holds_part_of(wrap_key));
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
    for (const int size : {0, -1, 24, 32, 64, 65, INT32_MIN, INT32_MAX}) {
        toy_provider::install();
        watchful_memory::reset();
        toy_provider::block_size = size; // and up to 64 the blocks are as long
        sealing s;
        EXPECT_EQ(s.seal(plain_text, access_key), -1) << size;
        EXPECT_TRUE(watchful_memory::requests().empty()) << size;
    }
    toy_provider::block_size = 23;
    sealing largest;
    ASSERT_EQ(largest.seal(plain_text, access_key), 0);
    EXPECT_EQ(open_file(&largest.cipher, largest.bytes).text, std::string(plain_text) + '\0');
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
    toy_provider::refuse_call(3); // the padding, after the new context and its start
    sealing s;
    EXPECT_EQ(s.cipher.cipher_handle, nullptr);
    EXPECT_EQ(s.seal(plain_text, access_key), -1);
    EXPECT_EQ(words_of([&] { EXPECT_EQ(cipher_cleanup(context(), &s.cipher), -1); }),
              "Error freeing up cipher context\n");
}

} // namespace
