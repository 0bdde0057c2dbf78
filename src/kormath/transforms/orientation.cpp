#include <kormath/transforms/orientation.h>

#include <cmath>
#include <cstddef>

namespace {

// Radian factor of the rotation functions, as the float literal they use.
constexpr float kLegacyDegreesToRadians = 0.017453292f;
// Absolute tolerance below which a component counts as zero in
// GET_ALIGN_ROTATION (strict comparison, in double).
constexpr double kAlignTolerance = 1e-05;
// pi/2 and pi as the float literals of the alignment step.
constexpr float kAlignHalfPi = 1.5707964f;
constexpr float kAlignPi = 3.1415927f;
// pi of the conversion of the alignment result to degrees (in double).
constexpr double kAlignPiForDegrees = 3.14159265359;

wchar_t UpperAscii(wchar_t c) {
  if (c >= L'a' && c <= L'z') return static_cast<wchar_t>(c - (L'a' - L'A'));
  return c;
}

bool InAlphabet(wchar_t c) {
  switch (UpperAscii(c)) {
    case L'A':
    case L'P':
    case L'L':
    case L'R':
    case L'T':
    case L'B':
    case L'X':
      return true;
    default:
      return false;
  }
}

// True if the string holds at least three characters before its terminator.
bool HasThreeLetters(const wchar_t *o) { return o[0] != 0 && o[1] != 0 && o[2] != 0; }

// Number of places out of line with the pattern R/L, B/T, P/A (exact).
int PlacesOutOfLine(const wchar_t *o) {
  int d = 0;
  if (o[0] != L'R' && o[0] != L'L') ++d;
  if (o[1] != L'B' && o[1] != L'T') ++d;
  if (o[2] != L'P' && o[2] != L'A') ++d;
  return d;
}

void Identity(float (*const m)[3]) {
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) m[r][c] = r == c ? 1.0f : 0.0f;
}

// cos and sin of a float angle in radians: computed in double, narrowed.
void CosSin(float radians, float &c, float &s) {
  c = static_cast<float>(std::cos(static_cast<double>(radians)));
  s = static_cast<float>(std::sin(static_cast<double>(radians)));
}

// The alignment angle from the two components p (place j) and q (place k).
float AlignAngle(float p, float q, long axis, long target) {
  const long d = ((target - axis) % 3 + 3) % 3;
  float angle = 0.0f;
  double w = 0.0;
  if (d == 1) {
    if (std::fabs(static_cast<double>(q)) < kAlignTolerance)
      angle = 0.0f;
    else if (std::fabs(static_cast<double>(p)) < kAlignTolerance)
      angle = kAlignHalfPi;
    else
      angle = static_cast<float>(std::atan(static_cast<double>(-(q / p))));
    w = std::cos(static_cast<double>(angle)) * p - std::sin(static_cast<double>(angle)) * q;
  } else if (d == 2) {
    if (std::fabs(static_cast<double>(p)) < kAlignTolerance)
      angle = 0.0f;
    else if (std::fabs(static_cast<double>(q)) < kAlignTolerance)
      angle = kAlignHalfPi;
    else
      angle = static_cast<float>(std::atan(static_cast<double>(p / q)));
    w = std::cos(static_cast<double>(angle)) * q + std::sin(static_cast<double>(angle)) * p;
  } else {
    return 0.0f;  // target == axis: not meaningful
  }
  if (w < 0.0) angle += kAlignPi;
  return static_cast<float>(static_cast<double>(angle) * 180.0 / kAlignPiForDegrees);
}

template <class Int>
Int RoundHalfAwayFloat(float v) {
  return static_cast<Int>(v >= 0.0f ? v + 0.5f : v - 0.5f);
}

}  // namespace

wchar_t GetOpposite(wchar_t letter) {
  switch (UpperAscii(letter)) {
    case L'A':
      return L'P';
    case L'P':
      return L'A';
    case L'L':
      return L'R';
    case L'R':
      return L'L';
    case L'T':
      return L'B';
    case L'B':
      return L'T';
    default:
      return L'X';
  }
}

void GetOpposite(wchar_t &opposite, wchar_t &letter) {
  opposite = GetOpposite(letter);
  if (opposite == L'X') letter = L'X';
}

bool IsOrientationValid(const wchar_t *o) {
  for (int i = 0; i < 3; ++i)
    if (o[i] == 0 || !InAlphabet(o[i])) return false;
  for (int i = 0; i < 3; ++i) {
    const wchar_t opposite = GetOpposite(o[i]);
    if (opposite == L'X') continue;  // X (either case) may repeat
    for (int j = i + 1; j < 3; ++j)
      if (o[j] == o[i] || o[j] == opposite) return false;
  }
  return true;
}

