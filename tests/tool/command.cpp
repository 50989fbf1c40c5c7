#include "tool/command.h"

#include <algorithm>
#include <fcntl.h>
#include <ostream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The texts as exec takes them.
std::vector<char *> pointers_to(std::vector<std::string> &texts) {
    std::vector<char *> pointers;
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// All that comes until the child has closed its stream.
std::string drained(int fd) {
    std::string text;
    char buffer[4096];
    for (ssize_t n; (n = read(fd, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<size_t>(n));
    close(fd);
    return text;
}

} // namespace

std::ostream &operator<<(std::ostream &stream, const outcome &o) {
    return stream << "status " << o.status << ", signal " << o.signal << ", words: " << o.err;
}

command &command::set(const std::string &name, const std::string &value) {
    unset(name);
    environment_.emplace_back(name, value);
    return *this;
}

command &command::unset(const std::string &name) {
    std::erase_if(environment_, [&](const auto &entry) { return entry.first == name; });
    return *this;
}

command &command::first(std::function<void()> action) {
    first_ = std::move(action);
    return *this;
}

pid_t command::start(const std::vector<std::string> &arguments) {
    std::vector<std::string> words = {"pwsealtool"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> settings;
    for (const auto &[name, value] : environment_)
        settings.push_back(name + "=" + value);
    const auto argv = pointers_to(words);
    const auto envp = pointers_to(settings);
    int out[2];
    int err[2];
    if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0)
        abort();
    child_ = fork();
    if (child_ == 0) {
        dup2(open("/dev/null", O_RDONLY), 0);
        dup2(out[1], 1);
        dup2(err[1], 2);
        if (first_)
            first_();
        execve(INSTALLATION "/bin/pwsealtool", argv.data(), envp.data());
        _exit(126);
    }
    close(out[1]);
    close(err[1]);
    out_ = out[0];
    err_ = err[0];
    return child_;
}

outcome command::finish() {
    outcome o;
    o.err = drained(err_); // first: nothing that matters goes to standard output
    o.out = drained(out_);
    int state = 0;
    waitpid(child_, &state, 0);
    o.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    o.signal = WIFSIGNALED(state) ? WTERMSIG(state) : 0;
    return o;
}

outcome command::run(const std::vector<std::string> &arguments) {
    start(arguments);
    return finish();
}
