#include <kormath/transforms/matrix_transform.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

// Exposes the protected equality and inversion steps for the tests.
class Probe : public MMTransformMatrix {
 public:
  using MMTransformMatrix::_ComputeInverseGeneral;
  using MMTransformMatrix::_Equal;
};

MMTransformMatrix FromRows(const double (&m)[4][4]) {
  MMTransformMatrix t;
  t.MakeFromDouble16(&m[0][0]);
  return t;
}

// Largest deviation of Matrix * Inverse from the identity.
double ProductError(const MMTransformMatrix &t) {
  double worst = 0.0;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) {
      double s = 0.0;
      for (int k = 0; k < 4; ++k) s += t.Matrix[r][k] * t.Inverse[k][c];
      worst = std::fmax(worst, std::fabs(s - (r == c ? 1.0 : 0.0)));
    }
  return worst;
}

TEST(Classification, TolerancesAndOrderAtBothSides) {
  // Orthonormal column lengths: strict at kDoubleEpsilonX10 on the squared
  // length; the orthogonal test uses the tighter kDoubleEpsilon.
  const double s = std::sqrt(1.0 + 1.5e-15), t = std::sqrt(1.0 + 3e-15), e = 1.0000000000000002;  // 1 + 2^-52
  using C = MMTransformClass;
  struct Case {
    const char *what;
    double m[4][4];
    C expected;
  } cases[] = {
      {"identity", {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}, C::Identity},
      {"translation", {{1, 0, 0, 5}, {0, 1, 0, 6}, {0, 0, 1, 7}, {0, 0, 0, 1}}, C::Translation},
      {"block off by 1e-15", {{1, 1e-15, 0, 5}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}, C::Translation},
      {"block off by 3e-15", {{1, 3e-15, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}, C::General},
      {"uniform scale 1+2^-52", {{e, 0, 0, 0}, {0, e, 0, 0}, {0, 0, e, 0}, {0, 0, 0, 1}}, C::Translation},
      {"zero block", {{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 1}}, C::Scale1D},
      {"scale 3d", {{2, 0, 0, 0}, {0, 3, 0, 0}, {0, 0, 4, 0}, {0, 0, 0, 1}}, C::Scale3D},
      {"scale + shift", {{2, 0, 0, 1}, {0, 2, 0, 0}, {0, 0, 2, 0}, {0, 0, 0, 1}}, C::General},
      {"half turn + shift", {{-1, 0, 0, 1}, {0, -1, 0, 2}, {0, 0, 1, 3}, {0, 0, 0, 1}}, C::OrthoNormal},
      {"mirror", {{0, 1, 0, 0}, {1, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}, C::OrthoNormal},
      // Unit columns, orthogonal rows: the column/row asymmetry admits this singular matrix.
      {"singular", {{1, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 0}, {0, 0, 0, 1}}, C::OrthoNormal},
      {"scaled half turn", {{0, -2, 0, 0}, {2, 0, 0, 0}, {0, 0, 2, 0}, {0, 0, 0, 1}}, C::OrthoGonal},
      {"scaled turn + shift", {{0, -2, 0, 1}, {2, 0, 0, 0}, {0, 0, 2, 0}, {0, 0, 0, 1}}, C::General},
      {"last row (0,0,0,2)", {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 2}}, C::General},
      {"NaN fails Scale1D", {{NAN, 0, 0, 0}, {0, NAN, 0, 0}, {0, 0, NAN, 0}, {0, 0, 0, 1}}, C::Scale3D},
      {"column 1+1.5e-15", {{0, -s, 0, 0}, {1, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}, C::OrthoNormal},
      {"column 1+3e-15", {{0, -t, 0, 0}, {1, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}, C::General},
      {"scaled, 1+1.5e-15", {{0, -2 * s, 0, 0}, {2, 0, 0, 0}, {0, 0, 2, 0}, {0, 0, 0, 1}}, C::General},
  };
  for (const auto &c : cases) EXPECT_EQ(FromRows(c.m).Class, c.expected) << c.what;

  // Membership tests follow the class table.
  MMTransformMatrix m = FromRows({{0, -2, 0, 0}, {2, 0, 0, 0}, {0, 0, 2, 0}, {0, 0, 0, 1}});
  EXPECT_TRUE(m.IsOrthoGonal() && !m.IsOrthoNormal() && !m.IsScale3D());
  EXPECT_LT(ProductError(m), 1e-15);  // the orthogonal route: transpose over the squared scale
  m.MakeScale1D(3);
  EXPECT_TRUE(m.IsOrthoGonal() && m.IsScale1D() && m.IsScale3D());
  EXPECT_FALSE(m.IsTranslation() || m.IsOrthoNormal());
  m.MakeTranslation(MMPoint3d<double>(0, 0, 0));
  EXPECT_TRUE(m.IsIdentity() && m.IsTranslation() && m.IsScale1D() && m.IsOrthoNormal());
}

TEST(Inversion, EveryRouteAgainstTheProduct) {
  std::mt19937 rng(20261121u);
  std::uniform_real_distribution<double> u(-2.0, 2.0);
  for (int i = 0; i < 500; ++i) {
    MMTransformMatrix rot, s3, general;
    rot.MakeRotation(MMPoint3d<double>(u(rng), u(rng), u(rng)), MMPoint3d<double>(u(rng), u(rng), u(rng)), u(rng));
    s3.MakeScale3D(3 + u(rng), 3 + u(rng), 3 + u(rng));
    double g[16];
    for (double &e : g) e = u(rng);
    general.MakeFromDouble16(g);
    for (const MMTransformMatrix *m : {&rot, &s3, &general}) {
      if (!m->Inversible) continue;  // a singular draw is possible but rare
      // Tolerance: a few hundred ulps, generous for 4x4 elimination on
      // moderately conditioned random matrices.
      const double tol = m->Class == MMTransformClass::General ? 1e-9 : 1e-14;
      EXPECT_LT(ProductError(*m), tol) << "class " << m->Class << " draw " << i;
    }
    EXPECT_TRUE(rot.IsOrthoNormal());
    // The fast route agrees with Gauss-Jordan on the same matrix.
    Probe p;
    p.Copy(rot);
    ASSERT_TRUE(p._ComputeInverseGeneral());
    for (int k = 0; k < 16; ++k) EXPECT_NEAR(p.Inverse[k / 4][k % 4], rot.Inverse[k / 4][k % 4], 1e-13);
  }
}

TEST(Inversion, GaussJordanPivotsAndFailsOnZeroPivot) {
  // A zero in the first pivot place needs a row exchange.
  MMTransformMatrix m = FromRows({{0, 2, 0, 1}, {1, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}});
  ASSERT_EQ(m.Class, MMTransformClass::General);
  ASSERT_TRUE(m.Inversible);
  EXPECT_EQ(ProductError(m), 0.0);

  // Singular general matrix: no inverse, Matrix unharmed, Inverse unchanged.
  MMTransformMatrix s, z;
  s.MakeTranslation(MMPoint3d<double>(1, 2, 3));
  const double old = s.Inverse[0][3];
  s.SetElement(0, 0, 1);
  s.SetElement(0, 1, 2);
  s.SetElement(1, 0, 2);
  s.SetElement(1, 1, 4);
  s.VerifyAndSetClass();
  EXPECT_FALSE(s.ComputeInverse() || s.Inversible);
  EXPECT_TRUE(s.Inverse[0][3] == old && s.Matrix[1][1] == 4.0);
  MMPoint3d<double> out(7, 7, 7);
  EXPECT_FALSE(s.InverseTransform(out, MMPoint3d<double>(1, 1, 1)) || s.Invert());
  EXPECT_TRUE(out == MMPoint3d<double>(7, 7, 7) && s.Matrix[1][1] == 4.0);

  z.MakeScale3D(1, 0, 2);
  EXPECT_TRUE(!z.Inversible && z.IsScale3D());
  z.MakeScale1D(0.0);
  EXPECT_TRUE(!z.Inversible && z.IsScale1D());
}

TEST(Inversion, StaleStateKeptOnPurpose) {
  // Scale1D inversion leaves column 3 of Inverse as it stood.
  MMTransformMatrix m, id, t, singular, a;
  m.MakeTranslation(MMPoint3d<double>(1, 2, 3));
  m.MakeScale1D(2);
  MMPoint3d<double> p;
  ASSERT_TRUE(m.InverseTransform(p, MMPoint3d<double>(2, 2, 2)));
  EXPECT_EQ(p, MMPoint3d<double>(0, -1, -2));

  // Element writes re-evaluate nothing.
  id.SetElement(0, 3, 5.0);
  EXPECT_TRUE(id.IsIdentity());
  id.Transform(p, MMPoint3d<double>(1, 1, 1));
  EXPECT_EQ(p, MMPoint3d<double>(1, 1, 1));
  id.VerifyAndSetClass();
  id.ComputeInverse();
  id.Transform(p, MMPoint3d<double>(1, 1, 1));
  EXPECT_EQ(p, MMPoint3d<double>(6, 1, 1));

  // ScaleTranslation to zero keeps the class.
  t.MakeTranslation(MMPoint3d<double>(1, 2, 3));
  t.ScaleTranslation(0.0);
  EXPECT_EQ(t.Class, MMTransformClass::Translation);
  EXPECT_EQ(t.Inverse[2][3], -0.0);

  // Multiplying by a matrix without inverse keeps Inversible true.
  singular.MakeScale3D(1, 0, 1);
  a.MakeTranslation(MMPoint3d<double>(1, 0, 0));
  a.PostMultiply(singular);
  EXPECT_TRUE(a.Inversible);

  // Invert keeps the class, and a general matrix stays general.
  MMTransformMatrix g = FromRows({{2, 1, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}});
  ASSERT_TRUE(g.Invert());
  EXPECT_EQ(g.Class, MMTransformClass::General);
  EXPECT_EQ(g.Matrix[0][0], 0.5);
}

TEST(Mapping, HomogeneousDivideVectorsAndExceptions) {
  MMTransformMatrix h = FromRows({{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 2}});
  EXPECT_TRUE(h.IsHomogeneous());
  MMPoint3d<double> p;
  h.Transform(p, MMPoint3d<double>(2, 4, 6));
  EXPECT_EQ(p, MMPoint3d<double>(1, 2, 3));
  // In vector mode w leaves out the (3,3) term: here it is 0 and throws.
  try {
    h.Transform(p, MMPoint3d<double>(2, 4, 6), true);
    FAIL() << "expected code 0";
  } catch (const MMTransformException &e) {
    EXPECT_EQ(e.GetCode(), 0);
  }
  MMTransformMatrix persp = FromRows({{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 1, 1}});
  persp.Transform(p, MMPoint3d<double>(2, 4, 2), true);
  EXPECT_EQ(p, MMPoint3d<double>(1, 2, 1));

  MMTransformMatrix t;
  t.MakeTranslation(MMPoint3d<double>(1, 2, 3));
  t.Transform(p, MMPoint3d<double>(1, 1, 1), true);
  EXPECT_EQ(p, MMPoint3d<double>(1, 1, 1));
  t.Transform(p, p);  // out may be in
  EXPECT_EQ(p, MMPoint3d<double>(2, 3, 4));
  EXPECT_EQ(t.TransformY(1, 1, 1), 3.0);
  EXPECT_EQ(t.InverseTransformZ(1, 1, 1, true), 1.0);

  try {
    (void)t.GetScale();
    FAIL() << "expected code 5";
  } catch (const MMTransformException &e) {
    EXPECT_EQ(e.GetCode(), 5);
  }
  t.MakeScale1D(4);
  EXPECT_EQ(t.GetScale(), 4.0);
}

TEST(Mapping, VectorFormsMatchSinglePointsBitForBit) {
  // The matrix's own loops for the vector forms must give exactly the
  // element-wise results: general, identity and homogeneous matrices, in place
  // and into another vector.
  std::mt19937_64 rng(7);
  std::uniform_real_distribution<double> u(-50.0, 50.0);
  std::vector<MMPoint3d<double>> in(257);
  for (auto &p : in) p = MMPoint3d<double>(u(rng), u(rng), u(rng));
  const MMTransformMatrix general =
      FromRows({{0.3, -1.2, 0.7, 5}, {0.1, 0.9, -0.4, -6}, {1.1, 0.2, 0.8, 7}, {0, 0, 0, 1}});
  const MMTransformMatrix homogeneous = FromRows({{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0.01, 2}});
  const MMTransformMatrix identity;
  for (const MMTransformMatrix *m : {&general, &homogeneous, &identity}) {
    std::vector<MMPoint3d<double>> out(3), inPlace = in;
    ASSERT_TRUE(m->Transform(out, in));
    ASSERT_TRUE(m->Transform(inPlace));
    ASSERT_EQ(out.size(), in.size());
    for (std::size_t i = 0; i < in.size(); ++i) {
      MMPoint3d<double> single;
      m->Transform(single, in[i]);
      EXPECT_EQ(out[i], single) << i;
      EXPECT_EQ(inPlace[i], single) << i;
    }
  }
}

TEST(Equality, ElementToleranceIsStrict) {
  Probe a, b, c;
  for (int k = 0; k < 16; ++k) b.Matrix[k / 4][k % 4] += 1e-6, c.Matrix[k / 4][k % 4] += 2e-6;
  EXPECT_TRUE(a._Equal(b));
  EXPECT_FALSE(a._Equal(c));
}

TEST(Multiplication, OrderAndTranspose) {
  MMTransformMatrix rot, tr;
  rot.MakeRotationZYX(0, 0, 90);
  tr.MakeTranslation(MMPoint3d<double>(1, 0, 0));
  MMTransformMatrix post = rot, pre = rot, self = rot;
  post.PostMultiply(tr);  // translate first, then rotate
  pre.PreMultiply(tr);    // rotate first, then translate
  MMPoint3d<double> p, q;
  post.Transform(p, MMPoint3d<double>(0, 0, 0));
  pre.Transform(q, MMPoint3d<double>(0, 0, 0));
  EXPECT_NEAR(p.y, 1.0, 1e-15);
  EXPECT_NEAR(q.x, 1.0, 1e-15);
  // The product rule keeps the inverse right in both orders.
  EXPECT_LT(ProductError(post), 1e-15);
  EXPECT_LT(ProductError(pre), 1e-15);
  self *= self;
  EXPECT_NEAR(self.Matrix[0][0], -1.0, 1e-15);

  MMTransformMatrix g = FromRows({{1, 2, 3, 4}, {0, 1, 5, 6}, {0, 0, 1, 7}, {0, 0, 0, 1}});
  g.Transpose();
  EXPECT_EQ(g.Matrix[3][0], 4.0);
  EXPECT_TRUE(g.IsHomogeneous());
  EXPECT_LT(ProductError(g), 1e-12);
}

}  // namespace
