// What the system or the provider refuses ends the command with a message and a status, never by a
// signal; and what fails before the writing leaves the sealed file as it was.

#include "tool/command.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr char password_text[] = "stores dbadmin rosebud primary\nsales ops xanadu live\n";

class CommandFaults : public testing::Test {
protected:
    staged_tree tree;
    command tool{tree.path()};
    std::string plain = tree.at("plain");
    std::string out = tree.at("out");

    void SetUp() override {
        tree.write("plain", password_text);
        ASSERT_EQ(tool.run({"-k", "opensesame", "-e", plain}).err, "");
        tool.set("LD_PRELOAD", FAULTS);
    }
    outcome seal() { return tool.run({"-k", "opensesame", "-e", plain}); }
    outcome unseal() { return tool.run({"-k", "opensesame", "-d", out}); }

    void expect_text_sealed() {
        command plain_tool(tree.path());
        EXPECT_EQ(plain_tool.run({"-k", "opensesame", "-d", out}).err, "");
        EXPECT_EQ(tree.read("out"), password_text);
    }
};

TEST_F(CommandFaults, ARefusalOfTheProviderIsTold) {
    const std::string not_sealed = "Sealing failed. The sealed file was not changed.\n";
    const struct {
        const char *function;
        std::string words;
    } cases[] = {
        {"ISI_rand_bytes", "ISI_RAND_BYTES failed\nNo internal key could be made. Check that the "
                           "crypto provider library in $KESTRIONDIR/lib is complete.\n"},
        {"ISI_cipher_ctx_new", not_sealed},
        {"ISI_cipher_ctx_set_padding", not_sealed},
        {"ISI_get_cipherbyname", "no cipher" + not_sealed},
        {"ISI_encrypt_init", not_sealed},
        {"ISI_encrypt_update", not_sealed},
        {"ISI_encrypt_final", not_sealed},
        {"ISI_cipher_ctx_set_key_length",
         "key length= 24, iv length=0, nid=422\ncipher_sbcs=AES-192-ECB\n" + not_sealed},
    };
    const std::string before = tree.sealed();
    for (const auto &c : cases) {
        tool.set("FAULT_ISI", c.function);
        const outcome o = seal();
        EXPECT_EQ(o.err, c.words) << c.function;
        EXPECT_EQ(o.status, 255) << c.function;
        EXPECT_EQ(tree.sealed(), before) << c.function;
    }
    tool.set("FAULT_ISI", "ISI_lib_version_minor"); // answers 1
    const outcome o = seal();
    EXPECT_EQ(o.status, 255);
    EXPECT_NE(o.err.find("is minor version 1, but minor version 2 or higher is required"),
              std::string::npos)
        << o;
    EXPECT_EQ(tree.sealed(), before);
    tool.set("FAULT_ISI", "ISI_decrypt_final");
    EXPECT_EQ(unseal().status, 255);
    EXPECT_FALSE(tree.holds("out"));
}

TEST_F(CommandFaults, AFailedCleanupComesBehindACompleteOutput) {
    tree.write("etc/passwd_file", "");
    tool.set("FAULT_ISI", "ISI_cipher_ctx_cleanup");
    const outcome o = seal();
    EXPECT_EQ(o.err,
              "Error freeing up cipher context\nThe cipher could not be released. The file was "
              "written; check it.\n");
    EXPECT_EQ(o.status, 255);
    expect_text_sealed();
}

TEST_F(CommandFaults, AnInterruptedReadIsAFailure) {
    tool.set("FAULT_FILE", plain).set("FAULT_READ", "0");
    const std::string before = tree.sealed();
    const outcome o = seal();
    EXPECT_EQ(o.err.find("Reading failed (file or system error number: 4)"), 0u) << o;
    EXPECT_NE(o.err.find("Reading failed (file or system error number: " + plain),
              std::string::npos);
    EXPECT_EQ(o.status, 1);
    EXPECT_EQ(tree.sealed(), before);
}

TEST_F(CommandFaults, ShortWritesAreCarriedOnAndAnInterruptedOneIsAFailure) {
    tool.set("FAULT_FILE", tree.sealed_path()).set("FAULT_WRITE", "7");
    EXPECT_EQ(seal().err, "");
    expect_text_sealed();
    tool.set("FAULT_WRITE", "0");
    const outcome o = seal();
    EXPECT_EQ(o.err.find("Error writing file; errno=4\nCannot write " + tree.sealed_path()), 0u)
        << o;
    EXPECT_EQ(o.status, 255);
    EXPECT_EQ(tree.sealed().size(), 40u) << "what was written before stays";
}

