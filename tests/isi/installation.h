// An installation directory of its own for a test, with the wanted file as its provider.

#pragma once

#include "support/temp_dir.h"
#include <kestrion/isi_api.h>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

class installation : public temp_dir {
public:
    installation() {
        std::filesystem::create_directory(at("lib"));
        setenv("KESTRIONDIR", path().c_str(), 1);
    }
    explicit installation(const std::string &provider) : installation() {
        std::filesystem::create_symlink(provider, library());
    }
    std::string library() const { return at("lib/libisi.so.1"); }
};

// "ISI: <process>: " + text + line end.
inline std::string logged(const std::string &text) {
    return "ISI: " + std::to_string(getpid()) + ": " + text + "\n";
}

inline std::string error_text() { return isi_get_err('\n'); }

template <class Type> Type &provider_variable(const char *name) {
    return *static_cast<Type *>(dlsym(libisiHandle, name));
}
