#ifndef KORMATH_TRANSFORMS_ORIENTATION_H
#define KORMATH_TRANSFORMS_ORIENTATION_H

// Orientation strings and the legacy rotation functions.
//
// An orientation is a wide string of at least three letters, one per axis in
// the order x, y, z, telling where that axis of a data set points:
//   A (anterior) <-> P (posterior), L (left) <-> R (right),
//   T (top) <-> B (bottom), X = unknown axis.
// Any other letter is answered with X.
//
// The rotation functions work on float[3] vectors and float[3][3] row-major
// matrices. Axis numbers are 0, 1, 2 for x, y, z. All angles are degrees.
// Rotations are right-handed: about axis k, with a = (k + 1) mod 3 and
// b = (k + 2) mod 3, a' = a cos - b sin and b' = b cos + a sin.

#include <kormath/export.h>

// The opposite letter, after upper-casing the input (ASCII only, as the C
// locale's toupper does). The answer is always upper case; X for X and for
// every letter outside the alphabet.
KORMATH_API wchar_t GetOpposite(wchar_t letter);

// Stores the opposite of `letter` in `opposite`; if that is X, `letter` is
// set to X as well.
KORMATH_API void GetOpposite(wchar_t &opposite, wchar_t &letter);

// True if each of the three letters is in the alphabet (either case, X
// allowed) and no letter other than X is repeated or has its opposite in a
// later place. The comparison with later places is by the exact character,
// so a lower-case letter does not match its upper-case repeat (kept so).
// A string shorter than three letters is not valid.
KORMATH_API bool IsOrientationValid(const wchar_t *orientation);

// True if all three letters are in the alphabet, none is X (either case) and
// no letter repeats exactly. Opposites are not looked at.
KORMATH_API bool IsOrientationComplete(const wchar_t *orientation);

// True if the string is valid and its third letter is B or T; or if its
// third letter is X and neither of the first two is B or T (the second
// alternative does not ask for validity). Letters compared in upper case.
KORMATH_API bool IsOrientationAxial(const wchar_t *orientation);

// Handedness of the first three letters, read exactly as they stand (no case
// change). Let d be the number of places out of line (place 0 not R or L,
// place 1 not B or T, place 2 not P or A) and s the number of places holding
// L, T or A, wherever they stand. d == 1 answers false; otherwise the result
// is true exactly when s, plus 1 if d is 2, is even. RBP is right-handed;
// a string with all three places out of line is judged by s alone.
KORMATH_API bool IsOrientationRightHanded(const wchar_t *orientation);

// True unless exactly one place is out of line (same count d as above); a
// single place out of line cannot be a permutation.
KORMATH_API bool IsOrientationRightHandedValid(const wchar_t *orientation);

// Copies `in`, with its terminator, to `out`; if `mirror` is non-zero,
// letter 1 of `out` becomes its opposite (an X stays X). Returns
// IsOrientationRightHanded(out). `out` must have room for all of `in`.
KORMATH_API unsigned char ORIENTATIE_MET_SPIEGEL(wchar_t *out, const wchar_t *in, unsigned char mirror);

// Makes an orientation right-handed, in place. First the completion step: for
// place 0 and then place 1, the letter's opposite is taken; if that is X the
// place becomes X; every other place holding the same letter (exactly) or its
// opposite becomes X. If any place is then X (either case), or a letter is
// not valid, the result is false (the string keeps the completion changes).
// Otherwise, if it is not right-handed, letter 1 becomes its opposite, and
// the result is true.
KORMATH_API bool MAAK_RECHTSHANDIG(wchar_t *orientation);

// The signed permutation matrix from orientation `from` to orientation `to`:
// for each place i of `from` whose letter f and opposite o are both not X,
// the first place j of `to` holding f or o gets m[j][i] = +1 if f stands
// anywhere in `to`, else -1 (only o stands there). Places that found no
// partner get the remaining free rows, in order, with +1. Exact characters.
KORMATH_API void ORIENTATIE_REL(float (*const m)[3], const wchar_t *from, const wchar_t *to);

// Reads the three angles of a rotation matrix: a = GET_ALIGN_ROTATION(m, 0,
// 2), m rotated about 0 by a; b = GET_ALIGN_ROTATION(m, 1, 2), rotated about
// 1; c = GET_ALIGN_ROTATION(m, 2, 1), rotated about 2. rx = -a, ry = -b,
// rz = -c. It changes `m`: for a rotation it ends as the identity, so a
// caller that needs the matrix keeps a copy.
KORMATH_API void ORIENTATIE(float (*const m)[3], float &rx, float &ry, float &rz);

