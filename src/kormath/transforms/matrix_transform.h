#ifndef KORMATH_TRANSFORMS_MATRIX_TRANSFORM_H
#define KORMATH_TRANSFORMS_MATRIX_TRANSFORM_H

// The classified 4x4 matrix transform: the matrix and its inverse side by
// side, with the class of the matrix, which picks a cheap exact inversion
// route and lets identity mappings be skipped.
//
// Matrices are row-major, points are column vectors, the translation is
// column 3: x' = m00 x + m01 y + m02 z + m03. a.PostMultiply(b) maps by b
// first, then by a.
//
// Class, Homogeneous, Inverse and Inversible are not kept up by the element
// store: after SetElement, AccessElement, SetHomogeneous, _SetGeneral or
// ScaleTranslation they stay as they were until the caller calls
// VerifyAndSetClass and ComputeInverse. Every builder (Make..., Do...,
// FillIn..., AddTranslation, Transpose, the multiplications, Invert) leaves
// them matching Matrix. The inverse is never computed lazily.

#include <kormath/export.h>
#include <kormath/transforms/core_types.h>
#include <kormath/transforms/transform.h>

class MMOrthoTransform;

// The plain data of a matrix transform.
class KORMATH_API MMTransformMatrixData {
 public:
  // The class of a matrix; a 32-bit enumeration.
  enum MMTransformClass : std::int32_t {
    Identity = 0,
    Translation = 1,
    General = 2,
    OrthoNormal = 3,
    OrthoGonal = 4,
    Scale1D = 5,
    Scale3D = 6
  };

  double Matrix[4][4];
  double Inverse[4][4];
  bool Homogeneous;
  bool Inversible;
  MMTransformClass Class;
};

using MMTransformClass = MMTransformMatrixData::MMTransformClass;

class KORMATH_API MMTransformMatrix : public MMTransform, public MMTransformMatrixData {
 protected:
  // Identity is tested first and copies the input (also for a vector). A
  // homogeneous matrix divides by w, also in vector mode, where w leaves out
  // the (3,3) term; w exactly 0.0 throws MMTransformException(0).
  bool _Transform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const override;
  // false, with `out` untouched, when Inversible is false; otherwise as
  // _Transform on Inverse with the same Homogeneous flag.
  bool _InverseTransform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const override;

 public:
  // The identity, in Matrix and Inverse; Inversible true, class Identity.
  MMTransformMatrix();
  // Copies every field; nothing is re-evaluated.
  MMTransformMatrix(const MMTransformMatrix &other);
  MMTransformMatrix &operator=(const MMTransformMatrix &other);
  ~MMTransformMatrix() override;

  MMTransformMatrix *Clone() const override;
  // The 16 elements of Matrix in row order, narrowed to float; true.
  bool ConvertFloat16(float *matrix16) const override;
  // Exchanges Matrix and Inverse; false, with nothing changed, when
  // Inversible is false. Class and Homogeneous stay (a General matrix whose
  // inverse is simpler stays General).
  bool Invert() override;
  bool IsIdentity() const override;
  // The vector forms give the results of the element-wise mapping; a
  // non-homogeneous matrix maps them in one tight loop.
  using MMTransform::Transform;
  bool Transform(std::vector<MMPoint3d<double>> &out, const std::vector<MMPoint3d<double>> &in) const override;
  bool Transform(std::vector<MMPoint3d<double>> &points) const override;

  // New virtual operations.
  // Recomputes Inverse by the route of Class; returns and stores Inversible.
  virtual bool ComputeInverse();
  // The 16 elements of Matrix in row order, in full precision; true.
  virtual bool ConvertToDouble16(double *matrix16) const;
  // Transposes all of Matrix, then VerifyAndSetClass and ComputeInverse.
  virtual void Transpose();

