#include <kormath/transforms/ortho_transform.h>

#include <cmath>

namespace {
// 5000 times kDoubleEpsilon: the row tolerance of Verify.
constexpr double kOrthoVerifyTolerance = 1.1102230246251565e-12;
}  // namespace

MMOrthoTransform::MMOrthoTransform()
    : Rotation{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}, Translation{0.0, 0.0, 0.0} {}

MMOrthoTransform::~MMOrthoTransform() = default;

void MMOrthoTransform::Copy(const MMOrthoTransform &other) {
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) Rotation[r][c] = other.Rotation[r][c];
    Translation[r] = other.Translation[r];
  }
}

void MMOrthoTransform::Copy(const double *matrix12) {
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) Rotation[r][c] = matrix12[r * 4 + c];
    Translation[r] = matrix12[r * 4 + 3];
  }
}

void MMOrthoTransform::MakeTransformation(MMPoint3d<double> translation, MMPoint3d<double> row0, MMPoint3d<double> row1,
                                          MMPoint3d<double> row2) {
  const MMPoint3d<double> *rows[3] = {&row0, &row1, &row2};
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) Rotation[r][c] = (*rows[r])[c];
    Translation[r] = translation[r];
  }
}

void MMOrthoTransform::MakeRotation(const MMPoint3d<double> &center, const MMPoint3d<double> &axis,
                                    const double &radians, const bool &normaliseAxis) {
  MMPoint3d<double> u = axis;
  if (normaliseAxis) {
    const double len = u.Length();
    if (len < kDoubleSqrtEpsilon) return;
    u /= len;
  }
  const double x = u.x, y = u.y, z = u.z;
  const double c = std::cos(radians), s = std::sin(radians), t = 1.0 - c;
  Rotation[0][0] = x * x * t + c;
  Rotation[0][1] = x * y * t - z * s;
  Rotation[0][2] = x * z * t + y * s;
  Rotation[1][0] = x * y * t + z * s;
  Rotation[1][1] = y * y * t + c;
  Rotation[1][2] = y * z * t - x * s;
  Rotation[2][0] = x * z * t - y * s;
  Rotation[2][1] = y * z * t + x * s;
  Rotation[2][2] = z * z * t + c;
  for (int r = 0; r < 3; ++r)
    Translation[r] = center[r] - (Rotation[r][0] * center.x + Rotation[r][1] * center.y + Rotation[r][2] * center.z);
}

void MMOrthoTransform::SetTranslation(MMPoint3d<double> translation) {
  for (int r = 0; r < 3; ++r) Translation[r] = translation[r];
}

void MMOrthoTransform::Concatenate(const MMOrthoTransform &other) {
  double t[3], rot[3][3];
  for (int r = 0; r < 3; ++r) {
    t[r] = other.Rotation[r][0] * Translation[0] + other.Rotation[r][1] * Translation[1] +
           other.Rotation[r][2] * Translation[2] + other.Translation[r];
    for (int c = 0; c < 3; ++c)
      rot[r][c] = other.Rotation[r][0] * Rotation[0][c] + other.Rotation[r][1] * Rotation[1][c] +
                  other.Rotation[r][2] * Rotation[2][c];
  }
  for (int r = 0; r < 3; ++r) {
    Translation[r] = t[r];
    for (int c = 0; c < 3; ++c) Rotation[r][c] = rot[r][c];
  }
}

bool MMOrthoTransform::Verify() const {
  auto dot = [this](int a, int b) {
    return Rotation[a][0] * Rotation[b][0] + Rotation[a][1] * Rotation[b][1] + Rotation[a][2] * Rotation[b][2];
  };
  const double deviations[6] = {dot(0, 0) - 1.0, dot(0, 1), dot(0, 2), dot(1, 1) - 1.0, dot(1, 2), dot(2, 2) - 1.0};
  for (double d : deviations)
    if (!(std::fabs(d) <= kOrthoVerifyTolerance)) return false;
  return true;
}

MMPoint3d<double> MMOrthoTransform::Map(const MMPoint3d<double> &p, bool isVector) const {
  MMPoint3d<double> out;
  for (int r = 0; r < 3; ++r) {
    out[r] = Rotation[r][0] * p.x + Rotation[r][1] * p.y + Rotation[r][2] * p.z;
    if (!isVector) out[r] += Translation[r];
  }
  return out;
}