// Rotates a vector about one axis, in float, with the radian factor
// 0.017453292f; in place, or into `out` (`out` may be `v`).
KORMATH_API void ROTEER_ENKEL(float *const v, long axis, float degrees);
KORMATH_API void ROTEER_ENKEL(float *const v, long axis, float degrees, float *const out);
// The same on the rows of a matrix (rows a and b are combined, column by
// column): pre-multiplies `m` by the rotation.
KORMATH_API void ROTEER_ENKEL(float (*const m)[3], long axis, float degrees);

// ROTEER_ENKEL of (x, y, z) about axis 2 by rz, then axis 1 by ry, then
// axis 0 by rx.
KORMATH_API void ROTEER_3D(float &x, float &y, float &z, float rx, float ry, float rz);
// The same via float; each result is rounded half away from zero in float
// (v + 0.5f for v >= 0.0f, v - 0.5f otherwise) and truncated.
KORMATH_API void ROTEER_3D(short &x, short &y, short &z, float rx, float ry, float rz);
KORMATH_API void ROTEER_3D(long &x, long &y, long &z, float rx, float ry, float rz);

// Changes the angles (rx, ry, rz) so that they express a further rotation by
// `degrees` about the image axis `axis`. About axis 2 it only adds `degrees`
// to rz. Otherwise it keeps, in static storage, the last input angles, the
// last axis and a cached triple of image-axis angles: while the inputs and
// the axis stay the same, repeated calls accumulate the angle in the cache.
// Not re-entrant: the static state is shared by all callers and threads.
KORMATH_API void ROTEER_BEELDAS(float &rx, float &ry, float &rz, long axis, float degrees);

// The angles of the inverse rotation: builds the rotation of rz, ry, rx about
// axes 2, 1, 0, then extracts a = GET_ALIGN_ROTATION(m, 2, 0), b =
// GET_ALIGN_ROTATION(m, 1, 0), c = GET_ALIGN_ROTATION(m, 0, 1), applying each
// in turn; rx = c, ry = b, rz = a. Works in static storage: not re-entrant.
KORMATH_API void ROTEER_INVERSE(float &rx, float &ry, float &rz);

// The rotation matrix about `axis` by `degrees`, radian factor 0.017453292f.
KORMATH_API void FILL_TRANSFORM(float (*const m)[3], long axis, float degrees);

// out = m v, in float. `out` must not be `v`.
KORMATH_API void MATRIX_VECTOR(float *const out, const float (*const m)[3], const float *const v);
// out = a b, in float. `out` must not be `a` or `b`.
KORMATH_API void MATRIX_MATRIX(float (*const out)[3], const float (*const a)[3], const float (*const b)[3]);

// The rotation about `axis`, in degrees, that brings column `target` of `m`
// (or component `target` of `v`) onto its own axis, with a positive
// component. With j = (axis + 1) mod 3, k = (axis + 2) mod 3, p, q the
// elements j and k of the column: components below 1e-05 in absolute value
// count as zero (strict); for target j the angle is 0 if q is zero, pi/2 if
// p is zero, else atan(-q/p); for target k it is 0 if p is zero, pi/2 if q
// is zero, else atan(p/q). If the resulting component would be negative,
// pi is added (so two tiny components with a negative leading one give 180).
// target == axis is not meaningful and answers 0.
KORMATH_API float GET_ALIGN_ROTATION(float (*const m)[3], long axis, long target);
KORMATH_API float GET_ALIGN_ROTATION(float *const v, long axis, long target);

// Identity, then ROTEER_ENKEL of the matrix about axis 2 by angles[2], axis 1
// by angles[1], axis 0 by angles[0].
KORMATH_API void ANGLES_TO_MATRIX(float (*const m)[3], float *const angles);

// The two rotations that bring `v` onto `axis`. angles[axis] = 0. The lower
// other axis is aligned first and its angle stored negated, then the higher
// one, likewise negated; the intermediate rotation of the working copy is
// skipped when the first angle is 0.
KORMATH_API void GET_ALIGN_ROTATIONS(float *const angles, const float *const v, unsigned long axis);
// The mirror form: the higher other axis first, then the lower one, angles
// stored as they are, without negation.
KORMATH_API void GET_ALIGN_ROTATIONS(float *const angles, unsigned long axis, const float *const v);

#endif  // KORMATH_TRANSFORMS_ORIENTATION_H
