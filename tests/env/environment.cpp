#include "environment.h"

#include <kestrion/env_registry.h>
#include <kestrion/gls_env.h>
#include <kestrion/os_control.h>

#include <locale.h>
#include <pwd.h>
#include <stdlib.h>
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

void Environment::SetUp() {
    std::filesystem::create_directory(home);
    test_account = {.owner_home = home};
    clearenv();
    setenv("KESTRIONDIR", root.path().c_str(), 1);
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
}
