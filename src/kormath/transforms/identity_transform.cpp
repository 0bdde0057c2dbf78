#include <kormath/transforms/identity_transform.h>

bool MMTransformIdentity::_Transform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool) const {
  out = in;
  return true;
}

bool MMTransformIdentity::_InverseTransform(MMPoint3d<double> &out, const MMPoint3d<double> &in, bool) const {
  out = in;
  return true;
}

MMTransformIdentity::~MMTransformIdentity() = default;

MMTransformIdentity *MMTransformIdentity::Clone() const { return new MMTransformIdentity(); }

bool MMTransformIdentity::ConvertFloat16(float *matrix16) const {
  for (int i = 0; i < 16; ++i) matrix16[i] = (i % 5 == 0) ? 1.0f : 0.0f;
  return true;
}

bool MMTransformIdentity::Invert() { return true; }

bool MMTransformIdentity::IsIdentity() const { return true; }
