#include <kormath/transforms/legacy_points.h>

#include <kormath/platform/file.h>
#include <kormath/transforms/matrix_transform.h>
#include <kormath/transforms/orientation.h>

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

std::vector<unsigned char> ReadBytes(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void AppendLE32(std::vector<unsigned char> &bytes, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<unsigned char>(v >> (8 * i)));
}

std::uint32_t Bits(float f) {
  std::uint32_t u;
  std::memcpy(&u, &f, 4);
  return u;
}

TEST(LegacyPointFile, WrittenPointsAreTwelveBytesAndReadBackExactly) {
  const std::string path = TempPath("roundtrip");
  const PNT_3D_LONG lp(1L, -2L, -2147483647L - 1L);
  MPoint mp(0.1f, -0.0f, 1e-30f);
  PNT_3D_FLOAT fp(-3.5f, 3.4028235e38f, 7.0f);
  {
    MFile file;
    ASSERT_TRUE(file.Open(path.c_str(), MFile::WRITE_MODE));
    PNT_3D_LONG copy = lp;
    EXPECT_TRUE(copy.WRITE(file));
    EXPECT_TRUE(mp.Save(file));
    fp.WRITE(file);
  }
  // The on-file form, built independently: x, y, z little-endian, no header.
  std::vector<unsigned char> expected;
  AppendLE32(expected, 1u);
  AppendLE32(expected, 0xFFFFFFFEu);
  AppendLE32(expected, 0x80000000u);
  for (float f : {0.1f, -0.0f, 1e-30f, -3.5f, 3.4028235e38f, 7.0f}) AppendLE32(expected, Bits(f));
  const std::vector<unsigned char> written = ReadBytes(path);
  EXPECT_EQ(written.size(), 36u);
  EXPECT_EQ(written, expected);

  MFile file;
  ASSERT_TRUE(file.Open(path.c_str(), MFile::READ_MODE));
  PNT_3D_LONG lr;
  MPoint mr;
  PNT_3D_FLOAT fr;
  EXPECT_TRUE(lr.READ(file));
  EXPECT_TRUE(mr.Load(file));
  fr.READ(file);
  file.Close();
  EXPECT_TRUE(lr == lp);
  EXPECT_TRUE(mr == mp);
  EXPECT_EQ(Bits(mr.y), Bits(-0.0f));  // bit-exact, not merely equal
  EXPECT_EQ(fr.x, fp.x);
  EXPECT_EQ(fr.y, fp.y);
  EXPECT_EQ(fr.z, fp.z);

  // Save after Load gives back the same 12 bytes.
  const std::string again = TempPath("again");
  ASSERT_TRUE(file.Open(again.c_str(), MFile::WRITE_MODE));
  EXPECT_TRUE(mr.Save(file));
  file.Close();
  EXPECT_EQ(ReadBytes(again), std::vector<unsigned char>(expected.begin() + 12, expected.begin() + 24));
  std::remove(path.c_str());
  std::remove(again.c_str());
}

TEST(LegacyPointFile, ShortFileIsReported) {
  const std::string path = TempPath("short");
  {
    MFile file;
    ASSERT_TRUE(file.Open(path.c_str(), MFile::WRITE_MODE));
    const float two[2] = {1.0f, 2.0f};
    ASSERT_EQ(file.WRITE(two, 2), 2u);
  }
  MFile file;
  ASSERT_TRUE(file.Open(path.c_str(), MFile::READ_MODE));
  MPoint mp(9, 9, 9);
  EXPECT_FALSE(mp.Load(file));
  EXPECT_EQ(mp.z, 9.0f);  // filled as far as the read went
  file.Close();

  ASSERT_TRUE(file.Open(path.c_str(), MFile::READ_MODE));
  PNT_3D_LONG lp(7, 7, 7);
  EXPECT_FALSE(lp.READ(file));
  EXPECT_EQ(lp.z, 7);
  file.Close();

  // PNT_3D_FLOAT reports nothing; the member that was not read keeps its
  // value.
  ASSERT_TRUE(file.Open(path.c_str(), MFile::READ_MODE));
  PNT_3D_FLOAT fp(5, 5, 5);
  fp.READ(file);
  EXPECT_EQ(fp.x, 1.0f);
  EXPECT_EQ(fp.y, 2.0f);
  EXPECT_EQ(fp.z, 5.0f);
  file.Close();

  // A file that is not open transfers nothing.
  EXPECT_FALSE(mp.Save(file));
  EXPECT_FALSE(lp.WRITE(file));
  std::remove(path.c_str());
}

