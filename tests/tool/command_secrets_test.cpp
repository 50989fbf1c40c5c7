// What others may see of the command's secrets: its arguments while it runs, and its memory at its
// end.

#include "tool/command.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <inttypes.h>
#include <openssl/evp.h>
#include <signal.h>
#include <stdio.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char key[] = "open-sesame-2f9c";
constexpr char password_text[] =
    "stores dbadmin rosebud-71c5 primary\nsales ops xanadu-e02d live\n";

std::string file_of(pid_t child, const char *name) {
    return file_text("/proc/" + std::to_string(child) + "/" + name);
}

// All that the process can write to, or has written to.
std::string memory_of(pid_t child) {
    std::string image;
    std::ifstream maps("/proc/" + std::to_string(child) + "/maps");
    const int memory =
        open(("/proc/" + std::to_string(child) + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    for (std::string line; std::getline(maps, line);) {
        uint64_t start = 0;
        uint64_t end = 0;
        char mode[5] = {};
        if (sscanf(line.c_str(), "%" SCNx64 "-%" SCNx64 " %4s", &start, &end, mode) != 3 ||
            mode[1] != 'w')
            continue;
        std::string bytes(end - start, '\0');
        const ssize_t got = pread(memory, bytes.data(), bytes.size(), static_cast<off_t>(start));
        image.append(bytes, 0, got > 0 ? static_cast<size_t>(got) : 0);
    }
    close(memory);
    return image;
}

std::string decrypt(const std::string &bytes, const std::string &cipher_key) {
    const auto in = [](const std::string &s) {
        return reinterpret_cast<const unsigned char *>(s.data());
    };
    std::string text(bytes.size() + 16, '\0');
    auto *out = reinterpret_cast<unsigned char *>(text.data());
    int first = 0;
    int last = 0;
    EVP_CIPHER_CTX *ctx = EVP_CIPHER_CTX_new();
    EVP_DecryptInit_ex(ctx, EVP_aes_192_ecb(), nullptr, in(cipher_key), nullptr);
    EVP_DecryptUpdate(ctx, out, &first, in(bytes), static_cast<int>(bytes.size()));
    EVP_DecryptFinal_ex(ctx, out + first, &last);
    EVP_CIPHER_CTX_free(ctx);
    text.resize(static_cast<size_t>(first + last));
    return text;
}

class CommandSecrets : public testing::Test {
protected:
    staged_tree tree;
    command tool{tree.path()};
    std::string plain = tree.at("plain");
    std::string out = tree.at("out");

    void SetUp() override {
        if (geteuid() != 0)
            GTEST_SKIP() << "only root may look into the command's memory";
        tree.write("plain", password_text);
    }

    // Runs to the exit, where all of the process is still there, and looks for what should not be.
    int run_and_search(const std::vector<std::string> &arguments) {
        tool.first([] { ptrace(PTRACE_TRACEME, 0, nullptr, nullptr); });
        const pid_t child = tool.start(arguments);
        int state = 0;
        waitpid(child, &state, 0); // stopped after exec
        ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACEEXIT | PTRACE_O_EXITKILL);
        do {
            ptrace(PTRACE_CONT, child, nullptr, nullptr);
            waitpid(child, &state, 0);
        } while (WIFSTOPPED(state) && state >> 8 != (SIGTRAP | PTRACE_EVENT_EXIT << 8));
        if (!WIFSTOPPED(state)) {
            ADD_FAILURE() << "the exit was not seen";
            return -1;
        }
        image_ = memory_of(child);
        EXPECT_GT(image_.size(), 100000u);
        const std::string shown = testing::PrintToString(arguments);
        EXPECT_EQ(file_of(child, "cmdline").find("sesame"), std::string::npos) << shown;
        EXPECT_NE(
            file_of(child, "limits").find("Max core file size        0                    0 "),
            std::string::npos);
        for (const char *secret : {"open-sesame", "rosebud-71c5", "xanadu-e02d"})
            EXPECT_FALSE(holds(secret)) << secret << " after " << shown;
        if (tree.sealed().size() > 130)
            search_for_keys(shown);
        ptrace(PTRACE_CONT, child, nullptr, nullptr);
        return tool.finish().status;
    }

private:
    std::string image_;

    bool holds(const std::string &bytes) const { return image_.find(bytes) != std::string::npos; }

    // The keys of the sealed file that is there, by the layout: 32 and 16 bytes of stored keys.
    void search_for_keys(const std::string &shown) const {
        const std::string file = tree.sealed();
        const size_t end = file.size();
        const std::string wrap = file.substr(end - 27, 24);
        const std::string internal = decrypt(file.substr(end - 30 - 32 - 3 - 32, 32), wrap);
        ASSERT_EQ(internal.size(), 24u) << shown;
        std::string combined = internal;
        for (size_t i = 0; i < 12; ++i)
            combined[2 * i] = key[i];
        ASSERT_EQ(decrypt(file.substr(0, end - 97), combined).find(password_text), 0u);
        // The first 16 bytes of a key are in the cipher's schedule of either direction as they
        // are.
        EXPECT_FALSE(holds(wrap.substr(0, 16))) << "the wrap key after " << shown;
        EXPECT_FALSE(holds(internal.substr(0, 16))) << "the internal key after " << shown;
        EXPECT_FALSE(holds(combined.substr(0, 16))) << "the combined key after " << shown;
    }
};

TEST_F(CommandSecrets, NothingIsLeftInMemoryOnSuccess) {
    EXPECT_EQ(run_and_search({"-k", key, "-e", plain}), 0);
    EXPECT_EQ(run_and_search({"-k", key, "-d", out}), 0);
    EXPECT_EQ(tree.read("out"), password_text);
}

TEST_F(CommandSecrets, NothingIsLeftInMemoryOnFailure) {
    ASSERT_EQ(run_and_search({"-k", key, "-e", plain}), 0);
    EXPECT_EQ(run_and_search({"-k", key, "-e", "missing"}), 1);
    EXPECT_EQ(run_and_search({"-k", key, "-x", out}), 255);
    EXPECT_EQ(run_and_search({"-k", key, "-k", std::string(key) + "-and-far-too-long"}), 255);
    EXPECT_EQ(run_and_search({"-k", "another", "-d", out}), 1);
    EXPECT_EQ(run_and_search({"-k", key, "-d", "/dev/full"}), 255);
    tree.write("plain", std::string(password_text) + "stores rosebud-71c5\n");
    EXPECT_EQ(run_and_search({"-k", key, "-e", plain}), 255);
    tree.write("plain", "rosebud-71c5 xanadu-e02d\n");
    EXPECT_EQ(run_and_search({"-k", key, "-e", plain}), 255);
    tool.set("KESTRIONDIR", "/nowhere");
    EXPECT_EQ(run_and_search({"-k", key, "-e", plain}), 1);
}

// A text that comes in short reads is read again into a larger buffer, and the smaller one moves.
// After its two lines there is not even a line.
TEST_F(CommandSecrets, NothingIsLeftInOrLostFromTheBufferThatWasTooSmall) {
    std::string text = password_text;
    text.resize(60000, 'x');
    tree.write("plain", text);
    tool.set("LD_PRELOAD", FAULTS).set("FAULT_FILE", plain).set("FAULT_READ", "40000");
    EXPECT_EQ(run_and_search({"-k", key, "-e", plain}), 0);
    EXPECT_EQ(run_and_search({"-k", key, "-d", out}), 0);
    EXPECT_EQ(tree.read("out"), text);
}

// While it loads messages and locale, every user can read its arguments.
TEST_F(CommandSecrets, KeysAreGoneFromTheArgumentsBeforeAnythingIsLoaded) {
    const std::string long_key = "open-sesame-that-is-too-long";
    const struct {
        std::vector<std::string> arguments;
        int status;
    } rows[] = {
        {{"-k", "an-earlier-sesame", "-k", key, "-e", plain}, 0},
        {{"-k", "-k", "-k", key, "-e", plain}, 0},
        {{"-k", long_key, "-k", key, "-e", plain}, 255},
        {{"-e", plain, "-x", plain, plain, "-k", key}, 255},
        {{"-e", "-k", "-k", key, "-d", out}, 0},
    };
    for (const auto &row : rows) {
        tool.set("LD_PRELOAD", FAULTS).set("FAULT_STOP", "1");
        const pid_t child = tool.start(row.arguments);
        int state = 0;
        waitpid(child, &state, WUNTRACED);
        ASSERT_TRUE(WIFSTOPPED(state));
        const std::string shown = file_of(child, "cmdline");
        EXPECT_NE(shown.find("-k"), std::string::npos);
        EXPECT_EQ(shown.find("sesame"), std::string::npos) << testing::PrintToString(row.arguments);
        for (bool stopped = true; stopped;) { // at each look
            kill(child, SIGCONT);
            siginfo_t change = {};
            waitid(P_PID, static_cast<id_t>(child), &change, WSTOPPED | WEXITED | WNOWAIT);
            stopped = change.si_code == CLD_STOPPED;
            if (stopped)
                waitpid(child, &state, WUNTRACED);
        }
        EXPECT_EQ(tool.finish().status, row.status) << testing::PrintToString(row.arguments);
    }
}

} // namespace
