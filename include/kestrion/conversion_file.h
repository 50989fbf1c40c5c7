// Reading conversion objects.
//
//     object   := "FILE_TYPE=codeset_conversion_object" NL
//                 "COMPILER_VERSION=9" NL
//                 name "=" N NL
//                 skipped line{N - 3}
//                 source_stateful SP target_stateful NL
//                 sequence{4} NL
//                 target_min SP target_max SP x SP x SP source_min SP source_max NL
//                 no_sb_table NL
//                 expansion NL
//                 table [ table when source_stateful ]
//     sequence := length: 1 hexadecimal digit, that many pairs of digits
//     datum    := control: 2 digits, then control & 7 pairs; the rest of target_max bytes is 0
//
// docs/formats/conversion-object.md has the whole format with an example.

#pragma once

#include <kestrion/conversion.h>

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

// Reads an object into a cleared record and chooses its routines. Closes the file on success only
// (the operations that open an object close a refused one); on failure the tables made so far stay
// in the record for gl_cv_unload. Returns 0, or -1 with GLS_ERR_FILE (no file, not this kind of
// object, a bad head), GLS_ERR_NO_MEMORY, or the error of a refused table; a number without its
// line end and a target_max outside 1 to 4 leave the word alone.
int32_t read_cv_file(cv_rec *cv, FILE *file);

// Datum reader of both tables. Refuses a count above the datum's room, and the end of the file.
int conv_reader(FILE *stream, void *datum, uint32_t data_size);
// Its counterpart for the compilers.
void conv_writer(FILE *stream, const void *datum);

#ifdef __cplusplus
}
#endif