TEST(LegacyPoints, ArithmeticConversionsAndLength) {
  MPoint p(1.0f, 2.0f, 3.0f);
  const float raw[3] = {4.0f, 5.0f, 6.0f};
  p += MPoint(raw);
  p -= MPoint(0.0f, 0.0f, -2.0f);
  p *= 0.5f;
  EXPECT_TRUE(p == MPoint(2.5f, 3.5f, 5.5f));
  p /= 3.0f;  // a division per member, not a product with the reciprocal
  EXPECT_EQ(p.x, 2.5f / 3.0f);
  EXPECT_EQ(p.z, 5.5f / 3.0f);
  EXPECT_EQ(static_cast<float *>(p), &p.x);
  p.AssignFromPoint3dDouble(MMPoint3d<double>(0.1, -0.1, 1e300));
  EXPECT_EQ(p.x, 0.1f);  // the nearest float
  MMPoint3d<double> d;
  p.AssignToPoint3dDouble(d);
  EXPECT_EQ(d.y, static_cast<double>(-0.1f));

  PNT_3D_FLOAT zero, f(3.0f, 4.0f, 0.0f);
  zero.NORMALISEER();  // a zero length changes nothing
  EXPECT_EQ(zero.x, 0.0f);
  EXPECT_EQ(f.SQR_LENGTH(), 25.0f);
  EXPECT_EQ(f.LENGTH(), 5.0f);
  f.NORMALISEER();
  EXPECT_EQ(f.x, 0.6f);
  EXPECT_EQ(f.y, 0.8f);
  PNT_3D_FLOAT r(1.0f, 2.0f, 3.0f);
  float x = 1.0f, y = 2.0f, z = 3.0f;
  r.ROTEER_NORMAAL(10.0f, 20.0f, 30.0f);
  ROTEER_3D(x, y, z, 10.0f, 20.0f, 30.0f);
  EXPECT_EQ(r.x, x);
  EXPECT_EQ(r.z, z);
}

TEST(LegacyPoints, LongPointRotationAndMatrixRounding) {
  PNT_3D_LONG center(10, 0, 0), p(11, 0, 0);
  p.ROTEREN(0.0f, 0.0f, 90.0f, center);
  EXPECT_TRUE(p == PNT_3D_LONG(10, 1, 0));
  PNT_3D_LONG q(-7, 3, 0), origin(0, 0, 0);
  q.ROTEREN(0.0f, 0.0f, 180.0f, origin);  // -7 + tiny -> 7, rounded half away
  EXPECT_TRUE(q == PNT_3D_LONG(7, -3, 0));

  MMTransformMatrix half;
  half.MakeTranslation(MMPoint3d<double>(0.5, -0.5, 0.0));
  PNT_3D_LONG a(0, 0, 0);
  a.TRANSFORM(&half);
  EXPECT_TRUE(a == PNT_3D_LONG(1, -1, 0));
  a.INVERSE_TRANSFORM(&half);  // (0.5, -0.5, 0) -> (1, -1, 0) again
  EXPECT_TRUE(a == PNT_3D_LONG(1, -1, 0));

  // Narrowed to float before rounding: 0.49999999999 becomes 0.5f, so 1.
  MMTransformMatrix almost;
  almost.MakeTranslation(MMPoint3d<double>(0.49999999999, -0.49999999999, 2.4));
  PNT_3D_LONG b(0, 0, 0);
  b.TRANSFORM(&almost);
  EXPECT_TRUE(b == PNT_3D_LONG(1, -1, 2));

  // No inverse: the result point starts at zero.
  MMTransformMatrix singular;
  singular.MakeScale1D(0.0);
  PNT_3D_LONG c(5, 5, 5);
  c.INVERSE_TRANSFORM(&singular);
  EXPECT_TRUE(c == PNT_3D_LONG(0, 0, 0));
}

}  // namespace
