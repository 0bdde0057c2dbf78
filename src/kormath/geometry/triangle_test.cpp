#include <kormath/geometry/triangle.h>
#include <kormath/geometry/triangle_detail.h>

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <set>
#include <utility>

namespace {

using P3 = MMPoint3d<double>;
using namespace MTriangle3dUtilities;

// ---------------------------------------------------------------- oracles

// Sign of det(a - d; b - d; c - d) in exact rational arithmetic (every
// finite double converts exactly).
int ExactOrient(const P3 &a, const P3 &b, const P3 &c, const P3 &d) {
  mpq_class m[3][3];
  const P3 *rows[3] = {&a, &b, &c};
  for (int r = 0; r < 3; ++r) {
    for (int k = 0; k < 3; ++k) m[r][k] = mpq_class((*rows[r])[k]) - mpq_class(d[k]);
  }
  return sgn(m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
             m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]));
}

// Does the segment p-q, not lying in the triangle's plane, reach the closed
// triangle t: its ends are not strictly on one side, and its line passes
// through t (no two of the three edge orientations of opposite sign).
bool Pierces(const P3 &p, const P3 &q, const P3 *t) {
  const int sp = ExactOrient(t[0], t[1], t[2], p), sq = ExactOrient(t[0], t[1], t[2], q);
  if (sp * sq > 0 || (sp == 0 && sq == 0)) return false;
  const int o[3] = {ExactOrient(p, q, t[0], t[1]), ExactOrient(p, q, t[1], t[2]), ExactOrient(p, q, t[2], t[0])};
  return !((o[0] > 0 || o[1] > 0 || o[2] > 0) && (o[0] < 0 || o[1] < 0 || o[2] < 0));
}

// Two triangles that are not coplanar meet exactly when an edge of one,
// not lying in the other's plane, reaches the other: the ends of their
// common segment lie on edges. An exactly flat triangle is a segment; its
// edges are still tried.
bool TrianglesMeetExact(const P3 *a, const P3 *b) {
  for (int i = 0; i < 3; ++i) {
    if (Pierces(a[i], a[(i + 1) % 3], b) || Pierces(b[i], b[(i + 1) % 3], a)) return true;
  }
  return false;
}

bool Coplanar(const P3 *a, const P3 *b) {
  return !ExactOrient(a[0], a[1], a[2], b[0]) && !ExactOrient(a[0], a[1], a[2], b[1]) &&
         !ExactOrient(a[0], a[1], a[2], b[2]);
}

bool Robust(const P3 *a, const P3 *b) {
  double t[2][3][3];
  for (int i = 0; i < 9; ++i) t[0][i / 3][i % 3] = a[i / 3][i % 3], t[1][i / 3][i % 3] = b[i / 3][i % 3];
  return DoTrianglesIntersectRobust(t[0], t[1]);
}

// Brute-force squared distance of a point to a closed segment, written with
// the plain clamp and no tolerance.
double PointSegment2(const P3 &p, const P3 &a, const P3 &b) {
  const P3 e = b - a;
  const double l = e.Dot(e);
  double t = l > 0.0 ? (p - a).Dot(e) / l : 0.0;
  t = std::min(1.0, std::max(0.0, t));
  return (p - (a + e * t)).SquaredLength();
}

// Brute force point to triangle: the foot when it falls inside, else the
// nearest of the three edges.
double PointTriangle2(const P3 &p, const P3 *t) {
  double best = std::min({PointSegment2(p, t[0], t[1]), PointSegment2(p, t[1], t[2]), PointSegment2(p, t[2], t[0])});
  const P3 n = (t[1] - t[0]).Cross(t[2] - t[0]);
  const double nn = n.Dot(n);
  if (nn > 0.0) {
    const double h = (p - t[0]).Dot(n) / nn;
    const P3 foot = p - n * h;
    bool inside = true;
    for (int i = 0; i < 3; ++i) inside = inside && (t[(i + 1) % 3] - t[i]).Cross(foot - t[i]).Dot(n) >= 0.0;
    if (inside) best = std::min(best, (p - foot).SquaredLength());
  }
  return best;
}

