#ifndef KORMATH_TRANSFORMS_CORE_TYPES_H
#define KORMATH_TRANSFORMS_CORE_TYPES_H

// Plain value types of the whole library: points and vectors, fixed-size
// vectors, bounding boxes, the float frame, the exported numeric constants
// and the allocator base of the transform classes.

#include <kormath/export.h>

#include <cmath>
#include <cstddef>

// Library-wide tolerances. These literals are what the code compares with;
// CMathConst::kEpsilon (1e-15) is only for the host.
constexpr double kDoubleEpsilon = 2.220446049250313e-16;           // 0x3CB0000000000000
constexpr double kDoubleEpsilonX10 = 2.220446049250313e-15;        // 0x3CE4000000000000
constexpr double kDoubleSqrtEpsilon = 1.4901161193847656e-08;      // 0x3E50000000000000
constexpr double kDoubleSqrtEpsilonX100 = 1.4901161193847656e-06;  // 0x3EB9000000000000

// Threshold of the 2D unit step: a 2D vector strictly shorter than this is
// left as it is.
constexpr double kDouble2DUnitThreshold = 3.140185e-16;

// Exported numeric constants. Several are deliberately short decimals:
// kSqrtEpsilon is not the root of kEpsilon, and the two golden-section
// constants add up to 1 only in their eight-digit form.
class KORMATH_API CMathConst {
 public:
  static const double kEpsilon;             // 1e-15
  static const double kSqrtEpsilon;         // 3e-08
  static const double kPi;                  // 3.141592653589793
  static const double kSqrtPi;              // 1.77243850905516
  static const double kGoldenSectionLeft;   // 0.38196601
  static const double kGoldenSectionRight;  // 0.61803399
};

// A fixed-size vector of N elements, stored contiguously.
template <class T, unsigned N>
class MMVector {
 public:
  T v[N];

  T &operator[](std::size_t i) { return v[i]; }
  const T &operator[](std::size_t i) const { return v[i]; }
  T *data() { return v; }
  const T *data() const { return v; }
};

// The three-element form carries the members x, y, z; MMPoint3d derives from
// it, so a point binds to an MMVector<T,3> reference without a copy.
template <class T>
class MMVector<T, 3> {
 public:
  T x;
  T y;
  T z;

  T &operator[](std::size_t i) { return (&x)[i]; }
  const T &operator[](std::size_t i) const { return (&x)[i]; }
  T *data() { return &x; }
  const T *data() const { return &x; }
};

// A point or free vector in 3D: x, y, z contiguous and nothing else, so it is
// interchangeable in memory with T[3]. Default construction gives (0, 0, 0).
// Lengths of the float form are computed in double precision.
template <class T>
class MMPoint3d : public MMVector<T, 3> {
 public:
  using MMVector<T, 3>::x;
  using MMVector<T, 3>::y;
  using MMVector<T, 3>::z;

  MMPoint3d() : MMVector<T, 3>{T(0), T(0), T(0)} {}
  MMPoint3d(T x_, T y_, T z_) : MMVector<T, 3>{x_, y_, z_} {}
  explicit MMPoint3d(const T *p) : MMVector<T, 3>{p[0], p[1], p[2]} {}
  MMPoint3d(const MMVector<T, 3> &v) : MMVector<T, 3>(v) {}  // NOLINT: same memory

  void Set(T x_, T y_, T z_) {
    x = x_;
    y = y_;
    z = z_;
  }

  MMPoint3d operator+(const MMPoint3d &o) const { return MMPoint3d(x + o.x, y + o.y, z + o.z); }
  MMPoint3d operator-(const MMPoint3d &o) const { return MMPoint3d(x - o.x, y - o.y, z - o.z); }
  MMPoint3d operator-() const { return MMPoint3d(-x, -y, -z); }
  MMPoint3d operator*(T s) const { return MMPoint3d(x * s, y * s, z * s); }
  MMPoint3d operator/(T s) const { return MMPoint3d(x / s, y / s, z / s); }
  MMPoint3d &operator+=(const MMPoint3d &o) {
    x += o.x;
    y += o.y;
    z += o.z;
    return *this;
  }
  MMPoint3d &operator-=(const MMPoint3d &o) {
    x -= o.x;
    y -= o.y;
    z -= o.z;
    return *this;
  }
  MMPoint3d &operator*=(T s) {
    x *= s;
    y *= s;
    z *= s;
    return *this;
  }
  MMPoint3d &operator/=(T s) {
    x /= s;
    y /= s;
    z /= s;
    return *this;
  }
  bool operator==(const MMPoint3d &o) const { return x == o.x && y == o.y && z == o.z; }
  bool operator!=(const MMPoint3d &o) const { return !(*this == o); }

  T Dot(const MMPoint3d &o) const { return x * o.x + y * o.y + z * o.z; }
  MMPoint3d Cross(const MMPoint3d &o) const {
    return MMPoint3d(y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x);
  }
  // Squared length and length, in double precision for every T.
  double SquaredLength() const {
    const double dx = x, dy = y, dz = z;
    return dx * dx + dy * dy + dz * dz;
  }
  double Length() const { return std::sqrt(SquaredLength()); }
  double Distance(const MMPoint3d &o) const { return (*this - o).Length(); }

  // Divides by the length. A vector shorter than kDoubleSqrtEpsilon is left
  // as it is and the result is false.
  bool Normalise() {
    const double len = Length();
    if (len < kDoubleSqrtEpsilon) return false;
    x = static_cast<T>(x / len);
    y = static_cast<T>(y / len);
    z = static_cast<T>(z / len);
    return true;
  }

