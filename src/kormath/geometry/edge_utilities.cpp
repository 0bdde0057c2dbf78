#include <kormath/geometry/edge_utilities.h>

#include <cmath>
#include <cstdint>

namespace {

// A direction is usable when its length is strictly above this value.
constexpr double kDirectionThreshold = 2.220446049250313e-16;
// The 2D unit step and EdgeCosine treat a length below this as zero.
constexpr double kUnit2DThreshold = 3.140185e-16;
// Clamped cosine threshold.
constexpr double kCosineThreshold = 1.4901161193847656e-8;
constexpr double kTwoPi = 6.283185307179586;

double ClampedCosine(const MMPoint3d<double> &u, const MMPoint3d<double> &v) {
  const double m = std::sqrt(u.Dot(u) * v.Dot(v));
  if (kCosineThreshold > m) return 0.0;
  const double c = u.Dot(v) / m;
  if (c > 1.0) return 1.0;
  if (c < -1.0) return -1.0;
  return c;
}

MMPoint2d<double> Unit2D(const MMPoint2d<double> &w) {
  const double len = w.Length();
  if (kUnit2DThreshold > len) return w;
  return MMPoint2d<double>(w.x / len, w.y / len);
}

}  // namespace

namespace KorMathUtility {

double DistanceToVector(const MMPoint2d<double> &point, const MMPoint2d<double> &vector) {
  const double len = vector.Length();
  if (len > kDirectionThreshold) return std::abs(vector.Cross(point)) / len;
  return (point - vector).Length();
}

double DistanceToEdgePointDirection(const MMPoint2d<double> &point, const MMPoint2d<double> &edgePoint,
                                    const MMPoint2d<double> &direction) {
  const double len = direction.Length();
  if (len > kDirectionThreshold) return std::abs(direction.Cross(point - edgePoint)) / len;
  return (point - edgePoint).Length();
}

double DistanceToEdgePointDirection(const MMPoint3d<double> &point, const MMPoint3d<double> &edgePoint,
                                    const MMPoint3d<double> &direction) {
  const double len = direction.Length();
  if (len > kDirectionThreshold) return direction.Cross(point - edgePoint).Length() / len;
  return (point - edgePoint).Length();
}

double DistanceToEdge(const MMPoint2d<double> &point, const MMPoint2d<double> &first, const MMPoint2d<double> &second) {
  return DistanceToEdgePointDirection(point, first, second - first);
}

double DistanceToEdge(const MMPoint3d<double> &point, const MMPoint3d<double> &first, const MMPoint3d<double> &second) {
  return DistanceToEdgePointDirection(point, first, second - first);
}

double DistanceToSegment(const MMPoint3d<double> &point, const MMPoint3d<double> &first,
                         const MMPoint3d<double> &second) {
  const MMPoint3d<double> e = second - first;
  const double t = ProjectOnEdge(point, first, e);
  if (t < 0.0) return (point - first).Length();
  if (t > 1.0) return (point - second).Length();
  return (point - (first + e * t)).Length();
}

double ProjectOnEdge(const MMPoint3d<double> &point, const MMPoint3d<double> &edgePoint,
                     const MMPoint3d<double> &direction) {
  const double len = direction.Length();
  if (!(len > kDirectionThreshold)) return 0.0;
  return (point - edgePoint).Dot(direction) / len / len;
}

bool ProjectsOnEdge(const MMPoint3d<double> &point, const MMPoint3d<double> &edgePoint,
                    const MMPoint3d<double> &direction) {
  const double t = ProjectOnEdge(point, edgePoint, direction);
  return t >= 0.0 && 1.0 >= t;
}

bool ProjectOnEdge(MMPoint3d<double> &projected, const MMPoint3d<double> &point, const MMPoint3d<double> &edgePoint,
                   const MMPoint3d<double> &direction) {
  const double t = ProjectOnEdge(point, edgePoint, direction);
  projected = edgePoint + direction * t;
  return t >= 0.0 && 1.0 >= t;
}

bool ProjectOnEdge(double &distance, const MMPoint3d<double> &point, const MMPoint3d<double> &edgePoint,
                   const MMPoint3d<double> &direction) {
  const double t = ProjectOnEdge(point, edgePoint, direction);
  distance = (point - (edgePoint + direction * t)).Length();
  return t >= 0.0 && 1.0 >= t;
}

bool ProjectOnEdge(double &distance, double &t, MMPoint3d<double> &projected, const MMPoint3d<double> &point,
                   const MMPoint3d<double> &edgePoint, const MMPoint3d<double> &direction) {
  t = ProjectOnEdge(point, edgePoint, direction);
  projected = edgePoint + direction * t;
  distance = (point - projected).Length();
  return t >= 0.0 && 1.0 >= t;
}

bool PlaceOnEdge(MMPoint2d<double> &point, const MMPoint2d<double> &first, const MMPoint2d<double> &second) {
  const MMPoint2d<double> e = second - first;
  const double len = e.Length();
  if (!(len > kDirectionThreshold)) return false;
  const double t = (point - first).Dot(e) / len / len;
  point = first + e * t;
  return t >= 0.0 && 1.0 >= t;
}

bool ProjectOnPlaneThroughOrigin(MMPoint3d<double> &projected, const MMPoint3d<double> &normal,
                                 const MMPoint3d<double> &point) {
  const double t = ProjectOnEdge(point, MMPoint3d<double>(), normal);
  projected = point - normal * t;
  return true;
}

bool ProjectOnPlane(MMPoint3d<double> &projected, const MMPoint3d<double> &normal, const MMPoint3d<double> &planePoint,
                    const MMPoint3d<double> &point) {
  const double t = ProjectOnEdge(point, planePoint, normal);
  projected = point - (planePoint + normal * t);
  return true;
}

double CosAngleInPlane(const MMPoint3d<double> &a, const MMPoint3d<double> &b, const MMPoint3d<double> &normal) {
  MMPoint3d<double> u, v;
  ProjectOnPlaneThroughOrigin(u, normal, a);
  ProjectOnPlaneThroughOrigin(v, normal, b);
  return ClampedCosine(u, v);
}

double AngleInPlane(const MMPoint3d<double> &a, const MMPoint3d<double> &b, const MMPoint3d<double> &normal) {
  MMPoint3d<double> u, v;
  ProjectOnPlaneThroughOrigin(u, normal, a);
  ProjectOnPlaneThroughOrigin(v, normal, b);
  const double angle = std::acos(ClampedCosine(u, v));
  if (u.Cross(v).Dot(normal) < 0.0) return kTwoPi - angle;
  return angle;
}

double EdgeArea3D(const MMPoint3d<double> &a1, const MMPoint3d<double> &a2, const MMPoint3d<double> &b1,
                  const MMPoint3d<double> &b2) {
  return 0.5 * (a2 - a1).Cross(b2 - b1).Length();
}

double EdgeCosine(const MMPoint2d<double> &a1, const MMPoint2d<double> &a2, const MMPoint2d<double> &b1,
                  const MMPoint2d<double> &b2) {
  const MMPoint2d<double> e = a2 - a1;
  const MMPoint2d<double> f = b2 - b1;
  const double m = std::sqrt(e.Dot(e) * f.Dot(f));
  if (kUnit2DThreshold > m) return 0.0;
  return e.Dot(f) / m;
}

double EdgeAngle(const MMPoint2d<double> &a1, const MMPoint2d<double> &a2, const MMPoint2d<double> &b1,
                 const MMPoint2d<double> &b2) {
  return std::acos(EdgeCosine(a1, a2, b1, b2));
}

bool IntersectingSegmentsTesting(const MMPoint2d<double> &a, const MMPoint2d<double> &b, const MMPoint2d<double> &c,
                                 const MMPoint2d<double> &d, double tolerance) {
  const double x1min = std::fmin(a.x, b.x), x1max = std::fmax(a.x, b.x);
  const double y1min = std::fmin(a.y, b.y), y1max = std::fmax(a.y, b.y);
  const double x2min = std::fmin(c.x, d.x), x2max = std::fmax(c.x, d.x);
  const double y2min = std::fmin(c.y, d.y), y2max = std::fmax(c.y, d.y);

  // 1. Disjoint boxes, exactly.
  if (x1max < x2min || x2max < x1min || y1max < y2min || y2max < y1min) return false;
  // 2, 3. One pair of touching box sides only (kept asymmetric on purpose).
  if (x1min == x2max && a.x != b.x && c.x != d.x) return false;
  if (y1min == y2max && a.y != b.y && c.y != d.y) return false;
  // 4. Boxes widened on their upper side by the tolerance.
  if (x1max + tolerance < x2min || x2max + tolerance < x1min || y1max + tolerance < y2min ||
      y2max + tolerance < y1min) {
    return false;
  }
  // 5. Sign with a dead band.
  const auto sgn = [tolerance](double v) -> int {
    if (tolerance >= std::abs(v)) return 0;
    return v < 0.0 ? -1 : 1;
  };
  // 6, 7. Sides of the unit vectors.
  const MMPoint2d<double> u = Unit2D(b - a);
  const MMPoint2d<double> v = Unit2D(c - a);
  const MMPoint2d<double> w = Unit2D(d - a);
  const int s1 = sgn(u.Cross(v));
  const int s2 = sgn(u.Cross(w));
  const MMPoint2d<double> e = Unit2D(d - c);
  const MMPoint2d<double> f = Unit2D(-v);
  const MMPoint2d<double> g = Unit2D(b - c);
  const int s3 = sgn(e.Cross(f));
  const int s4 = sgn(e.Cross(g));
  // 8, 9.
  const int p1 = s1 * s2;
  const int p2 = s3 * s4;
  if (p1 == 1 || p2 == 1) return false;
  if (p1 != 0 || p2 != 0) return true;
  // 10. Exactly two zeros: a shared end point, no crossing.
  const int zeros = (s1 == 0) + (s2 == 0) + (s3 == 0) + (s4 == 0);
  if (zeros == 2) return false;
  // 11, 12. Collinear: overlap in x, else in y. Note the mixed comparisons.
  const double dx1 = std::abs(x1max - x2min);
  const double dx2 = std::abs(x2max - x1min);
  if (!(tolerance >= dx1) && !(tolerance > dx2)) return true;
  const double dy1 = std::abs(y1max - y2min);
  const double dy2 = std::abs(y2max - y1min);
  return !(tolerance > dy1) && !(tolerance > dy2);
}

void Round(MMPoint3d<double> &point) {
  const auto round1 = [](double v) -> double {
    const double shifted = v >= 0.0 ? v + 0.5 : v - 0.5;
    // Truncation to a 32-bit signed integer; the out-of-range and NaN cases
    // give the x86 "integer indefinite" value, as the hardware conversion does.
    if (!(shifted > -2147483649.0 && shifted < 2147483648.0)) return -2147483648.0;
    return static_cast<double>(static_cast<std::int32_t>(shifted));
  };
  point.x = round1(point.x);
  point.y = round1(point.y);
  point.z = round1(point.z);
}

}  // namespace KorMathUtility
