#include "environment.h"
#include "support/failing_malloc.h"
#include <kestrion/config_files.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/first_load.h>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

namespace {

class Memory : public Environment {};

// The list of ignored names and its array come first, then the entries: an array, 344 names and the
// 12 defaults.
constexpr size_t first_of_the_seeding = 3;
constexpr size_t last_of_the_seeding = 2 + 1 + 344 + 12;

} // namespace

// Fails as an allocation does. The text is the environment's from here on, and no block of the
// library's any more.
extern "C" int __wrap_putenv(char *text) {
    void *own = malloc(1);
    if (own == nullptr)
        return -1;
    free(own);
    const std::string setting = text;
    const size_t equals = setting.find('=');
    free(text);
    return setenv(setting.substr(0, equals).c_str(), setting.c_str() + equals + 1, 1);
}

TEST_F(Memory, NoneForTheBuiltInDefaultsEndsTheProcessWithoutAWord) {
    for (const size_t nth :
         {first_of_the_seeding, first_of_the_seeding + 1, size_t{200}, last_of_the_seeding}) {
        EXPECT_EXIT(
            {
                const failing_malloc::scope refused(nth);
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

    size_t nth = last_of_the_seeding + 1;
    for (;; ++nth) {
        setenv("LC_CTYPE", "", 1); // present and empty: replaced by putenv
        const failing_malloc::scope refused(nth);
        const int status = greadenv();
        if (!refused.happened()) {
            EXPECT_EQ(status, 0);
            break;
        }
        EXPECT_EQ(status, err_env_no_memory) << nth;
        EXPECT_STREQ(ggetenv("DBTEMP"), "/tmp") << nth;
        gFreeEVars();
        ASSERT_EQ(refused.live(), 0) << nth;
    }
    // The program's rows 4, the ignored names 22, the paths and files, the locale variables.
    EXPECT_GT(nth - last_of_the_seeding, 41u);
}

TEST_F(Memory, NoneForTheListOfIgnoredNamesLeavesTheRegistryUnloaded) {
    for (const size_t nth : {1u, 2u}) {
        const failing_malloc::scope refused(nth);
        EXPECT_EQ(ggetenv("DBTEMP"), nullptr);
        EXPECT_EQ(gerrno, err_env_no_memory);
        EXPECT_EQ(Kes_EVars, nullptr);
    }
    EXPECT_STREQ(ggetenv("DBTEMP"), "/tmp");
}

TEST_F(Memory, NoneForANewValueKeepsTheOld) {
    ASSERT_EQ(greadenv(), 0);
    // Set and empty counts as no old value.
    for (const char *old : {"old", ""}) {
        ginsenv("W1", old, nullptr);
        const failing_malloc::scope refused(1);
        EXPECT_EQ(ginsenv("W1", "new", nullptr), err_env_no_memory);
        EXPECT_STREQ(ggetenv("W1"), *old != '\0' ? old : nullptr);
    }
}

TEST_F(Memory, NoneForTheEnvironmentFreesTheText) {
    for (const size_t nth : {1u, 2u}) {
        const failing_malloc::scope refused(nth);
        EXPECT_EQ(gfeputenv("W1", "value"), err_env_no_memory);
        EXPECT_TRUE(refused.happened());
        EXPECT_EQ(getenv("W1"), nullptr);
        EXPECT_EQ(refused.live(), 0);
    }
}

TEST_F(Memory, NoneForALongLineLeavesABufferToFree) {
    const std::string file = root.write("file", std::string(300, 'x') + "\n");
    const int descriptor = open(file.c_str(), O_RDONLY);
    size_t size = 128;
    auto *buffer = static_cast<char *>(malloc(size));
    uint32_t line = 0;
    {
        const failing_malloc::scope refused(2);
        EXPECT_EQ(_ggetcfline(descriptor, &buffer, &size, &line), err_env_no_memory);
    }
    EXPECT_EQ(size, 0U);
    free(buffer);
    close(descriptor);
}
