#include <kormath/geometry/plane.h>
#include <kormath/transforms/float_rounding_detail.h>

#include <cmath>

template <class T>
void MMPlaneEq<T>::Transform(const MMTransform &transform) {
  const double a = m_normal.x, b = m_normal.y, c = m_normal.z;
  // The "+ 0" is part of the published order of the sum.
  const double s = -double(m_d) / (a * a + 0.0 + b * b + c * c);
  const MMPoint3d<double> q(s * a, s * b, s * c);
  const MMPoint3d<double> n(a, b, c);
  const MMPoint3d<double> origin;
  MMPoint3d<double> qMapped, r, o;
  transform.Transform(qMapped, q, false);
  transform.Transform(r, n, false);
  transform.Transform(o, origin, false);
  // Rounded through float on purpose.
  using kormath_detail::RoundThroughFloat;
  const double na = RoundThroughFloat(r.x - o.x);
  const double nb = RoundThroughFloat(r.y - o.y);
  const double nc = RoundThroughFloat(r.z - o.z);
  const double qx = RoundThroughFloat(qMapped.x);
  const double qy = RoundThroughFloat(qMapped.y);
  const double qz = RoundThroughFloat(qMapped.z);
  m_normal.x = static_cast<T>(na);
  m_normal.y = static_cast<T>(nb);
  m_normal.z = static_cast<T>(nc);
  Normalise();
  m_d = -(m_normal.x * static_cast<T>(qx) + m_normal.y * static_cast<T>(qy) + m_normal.z * static_cast<T>(qz));
}

// The exported instantiation of the working plane.
template class MMPlaneEq<double>;

namespace {

// A right angle; IsParallel(line) compares the angle with it.
constexpr double kHalfPi = 1.5707963267948966;
// Threshold on the unnormalised dot product in MMRectangle::Set.
constexpr double kRectangleRightAngleTolerance = 1e-8;

}  // namespace

// ---------------------------------------------------------------- MMPlane

MMPlane::MMPlane() = default;

MMPlane::MMPlane(const MMPoint3d<double> &p, const MMPoint3d<double> &n) : point(p), normal(n) {}

MMPlane::MMPlane(const MMPlaneEq<double> &plane) : normal(plane.A(), plane.B(), plane.C()) {
  const double a = std::abs(plane.A()), b = std::abs(plane.B()), c = std::abs(plane.C());
  if (a >= b && a >= c) {
    point = MMPoint3d<double>(-plane.D() / plane.A(), 0.0, 0.0);
  } else if (b >= c) {
    point = MMPoint3d<double>(0.0, -plane.D() / plane.B(), 0.0);
  } else {
    point = MMPoint3d<double>(0.0, 0.0, -plane.D() / plane.C());
  }
}

MMPlane::~MMPlane() = default;

bool MMPlane::IsParallel(const MMLine &line, double tolerance) const {
  MMPoint3d<double> u = line.GetDirection();
  u.Normalise();
  const double angle = std::acos(normal.CosineOfAngle(u));
  return tolerance > std::abs(angle - kHalfPi);
}

bool MMPlane::IsParallel(const MMPlane &other, double tolerance) const {
  const double a1 = normal.x, b1 = normal.y, c1 = normal.z;
  const double a2 = other.normal.x, b2 = other.normal.y, c2 = other.normal.z;
  const double s = std::abs(a2 * c1 - a1 * c2) + std::abs(b1 * c2 - b2 * c1) + std::abs(a1 * b2 - a2 * b1);
  return -tolerance < s && s < tolerance;
}

// ---------------------------------------------------------------- MMRectangle

MMRectangle::MMRectangle() {
  Set(MMPoint3d<double>(0.0, 0.0, 0.0), MMPoint3d<double>(1.0, 0.0, 0.0), MMPoint3d<double>(0.0, 1.0, 0.0));
}

MMRectangle::MMRectangle(const MMPoint3d<double> &first, const MMPoint3d<double> &second,
                         const MMPoint3d<double> &third) {
  Set(first, second, third);
}

void MMRectangle::Set(const MMPoint3d<double> &first, const MMPoint3d<double> &second, const MMPoint3d<double> &third) {
  const MMPoint3d<double> e = second - first;
  MMPoint3d<double> q = third;
  if (!(kRectangleRightAngleTolerance > std::abs((q - first).Dot(e)))) {
    MMPoint3d<double> n = e;
    n.Normalise();
    const MMPlaneEq<double> plane(first, n);
    double t = 0.0;
    MMPoint3d<double> moved = q;
    plane.Intersect(t, moved, q, n);
    q = moved;
  }
  m_corners[0] = first;
  m_corners[1] = second;
  m_corners[2] = q - first + second;
  m_corners[3] = q;
}

MMLine MMRectangle::GetEdge(std::size_t index) const {
  return MMLine(m_corners[index & 3u], m_corners[(index + 1) & 3u]);
}

MMPlane MMRectangle::GetPlane() const {
  MMPlane plane;
  plane.point = (m_corners[0] + m_corners[2]) * 0.5;
  plane.normal = (m_corners[1] - m_corners[0]).Cross(m_corners[3] - m_corners[0]);
  plane.normal.Normalise();
  return plane;
}

void MMRectangle::Transform(const MMTransform &transform) {
  for (MMPoint3d<double> &corner : m_corners) {
    const MMPoint3d<double> in = corner;
    transform.Transform(corner, in, false);
  }
}

// ---------------------------------------------------------------- MMRectangle2D

MMRectangle2D::MMRectangle2D() { Set(MMPoint2d<double>(0.0, 0.0), MMPoint2d<double>(1.0, 1.0)); }

MMRectangle2D::MMRectangle2D(const MMPoint2d<double> &first, const MMPoint2d<double> &second) { Set(first, second); }

void MMRectangle2D::Set(const MMPoint2d<double> &p, const MMPoint2d<double> &q) {
  m_corners[0] = MMPoint2d<double>(p.x, p.y);
  m_corners[1] = MMPoint2d<double>(q.x, p.y);
  m_corners[2] = MMPoint2d<double>(q.x, q.y);
  m_corners[3] = MMPoint2d<double>(p.x, q.y);
}
