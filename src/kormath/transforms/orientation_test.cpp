#include <kormath/transforms/orientation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cwchar>
#include <random>
#include <string>
#include <vector>

namespace {

// ---- An independent, straightforward model of the letter rules.

wchar_t Up(wchar_t c) { return (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - 32) : c; }
bool In(wchar_t c, const wchar_t *set) { return c != L'\0' && std::wcschr(set, c) != nullptr; }
bool IsUpper(const std::wstring &s) { return s == std::wstring{Up(s[0]), Up(s[1]), Up(s[2])}; }

wchar_t ModelOpposite(wchar_t c) {
  const auto k = std::wstring(L"APLRTB").find(Up(c));
  return k == std::wstring::npos ? L'X' : L"PARLBT"[k];
}

bool ModelValid(const std::wstring &s) {
  for (int i = 0; i < 3; ++i) {
    if (!In(Up(s[i]), L"APLRTBX")) return false;
    for (int j = i + 1; j < 3 && Up(s[i]) != L'X'; ++j)
      if (s[j] == s[i] || s[j] == ModelOpposite(s[i])) return false;
  }
  return true;
}

bool ModelComplete(const std::wstring &s) {
  for (wchar_t c : s)
    if (!In(Up(c), L"APLRTB")) return false;
  return s[0] != s[1] && s[1] != s[2] && s[0] != s[2];
}

int ModelOutOfLine(const std::wstring &s) { return !In(s[0], L"RL") + !In(s[1], L"BT") + !In(s[2], L"PA"); }

bool ModelRightHanded(const std::wstring &s) {
  const int d = ModelOutOfLine(s);
  int count = d == 2;
  for (wchar_t c : s) count += In(c, L"LTA");
  return d != 1 && count % 2 == 0;
}

bool ModelAxial(const std::wstring &s) {
  const wchar_t u2 = Up(s[2]);
  return (ModelValid(s) && In(u2, L"BT")) || (u2 == L'X' && !In(Up(s[0]), L"BT") && !In(Up(s[1]), L"BT"));
}

template <typename T>
T Det3(const T (&m)[3][3]) {
  return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
         m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

// Determinant of the signed permutation that an upper-case complete, valid
// orientation stands for, relative to R, B, P: a handedness oracle that does
// not count letters.
int Determinant(const std::wstring &s) {
  int m[3][3] = {};
  for (int i = 0; i < 3; ++i) m[i][In(s[i], L"RL") ? 0 : In(s[i], L"BT") ? 1 : 2] = In(s[i], L"RBP") ? 1 : -1;
  return Det3(m);
}

std::vector<std::wstring> AllThreeLetterStrings() {
  const std::wstring alphabet = L"APLRTBXaplrtbxQ";
  std::vector<std::wstring> all;
  for (wchar_t a : alphabet)
    for (wchar_t b : alphabet)
      for (wchar_t c : alphabet) all.push_back(std::wstring{a, b, c});
  return all;
}

std::string Narrow(const std::wstring &s) { return std::string(s.begin(), s.end()); }

void ExpectNear(const float *a, const float *b, float tol) {
  for (int k = 0; k < 3; ++k) EXPECT_NEAR(a[k], b[k], tol) << k;
}
void ExpectMatrixNear(const float (*a)[3], const float (*b)[3], float tol) {
  for (int k = 0; k < 9; ++k) EXPECT_NEAR(a[k / 3][k % 3], b[k / 3][k % 3], tol) << k;
}
const float kIdentity[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

TEST(OrientationStrings, ExhaustiveAgainstModel) {
  int rightHandedComplete = 0;
  for (const std::wstring &s : AllThreeLetterStrings()) {
    SCOPED_TRACE(Narrow(s));
    const wchar_t *o = s.c_str();
    EXPECT_EQ(IsOrientationValid(o), ModelValid(s));
    EXPECT_EQ(IsOrientationComplete(o), ModelComplete(s));
    EXPECT_EQ(IsOrientationAxial(o), ModelAxial(s));
    EXPECT_EQ(IsOrientationRightHanded(o), ModelRightHanded(s));
    EXPECT_EQ(IsOrientationRightHandedValid(o), ModelOutOfLine(s) != 1);
    EXPECT_EQ(GetOpposite(s[0]), ModelOpposite(s[0]));
    if (ModelValid(s) && ModelComplete(s) && IsUpper(s)) {  // a true permutation: the sign of the determinant
      EXPECT_EQ(IsOrientationRightHanded(o), Determinant(s) > 0);
      rightHandedComplete += Determinant(s) > 0;
    }

    // Mirroring replaces letter 1 by its opposite and reports handedness.
    wchar_t mirrored[4] = {}, copied[4] = {};
    const unsigned char hand = ORIENTATIE_MET_SPIEGEL(mirrored, o, 1);
    EXPECT_EQ(std::wstring(mirrored, 4), (std::wstring{s[0], ModelOpposite(s[1]), s[2], L'\0'}));
    EXPECT_EQ(hand != 0, ModelRightHanded(std::wstring(mirrored, 3)));
    ORIENTATIE_MET_SPIEGEL(copied, o, 0);
    EXPECT_EQ(std::wstring(copied), s);

    // MAAK_RECHTSHANDIG: completion step, then a flip of letter 1.
    std::wstring expected = s;
    for (int i = 0; i < 2; ++i) {
      const wchar_t letter = expected[i], opposite = ModelOpposite(letter);
      if (opposite == L'X') expected[i] = L'X';
      for (int j = 0; j < 3; ++j)
        if (j != i && (expected[j] == letter || expected[j] == opposite)) expected[j] = L'X';
    }
    bool expectedResult = true;
    for (wchar_t c : expected) expectedResult = expectedResult && In(Up(c), L"APLRTB");
    if (expectedResult && !ModelRightHanded(expected)) expected[1] = ModelOpposite(expected[1]);
    std::wstring made = s;
    EXPECT_EQ(MAAK_RECHTSHANDIG(&made[0]), expectedResult);
    EXPECT_EQ(made, expected);
    if (expectedResult && IsUpper(s)) {
      // Upper case gives a valid right-handed result (lower case escapes the
      // exact comparisons: "AaR" becomes the invalid "APR", kept so).
      EXPECT_TRUE(IsOrientationValid(made.c_str()) && IsOrientationRightHanded(made.c_str()));
      EXPECT_TRUE(made[0] == s[0] && made[2] == s[2]);
    }
  }
  EXPECT_EQ(rightHandedComplete, 24);  // half of the 48 signed permutations
}

TEST(OrientationStrings, TwoArgumentOppositeAndShortStrings) {
  wchar_t opposite = 0, letter = L'q';
  GetOpposite(opposite, letter);  // X for both
  EXPECT_TRUE(opposite == L'X' && letter == L'X');
  // Strings shorter than three letters are refused without reading past their end.
  for (const wchar_t *o : {L"", L"R", L"RB"})
    EXPECT_FALSE(IsOrientationValid(o) || IsOrientationComplete(o) || IsOrientationAxial(o) ||
                 IsOrientationRightHanded(o))
        << std::wcslen(o);
}

TEST(OrientationStrings, RelativeMatrixIsTheSignedPermutation) {
  std::vector<std::wstring> complete;
  for (const std::wstring &s : AllThreeLetterStrings())
    if (ModelComplete(s) && ModelValid(s) && IsUpper(s)) complete.push_back(s);
  ASSERT_EQ(complete.size(), 48u);
  for (const std::wstring &from : complete)
    for (const std::wstring &to : complete) {
      float m[3][3], back[3][3];
      ORIENTATIE_REL(m, from.c_str(), to.c_str());
      ORIENTATIE_REL(back, to.c_str(), from.c_str());
      for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) {
          ASSERT_EQ(m[r][c], back[c][r]) << Narrow(from) << " " << Narrow(to);  // inverse = transpose
          ASSERT_TRUE(from != to || m[r][c] == kIdentity[r][c]);
        }
      ASSERT_EQ(Det3(m), static_cast<float>(Determinant(from) * Determinant(to)));
    }
  float m[3][3];  // unknown axes take the remaining rows, in order, with +1
  ORIENTATIE_REL(m, L"XXA", L"RBP");
  const float expected[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, -1}};
  ExpectMatrixNear(m, expected, 0.0f);
}

// ---- Rotation functions, in float and degrees. 1e-5 is a few float ulps of
// sums of products of values near 1; angles read back through atan and the
// float radian factor agree to about 1e-3 degrees.
constexpr float kAngleTol = 2e-3f;

TEST(RotationFunctions, FormsAgreeAndAnglesReadBack) {
  std::mt19937 rng(20261121u);
  std::uniform_real_distribution<float> angle(-60.0f, 60.0f), coord(-10.0f, 10.0f);
  for (int n = 0; n < 200; ++n) {
    const long axis = n % 3;
    float angles[3] = {angle(rng), angle(rng), angle(rng)}, inverse[3] = {angles[0], angles[1], angles[2]}, got[3];
    float v[3] = {coord(rng), coord(rng), coord(rng)}, viaMatrix[3], out[3];
    float r[3][3], m[3][3], expected[3][3], backward[3][3];
    FILL_TRANSFORM(r, axis, angles[0]);
    MATRIX_VECTOR(viaMatrix, r, v);
    ROTEER_ENKEL(v, axis, angles[0], out);
    ExpectNear(out, viaMatrix, 1e-5f);
    ANGLES_TO_MATRIX(m, angles);
    MATRIX_MATRIX(expected, r, m);
    ROTEER_ENKEL(m, axis, angles[0]);  // pre-multiplies
    ExpectMatrixNear(m, expected, 2e-6f);

    // ORIENTATIE returns the angles of ANGLES_TO_MATRIX and leaves the
    // identity behind; ROTEER_INVERSE gives those of the inverse rotation.
    ANGLES_TO_MATRIX(m, angles);
    ORIENTATIE(m, got[0], got[1], got[2]);
    ExpectNear(got, angles, kAngleTol);
    ExpectMatrixNear(m, kIdentity, 1e-4f);
    ROTEER_INVERSE(inverse[0], inverse[1], inverse[2]);
    ANGLES_TO_MATRIX(r, angles);
    ANGLES_TO_MATRIX(backward, inverse);
    MATRIX_MATRIX(m, backward, r);
    ExpectMatrixNear(m, kIdentity, 1e-4f);

    // ROTEER_BEELDAS about axis 0 or 1: R(new) = R(old) R_axis(degrees), the
    // turn in the image's own frame (a call about axis 2 first forgets the cache).
    if (axis == 2) continue;
    ROTEER_BEELDAS(inverse[0], inverse[1], inverse[2], 2, 0.0f);
    ROTEER_BEELDAS(inverse[0], inverse[1], inverse[2], axis, angles[1]);
    FILL_TRANSFORM(r, axis, angles[1]);
    MATRIX_MATRIX(expected, backward, r);
    ANGLES_TO_MATRIX(m, inverse);
    ExpectMatrixNear(m, expected, 1e-4f);
  }
}

TEST(RotationFunctions, AlignmentTolerancesAndHalfTurns) {
  // Axis 2 with target 0: p = v[0], q = v[1]; with target 1: p = v[0] is
  // tested first. Components below 1e-05 count as zero; a negative result
  // component adds a half turn, also when both are tiny.
  struct Case {
    float x, y;
    long target;
    float degrees;
  } cases[] = {
      {1, 0, 0, 0.0f},         {0, 1, 0, 270.0f},          {9.9e-6f, 1, 0, 270.0f}, {1, 1, 0, -45.0f},
      {-1, 0, 0, 180.0f},      {-5e-6f, 5e-6f, 0, 180.0f}, {5e-6f, 5e-6f, 0, 0.0f}, {0, 1, 1, 0.0f},
      {1.01e-5f, 0, 1, 90.0f}, {9.9e-6f, 0, 1, 0.0f},  // p just above and below 1e-05
  };
  for (const Case &c : cases) {
    float v[3] = {c.x, c.y, 0.0f};
    EXPECT_NEAR(GET_ALIGN_ROTATION(v, 2, c.target), c.degrees, 1e-3f) << c.x << " " << c.y << " " << c.target;
  }

  std::mt19937 rng(99u);
  std::uniform_real_distribution<float> coord(-3.0f, 3.0f);
  for (int n = 0; n < 300; ++n) {
    const long axis = n % 3, lower = axis == 0 ? 1 : 0, higher = axis == 2 ? 1 : 2;
    float v[3] = {coord(rng), coord(rng), coord(rng)}, a[3], b[3], w[3], u[3];
    const float length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    GET_ALIGN_ROTATIONS(a, v, static_cast<unsigned long>(axis));  // lower axis first, negated
    GET_ALIGN_ROTATIONS(b, static_cast<unsigned long>(axis), v);  // higher axis first, as they are
    ROTEER_ENKEL(v, lower, -a[lower], w);
    ROTEER_ENKEL(w, higher, -a[higher]);
    ROTEER_ENKEL(v, higher, b[higher], u);
    ROTEER_ENKEL(u, lower, b[lower]);
    EXPECT_TRUE(a[axis] == 0.0f && std::fabs(w[axis] - length) < 1e-4f * length &&
                std::fabs(u[axis] - length) < 1e-4f * length)
        << n;
  }
}

TEST(RotationFunctions, IntegerFormsRoundHalfAwayFromZero) {
  std::mt19937 rng(3u);
  std::uniform_int_distribution<int> coord(-1000, 1000);
  std::uniform_real_distribution<float> angle(-180.0f, 180.0f);
  for (int n = 0; n < 500; ++n) {
    const float rx = angle(rng), ry = angle(rng), rz = angle(rng);
    const int x = coord(rng), y = coord(rng), z = coord(rng);
    long l[3] = {x, y, z};
    short s[3] = {static_cast<short>(x), static_cast<short>(y), static_cast<short>(z)};
    float f[3] = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
    ROTEER_3D(f[0], f[1], f[2], rx, ry, rz);
    ROTEER_3D(l[0], l[1], l[2], rx, ry, rz);
    ROTEER_3D(s[0], s[1], s[2], rx, ry, rz);
    for (int k = 0; k < 3; ++k)  // away from zero, neither truncated nor floored
      EXPECT_TRUE(l[k] == std::lround(f[k]) && s[k] == l[k]) << f[k] << " " << l[k] << " " << s[k];
  }
}

TEST(RotationFunctions, BeeldasTurnsAboutTheImageAxisAndAccumulates) {
  // Static state: a call about axis 2 only adds to rz and resets the
  // remembered axis, so the next call about axis 0 starts afresh.
  float z[3] = {0, 0, 5}, a[3] = {0, 0, 0}, b[3] = {0, 0, 0};
  const float z15[3] = {0, 0, 15}, a20[3] = {20, 0, 0}, b35[3] = {35, 0, 0};
  ROTEER_BEELDAS(z[0], z[1], z[2], 2, 10.0f);
  ROTEER_BEELDAS(a[0], a[1], a[2], 0, 20.0f);
  ROTEER_BEELDAS(b[0], b[1], b[2], 0, 15.0f);  // same inputs: 20 + 15
  ExpectNear(z, z15, 0.0f);
  ExpectNear(a, a20, kAngleTol);
  ExpectNear(b, b35, kAngleTol);
}

}  // namespace