bool IsOrientationComplete(const wchar_t *o) {
  for (int i = 0; i < 3; ++i)
    if (o[i] == 0 || !InAlphabet(o[i]) || UpperAscii(o[i]) == L'X') return false;
  return o[0] != o[1] && o[0] != o[2] && o[1] != o[2];
}

bool IsOrientationAxial(const wchar_t *o) {
  if (!HasThreeLetters(o)) return false;
  const wchar_t u0 = UpperAscii(o[0]), u1 = UpperAscii(o[1]), u2 = UpperAscii(o[2]);
  if (IsOrientationValid(o) && (u2 == L'B' || u2 == L'T')) return true;
  return u2 == L'X' && u0 != L'B' && u0 != L'T' && u1 != L'B' && u1 != L'T';
}

bool IsOrientationRightHanded(const wchar_t *o) {
  if (!HasThreeLetters(o)) return false;
  const int d = PlacesOutOfLine(o);
  if (d == 1) return false;
  int s = 0;
  for (int i = 0; i < 3; ++i)
    if (o[i] == L'L' || o[i] == L'T' || o[i] == L'A') ++s;
  if (d == 2) ++s;
  return s % 2 == 0;
}

bool IsOrientationRightHandedValid(const wchar_t *o) {
  if (!HasThreeLetters(o)) return false;
  return PlacesOutOfLine(o) != 1;
}

unsigned char ORIENTATIE_MET_SPIEGEL(wchar_t *out, const wchar_t *in, unsigned char mirror) {
  std::size_t i = 0;
  do {
    out[i] = in[i];
  } while (in[i++] != 0);
  if (mirror != 0 && out[0] != 0 && out[1] != 0) out[1] = GetOpposite(out[1]);
  return IsOrientationRightHanded(out) ? 1 : 0;
}

bool MAAK_RECHTSHANDIG(wchar_t *o) {
  if (!HasThreeLetters(o)) return false;
  // Completion step.
  for (int i = 0; i < 2; ++i) {
    const wchar_t letter = o[i];
    wchar_t opposite = 0;
    GetOpposite(opposite, o[i]);
    for (int j = 0; j < 3; ++j) {
      if (j == i) continue;
      if (o[j] == letter || o[j] == opposite) o[j] = L'X';
    }
  }
  for (int i = 0; i < 3; ++i)
    if (UpperAscii(o[i]) == L'X') return false;
  if (!IsOrientationValid(o)) return false;
  if (!IsOrientationRightHanded(o)) o[1] = GetOpposite(o[1]);
  return true;
}

void ORIENTATIE_REL(float (*const m)[3], const wchar_t *from, const wchar_t *to) {
  bool rowUsed[3] = {false, false, false};
  bool placeDone[3] = {false, false, false};
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) m[r][c] = 0.0f;

  for (int i = 0; i < 3; ++i) {
    const wchar_t f = from[i];
    const wchar_t o = GetOpposite(f);
    if (f == L'X' || o == L'X') continue;
    int j = 0;
    while (j < 3 && to[j] != f && to[j] != o) ++j;
    if (j == 3) continue;
    rowUsed[j] = true;
    placeDone[i] = true;
    bool fStands = false, oStands = false;
    for (int k = 0; k < 3; ++k) {
      if (to[k] == f) fStands = true;
      if (to[k] == o) oStands = true;
    }
    m[j][i] = fStands ? 1.0f : (oStands ? -1.0f : 0.0f);
  }

  for (int i = 0; i < 3; ++i) {
    if (placeDone[i]) continue;
    int r = 0;
    while (r < 3 && rowUsed[r]) ++r;
    if (r == 3) break;  // cannot happen: each matched place uses at most one row
    rowUsed[r] = true;
    m[r][i] = 1.0f;
  }
}

void ORIENTATIE(float (*const m)[3], float &rx, float &ry, float &rz) {
  const float a = GET_ALIGN_ROTATION(m, 0, 2);
  ROTEER_ENKEL(m, 0, a);
  const float b = GET_ALIGN_ROTATION(m, 1, 2);
  ROTEER_ENKEL(m, 1, b);
  const float c = GET_ALIGN_ROTATION(m, 2, 1);
  ROTEER_ENKEL(m, 2, c);
  rx = -a;
  ry = -b;
  rz = -c;
}

void ROTEER_ENKEL(float *const v, long axis, float degrees) { ROTEER_ENKEL(v, axis, degrees, v); }

