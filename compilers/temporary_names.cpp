#include "compilers/temporary_names.h"

#include <iterator>
#include <limits.h>
#include <string.h>
#include <unistd.h>

namespace kestrion {
namespace {

// What a signal handler may use: fixed in size and never freed. An empty name is a free place.
constinit char names[4][PATH_MAX] = {};

void remove_all_and_end(int signal) {
    for (const char *name : names)
        if (name[0] != '\0')
            unlink(name);
    raise(signal); // the handler was reset when it was called
}

} // namespace

void note_temporary(const std::string &name) {
    for (char(&place)[PATH_MAX] : names)
        if (place[0] == '\0' && name.size() < sizeof place) {
            memcpy(place, name.c_str(), name.size() + 1);
            return;
        }
}

void forget_temporary(const std::string &name) {
    for (char(&place)[PATH_MAX] : names)
        if (name == place)
            place[0] = '\0';
}

signals_held::signals_held() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : ending_signals)
        sigaddset(&ending, signal);
    sigprocmask(SIG_BLOCK, &ending, &before_);
}

signals_held::~signals_held() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

signals_handled::signals_handled() {
    struct sigaction handling = {};
    handling.sa_handler = remove_all_and_end;
    handling.sa_flags = static_cast<int>(SA_RESETHAND);
    for (size_t i = 0; i < std::size(ending_signals); ++i) {
        sigaction(ending_signals[i], nullptr, &before_[i]);
        if (before_[i].sa_handler != SIG_IGN)
            sigaction(ending_signals[i], &handling, nullptr);
    }
}

signals_handled::~signals_handled() {
    for (size_t i = 0; i < std::size(ending_signals); ++i)
        sigaction(ending_signals[i], &before_[i], nullptr);
}

} // namespace kestrion
