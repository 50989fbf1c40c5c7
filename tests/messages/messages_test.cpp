// Lookups of messages: statuses, the English stand-in, the fixed texts, and the slots of a program.

#include "messages/catalogue_files.h"
#include "support/failing_malloc.h"
#include "support/temp_dir.h"
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_env.h>
#include <kestrion/message_ranges.h>
#include <kestrion/message_slots.h>
#include <kestrion/messages.h>
#include <kestrion/value_heap.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

int forced_start = 0; // what the start of the locale answers, when it is not 0

} // namespace

extern "C" int __real_chkglsinit(void);
extern "C" int __wrap_chkglsinit(void) {
    return forced_start != 0 ? forced_start : __real_chkglsinit();
}

namespace {

constexpr message_range test_ranges[] = {
    {1, 50000, 50099, "own.qem"}, {1, 60000, 60000, "missing.qem"}, {0, 0, 0, nullptr}};

struct Messages : testing::Test {
    void SetUp() override {
        for (const char *variable : {"DBLANG", "DBNLS", "LANG", "CLIENT_LOCALE", "QVT_FREE_FD"})
            unsetenv(variable);
        setenv("KESTRIONDIR", dir.path().c_str(), 1);
        forced_start = 0;
        new_gls_env.init_flags = 1;
        _mfqvt = test_ranges;
        install("en_us/0333", "os.qem",
                {{1202, "press\n"},
                 {1203, "file\n"},
                 {1204, "terminal\n"},
                 {32765, "No file '%s'\n"},
                 {32766, "No number %d of %s\n"}});
        install("en_us/0333", "own.qem", {{-50001, "English one\n"}, {-50000, "English two\n"}});
    }

    void install(const char *place, const char *leaf, const std::map<int32_t, std::string> &texts) {
        dir.write(std::string("msg/") + place + "/" + leaf, catalogue_bytes(true, texts));
    }

    int32_t get(int32_t number, int32_t size = sizeof buffer, const char *locale = nullptr) {
        memset(buffer, '#', sizeof buffer);
        length = -1;
        return rgetlmsg_gls(number, buffer, size, &length, locale);
    }