 protected:
  virtual bool _ComputeInverse();
  // Gauss-Jordan with partial pivoting (topmost row wins ties); false on an
  // exactly zero pivot, Inverse then keeps its old content.
  virtual bool _ComputeInverseGeneral();
  virtual bool _ComputeInverseIdentity();
  // Exact identity block and the negated translation; the small deviations
  // that the Translation class tolerates are dropped.
  virtual bool _ComputeInverseTranslation();
  virtual bool _ComputeInverseOrthoNormal();
  // Transposed block over the squared length of column 0; the translation is
  // not divided (the class has none). false when that length is exactly 0.
  virtual bool _ComputeInverseOrthoGonal();
  // Diagonal 1/s and (3,3) = 1. Column 3 and row 3 of Inverse are kept as
  // they stood, on purpose: a stale translation there survives. false when s
  // is exactly 0.0.
  virtual bool _ComputeInverseScale1D();
  // Walks all 16 elements: diagonal 1/d, all else 0, then (3,3) = 1. On an
  // exactly zero diagonal element returns false with the elements before it
  // already written.
  virtual bool _ComputeInverseScale3D();

 public:
  void Copy(const MMTransformMatrix &other);

  // Class membership.
  bool IsTranslation() const;  // Identity or Translation
  bool IsOrthoNormal() const;  // Identity, Translation or OrthoNormal
  bool IsOrthoGonal() const;   // also OrthoGonal and Scale1D
  bool IsScale1D() const;      // Identity or Scale1D
  bool IsScale3D() const;      // Identity, Scale1D or Scale3D
  bool IsHomogeneous() const { return Homogeneous; }
  // Overwritten by the next VerifyAndSetClass.
  void SetHomogeneous(bool homogeneous) { Homogeneous = homogeneous; }
  bool IsInversible() const { return Inversible; }
  MMTransformClass GetClass() const { return Class; }

  // Element access; no index check, nothing re-evaluated.
  double GetElement(unsigned short row, unsigned short column, bool inverse = false) const;
  void SetElement(unsigned short row, unsigned short column, double value, bool inverse = false);
  double &AccessElement(unsigned short row, unsigned short column, bool inverse = false);

  // Column 3, rows 0 to 2 (float forms narrow).
  template <class T>
  void GetTranslation(MMPoint3d<T> &t) const {
    GetTranslation(t.data());
  }
  template <class T>
  void GetTranslation(T *t) const {
    for (int r = 0; r < 3; ++r) t[r] = static_cast<T>(Matrix[r][3]);
  }
  // Rows 0 to 2 of a column.
  template <class T>
  void GetColumn(MMPoint3d<T> &c, unsigned short column) const {
    for (int r = 0; r < 3; ++r) c[r] = static_cast<T>(Matrix[r][column]);
  }
  // Columns 0 to 2 of a row.
  template <class T>
  void GetRow(MMPoint3d<T> &c, unsigned short row) const {
    for (int k = 0; k < 3; ++k) c[k] = static_cast<T>(Matrix[row][k]);
  }

  // One row of Matrix (or Inverse): the dot product plus the translation
  // element unless isVector. No homogeneous divide; the inverse forms do not
  // test Inversible.
  double TransformX(double x, double y, double z, bool isVector = false) const;
  double TransformY(double x, double y, double z, bool isVector = false) const;
  double TransformZ(double x, double y, double z, bool isVector = false) const;
  double InverseTransformX(double x, double y, double z, bool isVector = false) const;
  double InverseTransformY(double x, double y, double z, bool isVector = false) const;
  double InverseTransformZ(double x, double y, double z, bool isVector = false) const;

  // Element (0,0) of an Identity or Scale1D matrix; throws
  // MMTransformException(5) for any other class.
  double GetScale() const;

  // Matrix = Matrix * m.Matrix, Inverse = m.Inverse * Inverse (m applied
  // first), then VerifyAndSetClass. Inversible is left as it is, on purpose:
  // a factor without an inverse multiplies its stale Inverse in.
  MMTransformMatrix &PostMultiply(const MMTransformMatrix &m);
  MMTransformMatrix &operator*=(const MMTransformMatrix &m);
  // The mirror image: m applied after this one. Always verifies.
  MMTransformMatrix &PreMultiply(const MMTransformMatrix &m);

