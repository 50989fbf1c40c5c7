#include "isi/diagnostics.h"
#include "isi/installation.h"

#include <errno.h>

namespace {

const std::string fakes = FAKES "/";

isi_err_stack *thread_stack() { return &isi_shared_thread_globals; }

std::string lines;
int callback_answer;

int keep_line(const char *line) {
    lines += std::string(line) + "\n";
    return callback_answer;
}

void *no_memory(size_t) { return nullptr; }

} // namespace

TEST(ErrorStack, TextRunsFromTheNewestWithoutPlaces) {
    isi_err_stack_push(thread_stack(), ISI_ERR_MESSAGE, 0, "first");
    isi_err_stack_push(thread_stack(), ISI_ERR_PLACE, 0, "place");
    isi_err_stack_push(thread_stack(), ISI_ERR_ERRNO, ENOENT, nullptr);
    isi_err_stack_push(thread_stack(), ISI_ERR_ERRNO_2, EACCES, "open");
    isi_err_stack_push(thread_stack(), ISI_ERR_DLERROR, 0, nullptr);
    isi_err_stack_push(thread_stack(), ISI_ERR_MESSAGE, 7, "last");
    EXPECT_STREQ(isi_get_err('|'), "last: (7)||open: Permission denied (errno 13)|"
                                   "No such file or directory (errno 2)|first");
    EXPECT_STREQ(isi_get_err('|'), "");

    isi_err_stack_push(thread_stack(), ISI_ERR_PLACE, 0, "place");
    EXPECT_EQ(isi_err_stack_text(thread_stack(), '|'), nullptr);
}

TEST(ErrorStack, TextLivesUntilTheNextOne) {
    isi_err_stack_push(thread_stack(), ISI_ERR_MESSAGE, 0, "text");
    const char *text = isi_get_err('\n');
    isi_err_stack_reset(thread_stack());
    isi_err_stack_push(thread_stack(), ISI_ERR_MESSAGE, 0, "other");
    EXPECT_STREQ(text, "text");
    isi_clear_err();
    EXPECT_EQ(isi_shared_thread_globals.first, nullptr);
    EXPECT_EQ(isi_shared_thread_globals.text, nullptr);
}

TEST(ErrorStack, ItemsAreMeasuredAsTheyAreWritten) {
    isi_err_stack *stack = isi_err_stack_new();
    isi_err_stack_push(stack, ISI_ERR_ERRNO, ENOENT, "x");
    const char wanted[] = "x: No such file or directory (errno 2);";
    EXPECT_EQ(isi_err_item_text(stack->last, nullptr, ';'), sizeof wanted - 1);
    char text[64] = {};
    EXPECT_EQ(isi_err_item_text(stack->last, text, ';'), sizeof wanted - 1);
    EXPECT_STREQ(text, wanted);
    isi_err_stack_free(&stack);
    EXPECT_EQ(stack, nullptr);
}

TEST(ErrorStack, ProviderCodesAreWordedAndLabelled) {
    struct {
        const char *provider;
        const char *text; // with the codes 8, 9 and 10 of the three kinds
    } const cases[] = {{"version_1_2.so", "(OpenSSL:10)|line down (OpenSSL:9)"},
                       {"version_1_3.so", "(SecKit:10)|line down (SecKit:9)"}};
    for (const auto &row : cases) {
        installation here(fakes + row.provider);
        ASSERT_EQ(isi_init(), 0);
        isi_err_stack_push(thread_stack(), ISI_ERR_SSL, 9, nullptr);
        isi_err_stack_push(thread_stack(), ISI_ERR_KM, 10, nullptr);
        EXPECT_STREQ(isi_get_err('|'), row.text);
        isi_cleanup();
    }
    isi_err_stack_push(thread_stack(), ISI_ERR_CRYPTO, 8, "unbound");
    EXPECT_STREQ(isi_get_err('|'), "unbound: (OpenSSL:8)");
}

// The wording grows between measuring and writing, and shrinks again.
TEST(ErrorStack, AChangingWordingStaysInItsBlock) {
    installation here(fakes + "version_1_2.so");
    ASSERT_EQ(isi_init(), 0);
    isi_err_stack_push(thread_stack(), ISI_ERR_CRYPTO, 8, nullptr);
    EXPECT_STREQ(isi_get_err('|'), "brief (OpenSSL:8)");
}

TEST(ErrorStack, LosesItemsAndTextsWithoutMemory) {
    isi_err_stack_push(thread_stack(), ISI_ERR_MESSAGE, 0, "kept");
    isi_set_memfunc(no_memory, nullptr);
    isi_err_stack_push(thread_stack(), ISI_ERR_MESSAGE, 0, "lost");
    EXPECT_EQ(isi_err_stack_new(), nullptr);
    EXPECT_EQ(isi_err_stack_text(thread_stack(), '|'), nullptr);
    isi_set_memfunc(malloc, nullptr);
    EXPECT_STREQ(isi_get_err('|'), "kept");
}

