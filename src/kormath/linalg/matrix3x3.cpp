#include <kormath/linalg/matrix3x3.h>
#include <kormath/linalg/polynomial.h>
#include <kormath/linalg/rotation_repair.h>

#include <cmath>
#include <complex>
#include <utility>

namespace {

// Tolerances of the 3x3 analysis, literal multiples of the machine epsilon.
constexpr double kRankTolerance = 2.220446049250313e-16;       // 1 eps: rank decision
constexpr double kVectorTolerance = 2.220446049250313e-15;     // 10 eps: vectors, positivity
constexpr double kImaginaryTolerance = 8.881784197001252e-15;  // 40 eps: imaginary parts

using Point = MMPoint3d<double>;

bool AllBelow(const Point &p, double tolerance) {
  return std::fabs(p.x) < tolerance && std::fabs(p.y) < tolerance && std::fabs(p.z) < tolerance;
}

// The first of three vectors with the largest Euclidean length; a later one
// replaces the current one only when strictly longer.
Point Longest(const Point &v0, const Point &v1, const Point &v2) {
  const Point *best = &v0;
  double bestLength = v0.Length();
  const double l1 = v1.Length();
  if (l1 > bestLength) {
    best = &v1;
    bestLength = l1;
  }
  if (v2.Length() > bestLength) best = &v2;
  return *best;
}

// Descending order by three compare-and-swaps on (0,1), (1,2), (0,1).
void SortDescending(double *l) {
  if (l[0] < l[1]) std::swap(l[0], l[1]);
  if (l[1] < l[2]) std::swap(l[1], l[2]);
  if (l[0] < l[1]) std::swap(l[0], l[1]);
}

void AddScaledOuter(MMatrix3x3 &s, double factor, const Point &e) {
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) s.m[r][c] += factor * (e[r] * e[c]);
}

}  // namespace

MMatrix3x3::MMatrix3x3() : m{{0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}} {}

MMatrix3x3::MMatrix3x3(double a00, double a01, double a02, double a10, double a11, double a12, double a20, double a21,
                       double a22)
    : m{{a00, a01, a02}, {a10, a11, a12}, {a20, a21, a22}} {}

MMatrix3x3::~MMatrix3x3() = default;

MMatrix3x3 MMatrix3x3::Identity() { return MMatrix3x3(1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0); }

double MMatrix3x3::Determinant() const {
  return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
         m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

double MMatrix3x3::GetMaxElement() const {
  double best = m[0][0];
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c)
      if (m[r][c] > best) best = m[r][c];
  return best;
}

MMatrix3x3 MMatrix3x3::GetATransposeA() const {
  MMatrix3x3 out;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) out.m[i][j] = m[0][i] * m[0][j] + m[1][i] * m[1][j] + m[2][i] * m[2][j];
  return out;
}

MMatrix3x3 MMatrix3x3::operator*(const MMatrix3x3 &o) const {
  MMatrix3x3 out;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) out.m[i][j] = m[i][0] * o.m[0][j] + m[i][1] * o.m[1][j] + m[i][2] * o.m[2][j];
  return out;
}

MMatrix3x3 MMatrix3x3::operator+(const MMatrix3x3 &o) const {
  MMatrix3x3 out;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) out.m[i][j] = m[i][j] + o.m[i][j];
  return out;
}

MMatrix3x3 MMatrix3x3::operator-(const MMatrix3x3 &o) const {
  MMatrix3x3 out;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) out.m[i][j] = m[i][j] - o.m[i][j];
  return out;
}

MMatrix3x3 MMatrix3x3::Inverse() const {
  const double det = Determinant();
  MMatrix3x3 out;
  for (int i = 0; i < 3; ++i) {
    const int r1 = (i + 1) % 3;
    const int r2 = (i + 2) % 3;
    for (int j = 0; j < 3; ++j) {
      const int c1 = (j + 1) % 3;
      const int c2 = (j + 2) % 3;
      out.m[j][i] = (m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1]) / det;
    }
  }
  return out;
}