  // Re-derives Homogeneous and Class from Matrix. Class tests, strict, in
  // this order: Identity (exact), Translation (columns 0-2 and (3,3) within
  // kDoubleEpsilonX10), Scale1D (exact), Scale3D (exact), OrthoNormal
  // (column lengths and row dot products within kDoubleEpsilonX10,
  // translation free), OrthoGonal (within kDoubleEpsilon, no translation);
  // otherwise General. The column/row asymmetry of the last two tests and
  // the translation admitted by OrthoNormal only are kept on purpose.
  void VerifyAndSetClass();

  // ---- Builders. Unless said otherwise each ends with VerifyAndSetClass and
  // Inversible = _ComputeInverse(), and reports true whether or not the
  // matrix has an inverse.
  bool MakeIdentity();
  // Axes as columns 0, 1, 2, the translation as column 3.
  bool MakeTransformation(const MMPoint3d<double> &translation, const MMPoint3d<double> &xAxis,
                          const MMPoint3d<double> &yAxis, const MMPoint3d<double> &zAxis);
  bool MakeTranslation(const MMPoint3d<double> &translation);
  bool MakeScale1D(double s);
  bool MakeScale3D(const double &x, const double &y, const double &z);
  bool MakeScale3D(const MMPoint3d<double> &scale);
  void MakeFromDouble16(const double *matrix16);
  void MakeFromFloat16(const float *matrix16);
  // Rows 0 to 2; last row (0, 0, 0, 1).
  void MakeFromDouble12(const double *matrix12);
  void MakeFromFloat12(const float *matrix12);
  // MakeIdentity, the nine floats of each into the upper blocks of Matrix
  // and Inverse, then VerifyAndSetClass; the inverse is taken as given.
  void FillIn3x3(float (*const rotation)[3], float (*const inverse)[3]);
  // Zeroes the translation of Matrix and Inverse, then AddTranslation.
  void FillInTranslation(const MMPoint3d<double> &translation);
  void FillInTranslation(const double *translation);
  void FillInTranslation(const MMPoint3d<float> &translation);
  void FillInTranslation(const float *translation);
  // Pre-multiplies by a translation: applied after the present transform.
  void AddTranslation(const MMPoint3d<double> &translation);
  void AddTranslation(const double *translation);
  void AddTranslation(const MMPoint3d<float> &translation);
  void AddTranslation(const float *translation);
  // AddTranslation of the translation of `ortho`, each component rounded to
  // float precision on purpose, then the upper block from its rotation and
  // last row (0,0,0,1). On a matrix not at identity the old translation
  // stays in the sum.
  void Make(const MMOrthoTransform &ortho);
  // Multiplies the translation of Matrix and of Inverse by s; nothing is
  // re-evaluated (a translation scaled to zero keeps its class). The scaled
  // inverse is right only when the block is a rotation.
  void ScaleTranslation(double s);
  // The three normalised axes of a frame as columns 0, 1, 2 and its origin
  // as column 3.
  template <class T>
  void MakeFromFrame(const MFrame<T> &frame) {
    const MMPoint3d<double> o(frame.origin.x, frame.origin.y, frame.origin.z);
    MakeTransformation(o, frame.GetAxisDirection(1), frame.GetAxisDirection(2), frame.GetAxisDirection(3));
  }