// Squared distance of two closed segments: an interior critical point of
// both, or an end of one against the other.
double SegmentSegment2(const P3 &a, const P3 &b, const P3 &c, const P3 &d) {
  double best =
      std::min({PointSegment2(a, c, d), PointSegment2(b, c, d), PointSegment2(c, a, b), PointSegment2(d, a, b)});
  const P3 u = b - a, v = d - c, r = a - c;
  const double uu = u.Dot(u), uv = u.Dot(v), vv = v.Dot(v), ur = u.Dot(r), vr = v.Dot(r);
  const double den = uu * vv - uv * uv;
  if (den > 1e-12 * uu * vv) {
    const double s = (uv * vr - vv * ur) / den, t = (uu * vr - uv * ur) / den;
    if (s > 0.0 && s < 1.0 && t > 0.0 && t < 1.0) best = std::min(best, ((a + u * s) - (c + v * t)).SquaredLength());
  }
  return best;
}

double TriangleTriangle2(const P3 *a, const P3 *b) {
  double best = 1e300;
  for (int i = 0; i < 3; ++i) {
    best = std::min(best, PointTriangle2(a[i], b));
    best = std::min(best, PointTriangle2(b[i], a));
    for (int j = 0; j < 3; ++j) best = std::min(best, SegmentSegment2(a[i], a[(i + 1) % 3], b[j], b[(j + 1) % 3]));
  }
  return best;
}

bool Degenerate(const P3 *t) { return (t[1] - t[0]).Cross(t[2] - t[0]).Length() < 1.4901161193847656e-8; }

// The class of a closest point on a triangle: 0 degenerate, 1-3 vertex,
// 4-6 edge 01, 12, 20, 7 inside.
int ClassOf(const P3 &p, const P3 *t) {
  const double tol = 1.4901161193847656e-8;
  if (Degenerate(t)) return 0;
  for (int i = 0; i < 3; ++i)
    if ((p - t[i]).SquaredLength() < tol) return 1 + i;
  for (int i = 0; i < 3; ++i) {
    const P3 &a = t[i], &b = t[(i + 1) % 3];
    if ((p - a).Length() + (p - b).Length() <= (b - a).Length() + tol) return 4 + i;
  }
  return 7;
}

P3 UnitNormal(const P3 *t) {
  P3 n = (t[1] - t[0]).Cross(t[2] - t[0]);
  n.Normalise();
  return n;
}

// ---------------------------------------------------------------- MMTriangle

TEST(Triangle, GetPointFallsBackToCornerZeroAndNormalIsGuarded) {
  const MMTriangle t(P3(1, 2, 3), P3(4, 5, 6), P3(7, 8, 10));
  EXPECT_TRUE(t.GetPoint(3) == P3(1, 2, 3) && t.GetPoint(-1) == P3(1, 2, 3));
  EXPECT_EQ(MMTriangle(P3(0, 0, 0), P3(2, 0, 0), P3(0, 3, 0)).GetNormal(), P3(0, 0, 1));
  // Degenerate: the raw short vector (1e-9 x 1e-9 = 1e-18 long).
  EXPECT_EQ(MMTriangle(P3(0, 0, 0), P3(1e-9, 0, 0), P3(0, 1e-9, 0)).GetNormal(), P3(0, 0, 1e-18));
}

// ---------------------------------------------------------------- projection