bool MMatrix3x3::GetEigenValues(double *const values) const {
  // Characteristic polynomial det(A - l I), ascending powers.
  const double c[4] = {
      Determinant(),
      (m[1][0] * m[0][1] + m[1][2] * m[2][1] + m[2][0] * m[0][2]) -
          (m[2][2] * m[0][0] + m[1][1] * m[0][0] + m[2][2] * m[1][1]),
      m[0][0] + m[1][1] + m[2][2],
      -1.0,
  };
  // The leading coefficient -1 always counts, so the polynomial is a cubic
  // and the allocation-free Cardano branch of SolvePolynomial applies.
  std::complex<double> roots[3];
  KorMathDetail::SolveCubicRoots(c, roots);
  for (int i = 0; i < 3; ++i) values[i] = roots[i].real();
  const double bound = GetMaxElement() * kImaginaryTolerance;
  for (const auto &root : roots)
    if (!(std::fabs(root.imag()) <= bound)) return false;
  return true;
}

bool MMatrix3x3::GetEigenValuesRankTwo(double *const values) const {
  // The characteristic polynomial divided by the eigenvalue 0.
  const double c[3] = {
      (m[0][1] * m[1][0] + m[2][1] * m[1][2] + m[2][0] * m[0][2]) -
          (m[2][2] * m[0][0] + m[1][1] * m[0][0] + m[2][2] * m[1][1]),
      m[0][0] + m[1][1] + m[2][2],
      -1.0,
  };
  std::complex<double> roots[2];
  KorMathDetail::SolveQuadraticRoots(c, roots);
  const double bound = GetMaxElement() * kVectorTolerance;
  for (const auto &root : roots)
    if (!(std::fabs(root.imag()) <= bound)) return false;
  values[0] = roots[0].real();
  values[1] = roots[1].real();
  values[2] = 0.0;
  return true;
}

MMPoint3d<double> MMatrix3x3::GetAnyPerpendicular(const MMPoint3d<double> &r) {
  if (std::fabs(r.x) > std::fabs(r.y) && std::fabs(r.x) > std::fabs(r.z)) return Point(-r.z / r.x, 0.0, 1.0);
  if (std::fabs(r.y) <= std::fabs(r.z)) return Point(0.0, 1.0, -r.y / r.z);
  return Point(1.0, -r.x / r.y, 0.0);
}

bool MMatrix3x3::GetRightNullVector(const MMatrix3x3 &matrix, MMPoint3d<double> &n) {
  const Point row0 = matrix.GetRow(0);
  const Point row1 = matrix.GetRow(1);
  const Point row2 = matrix.GetRow(2);
  n = Longest(row0.Cross(row1), row1.Cross(row2), row2.Cross(row0));
  // Signed maximum on purpose: a matrix without a positive element has a
  // non-positive tolerance and skips the rank-1 fallbacks.
  const double tolerance = matrix.GetMaxElement() * kVectorTolerance;
  if (AllBelow(n, tolerance)) {
    // Rank at most 1: any vector perpendicular to the longest row.
    n = GetAnyPerpendicular(Longest(row0, row1, row2));
  }
  if (AllBelow(n, tolerance)) n = Point(1.0, 0.0, 0.0);
  n.Normalise();
  return std::fabs(row0.Dot(n)) < tolerance && std::fabs(row1.Dot(n)) < tolerance && std::fabs(row2.Dot(n)) < tolerance;
}

bool MMatrix3x3::GetLeftNullVector(const MMatrix3x3 &matrix, MMPoint3d<double> &n) {
  const Point col0 = matrix.GetColumn(0);
  const Point col1 = matrix.GetColumn(1);
  const Point col2 = matrix.GetColumn(2);
  n = Longest(col0.Cross(col1), col1.Cross(col2), col2.Cross(col0));
  n.Normalise();
  // Checked against the rows although built from the columns; kept so on
  // purpose, and the only caller ignores it.
  return std::fabs(matrix.GetRow(0).Dot(n)) < kVectorTolerance &&
         std::fabs(matrix.GetRow(1).Dot(n)) < kVectorTolerance && std::fabs(matrix.GetRow(2).Dot(n)) < kVectorTolerance;
}

bool MMatrix3x3::GetEigenVectorOfValue(double value, MMPoint3d<double> &vector) const {
  MMatrix3x3 shifted(*this);
  for (int k = 0; k < 3; ++k) shifted.m[k][k] -= value;
  GetRightNullVector(shifted, vector);
  return true;
}