  // Rotations. Degrees in the Do/Make...XYZ/ZYX forms and the readers,
  // radians in MakeRotation(center, axis, radians).
  // Rotates about z, then y, then x, on the present matrix.
  bool DoRotationZYX(double rx, double ry, double rz);
  // Rotates about x, then y, then z, on the present matrix.
  bool DoRotationXYZ(double rx, double ry, double rz);
  bool MakeRotationZYX(double rx, double ry, double rz);
  bool MakeRotationXYZ(double rx, double ry, double rz);
  bool MakeRotationZYX(const MMPoint3d<double> &center, double rx, double ry, double rz);
  bool MakeRotationXYZ(const MMPoint3d<double> &center, double rx, double ry, double rz);
  // Rodrigues rotation into the upper block only (column 3 and the last row
  // are not written: meant for a matrix at identity), then the rotation
  // centre. false, matrix untouched, for an axis shorter than
  // kDoubleSqrtEpsilon.
  bool MakeRotation(const MMPoint3d<double> &center, const MMPoint3d<double> &axis, double radians);
  // Extracts the rotation of a matrix that may hold scale: each row divided
  // by its length rounded to float precision, the matching column of the
  // inverse multiplied by it. No zero-row test, no re-verification: Class
  // and the translation column of Inverse stay those of `source`, on purpose.
  bool MakeRotation(const MMTransformMatrix &source);
  // Rotation about the common normal taking direction `from` onto `to`, by
  // outer products; opposite directions give a half turn, equal ones the
  // identity block. `center` stays fixed.
  bool MakeRotationInPlane(MMPoint3d<double> from, MMPoint3d<double> to, const MMPoint3d<double> &center);
  // Makes `center` a fixed point by adjusting the translation; false, with
  // nothing changed, if mapping the centre fails.
  bool SetRotationCenter(const MMPoint3d<double> &center);
  // Rotation taking point - origin onto the axis, then translation by origin.
  bool MakeNewXAxis(const MMPoint3d<double> &origin, const MMPoint3d<double> &point);
  bool MakeNewYAxis(const MMPoint3d<double> &origin, const MMPoint3d<double> &point);
  bool MakeNewZAxis(const MMPoint3d<double> &origin, const MMPoint3d<double> &point);

  // Projections; false, matrix untouched, when a pair of bounds is equal.
  // Orthographic: near maps to z = +1 and far to -1.
  bool MakeOrthoGraphicProjection(double left, double right, double bottom, double top, double near, double far);
  bool MakePerspectiveProjection(double left, double right, double bottom, double top, double near, double far,
                                 double eye);

  // Angles in degrees, read back geometrically from the columns of a
  // rotation matrix; no gimbal-lock special case.
  bool GetRotationXYZ(double &rx, double &ry, double &rz) const;
  bool GetRotationZYX(double &rx, double &ry, double &rz) const;
  // Determinant of the upper 3x3 block only.
  double Determinant() const;
  // Element (2,2) greater than 0.0.
  bool Keeps2DOrientation() const;
  // Repairs the upper block into an orthonormal one in place; false when a
  // column is shorter than kDoubleSqrtEpsilon (earlier columns stay
  // normalised). Only the row 0/row 1 and row 1/row 2 products are tested
  // before rebuilding column 2 (row 0/row 2 is not, on purpose); Class is
  // not re-verified.
  bool MakeOrthoNormal();

 protected:
  // Matrix * m and m.Inverse * Inverse through temporaries; verifies unless
  // skipVerify.
  void _Multiply(const MMTransformMatrix &m, bool skipVerify);
  // All 16 elements of Matrix within kDoubleSqrtEpsilonX100 (strict).
  bool _Equal(const MMTransformMatrix &other) const;

  static void _InvertPivot(double (*array)[8], int k);
  static void _InvertSwapRows(double (*array)[8], int a, int b);
  // Throws MMTransformException(3) on an exactly zero pivot.
  static void _InvertDivideRowToOne(double (*array)[8], int k);
  static void _InvertSubtractRowFromRow(double (*array)[8], int k, int r);

  friend bool operator==(const MMTransform &a, const MMTransform &b);

 private:
  void _SetGeneral() { Class = General; }
  void _VerifyAndSetHomogeneous();
  bool _VerifyAndSetIdentity();
  bool _VerifyAndSetTranslation();
  bool _VerifyAndSetScale1D();
  bool _VerifyAndSetScale3D();
  bool _VerifyAndSetOrthoNormal();
  bool _VerifyAndSetOrthoGonal();
  void _Rotate(unsigned short axis, double degrees);
  bool _MakeNewAxis(const MMPoint3d<double> &axis, const MMPoint3d<double> &origin, const MMPoint3d<double> &point);
  void _StandardFinish();
  bool _Map(const double (&m)[4][4], MMPoint3d<double> &out, const MMPoint3d<double> &in, bool isVector) const;
};

#endif  // KORMATH_TRANSFORMS_MATRIX_TRANSFORM_H
