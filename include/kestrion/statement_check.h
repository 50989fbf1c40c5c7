// Questions about whole statements: is a CREATE text complete, where does a keyword follow its
// parameters, is this a collection literal? In the characters of the current locale; letters of the
// language's words count in either case.

#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Says whether a tool that collects a statement line by line needs more text.
// text    need not be terminated; a zero byte ends it as well.
// Returns 0 for a finished CREATE PROCEDURE or CREATE FUNCTION, and for any other statement; 1 when
//         more text is needed.
//
// Such a statement is finished by ";" as its last word after "end procedure" or "end function". A
// function with "external name" needs neither; a procedure with it still does: tools depend on the
// difference. A comment that is not closed needs more text.
//
// Example "create procedure p() return 1; end procedure;" -> 0; without the last word -> 1.
int32_t chkstmt(const char *text, int32_t length);

// Finds a keyword after the parameter list of a terminated text: after the ")" that closes its first
// parentheses, or, in a text without them, after "of type". Texts in single quotes hold no
// parentheses.
// keyword  in lower case; compared with the beginning of each word. Null or empty: none, so that the
//          answer is the first word after the parameter list.
// Returns the place of the keyword, of a ";" before it, or of the end.
const char *extpos(const char *text, const char *keyword);

// Says whether the characters from `start` to `last`, which is one of them, begin as a collection
// literal does: "set", "list" or "multiset", white space or none, "{".
// Returns 1 or 0; 0 without memory as well.
int32_t collection_literal(const char *start, const char *last);

#ifdef __cplusplus
}
#endif