TEST(TriangleProjection, NamedCases) {
  const P3 tri[3] = {P3(0, 0, 0), P3(1, 0, 0), P3(0, 1, 0)};
  const P3 n(0, 0, 1);
  P3 closest, direction;
  MPosition position;
  // Straight above P0: a = b = 0, a boundary foot, so inside.
  EXPECT_EQ(ProjectPoint2(closest, direction, position, P3(0, 0, 2), tri, n), 4.0);
  EXPECT_TRUE(position == POSITION_INSIDE && closest == P3(0, 0, 0) && direction == n);
  // Outside, nearer than 0.2: direction stays the normal.
  EXPECT_NEAR(ProjectPoint(closest, direction, position, P3(0.5, -0.1, 0), tri, n), 0.1, 1e-15);
  EXPECT_TRUE(position == POSITION_EDGE_01 && direction == n);
  // The same side at 0.3, below the plane: a unit vector turned to the normal.
  EXPECT_NEAR(ProjectPoint(closest, direction, position, P3(0.5, -0.3, -1e-3), tri, n), std::hypot(0.3, 1e-3), 1e-15);
  EXPECT_NEAR(direction.Length(), 1.0, 1e-15);
  EXPECT_GT(direction.Dot(n), 0.0);
  EXPECT_GT(direction.y, 0.0);  // the whole vector is negated, not only its height
  // Three coincident corners: every parameter is not a number, the last
  // branch accepts P2.
  const P3 point3[3] = {P3(1, 1, 1), P3(1, 1, 1), P3(1, 1, 1)};
  EXPECT_EQ(ProjectPoint2(closest, direction, position, P3(1, 1, 3), point3, n), 4.0);
  EXPECT_EQ(position, POSITION_VERTEX_2);
}

TEST(TriangleProjection, WalkAgainstBruteForce) {
  // The walk is not a global minimum, so the check is: the reported value is
  // the squared distance to `closest`, `closest` lies on the feature named,
  // and the value is never below the true minimum. On acute triangles the
  // walk finds the minimum; that is checked too.
  const unsigned seed = 4242u;
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> u(-2.0, 2.0);
  int acuteChecked = 0;
  for (int n = 0; n < 20000; ++n) {
    const P3 tri[3] = {P3(u(rng), u(rng), u(rng)), P3(u(rng), u(rng), u(rng)), P3(u(rng), u(rng), u(rng))};
    if (Degenerate(tri)) continue;
    const P3 normal = UnitNormal(tri);
    const P3 p(u(rng), u(rng), u(rng));
    P3 closest, direction;
    MPosition position;
    const double d2 = ProjectPoint2(closest, direction, position, p, tri, normal);
    const double truth = PointTriangle2(p, tri);
    // 1e-12: a few roundings of quantities of size 10.
    ASSERT_NEAR(d2, (p - closest).SquaredLength(), 1e-12) << "seed " << seed << " case " << n;
    ASSERT_GE(d2, truth - 1e-12) << "seed " << seed << " case " << n;
    // The feature named: its two ends by position (a vertex twice).
    static const int ends[8][2] = {{0, 0}, {0, 0}, {0, 0}, {1, 1}, {2, 2}, {0, 1}, {1, 2}, {0, 2}};
    if (position != POSITION_INSIDE) {
      ASSERT_LT(PointSegment2(closest, tri[ends[position][0]], tri[ends[position][1]]), 1e-20);
    }
    bool acute = true;
    for (int i = 0; i < 3; ++i) acute = acute && (tri[(i + 1) % 3] - tri[i]).Dot(tri[(i + 2) % 3] - tri[i]) > 0.0;
    if (acute) {
      ++acuteChecked;
      EXPECT_NEAR(d2, truth, 1e-12) << "acute, seed " << seed << " case " << n;
    }
  }
  EXPECT_GT(acuteChecked, 1000);
}

// ---------------------------------------------------------------- DistanceT2T

