// Puts what a source keeps for the whole process back to the start of the process. For tests, as
// base/resets.h.

#pragma once

namespace kestrion {

void reset_process_characters(); // the next rldctype() sets the tables up again

} // namespace kestrion
