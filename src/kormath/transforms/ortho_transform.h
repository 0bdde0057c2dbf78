#ifndef KORMATH_TRANSFORMS_ORTHO_TRANSFORM_H
#define KORMATH_TRANSFORMS_ORTHO_TRANSFORM_H

// A light rigid motion: a 3x3 rotation and a translation, p' = R p + t. It
// has no inverse and no class and is not an MMTransform;
// MMTransformMatrix::Make turns it into a classified matrix.

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>

class KORMATH_API MMOrthoTransform {
 public:
  double Rotation[3][3];
  double Translation[3];

  // Identity rotation, zero translation.
  MMOrthoTransform();
  MMOrthoTransform(const MMOrthoTransform &) = default;
  MMOrthoTransform &operator=(const MMOrthoTransform &) = default;

  virtual void Copy(const MMOrthoTransform &other);
  // Twelve numbers as three rows of four: rotation row, then translation.
  virtual void Copy(const double *matrix12);
  virtual ~MMOrthoTransform();

  // The three points are rows (MMTransformMatrix::MakeTransformation takes
  // columns). Nothing is verified.
  void MakeTransformation(MMPoint3d<double> translation, MMPoint3d<double> row0, MMPoint3d<double> row1,
                          MMPoint3d<double> row2);
  // Rodrigues rotation by `radians` about `axis` through `center`. With
  // normaliseAxis an axis shorter than kDoubleSqrtEpsilon changes nothing;
  // without it the axis is taken as a unit vector as given.
  void MakeRotation(const MMPoint3d<double> &center, const MMPoint3d<double> &axis, const double &radians,
                    const bool &normaliseAxis);
  void SetTranslation(MMPoint3d<double> translation);
  // This becomes `other` applied after this.
  void Concatenate(const MMOrthoTransform &other);
  // Rows only, in order: |r0|^2 - 1, r0.r1, r0.r2, |r1|^2 - 1, r1.r2,
  // |r2|^2 - 1, each within 1.1102230246251565e-12 (equal passes). The
  // determinant sign and the translation are not tested.
  bool Verify() const;

  // p' = Rotation p + Translation (or without the translation for a vector).
  MMPoint3d<double> Map(const MMPoint3d<double> &p, bool isVector = false) const;
};

#endif  // KORMATH_TRANSFORMS_ORTHO_TRANSFORM_H
