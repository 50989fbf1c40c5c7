// The process's character class and case tables, for code that is not served by a locale.
//
// They start with the classes of ASCII, without the bit for printable, and with constants for the
// high bytes. They can be set from the C library's LC_CTYPE. No lock guards them: they are set up
// before threads start.

#pragma once

// Class bits of _ixctype.
enum character_class {
    CHARACTER_UPPER = 1,
    CHARACTER_LOWER = 2,
    CHARACTER_DIGIT = 4,
    CHARACTER_SPACE = 8,
    CHARACTER_PUNCT = 16,
    CHARACTER_CONTROL = 32,
    CHARACTER_HEX = 64,
    CHARACTER_PRINT = 128
};

#ifdef __cplusplus
extern "C" {
#endif

// Entry c + 1 holds the classes of byte c; entry 0 stands for end of file, the last is always 0.
extern unsigned char _ixctype[258];
extern unsigned char _ix2lowmap[256]; // lower-case form of each byte
extern unsigned char _ix2upmap[256];  // upper-case form of each byte

// Fills the tables from the C library's current LC_CTYPE. Returns 0, or -1 without a control block.
int ldctypearr(void);

// Gives bytes 128 to 173 the class lower and 174 to 255 the class punctuation. Returns 0.
int rld8bitarr(void);

#ifdef __cplusplus
}
#endif
