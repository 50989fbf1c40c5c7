#include "environment.h"
#include "failing_memory.h"

#include "env/config_files.h"
#include "env/first_load.h"
#include "env/registry.h"

#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

class Memory : public Environment {
protected:
    void TearDown() override {
        fail_allocation(0);
        Environment::TearDown();
    }
};

// The list of ignored names and its array come first, then the entries: an array, 344 names and the
// 12 defaults.
constexpr int first_of_the_seeding = 3;
constexpr int last_of_the_seeding = 2 + 1 + 344 + 12;

} // namespace

TEST_F(Memory, NoneForTheBuiltInDefaultsEndsTheProcessWithoutAWord) {
    for (const int nth :
         {first_of_the_seeding, first_of_the_seeding + 1, 200, last_of_the_seeding}) {
        EXPECT_EXIT(
            {
                fail_allocation(nth);
                greadenv();
            },
            testing::ExitedWithCode(1), "^$")
            << nth;
    }
}

TEST_F(Memory, NoneAtAnyLaterPointFailsTheLoadAndKeepsWhatThereIs) {
    const env_variable own[] = {{"OWN_1", "default", 0}, {"OWN_2", nullptr, 0}, {nullptr}};
    gsetudenv(own);
    write_system_file("W1 " + std::string(300, 'x') + "\nDBNLS 1\n");
    write_user_file("DBPATH user\nLC_TIME it\n");
    std::string names;
    for (char name = 'A'; name < 'A' + 20; ++name)
        names.append(1, name).append(1, ':');
    setenv("ENVIGNORE", names.c_str(), 1);

    const long held_before = blocks_held();
    int failures = 0;
    for (int nth = last_of_the_seeding + 1;; ++nth) {
        setenv("LC_CTYPE", "", 1); // present and empty: replaced by putenv
        fail_allocation(nth);
        const int status = greadenv();
        if (!allocation_failed()) {
            EXPECT_EQ(status, 0);
            break;
        }
        ++failures;
        fail_allocation(0);
        EXPECT_EQ(status, ENV_NO_MEMORY) << nth;
        EXPECT_STREQ(ggetenv("DBTEMP"), "/tmp") << nth;
        gFreeEVars();
        unsetenv("LC_CTYPE");
        ASSERT_EQ(blocks_held(), held_before) << nth;
    }
    // The program's rows 4, the ignored names 22, the paths and files, the locale variables.
    EXPECT_GT(failures, 40);
}

TEST_F(Memory, NoneForTheListOfIgnoredNamesLeavesTheRegistryUnloaded) {
    for (const int nth : {1, 2}) {
        fail_allocation(nth);
        EXPECT_EQ(ggetenv("DBTEMP"), nullptr);
        EXPECT_EQ(gerrno, ENV_NO_MEMORY);
        EXPECT_EQ(Kes_EVars, nullptr);
    }
    EXPECT_STREQ(ggetenv("DBTEMP"), "/tmp");
}

TEST_F(Memory, NoneForANewValueKeepsTheOld) {
    ASSERT_EQ(greadenv(), 0);
    ginsenv("W1", "old", nullptr);
    fail_allocation(1);
    EXPECT_EQ(ginsenv("W1", "new", nullptr), ENV_NO_MEMORY);
    EXPECT_STREQ(ggetenv("W1"), "old");
    ginsenv("W1", "", nullptr);
    fail_allocation(1);
    EXPECT_EQ(ginsenv("W1", "new", nullptr), ENV_NO_MEMORY);
    EXPECT_EQ(ggetenv("W1"), nullptr); // set and empty counts as no old value
}

TEST_F(Memory, NoneForTheEnvironmentFreesTheText) {
    const long held_before = blocks_held();
    for (const int nth : {1, 2}) {
        fail_allocation(nth);
        EXPECT_EQ(gfeputenv("W1", "value"), ENV_NO_MEMORY);
        EXPECT_TRUE(allocation_failed());
        EXPECT_EQ(getenv("W1"), nullptr);
        EXPECT_EQ(blocks_held(), held_before);
    }
}

TEST_F(Memory, NoneForALongLineLeavesABufferToFree) {
    write_bytes(root + "/file", std::string(300, 'x') + "\n");
    const int descriptor = open((root + "/file").c_str(), O_RDONLY);
    size_t size = 128;
    auto *buffer = static_cast<char *>(malloc(size));
    uint32_t line = 0;
    fail_allocation(2);
    EXPECT_EQ(_ggetcfline(descriptor, &buffer, &size, &line), ENV_NO_MEMORY);
    EXPECT_EQ(size, 0U);
    free(buffer);
    close(descriptor);
}
