#include "environment.h"

#include "env/registry.h"
#include "locale_env/gls_env.h"
#include "platform/os_control.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <pwd.h>
#include <unistd.h>

account test_account;

namespace {

passwd *record_of(const std::string &home) {
    static passwd record;
    if (!test_account.exists)
        return nullptr;
    record.pw_dir = const_cast<char *>(home.c_str());
    return &record;
}

} // namespace

// The program's own definitions come before the C library's.
extern "C" {
char *getlogin(void) { return const_cast<char *>(test_account.login); }
passwd *getpwnam(const char *name) {
    const bool known = test_account.login != nullptr && name == std::string(test_account.login);
    return known ? record_of(test_account.login_home) : nullptr;
}
passwd *getpwuid(uid_t) { return record_of(test_account.owner_home); }
}

void write_bytes(const std::string &path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void Environment::SetUp() {
    std::string pattern = testing::TempDir() + "env_XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    root = pattern;
    home = root + "/h"; // short: 64 characters are kept
    std::filesystem::create_directories(root + "/etc");
    std::filesystem::create_directories(home);
    test_account = {.owner_home = home};
    clearenv();
    setenv("KESTRIONDIR", root.c_str(), 1);
    CheckOsInit();
    gsetudenv(nullptr);
    gFreeEVars();
    for (char *&setting : CheckGlsEnv()->state->settings) {
        free(setting);
        setting = nullptr;
    }
}

void Environment::TearDown() {
    gFreeEVars();
    setlocale(LC_ALL, "C");
    std::filesystem::remove_all(root);
}

void Environment::write_system_file(std::string_view bytes) const {
    write_bytes(root + "/etc/kestrion.rc", bytes);
}

void Environment::write_user_file(std::string_view bytes) const {
    write_bytes(home + "/.kestrion", bytes);
}