TEST(LogErr, PushesCausePlaceAndMessage) {
    isi_set_err_callback(keep_line);
    lines.clear();
    callback_answer = 1;
    errno = ENOENT;
    isi_log_err(ISI_ERR_ERRNO, "stat", -1, "caller", "some/where/file.c", 12, "cannot find %s",
                "it");
    EXPECT_EQ(lines, logged("No such file or directory (errno 2)") +
                         logged("stat()=-1 in caller() at file.c:12") + logged("cannot find it"));
    EXPECT_STREQ(isi_get_err('|'), "cannot find it|No such file or directory (errno 2)");

    isi_log_err(ISI_ERR_SSL, nullptr, 44, "caller", "file.c", 1, nullptr);
    EXPECT_STREQ(isi_get_err('|'), "(OpenSSL:44)");
}

TEST(Trace, ACallbackMayKeepALineFromTheFile) {
    installation here;
    isi_set_trace_level(1);
    isi_set_trace_file(here.at("trace").c_str());
    isi_set_trace_callback(keep_line);
    lines.clear();
    callback_answer = 1;
    isi_trace(1, "held %s", "back");
    callback_answer = 0;
    isi_trace(1, "let %s", "through");
    isi_trace(2, "too detailed");
    EXPECT_EQ(lines, logged("held back") + logged("let through"));
    EXPECT_EQ(here.read("trace"), logged("let through"));

    isi_set_trace_file("/nowhere/trace"); // lost without a word
    isi_trace(1, "lost");
    isi_set_trace_file(nullptr);
    isi_trace(1, "callback only");
    EXPECT_EQ(lines, logged("held back") + logged("let through") + logged("lost") +
                         logged("callback only"));
}

TEST(Trace, LinesAreCutAndEnded) {
    installation here;
    isi_set_err_file(here.at("log").c_str());
    isi_err("%s", std::string(2000, 'x').c_str());
    std::string line = here.read("log");
    EXPECT_EQ(line.size(), 512u); // 511 bytes and the line end
    EXPECT_EQ(line.substr(509), "xx\n");
}

// A finished line is printed as a format with itself as the argument; one without directives is
// printed as it is.
TEST(Trace, DirectivesInALineDoNoHarm) {
    installation here;
    isi_set_err_file(here.at("log").c_str());
    isi_err("%s", "100%% %n %d");
    EXPECT_EQ(here.read("log"), logged("100% %n %d"));
    isi_err("%s", "<%s>");
    std::string whole = logged("<%s>");
    whole.pop_back();
    EXPECT_EQ(here.read("log"), logged("100% %n %d") + logged("<" + whole + ">"));
}

TEST(Trace, StandardStreamsHaveNames) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    isi_set_err_file("stdout");
    isi_err("out");
    isi_set_err_file("stderr");
    isi_err("err");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), logged("out"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), logged("err"));
}

TEST(Settings, OwnedTextsAreReplacedSafely) {
    char *text = nullptr;
    EXPECT_EQ(isi_setstr(&text, "one"), 0);
    char *first = text;
    EXPECT_EQ(isi_setstr(&text, "one"), 0);
    EXPECT_EQ(text, first);
    EXPECT_EQ(isi_setstr(&text, text + 1), 0); // a part of itself
    EXPECT_STREQ(text, "ne");
    isi_set_memfunc(no_memory, nullptr);
    EXPECT_EQ(isi_setstr(&text, "two"), 2);
    EXPECT_STREQ(text, "ne");
    isi_set_memfunc(malloc, nullptr);
    EXPECT_EQ(isi_setstr(&text, nullptr), 0);
    EXPECT_EQ(text, nullptr);
}

TEST(Settings, EachEmptiesTheErrorStack) {
    for (void (*setter)() :
         {+[] { isi_set_trace_level(0); }, +[] { isi_set_trace_file(nullptr); },
          +[] { isi_set_trace_callback(nullptr); }, +[] { isi_set_err_file(nullptr); },
          +[] { isi_set_err_callback(nullptr); }, +[] { isi_build_version_major(); },
          +[] { isi_build_version_minor(); }}) {
        isi_err_stack_push(thread_stack(), ISI_ERR_MESSAGE, 0, "old");
        setter();
        EXPECT_STREQ(isi_get_err('|'), "");
    }
    EXPECT_EQ(isi_use_threads(4), 0);
    EXPECT_EQ(isi_use_threads(0), 4);
}
