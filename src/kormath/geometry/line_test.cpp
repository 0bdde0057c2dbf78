#include <kormath/geometry/line.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using P3 = MMPoint3d<double>;
using P2 = MMPoint2d<double>;

TEST(Line3D, ParallelismAndCommonPerpendicular) {
  const MMLine x(P3(0, 0, 0), P3(1, 0, 0));
  const MMLine xBack(P3(5, 1, 0), P3(3, 1, 0));
  const MMLine point(P3(2, 2, 2), P3(2, 2, 2));
  EXPECT_TRUE(x.IsParallel(xBack, 1e-12));   // opposite directions count
  EXPECT_FALSE(x.IsParallel(xBack, 0.0));    // strict: tolerance 0 never
  EXPECT_TRUE(x.IsParallel(point, 1e-300));  // a zero line is parallel to all
  MMLine perp(P3(7, 7, 7), P3(8, 8, 8));
  EXPECT_FALSE(x.GetCommonPerpendicularLine(point, perp, 0.0));  // zero cross product
  EXPECT_EQ(perp.firstPoint, P3(7, 7, 7));                       // untouched

  // Skew lines: x axis and the line through (0, 1, 3) along y + z... the
  // first end lies on `other`, the second on this line.
  const MMLine skew(P3(2, -1, 3), P3(2, 1, 3));
  ASSERT_TRUE(x.GetCommonPerpendicularLine(skew, perp, 1e-9));
  EXPECT_NEAR((perp.firstPoint - P3(2, 0, 3)).Length(), 0.0, 1e-14);
  EXPECT_NEAR((perp.secondPoint - P3(2, 0, 0)).Length(), 0.0, 1e-14);
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
    // The joining segment is perpendicular to both directions; its ends lie
    // on the lines. 1e-9: relative rounding on coordinates of size 10-100.
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
  EXPECT_FALSE(x.IsPointOnLine(P3(0.5, 0.1, 0), false, 0.1));   // strict
  EXPECT_TRUE(x.IsPointOnLine(P3(5, 0, 0), false, 0.1));
  EXPECT_FALSE(x.IsPointOnLine(P3(1 + 1e-12, 0, 0), true, 0.1));  // the end test has no tolerance
  EXPECT_TRUE(x.IsPointOnLine(P3(1, 0, 0), true, 0.1));
  const MMLine zero(P3(1, 1, 1), P3(1, 1, 1));
  EXPECT_TRUE(zero.IsPointOnLine(P3(1, 1, 1.05), false, 0.1));

  // Skew lines 0.05 apart: the point is the end on `other`, not a midpoint.
  const MMLine y(P3(0.5, -1, 0.05), P3(0.5, 1, 0.05));
  P3 hit;
  EXPECT_FALSE(x.GetIntersectionPoint(y, hit, 0.04, false));
  ASSERT_TRUE(x.GetIntersectionPoint(y, hit, 0.05, false));  // a gap equal to the tolerance passes
  EXPECT_NEAR((hit - P3(0.5, 0, 0.05)).Length(), 0.0, 1e-15);
  // Segments: the point on `other` is 0.05 off this line; with the segment
  // test it must lie on both within the tolerance.
  EXPECT_TRUE(x.GetIntersectionPoint(y, hit, 0.06, true));
  // Lines at an angle whose sine is below 0.001 never intersect here.
  const MMLine shallow(P3(0, 0, 0), P3(1, 0.0009, 0));
  EXPECT_FALSE(x.GetIntersectionPoint(shallow, hit, 1e6, false));
  // Beyond the end of a segment: false, with the point already written.
  const MMLine far(P3(3, -1, 0), P3(3, 1, 0));
  hit = P3(9, 9, 9);
  EXPECT_FALSE(x.GetIntersectionPoint(far, hit, 0.01, true));
  EXPECT_NEAR((hit - P3(3, 0, 0)).Length(), 0.0, 1e-15);
}

