#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/transform.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

// A transform that adds (1, 1, 1) to positions and fails for any input
// with x > 10, to exercise the base operations on failure.
class FailingShift : public MMTransform {
 protected:
  bool _Transform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const override {
    if (in.x > 10) {
      out = MMPoint3d<double>(-1, -1, -1);
      return false;
    }
    out = isVector ? in : in + MMPoint3d<double>(1, 1, 1);
    return true;
  }
  bool _InverseTransform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const override {
    out = isVector ? in : in - MMPoint3d<double>(1, 1, 1);
    return true;
  }

 public:
  MMTransform *Clone() const override { return new FailingShift(*this); }
  bool ConvertFloat16(float *) const override { return false; }
  bool Invert() override { return false; }
  bool IsIdentity() const override { return false; }
};

TEST(TransformBase, ListFormsOnSuccessAndFailure) {
  FailingShift f;
  std::vector<MMPoint3d<double>> out(5, MMPoint3d<double>(9, 9, 9));
  EXPECT_TRUE(f.Transform(out, std::vector<MMPoint3d<double>>()));
  EXPECT_TRUE(out.empty());

  const std::vector<MMPoint3d<double>> in = {{0, 0, 0}, {20, 0, 0}, {1, 1, 1}};
  EXPECT_FALSE(f.Transform(out, in));
  ASSERT_EQ(out.size(), 3u);
  EXPECT_EQ(out[0], MMPoint3d<double>(1, 1, 1));
  EXPECT_EQ(out[2], MMPoint3d<double>(0, 0, 0));  // skipped, zero from the resize
  EXPECT_FALSE(f.TransformPolyline(out, in));

  std::vector<MMPoint3d<double>> inPlace = in;
  EXPECT_TRUE(f.Transform(inPlace));  // single results are ignored
  EXPECT_EQ(inPlace[2], MMPoint3d<double>(2, 2, 2));

  std::vector<MMPoint3d<double>> tri[3] = {{{5, 5, 5}, {6, 6, 6}}, {}, {{7, 7, 7}}};
  const MMPoint3d<double> vertices[3] = {{0, 0, 0}, {11, 0, 0}, {2, 2, 2}};
  EXPECT_FALSE(f.TransformTriangle(tri, vertices));
  for (const auto &v : tri) EXPECT_EQ(v.size(), 1u);
  EXPECT_EQ(tri[0][0], MMPoint3d<double>(1, 1, 1));
  EXPECT_EQ(tri[1][0], MMPoint3d<double>(-1, -1, -1));  // what the failed mapping left
  EXPECT_EQ(tri[2][0], MMPoint3d<double>(0, 0, 0));     // not reached

  try {
    f(MMPoint3d<double>(11, 0, 0));
    FAIL() << "expected code 4";
  } catch (const MMTransformException &e) {
    EXPECT_EQ(e.GetCode(), 4);
  }
  EXPECT_EQ(f(MMPoint3d<float>(1, 2, 3)), MMPoint3d<float>(2, 3, 4));

  // Pointer forms write their output whatever the result.
  double d[3] = {0, 0, 0};
  EXPECT_FALSE(f.Transform(d, 12.0, 0.0, 0.0));
  EXPECT_EQ(d[0], -1.0);

  float xMin = 5, xMax = 5, yMin = 5, yMax = 5, zMin = 5, zMax = 5;
  EXPECT_FALSE(f.TransformBoundingBox(xMin, xMax, yMin, yMax, zMin, zMax, 0, 11, 0, 1, 0, 1));
  EXPECT_EQ(xMin, 5.0f);  // untouched
  EXPECT_TRUE(f.TransformBoundingBox(xMin, xMax, yMin, yMax, zMin, zMax, 0, 1, 0, 1, 0, 1));
  EXPECT_TRUE(xMin == 1.0f && zMax == 2.0f);
  double m16[16];
  EXPECT_FALSE(f.ConvertDouble16(m16));
}

TEST(TransformBase, FloatFormsAndBoxes) {
  // Float forms compute in double and narrow once: they equal the narrowed
  // double result.
  MMTransformMatrix r, rz, r45, s;
  r.MakeRotationZYX(MMPoint3d<double>(1, 2, 3), 12.5, -33.0, 71.25);
  const float in[3] = {0.1f, -7.3f, 12.9f};
  float f[3];
  r.Transform(f, in);
  MMPoint3d<double> d;
  r.Transform(d, MMPoint3d<double>(in[0], in[1], in[2]));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(f[i], static_cast<float>(d[i]));
  float x = in[0], y = in[1], z = in[2];
  r.InverseTransform(x, y, z);
  r.InverseTransform(d, MMPoint3d<double>(in[0], in[1], in[2]));
  EXPECT_TRUE(x == static_cast<float>(d.x) && y == static_cast<float>(d.y) && z == static_cast<float>(d.z));

  rz.MakeRotationZYX(0, 0, 90);
  M3DBoundingBox<float> box(0, 2, 0, 1, 0, 3);
  ASSERT_TRUE(rz.TransformBoundingBox(box));
  EXPECT_TRUE(std::fabs(box.xMin + 1.0f) < 1e-6f && std::fabs(box.xMax) < 1e-6f && std::fabs(box.yMin) < 1e-6f &&
              std::fabs(box.yMax - 2.0f) < 1e-6f && box.zMax == 3.0f);
  // A rotated unit box becomes the larger hull.
  r45.MakeRotationZYX(0, 0, 45);
  M3DBoundingBox<float> unit(0, 1, 0, 1, 0, 1);
  r45.TransformBoundingBox(unit);
  EXPECT_NEAR(unit.xMax - unit.xMin, std::sqrt(2.0f), 1e-6f);

  // The base double export rounds through float on purpose.
  s.MakeScale1D(0.1);
  double viaBase[16], full[16];
  s.MMTransform::ConvertDouble16(viaBase);
  s.ConvertToDouble16(full);
  EXPECT_EQ(viaBase[0], static_cast<double>(0.1f));
  EXPECT_EQ(full[0], 0.1);
}

}  // namespace
