#include <kormath/transforms/identity_transform.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

TEST(TransformIdentity, MapsEveryFormUnchanged) {
  MMTransformIdentity id;
  const MMPoint3d<double> p(1.25, -2.5, 1e300);
  for (bool isVector : {false, true}) {
    MMPoint3d<double> out(9, 9, 9), back(9, 9, 9);
    EXPECT_TRUE(id.Transform(out, p, isVector) && id.InverseTransform(back, p, isVector));
    EXPECT_TRUE(out == p && back == p);
  }
  double d16[16];
  EXPECT_TRUE(id.ConvertDouble16(d16));  // through ConvertFloat16
  for (int i = 0; i < 16; ++i) EXPECT_EQ(d16[i], i / 4 == i % 4 ? 1.0 : 0.0) << i;
  EXPECT_TRUE(id.Invert() && id.IsIdentity());
  std::unique_ptr<MMTransform> clone(id.Clone());
  EXPECT_NE(dynamic_cast<MMTransformIdentity *>(clone.get()), nullptr);
}

}  // namespace
