#include <kormath/geometry/triangle.h>

#include <kormath/geometry/orient3d.h>
#include <kormath/geometry/triangle_detail.h>

#include <cmath>
#include <utility>

namespace {

// Squared distance above which ProjectPoint2 replaces the normal by the
// vector to the point (0.2 squared).
constexpr double kDirectionSwitchSquared = 0.04;
// Distance above which ProjectPoint makes that vector a unit vector.
constexpr double kDirectionUnitDistance = 0.2;
// The largest finite double: "no candidate yet".
constexpr double kLargestDouble = 1.7976931348623157e308;

using MTriangle3dUtilities::detail::kTriangleTolerance;

}  // namespace

// ---------------------------------------------------------------- MMTriangle

MMTriangle::MMTriangle() = default;

MMTriangle::MMTriangle(const MMPoint3d<double> &p0, const MMPoint3d<double> &p1, const MMPoint3d<double> &p2)
    : m_points{p0, p1, p2} {}

const MMPoint3d<double> &MMTriangle::GetPoint(char index) const {
  if (index == 1) return m_points[1];
  if (index == 2) return m_points[2];
  return m_points[0];
}

MMPoint3d<double> MMTriangle::GetNormal() const {
  MMPoint3d<double> n = (m_points[1] - m_points[0]).Cross(m_points[2] - m_points[0]);
  n.Normalise();
  return n;
}

// ---------------------------------------------------------------- projection

