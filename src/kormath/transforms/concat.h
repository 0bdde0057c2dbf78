#ifndef KORMATH_TRANSFORMS_CONCAT_H
#define KORMATH_TRANSFORMS_CONCAT_H

// Composition and structural equality of transforms of unknown kind.
//
// Concat looks at the concrete kinds and picks the cheapest form of the
// product: identities disappear, neighbouring matrices fold into one matrix
// (so a chain of matrices never grows a stack), and anything else is held in
// an MMTransformStack. A matrix next to a stack merges into the stack's end
// matrix. Every result is a new heap object (from the transform pool) owned
// by the caller, who deletes it by the virtual destructor.

#include <kormath/export.h>
#include <kormath/transforms/transform.h>

#include <vector>

// The product first * second: `second` acts first. Never returns an operand.
KORMATH_API MMTransform *Concat(const MMTransform &first, const MMTransform &second);

// The product of the list, in list order (the last element acts first), with
// *seed, if given, placed in front of it. The function takes over *seed
// (it becomes part of the result or is deleted) and sets *seed to null; the
// pointers of the list stay the caller's and are never changed. With no
// non-identity element the result is the seed, or a new identity
// MMTransformMatrix when there is none. `seed` may be null, and so may *seed;
// null elements of the list count as identities.
KORMATH_API MMTransform *Concat(const std::vector<MMTransform *> &transforms, MMTransform **seed);

// Structural comparison by concrete kind (I identity, M matrix, S stack):
//   I,I: true.            I,M or I,S: b.IsIdentity().
//   M,M: all 16 elements within kDoubleSqrtEpsilonX100 (strict).
//   M,I: a.IsIdentity().  M,S: a == the stack's only element, if it holds
//                         exactly one; else false.
//   S,I: a.IsIdentity().  S,S: element-wise from the front, equal lengths.
//   S,other (M included): the stack's only element == b, if it holds exactly
//                         one; else false.
// Every other pairing is false: two field transforms, or a line perspective
// with itself, are never equal, and a matrix is not equal to a two-element
// stack even if the product is the same matrix.
KORMATH_API bool operator==(const MMTransform &a, const MMTransform &b);

#endif  // KORMATH_TRANSFORMS_CONCAT_H
