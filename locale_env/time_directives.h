// The directives of time formats, and which units of a datetime they stand for.

#pragma once

namespace kestrion {

// One step through a format: the text up to a directive, and that directive.
struct time_directive {
    const char *text;      // where the step begins
    const char *directive; // its "%", or the end of the format
    const char *next;      // after the directive
    char conversion;       // letter; '\0' at the end of the format
    char modifier;         // 'E', 'O', 'i', or '\0'
    int first;             // units that it needs
    int last;              // below `first` for "%%", "%n" and "%t", which are text
    int digits;            // of %F; -1 for a %F without and for others
};

// Takes one step. Returns false when the format ends inside a directive or names one that doesn't
// exist.
bool next_time_directive(const char *format, time_directive *step);

} // namespace kestrion
