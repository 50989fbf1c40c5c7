// Puts what a source keeps for the whole process back to the start of the process. For tests, which see
// many starts in one process; what the public headers show they put back themselves.

#pragma once

namespace kestrion {

void reset_gentcb(); // frees the block and all that it owns, but leaves catalogue files open

} // namespace kestrion
