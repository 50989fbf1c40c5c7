// A compiler run as a command, in a directory of its own.

#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdio.h>
#include <stdlib.h>
#include <string>
#include <vector>

// What came of a command.
struct outcome {
    int status;
    std::string said;
};

// Runs `entry`, the main function of a compiler, with the words of a command line.
inline outcome run_command(int (*entry)(int, char **, FILE *), std::vector<std::string> words) {
    words.insert(words.begin(), "compiler");
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    const int status = entry(static_cast<int>(words.size()), argv.data(), stream);
    fclose(stream);
    outcome result = {status, text};
    free(text);
    return result;
}

// The whole of a file; nothing of one that is not there.
inline std::string content(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Works in a new directory, which goes with the test.
struct command_test : testing::Test {
    command_test() {
        char name[] = "/tmp/kestrion-XXXXXX";
        std::filesystem::current_path(mkdtemp(name));
    }
    ~command_test() override {
        const std::filesystem::path here = std::filesystem::current_path();
        std::filesystem::current_path("/");
        std::filesystem::remove_all(here);
    }
};
