// An installation directory of its own for a test, with the wanted file as its provider.

#pragma once

#include "isi/isi_api.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

class installation {
public:
    installation() {
        char name[] = "/tmp/isi_test.XXXXXX";
        directory_ = mkdtemp(name);
        std::filesystem::create_directory(directory_ + "/lib");
        setenv("KESTRIONDIR", directory_.c_str(), 1);
    }
    explicit installation(const std::string &provider) : installation() { install(provider); }
    ~installation() { std::filesystem::remove_all(directory_); }
    installation(const installation &) = delete;
    installation &operator=(const installation &) = delete;

    void install(const std::string &provider) const {
        std::filesystem::create_symlink(provider, path());
    }
    std::string path(const std::string &name = "libisi.so.1") const {
        return directory_ + "/lib/" + name;
    }
    std::string file(const std::string &name) const { return directory_ + "/" + name; }
    std::string content(const std::string &name) const {
        std::ostringstream text;
        text << std::ifstream(file(name)).rdbuf();
        return text.str();
    }

private:
    std::string directory_;
};

// "ISI: <process>: " + text + line end.
inline std::string logged(const std::string &text) {
    return "ISI: " + std::to_string(getpid()) + ": " + text + "\n";
}

inline std::string error_text() { return isi_get_err('\n'); }

template <class Type> Type &provider_variable(const char *name) {
    return *static_cast<Type *>(dlsym(libisiHandle, name));
}
