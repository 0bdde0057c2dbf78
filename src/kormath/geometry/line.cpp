#include <kormath/geometry/line.h>

#include <kormath/geometry/plane.h>

#include <cmath>

namespace {

// Below this length a 2D direction is not divided by its length (strict).
constexpr double kUnit2DThreshold = 3.140185e-16;
// Below this magnitude MMLine2D::Project gives up; also the tolerance of the
// line equation in GetSignedDistance.
constexpr double kProjectThreshold = 2.220446049250313e-16;
// The parallelism tolerance that MMLine::GetIntersectionPoint always uses.
constexpr double kIntersectionParallelTolerance = 0.001;

MMPoint3d<double> GuardedUnit(const MMPoint3d<double> &v) {
  MMPoint3d<double> u(v);
  u.Normalise();  // a short vector stays as it is
  return u;
}

MMPoint2d<double> Unit2D(const MMPoint2d<double> &v) {
  const double len = v.Length();
  if (kUnit2DThreshold > len) return v;
  return MMPoint2d<double>(v.x / len, v.y / len);
}

// Intersection of `plane` with the line base + t edge; writes `out` only
// when the denominator is not exactly 0.
void IntersectPlaneWithLine(const MMPlaneEq<double> &plane, const MMPoint3d<double> &base,
                            const MMPoint3d<double> &edge, MMPoint3d<double> &out) {
  const MMVector<double, 3> &n = plane.GetNormal();
  const double den = n.x * edge.x + n.y * edge.y + n.z * edge.z;
  if (den == 0.0) return;
  const double t = -(plane.D() + (n.x * base.x + n.y * base.y + n.z * base.z)) / den;
  out = base + edge * t;
}

}  // namespace

// ---------------------------------------------------------------- MMLine

MMLine::MMLine() = default;

MMLine::MMLine(const MMPoint3d<double> &first, const MMPoint3d<double> &second)
    : firstPoint(first), secondPoint(second) {}

MMLine::~MMLine() = default;

bool MMLine::IsParallel(const MMLine &other, double tolerance) const {
  const MMPoint3d<double> u1 = GuardedUnit(GetDirection());
  const MMPoint3d<double> u2 = GuardedUnit(other.GetDirection());
  return tolerance > u1.Cross(u2).Length();
}

bool MMLine::GetCommonPerpendicularLine(const MMLine &other, MMLine &perpendicular, double tolerance) const {
  const MMPoint3d<double> u1 = GuardedUnit(GetDirection());
  const MMPoint3d<double> u2 = GuardedUnit(other.GetDirection());
  if (IsParallel(other, tolerance)) return false;
  const MMPoint3d<double> c = u1.Cross(u2);
  if (c.x == 0.0 && c.y == 0.0 && c.z == 0.0) return false;

  MMPlaneEq<double> planeThis(firstPoint, c.Cross(u1));
  planeThis.Normalise();
  IntersectPlaneWithLine(planeThis, other.firstPoint, other.GetDirection(), perpendicular.firstPoint);

  MMPlaneEq<double> planeOther(other.firstPoint, c.Cross(u2));
  planeOther.Normalise();
  IntersectPlaneWithLine(planeOther, firstPoint, GetDirection(), perpendicular.secondPoint);
  return true;
}

bool MMLine::IsPointOnLine(const MMPoint3d<double> &point, bool segment, double tolerance) const {
  const MMPoint3d<double> u = GuardedUnit(GetDirection());
  const MMPoint3d<double> w = firstPoint - point;
  const double s = w.Dot(u);
  const MMPoint3d<double> r = w - u * s;
  if (!(tolerance * tolerance > r.SquaredLength())) return false;
  if (!segment) return true;
  return (point - secondPoint).Dot(point - firstPoint) <= 0.0;
}

bool MMLine::GetIntersectionPoint(const MMLine &other, MMPoint3d<double> &point, double tolerance,
                                  bool segments) const {
  MMLine local;
  if (!GetCommonPerpendicularLine(other, local, kIntersectionParallelTolerance)) return false;
  const double gap = local.GetLength();
  if (gap > tolerance) return false;
  point = local.firstPoint;
  if (!segments) return true;
  return IsPointOnLine(point, true, tolerance) && other.IsPointOnLine(point, true, tolerance);
}

// ---------------------------------------------------------------- MMLine2D

MMLine2D::MMLine2D() : m_first(0.0, 0.0), m_second(1.0, 0.0) {}

MMLine2D::MMLine2D(const MMPoint2d<double> &first, const MMPoint2d<double> &second)
    : m_first(first), m_second(second) {}

MMPoint2d<double> MMLine2D::GetDirection() const { return Unit2D(m_second - m_first); }

double MMLine2D::GetLength() const { return (m_second - m_first).Length(); }

bool MMLine2D::IsParallel(const MMLine2D &other, double tolerance) const {
  MMPoint2d<double> d1 = GetDirection();
  const MMPoint2d<double> d2 = other.GetDirection();
  if (d1.x * d2.x < 0.0) d1 = -d1;
  return tolerance * tolerance > (d2 - d1).SquaredLength();
}

