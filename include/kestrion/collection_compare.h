// Comparing, hashing and sorting collections.
//
// Two elements are equal when both are NULL or their stored forms are the same; texts are compared
// without trailing blanks, elements that are collections from their flags on.

#pragma once

#include <kestrion/collection.h>

#include <stdint.h>

// Compares an element with a searched one; anything but 0 ends the search and is its result.
typedef int32_t coll_predicate(coll_rec *collection, const void *element, int32_t element_length,
                               const void *searched, int32_t searched_length);

// Order of two elements: below 0, 0, above 0.
typedef int32_t coll_order(const void *a, int32_t a_length, const void *b, int32_t b_length,
                           void *arg);

#ifdef __cplusplus
extern "C" {
#endif

// Calls `compare` with each element until it answers other than 0. Returns that answer, or 0.
int32_t qvt_coll_inpred(coll_rec *collection, coll_predicate *compare, const void *searched,
                        int32_t length);

// The predicate of equality: err_coll_duplicate when the two are equal, else 0.
int32_t collelmtcmp(coll_rec *collection, const void *element, int32_t element_length,
                    const void *searched, int32_t searched_length);

// 1 when the collections hold equal elements, else 0: a LIST and a ROW in the same order, a SET and a
// MULTISET each element as often. Two NULL collections are equal, one is not.
// Errors  err_coll_type for different kinds, err_coll_no_type, err_coll_no_memory.
int32_t qvt_coll_equal(coll_rec *a, coll_rec *b);

// The same with the answer in *equal; returns 0 or the error.
int32_t mi_qvt_coll_equal(coll_rec *a, coll_rec *b, int32_t *equal);

// Brings cl_hashvalue up to date, the XOR of the elements' hashes: equal elements cancel each other,
// so that it proves difference alone. 0 for a NULL or empty collection.
int32_t qvt_coll_hash(coll_rec *collection);

// PJW hash of a text up to a zero byte, 0 to 210: "abc" -> 124.
uint32_t qvt_hashpjw(const char *text, int32_t length);

// `hash` XORed with the big-endian words of the bytes; the last is filled with zeros: 0102 -> 01020000.
uint32_t qvt_calc_hval(uint32_t hash, const void *bytes, int32_t length);

// Sorts the elements, keeping the order of equal ones, into a new block; the log is then empty and
// cursors are before the first element.
// Errors  err_coll_type for a ROW, err_coll_null, err_coll_no_memory.
int32_t qvt_coll_qsort(coll_rec *collection, coll_order *compare, void *arg);

// Copies an element that is a collection to another address, where its flags may need another place.
// Returns the bytes written, at most 8 more than it had.
int32_t collcopy(void *destination, const void *element);

#ifdef __cplusplus
}
#endif
