// Acting as the real user for a moment, in a process that runs as root on behalf of another.

#pragma once

#include <sys/types.h>

namespace kestrion {

// Files and libraries whose names a user controls must not be opened with root's rights. `take`
// switches the effective group and user to the real ones where they differ; for any other effective
// user than root it does nothing. It fails with everything as it was. `give_back` undoes it and
// ends the process when it can't, since running on with the wrong identity is not an option.
class real_identity {
public:
    bool take();
    void give_back();

private:
    uid_t user_ = 0;
    gid_t group_ = 0;
    bool user_taken_ = false;
    bool group_taken_ = false;
};

} // namespace kestrion
