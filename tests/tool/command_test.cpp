// Every way out of the command by its messages, stream, status and order, and by the files it
// leaves.

#include "tool/command.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char password_text[] = "stores dbadmin rosebud primary\nsales ops xanadu live\nno line";

std::string usage_text() {
    return "Usage: pwsealtool -k <access_key> -e <input_filename> | -d <output_filename>\n"
           "\tExample: pwsealtool -k <access_key> -e <input_filename>\n"
           "      Encrypts <input_filename> and creates the encrypted file "
           "$KESTRIONDIR/etc/passwd_file\n"
           "\tExample: pwsealtool -k <access_key> -d <output_filename>\n"
           "      Decrypts the file $KESTRIONDIR/etc/passwd_file and saves the decrypted output in "
           "<output_filename>\n";
}

std::string not_opened(const std::string &path) {
    return "Cannot open " + path + ". Check the path and its permissions.\n";
}

std::string not_read(const std::string &what) {
    return "Reading failed (file or system error number: " + what +
           "). Check that the file exists and that you may read it.\n";
}

std::string malformed(const std::string &path) {
    return path +
           " is not a password text. Every line needs exactly four words and a line feed at its end.\n";
}

std::string not_written(const std::string &path) {
    return "Cannot write " + path +
           ". Check the permissions of its directory and the free space, then run the command again: "
           "the file may be incomplete.\n";
}

class Command : public testing::Test {
protected:
    staged_tree tree;
    command tool{tree.path()};
    std::string plain = tree.at("plain");
    std::string out = tree.at("out");

    void SetUp() override { tree.write("plain", password_text); }

    void expect(const std::vector<std::string> &arguments, const std::string &words, int status) {
        const outcome o = tool.run(arguments);
        std::string shown = testing::PrintToString(arguments);
        EXPECT_EQ(o.err, words) << shown;
        EXPECT_EQ(o.status, status) << shown;
        EXPECT_EQ(o.signal, 0) << shown;
        EXPECT_EQ(o.out, "") << shown;
    }
    void seal(const std::string &key = "opensesame") { expect({"-k", key, "-e", plain}, "", 0); }
};

TEST_F(Command, TheSurroundingsComeBeforeTheOptions) {
    for (const std::vector<std::string> &arguments :
         {std::vector<std::string>{}, {"-x"}, {"-k", "k", "-e", plain}}) {
        tool.unset("KESTRIONDIR");
        expect(arguments, "KESTRIONDIR env variable is not set\n", 1);
        tool.set("KESTRIONDIR", "/nowhere");
        expect(arguments, "The path /nowhere does not exist, errno=2\n", 1);
        tool.set("KESTRIONDIR", tree.at("etc")); // a directory without catalogues
        expect(arguments, "Failed to load messages\n", 1);
    }
}

TEST_F(Command, ABadOptionGetsTheUsageText) {
    const std::vector<std::string> cases[] = {
        {},
        {"-k", "abc"},
        {"-e", ""},
        {"-d", ""},
        {"-e", plain, "-e", ""},
        {"-ex", plain},
        {"-dx", plain},
        {"-", plain},
        {"", plain},
        {"e", plain},
        {"-version"},
        {"-x", plain},
        {"-e"},
        {"-e", plain, "-k"},
        {"-e", plain, plain},
    };
    for (const auto &arguments : cases)
        expect(arguments, usage_text(), 255);
    EXPECT_FALSE(tree.holds("etc/passwd_file"));
}

TEST_F(Command, NamesAndKeysHaveTheirLongestLength) {
    const std::string name255 = std::string(255, 'n');
    expect({"-e", name255}, not_opened(name255) + not_read(name255), 1);
    expect({"-d", name255 + "n"}, "file name (" + name255 + "n) too long\n", 1);
    expect({"-k", std::string(25, 'k'), "-e", plain},
           "Maximum access key length exceeded 24 characters\n", 255);
    seal(std::string(24, 'k'));
    expect({"-d", out, "-k", std::string(24, 'k')}, "", 0);
    EXPECT_EQ(tree.read("out"), password_text);
}

TEST_F(Command, TheLastOfTheOptionsDecides) {
    seal("-e"); // a key may look like an option
    const std::string sealed = tree.sealed();
    expect({"-k", "wrong and longer", "-e", "missing", "-d", out, "-k", "-e"}, "", 0);
    EXPECT_EQ(tree.read("out"), password_text);
    EXPECT_EQ(tree.sealed(), sealed);
    expect({"-d", tree.at("other"), "-e", plain}, "", 0);
    EXPECT_FALSE(tree.holds("other"));
}

