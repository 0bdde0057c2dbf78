#include <kormath/transforms/legacy_transform.h>

#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/orientation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

// Float arithmetic on values of size ~10 through a few products: 1e-4 is a
// few hundred float ulps, far above rounding and far below any formula slip.
constexpr float kTol = 1e-4f;

MTransform RandomTransform(std::mt19937 &rng) {
  std::uniform_real_distribution<float> angle(-60.0f, 60.0f), coord(-5.0f, 5.0f);
  MTransform t;
  t.ROTATION(angle(rng), angle(rng), angle(rng), coord(rng), coord(rng), coord(rng));
  t.ADD_TRANSLATE(coord(rng), coord(rng), coord(rng));
  return t;
}

void ExpectPoint(const float *a, const float *b, float tol = kTol) {
  for (int k = 0; k < 3; ++k) EXPECT_NEAR(a[k], b[k], tol) << k;
}

TEST(LegacyTransform, ChangedFlagAndBitwiseInequality) {
  MTransform t;
  EXPECT_TRUE(t.VERANDERD());
  t.VERANDERD(false);
  t.TRANSLATE(1.0f, 2.0f, 3.0f);
  t.ADD_TRANSLATE(1.0f, 1.0f, 1.0f);
  t.SET_ORTHONORMAL_TRANSFORM(1, 0, 0, 0, 1, 0, 0, 0, 1);
  EXPECT_FALSE(t.VERANDERD());        // none of the three sets the flag
  EXPECT_EQ(t.Translation[0], 0.0f);  // x and y zeroed, z kept
  EXPECT_EQ(t.Translation[2], 4.0f);
  MTransform copy(t);
  EXPECT_FALSE(copy.VERANDERD());
  EXPECT_FALSE(copy != t);
  copy.VERANDERD(true);
  EXPECT_TRUE(copy != t);  // equal numbers, different flag
}

TEST(LegacyTransform, MappingFamiliesAgreeAndInvert) {
  std::mt19937 rng(20261121u);
  std::uniform_real_distribution<float> coord(-10.0f, 10.0f);
  for (int n = 0; n < 100; ++n) {
    MTransform t = RandomTransform(rng);
    const float p[3] = {coord(rng), coord(rng), coord(rng)};
    float q[3], back[3], rotated[3];
    t.TRANSFORM3D(q, p);
    EXPECT_EQ(q[1], t.TRANSFORM_Y(p[0], p[1], p[2]));
    double d[3] = {p[0], p[1], p[2]};
    t.TRANSFORM3D(d[0], d[1], d[2]);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(d[k], q[k], kTol);
    t.INVERSE3D(back, q);
    ExpectPoint(back, p);
    EXPECT_EQ(back[2], t.INVERSE_Z(q[0], q[1], q[2]));
    t.ROTATE3D(rotated, p);
    t.INVROT3D(back, rotated);
    ExpectPoint(back, p);

    MTransform inverted(t, 1);  // INVERT
    inverted.TRANSFORM3D(back, q);
    ExpectPoint(back, p);
    inverted.INVERT();  // twice: back to the start, to float precision
    for (int r = 0; r < 3; ++r) {
      EXPECT_NEAR(inverted.Translation[r], t.Translation[r], kTol);
      for (int c = 0; c < 3; ++c) EXPECT_NEAR(inverted.Rotation[r][c], t.Rotation[r][c], 1e-6f);
    }
  }
}

TEST(LegacyTransform, LongFormsRoundHalfAwayFromZero) {
  MTransform t;
  t.TRANSLATE(0.5f, -0.5f, 0.25f);
  long x = 2, y = -2, z = 0;
  t.TRANSFORM3D(x, y, z);  // (2.5, -2.5, 0.25)
  EXPECT_EQ(x, 3);
  EXPECT_EQ(y, -3);
  EXPECT_EQ(z, 0);
  x = 0, y = 0, z = -1;
  t.INVERSE3D(x, y, z);  // (-0.5, 0.5, -1.25)
  EXPECT_EQ(x, -1);
  EXPECT_EQ(y, 1);
  EXPECT_EQ(z, -1);
}

