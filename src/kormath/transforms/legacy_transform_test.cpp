#include <kormath/transforms/legacy_transform.h>

#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/orientation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <utility>

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

void ExpectBlock(const float (*a)[3], const float (*b)[3], float tol) {
  for (int k = 0; k < 9; ++k) EXPECT_NEAR(a[k / 3][k % 3], b[k / 3][k % 3], tol) << k;
}

// One of the four array mappings of `t`, applied to `in` and compared.
using Mapping = void (MTransform::*)(float *, const float *) const;
const Mapping kFwd = &MTransform::TRANSFORM3D, kInv = &MTransform::INVERSE3D, kRot = &MTransform::ROTATE3D,
              kInvRot = &MTransform::INVROT3D;
void ExpectMaps(const MTransform &t, Mapping map, const float *in, const float *expected, float tol = kTol) {
  float out[3];
  (t.*map)(out, in);
  ExpectPoint(out, expected, tol);
}

TEST(LegacyTransform, ChangedFlagAndBitwiseInequality) {
  MTransform t;
  EXPECT_TRUE(t.VERANDERD());
  t.VERANDERD(false);
  t.TRANSLATE(1.0f, 2.0f, 3.0f);
  t.ADD_TRANSLATE(1.0f, 1.0f, 1.0f);
  t.SET_ORTHONORMAL_TRANSFORM(1, 0, 0, 0, 1, 0, 0, 0, 1);
  EXPECT_FALSE(t.VERANDERD());                                        // none of the three sets the flag
  EXPECT_TRUE(t.Translation[0] == 0.0f && t.Translation[2] == 4.0f);  // x and y zeroed, z kept
  MTransform copy(t);
  EXPECT_FALSE(copy.VERANDERD() || copy != t);
  copy.VERANDERD(true);
  EXPECT_TRUE(copy != t);  // equal numbers, different flag
}

TEST(LegacyTransform, MappingFamiliesInversesAndProducts) {
  std::mt19937 rng(20261121u);
  std::uniform_real_distribution<float> coord(-10.0f, 10.0f);
  for (int n = 0; n < 100; ++n) {
    MTransform t = RandomTransform(rng), b = RandomTransform(rng), then = b, conj;
    const float p[3] = {coord(rng), coord(rng), coord(rng)};
    float q[3], rotated[3], bp[3], tbp[3], conjugated[3];
    double d[3] = {p[0], p[1], p[2]};
    t.TRANSFORM3D(q, p);
    t.TRANSFORM3D(d[0], d[1], d[2]);
    EXPECT_EQ(q[1], t.TRANSFORM_Y(p[0], p[1], p[2]));
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(d[k], q[k], kTol);
    ExpectMaps(t, kInv, q, p);
    EXPECT_NEAR(t.INVERSE_Z(q[0], q[1], q[2]), p[2], kTol);
    t.ROTATE3D(rotated, p);
    ExpectMaps(t, kInvRot, rotated, p);
    MTransform inverted(t, 1);  // INVERT
    ExpectMaps(inverted, kFwd, q, p);
    inverted.INVERT();  // twice: back to the start, to float precision
    ExpectPoint(inverted.Translation, t.Translation);
    ExpectBlock(inverted.Rotation, t.Rotation, 1e-6f);

    // Products against sequential mapping: t after b, and t conjugated by b.
    b.TRANSFORM3D(bp, p);
    t.TRANSFORM3D(tbp, bp);
    b.INVERSE3D(conjugated, tbp);  // b^-1 t b p
    then._TRANSFORM(t);
    conj.T1THIS_FROM_T2T1(t, b);
    const MTransform tb = t * b;
    const std::pair<const MTransform *, const float *> checks[] = {{&tb, tbp}, {&then, tbp}, {&conj, conjugated}};
    for (const auto &check : checks) {
      ExpectMaps(*check.first, kFwd, p, check.second);
      ExpectMaps(*check.first, kInv, check.second, p);
    }
  }
}

TEST(LegacyTransform, LongFormsRoundHalfAwayFromZero) {
  MTransform t;
  t.TRANSLATE(0.5f, -0.5f, 0.25f);
  long x = 2, y = -2, z = 0;
  t.TRANSFORM3D(x, y, z);  // (2.5, -2.5, 0.25)
  EXPECT_TRUE(x == 3 && y == -3 && z == 0) << x << " " << y << " " << z;
  x = 0, y = 0, z = -1;
  t.INVERSE3D(x, y, z);  // (-0.5, 0.5, -1.25)
  EXPECT_TRUE(x == -1 && y == 1 && z == -1) << x << " " << y << " " << z;
}

