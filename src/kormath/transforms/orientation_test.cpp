#include <kormath/transforms/orientation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

// ---- An independent, straightforward model of the letter rules.

wchar_t Up(wchar_t c) { return (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - 32) : c; }

wchar_t ModelOpposite(wchar_t c) {
  const std::wstring letters = L"APLRTB";
  const std::wstring opposites = L"PARLBT";
  const auto k = letters.find(Up(c));
  return k == std::wstring::npos ? L'X' : opposites[k];
}

bool ModelInAlphabet(wchar_t c) { return std::wstring(L"APLRTBX").find(Up(c)) != std::wstring::npos; }

bool ModelValid(const std::wstring &s) {
  for (int i = 0; i < 3; ++i)
    if (!ModelInAlphabet(s[i])) return false;
  for (int i = 0; i < 3; ++i) {
    if (Up(s[i]) == L'X') continue;
    for (int j = i + 1; j < 3; ++j)
      if (s[j] == s[i] || s[j] == ModelOpposite(s[i])) return false;
  }
  return true;
}

bool ModelComplete(const std::wstring &s) {
  for (int i = 0; i < 3; ++i)
    if (!ModelInAlphabet(s[i]) || Up(s[i]) == L'X') return false;
  return s[0] != s[1] && s[1] != s[2] && s[0] != s[2];
}

bool IsOneOf(wchar_t c, const wchar_t *set) { return std::wstring(set).find(c) != std::wstring::npos; }

int ModelOutOfLine(const std::wstring &s) {
  return !IsOneOf(s[0], L"RL") + !IsOneOf(s[1], L"BT") + !IsOneOf(s[2], L"PA");
}

bool ModelRightHanded(const std::wstring &s) {
  const int d = ModelOutOfLine(s);
  if (d == 1) return false;
  int count = 0;
  for (int i = 0; i < 3; ++i) count += IsOneOf(s[i], L"LTA");
  if (d == 2) ++count;
  return count % 2 == 0;
}

bool ModelAxial(const std::wstring &s) {
  const wchar_t u0 = Up(s[0]), u1 = Up(s[1]), u2 = Up(s[2]);
  if (ModelValid(s) && (u2 == L'B' || u2 == L'T')) return true;
  return u2 == L'X' && !IsOneOf(u0, L"BT") && !IsOneOf(u1, L"BT");
}

// Determinant of the signed permutation that an upper-case complete, valid
// orientation stands for, relative to R, B, P: an oracle of handedness that
// does not count letters.
int Determinant(const std::wstring &s) {
  int m[3][3] = {};
  for (int i = 0; i < 3; ++i) {
    const wchar_t c = s[i];
    const int axis = IsOneOf(c, L"RL") ? 0 : (IsOneOf(c, L"BT") ? 1 : 2);
    m[i][axis] = IsOneOf(c, L"RBP") ? 1 : -1;
  }
  return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
         m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
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

    if (ModelValid(s) && ModelComplete(s) && s == std::wstring{Up(s[0]), Up(s[1]), Up(s[2])}) {
      // A true permutation: handedness is the sign of the determinant.
      EXPECT_EQ(IsOrientationRightHanded(o), Determinant(s) > 0);
      rightHandedComplete += Determinant(s) > 0;
    }

    // Mirroring replaces letter 1 by its opposite and reports handedness.
    wchar_t mirrored[4] = {};
    const unsigned char hand = ORIENTATIE_MET_SPIEGEL(mirrored, o, 1);
    EXPECT_EQ(mirrored[0], s[0]);
    EXPECT_EQ(mirrored[1], ModelOpposite(s[1]));
    EXPECT_EQ(mirrored[2], s[2]);
    EXPECT_EQ(mirrored[3], L'\0');
    EXPECT_EQ(hand != 0, ModelRightHanded(std::wstring(mirrored, 3)));
    wchar_t copied[4] = {};
    ORIENTATIE_MET_SPIEGEL(copied, o, 0);
    EXPECT_EQ(std::wstring(copied), s);

    // MAAK_RECHTSHANDIG: completion step, then a flip of letter 1.
    std::wstring expected = s;
    for (int i = 0; i < 2; ++i) {
      const wchar_t letter = expected[i];
      const wchar_t opposite = ModelOpposite(letter);
      if (opposite == L'X') expected[i] = L'X';
      for (int j = 0; j < 3; ++j)
        if (j != i && (expected[j] == letter || expected[j] == opposite)) expected[j] = L'X';
    }
    bool expectedResult = true;
    for (int i = 0; i < 3; ++i)
      if (Up(expected[i]) == L'X' || !ModelInAlphabet(expected[i])) expectedResult = false;
    if (expectedResult && !ModelRightHanded(expected)) expected[1] = ModelOpposite(expected[1]);
    std::wstring made = s;
    EXPECT_EQ(MAAK_RECHTSHANDIG(&made[0]), expectedResult);
    EXPECT_EQ(made, expected);
    if (expectedResult && s == std::wstring{Up(s[0]), Up(s[1]), Up(s[2])}) {
      // In upper case the result is a valid right-handed orientation (a
      // lower-case letter escapes the exact comparisons, so "AaR" becomes
      // the invalid "APR": kept so).
      EXPECT_TRUE(IsOrientationValid(made.c_str()));
      EXPECT_TRUE(IsOrientationRightHanded(made.c_str()));
      EXPECT_EQ(made[0], s[0]);
      EXPECT_EQ(made[2], s[2]);
    }
  }
  // Half of the 48 signed permutations are right-handed.
  EXPECT_EQ(rightHandedComplete, 24);
}