TEST_F(Command, WithoutAKeyTheEmptyKeyIsMeant) {
    expect({"-e", plain}, "", 0);
    expect({"-k", "", "-d", out}, "", 0);
    expect({"-d", out}, "", 0);
    EXPECT_EQ(tree.read("out"), password_text);
}

TEST_F(Command, AnEmptyTextAndLinesBehindTheLastLineFeedAreSealedToo) {
    tree.write("plain", "");
    seal();
    EXPECT_EQ(tree.sealed().size(), 16u + 32 + 16 + 2 + 2 + 29);
    expect({"-k", "opensesame", "-d", out}, "", 0);
    EXPECT_EQ(tree.read("out"), "");
    tree.write("plain", "no line at all, and so nothing to object to");
    seal();
    expect({"-k", "opensesame", "-d", out}, "", 0);
    EXPECT_EQ(tree.read("out"), "no line at all, and so nothing to object to");
}

TEST_F(Command, OnlyTheFirst64000BytesAreRead) {
    std::string text;
    while (text.size() < 70000)
        text += std::string(1000, ' ') + "a b c d\n";
    tree.write("plain", text);
    seal("short key");
    EXPECT_EQ(tree.sealed().size(), 64016u + 81);
    expect({"-k", "short key", "-d", out}, "FATAL error! password file is damaged\n", 255);

    const struct {
        size_t size;
        const char *key;
        bool readable;
    } cases[] = {{63903, "short key", true},
                 {63904, "short key", false},
                 {63887, "a key of 20 characte", true},
                 {63888, "a key of 20 characte", false}};
    for (const auto &c : cases) {
        tree.write("plain", text.substr(0, c.size));
        unlink(out.c_str());
        seal(c.key);
        const outcome o = tool.run({"-k", c.key, "-d", out});
        EXPECT_EQ(o.status == 0 && tree.read("out") == text.substr(0, c.size), c.readable)
            << c.size;
    }
}

TEST_F(Command, AWrongKeyWritesNothing) {
    seal("abcdefghijklm");
    const std::string words =
        "The access key is not the one that the file was sealed with. Nothing was written.\n";
    for (const char *key :
         {"", "abcdefghijkl", "abcdefghijklX"}) // 12 characters make the same cipher key
        expect({"-k", key, "-d", out}, words, 1);
    EXPECT_FALSE(tree.holds("out"));
}

TEST_F(Command, AMalformedTextLeavesTheSealedFileAsItWas) {
    seal();
    const std::string before = tree.sealed();
    tree.write("plain", "a b c d\ne f g\n");
    expect({"-e", plain},
           "Format Error: There are less than four tokens on this line. Add what is missing.\n"
           "start=e\nLine:2: Error: Incorrect password file format\nDATA=a\n" +
               malformed(plain),
           255);
    std::string lines;
    for (int i = 0; i < 102; ++i)
        lines += "a b c d\n";
    tree.write("plain", lines);
    expect({"-e", plain},
           "Line:102: Error: Incorrect password file format\nDATA=a\n" + malformed(plain), 255);
    EXPECT_EQ(tree.sealed(), before);
}

TEST_F(Command, AnInputThatCannotBeReadIsTold) {
    expect({"-e", "missing"}, not_opened("missing") + not_read("missing"), 1);
    expect({"-e", tree.path()}, not_read("21") + not_read(tree.path()), 1); // EISDIR
    expect({"-d", out}, not_opened(tree.sealed_path()) + not_read(tree.sealed_path()), 1);
}

TEST_F(Command, ADamagedSealedFileIsTold) {
    seal();
    const std::string good = tree.sealed();
    for (const std::string &bytes : {std::string(), std::string("nonsense"), good.substr(0, 80)}) {
        tree.write("etc/passwd_file", bytes);
        expect({"-k", "opensesame", "-d", out}, "FATAL error! password file is damaged\n", 255);
    }
    // A payload that is not a whole number of blocks, and the same of an access key.
    const std::string failed =
        "Unsealing failed. The sealed file is damaged; restore it from a backup "
        "or seal the passwords again.\n";
    tree.write("etc/passwd_file", good.substr(1));
    outcome o = tool.run({"-k", "opensesame", "-d", out});
    EXPECT_EQ(o.status, 1);
    EXPECT_NE(o.err.find("OpenSSL:"), std::string::npos) << o; // the provider's own words first
    EXPECT_EQ(o.err.substr(o.err.size() - failed.size()), failed);
    std::string bad_key = good;
    bad_key[good.size() - 46] = static_cast<char>(bad_key[good.size() - 46] ^ 1);
    tree.write("etc/passwd_file", bad_key);
    o = tool.run({"-k", "opensesame", "-d", out});
    EXPECT_EQ(o.status, 255);
    EXPECT_NE(o.err.find("OpenSSL:"), std::string::npos) << o;
    EXPECT_FALSE(tree.holds("out"));
}