TEST(LegacyTransform, BuildersKeepTheirFixedPoints) {
  const float c[3] = {1, 2, 3}, d[3] = {4, 5, 6}, angles[3] = {30, -20, 50}, p[3] = {2, 1, 5}, turned[3] = {1, 2, 5};
  float read[3];
  MTransform t, axis, box;
  t.ROTATION(30.0f, -20.0f, 50.0f, 1.0f, 2.0f, 3.0f);
  t.ANGLES(read[0], read[1], read[2]);  // on a copy: t keeps its rotation
  ExpectPoint(read, angles, 2e-3f);
  ExpectMaps(t, kFwd, c, c, 1e-5f);
  t.CENTER(1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f);
  ExpectMaps(t, kFwd, c, d, 1e-5f);
  axis.ROTATION_AROUND_AXIS(0.0, 0.0, 2.0, 1.5707963267948966, 1.0f, 1.0f, 0.0f);
  ExpectMaps(axis, kFwd, p, turned, 1e-6f);
  MTransform untouched = axis;
  untouched.ROTATION_AROUND_AXIS(0.0, 0.0, 0.0, 1.0, 0.0f, 0.0f, 0.0f);  // zero axis: nothing
  EXPECT_FALSE(untouched != axis);

  // View box 100 x 50 into 200 x 200: the smaller scale, 2, wins, and the
  // box centre goes to the target centre.
  box.KIJK_BOX(0, 0, 99, 49, 0, 0, 199, 199);
  EXPECT_TRUE(box.Rotation[1][1] == 2.0f && box.Rotation[2][2] == 2.0f && box.InverseRotation[1][1] == 0.5f);
  const float centre[3] = {49.5f, 24.5f, 0.0f}, target[3] = {99.5f, 99.5f, 0.0f};
  ExpectMaps(box, kFwd, centre, target, 0.0f);
  box.KIJK_BOX(0, 0, 9, 9, 0, 0, -21, 9);  // -2 against 1: the sign stays
  EXPECT_TRUE(box.Rotation[0][0] == -1.0f && box.Rotation[2][2] == 1.0f);
}

TEST(LegacyTransform, InPlaneRotationsTakeAOntoB) {
  std::mt19937 rng(42u);
  std::uniform_real_distribution<float> coord(-2.0f, 2.0f);
  for (int n = 0; n < 100; ++n) {
    MMPoint3d<float> a(coord(rng), coord(rng), coord(rng)), b(coord(rng), coord(rng), coord(rng));
    MTransform t, u;  // outer products and axis-angle give the same rotation (float forms)
    t.ROTATION_IN_PLANE(a.x, a.y, a.z, b.x, b.y, b.z, 1.0f, 2.0f, 3.0f);
    u.ROTATION_IN_PLANE_WITH_NORMAL(a.x, a.y, a.z, b.x, b.y, b.z, 0.0f, 0.0f, 1.0f, 1.0f, 2.0f, 3.0f);
    const float la = static_cast<float>(a.Length());  // a turns onto b scaled to a's length
    ExpectMaps(t, kRot, a.data(), (b * (la / static_cast<float>(b.Length()))).data(), 1e-5f * la);
    ExpectBlock(t.Rotation, u.Rotation, 1e-5f);
  }
  // Parallel vectors: the same direction gives the identity; opposite ones
  // a half turn, about the caller's normal in the second form.
  const float y[3] = {0.0f, 1.0f, 0.0f}, minusY[3] = {0.0f, -1.0f, 0.0f}, zAxis[3] = {0.0f, 0.0f, 1.0f};
  MTransform same, normal, z;
  same.ROTATION_IN_PLANE(1.0, 0.0, 0.0, 2.0, 0.0, 0.0, 0.0f, 0.0f, 0.0f);
  EXPECT_FALSE(same != MTransform());
  normal.ROTATION_IN_PLANE_WITH_NORMAL(1.0, 0.0, 0.0, -1.0, 0.0, 0.0, 0.0, 0.0, 3.0, 0.0f, 0.0f, 0.0f);
  ExpectMaps(normal, kRot, y, minusY, 1e-7f);
  z.MakeNewZAxis(1.0f, 2.0f, 3.0f, 0.0f, 3.0f, 0.0f);
  ExpectMaps(z, kRot, zAxis, y, 1e-7f);
  EXPECT_EQ(z.Translation[2], 3.0f);
}

TEST(LegacyTransform, DeliberateOddities) {
  const float x[3] = {1.0f, 0.0f, 0.0f}, y[3] = {0.0f, 1.0f, 0.0f};
  MTransform m, r, scaled, hidden;
  m.ROTATION(0.0f, 0.0f, 30.0f, 0.0f, 0.0f, 0.0f);
  m.TRANSLATE(1.0f, 2.0f, 3.0f);
  MTransform mirrored = m;  // SPIEGEL negates only the diagonal element
  mirrored.SPIEGEL(0);
  EXPECT_TRUE(mirrored.Translation[0] == -1.0f && mirrored.Rotation[0][1] == m.Rotation[0][1]);
  EXPECT_TRUE(mirrored.Rotation[0][0] == -m.Rotation[0][0] &&
              mirrored.InverseRotation[0][0] == -m.InverseRotation[0][0]);
  r.ROTATE(10.0f, 20.0f, 90.0f);  // only about z by the third argument, inverse kept
  ExpectMaps(r, kRot, x, y, 1e-6f);
  ExpectMaps(r, kInvRot, x, x, 0.0f);

  // Mode 3 extracts the rotation of a scaled rotation; 2 drops the shift.
  scaled.SCALE(2.0f, 3.0f, 4.0f, 0.0f, 0.0f, 0.0f);
  hidden.PRODUCT(scaled, m);
  MTransform rotationOnly(hidden, 3), noShift(hidden, 2);
  EXPECT_TRUE(noShift.Translation[0] == 0.0f && rotationOnly.Translation[2] == 0.0f);
  ExpectBlock(rotationOnly.Rotation, m.Rotation, 1e-6f);
  ExpectBlock(rotationOnly.InverseRotation, m.InverseRotation, 1e-6f);
}

