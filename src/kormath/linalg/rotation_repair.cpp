#include <kormath/linalg/matrix3x3.h>
#include <kormath/linalg/rotation_repair.h>
#include <kormath/transforms/matrix_transform.h>

#include <cmath>

namespace KorMathUtility {

bool MakeOrthonormal(MMatrix3x3 &matrix) {
  double(&m)[3][3] = matrix.m;
  const double candidates[4] = {m[0][0] + m[1][1] + m[2][2] + 1.0, 1.0 + m[0][0] - m[1][1] - m[2][2],
                                1.0 - m[0][0] + m[1][1] - m[2][2], 1.0 - m[0][0] - m[1][1] + m[2][2]};
  int chosen = -1;
  double largest = -1.0;
  for (int k = 0; k < 4; ++k) {
    if (candidates[k] > largest) {
      largest = candidates[k];
      chosen = k;
    }
  }
  if (!(largest > 0.0)) return false;

  const double s = 0.5 * std::sqrt(largest);
  double q[4];
  switch (chosen) {
    case 0:
      q[0] = s;
      q[1] = (m[2][1] - m[1][2]) * 0.25 / s;
      q[2] = (m[0][2] - m[2][0]) * 0.25 / s;
      q[3] = (m[1][0] - m[0][1]) * 0.25 / s;
      break;
    case 1:
      q[0] = (m[2][1] - m[1][2]) * 0.25 / s;
      q[1] = s;
      q[2] = (m[0][1] + m[1][0]) * 0.25 / s;
      q[3] = (m[2][0] + m[0][2]) * 0.25 / s;
      break;
    case 2:
      q[0] = (m[0][2] - m[2][0]) * 0.25 / s;
      q[1] = (m[0][1] + m[1][0]) * 0.25 / s;
      q[2] = s;
      q[3] = (m[2][1] + m[1][2]) * 0.25 / s;
      break;
    default:
      q[0] = (m[1][0] - m[0][1]) * 0.25 / s;
      q[1] = (m[2][0] + m[0][2]) * 0.25 / s;
      q[2] = (m[2][1] + m[1][2]) * 0.25 / s;
      q[3] = s;
      break;
  }

  const double squaredLength = q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3];
  if (squaredLength == 0.0) return false;
  const double length = std::sqrt(squaredLength);
  for (double &component : q) component /= length;

  m[0][0] = q[0] * q[0] + q[1] * q[1] - q[2] * q[2] - q[3] * q[3];
  m[1][1] = q[0] * q[0] - q[1] * q[1] + q[2] * q[2] - q[3] * q[3];
  m[2][2] = q[0] * q[0] - q[1] * q[1] - q[2] * q[2] + q[3] * q[3];
  m[0][1] = 2.0 * (q[1] * q[2] - q[0] * q[3]);
  m[1][0] = 2.0 * (q[1] * q[2] + q[0] * q[3]);
  m[0][2] = 2.0 * (q[1] * q[3] + q[0] * q[2]);
  m[2][0] = 2.0 * (q[1] * q[3] - q[0] * q[2]);
  m[1][2] = 2.0 * (q[2] * q[3] - q[0] * q[1]);
  m[2][1] = 2.0 * (q[2] * q[3] + q[0] * q[1]);
  return true;
}

namespace {

MMatrix3x3 GetBlock(const MMTransformMatrix &matrix) {
  MMatrix3x3 block;
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) block.m[r][c] = matrix.Matrix[r][c];
  return block;
}

void SetBlock(MMTransformMatrix &matrix, const MMatrix3x3 &block) {
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) matrix.Matrix[r][c] = block.m[r][c];
}

}  // namespace

bool MakeOrthonormal(MMTransformMatrix &matrix) {
  const MMTransformClass kind = matrix.GetClass();
  if (kind == MMTransformClass::Identity || kind == MMTransformClass::Translation ||
      kind == MMTransformClass::OrthoNormal)
    return true;
  MMatrix3x3 block = GetBlock(matrix);
  const bool result = MakeOrthonormal(block);
  SetBlock(matrix, block);
  return result;
}

bool MakeOrthogonal(MMTransformMatrix &matrix) {
  const MMTransformClass kind = matrix.GetClass();
  if (kind == MMTransformClass::Identity || kind == MMTransformClass::Translation ||
      kind == MMTransformClass::OrthoNormal || kind == MMTransformClass::OrthoGonal ||
      kind == MMTransformClass::Scale1D)
    return true;
  const MMatrix3x3 block = GetBlock(matrix);
  MMatrix3x3 diagonal;
  for (int k = 0; k < 3; ++k) diagonal.m[k][k] = block.m[k][k];
  MMatrix3x3 rotation = block * diagonal.Inverse();
  const bool result = MakeOrthonormal(rotation);
  SetBlock(matrix, rotation * diagonal);
  matrix.VerifyAndSetClass();
  return result;
}

}  // namespace KorMathUtility
