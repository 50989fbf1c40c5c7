// A directory of its own for a test, removed with all that is in it.

#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdlib.h>
#include <string>
#include <string_view>

// The whole of a file; nothing of one that is not there.
inline std::string file_text(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

class temp_dir {
public:
    temp_dir() {
        std::string name = (std::filesystem::temp_directory_path() / "kestrion-XXXXXX").string();
        path_ = mkdtemp(name.data());
    }
    ~temp_dir() { std::filesystem::remove_all(path_); }
    temp_dir(const temp_dir &) = delete;
    temp_dir &operator=(const temp_dir &) = delete;

    // Path of something in the directory.
    std::string at(std::string_view name) const { return path_ + "/" + std::string(name); }
    const std::string &path() const { return path_; }

    bool holds(std::string_view name) const { return std::filesystem::exists(at(name)); }
    std::string read(std::string_view name) const { return file_text(at(name)); }

    // Writes a file, with the directories that lead to it, and returns its path.
    std::string write(std::string_view name, std::string_view text) const {
        const std::string file = at(name);
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }

private:
    std::string path_;
};
