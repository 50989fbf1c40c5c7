// Passwords and encryption keys taken out of a statement before it is traced or logged.

#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Overwrites the secrets of a statement with "X", in place; the length and all else stay.
//
// Secrets are the quoted texts in the parentheses after encrypt_aes, encrypt_tdes, decrypt_binary and
// decrypt_char, nested ones too; and every quoted text after "encryption password", to the end of the
// statement: whatever follows there counts as secret. Words are found in any case. An optimiser hint
// is one token, and quotes in it are left alone.
//
//     select encrypt_aes('abc', 'key') from t   ->   select encrypt_aes('XXX', 'XXX') from t
//
// The walk goes by the tokens of sqltoken and ends where they end: what follows a quote, a "{" or a
// "--" that is never closed stays readable. A caller that must not let a secret through masks
// everything from there on.
void erasepassword(char *statement);

#ifdef __cplusplus
}
#endif
