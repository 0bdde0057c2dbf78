#ifndef KORMATH_TRANSFORMS_IDENTITY_TRANSFORM_H
#define KORMATH_TRANSFORMS_IDENTITY_TRANSFORM_H

// The transform that does nothing. As a class of its own it lets the absence
// of a transform be passed like any other transform.

#include <kormath/export.h>
#include <kormath/transforms/transform.h>

class KORMATH_API MMTransformIdentity : public MMTransform {
 protected:
  // Both mappings copy the input to the output and return true; isVector
  // makes no difference.
  bool _Transform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const override;
  bool _InverseTransform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const override;

 public:
  MMTransformIdentity() = default;
  MMTransformIdentity(const MMTransformIdentity &) = default;
  MMTransformIdentity(MMTransformIdentity &&) noexcept = default;
  MMTransformIdentity &operator=(const MMTransformIdentity &) = default;
  MMTransformIdentity &operator=(MMTransformIdentity &&) noexcept = default;
  ~MMTransformIdentity() override;

  // A new identity from the transform pool, owned by the caller.
  MMTransformIdentity *Clone() const override;
  // Writes the 4x4 identity in row order; true.
  bool ConvertFloat16(float *matrix16) const override;
  // The identity is its own inverse: true, nothing changes.
  bool Invert() override;
  // Always true.
  bool IsIdentity() const override;
};

#endif  // KORMATH_TRANSFORMS_IDENTITY_TRANSFORM_H