TEST(Line2D, DirectionParallelismAndPointTests) {
  const MMLine2D unit;
  EXPECT_EQ(unit.GetSecondPoint(), P2(1, 0));
  EXPECT_EQ(MMLine2D(P2(0, 0), P2(3, 4)).GetDirection(), P2(0.6, 0.8));
  EXPECT_EQ(MMLine2D(P2(1, 1), P2(1, 1 + 3e-16)).GetDirection().y, (1 + 3e-16) - 1);  // raw below 3.140185e-16
  EXPECT_EQ(MMLine2D(P2(0, 0), P2(3, 4)).GetLength(), 5.0);

  const MMLine2D up(P2(0, 0), P2(0, 1)), down(P2(0, 1), P2(0, 0));
  const MMLine2D right(P2(0, 0), P2(1, 0)), left(P2(1, 0), P2(0, 0));
  EXPECT_FALSE(up.IsParallel(down, 2.0));  // only x decides the flip
  EXPECT_TRUE(up.IsParallel(down, 2.0 + 1e-12));
  EXPECT_TRUE(right.IsParallel(left, 1e-12));
  EXPECT_FALSE(right.IsPointOnLine(P2(0, 0), 1.0));  // zero temporary line
  EXPECT_TRUE(right.IsPointOnLine(P2(-3, 0), 1e-12));  // before the first point, through the flip
  EXPECT_FALSE(up.IsPointOnLine(P2(0, -3), 1.0));      // vertical: no flip
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
  EXPECT_FALSE(a.GetIntersectionPoint(p, MMLine2D(P2(0, 1), P2(1, 2)), 1e-12));
  EXPECT_EQ(p, P2(9, 9));
  // The tolerance is on the unnormalised cross product: short lines fail.
  EXPECT_FALSE(MMLine2D(P2(0, 0), P2(0.01, 0)).GetIntersectionPoint(p, MMLine2D(P2(0, 0), P2(0, 0.01)), 1e-3));
  EXPECT_TRUE(a.GetIntersectionSegmentSegment(p, b, 1e-9));
  // Lines meet outside the segments: false, point written.
  const MMLine2D c(P2(5, 0), P2(6, -1));
  EXPECT_FALSE(a.GetIntersectionSegmentSegment(p, c, 1e-9));
  EXPECT_NEAR(p.x, 2.5, 1e-15);

  const MMLine2D inside(P2(0.5, 0.5), P2(5, 5)), crossing(P2(-1, 0.5), P2(2, 0.5)), outside(P2(2, 2), P2(3, 3));
  EXPECT_TRUE(inside.DoesSegmentLieOnRect(0, 0, 1, 1, 1e-9));
  EXPECT_TRUE(crossing.DoesSegmentLieOnRect(0, 0, 1, 1, 1e-9));
  EXPECT_FALSE(outside.DoesSegmentLieOnRect(0, 0, 1, 1, 1e-9));
  // Collinear with an edge, both ends outside: den 0 against that edge, and
  // the perpendicular edges are met only at their ends.
  EXPECT_TRUE(MMLine2D(P2(-1, 0), P2(2, 0)).DoesSegmentLieOnRect(0, 0, 1, 1, 1e-9));
}

TEST(Line2D, EquationProjectionAndDistances) {
  struct Case {
    P2 first, second;
    double a, b, c;
  } cases[] = {
      {P2(0, 0), P2(1, 1), 1, -1, 0},  {P2(2, 0), P2(2, 5), -0.5, 0, 1}, {P2(0, 0), P2(0, 5), 1, 0, 0},
      {P2(0, 3), P2(4, 3), 0, -1.0 / 3, 1}, {P2(1, 0), P2(4, 0), 0, 1, 0},
  };
  for (const Case &k : cases) {
    double a = 9, b = 9, c = 9;
    MMLine2D(k.first, k.second).GetLineEquation(a, b, c, 1e-12);
    EXPECT_EQ(a, k.a);
    EXPECT_EQ(b, k.b);
    EXPECT_EQ(c, k.c);
  }
  const MMLine2D l(P2(0, 0), P2(4, 0));
  P2 foot;
  l.Project(foot, P2(3, 2));
  EXPECT_EQ(foot, P2(3, 0));
  EXPECT_EQ(l.GetDistance(P2(-3, 2)), 2.0);  // infinite line
  // Zero-length line: Project leaves the output, GetDistance measures from the origin.
  const MMLine2D zero(P2(3, 3), P2(3, 3));
  foot = P2(7, 7);
  zero.Project(foot, P2(1, 0));
  EXPECT_EQ(foot, P2(7, 7));
  EXPECT_EQ(zero.GetDistance(P2(1, 0)), 1.0);
  // Signed distance follows the equation, not the direction: reversing the
  // ends keeps the sign.
  const MMLine2D diag(P2(0, 0), P2(1, 1)), diagBack(P2(1, 1), P2(0, 0));
  EXPECT_NEAR(diag.GetSignedDistance(P2(1, 0)), std::sqrt(0.5), 1e-15);
  EXPECT_NEAR(diagBack.GetSignedDistance(P2(1, 0)), std::sqrt(0.5), 1e-15);
  EXPECT_NEAR(diag.GetSignedDistance(P2(0, 1)), -std::sqrt(0.5), 1e-15);
  // dx and x1 both small: the positive side is x > 0.
  EXPECT_EQ(MMLine2D(P2(0, 0), P2(0, 5)).GetSignedDistance(P2(2, 1)), 2.0);
  EXPECT_EQ(MMLine2D(P2(0, 5), P2(0, 0)).GetSignedDistance(P2(-2, 1)), -2.0);
}

}  // namespace
