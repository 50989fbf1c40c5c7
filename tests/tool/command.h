// Runs the real command, as a shell would, in an installation tree made for the test.

#pragma once

#include "passwords/staged_tree.h"

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

struct outcome {
    int status = -1; // exit status
    int signal = 0;  // that ended it, else 0
    std::string out;
    std::string err;
};

std::ostream &operator<<(std::ostream &stream, const outcome &o);

// One run. The child's environment is KESTRIONDIR and what is added here.
class command {
public:
    explicit command(const std::string &kestriondir) {
        set("KESTRIONDIR", kestriondir);
        set("ASAN_OPTIONS", "detect_leaks=0"); // it leaves its blocks to the system by design
    }
    command &set(const std::string &name, const std::string &value);
    command &unset(const std::string &name);
    command &first(std::function<void()> action); // done in the child before the command starts

    outcome run(const std::vector<std::string> &arguments);

    // For tests that look at the running process: start, look, finish.
    pid_t start(const std::vector<std::string> &arguments);
    outcome finish();

private:
    std::vector<std::pair<std::string, std::string>> environment_;
    std::function<void()> first_;
    pid_t child_ = -1;
    int out_ = -1;
    int err_ = -1;
};
