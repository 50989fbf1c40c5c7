// Bits of a character's 16-bit class mask. Stored in locale object files: never renumber.

#pragma once

#include <stdint.h>

enum {
    CT_UPPER = 0x0001,
    CT_LOWER = 0x0002,
    CT_ALPHA = 0x0004,
    CT_DIGIT = 0x0008,
    CT_ALNUM = CT_ALPHA | CT_DIGIT,
    CT_SPACE = 0x0010,
    CT_CNTRL = 0x0020,
    CT_PUNCT = 0x0040,
    CT_GRAPH = 0x0080,
    CT_PRINT = 0x0100,
    CT_XDIGIT = 0x0200,
    CT_BLANK = 0x0400
};

// The class that a locale names itself, by its bit number 0..4.
enum { CT_NAMED = 0x0800, ct_named_limit = 5 };

// The one named class that the engine asks for: characters two screen columns wide.
#define ct_full_width "full_width"
