// An installation directory of the test's own: an empty etc/, and the provider, the catalogues and
// the locale objects of the one that all tests share.

#pragma once

#include "support/temp_dir.h"

class staged_tree : public temp_dir {
public:
    staged_tree() {
        make("etc");
        make("lib");
        std::filesystem::create_symlink(INSTALLATION "/lib/libisi.so.1", at("lib/libisi.so.1"));
        for (const std::string folder : {"msg", "gls"})
            std::filesystem::create_directory_symlink(INSTALLATION "/" + folder, at(folder));
    }
    void make(const std::string &name) const { std::filesystem::create_directory(at(name)); }
    std::string sealed_path() const { return at("etc/passwd_file"); }
    std::string sealed() const { return read("etc/passwd_file"); }
};
