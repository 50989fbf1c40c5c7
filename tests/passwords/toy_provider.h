// A provider inside the test program, for what the real one cannot be made to do: fail at a chosen
// call, report absurd sizes, give known random bytes. Its cipher has AES-192-ECB's sizes and
// padding and no strength: a block is xored with the key.

#pragma once

#include <stdint.h>

namespace toy_provider {

// Binds the rows of the bridge's table that the password tool uses, and resets all below.
void install();

// Random bytes count on from 0 at install(): the first key is 00 to 17, the second 18 to 2f.
// Refuses the k-th call from here on that can fail; 0 refuses none.
void refuse_call(int k);
bool refused();

bool holds_key(); // in any context that was made and not wiped

extern bool leaves_copies; // of each key on the stack, as a real one's key schedule does: false
extern int block_size;     // of the cipher as it says, and up to 64 as it is: 16
extern int extra_length;   // what each final call adds to the length it reports: 0

} // namespace toy_provider
