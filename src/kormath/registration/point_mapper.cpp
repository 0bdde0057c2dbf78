#include <kormath/registration/point_mapper.h>

#include <cstdint>
#include <vector>

#include <kormath/linalg/matrix3x3.h>

namespace {

// Cross-covariance of centred pairs: H[i][j] = sum p[i] q[j] with
// p = a - ca, q = b - cb; S = sum (|p| + |q|).
struct Correlation {
  MMatrix3x3 h;
  double spread = 0.0;

  void Add(MMPoint3d<double> const &p, MMPoint3d<double> const &q) {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        h.m[i][j] += p[static_cast<std::size_t>(i)] * q[static_cast<std::size_t>(j)];
      }
    }
    spread += p.Length() + q.Length();
  }

  // Divides H by m * m with m = S / (2 * count).
  void Normalise(double count) {
    const double m = spread / (2.0 * count);
    const double m2 = m * m;
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        h.m[i][j] /= m2;
      }
    }
  }

  bool IsZero() const {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        if (h.m[i][j] != 0.0) {
          return false;
        }
      }
    }
    return true;
  }
};

void WriteRotation(MMOrthoTransform &transform, MMatrix3x3 const &r) {
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      transform.Rotation[i][j] = r.m[i][j];
    }
  }
}

// Translation = target - Rotation * source, with the rotation of `transform`.
void WriteTranslation(MMOrthoTransform &transform, MMPoint3d<double> const &target, MMPoint3d<double> const &source) {
  for (int i = 0; i < 3; ++i) {
    const double rotated =
        transform.Rotation[i][0] * source.x + transform.Rotation[i][1] * source.y + transform.Rotation[i][2] * source.z;
    transform.Translation[i] = target[static_cast<std::size_t>(i)] - rotated;
  }
}

}  // namespace

MBasePointMapper::~MBasePointMapper() = default;

void MBasePointMapper::FindTranslation(MMOrthoTransform &transform,
                                       std::pair<MMPoint3d<double>, MMPoint3d<double>> const &points) {
  WriteTranslation(transform, points.first, points.second);
}

MMapper3DPoints::~MMapper3DPoints() = default;

bool MMapper3DPoints::MapPoints(MMOrthoTransform &transform, MPointPairList const &pairs) {
  const std::size_t n = pairs.size();
  if (n < 3) {
    return false;
  }
  MMPoint3d<double> ca;
  MMPoint3d<double> cb;
  for (auto const &pair : pairs) {
    ca += *pair.first;
    cb += *pair.second;
  }
  const double count = static_cast<double>(n);
  ca /= count;
  cb /= count;

  Correlation corr;
  for (auto const &pair : pairs) {
    corr.Add(*pair.first - ca, *pair.second - cb);
  }
  corr.Normalise(count);

  MMatrix3x3 rotation;
  if (!corr.h.NearestOrthonormal(rotation)) {
    return false;
  }
  WriteRotation(transform, rotation);
  WriteTranslation(transform, ca, cb);
  return true;
}

bool MMapper3dSegments::MapSegments(MMOrthoTransform &transform, MSegmentPairList const &pairs) {
  if (pairs.empty()) {
    return false;
  }
  std::vector<std::pair<MMPoint3d<double>, MMPoint3d<double>>> flat;
  flat.reserve(pairs.size() * 2);
  for (auto const &segments : pairs) {
    flat.emplace_back(segments.first.first, segments.second.first);
    flat.emplace_back(segments.first.second, segments.second.second);
  }
  const std::uint32_t count = static_cast<std::uint32_t>(flat.size());
  MMPoint3d<double> ca;
  MMPoint3d<double> cb;
  for (auto const &pair : flat) {
    ca += pair.first;
    cb += pair.second;
  }
  ca /= static_cast<double>(count);
  cb /= static_cast<double>(count);

  Correlation corr;
  for (auto const &pair : flat) {
    corr.Add(pair.first - ca, pair.second - cb);
  }

  bool result = true;
  MMatrix3x3 rotation = MMatrix3x3::Identity();
  if (!corr.IsZero()) {
    corr.Normalise(static_cast<double>(count));
    MMatrix3x3 polar;
    if (corr.h.NearestOrthonormal(polar)) {
      rotation = polar;
    } else {
      result = false;
    }
  }
  WriteRotation(transform, rotation);
  WriteTranslation(transform, ca, cb);
  return result;
}