namespace MTriangle3dUtilities {

double ProjectPoint2(MMPoint3d<double> &closest, MMPoint3d<double> &direction, MPosition &position,
                     const MMPoint3d<double> &point, const MMPoint3d<double> *const triangle,
                     const MMPoint3d<double> &normal) {
  const MMPoint3d<double> &p0 = triangle[0];
  const MMPoint3d<double> &p1 = triangle[1];
  const MMPoint3d<double> &p2 = triangle[2];
  const MMPoint3d<double> e1 = p1 - p0;
  const MMPoint3d<double> e2 = p2 - p0;
  const MMPoint3d<double> w = point - p0;
  const double h = normal.Dot(w);
  const MMPoint3d<double> q = w - normal * h;
  const MMPoint3d<double> c = e1.Cross(e2);

  direction = normal;

  // Solve q = a e1 + b e2 in the coordinate plane of the largest component
  // of c; ties fall towards z.
  const double cx = std::abs(c.x), cy = std::abs(c.y), cz = std::abs(c.z);
  std::size_t i = 0, j = 1;
  if (cx > cy && cx > cz) {
    i = 1;
    j = 2;
  } else if (cy > cz) {
    i = 2;
    j = 0;
  }
  const double det = e1[i] * e2[j] - e1[j] * e2[i];
  const double a = (q[i] * e2[j] - q[j] * e2[i]) / det;
  const double b = (e1[i] * q[j] - e1[j] * q[i]) / det;

  if (a >= 0.0 && b >= 0.0 && 1.0 >= a + b) {
    closest = p0 + q;
    position = POSITION_INSIDE;
    return h * h;
  }

  bool found = false;
  double best = 0.0;
  MMPoint3d<double> remembered;
  // Writes a candidate and returns its squared distance; a far candidate
  // sets the direction, turned to the normal's side.
  const auto offer = [&](const MMPoint3d<double> &candidate, MPosition code) -> double {
    closest = candidate;
    position = code;
    const MMPoint3d<double> v = point - candidate;
    const double s = v.SquaredLength();
    if (s > kDirectionSwitchSquared) direction = v.Dot(normal) > 0.0 ? v : -v;
    return s;
  };
  const auto accept = [&](const MMPoint3d<double> &candidate, MPosition code) {
    best = offer(candidate, code);
    found = true;
    remembered = candidate;
  };

  if (0.0 >= b) {
    const double t = w.Dot(e1) / e1.Dot(e1);
    if (0.0 < t && t < 1.0) {
      accept(p0 + e1 * t, POSITION_EDGE_01);
    } else if (0.0 >= t) {
      accept(p0, POSITION_VERTEX_0);
    }
  }
  if (0.0 >= a) {
    const double t = w.Dot(e2) / e2.Dot(e2);
    if (0.0 < t && t < 1.0) {
      return offer(p0 + e2 * t, POSITION_EDGE_02);  // early return, kept on purpose
    }
    if (0.0 >= t) {
      if (found) return best;
      accept(p0, POSITION_VERTEX_0);
    }
  }

  const MMPoint3d<double> f = e2 - e1;
  const double t = (w - e1).Dot(f) / f.Dot(f);
  bool tryVertex2 = true;
  if (0.0 < t && t < 1.0) {
    const MMPoint3d<double> candidate = p1 + f * t;
    const double s = (point - candidate).SquaredLength();
    if (best > s || !found) return offer(candidate, POSITION_EDGE_12);
    closest = remembered;
  } else if (0.0 >= t) {
    const double s = (point - p1).SquaredLength();
    if (s < best || !found) return offer(p1, POSITION_VERTEX_1);
    tryVertex2 = false;
  }
  if (tryVertex2) {
    const double s = (point - p2).SquaredLength();
    if (s < best || !found) return offer(p2, POSITION_VERTEX_2);
  }
  closest = remembered;
  return best;
}

double ProjectPoint(MMPoint3d<double> &closest, MMPoint3d<double> &direction, MPosition &position,
                    const MMPoint3d<double> &point, const MMPoint3d<double> *const triangle,
                    const MMPoint3d<double> &normal) {
  const double d = std::sqrt(ProjectPoint2(closest, direction, position, point, triangle, normal));
  if (d > kDirectionUnitDistance && position != POSITION_INSIDE) direction /= d;
  return d;
}

// ---------------------------------------------------------------- distance steps

namespace detail {

double SegmentParameter(const MMPoint3d<double> &p, const MMPoint3d<double> &a, const MMPoint3d<double> &b) {
  const MMPoint3d<double> e = b - a;
  const double l = e.Dot(e);
  if (l < kTriangleTolerance) return 0.5;
  return (p - a).Dot(e) / l;
}

namespace {

// Squared distance of p to the segment a-b with the clamped parameter u.
double SegmentSquaredDistance(const MMPoint3d<double> &p, const MMPoint3d<double> &a, const MMPoint3d<double> &b,
                              double &u, MMPoint3d<double> &foot) {
  u = SegmentParameter(p, a, b);
  if (u < 0.0) u = 0.0;
  if (u > 1.0) u = 1.0;
  foot = a + (b - a) * u;
  return (p - foot).SquaredLength();
}

}  // namespace

double PointTriangleSquaredDistance(const MMPoint3d<double> &p, const MMPoint3d<double> &a, const MMPoint3d<double> &b,
                                    const MMPoint3d<double> &c, MMPoint3d<double> &closest, double *barycentric) {
  const MMPoint3d<double> e0 = b - a;
  const MMPoint3d<double> e1 = c - a;
  double s = 0.0, t = 0.0;

  if (e1.Cross(e0).SquaredLength() < kTriangleTolerance) {
    // Degenerate triangle: the nearest of the three segments.
    double uac, uab, ubc;
    MMPoint3d<double> fac, fab, fbc;
    const double dac = SegmentSquaredDistance(p, a, c, uac, fac);
    const double dab = SegmentSquaredDistance(p, a, b, uab, fab);
    const double dbc = SegmentSquaredDistance(p, b, c, ubc, fbc);
    double d;
    if (dac < dab && dac < dbc) {
      s = 0.0;
      t = uac;
      closest = fac;
      d = dac;
    } else if (dab < dbc) {
      s = uab;
      t = 0.0;
      closest = fab;
      d = dab;
    } else {
      s = 1.0 - ubc;
      t = ubc;
      closest = fbc;
      d = dbc;
    }
    if (barycentric != nullptr) {
      barycentric[0] = 1.0 - s - t;
      barycentric[1] = s;
      barycentric[2] = t;
    }
    return d;
  }

  const MMPoint3d<double> dv = a - p;
  const double a00 = e0.Dot(e0), a01 = e0.Dot(e1), a11 = e1.Dot(e1);
  const double b0 = dv.Dot(e0), b1 = dv.Dot(e1), c0 = dv.Dot(dv);
  const double det = std::abs(a00 * a11 - a01 * a01);
  s = a01 * b1 - a11 * b0;
  t = a01 * b0 - a00 * b1;

  // Parameter on the edge s = 0 from B1 (regions 3, 4, 2).
  const auto tFromB1 = [&]() -> double {
    if (b1 >= 0.0) return 0.0;
    if (-b1 >= a11) return 1.0;
    return -b1 / a11;
  };
  // Parameter on the edge t = 0 from B0 (regions 5, 4, 6).
  const auto sFromB0 = [&]() -> double {
    if (b0 >= 0.0) return 0.0;
    if (-b0 >= a00) return 1.0;
    return -b0 / a00;
  };

  if (s + t <= det) {
    if (s < 0.0) {
      if (t < 0.0 && b0 < 0.0) {  // region 4, on t = 0
        t = 0.0;
        s = -b0 >= a00 ? 1.0 : -b0 / a00;
      } else {  // region 3 and the rest of 4, on s = 0
        s = 0.0;
        t = tFromB1();
      }
    } else if (t < 0.0) {  // region 5, on t = 0
      t = 0.0;
      s = sFromB0();
    } else {  // region 0, interior
      s /= det;
      t /= det;
    }
  } else if (s < 0.0) {  // region 2
    const double u0 = a01 + b0;
    const double u1 = a11 + b1;
    if (u1 > u0) {
      const double numer = u1 - u0;
      const double denom = a00 - 2.0 * a01 + a11;
      s = numer >= denom ? 1.0 : numer / denom;
      t = 1.0 - s;
    } else {
      s = 0.0;
      t = u1 <= 0.0 ? 1.0 : tFromB1();
    }
  } else if (t < 0.0) {  // region 6
    const double u0 = a01 + b1;
    const double u1 = a00 + b0;
    if (u1 > u0) {
      const double numer = u1 - u0;
      const double denom = a00 - 2.0 * a01 + a11;
      t = numer >= denom ? 1.0 : numer / denom;
      s = 1.0 - t;
    } else {
      t = 0.0;
      s = u1 <= 0.0 ? 1.0 : sFromB0();
    }
  } else {  // region 1, on s + t = 1
    const double numer = a11 + b1 - a01 - b0;
    if (numer <= 0.0) {
      s = 0.0;
    } else {
      const double denom = a00 - 2.0 * a01 + a11;
      s = numer >= denom ? 1.0 : numer / denom;
    }
    t = 1.0 - s;
  }

  double d = s * (a00 * s + a01 * t + 2.0 * b0) + t * (a01 * s + a11 * t + 2.0 * b1) + c0;
  if (d < 0.0) d = 0.0;  // rounding
  closest = a + e0 * s + e1 * t;
  if (barycentric != nullptr) {
    barycentric[0] = 1.0 - s - t;
    barycentric[1] = s;
    barycentric[2] = t;
  }
  return d;
}

void ClosestLineParameters(const MMPoint3d<double> &A, const MMPoint3d<double> &B, const MMPoint3d<double> &C,
                           const MMPoint3d<double> &D, double &s, double &t) {
  const MMPoint3d<double> u = B - A;
  const MMPoint3d<double> v = D - C;
  const MMPoint3d<double> r = A - C;
  const double a = u.Dot(u), b = u.Dot(v), c = v.Dot(v), d = r.Dot(u), e = r.Dot(v);
  const double den = a * c - b * b;
  if (den >= kTriangleTolerance) {
    s = (e * b - d * c) / den;
    t = (e * a - d * b) / den;
  } else if (a <= c) {
    s = 0.0;
    t = SegmentParameter(A, C, D);
  } else {
    s = SegmentParameter(C, A, B);
    t = 0.0;
  }
}

bool EdgeThroughTriangle(const MMPoint3d<double> *triangle, const MMPoint3d<double> &n, const MMPoint3d<double> &p,
                         const MMPoint3d<double> &q, MMPoint3d<double> &x) {
  const MMPoint3d<double> pq = q - p;
  const double den = n.Dot(pq);
  if (kTriangleTolerance >= std::abs(den)) return false;
  const double s = (triangle[0] - p).Dot(n) / den;
  if (s < 0.0 || s > 1.0) return false;
  x = p + pq * s;
  const double w0 = (triangle[1] - triangle[0]).Cross(x - triangle[0]).Dot(n);
  const double w1 = (triangle[2] - triangle[1]).Cross(x - triangle[1]).Dot(n);
  const double w2 = (triangle[0] - triangle[2]).Cross(x - triangle[2]).Dot(n);
  return (w0 > 0.0 && w1 > 0.0 && w2 > 0.0) || (w0 < 0.0 && w1 < 0.0 && w2 < 0.0);
}

}  // namespace detail
}  // namespace MTriangle3dUtilities