    temp_dir dir;
    char buffer[200];
    int32_t length = -1;
};

int open_descriptors() {
    int count = 0;
    for (int fd = 0; fd < 100; ++fd)
        count += fcntl(fd, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

} // namespace

TEST_F(Messages, BufferGetsWhatFits) {
    const struct {
        int32_t size, status;
        const char *wanted;
    } rows[] = {
        {100, 0, "English one\n"},
        {13, 0, "English one\n"},
        {12, err_message_too_long, "English one"},
        {8, err_message_too_long, "English"},
        {1, err_message_too_long, ""},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(get(-50001, row.size), row.status) << row.size;
        EXPECT_STREQ(buffer, row.wanted);
        EXPECT_EQ(length, 12) << "the true length";
        EXPECT_EQ(buffer[row.size], '#');
    }
    for (const int32_t size : {0, -1, INT32_MIN}) {
        EXPECT_EQ(get(-50001, size), err_message_too_long);
        EXPECT_EQ(buffer[0], '#');
    }
}

TEST_F(Messages, UnknownMessagesGetAStandInText) {
    EXPECT_EQ(get(-50002), err_no_such_message);
    EXPECT_STREQ(buffer, "No number -50002 of %s\n") << "a directive too many is printed as it is";
    EXPECT_EQ(get(60000), err_catalogue_not_opened);
    EXPECT_STREQ(buffer, "No file 'missing.qem'\n");
    EXPECT_EQ(get(-50002, 9), err_no_such_message);
    EXPECT_STREQ(buffer, "Unknown ")
        << "the catalogue's text does not fit, so the fixed one is cut";
    EXPECT_EQ(get(-50002, 0), err_no_such_message);
    EXPECT_EQ(buffer[0], '#');

    dir.write("msg/en_us/0333/own.qem", "no catalogue");
    rmsg_init();
    EXPECT_EQ(get(-50001), err_catalogue_magic);
    EXPECT_STREQ(buffer, "No number -50001 of %s\n");
}

TEST_F(Messages, StandInTextsThatAreMissingAreFixed) {
    install("en_us/0333", "os.qem", {{1202, "press\n"}});
    EXPECT_EQ(get(-50002), err_no_such_message);
    EXPECT_STREQ(buffer, "Unknown error message number '-50002'\n");
    EXPECT_EQ(get(32766), -1);
    EXPECT_EQ(get(32765), err_no_such_message);
    unlink(dir.at("msg/en_us/0333/os.qem").c_str());
    rmsg_init();
    EXPECT_EQ(get(60000), err_catalogue_not_opened);
    EXPECT_STREQ(buffer, "Cannot open file 'missing.qem'\n");
    EXPECT_EQ(get(32765), -1);
    EXPECT_EQ(buffer[0], '#') << "untouched";
    EXPECT_EQ(get(32766), err_catalogue_not_opened);
    EXPECT_STREQ(buffer, "Cannot open file 'os.qem'\n");
}

// Each of the two texts is missing in a way that asks for the other one.
TEST_F(Messages, StandInTextsInTwoFilesDoNotAskForEachOtherForEver) {
    const message_range apart[] = {
        {1, 32765, 32765, "own.qem"}, {1, 32766, 32766, "missing.qem"}, {0, 0, 0, nullptr}};
    _mfqvt = apart;
    EXPECT_EQ(get(5), err_no_such_message);
    EXPECT_STREQ(buffer, "Unknown error message number '5'\n");
    EXPECT_EQ(get(32766), err_catalogue_not_opened);
    EXPECT_STREQ(buffer, "Cannot open file 'missing.qem'\n");
}

TEST_F(Messages, EnglishStandsInForAMissingMessage) {
    setenv("DBLANG", "mine", 1);
    install("mine", "own.qem", {{-50000, "eigene zwei\n"}});
    EXPECT_EQ(get(-50000), 0);
    EXPECT_STREQ(buffer, "eigene zwei\n");
    EXPECT_EQ(get(-50001), 0);
    EXPECT_STREQ(buffer, "English one\n");
    EXPECT_STREQ(CheckGenInit()->catalogues[0].leaf, "") << "the next lookup opens a file anew";
    // The stand-in's locale ended the user's directory for the rest of the process.
    EXPECT_EQ(get(-50000), 0);
    EXPECT_STREQ(buffer, "English two\n");
    rmsg_init();
    EXPECT_EQ(get(-50000), 0);
    EXPECT_STREQ(buffer, "eigene zwei\n");
}

TEST_F(Messages, EnglishUsersGetNoSecondSearch) {
    setenv("DBLANG", "en_US.8859-1", 1);
    install("en_US.8859-1", "own.qem", {{-50000, "two\n"}});
    EXPECT_EQ(get(-50001), err_no_such_message) << "though en_us/0333 has it";
    EXPECT_EQ(get(-50000), 0);
    EXPECT_STREQ(buffer, "two\n");
}

TEST_F(Messages, FailedLocaleStartIsToldInFixedWords) {
    const struct {
        int code;
        const char *wanted;
    } rows[] = {
        {-1211, "Out of memory."},
        {-1212, "Date conversion format must contain a month, day, and year component."},
        {-23101, "Unable to load locale categories."},
        {-23102, "Memory allocation failed during locale processing."},
        {-23104, "Error opening required code-set conversion object file."},
        {-23108, "An error occurred during locale structure creation."},
        {-23110, "An error occurred during environment variable processing."},
        {-23111, "Internal error.  Illegal argument for locale initialization."},
        {-23115, "Code sets of the locale categories are not the same."},
    };
    ASSERT_NE(ggetenv("KESTRIONDIR"), nullptr); // a start loads the registry before it can fail
    for (const auto &row : rows) {
        forced_start = row.code;
        EXPECT_EQ(get(-50001), row.code);
        EXPECT_STREQ(buffer, row.wanted);
        EXPECT_EQ(get(-50001, 8), row.code);
        EXPECT_EQ(buffer, std::string(row.wanted, 7));
    }
    forced_start = -23109;
    EXPECT_EQ(get(-50001), -23109);
    EXPECT_EQ(buffer[0], '#') << "a failure without a fixed text leaves the buffer alone";
    EXPECT_EQ(rld_lmsg(-50001), nullptr);
    forced_start = 4;
    EXPECT_EQ(get(-50001), 0) << "a positive answer does not stop the search";
}

TEST_F(Messages, DescriptorsStayOpenOnlyForLargeFiles) {
    const int before = open_descriptors();
    get(-50001);
    get(-50002);
    EXPECT_EQ(open_descriptors(), before);
    dir.write("msg/en_us/0333/missing.qem", catalogue_bytes(true, {{60000, "x\n"}}, 300000));
    EXPECT_EQ(get(60000), 0);
    EXPECT_EQ(get(60000), 0);
    EXPECT_EQ(open_descriptors(), before + 1);
    setenv("QVT_FREE_FD", "1", 1);
    for (const int32_t number : {60000, -50001, -50002, 60001}) {
        get(number);
        EXPECT_EQ(open_descriptors(), before) << number;
    }
    EXPECT_EQ(get(-50001), 0);
    EXPECT_STREQ(CheckGenInit()->catalogues[0].leaf, "") << "forgotten, not just closed";
}

TEST_F(Messages, ExplicitFileServesAllNumbers) {
    const std::string deep =
        dir.write(std::string(150, 'a') + "/" + std::string(150, 'b') + "/x.qem",
                  catalogue_bytes(false, {{7, "explicit\n"}}));
    EXPECT_EQ(get(-50001), 0);
    ASSERT_EQ(_setmsgfile(deep.c_str()), 0);
    EXPECT_EQ(get(-50001), err_no_such_message);
    EXPECT_STREQ(buffer, "Unknown error message number '-50001'\n");
    EXPECT_EQ(get(7), 0);
    EXPECT_STREQ(buffer, "explicit\n");
    ASSERT_EQ(_setmsgfile("/nowhere"), 0);
    EXPECT_EQ(get(7), err_catalogue_not_opened);
    EXPECT_STREQ(buffer, "Cannot open file '/nowhere'\n");
    ASSERT_EQ(_setmsgfile(nullptr), 0);
    EXPECT_EQ(get(-50001), 0);
}

TEST_F(Messages, SeekingStandsAtTheText) {
    int fd = -1;
    int64_t position = 0;
    EXPECT_EQ(get(-50000), 0); // leaves the file in memory, without a descriptor
    EXPECT_EQ(lrseekmsg_gls(-50000, &length, &position, nullptr, &fd), 0);
    EXPECT_EQ(lrseekmsg_gls(-50000, &length, &position, nullptr, &fd), 0) << "found in the window";
    EXPECT_EQ(lseek(fd, 0, SEEK_CUR), position);
    EXPECT_EQ(get(-50001), 0);
    EXPECT_EQ(lseek(fd, 0, SEEK_CUR), position) << "a lookup in the same file leaves it alone";
    EXPECT_EQ(read(fd, buffer, 12), 12);
    EXPECT_EQ(std::string(buffer, 12), "English two\n");
    FILE *stream = nullptr;
    ASSERT_EQ(lrseekmsg(-50001, &length, &stream), 0);
    EXPECT_NE(fgets(buffer, sizeof buffer, stream), nullptr);
    EXPECT_STREQ(buffer, "English one\n");
    fclose(stream);
    EXPECT_GE(fcntl(fd, F_GETFD), 0) << "the catalogue's own descriptor stays open";
    EXPECT_EQ(lrseekmsg(60000, &length, &stream), err_catalogue_not_opened);
    EXPECT_EQ(stream, nullptr);
}

TEST_F(Messages, SlotsAreFilledInOrderAndLoseTheLineEnd) {
    const char *first = "first";
    const char *second = "second";
    const char *third = "third";
    const message_slot rows[] = {
        {&first, -50001}, {&second, -50002}, {&third, -50000}, {nullptr, 0}};
    EXPECT_EQ(rldmgar(rows), -50002);
    EXPECT_STREQ(first, "English one");
    EXPECT_STREQ(second, "second");
    EXPECT_STREQ(third, "third");

    EXPECT_STREQ(s_unknown, "Unknown error message number '%d'\n");
    EXPECT_EQ(rldinit(), 0);
    EXPECT_STREQ(s_unknown, "No number %d of %s");
    EXPECT_STREQ(s_presscr, "press");
    EXPECT_STREQ(s_msgfile, "file");
    EXPECT_STREQ(s_termtyp, "terminal");
    unlink(dir.at("msg/en_us/0333/os.qem").c_str());
    rmsg_init();
    EXPECT_EQ(rldinit(), 32766);
}

TEST_F(Messages, LoadedTextsOfAnyLengthLiveInTheStringHeap) {
    const std::string longest(32766, 'x');
    install("en_us/0333", "own.qem", {{-50003, longest + "\n"}, {-50002, "\n"}, {-50001, "ab\n"}});
    value_heap *other = rhpstart("other");
    currheap = other;
    const char *text = rld_lmsg(-50003);
    EXPECT_EQ(std::string(text), longest);
    EXPECT_STREQ(rld_lmsg_gls(-50002, nullptr), "");
    const char *small = rldmsg(-50001);
    EXPECT_STREQ(small, "ab");
    EXPECT_EQ(isfromheap(small, get_strheap()), 1);
    EXPECT_EQ(currheap, other);
    EXPECT_EQ(rld_lmsg(-50009), nullptr);
    EXPECT_EQ(text[32765], 'x') << "earlier texts stay";
    rhpfree(other);
}

// Each refusal has a process of its own: what an earlier attempt made would spare a later one its
// allocations.
TEST_F(Messages, EveryFailingAllocationGivesNullOrTheText) {
    install("en_us/0333", "own.qem", {{-50003, std::string(2000, 'x') + "\n"}});
    ASSERT_NE(ggetenv("KESTRIONDIR"),
              nullptr); // the registry's own allocations are not the subject
    enum { LOADED, NULL_TEXT, NO_RECOVERY, NOT_REFUSED };
    const auto outcome = [](size_t k) {
        const pid_t child = fork();
        if (child == 0) {
            bool happened = false;
            const char *text = nullptr;
            {
                failing_malloc::scope refused(k);
                text = rld_lmsg(-50003);
                happened = refused.happened();
            }
            const char *again = rld_lmsg(-50003);
            _exit(again == nullptr || strlen(again) != 2000 ? NO_RECOVERY
                  : !happened                               ? NOT_REFUSED
                  : text == nullptr                         ? NULL_TEXT
                                                            : LOADED);
        }
        int status = -1;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    int nulls = 0;
    int result = outcome(1);
    for (size_t k = 1; result != NOT_REFUSED; result = outcome(++k)) {
        ASSERT_TRUE(result == LOADED || result == NULL_TEXT)
            << "allocation " << k << ": " << result;
        nulls += result == NULL_TEXT ? 1 : 0;
    }
    // Block, scratch, heap, longer scratch and text; the directory's name is asked for again, and
    // without its image the file is read by windows.
    EXPECT_EQ(nulls, 5);
}
