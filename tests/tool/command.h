// Runs the real command, as a shell would, in an installation tree made for the test.

#pragma once

#include "tool/staged_tree.h"

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

// An installation directory of the test's own: an empty etc/, and the provider, the catalogues and
// the locale objects of the one that all tests share.
class staged_tree : public temporary_directory {
public:
    staged_tree();
    std::string sealed_path() const { return at("etc/passwd_file"); }
    std::string sealed() const { return read("etc/passwd_file"); }
};

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
    explicit command(const std::string &kestriondir) { set("KESTRIONDIR", kestriondir); }
    command &set(const std::string &name, const std::string &value);
    command &unset(const std::string &name);
    command &first(std::function<void()> action); // done in the child before the command starts

    outcome run(const std::vector<std::string> &arguments);

    // For tests that look at the running process: start, look, finish.
    pid_t start(const std::vector<std::string> &arguments);
    outcome finish();
    void read_output(outcome *o); // until the child has closed its streams

private:
    std::vector<std::pair<std::string, std::string>> environment_;
    std::function<void()> first_;
    pid_t child_ = -1;
    int out_ = -1;
    int err_ = -1;
};
