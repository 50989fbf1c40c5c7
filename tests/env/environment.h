// A process environment, an installation directory and a home directory that belong to one test,
// and user accounts as the test wants them.

#pragma once

#include "support/temp_dir.h"

#include <gtest/gtest.h>

// What the C library's account look-ups answer in this program.
struct account {
    const char *login = nullptr; // of the terminal, for getlogin()
    std::string login_home;      // directory of that login
    std::string owner_home;      // directory of the process's owner
    bool exists = true;          // false: no account record is found
};
extern account test_account;

class Environment : public testing::Test {
protected:
    // An empty process environment but for KESTRIONDIR, no configuration files, an unloaded
    // registry, and a locale that has had its start, whatever came of it.
    void SetUp() override;
    void TearDown() override;

    void write_system_file(std::string_view bytes) const { root.write("etc/kestrion.rc", bytes); }
    void write_user_file(std::string_view bytes) const { root.write("h/.kestrion", bytes); }

    const temp_dir root;                   // KESTRIONDIR
    const std::string home = root.at("h"); // its name is short: 64 characters are kept
};