bool MMatrix3x3::GetPerpendicularInEigenspace(const MMPoint3d<double> &given, MMPoint3d<double> &out) const {
  // Rows of this matrix itself, not of the matrix shifted by the eigenvalue.
  const Point r = Longest(GetRow(0), GetRow(1), GetRow(2));
  if (AllBelow(r, kVectorTolerance)) {
    out = GetAnyPerpendicular(given);  // not normalised
    return true;
  }
  Point c = r.Cross(given);
  if (AllBelow(c, kVectorTolerance)) return false;
  c.Normalise();
  out = c;
  return true;
}

bool MMatrix3x3::GetEigenVectors(MMPoint3d<double> *const vectors, double *const values) const {
  const bool equal01 = std::fabs(values[1] - values[0]) < kVectorTolerance;
  const bool equal12 = std::fabs(values[2] - values[1]) < kVectorTolerance;
  if (equal01 && equal12) {
    vectors[0] = Point(1.0, 0.0, 0.0);
    vectors[1] = Point(0.0, 1.0, 0.0);
    vectors[2] = Point(0.0, 0.0, 1.0);
    return true;
  }
  GetEigenVectorOfValue(values[0], vectors[0]);
  bool completedSecond = false;
  if (std::fabs(values[1] - values[0]) > kVectorTolerance) {
    GetEigenVectorOfValue(values[1], vectors[1]);
  } else {
    if (!GetPerpendicularInEigenspace(vectors[0], vectors[1])) return false;
    completedSecond = true;
  }
  if (std::fabs(values[2] - values[1]) > kVectorTolerance) {
    GetEigenVectorOfValue(values[2], vectors[2]);
  } else if (completedSecond) {
    vectors[2] = vectors[1].Cross(vectors[0]);
  } else {
    if (!GetPerpendicularInEigenspace(vectors[1], vectors[2])) return false;
  }
  return true;
}

bool MMatrix3x3::InverseSquareRootFullRank(MMatrix3x3 &s) {
  double l[3];
  if (!s.GetEigenValues(l)) return false;
  SortDescending(l);
  if (l[0] < kVectorTolerance || l[1] < kVectorTolerance || l[2] < kVectorTolerance) return false;
  Point e[3];
  if (!s.GetEigenVectors(e, l)) return false;
  s = MMatrix3x3();
  for (int i = 0; i < 3; ++i) AddScaledOuter(s, 1.0 / std::sqrt(l[i]), e[i]);
  return true;
}

bool MMatrix3x3::InverseSquareRootRankTwo(MMatrix3x3 &s) {
  double l[3];
  if (!s.GetEigenValuesRankTwo(l)) return false;
  SortDescending(l);
  // Rank 1 and rank 0 end here.
  if (std::fabs(l[2]) > kVectorTolerance || l[1] < kVectorTolerance) return false;
  Point e0;
  Point e1;
  s.GetEigenVectorOfValue(l[0], e0);
  if (std::fabs(l[1] - l[0]) > kVectorTolerance) {
    s.GetEigenVectorOfValue(l[1], e1);
  } else if (!s.GetPerpendicularInEigenspace(e0, e1)) {
    return false;
  }
  const double f0 = 1.0 / std::sqrt(l[0]);
  const double f1 = 1.0 / std::sqrt(l[1]);
  s = MMatrix3x3();
  AddScaledOuter(s, f0, e0);
  AddScaledOuter(s, f1, e1);
  return true;
}

bool MMatrix3x3::NearestOrthonormal(MMatrix3x3 &result) const {
  result = GetATransposeA();
  const double d = result.Determinant();
  const double m = result.GetMaxElement();

  if (d * d > m * m * kRankTolerance) {
    if (!InverseSquareRootFullRank(result)) return false;
    // No sign correction: an improper matrix goes on as it is.
    result = *this * result;
    return KorMathUtility::MakeOrthonormal(result);
  }

  // Rank 2 (also a NaN determinant): complete the missing direction.
  if (!InverseSquareRootRankTwo(result)) return false;
  const MMatrix3x3 b = *this * result;
  Point u;
  Point v;
  GetLeftNullVector(b, u);
  GetRightNullVector(b, v);
  MMatrix3x3 p;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) p.m[i][j] = u[i] * v[j];
  const MMatrix3x3 plus = b + p;
  if (plus.Determinant() > 0.0) {
    result = plus;
  } else {
    result = b - p;
  }
  return KorMathUtility::MakeOrthonormal(result);
}