TEST(LegacyTransform, BoundingBoxAnd2DForms) {
  MTransform quarter;  // a quarter turn about z swaps the x and y extents
  quarter.ROTATION(0.0f, 0.0f, 90.0f, 0.0f, 0.0f, 0.0f);
  float box[6] = {0, 1, 0, 2, 0, 3}, x = 1.0f, y = 0.0f;
  const float turned[6] = {-2, 0, 0, 1, 0, 3};
  quarter.TransformBoundingBox(box[0], box[1], box[2], box[3], box[4], box[5]);
  for (int k = 0; k < 6; ++k) EXPECT_NEAR(box[k], turned[k], 1e-6f) << k;
  quarter.TRANSLATE(1.0f, 2.0f, 3.0f);
  quarter.TRANSFORM2D(x, y);  // the upper-left block and the x, y of the translation: (1, 3)
  quarter.INVERSE2D(x, y);
  EXPECT_TRUE(std::fabs(x - 1.0f) < 1e-6f && std::fabs(y) < 1e-6f) << x << " " << y;
}

TEST(LegacyTransform, ConversionsWithMatrixKeepFloatValues) {
  std::mt19937 rng(17u);
  for (int n = 0; n < 50; ++n) {
    const MTransform t = RandomTransform(rng);
    const MMTransformMatrix m = t;
    const MTransform back(m);
    ExpectPoint(back.Translation, t.Translation, 0.0f);
    ExpectBlock(back.Rotation, t.Rotation, 0.0f);
    ExpectBlock(back.InverseRotation, t.InverseRotation, 1e-6f);  // from the matrix's own inverse
    MTransform legacy;                                            // matrix -> MTransform -> matrix
    legacy = m;
    const MMTransformMatrix again = legacy;
    for (int k = 0; k < 16; ++k) EXPECT_EQ(again.Matrix[k / 4][k % 4], m.Matrix[k / 4][k % 4]) << k;
  }
  MMTransformMatrix singular;  // no inverse: the block itself stands in
  singular.MakeScale1D(0.0);
  EXPECT_EQ(MTransform(singular).InverseRotation[0][0], 0.0f);
}

TEST(LegacyTransform, StaticBuffersAndOrientationStrings) {
  MTransform t;
  t.ROTATION(10.0f, 20.0f, 30.0f, 0.0f, 0.0f, 0.0f);
  t.TRANSLATE(1.0f, 2.0f, 3.0f);
  const float *columns = t, *rows = t.MakeIVRenderTransform();  // row-major, and column-major
  EXPECT_TRUE(rows[1] == t.Rotation[0][1] && rows[7] == 2.0f && rows[12] == 0.0f && rows[15] == 1.0f);
  EXPECT_TRUE(columns[1] == t.Rotation[1][0] && columns[13] == 2.0f && columns[3] == 0.0f);
  EXPECT_EQ(static_cast<const float *>(MTransform()), columns);  // one shared buffer, now the identity's
  EXPECT_EQ(columns[12], 0.0f);
  MMTransformMatrix floats;  // the first twelve of the row-major form are the 3x4 rows
  floats.MakeFromFloat12(rows);
  EXPECT_TRUE(floats.Matrix[0][1] == t.Rotation[0][1] && floats.Matrix[1][3] == 2.0 && floats.Matrix[3][3] == 1.0);

  MTransformOrient o;
  o.TRANSLATE(1.0f, 2.0f, 3.0f);
  wchar_t from[] = L"PRB", to[] = L"RBA", lbp[] = L"LBP";
  o.ORIENTATION(from, to);
  const float expected[3][3] = {{0, 1, 0}, {0, 0, 1}, {-1, 0, 0}},
              transposed[3][3] = {{0, 0, -1}, {1, 0, 0}, {0, 1, 0}};
  ExpectBlock(o.Rotation, expected, 0.0f);
  ExpectBlock(o.InverseRotation, transposed, 0.0f);
  EXPECT_EQ(o.Translation[0], 0.0f);
  o.ORIENTATION(lbp);  // towards RBP
  EXPECT_TRUE(o.Rotation[0][0] == -1.0f && o.Rotation[1][1] == 1.0f);
}

}  // namespace
