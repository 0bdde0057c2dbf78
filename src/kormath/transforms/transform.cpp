#include <kormath/transforms/transform.h>

MMTransform::~MMTransform() = default;

namespace {
// Largest finite float, the start of the running minima and maxima of a box.
constexpr float kLargestFloat = 3.4028234663852886e+38f;
}  // namespace

bool MMTransform::ConvertDouble16(double *matrix16) const {
  // Zeroed, so that a transform without a matrix form (which writes nothing
  // and returns false) hands back defined values.
  float local[16] = {};
  const bool ok = ConvertFloat16(local);
  for (int i = 0; i < 16; ++i) matrix16[i] = local[i];
  return ok;
}

bool MMTransform::Transform(std::vector<MMPoint3d<double>> &out, const std::vector<MMPoint3d<double>> &in) const {
  out.clear();
  out.resize(in.size());
  for (std::size_t i = 0; i < in.size(); ++i) {
    if (!_Transform(out[i], in[i], false)) return false;
  }
  return true;
}

bool MMTransform::Transform(std::vector<MMPoint3d<double>> &points) const {
  for (auto &p : points) _Transform(p, p, false);
  return true;
}

MMPoint3d<float> MMTransform::operator()(const MMPoint3d<float> &in, bool isVector) {
  MMPoint3d<double> result;
  if (!_Transform(result, MMPoint3d<double>(in.x, in.y, in.z), isVector)) throw MMTransformException(4);
  return MMPoint3d<float>(static_cast<float>(result.x), static_cast<float>(result.y), static_cast<float>(result.z));
}

MMPoint3d<double> MMTransform::operator()(const MMPoint3d<double> &in, bool isVector) {
  MMPoint3d<double> result;
  if (!_Transform(result, in, isVector)) throw MMTransformException(4);
  return result;
}

bool MMTransform::TransformPolyline(std::vector<MMPoint3d<double>> &out,
                                    const std::vector<MMPoint3d<double>> &in) const {
  return Transform(out, in);
}

bool MMTransform::TransformTriangle(std::vector<MMPoint3d<double>> *const out,
                                    const MMPoint3d<double> *const in) const {
  for (int i = 0; i < 3; ++i) out[i].clear();
  MMPoint3d<double> images[3];
  bool ok = true;
  for (int i = 0; i < 3 && ok; ++i) ok = _Transform(images[i], in[i], false);
  for (int i = 0; i < 3; ++i) out[i].push_back(images[i]);
  return ok;
}

// Shared bodies of the pointer forms: copy in, map into a zeroed local point,
// copy out whatever the result.
bool MMTransform::_MapDouble(bool inverse, double *out, const double *in, bool isVector) const {
  const MMPoint3d<double> src(in[0], in[1], in[2]);
  MMPoint3d<double> dst;
  const bool ok = inverse ? _InverseTransform(dst, src, isVector) : _Transform(dst, src, isVector);
  out[0] = dst.x;
  out[1] = dst.y;
  out[2] = dst.z;
  return ok;
}

bool MMTransform::_MapFloat(bool inverse, float *out, const float *in, bool isVector) const {
  const MMPoint3d<double> src(in[0], in[1], in[2]);
  MMPoint3d<double> dst;
  const bool ok = inverse ? _InverseTransform(dst, src, isVector) : _Transform(dst, src, isVector);
  out[0] = static_cast<float>(dst.x);
  out[1] = static_cast<float>(dst.y);
  out[2] = static_cast<float>(dst.z);
  return ok;
}

