#include <kormath/geometry/line.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <tuple>

namespace {

using P3 = MMPoint3d<double>;
using P2 = MMPoint2d<double>;

TEST(Line3D, ParallelismAndDegenerateCommonPerpendicular) {
  const MMLine x(P3(0, 0, 0), P3(1, 0, 0));
  const MMLine xBack(P3(5, 1, 0), P3(3, 1, 0));
  const MMLine point(P3(2, 2, 2), P3(2, 2, 2));
  EXPECT_TRUE(x.IsParallel(xBack, 1e-12));   // opposite directions count
  EXPECT_FALSE(x.IsParallel(xBack, 0.0));    // strict: tolerance 0 never
  EXPECT_TRUE(x.IsParallel(point, 1e-300));  // a zero line is parallel to all
  MMLine perp(P3(7, 7, 7), P3(8, 8, 8));
  EXPECT_FALSE(x.GetCommonPerpendicularLine(point, perp, 0.0));  // zero cross product
  EXPECT_EQ(perp.firstPoint, P3(7, 7, 7));                       // untouched
}

TEST(Line3D, CommonPerpendicularAgainstClosedFormOnRandomLines) {
  const unsigned seed = 5u;
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> u(-10, 10);
  for (int n = 0; n < 2000; ++n) {
    const MMLine a(P3(u(rng), u(rng), u(rng)), P3(u(rng), u(rng), u(rng)));
    const MMLine b(P3(u(rng), u(rng), u(rng)), P3(u(rng), u(rng), u(rng)));
    MMLine perp;
    if (!a.GetCommonPerpendicularLine(b, perp, 1e-3)) continue;
    // Perpendicular to both, first end on `other`, second on this line.
    // 1e-9: relative rounding on coordinates of size 10-100.
    const P3 j = perp.secondPoint - perp.firstPoint;
    EXPECT_NEAR(j.Dot(a.GetDirection()) / a.GetLength(), 0.0, 1e-9) << "seed " << seed << " case " << n;
    EXPECT_NEAR(j.Dot(b.GetDirection()) / b.GetLength(), 0.0, 1e-9);
    EXPECT_TRUE(b.IsPointOnLine(perp.firstPoint, false, 1e-9));
    EXPECT_TRUE(a.IsPointOnLine(perp.secondPoint, false, 1e-9));
  }
}

TEST(Line3D, PointOnLineAndIntersection) {
  const MMLine x(P3(0, 0, 0), P3(1, 0, 0));
  EXPECT_FALSE(x.IsPointOnLine(P3(0.5, 0, 0), false, 0.0));  // tolerance 0: always false
  EXPECT_TRUE(x.IsPointOnLine(P3(0.5, 0.1, 0), false, 0.11));
  EXPECT_FALSE(x.IsPointOnLine(P3(0.5, 0.1, 0), false, 0.1));     // strict
  EXPECT_FALSE(x.IsPointOnLine(P3(1 + 1e-12, 0, 0), true, 0.1));  // the end test has no tolerance
  EXPECT_TRUE(MMLine(P3(1, 1, 1), P3(1, 1, 1)).IsPointOnLine(P3(1, 1, 1.05), false, 0.1));  // zero line

  // Skew lines 0.05 apart: the point is the end on `other`, not a midpoint.
  const MMLine y(P3(0.5, -1, 0.05), P3(0.5, 1, 0.05));
  P3 hit;
  EXPECT_FALSE(x.GetIntersectionPoint(y, hit, 0.04, false));
  ASSERT_TRUE(x.GetIntersectionPoint(y, hit, 0.05, false));  // a gap equal to the tolerance passes
  EXPECT_NEAR((hit - P3(0.5, 0, 0.05)).Length(), 0.0, 1e-15);
  // Lines at an angle whose sine is below 0.001 never intersect here.
  EXPECT_FALSE(x.GetIntersectionPoint(MMLine(P3(0, 0, 0), P3(1, 0.0009, 0)), hit, 1e6, false));
  // Beyond the end of a segment: false, with the point already written.
  hit = P3(9, 9, 9);
  EXPECT_FALSE(x.GetIntersectionPoint(MMLine(P3(3, -1, 0), P3(3, 1, 0)), hit, 0.01, true));
  EXPECT_NEAR((hit - P3(3, 0, 0)).Length(), 0.0, 1e-15);
}

TEST(Line2D, DirectionParallelismAndPointTests) {
  EXPECT_EQ(MMLine2D(P2(1, 1), P2(1, 1 + 3e-16)).GetDirection().y, (1 + 3e-16) - 1);  // raw below 3.140185e-16
  const MMLine2D up(P2(0, 0), P2(0, 1)), down(P2(0, 1), P2(0, 0));
  const MMLine2D right(P2(0, 0), P2(1, 0)), left(P2(1, 0), P2(0, 0));
  EXPECT_FALSE(up.IsParallel(down, 2.0));  // only x decides the flip
  EXPECT_TRUE(up.IsParallel(down, 2.0 + 1e-12));
  EXPECT_TRUE(right.IsParallel(left, 1e-12));
  EXPECT_FALSE(right.IsPointOnLine(P2(0, 0), 1.0));                     // zero temporary line
  EXPECT_TRUE(right.IsPointOnLine(P2(-3, 0), 1e-12));                   // before the first point, through the flip
  EXPECT_FALSE(up.IsPointOnLine(P2(0, -3), 1.0));                       // vertical: no flip
  EXPECT_FALSE(right.IsCoincident(MMLine2D(P2(0, 0), P2(2, 0)), 1.0));  // shared first point
  EXPECT_TRUE(right.IsCoincident(MMLine2D(P2(5, 0), P2(7, 0)), 1e-12));
  EXPECT_FALSE(right.IsPointOnLineSegment(P2(1, 0), 0.5));  // the second point fails
  EXPECT_FALSE(right.IsPointOnLineSegment(P2(0, 0), 0.5));  // first point: zero vector, cosine 0
  EXPECT_TRUE(right.IsPointOnLineSegment(P2(0, 0), 1.0));
  EXPECT_TRUE(right.IsPointOnLineSegment(P2(0.5, 0.01), 1e-3));
  EXPECT_FALSE(right.IsPointOnLineSegment(P2(0.5, 0.1), 1e-3));
}

TEST(Line2D, IntersectionsAndRectangle) {
  const MMLine2D a(P2(0, 0), P2(2, 2)), b(P2(0, 2), P2(2, 0));
  P2 p(9, 9);
  ASSERT_TRUE(a.GetIntersectionPoint(p, b, 1e-12));
  EXPECT_EQ(p, P2(1, 1));
  p = P2(9, 9);
  EXPECT_FALSE(a.GetIntersectionPoint(p, MMLine2D(P2(0, 1), P2(1, 2)), 1e-12));  // parallel: untouched
  EXPECT_EQ(p, P2(9, 9));
  // The tolerance is on the unnormalised cross product: short lines fail.
  EXPECT_FALSE(MMLine2D(P2(0, 0), P2(0.01, 0)).GetIntersectionPoint(p, MMLine2D(P2(0, 0), P2(0, 0.01)), 1e-3));
  // Lines meet outside the segments: false, point written.
  EXPECT_FALSE(a.GetIntersectionSegmentSegment(p, MMLine2D(P2(5, 0), P2(6, -1)), 1e-9));
  EXPECT_NEAR(p.x, 2.5, 1e-15);

  EXPECT_TRUE(MMLine2D(P2(0.5, 0.5), P2(5, 5)).DoesSegmentLieOnRect(0, 0, 1, 1, 1e-9));  // one end inside
  EXPECT_TRUE(MMLine2D(P2(-1, 0.5), P2(2, 0.5)).DoesSegmentLieOnRect(0, 0, 1, 1, 1e-9));
  EXPECT_FALSE(MMLine2D(P2(2, 2), P2(3, 3)).DoesSegmentLieOnRect(0, 0, 1, 1, 1e-9));
  // Collinear with an edge, both ends outside: den 0 against that edge, and
  // the perpendicular edges are met only at their ends.
  EXPECT_TRUE(MMLine2D(P2(-1, 0), P2(2, 0)).DoesSegmentLieOnRect(0, 0, 1, 1, 1e-9));
}

TEST(Line2D, EquationProjectionAndDistances) {
  const std::tuple<P2, P2, double, double, double> cases[] = {
      {P2(0, 0), P2(1, 1), 1, -1, 0},       {P2(2, 0), P2(2, 5), -0.5, 0, 1}, {P2(0, 0), P2(0, 5), 1, 0, 0},
      {P2(0, 3), P2(4, 3), 0, -1.0 / 3, 1}, {P2(1, 0), P2(4, 0), 0, 1, 0},
  };
  for (const auto &[first, second, ea, eb, ec] : cases) {
    double a = 9, b = 9, c = 9;
    MMLine2D(first, second).GetLineEquation(a, b, c, 1e-12);
    EXPECT_TRUE(a == ea && b == eb && c == ec) << a << " " << b << " " << c;
  }
  P2 foot;
  MMLine2D(P2(0, 0), P2(4, 0)).Project(foot, P2(3, 2));
  EXPECT_EQ(foot, P2(3, 0));
  // Zero-length line: Project leaves the output, GetDistance measures from the origin.
  const MMLine2D zero(P2(3, 3), P2(3, 3));
  zero.Project(foot, P2(1, 0));
  EXPECT_EQ(foot, P2(3, 0));
  EXPECT_EQ(zero.GetDistance(P2(1, 0)), 1.0);
  // Signed distance follows the equation, not the direction: reversing the
  // ends keeps the sign, except where dx and x1 are both small (x > 0 positive).
  const MMLine2D diag(P2(0, 0), P2(1, 1)), diagBack(P2(1, 1), P2(0, 0));
  EXPECT_NEAR(diag.GetSignedDistance(P2(1, 0)), std::sqrt(0.5), 1e-15);
  EXPECT_NEAR(diagBack.GetSignedDistance(P2(1, 0)), std::sqrt(0.5), 1e-15);
  EXPECT_NEAR(diag.GetSignedDistance(P2(0, 1)), -std::sqrt(0.5), 1e-15);
  EXPECT_EQ(MMLine2D(P2(0, 0), P2(0, 5)).GetSignedDistance(P2(2, 1)), 2.0);
  EXPECT_EQ(MMLine2D(P2(0, 5), P2(0, 0)).GetSignedDistance(P2(-2, 1)), -2.0);
}

}  // namespace