bool MMLine2D::IsCoincident(const MMLine2D &other, double tolerance) const {
  return IsParallel(other, tolerance) && IsParallel(MMLine2D(m_first, other.m_first), tolerance);
}

bool MMLine2D::IsPointOnLine(const MMPoint2d<double> &point, double tolerance) const {
  return IsParallel(MMLine2D(m_first, point), tolerance);
}

bool MMLine2D::IsPointOnLineSegment(const MMPoint2d<double> &point, double tolerance) const {
  MMPoint2d<double> v = point - m_first;
  MMPoint2d<double> e = m_second - m_first;
  if (v.SquaredLength() >= e.SquaredLength()) return false;
  e = Unit2D(e);
  v = Unit2D(v);
  return !(1.0 - tolerance > e.Dot(v));
}

bool MMLine2D::GetIntersectionPoint(MMPoint2d<double> &point, const MMLine2D &other, double tolerance) const {
  const MMPoint2d<double> e = m_second - m_first;
  const MMPoint2d<double> f = other.m_second - other.m_first;
  const double den = e.x * f.y - e.y * f.x;
  if (tolerance > std::abs(den)) return false;
  const double t = ((m_first.y - other.m_first.y) * f.x - (m_first.x - other.m_first.x) * f.y) / den;
  point = m_first + e * t;
  return true;
}

double MMLine2D::_DistanceToSegment(const MMPoint2d<double> &p, const MMPoint2d<double> &a,
                                    const MMPoint2d<double> &b) {
  const MMPoint2d<double> e = b - a;
  const double s = (p - a).Dot(e);
  const double l = e.Dot(e);
  if (s <= 0.0) return (p - a).Length();
  if (s >= l) return (p - b).Length();
  return (p - (a + e * (s / l))).Length();
}

bool MMLine2D::GetIntersectionSegmentSegment(MMPoint2d<double> &point, const MMLine2D &other, double tolerance) const {
  if (!GetIntersectionPoint(point, other, tolerance)) return false;
  return 2.0 * tolerance >
         _DistanceToSegment(point, other.m_first, other.m_second) + _DistanceToSegment(point, m_first, m_second);
}

bool MMLine2D::DoesSegmentLieOnRect(double xMin, double yMin, double xMax, double yMax, double tolerance) const {
  const auto inside = [&](const MMPoint2d<double> &p) {
    return p.x >= xMin && xMax >= p.x && p.y >= yMin && yMax >= p.y;
  };
  if (inside(m_first) || inside(m_second)) return true;
  const MMLine2D edges[4] = {
      MMLine2D(MMPoint2d<double>(xMin, yMin), MMPoint2d<double>(xMin, yMax)),  // left
      MMLine2D(MMPoint2d<double>(xMax, yMax), MMPoint2d<double>(xMin, yMax)),  // top
      MMLine2D(MMPoint2d<double>(xMax, yMax), MMPoint2d<double>(xMax, yMin)),  // right
      MMLine2D(MMPoint2d<double>(xMin, yMin), MMPoint2d<double>(xMax, yMin)),  // bottom
  };
  for (const MMLine2D &edge : edges) {
    MMPoint2d<double> hit;
    if (GetIntersectionSegmentSegment(hit, edge, tolerance)) return true;
  }
  return false;
}

void MMLine2D::GetLineEquation(double &a, double &b, double &c, double tolerance) const {
  const double dx = m_second.x - m_first.x;
  const double dy = m_second.y - m_first.y;
  const double x1 = m_first.x, y1 = m_first.y;
  const auto small = [tolerance](double v) { return tolerance > std::abs(v); };
  if (small(dx)) {
    if (!small(x1)) {
      a = -1.0 / x1;
      b = 0.0;
      c = 1.0;
    } else {
      a = 1.0;
      b = 0.0;
      c = 0.0;
    }
  } else if (!small(dy)) {
    a = dy / dx;
    b = -1.0;
    c = y1 - x1 * (dy / dx);
  } else if (!small(y1)) {
    a = 0.0;
    b = -1.0 / y1;
    c = 1.0;
  } else {
    a = 0.0;
    b = 1.0;
    c = 0.0;
  }
}

void MMLine2D::Project(MMPoint2d<double> &projected, const MMPoint2d<double> &point) const {
  const MMPoint2d<double> u = GetDirection();
  const MMPoint2d<double> n(-u.y, u.x);
  const MMPoint2d<double> e = m_second - m_first;
  const double den = e.x * n.y - e.y * n.x;
  if (kProjectThreshold > std::abs(den)) return;
  const double t = ((m_first.y - point.y) * n.x - (m_first.x - point.x) * n.y) / den;
  projected = m_first + e * t;
}

double MMLine2D::GetDistance(const MMPoint2d<double> &point) const {
  MMPoint2d<double> foot(0.0, 0.0);
  Project(foot, point);
  return (foot - point).Length();
}

double MMLine2D::GetSignedDistance(const MMPoint2d<double> &point) const {
  const double distance = GetDistance(point);
  double a = 0.0, b = 0.0, c = 0.0;
  GetLineEquation(a, b, c, kProjectThreshold);
  if (a * point.x + b * point.y + c < 0.0) return -distance;
  return distance;
}
