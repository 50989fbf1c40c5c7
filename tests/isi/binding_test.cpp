#include "isi/installation.h"

#include "isi/diagnostics.h"

#include <sys/wait.h>

namespace {

const std::string fakes = FAKES "/";

bool is_unbound() {
    for (const isi_functab_row &row : isi_functab)
        if (row.isi_fp.address != nullptr)
            return false;
    return libisiHandle == nullptr && isi_shared_globals.main_handle == nullptr;
}

// Binds nothing, and the first call that fails finds the reason.
void expect_refused(int result, const std::string &reason) {
    EXPECT_EQ(isi_init(), result);
    EXPECT_TRUE(is_unbound());
    EXPECT_EQ(isi_cipher_ctx_new(), nullptr);
    EXPECT_EQ(error_text().substr(0, reason.size()), reason);
    EXPECT_EQ(error_text(), "");
}

} // namespace

TEST(Binding, AMissingDirectoryIsTheReason) {
    unsetenv("KESTRIONDIR");
    expect_refused(1, "please set KESTRIONDIR to enable loading of $KESTRIONDIR/lib/libisi.so.1");
}

TEST(Binding, AMissingFileIsTheReason) {
    installation here;
    expect_refused(1, "cannot access " + here.path() + "\nNo such file or directory (errno 2)");
}

TEST(Binding, AFileThatIsNoLibraryIsTheReason) {
    installation here;
    std::ofstream(here.path()) << "text";
    expect_refused(1,
                   "cannot load library " + here.path() + "\n" + here.path() + ": file too short");
}

TEST(Binding, TheFirstMissingFunctionIsTheReason) {
    installation here(fakes + "lacks_hmac.so");
    unsetenv("FAKE_CLEANED");
    expect_refused(1, "cannot load address of function ISI_hmac\n" + here.path() +
                          ": undefined symbol: ISI_hmac");
    EXPECT_STREQ(getenv("FAKE_CLEANED"), "yes"); // also without a start
}

TEST(Binding, AProviderThatDoesNotStartIsTheReason) {
    installation here(fakes + "init_fails.so");
    expect_refused(1, "initialization of " + here.path() + " failed");
}

TEST(Binding, TheProvidersVersionIsTheReason) {
    installation old(fakes + "version_1_1.so");
    expect_refused(1,
                   old.path() + " is minor version 1, but minor version 2 or higher is required");
    installation next(fakes + "version_2_0.so");
    expect_refused(1, next.path() + " is major version 2, but major version 1 is required");
}

