// Directories that tests work in.

#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// A fresh directory, removed with all that is in it.
class temporary_directory {
public:
    temporary_directory() {
        std::string name = (std::filesystem::temp_directory_path() / "pwsealtool-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            abort();
        path_ = name;
    }
    ~temporary_directory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    temporary_directory(const temporary_directory &) = delete;
    temporary_directory &operator=(const temporary_directory &) = delete;

    const std::string &path() const { return path_; }
    std::string at(const std::string &name) const { return path_ + "/" + name; }
    void make(const std::string &name) const { std::filesystem::create_directories(at(name)); }
    void write(const std::string &name, const std::string &bytes) const {
        std::ofstream(at(name), std::ios::binary) << bytes;
    }
    std::string read(const std::string &name) const {
        std::ifstream in(at(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    bool holds(const std::string &name) const { return std::filesystem::exists(at(name)); }

private:
    std::string path_;
};

// An installation directory of the test's own: an empty etc/, and the provider, the catalogues and
// the locale objects of the one that all tests share.
class staged_tree : public temporary_directory {
public:
    staged_tree() {
        make("etc");
        make("lib");
        std::filesystem::create_symlink(INSTALLATION "/lib/libisi.so.1", at("lib/libisi.so.1"));
        for (const std::string folder : {"msg", "gls"})
            std::filesystem::create_directory_symlink(INSTALLATION "/" + folder, at(folder));
    }
    std::string sealed_path() const { return at("etc/passwd_file"); }
    std::string sealed() const { return read("etc/passwd_file"); }
};
