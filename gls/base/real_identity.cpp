#include "gls/base/real_identity.h"

#include <stdlib.h>
#include <unistd.h>

namespace kestrion {

bool real_identity::take() {
    user_ = geteuid();
    group_ = getegid();
    if (user_ != 0)
        return true;
    // The group goes first: without root's rights it could no longer be changed.
    if (getgid() != group_) {
        if (setegid(getgid()) != 0)
            return false;
        group_taken_ = true;
    }
    if (getuid() != user_) {
        if (seteuid(getuid()) != 0) {
            give_back();
            return false;
        }
        user_taken_ = true;
    }
    return true;
}

void real_identity::give_back() {
    if (user_taken_ && seteuid(user_) != 0)
        abort();
    if (group_taken_ && setegid(group_) != 0)
        abort();
    user_taken_ = group_taken_ = false;
}

} // namespace kestrion
