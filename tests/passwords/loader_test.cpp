#include "passwords/own_stack.h"
#include "passwords/sealing.h"
#include "passwords/staged_tree.h"
#include "passwords/toy_provider.h"
#include <kestrion/passwdapi.h>

#include <numeric>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

using namespace kestrion;

namespace {

using watchful_memory::request;

size_t longest_read = SIZE_MAX; // a shorter one than asked for makes read_file grow

constexpr char two_lines[] = "stores dbadmin rosebud primary\nsales ops xanadu live\nno line";

class Loader : public testing::Test {
protected:
    staged_tree home;
    pw_ctx *ctx = nullptr;
    pw_entry *table[8] = {};

    void SetUp() override {
        unlink(home.at("lib/libisi.so.1").c_str()); // the toy takes its place
        setenv("KESTRIONDIR", home.path().c_str(), 1);
        ASSERT_EQ(init(), 0);
        toy_provider::install();
        seal(two_lines);
    }
    void seal(const std::string &text) {
        {
            sealing s;
            ASSERT_EQ(s.seal(text, "opensesame"), 0);
            home.write("etc/passwd_file", s.bytes);
        }
        watchful_memory::reset();
    }
    int init() {
        return pw_init(&ctx, watchful_memory::alloc, watchful_memory::realloc,
                       watchful_memory::free);
    }
    void free_entries() {
        for (pw_entry *&entry : table) {
            if (entry != nullptr)
                watchful_memory::free(entry);
            entry = nullptr;
        }
    }
};

TEST_F(Loader, CountsAndLoadsTheLinesAnyNumberOfTimes) {
    for (int round = 0; round < 2; ++round) {
        int32_t count = -7;
        EXPECT_EQ(pwLoadPW(ctx, &count, table), 0);
        EXPECT_EQ(count, 2);
        EXPECT_STREQ(table[0]->token3, "rosebud");
        EXPECT_STREQ(table[1]->token4, "live");
        free_entries();
        EXPECT_EQ(pwGetLineCount(ctx, &count), 0);
        EXPECT_EQ(count, 2);
    }
    seal("no line feed at all");
    int32_t count = -7;
    EXPECT_EQ(pwGetLineCount(ctx, &count), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(pwLoadPW(ctx, &count, table), 0);
    EXPECT_EQ(count, 0);
}

// Sizes by hand: 60 bytes of text make a payload of 64; stored keys of 16 and 32 bytes.
TEST_F(Loader, TheAllocationTraceIsTheOneThatCallersKnow) {
    const std::vector<request> opening = {{24, 112}, {65026, 112}, {17, 112},
                                          {31, 112}, {47, 112},    {79, 112}};
    int32_t count = 0;
    ASSERT_EQ(pwGetLineCount(ctx, &count), 0);
    EXPECT_EQ(watchful_memory::requests(), opening);
    EXPECT_EQ(watchful_memory::live_blocks(), 1u) << "the opened access key is lost";

    watchful_memory::reset();
    std::vector<request> loading = opening;
    loading.insert(loading.end(), {{60, 112}, {516, 112}, {516, 112}});
    ASSERT_EQ(pwLoadPW(ctx, &count, table), 0);
    EXPECT_EQ(watchful_memory::requests(), loading);

    watchful_memory::reset();
    ASSERT_EQ(init(), 0);
    EXPECT_EQ(watchful_memory::requests(), (std::vector<request>{{sizeof(pw_ctx), 474}}));
    EXPECT_EQ(pw_cleanup(ctx), 0);
    EXPECT_EQ(watchful_memory::live_blocks(), 0u);
    EXPECT_EQ(pw_cleanup(nullptr), 0);
}

// Limit 64000: reads of 40000 and 20000 bytes leave less to ask for than was read.
TEST_F(Loader, AFileThatComesInShortReadsIsReadAgainIntoALargerBuffer) {
    std::string text;
    while (text.size() < 60000)
        text += "stores dbadmin rosebud primary\n";
    seal(text);
    watchful_memory::look_for("rosebud");
    watchful_memory::look_for("\x48\x49\x4a\x4b\x4c"); // the wrap key opens all the rest
    longest_read = 40000;
    int32_t count = 0;
    EXPECT_EQ(pwGetLineCount(ctx, &count), 0);
    EXPECT_EQ(count, static_cast<int32_t>(text.size() / 31));
    EXPECT_EQ(watchful_memory::requests()[2], (request{641025, 117}));
    EXPECT_EQ(watchful_memory::found(), "");

    watchful_memory::reset();
    watchful_memory::refuse_request(3);
    EXPECT_EQ(words_of([&] { EXPECT_EQ(pwGetLineCount(ctx, &count), -1); }),
              "Memory Re-allocation error\n");
    EXPECT_EQ(watchful_memory::live_blocks(), 2u) << "buffer and cipher record stay";
}

TEST_F(Loader, EachRefusedAllocationIsToldAndGivesBackWhatItAlwaysDid) {
    const struct {
        const char *words;
        size_t live;
    } wanted[] = {
        {"Memory Allocation failed\n", 0},
        {"Memory Allocation failed\n", 1},
        {"Memory allocation error\nextract_keys failed\n", 0},
        {"Can't allocate output buffer\nextract_keys failed\n", 0},
        {"Can't allocate output buffer\nextract_keys failed\n", 1},
        {"Can't allocate output buffer\npw_decrypt failed\n", 1},
        {"Memory allocation failure\nparse_file failed\n", 1},
        {"Memory allocation failure\nLine:1: Error: Incorrect password file format\n"
         "DATA=stores dbadmin rosebud primary\nparse_file failed\n",
         2},
    };
    for (int k = 1; k <= 8; ++k) {
        watchful_memory::reset();
        watchful_memory::look_for("rosebud");
        watchful_memory::look_for("opensesame");
        watchful_memory::refuse_request(k);
        int32_t count = 0;
        const std::string words =
            words_of([&] { EXPECT_EQ(pwLoadPW(ctx, &count, table), -1) << k; });
        EXPECT_EQ(words, wanted[k - 1].words) << k;
        EXPECT_EQ(watchful_memory::live_blocks(), wanted[k - 1].live) << k;
        EXPECT_EQ(watchful_memory::found(), "") << k;
        EXPECT_FALSE(toy_provider::holds_key()) << k;
    }
}

TEST_F(Loader, NothingSecretComesBackOrStays) {
    for (const char *secret :
         {"rosebud", "xanadu", "opensesame", "\x06\x07\x08\x09\x0a", // internal
          "p\x03"
          "e\x05n\x07",
          "\x18\x19\x1a\x1b\x1c"}) // combined, wrap
        watchful_memory::look_for(secret);
    int32_t count = 0;
    ASSERT_EQ(pwGetLineCount(ctx, &count), 0);
    ASSERT_EQ(pwLoadPW(ctx, &count, table), 0);
    for (pw_entry *&entry : table)
        kestrion::release_wiped(ctx, std::exchange(entry, nullptr), sizeof *entry);
    EXPECT_EQ(watchful_memory::found(), "");
}

TEST_F(Loader, AFileThatGrewBehindTheCountIsRefused) {
    int32_t count = 0;
    ASSERT_EQ(pwGetLineCount(ctx, &count), 0);
    seal("a b c d\ne f g h\ni j k l\n");
    const std::string words = words_of([&] { EXPECT_EQ(pwLoadPW(ctx, &count, table), -1); });
    EXPECT_EQ(words, "Line:3: Error: Incorrect password file format\nDATA=a\nparse_file failed\n");
    EXPECT_EQ(table[2], nullptr);
}

TEST_F(Loader, EveryFailureSaysWhichStepItWas) {
    const std::string file = home.sealed_path();
    int32_t count = -7;
    const auto words = [&] {
        return words_of([&] { EXPECT_EQ(pwLoadPW(ctx, &count, table), -1); });
    };
    toy_provider::refuse_call(14); // after the calls that open the text
    EXPECT_EQ(words(), "Error freeing up cipher context\ncrypt_cleanup failed\n");
    toy_provider::refuse_call(12);
    EXPECT_EQ(words(), "pw_decrypt failed\n");

    seal("a b c d\na b c\n");
    count = -7;
    EXPECT_NE(
        words().find("Line:2: Error: Incorrect password file format\nDATA=a\nparse_file failed\n"),
        std::string::npos);
    EXPECT_EQ(count, 0);

    home.write("etc/passwd_file", "nonsense");
    count = -7;
    EXPECT_EQ(words(), "FATAL error! password file is damaged\nextract_keys failed\n");
    EXPECT_EQ(count, 0);
    unlink(file.c_str());
    EXPECT_EQ(words(), "Cannot open file " + file + "\nread_file failed\n");

    setenv("KESTRIONDIR", "/nowhere", 1);
    EXPECT_EQ(words_of([&] { EXPECT_EQ(init(), -1); }),
              "The path /nowhere does not exist, errno=2\n");
    setenv("KESTRIONDIR", home.path().c_str(), 1);
    watchful_memory::refuse_request(1);
    EXPECT_EQ(words_of([&] { EXPECT_EQ(init(), -1); }), "Memory Allocation failed\n");
}

TEST_F(Loader, NullsFailWithoutAWord) {
    int32_t count = 0;
    EXPECT_EQ(words_of([&] {
                  EXPECT_EQ(pwGetLineCount(ctx, nullptr), -1);
                  EXPECT_EQ(pwGetLineCount(nullptr, &count), -1);
                  EXPECT_EQ(pwLoadPW(ctx, nullptr, table), -1);
                  EXPECT_EQ(pwLoadPW(nullptr, &count, table), -1);
                  EXPECT_EQ(pwLoadPW(ctx, &count, nullptr), -1);
              }),
              "");
}

TEST_F(Loader, NothingSecretStaysOnTheStackOrInRegisters) {
    const std::string rest = " nor-is-this-one-of-more-than-32-characters";
    toy_provider::leaves_copies = true;
    seal(two_lines + rest);
    const std::string file = home.sealed();
    std::string internal_key(24, '\0');
    std::iota(internal_key.begin(), internal_key.end(), '\0');
    const std::string secrets[] = {"opensesame", internal_key, file.substr(file.size() - 27, 24),
                                   "rosebud", rest};
    int32_t count = 0;
    int result = -1;
    const std::function<void()> actions[] = {
        [&] { result = pwLoadPW(ctx, &count, table); },
        [&] { result = pwGetLineCount(ctx, &count); },
        [&] {
            result = pwLoadPW(ctx, &count, table);
            mrand48(); // bound now, which saves the vector registers on the stack
        },
    };
    for (const auto &action : actions) {
        own_stack stack;
        stack.run(action);
        ASSERT_EQ(result, 0);
        for (const std::string &secret : secrets)
            EXPECT_FALSE(stack.holds_part_of(secret)) << testing::PrintToString(secret);
        free_entries();
    }
}

} // namespace

// Comes before the C library's for all code that is linked into this program.
extern "C" ssize_t read(int fd, void *buffer, size_t count) {
    return syscall(SYS_read, fd, buffer, count < longest_read ? count : longest_read);
}
