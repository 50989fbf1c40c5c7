// Tokens of SQL statement text.
//
// A statement is terminated text, looked at byte by byte with the process's character table
// (<kestrion/character_tables.h>): letters are the bytes of the classes upper and lower.
//
//     select a<>.5 -- why {not}
//     from {all} "t 1" where b in set {1}
//
//     select   a   <>   .5   from   "t 1"   where   b   in   set {   1   }
//
// Since it works on bytes, a code set whose characters have second bytes such as "{" (7B) or a quote
// shows the scanner a comment or a text that the server does not see.

#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Finds the next token of `text`, past white space and comments. Comments are {...}, -- to the end of
// the line, and /*...*/; one with a "+" directly after its opening is a hint for the optimiser and a
// token of its own.
//
// Tokens are quoted texts with their quotes, a doubled quote being a part of the text; numbers such as
// 12, 1.5, .5 and 1e-5; words; the pairs <= <> >= != || and ::; and single characters. The words
// "set", "multiset" and "list" take the white space after them along, and a "{" after that, so that a
// collection literal is told from a comment.
//
// end     gets the place after the token. It is the start where the walk is over: at the end of the
//         text, and at what is opened and never closed: a quote, a "{", a "--" without a line feed. An
//         unclosed "/*" reaches to the end of the text.
// Returns the start of the token.
const char *sqltoken(const char *text, const char **end);

#ifdef __cplusplus
}
#endif