TEST(LegacyTransform, BuildersKeepTheirFixedPoints) {
  float out[3];
  MTransform t;
  t.ROTATION(30.0f, -20.0f, 50.0f, 1.0f, 2.0f, 3.0f);
  const float c[3] = {1.0f, 2.0f, 3.0f}, d[3] = {4.0f, 5.0f, 6.0f};
  t.TRANSFORM3D(out, c);
  ExpectPoint(out, c, 1e-5f);
  t.CENTER(1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f);
  t.TRANSFORM3D(out, c);
  ExpectPoint(out, d, 1e-5f);

  MTransform axis;
  axis.ROTATION_AROUND_AXIS(0.0, 0.0, 2.0, 1.5707963267948966, 1.0f, 1.0f, 0.0f);
  const float p[3] = {2.0f, 1.0f, 5.0f}, turned[3] = {1.0f, 2.0f, 5.0f};
  axis.TRANSFORM3D(out, p);
  ExpectPoint(out, turned, 1e-6f);
  MTransform untouched = axis;
  untouched.ROTATION_AROUND_AXIS(0.0, 0.0, 0.0, 1.0, 0.0f, 0.0f, 0.0f);  // zero axis: nothing
  EXPECT_FALSE(untouched != axis);

  MTransform scale;
  scale.SCALE(2.0f, 4.0f, 0.5f, 1.0f, 1.0f, 1.0f);
  float again[3];
  scale.INVERSE3D(out, p);
  scale.TRANSFORM3D(again, out);
  ExpectPoint(again, p, 1e-6f);

  // View box 100 x 50 into 200 x 200: the smaller scale, 2, wins, and the
  // box centre goes to the target centre.
  MTransform box;
  box.KIJK_BOX(0, 0, 99, 49, 0, 0, 199, 199);
  EXPECT_EQ(box.Rotation[1][1], 2.0f);
  EXPECT_EQ(box.Rotation[2][2], 2.0f);
  EXPECT_EQ(box.InverseRotation[1][1], 0.5f);
  const float centre[3] = {49.5f, 24.5f, 0.0f}, target[3] = {99.5f, 99.5f, 0.0f};
  box.TRANSFORM3D(out, centre);
  ExpectPoint(out, target, 0.0f);
  box.KIJK_BOX(0, 0, 9, 9, 0, 0, -21, 9);  // -2 against 1: the sign stays
  EXPECT_EQ(box.Rotation[0][0], -1.0f);
  EXPECT_EQ(box.Rotation[2][2], 1.0f);
}

TEST(LegacyTransform, InPlaneRotationsTakeAOntoB) {
  std::mt19937 rng(42u);
  std::uniform_real_distribution<double> coord(-2.0, 2.0);
  float out[3];
  for (int n = 0; n < 100; ++n) {
    const double a[3] = {coord(rng), coord(rng), coord(rng)}, b[3] = {coord(rng), coord(rng), coord(rng)};
    const double la = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    const double lb = std::sqrt(b[0] * b[0] + b[1] * b[1] + b[2] * b[2]);
    float ua[3], ub[3];
    for (int k = 0; k < 3; ++k) {
      ua[k] = static_cast<float>(a[k] / la);
      ub[k] = static_cast<float>(b[k] / lb);
    }
    MTransform t, u;  // outer products and axis-angle give the same rotation
    t.ROTATION_IN_PLANE(a[0], a[1], a[2], b[0], b[1], b[2], 1.0f, 2.0f, 3.0f);
    u.ROTATION_IN_PLANE_WITH_NORMAL(a[0], a[1], a[2], b[0], b[1], b[2], 0.0, 0.0, 1.0, 1.0f, 2.0f, 3.0f);
    t.ROTATE3D(out, ua);
    ExpectPoint(out, ub, 1e-5f);
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 3; ++c) EXPECT_NEAR(t.Rotation[r][c], u.Rotation[r][c], 1e-5f);
  }
  // Parallel vectors: the same direction gives the identity; opposite ones
  // a half turn, about the caller's normal in the second form.
  MTransform same, normal, z;
  same.ROTATION_IN_PLANE(1.0, 0.0, 0.0, 2.0, 0.0, 0.0, 0.0f, 0.0f, 0.0f);
  EXPECT_FALSE(same != MTransform());
  normal.ROTATION_IN_PLANE_WITH_NORMAL(1.0, 0.0, 0.0, -1.0, 0.0, 0.0, 0.0, 0.0, 3.0, 0.0f, 0.0f, 0.0f);
  const float y[3] = {0.0f, 1.0f, 0.0f}, minusY[3] = {0.0f, -1.0f, 0.0f}, zAxis[3] = {0.0f, 0.0f, 1.0f};
  normal.ROTATE3D(out, y);
  ExpectPoint(out, minusY, 1e-7f);
  z.MakeNewZAxis(1.0f, 2.0f, 3.0f, 0.0f, 3.0f, 0.0f);
  z.ROTATE3D(out, zAxis);
  ExpectPoint(out, y, 1e-7f);
  EXPECT_EQ(z.Translation[2], 3.0f);
}

