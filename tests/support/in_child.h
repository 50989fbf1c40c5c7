// A test's act in a process of its own, with an environment of its own.

#pragma once

#include <functional>
#include <stdlib.h>
#include <string>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

using assignments = std::vector<std::pair<std::string, std::string>>;

// Runs `act` in a child with these variables alone and returns what it says.
inline std::string in_child(const assignments &variables, const std::function<std::string()> &act) {
    int ends[2];
    if (pipe(ends) != 0)
        return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        clearenv();
        setenv("KESTRIONDIR", INSTALLATION, 1);
        for (const auto &[name, value] : variables)
            setenv(name.c_str(), value.c_str(), 1);
        const std::string said = act();
        _exit(write(ends[1], said.data(), said.size()) == static_cast<ssize_t>(said.size()) ? 0
                                                                                            : 1);
    }
    close(ends[1]);
    std::string said;
    char block[512];
    for (ssize_t n; (n = read(ends[0], block, sizeof block)) > 0;)
        said.append(block, static_cast<size_t>(n));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? said : said + " (died)";
}
