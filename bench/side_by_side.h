// Our call and its peers, in turns within one run, so that all meet the same machine.

#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <stddef.h>
#include <vector>

// One contestant: a call that does the whole work once.
struct contestant {
    const char *name;
    std::function<void()> run;
    std::vector<double> seconds = {}; // of each round

    double median() const {
        std::vector<double> sorted = seconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2];
    }
};

// Runs each contestant `calls` times in a round, round by round, after one round that is not
// counted.
inline void run_in_turns(std::vector<contestant> &field, int rounds, int calls) {
    for (int round = -1; round < rounds; ++round) {
        for (contestant &one : field) {
            const auto start = std::chrono::steady_clock::now();
            for (int i = 0; i < calls; ++i)
                one.run();
            const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
            if (round >= 0)
                one.seconds.push_back(taken.count() / calls);
        }
    }
}