TEST(OrientationStrings, NamedCasesAndShortStrings) {
  EXPECT_EQ(GetOpposite(L'a'), L'P');
  wchar_t opposite = 0, letter = L'q';
  GetOpposite(opposite, letter);  // X for both
  EXPECT_EQ(letter, L'X');
  EXPECT_TRUE(IsOrientationValid(L"Rrp"));  // exact comparison with later places
  EXPECT_FALSE(IsOrientationRightHanded(L"BRP"));
  wchar_t lbp[] = L"LBP", rxp[] = L"RXP";
  EXPECT_TRUE(MAAK_RECHTSHANDIG(lbp));
  EXPECT_EQ(std::wstring(lbp), L"LTP");
  EXPECT_FALSE(MAAK_RECHTSHANDIG(rxp));
  // Strings shorter than three letters are refused without reading past
  // their end.
  for (const wchar_t *shortString : {L"", L"R", L"RB"}) {
    EXPECT_FALSE(IsOrientationValid(shortString));
    EXPECT_FALSE(IsOrientationComplete(shortString));
    EXPECT_FALSE(IsOrientationAxial(shortString));
    EXPECT_FALSE(IsOrientationRightHanded(shortString));
  }
}

TEST(OrientationStrings, RelativeMatrixIsTheSignedPermutation) {
  std::vector<std::wstring> complete;
  for (const std::wstring &s : AllThreeLetterStrings())
    if (ModelComplete(s) && ModelValid(s) && s == std::wstring{Up(s[0]), Up(s[1]), Up(s[2])}) complete.push_back(s);
  ASSERT_EQ(complete.size(), 48u);
  for (const std::wstring &from : complete)
    for (const std::wstring &to : complete) {
      float m[3][3], back[3][3];
      ORIENTATIE_REL(m, from.c_str(), to.c_str());
      ORIENTATIE_REL(back, to.c_str(), from.c_str());
      for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) {
          ASSERT_EQ(m[r][c], back[c][r]) << Narrow(from) << " " << Narrow(to);  // inverse = transpose
          if (from == to) {
            ASSERT_EQ(m[r][c], r == c ? 1.0f : 0.0f);
          }
        }
      const float det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                        m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                        m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
      ASSERT_EQ(det, static_cast<float>(Determinant(from) * Determinant(to)));
    }
  // Unknown axes take the remaining rows, in order, with +1.
  float m[3][3];
  ORIENTATIE_REL(m, L"XXA", L"RBP");
  const float expected[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, -1}};
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) EXPECT_EQ(m[r][c], expected[r][c]) << r << c;
}