void ROTEER_ENKEL(float *const v, long axis, float degrees, float *const out) {
  const long a = (axis + 1) % 3;
  const long b = (axis + 2) % 3;
  float c = 0.0f, s = 0.0f;
  CosSin(degrees * kLegacyDegreesToRadians, c, s);
  const float va = v[a], vb = v[b], vk = v[axis];
  out[a] = va * c - vb * s;
  out[b] = vb * c + va * s;
  out[axis] = vk;
}

void ROTEER_ENKEL(float (*const m)[3], long axis, float degrees) {
  const long a = (axis + 1) % 3;
  const long b = (axis + 2) % 3;
  float c = 0.0f, s = 0.0f;
  CosSin(degrees * kLegacyDegreesToRadians, c, s);
  for (int k = 0; k < 3; ++k) {
    const float ma = m[a][k], mb = m[b][k];
    m[a][k] = ma * c - mb * s;
    m[b][k] = mb * c + ma * s;
  }
}

void ROTEER_3D(float &x, float &y, float &z, float rx, float ry, float rz) {
  float v[3] = {x, y, z};
  ROTEER_ENKEL(v, 2, rz);
  ROTEER_ENKEL(v, 1, ry);
  ROTEER_ENKEL(v, 0, rx);
  x = v[0];
  y = v[1];
  z = v[2];
}

void ROTEER_3D(short &x, short &y, short &z, float rx, float ry, float rz) {
  float fx = x, fy = y, fz = z;
  ROTEER_3D(fx, fy, fz, rx, ry, rz);
  x = RoundHalfAwayFloat<short>(fx);
  y = RoundHalfAwayFloat<short>(fy);
  z = RoundHalfAwayFloat<short>(fz);
}

void ROTEER_3D(long &x, long &y, long &z, float rx, float ry, float rz) {
  float fx = static_cast<float>(x), fy = static_cast<float>(y), fz = static_cast<float>(z);
  ROTEER_3D(fx, fy, fz, rx, ry, rz);
  x = RoundHalfAwayFloat<long>(fx);
  y = RoundHalfAwayFloat<long>(fy);
  z = RoundHalfAwayFloat<long>(fz);
}

void ROTEER_BEELDAS(float &rx, float &ry, float &rz, long axis, float degrees) {
  // Static state, shared by every caller: this function is not re-entrant.
  static float lastInput[3] = {0.0f, 0.0f, 0.0f};
  static long lastAxis = 2;
  static float cache[3] = {0.0f, 0.0f, 0.0f};
  static float m[3][3];

  const long a1 = (axis + 1) % 3;
  const long a2 = (axis + 2) % 3;

  bool unchanged = true;
  if (lastInput[0] != rx) unchanged = false;
  if (lastInput[1] != ry) unchanged = false;
  if (lastInput[2] != rz) unchanged = false;
  lastInput[0] = rx;
  lastInput[1] = ry;
  lastInput[2] = rz;

  if (axis == 2) {
    lastAxis = axis;
    rz += degrees;
    return;
  }

  if (lastAxis != axis || !unchanged) {
    FILL_TRANSFORM(m, 1, 0.0f);
    ROTEER_ENKEL(m, 2, rz);
    ROTEER_ENKEL(m, 1, ry);
    ROTEER_ENKEL(m, 0, rx);
    cache[a1] = GET_ALIGN_ROTATION(m, a1, axis);
    ROTEER_ENKEL(m, a1, cache[a1]);
    cache[a2] = GET_ALIGN_ROTATION(m, a2, axis);
    ROTEER_ENKEL(m, a2, cache[a2]);
    cache[axis] = GET_ALIGN_ROTATION(m, axis, a2);
    ROTEER_ENKEL(m, axis, cache[axis]);
    cache[0] = -cache[0];
    cache[1] = -cache[1];
    cache[2] = -cache[2];
    lastAxis = axis;
  }

  cache[axis] += degrees;

  FILL_TRANSFORM(m, 1, 0.0f);
  ROTEER_ENKEL(m, axis, cache[axis]);
  ROTEER_ENKEL(m, a2, cache[a2]);
  ROTEER_ENKEL(m, a1, cache[a1]);

  rx = -GET_ALIGN_ROTATION(m, 0, 2);
  ROTEER_ENKEL(m, 0, -rx);
  ry = -GET_ALIGN_ROTATION(m, 1, 2);
  ROTEER_ENKEL(m, 1, -ry);
  rz = -GET_ALIGN_ROTATION(m, 2, 1);
  ROTEER_ENKEL(m, 2, -rz);
}