  // Cosine of the angle to another vector: 0 when the root of the product of
  // the squared lengths is below kDoubleSqrtEpsilon, otherwise clamped to
  // [-1, 1].
  double CosineOfAngle(const MMPoint3d &o) const {
    const double d = std::sqrt(SquaredLength() * o.SquaredLength());
    if (d < kDoubleSqrtEpsilon) return 0.0;
    const double dot = double(x) * o.x + double(y) * o.y + double(z) * o.z;
    const double c = dot / d;
    if (c > 1.0) return 1.0;
    if (c < -1.0) return -1.0;
    return c;
  }
};

template <class T>
inline MMPoint3d<T> operator*(T s, const MMPoint3d<T> &p) {
  return p * s;
}

// A point or vector in 2D, x then y. Default construction gives (0, 0).
template <class T>
class MMPoint2d {
 public:
  T x;
  T y;

  MMPoint2d() : x(T(0)), y(T(0)) {}
  MMPoint2d(T x_, T y_) : x(x_), y(y_) {}

  T &operator[](std::size_t i) { return (&x)[i]; }
  const T &operator[](std::size_t i) const { return (&x)[i]; }
  T *data() { return &x; }
  const T *data() const { return &x; }

  MMPoint2d operator+(const MMPoint2d &o) const { return MMPoint2d(x + o.x, y + o.y); }
  MMPoint2d operator-(const MMPoint2d &o) const { return MMPoint2d(x - o.x, y - o.y); }
  MMPoint2d operator-() const { return MMPoint2d(-x, -y); }
  MMPoint2d operator*(T s) const { return MMPoint2d(x * s, y * s); }
  MMPoint2d operator/(T s) const { return MMPoint2d(x / s, y / s); }
  MMPoint2d &operator+=(const MMPoint2d &o) {
    x += o.x;
    y += o.y;
    return *this;
  }
  MMPoint2d &operator-=(const MMPoint2d &o) {
    x -= o.x;
    y -= o.y;
    return *this;
  }
  MMPoint2d &operator*=(T s) {
    x *= s;
    y *= s;
    return *this;
  }
  bool operator==(const MMPoint2d &o) const { return x == o.x && y == o.y; }
  bool operator!=(const MMPoint2d &o) const { return !(*this == o); }

  T Dot(const MMPoint2d &o) const { return x * o.x + y * o.y; }
  // z component of the 3D cross product.
  T Cross(const MMPoint2d &o) const { return x * o.y - y * o.x; }
  double SquaredLength() const {
    const double dx = x, dy = y;
    return dx * dx + dy * dy;
  }
  double Length() const { return std::sqrt(SquaredLength()); }

  // The 2D unit step: a vector strictly shorter than 3.140185e-16 is left as
  // it is and the result is false.
  bool Normalise() {
    const double len = Length();
    if (len < kDouble2DUnitThreshold) return false;
    x = static_cast<T>(x / len);
    y = static_cast<T>(y / len);
    return true;
  }
};

// Axis-aligned box with the interleaved member order xMin, xMax, yMin, yMax,
// zMin, zMax.
template <class T>
class M3DBoundingBox {
 public:
  T xMin = T(0);
  T xMax = T(0);
  T yMin = T(0);
  T yMax = T(0);
  T zMin = T(0);
  T zMax = T(0);

  M3DBoundingBox() = default;
  M3DBoundingBox(T x0, T x1, T y0, T y1, T z0, T z1) : xMin(x0), xMax(x1), yMin(y0), yMax(y1), zMin(z0), zMax(z1) {}
};

// Axis-aligned box of doubles held as the lower corner and the upper corner.
class KORMATH_API MBoundingBox3DDouble {
 public:
  MMPoint3d<double> min;
  MMPoint3d<double> max;

  MBoundingBox3DDouble() = default;
  MBoundingBox3DDouble(const MMPoint3d<double> &lo, const MMPoint3d<double> &hi) : min(lo), max(hi) {}

  // Scales the box by `factor`, about the origin or, with aboutCentre, about
  // the centre of the box.
  void Scale(double factor, bool aboutCentre = false);

  // Decides whether the box, scaled by requestedScale about the origin, fits
  // the host's integer coordinate range |c| <= 619925130.0. Returns false
  // when it already fits (offset (0,0,0), scale = requestedScale). Returns
  // true when an adjustment was computed: either an offset (minus the centre
  // of the unscaled box, rounded half away from zero) when the largest scaled
  // extent is below the limit, or a scale reduced by factors of 1000 (at most
  // 100 times per coordinate). Note the sense: true means "adjust". The box
  // itself is not changed.
  bool FitInLong(MMPoint3d<double> &offset, double &scale, const double &requestedScale) const;
};

// Five triples: a leading triple that the library does not read, the origin
// and three axes. The axes need not be unit vectors.
template <class T>
class MFrame {
 public:
  MMPoint3d<T> leading;
  MMPoint3d<T> origin;
  MMPoint3d<T> axis1;
  MMPoint3d<T> axis2;
  MMPoint3d<T> axis3;

  const MMPoint3d<T> &GetOrigin() const { return origin; }

  // Axis 1, 2 or 3 as a direction, normalised in double precision. An axis
  // shorter than kDoubleSqrtEpsilon comes back as it stands.
  MMPoint3d<double> GetAxisDirection(int axis) const {
    const MMPoint3d<T> &a = axis == 1 ? axis1 : (axis == 2 ? axis2 : axis3);
    MMPoint3d<double> d(a.x, a.y, a.z);
    d.Normalise();
    return d;
  }
};

// Base of every transform: heap instances come from, and return to, the
// process-wide pool g_mmtransforms_kor_memory_allocator.
class MMTransformAllocator {
 public:
  KORMATH_API static void *operator new(std::size_t size);
  KORMATH_API static void operator delete(void *pointer);
};

#endif  // KORMATH_TRANSFORMS_CORE_TYPES_H
