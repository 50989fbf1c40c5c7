#include "base/installation.h"
#include "isi/diagnostics.h"
#include "isi/installation.h"
#include "support/failing_malloc.h"

#include <sys/stat.h>
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
void expect_refused(const std::string &reason) {
    EXPECT_EQ(isi_init(), 1);
    EXPECT_TRUE(is_unbound());
    EXPECT_EQ(isi_cipher_ctx_new(), nullptr);
    EXPECT_EQ(error_text().substr(0, reason.size()), reason);
    EXPECT_EQ(error_text(), "");
}

// A link that appears under `path` at the moment when a library is loaded; none while the path is empty.
struct {
    std::string target, path;
} swapped_in;

} // namespace

extern "C" void *__real_dlopen(const char *path, int mode);
extern "C" void *__wrap_dlopen(const char *path, int mode) {
    if (path != nullptr && !swapped_in.path.empty()) {
        std::filesystem::remove(swapped_in.path);
        std::filesystem::create_symlink(swapped_in.target, swapped_in.path);
        swapped_in = {};
    }
    return __real_dlopen(path, mode);
}

TEST(Binding, AMissingDirectoryIsTheReason) {
    unsetenv("KESTRIONDIR");
    expect_refused("please set KESTRIONDIR to enable loading of $KESTRIONDIR/lib/libisi.so.1");
}

TEST(Binding, WhatIsWrongWithTheProviderIsTheReason) {
    const struct {
        const char *provider, *before, *after; // the text around its path
    } rows[] = {
        {"missing.so", "cannot access ", "\nNo such file or directory (errno 2)"},
        {"init_fails.so", "initialization of ", " failed"},
        {"version_1_1.so", "", " is minor version 1, but minor version 2 or higher is required"},
        {"version_2_0.so", "", " is major version 2, but major version 1 is required"},
    };
    for (const auto &row : rows) {
        installation here(fakes + row.provider);
        expect_refused(row.before + here.library() + row.after);
    }
}

TEST(Binding, AFileThatIsNoLibraryIsTheReason) {
    installation here;
    std::ofstream(here.library()) << "text";
    expect_refused("cannot load library " + here.library() + "\n"); // and what the linker says
}

TEST(Binding, TheFirstMissingFunctionIsTheReason) {
    installation here(fakes + "lacks_hmac.so");
    unsetenv("FAKE_CLEANED");
    expect_refused("cannot load address of function ISI_hmac\n");
    EXPECT_STREQ(getenv("FAKE_CLEANED"), "yes"); // also without a start
}

TEST(Binding, RootTakesOnlyItsOwnRegularFiles) {
    if (geteuid() != 0)
        GTEST_SKIP() << "not root";
    installation foreign;
    std::filesystem::copy_file(fakes + "version_1_2.so", foreign.library());
    ASSERT_EQ(chown(foreign.library().c_str(), 65534, 65534), 0);
    expect_refused(foreign.library() + " exists, but is not owned by root");

    // A link is judged by what it leads to.
    installation linked(foreign.library());
    expect_refused(linked.library() + " exists, but is not owned by root");
    installation directory("/tmp");
    expect_refused(directory.library() + " exists, but is not a regular file or symbolic link");

    // Any other user is not asked.
    pid_t child = fork();
    if (child == 0) {
        setenv("KESTRIONDIR", foreign.path().c_str(), 1);
        chmod(foreign.path().c_str(), 0755);
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
    std::filesystem::create_symlink(fakes + "version_1_3.so", here.at("lib/other.so"));
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

TEST(Binding, EveryAllocationMayFail) {
    installation here(fakes + "version_1_2.so");
    setenv("ISI_ERR_FILE", here.at("log").c_str(), 1);
    setenv("ISI_ERR_CALLBACK", "no_such_function", 1);
    bool refused_path = false;
    for (size_t k = 1;; ++k) {
        const failing_malloc::scope refused(k);
        const int result = isi_init();
        refused_path |= result == 2;
        EXPECT_EQ(is_unbound(), result != 0) << k;
        isi_cleanup();
        isi_clear_err();
        isi_set_err_file(nullptr);
        EXPECT_EQ(refused.live(), 0) << k;
        if (!refused.happened())
            break;
    }
    EXPECT_TRUE(refused_path);
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
    setenv("ISI_TRACE_FILE", here.at("trace").c_str(), 1);
    setenv("ISI_TRACE_CALLBACK", "note_line", 1);
    setenv("ISI_ERR_FILE", here.at("errors").c_str(), 1);
    setenv("ISI_ERR_CALLBACK", "no_such_function", 1);
    ASSERT_EQ(isi_init(), 0);
    EXPECT_EQ(seen_by_callback, logged("using " + here.library()) + logged("version info: fake"));
    EXPECT_EQ(here.read("trace"), "");
    EXPECT_NE(here.read("errors").find(
                  logged("cannot get address of err callback function 'no_such_function'")),
              std::string::npos);
}

// Runs the program with the settings below as a set-user-id program for somebody else.
// The caller chooses the environment and the current folder, and must not choose code or files.
TEST(Binding, RaisedPrivilegesIgnoreTheSettings) {
    if (geteuid() != 0)
        GTEST_SKIP() << "not root";
    const installation here(fakes + "version_1_2.so");
    const std::string program = here.at("program");
    std::filesystem::copy_file(RAISED_PROGRAM, program);
    chmod(here.path().c_str(), 0777);
    chmod(program.c_str(), 04755);
    for (const char *name : {"LIBISI_NAME", "GLSLOG", "GLSDEBUG", "ISI_TRACE_FILE"})
        setenv(name, "on", 1);
    setenv("ISI_TRACE_LEVEL", "3", 1);
    const pid_t child = fork();
    if (child == 0) {
        if (chdir(here.path().c_str()) == 0 && freopen("said", "w", stdout) != nullptr &&
            setuid(65534) == 0)
            execl(program.c_str(), program.c_str(), nullptr);
        _exit(99);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WEXITSTATUS(status) == 77)
        GTEST_SKIP() << "this file system raises no privileges";
    const std::string built_in = kestrion::built_in_directory;
    EXPECT_EQ(here.read("said"), built_in + "\ncannot access " + built_in +
                                     "/lib/libisi.so.1\nNo such file or directory (errno 2)");
    EXPECT_FALSE(here.holds("gls.log") || here.holds("on"));
}

TEST(Binding, WhatRootLoadsIsWhatWasJudged) {
    if (geteuid() != 0)
        GTEST_SKIP() << "not root";
    const installation here(fakes + "version_1_2.so");
    swapped_in = {fakes + "version_1_3.so", here.library()};
    EXPECT_EQ(isi_init(), 0);
    EXPECT_EQ(isi_lib_version_minor(), 2);
}

// Not root takes any file, but a pipe would hold the program up.
TEST(Binding, APipeInThePlaceOfTheProviderIsRefused) {
    const installation here;
    ASSERT_EQ(mkfifo(here.library().c_str(), 0600), 0);
    chmod(here.path().c_str(), 0777);
    chmod(here.library().c_str(), 0666);
    const uid_t self = geteuid();
    ASSERT_EQ(seteuid(self == 0 ? 65534 : self), 0);
    expect_refused(here.library() + " exists, but is not a regular file or symbolic link");
    ASSERT_EQ(seteuid(self), 0);
}
