// Bits of a character's 16-bit class mask. Stored in locale object files: never renumber.

#pragma once

#include <stdint.h>

inline constexpr uint32_t CT_UPPER = 0x0001;
inline constexpr uint32_t CT_LOWER = 0x0002;
inline constexpr uint32_t CT_ALPHA = 0x0004;
inline constexpr uint32_t CT_DIGIT = 0x0008;
inline constexpr uint32_t CT_ALNUM = CT_ALPHA | CT_DIGIT;
inline constexpr uint32_t CT_SPACE = 0x0010;
inline constexpr uint32_t CT_CNTRL = 0x0020;
inline constexpr uint32_t CT_PUNCT = 0x0040;
inline constexpr uint32_t CT_GRAPH = 0x0080;
inline constexpr uint32_t CT_PRINT = 0x0100;
inline constexpr uint32_t CT_XDIGIT = 0x0200;
inline constexpr uint32_t CT_BLANK = 0x0400;

// The class that a locale names itself, by its bit number 0..4.
inline constexpr uint32_t CT_NAMED = 0x0800;
inline constexpr int32_t ct_named_limit = 5;

// The one named class that the engine asks for: characters two screen columns wide.
inline constexpr char ct_full_width[] = "full_width";