TEST_F(CommandFaults, AFullDiskIsToldWhereverItStrikes) {
    std::string text;
    while (text.size() < 3000)
        text += "stores dbadmin rosebud primary\n";
    tree.write("plain", text);
    for (const rlim_t room : {rlim_t{0}, rlim_t{2048}}) {
        command full(tree.path());
        full.first([room] {
            const rlimit limit = {room, room};
            setrlimit(RLIMIT_FSIZE, &limit);
        });
        const outcome o = full.run({"-e", plain});
        EXPECT_EQ(o.err.find("Error writing file; errno=27\nCannot write " + tree.sealed_path()),
                  0u)
            << o;
        EXPECT_EQ(o.status, 255) << o;
        EXPECT_EQ(o.signal, 0) << o;
        EXPECT_EQ(tree.sealed().size(), room);
    }
    std::filesystem::remove(tree.sealed_path());
    std::filesystem::create_symlink("/dev/full", tree.sealed_path());
    const outcome o = command(tree.path()).run({"-e", plain});
    EXPECT_EQ(o.err.find("Error writing file; errno=28\n"), 0u) << o;
    EXPECT_EQ(o.status, 255);
}

TEST_F(CommandFaults, WhenNobodyReadsItsMessagesItStillEndsWithItsStatus) {
    command unheard(tree.path());
    unheard.first([] {
        int ends[2];
        if (pipe(ends) != 0)
            abort();
        dup2(ends[1], 2);
        close(ends[0]);
        close(ends[1]);
    });
    const outcome o = unheard.run({});
    EXPECT_EQ(o.status, 255);
    EXPECT_EQ(o.signal, 0);
}

// The limit for core files does not count where they go to a program.
TEST_F(CommandFaults, NoCoreFileIsWritten) {
    tool.set("FAULT_COUNT", tree.at("count"));
    ASSERT_EQ(seal().status, 0);
    std::istringstream count(tree.read("count"));
    int allocations = 0;
    int dumpable = -1;
    count >> allocations >> dumpable;
    EXPECT_EQ(dumpable, 0);
}

// Refuses one allocation after the other through the whole run. Where nothing that matters was lost
// the run may succeed; otherwise it has a message, a status other than 0 and no effect.
class EachAllocation : public CommandFaults {
protected:
    // `wanted` are ways out that must be among those met.
    void refuse_each(const std::function<outcome()> &run, const std::string &output,
                     const std::set<std::pair<int, std::string>> &wanted) {
        tool.set("FAULT_COUNT", tree.at("count"));
        ASSERT_EQ(run().status, 0);
        const int allocations = std::stoi(tree.read("count"));
        ASSERT_GT(allocations, 10);
        std::set<std::pair<int, std::string>> met;
        for (int k = 1; k <= allocations; ++k) {
            tree.write(output, "as it was");
            tool.set("FAULT_MALLOC", std::to_string(k));
            const outcome o = run();
            EXPECT_EQ(o.signal, 0) << "allocation " << k << ": " << o;
            if (o.status == 0)
                continue;
            met.emplace(o.status, o.err);
            EXPECT_TRUE(o.status == 1 || o.status == 255) << "allocation " << k << ": " << o;
            EXPECT_NE(o.err, "") << "allocation " << k;
            EXPECT_EQ(tree.read(output), "as it was") << "allocation " << k << ": " << o;
        }
        tool.set("FAULT_LASTING", "1");
        for (int k = std::max(1, allocations - 60); k <= allocations; ++k) { // after the start
            tool.set("FAULT_MALLOC", std::to_string(k));
            const outcome o = run();
            EXPECT_TRUE(o.status == 0 || o.err != "") << "from allocation " << k << " on";
            EXPECT_EQ(o.signal, 0) << "from allocation " << k << " on: " << o;
        }
        for (const auto &[status, words] : wanted)
            EXPECT_TRUE(met.contains({status, words})) << status << ": " << words;
    }
};

// The text comes in short reads, so that the buffer grows.
TEST_F(EachAllocation, RefusedWhileSealingIsTold) {
    std::string text = password_text;
    text.resize(60000, 'x');
    tree.write("plain", text);
    tool.set("FAULT_FILE", plain).set("FAULT_READ", "40000");
    refuse_each([this] { return seal(); }, "etc/passwd_file",
                {{1, "Failed to load messages\n"},
                 {1, "Memory Allocation failed\nFailed to initialize CRX context\n"},
                 {1, "Memory Allocation failed\n"},
                 {1, "Memory Re-allocation error\n"},
                 {255, "Memory allocation failed \n"},
                 {255, "Can't allocate output buffer\nSealing failed. The sealed file was not "
                       "changed.\n"}});
}

TEST_F(EachAllocation, RefusedWhileUnsealingIsTold) {
    refuse_each([this] { return unseal(); }, "out",
                {{255, "Memory allocation error\n"},
                 {255, "Can't allocate output buffer\n"},
                 {1, "Can't allocate output buffer\nUnsealing failed. The sealed file is damaged; "
                     "restore it from a backup or seal the passwords again.\n"}});
}

} // namespace