TEST(TriangleDistance, NamedCases) {
  // Piercing: distance 0 at the piercing point of the first edge found.
  const P3 a[3] = {P3(0, 0, 0), P3(4, 0, 0), P3(0, 4, 0)};
  const P3 b[3] = {P3(1, 1, -1), P3(1, 1, 1), P3(3, 3, 2)};
  P3 ca, cb;
  EXPECT_EQ(DistanceT2T(a, UnitNormal(a), b, UnitNormal(b), &ca, &cb), 0.0);
  EXPECT_TRUE(ca == P3(1, 1, 0) && cb == ca);
  // Null outputs are skipped (parallel, one above the other: the vertex pass).
  const P3 c[3] = {P3(0, 0, 2), P3(4, 0, 2), P3(0, 4, 2)};
  EXPECT_EQ(DistanceT2T(a, UnitNormal(a), c, UnitNormal(c), nullptr, nullptr), 4.0);
  // Segment parameter: exactly 0.5 on a segment shorter than the tolerance.
  EXPECT_EQ(detail::SegmentParameter(P3(5, 5, 5), P3(0, 0, 0), P3(1e-5, 0, 0)), 0.5);
  EXPECT_EQ(detail::SegmentParameter(P3(0.25, 5, 5), P3(0, 0, 0), P3(1, 0, 0)), 0.25);
}

// The seeded integer-coordinate run: integer corners 0 to 99, now and then a
// corner replaced by a weighted mean of the other two in steps of 0.1. Each
// result is checked against the brute-force oracle over vertices, edges and
// interiors (with exact rational intersection), against the optimality
// conditions, and the classes of the two closest points are counted: all 8 x
// 8 pairs except (inside, inside) must occur, 63 in all.
TEST(TriangleDistance, SeededRunAgainstBruteForceCoversAllClassPairs) {
  const unsigned seed = 12345u;
  std::mt19937 rng(seed);
  std::uniform_int_distribution<int> coord(0, 99), tenth(0, 10), pick(0, 99);
  const double tol = 1.4901161193847656e-8;
  std::set<std::pair<int, int>> seen;
  const int kPairs = 100000;
  const int kOracle = 12000;  // the exact oracle is slow; it checks the first pairs
  int firstComplete = -1;
  for (int n = 0; n < kPairs; ++n) {
    P3 t[2][3];
    for (auto &tri : t) {
      for (P3 &p : tri) p = P3(coord(rng), coord(rng), coord(rng));
      if (pick(rng) < 15) {
        const int k = pick(rng) % 3;
        const double w = tenth(rng) * 0.1;
        tri[k] = tri[(k + 1) % 3] * w + tri[(k + 2) % 3] * (1.0 - w);
      }
    }
    // A pair with touching or overlapping features now and then.
    if (pick(rng) < 10) t[1][pick(rng) % 3] = t[0][pick(rng) % 3];
    if (pick(rng) < 5) t[1][pick(rng) % 3] = (t[0][0] + t[0][1]) * 0.5;
    if (pick(rng) < 5) t[1][pick(rng) % 3] = P3(t[0][0].x, t[0][0].y, t[0][0].z + 1 + pick(rng) % 5);
    const P3 na = UnitNormal(t[0]), nb = UnitNormal(t[1]);
    P3 pa, pb;
    const double d2 = DistanceT2T(t[0], na, t[1], nb, &pa, &pb);
    ASSERT_NEAR((pa - pb).SquaredLength(), d2, tol) << "case " << n;
    if (std::sqrt(d2) > tol) {
      for (int i = 0; i < 3; ++i) {
        ASSERT_LE((pb - pa).Dot(t[0][i] - pa), tol) << "case " << n;
        ASSERT_LE((pa - pb).Dot(t[1][i] - pb), tol) << "case " << n;
      }
    }
    seen.insert({ClassOf(pa, t[0]), ClassOf(pb, t[1])});
    if (seen.size() == 63 && firstComplete < 0) firstComplete = n;
    if (n < kOracle) {
      double truth = TriangleTriangle2(t[0], t[1]);
      if (TrianglesMeetExact(t[0], t[1])) truth = 0.0;
      // 1e-6 on squared distances of up to 3e4: rounding of the feature
      // steps, and the 1.5e-8 tolerances of the edge tests.
      ASSERT_NEAR(d2, truth, 1e-6) << "seed " << seed << " case " << n;
    }
  }
  std::printf("DistanceT2T seed %u: 63 class pairs complete after %d pairs\n", seed, firstComplete + 1);
  EXPECT_EQ(seen.count({7, 7}), 0u);
  for (int i = 0; i < 64; ++i)
    EXPECT_TRUE(i == 63 || seen.count({i / 8, i % 8})) << "missing (" << i / 8 << "," << i % 8 << ")";
}

