// Eras: the texts of the TIME category taken apart.
//
// A text has seven fields with colons between them:
//
//     direction : offset : start : end : name : second name : format
//     +:2:1990/01/01:+*:Heisei:H:%EC%Ey
//
// The direction is "+" or "-"; a date is year/month/day, the year of up to nine digits and maybe a
// minus sign; the end "+*" or "-*" is open. The format is the rest of the text and may hold colons.
// A text that is anything else is error 11.

#pragma once

#include <kestrion/locale_rec.h>

namespace kestrion {

// Makes the eras of the record from its era texts. Returns false with the error word set.
bool parse_eras(locale_rec *lc);

void free_eras(locale_rec *lc);

} // namespace kestrion
