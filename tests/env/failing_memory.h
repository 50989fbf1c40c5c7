// Allocations of the library that fail when the test says so, and a count of what it holds. putenv
// counts as an allocation, since that is what it fails by.

#pragma once

// Lets the nth allocation from now on fail, once; 0 lets all succeed.
void fail_allocation(int nth);

// Says whether the failure that was ordered has happened.
bool allocation_failed();

// Blocks that were allocated and not freed. Texts given to putenv are the environment's from then
// on and are not counted.
long blocks_held();