// ---- Rotation functions, in float and degrees. 1e-5 is a few float ulps of
// sums of products of values near 1; angles read back through atan and the
// float radian factor agree to about 1e-3 degrees.
constexpr float kAngleTol = 2e-3f;

bool NearIdentity(const float (*m)[3], float tol) {
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c)
      if (std::fabs(m[r][c] - (r == c ? 1.0f : 0.0f)) > tol) return false;
  return true;
}

TEST(RotationFunctions, FormsAgreeAndAnglesReadBack) {
  std::mt19937 rng(20261121u);
  std::uniform_real_distribution<float> angle(-60.0f, 60.0f), coord(-10.0f, 10.0f);
  for (int n = 0; n < 200; ++n) {
    const long axis = n % 3;
    float angles[3] = {angle(rng), angle(rng), angle(rng)};
    float v[3] = {coord(rng), coord(rng), coord(rng)}, viaMatrix[3], out[3];
    float r[3][3], m[3][3], expected[3][3];
    FILL_TRANSFORM(r, axis, angles[0]);
    MATRIX_VECTOR(viaMatrix, r, v);
    ROTEER_ENKEL(v, axis, angles[0], out);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(out[k], viaMatrix[k], 1e-5f);
    ANGLES_TO_MATRIX(m, angles);
    MATRIX_MATRIX(expected, r, m);
    ROTEER_ENKEL(m, axis, angles[0]);  // pre-multiplies
    for (int i = 0; i < 3; ++i)
      for (int k = 0; k < 3; ++k) EXPECT_NEAR(m[i][k], expected[i][k], 2e-6f);

    // ORIENTATIE returns the angles of ANGLES_TO_MATRIX and leaves the
    // identity behind; ROTEER_INVERSE gives those of the inverse rotation.
    ANGLES_TO_MATRIX(m, angles);
    float rx, ry, rz;
    ORIENTATIE(m, rx, ry, rz);
    EXPECT_NEAR(rx, angles[0], kAngleTol);
    EXPECT_NEAR(ry, angles[1], kAngleTol);
    EXPECT_NEAR(rz, angles[2], kAngleTol);
    EXPECT_TRUE(NearIdentity(m, 1e-4f));
    float inverse[3] = {angles[0], angles[1], angles[2]}, forward[3][3], backward[3][3];
    ROTEER_INVERSE(inverse[0], inverse[1], inverse[2]);
    ANGLES_TO_MATRIX(forward, angles);
    ANGLES_TO_MATRIX(backward, inverse);
    MATRIX_MATRIX(m, backward, forward);
    EXPECT_TRUE(NearIdentity(m, 1e-4f));
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
      {1, 0, 0, 0.0f},          {0, 1, 0, 270.0f},   {9.9e-6f, 1, 0, 270.0f}, {1, 1, 0, -45.0f},
      {-1, 0, 0, 180.0f},       {-5e-6f, 5e-6f, 0, 180.0f}, {5e-6f, 5e-6f, 0, 0.0f}, {0, 1, 1, 0.0f},
      {1.01e-5f, 0, 1, 90.0f},  {9.9e-6f, 0, 1, 0.0f},  // p just above and below 1e-05
  };
  for (const Case &c : cases) {
    float v[3] = {c.x, c.y, 0.0f};
    EXPECT_NEAR(GET_ALIGN_ROTATION(v, 2, c.target), c.degrees, 1e-3f) << c.x << " " << c.y << " " << c.target;
  }

  std::mt19937 rng(99u);
  std::uniform_real_distribution<float> coord(-3.0f, 3.0f);
  for (int n = 0; n < 300; ++n) {
    const unsigned long axis = static_cast<unsigned long>(n % 3);
    const unsigned long lower = axis == 0 ? 1 : 0, higher = axis == 2 ? 1 : 2;
    float v[3] = {coord(rng), coord(rng), coord(rng)}, angles[3], w[3];
    const float length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    GET_ALIGN_ROTATIONS(angles, v, axis);  // lower axis first, negated
    EXPECT_EQ(angles[axis], 0.0f);
    ROTEER_ENKEL(v, static_cast<long>(lower), -angles[lower], w);
    ROTEER_ENKEL(w, static_cast<long>(higher), -angles[higher]);
    EXPECT_NEAR(w[axis], length, 1e-4f * length);
    GET_ALIGN_ROTATIONS(angles, axis, v);  // higher axis first, as they are
    ROTEER_ENKEL(v, static_cast<long>(higher), angles[higher], w);
    ROTEER_ENKEL(w, static_cast<long>(lower), angles[lower]);
    EXPECT_NEAR(w[axis], length, 1e-4f * length);
  }
}

