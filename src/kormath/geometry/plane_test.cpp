#include <kormath/geometry/plane.h>

#include <kormath/transforms/matrix_transform.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using P3 = MMPoint3d<double>;
using Plane = MMPlaneEq<double>;

P3 AsPoint(const MMVector<double, 3> &v) { return P3(v.x, v.y, v.z); }
P3 Coefficients(const Plane &p) { return P3(p.A(), p.B(), p.C()); }

TEST(PlaneEq, ConstructionAndNormalisation) {
  const Plane zeroNormal(0, 0, 0, 5);  // Normalise ignores a zero normal
  EXPECT_EQ(zeroNormal.D(), 5.0);
  EXPECT_FALSE(zeroNormal.IsPlane());
  const Plane z(0, 0, 2, 4);  // becomes (0, 0, 1, 2): the plane z = -2
  EXPECT_TRUE(z.C() == 1.0 && z.D() == 2.0);
  const Plane three(P3(0, 0, 1), P3(1, 0, 1), P3(0, 1, 1));
  EXPECT_TRUE(AsPoint(three.GetNormal()) == P3(0, 0, 1) && three.D() == -1.0);
  const Plane collinear(P3(0, 0, 0), P3(1, 1, 1), P3(2, 2, 2));
  EXPECT_FALSE(collinear.IsPlane());

  Plane p(0, 0, 1, -2), q(0, 0, 1, -2);
  p.InvertNormal();  // a different plane
  EXPECT_TRUE(Coefficients(p) == P3(0, 0, -1) && p.D() == -2.0);
  q.Invert();  // the same plane flipped
  EXPECT_TRUE(Coefficients(q) == P3(0, 0, -1) && q.D() == 2.0);
}

TEST(PlaneEq, EqualityIsGeometricAndAsymmetric) {
  const Plane p(1, 2, 2, 3);
  EXPECT_TRUE(p == p.Inverted());  // products unchanged by negating all four
  const Plane o(1, 2, 2, 0);
  EXPECT_FALSE(o == o.Inverted());  // through the origin: n1.n2 = -1
  EXPECT_TRUE(o == Plane(2, 4, 4, 0));
  EXPECT_TRUE(o != Plane(2, 4, 4, 1));
  // |d2| decides first: both orders are unequal here.
  EXPECT_FALSE(Plane(1, 0, 0, 0) == Plane(1, 0, 0, 1));
  EXPECT_FALSE(Plane(1, 0, 0, 1) == Plane(1, 0, 0, 0));
  // Boundary of e = 1.4901161193847656e-8 on |d|: exactly e counts as zero.
  EXPECT_TRUE(Plane(1, 0, 0, 1.4901161193847656e-8) == Plane(1, 0, 0, 0));
}

TEST(PlaneEq, IntersectProjectMirrorOn) {
  const Plane z(0, 0, 1, 0);
  P3 out, mirrored;
  EXPECT_TRUE(z.Project(out, P3(1, 2, 5)) == -5.0 && out == P3(1, 2, 0));
  EXPECT_TRUE(z.Mirror(mirrored, P3(1, 2, 5)) == 5.0 && mirrored == P3(1, 2, -5));
  EXPECT_EQ(Plane().Project(out, P3(1, 2, 5)), 0.0);  // all-zero plane
  double t = 7;
  EXPECT_FALSE(z.Intersect(t, out, P3(0, 0, 1), P3(1, 0, 0)));
  EXPECT_EQ(t, 0.0);
  ASSERT_TRUE(z.Intersect(t, out, P3(0, 0, 4), P3(0, 0, -2)));
  EXPECT_EQ(t, 2.0);                     // measured in the length of the direction
  EXPECT_FALSE(z.On(P3(3, 3, 0), 0.0));  // strict
  EXPECT_TRUE(z.On(P3(3, 3, 0.5), 0.51));
  EXPECT_FALSE(z.On(P3(3, 3, 0.5), 0.5));
}

TEST(PlaneEq, IntersectWithPlane) {
  const Plane z0(0, 0, 1, 0), x0(1, 0, 0, 0), y3(0, 1, 0, -3);
  P3 point(9, 9, 9), dir;
  // z = 0 and x = 0: k of the z = 0 step is 0, so y = 0 is used.
  ASSERT_EQ(z0.IntersectWithPlane(point, dir, x0, 1e-12), PLANES_INTERSECT);
  EXPECT_EQ(point, P3(0, 0, 0));
  ASSERT_EQ(x0.IntersectWithPlane(point, dir, y3, 1e-12), PLANES_INTERSECT);
  EXPECT_EQ(point, P3(0, 3, 0));  // z = 0 first
  // Same surface with opposite normals: coincident; point untouched.
  point = P3(9, 9, 9);
  EXPECT_EQ(z0.IntersectWithPlane(point, dir, Plane(0, 0, -1, 1e-13), 1e-12), PLANES_COINCIDENT);
  EXPECT_EQ(Plane(0, 0, 1, -2).IntersectWithPlane(point, dir, Plane(0, 0, -1, 2), 1e-12), PLANES_COINCIDENT);
  EXPECT_EQ(z0.IntersectWithPlane(point, dir, Plane(0, 0, 1, 1), 1e-12), PLANES_PARALLEL);
  EXPECT_EQ(point, P3(9, 9, 9));
  EXPECT_EQ(dir, P3(0, 0, 0));                                                    // written, zero length left as it is
  EXPECT_EQ(z0.IntersectWithPlane(point, dir, Plane(), 1e-12), PLANES_PARALLEL);  // zero normal

  // Random pairs: the point lies on both planes and the direction along both.
  const unsigned seed = 11u;
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> u(-1, 1);
  for (int n = 0; n < 1000; ++n) {
    const Plane a(u(rng), u(rng), u(rng), u(rng)), b(u(rng), u(rng), u(rng), u(rng));
    if (a.IntersectWithPlane(point, dir, b, 1e-3) != PLANES_INTERSECT) continue;
    // 1e-9: the point is solved with a 2x2 determinant above 1e-3.
    for (const P3 &x : {point, point + dir})
      EXPECT_TRUE(std::abs(a.Distance(x)) < 1e-9 && std::abs(b.Distance(x)) < 1e-9) << "seed " << seed << " case " << n;
    EXPECT_GT(dir.Length(), 0.0);
  }
}