bool MMTransform::Transform(double *const out, const double *const in, bool isVector) const {
  return _MapDouble(false, out, in, isVector);
}
bool MMTransform::Transform(double *const out, double x, double y, double z, bool isVector) const {
  const double in[3] = {x, y, z};
  return _MapDouble(false, out, in, isVector);
}
bool MMTransform::Transform(double &x, double &y, double &z, bool isVector) const {
  double p[3] = {x, y, z};
  const bool ok = _MapDouble(false, p, p, isVector);
  x = p[0];
  y = p[1];
  z = p[2];
  return ok;
}
bool MMTransform::Transform(double *const point, bool isVector) const {
  return _MapDouble(false, point, point, isVector);
}
bool MMTransform::Transform(MMPoint3d<float> &out, const MMPoint3d<float> &in, bool isVector) const {
  return _MapFloat(false, out.data(), in.data(), isVector);
}
bool MMTransform::Transform(float *const out, const float *const in, bool isVector) const {
  return _MapFloat(false, out, in, isVector);
}
bool MMTransform::Transform(float *const out, float x, float y, float z, bool isVector) const {
  const float in[3] = {x, y, z};
  return _MapFloat(false, out, in, isVector);
}
bool MMTransform::Transform(float &x, float &y, float &z, bool isVector) const {
  float p[3] = {x, y, z};
  const bool ok = _MapFloat(false, p, p, isVector);
  x = p[0];
  y = p[1];
  z = p[2];
  return ok;
}
bool MMTransform::Transform(float *const point, bool isVector) const {
  return _MapFloat(false, point, point, isVector);
}

bool MMTransform::InverseTransform(double *const out, const double *const in, bool isVector) const {
  return _MapDouble(true, out, in, isVector);
}
bool MMTransform::InverseTransform(double *const out, double x, double y, double z, bool isVector) const {
  const double in[3] = {x, y, z};
  return _MapDouble(true, out, in, isVector);
}
bool MMTransform::InverseTransform(double &x, double &y, double &z, bool isVector) const {
  double p[3] = {x, y, z};
  const bool ok = _MapDouble(true, p, p, isVector);
  x = p[0];
  y = p[1];
  z = p[2];
  return ok;
}
bool MMTransform::InverseTransform(double *const point, bool isVector) const {
  return _MapDouble(true, point, point, isVector);
}
bool MMTransform::InverseTransform(MMPoint3d<float> &out, const MMPoint3d<float> &in, bool isVector) const {
  return _MapFloat(true, out.data(), in.data(), isVector);
}
bool MMTransform::InverseTransform(float *const out, const float *const in, bool isVector) const {
  return _MapFloat(true, out, in, isVector);
}
bool MMTransform::InverseTransform(float *const out, float x, float y, float z, bool isVector) const {
  const float in[3] = {x, y, z};
  return _MapFloat(true, out, in, isVector);
}
bool MMTransform::InverseTransform(float &x, float &y, float &z, bool isVector) const {
  float p[3] = {x, y, z};
  const bool ok = _MapFloat(true, p, p, isVector);
  x = p[0];
  y = p[1];
  z = p[2];
  return ok;
}
bool MMTransform::InverseTransform(float *const point, bool isVector) const {
  return _MapFloat(true, point, point, isVector);
}

bool MMTransform::TransformBoundingBox(M3DBoundingBox<float> &box) const {
  return TransformBoundingBox(box.xMin, box.xMax, box.yMin, box.yMax, box.zMin, box.zMax, box.xMin, box.xMax, box.yMin,
                              box.yMax, box.zMin, box.zMax);
}

bool MMTransform::TransformBoundingBox(float &xMin, float &xMax, float &yMin, float &yMax, float &zMin, float &zMax,
                                       float x0, float x1, float y0, float y1, float z0, float z1) const {
  const float corners[8][3] = {{x0, y0, z0}, {x1, y0, z0}, {x0, y1, z0}, {x1, y1, z0},
                               {x0, y0, z1}, {x1, y0, z1}, {x0, y1, z1}, {x1, y1, z1}};
  float images[8][3];
  for (int i = 0; i < 8; ++i) {
    if (!Transform(images[i], corners[i], false)) return false;
  }
  xMin = yMin = zMin = kLargestFloat;
  xMax = yMax = zMax = -kLargestFloat;
  for (const auto &p : images) {
    if (p[0] < xMin) xMin = p[0];
    if (p[0] > xMax) xMax = p[0];
    if (p[1] < yMin) yMin = p[1];
    if (p[1] > yMax) yMax = p[1];
    if (p[2] < zMin) zMin = p[2];
    if (p[2] > zMax) zMax = p[2];
  }
  return true;
}
