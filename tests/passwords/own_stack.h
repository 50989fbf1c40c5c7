// Runs an action on a stack that the test can search afterwards.

#pragma once

#include <functional>
#include <string>
#include <ucontext.h>

class own_stack {
public:
    void run(const std::function<void()> &action) {
        static ucontext_t outside;
        static ucontext_t inside;
        static const std::function<void()> *running;
        running = &action;
        getcontext(&inside);
        inside.uc_stack.ss_sp = bytes_.data();
        inside.uc_stack.ss_size = bytes_.size();
        inside.uc_link = &outside;
        makecontext(
            &inside, [] { (*running)(); }, 0);
        swapcontext(&outside, &inside);
    }

    // Whether any six bytes of the secret, one after the other, are there.
    bool holds_part_of(const std::string &secret) const {
        for (size_t i = 0; i + 6 <= secret.size(); ++i)
            if (bytes_.find(secret.substr(i, 6)) != std::string::npos)
                return true;
        return false;
    }

private:
    std::string bytes_ = std::string(256 * 1024, '#');
};