TEST(LegacyTransform, ProductsComposeLikeSequentialMapping) {
  std::mt19937 rng(9u);
  std::uniform_real_distribution<float> coord(-5.0f, 5.0f);
  for (int n = 0; n < 50; ++n) {
    MTransform a = RandomTransform(rng), b = RandomTransform(rng);
    const float p[3] = {coord(rng), coord(rng), coord(rng)};
    float bp[3], abp[3], out[3], back[3], conjugated[3];
    b.TRANSFORM3D(bp, p);
    a.TRANSFORM3D(abp, bp);
    b.INVERSE3D(conjugated, abp);  // b^-1 a b p
    MTransform then = b, conj;
    then._TRANSFORM(a);  // a applied after b
    conj.T1THIS_FROM_T2T1(a, b);
    const MTransform ab = a * b;
    const struct {
      const MTransform &t;
      const float *expected;
    } checks[] = {{ab, abp}, {then, abp}, {conj, conjugated}};
    for (const auto &check : checks) {
      check.t.TRANSFORM3D(out, p);
      ExpectPoint(out, check.expected);
      check.t.INVERSE3D(back, out);
      ExpectPoint(back, p);
    }
  }
}

TEST(LegacyTransform, DeliberateOddities) {
  MTransform m;
  m.ROTATION(0.0f, 0.0f, 30.0f, 0.0f, 0.0f, 0.0f);
  m.TRANSLATE(1.0f, 2.0f, 3.0f);
  MTransform mirrored = m;  // SPIEGEL negates only the diagonal element
  mirrored.SPIEGEL(0);
  EXPECT_EQ(mirrored.Translation[0], -1.0f);
  EXPECT_EQ(mirrored.Rotation[0][0], -m.Rotation[0][0]);
  EXPECT_EQ(mirrored.InverseRotation[0][0], -m.InverseRotation[0][0]);
  EXPECT_EQ(mirrored.Rotation[0][1], m.Rotation[0][1]);

  MTransform r;  // ROTATE: only about z by the third argument, inverse kept
  r.ROTATE(10.0f, 20.0f, 90.0f);
  const float x[3] = {1.0f, 0.0f, 0.0f}, y[3] = {0.0f, 1.0f, 0.0f};
  float out[3];
  r.ROTATE3D(out, x);
  ExpectPoint(out, y, 1e-6f);
  r.INVROT3D(out, x);
  ExpectPoint(out, x, 0.0f);

  // Mode 3 extracts the rotation of a scaled rotation; 2 drops the shift.
  MTransform scaled, hidden;
  scaled.SCALE(2.0f, 3.0f, 4.0f, 0.0f, 0.0f, 0.0f);
  hidden.PRODUCT(scaled, m);
  MTransform rotationOnly(hidden, 3), noShift(hidden, 2);
  EXPECT_EQ(noShift.Translation[0], 0.0f);
  EXPECT_EQ(rotationOnly.Translation[2], 0.0f);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) {
      EXPECT_NEAR(rotationOnly.Rotation[i][j], m.Rotation[i][j], 1e-6f);
      EXPECT_NEAR(rotationOnly.InverseRotation[i][j], m.InverseRotation[i][j], 1e-6f);
    }
}

