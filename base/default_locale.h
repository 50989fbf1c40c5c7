// The locale that serves where no setting names one: American English in ISO 8859-1.

#pragma once

namespace kestrion {

inline constexpr char default_locale[] = "en_US.8859-1";        // as users write it
inline constexpr char default_locale_by_number[] = "en_US.819"; // its code set by the number

} // namespace kestrion