// ---------------------------------------------------------------- DistanceT2T

double DistanceT2T(const MMPoint3d<double> *triangleA, const MMPoint3d<double> &normalA,
                   const MMPoint3d<double> *triangleB, const MMPoint3d<double> &normalB, MMPoint3d<double> *closestA,
                   MMPoint3d<double> *closestB) {
  using namespace MTriangle3dUtilities::detail;
  const auto write = [&](const MMPoint3d<double> &pa, const MMPoint3d<double> &pb) {
    if (closestA != nullptr) *closestA = pa;
    if (closestB != nullptr) *closestB = pb;
  };

  // 1. An edge through the other triangle's interior.
  for (int i = 0; i < 3; ++i) {
    const int k = (i + 1) % 3;
    MMPoint3d<double> x;
    if (EdgeThroughTriangle(triangleA, normalA, triangleB[i], triangleB[k], x) ||
        EdgeThroughTriangle(triangleB, normalB, triangleA[i], triangleA[k], x)) {
      write(x, x);
      return 0.0;
    }
  }

  // 2. Nothing yet.
  double best = kLargestDouble;

  // 3, 4. Vertices against the other triangle, with the early exit.
  const auto vertexPass = [&](const MMPoint3d<double> *from, const MMPoint3d<double> *onto, bool fromIsA) -> bool {
    for (int i = 0; i < 3; ++i) {
      MMPoint3d<double> c;
      const double d = PointTriangleSquaredDistance(from[i], onto[0], onto[1], onto[2], c, nullptr);
      if (d < best) {
        best = d;
        if (fromIsA) {
          write(from[i], c);
        } else {
          write(c, from[i]);
        }
      }
      const MMPoint3d<double> toC = c - from[i];
      if ((from[(i + 1) % 3] - from[i]).Dot(toC) <= 0.0 && (from[(i + 2) % 3] - from[i]).Dot(toC) <= 0.0) {
        return true;
      }
    }
    return false;
  };
  if (vertexPass(triangleA, triangleB, true)) return best;
  if (vertexPass(triangleB, triangleA, false)) return best;

  // 5. Interior pairs of edges; ties keep the earlier pair.
  for (int i = 0; i < 3; ++i) {
    const MMPoint3d<double> &a0 = triangleA[i];
    const MMPoint3d<double> &a1 = triangleA[(i + 1) % 3];
    for (int j = 0; j < 3; ++j) {
      const MMPoint3d<double> &b0 = triangleB[j];
      const MMPoint3d<double> &b1 = triangleB[(j + 1) % 3];
      double s = 0.0, t = 0.0;
      ClosestLineParameters(a0, a1, b0, b1, s, t);
      if (!(0.0 < s && s < 1.0 && 0.0 < t && t < 1.0)) continue;
      const MMPoint3d<double> pa = a0 * (1.0 - s) + a1 * s;
      const MMPoint3d<double> pb = b0 * (1.0 - t) + b1 * t;
      const double d = (pa - pb).SquaredLength();
      if (d < best) {
        best = d;
        write(pa, pb);
      }
    }
  }
  return best;
}