TEST(PlaneEq, TransformRoundsThroughFloat) {
  Plane p(0.1, 0.2, 0.3, 0.7);
  const Plane before = p;
  p.Transform(MMTransformMatrix());
  // Pinned: the normal is the float-rounded normal, normalised again.
  const double fa = double(float(before.A())), fb = double(float(before.B())), fc = double(float(before.C()));
  const double len = std::sqrt(fa * fa + fb * fb + fc * fc);
  EXPECT_EQ(Coefficients(p), P3(fa / len, fb / len, fc / len));
  EXPECT_NEAR(p.D(), before.D(), 1e-7);  // about seven digits
  // A rotation of 90 degrees about z turns the plane x = 1 into y = 1.
  MMTransformMatrix turn;
  turn.MakeRotation(P3(0, 0, 0), P3(0, 0, 1), 1.5707963267948966);
  Plane x1(1, 0, 0, -1);
  x1.Transform(turn);
  EXPECT_NEAR(x1.B(), 1.0, 1e-7);
  EXPECT_NEAR(x1.D(), -1.0, 1e-7);
}

TEST(Plane, FromEquationAndParallelism) {
  const MMPlane fromEq(Plane(0, 2, -4, 8));  // dominant c: (0, 0, -d / c)
  EXPECT_NEAR((fromEq.point - P3(0, 0, 2)).Length(), 0.0, 1e-15);
  const MMPlane tie(Plane(1, 1, 0, -2));  // ties go to x
  EXPECT_NEAR((tie.point - P3(2, 0, 0)).Length(), 0.0, 1e-15);

  const MMPlane z(P3(0, 0, 0), P3(0, 0, 2));
  // The line rises by atan(0.01) = 0.0099996667 rad: the tolerance is an angle.
  EXPECT_FALSE(z.IsParallel(MMLine(P3(0, 0, 1), P3(1, 0, 1.01)), 0.0099996));
  EXPECT_TRUE(z.IsParallel(MMLine(P3(0, 0, 1), P3(1, 0, 1.01)), 0.0099997));
  EXPECT_TRUE(z.IsParallel(MMLine(P3(5, 5, 5), P3(5, 5, 5)), 1e-300));  // degenerate line
  EXPECT_TRUE(z.IsParallel(MMPlane(P3(1, 1, 1), P3(0, 0, -5)), 1e-12));
  EXPECT_FALSE(z.IsParallel(MMPlane(P3(1, 1, 1), P3(0, 0, -5)), 0.0));
  EXPECT_FALSE(z.IsParallel(MMPlane(P3(1, 1, 1), P3(0, 1, 1)), 1.0));  // L1 size 2
}

TEST(Rectangle, CornersEdgesPlaneTransform) {
  const MMRectangle square(P3(1, 1, 1), P3(3, 1, 1), P3(1, 4, 1));  // exactly perpendicular third kept
  EXPECT_TRUE(square.GetCornerPoint(3) == P3(1, 4, 1) && square.GetCornerPoint(2) == P3(3, 4, 1));
  const MMRectangle skewed(P3(0, 0, 0), P3(2, 0, 0), P3(0.5, 3, 0));  // third moved onto x = 0
  EXPECT_EQ(skewed.GetCornerPoint(3), P3(0, 3, 0));

  const MMLine e4 = square.GetEdge(4), e0 = square.GetEdge(0), e3 = square.GetEdge(3);
  EXPECT_TRUE(e4.firstPoint == e0.firstPoint && e4.secondPoint == e0.secondPoint);
  EXPECT_TRUE(e3.firstPoint == square.GetCornerPoint(3) && e3.secondPoint == square.GetCornerPoint(0));
  const MMPlane plane = square.GetPlane();
  EXPECT_TRUE(plane.point == P3(2, 2.5, 1) && plane.normal == P3(0, 0, 1));

  MMRectangle moved = square;
  MMTransformMatrix turn;
  turn.MakeRotation(P3(0, 0, 0), P3(0, 0, 1), 1.5707963267948966);
  moved.Transform(turn);
  EXPECT_NEAR((moved.GetCornerPoint(0) - P3(-1, 1, 1)).Length(), 0.0, 1e-15);

  const MMRectangle2D r2(MMPoint2d<double>(3, 1), MMPoint2d<double>(1, 2));  // no ordering enforced
  EXPECT_TRUE(r2.GetCornerPoint(1) == MMPoint2d<double>(1, 1) && r2.GetCornerPoint(3) == MMPoint2d<double>(3, 2));
}

}  // namespace