TEST(Binding, RootTakesOnlyItsOwnRegularFiles) {
    if (geteuid() != 0)
        GTEST_SKIP() << "not root";
    installation foreign;
    std::filesystem::copy_file(fakes + "version_1_2.so", foreign.path());
    ASSERT_EQ(chown(foreign.path().c_str(), 65534, 65534), 0);
    expect_refused(1, foreign.path() + " exists, but is not owned by root");

    // A link is judged by what it leads to.
    installation linked(foreign.path());
    expect_refused(1, linked.path() + " exists, but is not owned by root");
    installation directory("/tmp");
    expect_refused(1, directory.path() + " exists, but is not a regular file or symbolic link");

    // Any other user is not asked.
    pid_t child = fork();
    if (child == 0) {
        setenv("KESTRIONDIR", foreign.file("").c_str(), 1);
        chmod(foreign.file("").c_str(), 0755);
        _exit(setuid(65534) == 0 ? isi_init() : 99);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(Binding, TheLowestVersionAndLaterMinorOnesAreTaken) {
    for (const char *name : {"version_1_2.so", "version_1_3.so"}) {
        installation here(fakes + name);
        EXPECT_EQ(isi_init(), 0) << name << ": " << error_text();
        for (const isi_functab_row &row : isi_functab)
            EXPECT_NE(row.isi_fp.address, nullptr) << row.name;
        EXPECT_EQ(isi_cipher_ctx_set_padding(nullptr, 10), 10);
        isi_cleanup();
        EXPECT_TRUE(is_unbound());
    }
}

TEST(Binding, ASecondCallLoadsNothing) {
    installation here(fakes + "version_1_2.so");
    ASSERT_EQ(isi_init(), 0);
    void *handle = libisiHandle;
    setenv("KESTRIONDIR", "/nowhere", 1);
    EXPECT_EQ(isi_init(), 0);
    EXPECT_EQ(libisiHandle, handle);
    EXPECT_EQ(error_text(), "");
}

TEST(Binding, OnlyTheFileNameCanBeChosen) {
    installation here;
    std::filesystem::create_symlink(fakes + "version_1_3.so", here.path("other.so"));
    setenv("LIBISI_NAME", "other.so", 1);
    ASSERT_EQ(isi_init(), 0);
    EXPECT_EQ(isi_lib_version_minor(), 3);
}

TEST(Binding, TheRowsAreInTheOrderOfTheirIndexes) {
    EXPECT_STREQ(isi_functab[0].name, "ISI_init_int");
    EXPECT_STREQ(isi_functab[IDX_ISI_CIPHER_CTX_NEW].name, "ISI_cipher_ctx_new");
    EXPECT_EQ(IDX_ISI_CIPHER_CTX_NEW, 37);
    EXPECT_STREQ(isi_functab[IDX_ISI_RAND_BYTES].name, "ISI_rand_bytes");
    EXPECT_EQ(IDX_ISI_RAND_BYTES, 79);
    EXPECT_STREQ(isi_functab[109].name, "ISI_ks_GetStashPath");
}

namespace {

long allocations_left;
long live_blocks;

void *counted_malloc(size_t size) {
    if (allocations_left-- <= 0)
        return nullptr;
    live_blocks++;
    return malloc(size);
}

void counted_free(void *block) {
    live_blocks--;
    free(block);
}

} // namespace

TEST(Binding, EveryAllocationMayFail) {
    installation here(fakes + "version_1_2.so");
    setenv("ISI_ERR_FILE", here.file("log").c_str(), 1);
    setenv("ISI_ERR_CALLBACK", "no_such_function", 1);
    isi_set_memfunc(counted_malloc, counted_free);
    bool refused_path = false;
    for (long allowed = 0, result = 1; result != 0; ++allowed) {
        ASSERT_LT(allowed, 50);
        allocations_left = allowed;
        result = isi_init();
        refused_path |= result == 2;
        allocations_left = 1000;
        EXPECT_EQ(is_unbound(), result != 0);
    }
    EXPECT_TRUE(refused_path);
    isi_cleanup();
    isi_clear_err();
    isi_set_err_file(nullptr);
    EXPECT_EQ(live_blocks, 0);
}

namespace {

std::string seen_by_callback;

} // namespace

extern "C" int note_line(const char *line) {
    seen_by_callback += line;
    seen_by_callback += '\n';
    return 1;
}

TEST(Binding, CallbacksAreFoundInTheProgram) {
    installation here(fakes + "version_1_2.so");
    setenv("ISI_TRACE_LEVEL", "1", 1);
    setenv("ISI_TRACE_FILE", here.file("trace").c_str(), 1);
    setenv("ISI_TRACE_CALLBACK", "note_line", 1);
    setenv("ISI_ERR_FILE", here.file("errors").c_str(), 1);
    setenv("ISI_ERR_CALLBACK", "no_such_function", 1);
    ASSERT_EQ(isi_init(), 0);
    EXPECT_EQ(seen_by_callback, logged("using " + here.path()) + logged("version info: fake"));
    EXPECT_EQ(here.content("trace"), "");
    EXPECT_NE(here.content("errors").find(
                  logged("cannot get address of err callback function 'no_such_function'")),
              std::string::npos);
}

// Runs the program with the settings below as a set-user-id program for somebody else.
TEST(Binding, RaisedPrivilegesIgnoreTheSettings) {
    if (geteuid() != 0)
        GTEST_SKIP() << "not root";
    installation here(fakes + "version_1_2.so");
    std::string program = here.file("program");
    std::filesystem::copy_file(CYCLE_PROGRAM, program);
    chmod(here.file("").c_str(), 0777);
    chmod(program.c_str(), 04755);
    setenv("LIBISI_NAME", "nothing.so", 1);
    setenv("ISI_TRACE_LEVEL", "3", 1);
    setenv("ISI_TRACE_FILE", here.file("trace").c_str(), 1);
    pid_t child = fork();
    if (child == 0) {
        if (setuid(65534) == 0)
            execl(program.c_str(), program.c_str(), "raised", nullptr);
        _exit(99);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WEXITSTATUS(status) == 77)
        GTEST_SKIP() << "this file system raises no privileges";
    EXPECT_EQ(WEXITSTATUS(status), 0); // bound, so by the usual name
    EXPECT_EQ(here.content("trace"), "");
}