TEST(LegacyTransform, AnglesAndBoundingBox) {
  MTransform t;
  t.ROTATION(25.0f, -35.0f, 15.0f, 0.0f, 0.0f, 0.0f);
  float a[3], expected[3] = {25.0f, -35.0f, 15.0f};
  t.ANGLES(a[0], a[1], a[2]);
  for (int k = 0; k < 3; ++k) EXPECT_NEAR(a[k], expected[k], 2e-3f);

  MTransform quarter;  // a quarter turn about z swaps the x and y extents
  quarter.ROTATION(0.0f, 0.0f, 90.0f, 0.0f, 0.0f, 0.0f);
  float x0 = 0, x1 = 1, y0 = 0, y1 = 2, z0 = 0, z1 = 3;
  quarter.TransformBoundingBox(x0, x1, y0, y1, z0, z1);
  EXPECT_NEAR(x0, -2.0f, 1e-6f);
  EXPECT_NEAR(y1, 1.0f, 1e-6f);
  EXPECT_EQ(z1, 3.0f);
  float x = 1.0f, y = 0.0f;  // the 2D forms: the upper-left block
  quarter.TRANSLATE(1.0f, 2.0f, 3.0f);
  quarter.TRANSFORM2D(x, y);
  EXPECT_NEAR(x, 1.0f, 1e-6f);
  EXPECT_NEAR(y, 3.0f, 1e-6f);
  quarter.INVERSE2D(x, y);
  EXPECT_NEAR(x, 1.0f, 1e-6f);
  EXPECT_NEAR(y, 0.0f, 1e-6f);
}

TEST(LegacyTransform, ConversionsWithMatrixKeepFloatValues) {
  std::mt19937 rng(17u);
  for (int n = 0; n < 50; ++n) {
    const MTransform t = RandomTransform(rng);
    const MMTransformMatrix m = t;
    const MTransform back(m);
    float rows[12];
    for (int r = 0; r < 3; ++r) {
      EXPECT_EQ(back.Translation[r], t.Translation[r]);
      rows[r * 4 + 3] = t.Translation[r];
      for (int c = 0; c < 3; ++c) {
        EXPECT_EQ(back.Rotation[r][c], t.Rotation[r][c]);
        // The inverse comes from the matrix's own inverse.
        EXPECT_NEAR(back.InverseRotation[r][c], t.InverseRotation[r][c], 1e-6f);
        rows[r * 4 + c] = t.Rotation[r][c];
      }
    }
    MMTransformMatrix floats;  // matrix -> MTransform -> matrix
    floats.MakeFromFloat12(rows);
    MTransform legacy;
    legacy = floats;
    const MMTransformMatrix again = legacy;
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) EXPECT_EQ(again.Matrix[r][c], floats.Matrix[r][c]);
  }
  MMTransformMatrix singular;  // no inverse: the block itself stands in
  singular.MakeScale1D(0.0);
  EXPECT_EQ(MTransform(singular).InverseRotation[0][0], 0.0f);
}

TEST(LegacyTransform, StaticBuffersAndOrientationStrings) {
  MTransform t;
  t.ROTATION(10.0f, 20.0f, 30.0f, 0.0f, 0.0f, 0.0f);
  t.TRANSLATE(1.0f, 2.0f, 3.0f);
  const float *columns = t;
  const float *rows = t.MakeIVRenderTransform();
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      EXPECT_EQ(columns[c * 4 + r], t.Rotation[r][c]);
      EXPECT_EQ(rows[r * 4 + c], t.Rotation[r][c]);
    }
    EXPECT_EQ(columns[r * 4 + 3], 0.0f);
    EXPECT_EQ(columns[12 + r], t.Translation[r]);
    EXPECT_EQ(rows[r * 4 + 3], t.Translation[r]);
    EXPECT_EQ(rows[12 + r], 0.0f);
  }
  EXPECT_EQ(columns[15], 1.0f);
  EXPECT_EQ(rows[15], 1.0f);
  const float *again = static_cast<const float *>(MTransform());  // one shared buffer
  EXPECT_EQ(again, columns);
  EXPECT_EQ(columns[12], 0.0f);

  MTransformOrient o;
  o.TRANSLATE(1.0f, 2.0f, 3.0f);
  wchar_t from[] = L"BRP", to[] = L"RBA";
  o.ORIENTATION(from, to);
  const float expected[3][3] = {{0, 1, 0}, {1, 0, 0}, {0, 0, -1}};
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) {
      EXPECT_EQ(o.Rotation[r][c], expected[r][c]);
      EXPECT_EQ(o.InverseRotation[c][r], expected[r][c]);
    }
  EXPECT_EQ(o.Translation[0], 0.0f);
  wchar_t lbp[] = L"LBP";
  o.ORIENTATION(lbp);  // towards RBP
  EXPECT_EQ(o.Rotation[0][0], -1.0f);
  EXPECT_EQ(o.Rotation[1][1], 1.0f);
}

}  // namespace
