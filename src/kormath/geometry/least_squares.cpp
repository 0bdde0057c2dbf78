#include <kormath/geometry/least_squares.h>

#include <kormath/linalg/matrix3x3.h>
#include <kormath/transforms/matrix_transform.h>

#include <cmath>
#include <utility>

namespace {

// Fewer points than this make the plane a line.
constexpr std::uint32_t kMinimumPlanePoints = 3;
// Determinant threshold of CalculateThroughOrigin: the square root of the
// single-precision epsilon.
constexpr double kThroughOriginDeterminant = 0.0003452669770922512;
// Threshold on the 2D determinant of the circle fit.
constexpr double kCircleDeterminant = 2.220446049250313e-16;

}  // namespace

// ---------------------------------------------------------------- MMLeastSquarePlane

MMLeastSquarePlane::MMLeastSquarePlane()
    : plane(),
      calculated(false),
      deviationValid(false),
      isLine(false),
      count(0),
      Sx(0.0),
      Sy(0.0),
      Sz(0.0),
      Sxx(0.0),
      Syy(0.0),
      Szz(0.0),
      Sxy(0.0),
      Sxz(0.0),
      Syz(0.0),
      standardDeviation(0.0),
      maxDeviation(0.0) {}

void MMLeastSquarePlane::_ClearSums() {
  count = 0;
  Sx = Sy = Sz = 0.0;
  Sxx = Syy = Szz = 0.0;
  Sxy = Sxz = Syz = 0.0;
}

void MMLeastSquarePlane::Init() {
  calculated = false;
  deviationValid = false;
  _ClearSums();
}

void MMLeastSquarePlane::AddPoint(double x, double y, double z) {
  Sx += x;
  Sy += y;
  Sz += z;
  Sxx += x * x;
  Syy += y * y;
  Szz += z * z;
  Sxy += x * y;
  Sxz += x * z;
  Syz += y * z;
  ++count;
  calculated = false;
  deviationValid = false;
}

MMPoint3d<double> MMLeastSquarePlane::_SmallestEigenVector(double xx, double yy, double zz, double xy, double xz,
                                                           double yz) {
  const MMatrix3x3 m(xx, xy, xz, xy, yy, yz, xz, yz, zz);
  double values[3] = {0.0, 0.0, 0.0};
  // The results of the eigen-analysis are not looked at: the real parts and
  // the vectors found are used as they stand.
  m.GetEigenValues(values);
  // Ascending, by three compare-and-swaps, so that equal values are
  // neighbours for GetEigenVectors and the smallest one, whose vector is the
  // normal, is worked out first (a later repeated pair may fail to complete
  // without spoiling it).
  const auto order = [&values](int i, int j) {
    if (values[j] < values[i]) std::swap(values[i], values[j]);
  };
  order(0, 1);
  order(1, 2);
  order(0, 1);
  MMPoint3d<double> vectors[3];
  m.GetEigenVectors(vectors, values);
  int chosen = 0;
  if (std::abs(values[1]) < std::abs(values[0])) chosen = 1;
  if (std::abs(values[2]) < std::abs(values[chosen])) chosen = 2;
  MMPoint3d<double> n = vectors[chosen];
  const double len = n.Length();
  if (len != 0.0) n /= len;
  return n;
}

void MMLeastSquarePlane::Calculate() {
  if (count < kMinimumPlanePoints) {
    calculated = false;
    deviationValid = false;
    isLine = true;
  }
  const double n = static_cast<double>(count);
  const double cxx = Sxx - Sx * Sx / n;
  const double cyy = Syy - Sy * Sy / n;
  const double czz = Szz - Sz * Sz / n;
  const double cxy = Sxy - Sy * Sx / n;
  const double cxz = Sxz - Sz * Sx / n;
  const double cyz = Syz - Sz * Sy / n;
  const MMPoint3d<double> normal = _SmallestEigenVector(cxx, cyy, czz, cxy, cxz, cyz);
  const MMPoint3d<double> centroid = count == 0 ? MMPoint3d<double>() : MMPoint3d<double>(Sx / n, Sy / n, Sz / n);
  plane.A() = normal.x;
  plane.B() = normal.y;
  plane.C() = normal.z;
  plane.D() = -centroid.Dot(normal);
  if (count > 2) {
    calculated = true;
    deviationValid = false;
    isLine = false;
  }
}

