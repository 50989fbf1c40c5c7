// What calls leave of keys and texts where no variable is: on the stack below the caller, and in
// the vector registers.

#pragma once

namespace kestrion {

// Wipes the vector registers, and the stack that calls made from the caller have used and left. To
// be the last call of an operation that handled secrets.
void wipe_leftovers();

} // namespace kestrion