// The bytes on the page were made by openssl alone.
TEST_F(Command, TheExampleOfTheFormatPageOpens) {
    std::ifstream page(KESTRION_SOURCE_DIR "/docs/formats/sealed-file.md");
    std::string bytes;
    bool in_example = false;
    for (std::string line; std::getline(page, line);) {
        in_example = in_example || line == "## Example";
        std::istringstream words(in_example && line.starts_with("    ") ? line.substr(0, 51) : "");
        for (std::string word; words >> word;)
            bytes += static_cast<char>(std::stoi(word, nullptr, 16));
    }
    tree.write("etc/passwd_file", bytes);
    expect({"-k", "key", "-d", out}, "", 0);
    EXPECT_EQ(tree.read("out"), "a b c d\n");
}

TEST_F(Command, AnOutputKeepsItsModeAndANewOneGetsTheUsual) {
    struct stat status;
    tool.first([] { umask(027); });
    seal();
    ASSERT_EQ(stat(tree.sealed_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    chmod(tree.sealed_path().c_str(), 0600);
    seal();
    ASSERT_EQ(stat(tree.sealed_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
}

TEST_F(Command, AnOutputThatCannotBeOpenedIsTold) {
    tree.make("etc/passwd_file");
    expect({"-e", plain}, not_opened(tree.sealed_path()) + not_written(tree.sealed_path()), 255);
    std::filesystem::remove(tree.sealed_path());
    std::filesystem::create_symlink("nothing here", tree.sealed_path());
    expect({"-e", plain}, not_opened(tree.sealed_path()) + not_written(tree.sealed_path()), 255);
}

// The paths come from the environment as it is, the messages and the directory of pw_init from the
// registry, which drops a value over 256 characters in favour of a configuration file.
TEST_F(Command, TheTwoLooksAtTheDirectoryDiffer) {
    std::string deep = tree.path();
    while (deep.size() <= 256)
        deep += "/and_deeper_still";
    std::filesystem::create_directories(deep + "/etc");
    tool.set("KESTRIONDIR", deep);
    expect({"-e", plain}, "Failed to load messages\n", 1);

    std::ofstream(deep + "/etc/kestrion.rc") << "KESTRIONDIR " << tree.path() << "\n";
    expect({"-e", plain}, "file name (" + deep + "/etc/passwd_file) too long\n", 1);
    expect({}, usage_text(), 255);
}

// Every setting of the sample switched on: the language of messages is what shows here.
TEST_F(Command, TheSampleOfTheConfigurationIsUnderstood) {
    std::ifstream sample(KESTRION_SOURCE_DIR "/env/kestrion.rc.sample");
    std::string settings;
    for (std::string line; std::getline(sample, line);)
        settings +=
            (line.size() > 1 && line[0] == '#' && line[1] != ' ' ? line.substr(1) : line) + "\n";
    tree.write("etc/kestrion.rc", settings);
    const outcome o = tool.run({});
    EXPECT_EQ(o.err.find("Aufruf: pwsealtool"), 0u) << o;
    EXPECT_EQ(o.status, 255);
}

TEST_F(Command, WithoutAProviderTheFirstCallThatNeedsItTellsWhy) {
    seal();
    const std::string before = tree.sealed();
    unlink(tree.at("lib/libisi.so.1").c_str());
    outcome o = tool.run({"-e", plain});
    EXPECT_EQ(o.status, 255);
    EXPECT_EQ(o.err.find("cannot access " + tree.at("lib/libisi.so.1")), 0u) << o;
    EXPECT_NE(o.err.find("ISI_RAND_BYTES failed\nNo internal key could be made."),
              std::string::npos)
        << o;
    o = tool.run({"-k", "opensesame", "-d", out});
    EXPECT_EQ(o.status, 255);
    EXPECT_EQ(o.err.find("cannot access "), 0u) << o;
    EXPECT_EQ(tree.sealed(), before);
    EXPECT_FALSE(tree.holds("out"));
}

// The bridge finds callbacks by name in the running program: its symbols are exported.
TEST_F(Command, CallbacksAreFoundInTheCommandItself) {
    const std::string log = tree.at("log");
    tool.set("ISI_ERR_FILE", log).set("ISI_ERR_CALLBACK", "isi_build_version_major");
    seal();
    EXPECT_EQ(tree.read("log").find("cannot get address"), std::string::npos) << tree.read("log");
    tool.set("ISI_ERR_CALLBACK", "no_such_function");
    seal();
    EXPECT_NE(tree.read("log").find("cannot get address"), std::string::npos);
}

} // namespace