// ---------------------------------------------------------------- exact test

TEST(TrianglesIntersectRobust, NamedCases) {
  // Contacts of every kind are left to the rational oracle below; coplanar
  // pairs count as meeting even far apart, kept on purpose.
  const P3 base[3] = {P3(0, 0, 0), P3(4, 0, 0), P3(0, 4, 0)};
  const P3 far[3] = {P3(100, 100, 0), P3(101, 100, 0), P3(100, 101, 0)};
  EXPECT_TRUE(Robust(base, far) && Robust(far, base));
  // A gap of one ulp at a large offset, far below naive rounding.
  const double big = 1e15;
  const P3 a[3] = {P3(big, big, big), P3(big + 4, big, big), P3(big, big + 4, big)};
  P3 b[3] = {P3(big + 1, big + 1, big), P3(big + 1, big + 1, big + 8), P3(big + 2, big + 1, big + 8)};
  EXPECT_TRUE(Robust(a, b));  // touching
  b[0].z = std::nextafter(big, 2 * big);
  EXPECT_FALSE(Robust(a, b));
}

TEST(TrianglesIntersectRobust, AgainstExactRationalOracle) {
  // Small integer coordinates make touching, collinear and coplanar contacts
  // frequent; a second family moves random corners by one ulp around a
  // touching configuration. The oracle works in rationals; coplanar pairs are
  // answered true by design.
  const unsigned seed = 31337u;
  std::mt19937 rng(seed);
  std::uniform_int_distribution<int> coord(0, 3);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::uniform_int_distribution<int> ulp(-1, 1);
  int touching = 0, disjoint = 0, meeting = 0;
  for (int n = 0; n < 12000; ++n) {
    P3 a[3], b[3];
    if (n % 2 == 0) {
      for (int i = 0; i < 3; ++i) {
        a[i] = P3(coord(rng), coord(rng), coord(rng));
        b[i] = P3(coord(rng), coord(rng), coord(rng));
      }
    } else {
      for (int i = 0; i < 3; ++i) a[i] = P3(u(rng), u(rng), u(rng)) * 1e3;
      // b has a corner on a's plane (up to rounding), moved by an ulp.
      const double s = 0.5 * std::abs(u(rng)), t = 0.5 * std::abs(u(rng)) * (n % 4 == 1 ? 1.0 : 3.0);
      P3 on = a[0] + (a[1] - a[0]) * s + (a[2] - a[0]) * t;
      for (int k = 0; k < 3; ++k) {
        const int m = ulp(rng);
        if (m != 0) on[k] = std::nextafter(on[k], m * 1e300);
      }
      const P3 nrm = UnitNormal(a);
      b[0] = on;
      b[1] = on + (nrm + P3(u(rng), u(rng), u(rng)) * 0.3) * 50.0;
      b[2] = on + (nrm + P3(u(rng), u(rng), u(rng)) * 0.3) * 50.0;
    }
    if (Degenerate(a) || Degenerate(b)) continue;
    const bool expected = Coplanar(a, b) || TrianglesMeetExact(a, b);
    ASSERT_EQ(Robust(a, b), expected) << "seed " << seed << " case " << n;
    ASSERT_EQ(Robust(b, a), expected) << "seed " << seed << " case " << n << " swapped";
    if (n % 2 == 1) (expected ? touching : disjoint)++;
    if (n % 2 == 0 && expected) ++meeting;
  }
  // Both outcomes must be well represented in the near-touching family.
  EXPECT_GT(touching, 300);
  EXPECT_GT(disjoint, 300);
  EXPECT_GT(meeting, 300);
}

}  // namespace