// ---------------------------------------------------------------- exact test

namespace {

int SignOf(double v) { return v > 0.0 ? 1 : (v < 0.0 ? -1 : 0); }

}  // namespace

bool DoTrianglesIntersectRobust(double (*const a)[3], double (*const b)[3]) {
  double(*const tri[2])[3] = {a, b};
  int g[2][3];
  // 1, 2. Sides of the vertices of each triangle against the other's plane.
  for (int t = 0; t < 2; ++t) {
    const int o = 1 - t;
    for (int i = 0; i < 3; ++i) {
      g[o][i] = SignOf(-KorMathPredicates::orient3d(tri[t][0], tri[t][1], tri[t][2], tri[o][i]));
    }
    if (g[o][0] == g[o][1] && g[o][1] == g[o][2]) return g[o][0] == 0;  // coplanar answers true on purpose
  }
  // 3. The apex: alone on its side, else the first vertex on the plane.
  int order[2][3];
  for (int k = 0; k < 2; ++k) {
    int apex = -1;
    for (int i = 0; i < 3 && apex < 0; ++i) {
      const int s = g[k][i];
      if (s != 0 && s != g[k][(i + 1) % 3] && s != g[k][(i + 2) % 3]) apex = i;
    }
    for (int i = 0; i < 3 && apex < 0; ++i) {
      if (g[k][i] == 0) apex = i;
    }
    order[k][0] = apex;
    order[k][1] = (apex + 1) % 3;
    order[k][2] = (apex + 2) % 3;
  }
  // 4. Orient the other triangle so that the apex lies on the positive side.
  for (int k = 0; k < 2; ++k) {
    const int apexSign = g[k][order[k][0]];
    if (apexSign < 0 || (apexSign == 0 && g[k][order[k][1]] >= 1)) std::swap(order[1 - k][1], order[1 - k][2]);
  }
  // 5. The two interval tests on the common line.
  const double *p1 = tri[0][order[0][0]];
  const double *q1 = tri[0][order[0][1]];
  const double *r1 = tri[0][order[0][2]];
  const double *p2 = tri[1][order[1][0]];
  const double *q2 = tri[1][order[1][1]];
  const double *r2 = tri[1][order[1][2]];
  return 0.0 >= -KorMathPredicates::orient3d(p1, q1, p2, q2) && 0.0 >= -KorMathPredicates::orient3d(p1, r1, r2, p2);
}
