// Temporary files that a signal removes when it ends the process.
#pragma once

#include <signal.h>
#include <string>

namespace kestrion {

// The signals: those that people and limits end a compiler with.
inline constexpr int ending_signals[] = {SIGHUP, SIGINT, SIGTERM, SIGXFSZ};

// A name from the making of its file to its removal or renaming. There is room for four, more than
// a compiler has outputs; what does not fit is not removed.
void note_temporary(const std::string &name);
void forget_temporary(const std::string &name);

// Holds the signals back while a file and its name come together.
class signals_held {
public:
    signals_held();
    ~signals_held();
    signals_held(const signals_held &) = delete;
    signals_held &operator=(const signals_held &) = delete;

private:
    sigset_t before_;
};

// Handles the signals, but those that the process was told to ignore.
class signals_handled {
public:
    signals_handled();
    ~signals_handled();
    signals_handled(const signals_handled &) = delete;
    signals_handled &operator=(const signals_handled &) = delete;

private:
    struct sigaction before_[sizeof ending_signals / sizeof *ending_signals];
};

} // namespace kestrion
