#ifndef KORMATH_LINALG_ROTATION_REPAIR_H
#define KORMATH_LINALG_ROTATION_REPAIR_H

// Repair of nearly orthonormal matrices: the matrix is sent through a unit
// quaternion, which discards any non-rotational part. The result is always a
// proper rotation (determinant +1), also for an improper input.

#include <kormath/export.h>

class MMatrix3x3;
class MMTransformMatrix;

namespace KorMathUtility {

// Picks the largest of the four quaternion candidates t0 = trace + 1,
// t1 = 1 + m00 - m11 - m22, t2 = 1 - m00 + m11 - m22, t3 = 1 - m00 - m11 + m22
// (strictly largest, ties to the lower index), builds the quaternion from it,
// normalises it and rebuilds the matrix. Returns false, with the matrix
// unchanged, when no candidate is above 0 or the quaternion has squared
// length exactly 0. The identity stays the identity; the zero matrix becomes
// the identity (t0 = 1).
KORMATH_API bool MakeOrthonormal(MMatrix3x3 &matrix);

// Repairs the upper-left 3x3 block of a transform. Identity, Translation and
// OrthoNormal classes are left alone (true). Otherwise the block is written
// back whatever the repair reported, and that result is returned. The class
// and the inverse are not refreshed here; call VerifyAndSetClass and
// ComputeInverse when they are needed.
KORMATH_API bool MakeOrthonormal(MMTransformMatrix &matrix);

// Repairs the rotation of a block that carries a diagonal scale: with M the
// block and D its diagonal, R = M D^-1 (D inverted by cofactors) is repaired
// by MakeOrthonormal and R D is written back, then the class is refreshed by
// VerifyAndSetClass (the inverse is not recomputed). Identity, Translation,
// OrthoNormal, OrthoGonal and Scale1D classes are left alone (true). Returns
// the result of the repair step.
KORMATH_API bool MakeOrthogonal(MMTransformMatrix &matrix);

}  // namespace KorMathUtility

#endif  // KORMATH_LINALG_ROTATION_REPAIR_H
