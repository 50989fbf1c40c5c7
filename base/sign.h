#pragma once

namespace kestrion {

// -1, 0 or 1, as the comparisons of the runtime answer.
constexpr int sign(int difference) { return (difference > 0) - (difference < 0); }

} // namespace kestrion