void MMLeastSquarePlane::CalculateThroughOrigin() {
  if (count < kMinimumPlanePoints) {
    calculated = false;
    deviationValid = false;
    isLine = true;
  }
  const double det = 2.0 * Sxy * Syz * Sxz + Syy * Sxx * Szz - Sxz * Sxz * Syy - Sxy * Sxy * Szz - Syz * Syz * Sxx;
  if (det > kThroughOriginDeterminant) {
    const MMPoint3d<double> normal = _SmallestEigenVector(Sxx, Syy, Szz, Sxy, Sxz, Syz);
    plane.A() = normal.x;
    plane.B() = normal.y;
    plane.C() = normal.z;
    plane.D() = 0.0;
    if (count < kMinimumPlanePoints) return;
    isLine = false;
    calculated = true;
    deviationValid = false;
    return;
  }

  isLine = false;
  const double q = Szz * Syy - Syz * Syz;
  double d = -(Sxx * q - (Szz * Sxy - Syz * Sxz) * Sxy + (Syz * Sxy - Syy * Sxz) * Sxz);
  double a = q * Sx - (Szz * Sy - Syz * Sz) * Sxy + (Syz * Sy - Syy * Sz) * Sxz;
  double b = (Szz * Sy - Syz * Sz) * Sxx - (Szz * Sxy - Syz * Sxz) * Sx + (Sxy * Sz - Sxz * Sy) * Sxz;
  double c = (Syy * Sz - Syz * Sy) * Sxx - (Sxy * Sz - Sxz * Sy) * Sxy + (Syz * Sxy - Syy * Sxz) * Sx;
  const double len = std::sqrt(a * a + b * b + c * c);
  if (len != 0.0) {
    a /= len;
    b /= len;
    c /= len;
    d /= len;
  } else if (Sxx == 0.0 && Syy != 0.0 && Szz != 0.0) {
    a = 1.0;
    b = c = d = 0.0;
  } else if (Syy == 0.0 && Sxx != 0.0 && Szz != 0.0) {
    b = 1.0;
    a = c = d = 0.0;
  } else if (Szz == 0.0 && Sxx != 0.0 && Syy != 0.0) {
    c = 1.0;
    a = b = d = 0.0;
  } else {
    a = b = c = d = 0.0;
    isLine = true;
  }
  plane.A() = a;
  plane.B() = b;
  plane.C() = c;
  plane.D() = d;
  calculated = true;
  deviationValid = false;
}

void MMLeastSquarePlane::Calculate(const std::vector<MMPoint3d<double>> &points) {
  Init();
  for (const MMPoint3d<double> &p : points) AddPoint(p.x, p.y, p.z);
  Calculate();
  _InitDeviation();
  for (const MMPoint3d<double> &p : points) _UpdateDeviation(p);
  _UpdateDeviation(points.size());
}

void MMLeastSquarePlane::CalculateWeighted(const std::vector<std::pair<MMPoint3d<double>, double>> &weighted) {
  double total = 0.0;
  for (const auto &entry : weighted) total += entry.second;
  MMPoint3d<double> mean;
  for (const auto &entry : weighted) {
    const double w = entry.second;
    mean.x += (w * entry.first.x) / total;
    mean.y += (w * entry.first.y) / total;
    mean.z += (w * entry.first.z) / total;
  }
  Init();
  for (const auto &entry : weighted) {
    const MMPoint3d<double> q = (entry.first - mean) * entry.second;
    AddPoint(q.x, q.y, q.z);
  }
  CalculateThroughOrigin();
  plane.D() = -(mean.x * plane.A() + mean.y * plane.B() + mean.z * plane.C());
  _InitDeviation();
  for (const auto &entry : weighted) _UpdateDeviation(entry.first);
  _UpdateDeviation(weighted.size());
}

MMPlaneEq<double> MMLeastSquarePlane::GetPlane() {
  if (!calculated) Calculate();
  return plane;
}

MMPoint3d<double> MMLeastSquarePlane::GetAveragePoint() const {
  if (count == 0) return MMPoint3d<double>();
  const double n = static_cast<double>(count);
  return MMPoint3d<double>(Sx / n, Sy / n, Sz / n);
}

void MMLeastSquarePlane::_InitDeviation() {
  standardDeviation = 0.0;
  maxDeviation = 0.0;
  deviationValid = false;
}

void MMLeastSquarePlane::_UpdateDeviation(const MMPoint3d<double> &point) {
  const double v = plane.Distance(point);
  standardDeviation += v * v;
  if (std::abs(v) > maxDeviation) maxDeviation = std::abs(v);
}

