// The choice of a century for operations that bring a letter of their own.

#pragma once

#include <stdint.h>

namespace kestrion {

// getcentury with a letter; any but P, F, C and R counts as R.
int century_by_letter(int month, int day, int yy, char letter);

// Today, taken apart; mdy_null in all three when it cannot be had.
void mdy_of_today(int16_t mdy[3]);

} // namespace kestrion