void ROTEER_INVERSE(float &rx, float &ry, float &rz) {
  // Static working storage: this function is not re-entrant.
  static float m[3][3];
  static float angles[3];
  Identity(m);
  ROTEER_ENKEL(m, 2, rz);
  ROTEER_ENKEL(m, 1, ry);
  ROTEER_ENKEL(m, 0, rx);
  angles[2] = GET_ALIGN_ROTATION(m, 2, 0);
  ROTEER_ENKEL(m, 2, angles[2]);
  angles[1] = GET_ALIGN_ROTATION(m, 1, 0);
  ROTEER_ENKEL(m, 1, angles[1]);
  angles[0] = GET_ALIGN_ROTATION(m, 0, 1);
  ROTEER_ENKEL(m, 0, angles[0]);
  rx = angles[0];
  ry = angles[1];
  rz = angles[2];
}

void FILL_TRANSFORM(float (*const m)[3], long axis, float degrees) {
  Identity(m);
  const long a = (axis + 1) % 3;
  const long b = (axis + 2) % 3;
  float c = 0.0f, s = 0.0f;
  CosSin(degrees * kLegacyDegreesToRadians, c, s);
  m[a][a] = c;
  m[b][b] = c;
  m[a][b] = -s;
  m[b][a] = s;
}

void MATRIX_VECTOR(float *const out, const float (*const m)[3], const float *const v) {
  for (int r = 0; r < 3; ++r) out[r] = m[r][0] * v[0] + m[r][1] * v[1] + m[r][2] * v[2];
}

void MATRIX_MATRIX(float (*const out)[3], const float (*const a)[3], const float (*const b)[3]) {
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) out[r][c] = a[r][0] * b[0][c] + a[r][1] * b[1][c] + a[r][2] * b[2][c];
}

float GET_ALIGN_ROTATION(float (*const m)[3], long axis, long target) {
  const long j = (axis + 1) % 3;
  const long k = (axis + 2) % 3;
  return AlignAngle(m[j][target], m[k][target], axis, target);
}

float GET_ALIGN_ROTATION(float *const v, long axis, long target) {
  const long j = (axis + 1) % 3;
  const long k = (axis + 2) % 3;
  return AlignAngle(v[j], v[k], axis, target);
}

void ANGLES_TO_MATRIX(float (*const m)[3], float *const angles) {
  Identity(m);
  ROTEER_ENKEL(m, 2, angles[2]);
  ROTEER_ENKEL(m, 1, angles[1]);
  ROTEER_ENKEL(m, 0, angles[0]);
}

namespace {

// Rotation of a vector copy about `axis` by `degrees`, in float, with the
// radian factor 3.14159265359 / 180.0 taken in double.
void RotateCopy(float *v, unsigned long axis, float degrees) {
  const double radians = degrees * (kAlignPiForDegrees / 180.0);
  const float c = static_cast<float>(std::cos(radians));
  const float s = static_cast<float>(std::sin(radians));
  const unsigned long a = (axis + 1) % 3;
  const unsigned long b = (axis + 2) % 3;
  const float va = v[a], vb = v[b];
  v[a] = va * c - vb * s;
  v[b] = vb * c + va * s;
}

void OtherAxes(unsigned long axis, unsigned long &lower, unsigned long &higher) {
  if (axis == 0) {
    lower = 1;
    higher = 2;
  } else if (axis == 1) {
    lower = 0;
    higher = 2;
  } else {
    lower = 0;
    higher = 1;
  }
}

}  // namespace

void GET_ALIGN_ROTATIONS(float *const angles, const float *const v, unsigned long axis) {
  unsigned long first = 0, second = 0;
  OtherAxes(axis, first, second);
  float copy[3] = {v[0], v[1], v[2]};
  angles[axis] = 0.0f;
  const float a = GET_ALIGN_ROTATION(copy, static_cast<long>(first), static_cast<long>(axis));
  angles[first] = -a;
  if (angles[first] != 0.0f) RotateCopy(copy, first, a);
  const float b = GET_ALIGN_ROTATION(copy, static_cast<long>(second), static_cast<long>(axis));
  angles[second] = -b;
}

void GET_ALIGN_ROTATIONS(float *const angles, unsigned long axis, const float *const v) {
  unsigned long second = 0, first = 0;
  OtherAxes(axis, second, first);  // higher other axis first
  float copy[3] = {v[0], v[1], v[2]};
  angles[axis] = 0.0f;
  const float a = GET_ALIGN_ROTATION(copy, static_cast<long>(first), static_cast<long>(axis));
  angles[first] = a;
  if (angles[first] != 0.0f) RotateCopy(copy, first, a);
  const float b = GET_ALIGN_ROTATION(copy, static_cast<long>(second), static_cast<long>(axis));
  angles[second] = b;
}
