#include <kormath/linalg/diminishing_functions.h>

#include <cmath>

namespace DiminishingFunctions {

namespace {

// Width of the snapping bands at the two bounds and at position 0.
constexpr double kEdge = 1.4901161193847656e-08;
// The float value of pi used by the cosine blend.
constexpr float kFloatPi = 3.1415927f;

enum class Outcome { First, Second, Blend };

Outcome Classify(double position, double lower, double upper, DiminishingType type) {
  if (type == DIMINISHING_NONE) return Outcome::Second;
  if (type != DIMINISHING_LINEAR && type != DIMINISHING_COSINE) return Outcome::First;
  if (position <= lower + kEdge) return Outcome::First;
  if (position >= upper - kEdge) return Outcome::Second;
  if (position < kEdge) return Outcome::Second;  // on the position itself, on purpose
  return Outcome::Blend;
}

struct LinearWeights {
  float t;  // weight of `second`
  float u;  // weight of `first`
};

LinearWeights Linear(double position, double lower, double upper) {
  const float x = static_cast<float>(position);
  const float lo = static_cast<float>(lower);
  const float hi = static_cast<float>(upper);
  const float w = static_cast<float>(upper - lower);
  return {(x - lo) / w, (hi - x) / w};
}

float CosineOfPhase(double position, double lower, double upper) {
  const float x = static_cast<float>(position);
  const float lo = static_cast<float>(lower);
  const float w = static_cast<float>(upper - lower);
  const float a = (x - lo) * kFloatPi / w;
  return std::cos(a);
}

}  // namespace

template <>
double DoDiminishing<double>(double position, double lower, double upper, double const &first, double const &second,
                             DiminishingType type) {
  switch (Classify(position, lower, upper, type)) {
    case Outcome::First:
      return first;
    case Outcome::Second:
      return second;
    case Outcome::Blend:
      break;
  }
  if (type == DIMINISHING_LINEAR) {
    const LinearWeights k = Linear(position, lower, upper);
    return static_cast<double>(k.t) * second + static_cast<double>(k.u) * first;
  }
  const double c = CosineOfPhase(position, lower, upper);
  return ((second - c * (second - first)) + first) * 0.5;
}

template <>
MMPoint3d<float> DoDiminishing<MMPoint3d<float>>(double position, double lower, double upper,
                                                 MMPoint3d<float> const &first, MMPoint3d<float> const &second,
                                                 DiminishingType type) {
  switch (Classify(position, lower, upper, type)) {
    case Outcome::First:
      return first;
    case Outcome::Second:
      return second;
    case Outcome::Blend:
      break;
  }
  MMPoint3d<float> out;
  if (type == DIMINISHING_LINEAR) {
    const LinearWeights k = Linear(position, lower, upper);
    for (int i = 0; i < 3; ++i) out[i] = k.t * second[i] + k.u * first[i];
    return out;
  }
  const float c = CosineOfPhase(position, lower, upper);
  for (int i = 0; i < 3; ++i) {
    const float s = second[i] + (second[i] - first[i]) * (-c);
    out[i] = (first[i] + s) * 0.5f;
  }
  return out;
}

}  // namespace DiminishingFunctions
