#ifndef KORMATH_TRANSFORMS_TRANSFORM_H
#define KORMATH_TRANSFORMS_TRANSFORM_H

// The abstract coordinate transform and the exception of the transform
// family.
//
// Every point mapping takes a last `isVector` (default false): with true the
// input is a free vector and the translation part is skipped, nothing else
// (a homogeneous matrix still divides by w).

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>

#include <cstdint>
#include <vector>

// The one exception of the transform family, thrown by value. Codes:
// 0 homogeneous w exactly 0.0 while dividing; 3 zero pivot in a general
// inversion (caught inside the inversion); 4 a mapping through operator()
// reported failure; 5 GetScale of a matrix that is not identity or uniform
// scale; 6 degenerate line-perspective parameters. 1 and 2 are unused.
class KORMATH_API MMTransformException {
 public:
  explicit MMTransformException(std::int32_t code) : m_code(code) {}
  std::int32_t GetCode() const { return m_code; }

 private:
  std::int32_t m_code;
};

class KORMATH_API MMTransform : public MMTransformAllocator {
 protected:
  // The two mappings every concrete transform implements; everything else is
  // built on them. `out` may be the same object as `in`.
  virtual bool _Transform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const = 0;
  virtual bool _InverseTransform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const = 0;

 public:
  MMTransform() = default;
  MMTransform(const MMTransform &) = default;
  MMTransform &operator=(const MMTransform &) = default;
  virtual ~MMTransform();

  // A new heap copy (from the transform pool), owned by the caller.
  virtual MMTransform *Clone() const = 0;
  // The 4x4 matrix in row order, narrowed to float; false (nothing written)
  // for a transform without a matrix form.
  virtual bool ConvertFloat16(float *matrix16) const = 0;
  // ConvertFloat16 widened back to double: every element is rounded to
  // float precision on purpose. MMTransformMatrix::ConvertToDouble16 gives
  // the full values.
  virtual bool ConvertDouble16(double *matrix16) const;

  // Clears and resizes `out`, then maps element by element as positions. At
  // the first failure the rest stay zero and the result is false.
  virtual bool Transform(std::vector<MMPoint3d<double>> &out, const std::vector<MMPoint3d<double>> &in) const;
  // Maps every element in place; single results are ignored, always true.
  virtual bool Transform(std::vector<MMPoint3d<double>> &points) const;
  // Maps from a zeroed result; throws MMTransformException(4) when the
  // mapping reports failure. Not const.
  virtual MMPoint3d<float> operator()(const MMPoint3d<float> &in, bool isVector = false);
  virtual MMPoint3d<double> operator()(const MMPoint3d<double> &in, bool isVector = false);
  // Calls the list form of Transform.
  virtual bool TransformPolyline(std::vector<MMPoint3d<double>> &out, const std::vector<MMPoint3d<double>> &in) const;
  // `in` is three vertices, `out` three vectors; each vector ends with
  // exactly one point (zero for a vertex not reached after a failure).
  virtual bool TransformTriangle(std::vector<MMPoint3d<double>> *const out, const MMPoint3d<double> *const in) const;
  virtual bool Invert() = 0;
  virtual bool IsIdentity() const = 0;

  // Forwarding family. All return the result of the virtual mapping; the
  // pointer and reference forms write their output whatever that result.
  // Float forms widen to double, map in double and narrow the result.
  bool Transform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector = false) const {
    return _Transform(out, in, isVector);
  }
  bool Transform(double *const out, const double *const in, bool isVector = false) const;
  bool Transform(double *const out, double x, double y, double z, bool isVector = false) const;
  bool Transform(double &x, double &y, double &z, bool isVector = false) const;
  bool Transform(double *const point, bool isVector = false) const;
  bool Transform(MMPoint3d<float> &out, const MMPoint3d<float> &in, bool isVector = false) const;
  bool Transform(float *const out, const float *const in, bool isVector = false) const;
  bool Transform(float *const out, float x, float y, float z, bool isVector = false) const;
  bool Transform(float &x, float &y, float &z, bool isVector = false) const;
  bool Transform(float *const point, bool isVector = false) const;

  bool InverseTransform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector = false) const {
    return _InverseTransform(out, in, isVector);
  }
  bool InverseTransform(double *const out, const double *const in, bool isVector = false) const;
  bool InverseTransform(double *const out, double x, double y, double z, bool isVector = false) const;
  bool InverseTransform(double &x, double &y, double &z, bool isVector = false) const;
  bool InverseTransform(double *const point, bool isVector = false) const;
  bool InverseTransform(MMPoint3d<float> &out, const MMPoint3d<float> &in, bool isVector = false) const;
  bool InverseTransform(float *const out, const float *const in, bool isVector = false) const;
  bool InverseTransform(float *const out, float x, float y, float z, bool isVector = false) const;
  bool InverseTransform(float &x, float &y, float &z, bool isVector = false) const;
  bool InverseTransform(float *const point, bool isVector = false) const;

  // Axis-aligned hull of the eight mapped corners. On the first corner that
  // fails the outputs are untouched and the result is false. The outputs may
  // alias the inputs.
  bool TransformBoundingBox(M3DBoundingBox<float> &box) const;
  bool TransformBoundingBox(float &xMin, float &xMax, float &yMin, float &yMax, float &zMin, float &zMax, float x0,
                            float x1, float y0, float y1, float z0, float z1) const;

 private:
  bool _MapDouble(bool inverse, double *out, const double *in, bool isVector) const;
  bool _MapFloat(bool inverse, float *out, const float *in, bool isVector) const;
};

#endif  // KORMATH_TRANSFORMS_TRANSFORM_H