void MMLeastSquarePlane::_UpdateDeviation(std::size_t number) {
  standardDeviation = std::sqrt(standardDeviation / static_cast<double>(number));
  deviationValid = true;
}

// ---------------------------------------------------------------- MMLeastSquareCircle

MMLeastSquareCircle::MMLeastSquareCircle()
    : radius(0.0),
      calculated(false),
      isLine(false),
      count(0),
      Sx(0.0),
      Sy(0.0),
      Sxx(0.0),
      Syy(0.0),
      Sxy(0.0),
      Sxxx(0.0),
      Sxxy(0.0),
      Sxyy(0.0),
      Syyy(0.0),
      planeStandardDeviation(0.0),
      circleStandardDeviation(0.0),
      planeMaxDeviation(0.0),
      circleMaxDeviation(0.0) {}

void MMLeastSquareCircle::_Init() {
  calculated = false;
  isLine = false;
  count = 0;
  Sx = Sy = Sxx = Syy = Sxy = Sxxx = Sxxy = Sxyy = Syyy = 0.0;
}

void MMLeastSquareCircle::Calculate(const std::vector<MMPoint3d<double>> &points) {
  // 1-3. The plane.
  _Init();
  MMLeastSquarePlane planeFit;
  planeFit.Calculate(points);
  isLine = planeFit.GetIsLine();
  if (isLine) return;
  planeStandardDeviation = planeFit.GetStandardDeviation();
  planeMaxDeviation = planeFit.GetMaxDeviation();

  // 4. The turn: MakeRotation about z x u by acos(u.z), which takes the z
  // axis onto u (see the class comment).
  const MMPlaneEq<double> fitted = planeFit.GetPlane();
  const MMPoint3d<double> n(fitted.A(), fitted.B(), fitted.C());
  MMTransformMatrix turn;
  const double nLength = n.Length();
  if (!(nLength > 0.0)) return;
  const MMPoint3d<double> u = n / nLength;
  MMPoint3d<double> axis(-u.y, u.x, 0.0);
  const double axisLength = axis.Length();
  if (axisLength > 0.0) {
    axis /= axisLength;
    turn.MakeRotation(MMPoint3d<double>(0.0, 0.0, 0.0), axis, std::acos(u.z));
  }

  // 5. The 2D sums of the turned points.
  std::vector<MMPoint3d<double>> turned(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    turn.Transform(turned[i], points[i], false);
    const double x = turned[i].x, y = turned[i].y;
    ++count;
    Sx += x;
    Sy += y;
    Sxx += x * x;
    Syy += y * y;
    Sxy += x * y;
    Sxxx += x * x * x;
    Sxxy += x * x * y;
    Sxyy += x * y * y;
    Syyy += y * y * y;
    calculated = false;
  }

  // 6, 7. The algebraic fit.
  if (count == 0) {
    isLine = true;
    return;
  }
  const double N = static_cast<double>(count);
  const double A = 2.0 * (Sxx - Sx * Sx / N);
  const double B = 2.0 * (Sxy - Sy * Sx / N);
  const double C = 2.0 * (Syy - Sy * Sy / N);
  const double E = Sxxx + Sxyy - Sxx * Sx / N - Syy * Sx / N;
  const double F = Syyy + Sxxy - Syy * Sy / N - Sy * Sxx / N;
  const double det = C * A - B * B;
  if (kCircleDeterminant > std::abs(det)) {
    isLine = true;
    return;
  }
  const double cx = (E * C - F * B) / det;
  const double cy = (F * A - E * B) / det;
  radius = std::sqrt(cy * cy + cx * cx + (Sxx - (2.0 * cx * Sx + 2.0 * cy * Sy) + Syy) / N);

  // 8. The centre in the turned frame takes the z of the first turned point.
  const MMPoint3d<double> turnedCentre(cx, cy, turned[0].z);

  // 9. Deviations measured in the turned x-y plane (z difference dropped).
  double sum = 0.0;
  double maximum = 0.0;
  std::size_t measured = 0;
  for (const MMPoint3d<double> &p : turned) {
    const double v = std::sqrt((p.x - cx) * (p.x - cx) + (p.y - cy) * (p.y - cy)) - radius;
    sum += v * v;
    if (std::abs(v) > maximum) maximum = std::abs(v);
    ++measured;
  }
  circleStandardDeviation = std::sqrt(sum / static_cast<double>(measured));
  circleMaxDeviation = maximum;

  // 10. Back to the caller's frame.
  normal = n;
  turn.InverseTransform(centre, turnedCentre, false);
  calculated = true;
}
