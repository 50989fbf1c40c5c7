// Values in the portable forms of stored rows and of the network. No address needs alignment.
//
//     form               bytes   layout
//     long               4       signed, most significant byte first
//     pointer-sized      8       most significant byte first
//     short              2       least significant byte first, unlike the others: stored, keep
//     float, double      4, 8    the host's order
//     network float ..   4, 8    most significant byte first when the network flag is 1
//     char               n       text padded with blanks, no terminator
//     varchar            1 + n   a length byte, then the text padded with blanks
//     NULL of float ..   4, 8    all bytes 0xFF
//
// The floating stores and the NULL stores name the destination first; all others the source.
// Sizes below zero count as zero.

#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

int32_t ldlong(const void *bytes);
void stlong(int32_t value, void *bytes);
uint64_t ldptr(const void *bytes);
void stptr(uint64_t value, void *bytes);
void stshort(int16_t value, void *bytes);

// Floats pass as doubles on both sides.
double ldfloat(const void *bytes);
void stfloat(void *destination, double value);
double lddbl(const void *bytes);
void stdbl(void *destination, double value);

// A network flag other than 1 asks for the host's form.
double network_ldfloat(const void *bytes, int network);
double network_lddbl(const void *bytes, int network);
void network_stfloat(void *destination, int network, double value);
void network_stdbl(void *destination, int network, double value);

// Loads set *is_null to 1 for the NULL form, else to 0. The value that comes with a NULL is a NaN
// that stores back as the same all-ones bytes; look at the flag.
double ldfltnull(const void *bytes, int16_t *is_null);
double lddblnull(const void *bytes, int16_t *is_null);
double network_ldfltnull(const void *bytes, int16_t *is_null, int network);
double network_lddblnull(const void *bytes, int16_t *is_null, int network);

// Stores write the NULL form when `is_null` is not 0, else the value.
void stfltnull(void *destination, int16_t is_null, double value);
void stdblnull(void *destination, int16_t is_null, double value);
void network_stfltnull(void *destination, int16_t is_null, int network, double value);
void network_stdblnull(void *destination, int16_t is_null, int network, double value);

// Copies a char field without its trailing blanks and terminates: size + 1 bytes at most.
void ldchar(const void *source, ptrdiff_t size, char *destination);

// Fills destination[0..size) with the text and then blanks; a null text gives blanks alone.
void stchar(const char *text, void *destination, ptrdiff_t size);

// Copies the smaller of the length byte and `maximum`, and terminates: maximum + 1 bytes at most.
void ldvarchar(const void *source, ptrdiff_t maximum, char *destination);

// Writes the length byte, then size bytes of text and blanks. The length byte is the text's own
// length even where `size` cut it, modulo 256. A null text gives length 1 and one zero byte.
void stvarchar(const char *text, void *destination, ptrdiff_t size);

#ifdef __cplusplus
}
#endif