TEST(RotationFunctions, IntegerFormsRoundHalfAwayFromZero) {
  std::mt19937 rng(3u);
  std::uniform_int_distribution<int> coord(-1000, 1000);
  std::uniform_real_distribution<float> angle(-180.0f, 180.0f);
  for (int n = 0; n < 500; ++n) {
    const float rx = angle(rng), ry = angle(rng), rz = angle(rng);
    long l[3] = {coord(rng), coord(rng), coord(rng)};
    short s[3] = {static_cast<short>(l[0]), static_cast<short>(l[1]), static_cast<short>(l[2])};
    float f[3] = {static_cast<float>(l[0]), static_cast<float>(l[1]), static_cast<float>(l[2])};
    ROTEER_3D(f[0], f[1], f[2], rx, ry, rz);
    ROTEER_3D(l[0], l[1], l[2], rx, ry, rz);
    ROTEER_3D(s[0], s[1], s[2], rx, ry, rz);
    for (int k = 0; k < 3; ++k) {
      EXPECT_EQ(l[k], std::lround(f[k]));  // away from zero, neither truncated nor floored
      EXPECT_EQ(s[k], l[k]);
    }
  }
}

TEST(RotationFunctions, BeeldasTurnsAboutTheImageAxisAndAccumulates) {
  // Static state: a call about axis 2 resets the remembered axis, so the
  // next call about axis 0 starts afresh.
  float rx = 0, ry = 0, rz = 5;
  ROTEER_BEELDAS(rx, ry, rz, 2, 10.0f);
  EXPECT_EQ(rx, 0.0f);
  EXPECT_EQ(rz, 15.0f);
  float a[3] = {0, 0, 0}, b[3] = {0, 0, 0};
  ROTEER_BEELDAS(a[0], a[1], a[2], 0, 20.0f);
  ROTEER_BEELDAS(b[0], b[1], b[2], 0, 15.0f);  // same inputs: 20 + 15
  EXPECT_NEAR(a[0], 20.0f, kAngleTol);
  EXPECT_NEAR(b[0], 35.0f, kAngleTol);
  EXPECT_NEAR(b[1], 0.0f, kAngleTol);

  // In general the new rotation is the old one followed, in the image's own
  // frame, by the turn: R(new) = R(old) R_axis(degrees).
  std::mt19937 rng(11u);
  std::uniform_real_distribution<float> angle(-40.0f, 40.0f);
  for (int n = 0; n < 50; ++n) {
    const long axis = n % 2;
    float old[3] = {angle(rng), angle(rng), angle(rng)}, now[3] = {old[0], old[1], old[2]};
    const float degrees = angle(rng);
    ROTEER_BEELDAS(now[0], now[1], now[2], 2, 0.0f);  // forget the cache
    ROTEER_BEELDAS(now[0], now[1], now[2], axis, degrees);
    float before[3][3], after[3][3], step[3][3], expected[3][3];
    ANGLES_TO_MATRIX(before, old);
    ANGLES_TO_MATRIX(after, now);
    FILL_TRANSFORM(step, axis, degrees);
    MATRIX_MATRIX(expected, before, step);
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 3; ++c) EXPECT_NEAR(after[r][c], expected[r][c], 1e-4f) << n;
  }
}

}  // namespace
