#include <kormath/transforms/legacy_points.h>

#include <kormath/platform/file.h>
#include <kormath/transforms/matrix_transform.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

std::string TempPath(const char *name) { return testing::TempDir() + "kormath_legacy_points_" + name + ".bin"; }

// Appends the 4 bytes of `value` (an integer, or the bits of a float) in little-endian order.
template <typename T>
void AppendLE32(std::vector<unsigned char> &bytes, T value) {
  static_assert(sizeof(T) == 4, "four bytes");
  std::uint32_t v;
  std::memcpy(&v, &value, 4);
  for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<unsigned char>(v >> (8 * i)));
}

TEST(LegacyPointFile, WrittenPointsAreTwelveBytesAndReadBackExactly) {
  const std::string path = TempPath("roundtrip");
  PNT_3D_LONG lp(1L, -2L, -2147483647L - 1L), lr;
  MPoint mp(0.1f, -0.0f, 1e-30f), mr;
  PNT_3D_FLOAT fp(-3.5f, 3.4028235e38f, 7.0f), fr;
  MFile file;
  ASSERT_TRUE(file.Open(path.c_str(), MFile::WRITE_MODE));
  EXPECT_TRUE(lp.WRITE(file));
  EXPECT_TRUE(mp.Save(file));
  fp.WRITE(file);
  file.Close();
  // The on-file form, built independently: x, y, z little-endian, no header.
  std::vector<unsigned char> expected;
  for (std::uint32_t v : {1u, 0xFFFFFFFEu, 0x80000000u}) AppendLE32(expected, v);
  for (float f : {0.1f, -0.0f, 1e-30f, -3.5f, 3.4028235e38f, 7.0f}) AppendLE32(expected, f);
  std::ifstream in(path, std::ios::binary);
  const std::vector<unsigned char> written{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  EXPECT_EQ(written, expected);

  ASSERT_TRUE(file.Open(path.c_str(), MFile::READ_MODE));
  EXPECT_TRUE(lr.READ(file));
  EXPECT_TRUE(mr.Load(file));
  fr.READ(file);
  file.Close();
  EXPECT_TRUE(lr == lp);
  EXPECT_EQ(std::memcmp(&mr, &mp, sizeof mp), 0);  // bit-exact, -0.0f included
  EXPECT_EQ(std::memcmp(&fr, &fp, sizeof fp), 0);
  std::remove(path.c_str());
}

TEST(LegacyPointFile, ShortFileIsReported) {
  const std::string path = TempPath("short");
  MFile file;
  ASSERT_TRUE(file.Open(path.c_str(), MFile::WRITE_MODE));
  const float two[2] = {1.0f, 2.0f};
  ASSERT_EQ(file.WRITE(two, 2), 2u);
  file.Close();
  MPoint mp(9, 9, 9);
  PNT_3D_LONG lp(7, 7, 7);
  PNT_3D_FLOAT fp(5, 5, 5);  // reports nothing; the member not read keeps its value
  ASSERT_TRUE(file.Open(path.c_str(), MFile::READ_MODE));
  EXPECT_FALSE(mp.Load(file));
  ASSERT_TRUE(file.Open(path.c_str(), MFile::READ_MODE));  // reopening closes the file held before
  EXPECT_FALSE(lp.READ(file));
  ASSERT_TRUE(file.Open(path.c_str(), MFile::READ_MODE));
  fp.READ(file);
  file.Close();
  EXPECT_EQ(mp.z, 9.0f);  // filled as far as the read went
  EXPECT_EQ(lp.z, 7);
  EXPECT_TRUE(fp.x == 1.0f && fp.y == 2.0f && fp.z == 5.0f);
  EXPECT_FALSE(mp.Save(file));  // a file that is not open transfers nothing
  EXPECT_FALSE(lp.WRITE(file));
  std::remove(path.c_str());
}

TEST(LegacyPoints, DivisionNarrowingAndLength) {
  MPoint p(2.0f, 2.5f, 4.0f);
  p /= 3.0f;  // a division per member, not a product with the reciprocal (2.5f tells them apart)
  EXPECT_TRUE(p.x == 2.0f / 3.0f && p.y == 2.5f / 3.0f && p.z == 4.0f / 3.0f);
  MMPoint3d<double> d;
  p.AssignFromPoint3dDouble(MMPoint3d<double>(0.1, -0.1, 1e300));
  p.AssignToPoint3dDouble(d);
  EXPECT_TRUE(p.x == 0.1f && d.y == static_cast<double>(-0.1f));  // the nearest float

  PNT_3D_FLOAT zero, f(3.0f, 4.0f, 0.0f);
  zero.NORMALISEER();  // a zero length changes nothing
  f.NORMALISEER();
  EXPECT_TRUE(zero.x == 0.0f && f.x == 0.6f && f.y == 0.8f && f.LENGTH() == 1.0f);
}

PNT_3D_LONG ThroughShift(double tx, double ty, double tz, bool inverse) {
  MMTransformMatrix shift;
  shift.MakeTranslation(MMPoint3d<double>(tx, ty, tz));
  PNT_3D_LONG a(0, 0, 0);
  inverse ? a.INVERSE_TRANSFORM(&shift) : a.TRANSFORM(&shift);
  return a;
}

TEST(LegacyPoints, LongPointRotationAndMatrixRounding) {
  PNT_3D_LONG center(10, 0, 0), p(11, 0, 0), origin(0, 0, 0), q(-7, 3, 0), c(5, 5, 5);
  p.ROTEREN(0.0f, 0.0f, 90.0f, center);
  EXPECT_TRUE(p == PNT_3D_LONG(10, 1, 0));
  q.ROTEREN(0.0f, 0.0f, 180.0f, origin);  // -7 + tiny -> 7, rounded half away
  EXPECT_TRUE(q == PNT_3D_LONG(7, -3, 0));
  EXPECT_TRUE(ThroughShift(0.5, -0.5, 0.0, false) == PNT_3D_LONG(1, -1, 0));
  EXPECT_TRUE(ThroughShift(-0.5, 0.5, 0.0, true) == PNT_3D_LONG(1, -1, 0));
  // Narrowed to float before rounding: 0.49999999999 becomes 0.5f, so 1.
  EXPECT_TRUE(ThroughShift(0.49999999999, -0.49999999999, 2.4, false) == PNT_3D_LONG(1, -1, 2));
  MMTransformMatrix singular;  // no inverse: the result point starts at zero
  singular.MakeScale1D(0.0);
  c.INVERSE_TRANSFORM(&singular);
  EXPECT_TRUE(c == PNT_3D_LONG(0, 0, 0));
}

}  // namespace
