#ifndef KORMATH_LINALG_HISTOGRAM_H
#define KORMATH_LINALG_HISTOGRAM_H

// Weighted values collected into intervals, with the total weight and the
// weighted average of the values per interval; and the number of decimal
// places a float needs.

#include <kormath/export.h>

#include <cstddef>
#include <vector>

// N ascending bounds make N+1 intervals. A plain value type; copies and moves
// are member-wise (a moved-from histogram has empty vectors). No index is
// checked, and AddValue needs a prior SetIntervals.
class KORMATH_API MHistogram {
 public:
  std::vector<double> bounds;    // N ascending bounds, as given
  std::vector<double> weights;   // N+1 total weights
  std::vector<double> averages;  // N+1 weighted averages
  double totalWeight;
  double minValue;  // 1.7976931348623157e+308 when empty
  double maxValue;  // -1.7976931348623157e+308 when empty

  // No bounds, no intervals, cleared.
  MHistogram();

  // `count` equally spaced bounds from min to max (only min for count 1),
  // then ClearValues.
  void SetIntervals(double min, double max, std::size_t count);
  // Takes the bounds as they are (they must be ascending), then ClearValues.
  void SetIntervals(const std::vector<double> &bounds);

  // A weight <= 0 is ignored entirely. Otherwise the value goes to interval
  // p + 1, p the first bound with value <= bound, or to interval 0 when it
  // lies above all bounds: weights[0] collects the overflow above the last
  // bound and weights[1] everything up to and including bounds[0].
  void AddValue(double value, double weight);
  // Zeroes weights, averages and the total; min and max back to empty. The
  // bounds stay.
  void ClearValues();

  // N+1 once intervals are set; 0 for a new histogram, which has none.
  std::size_t GetIntervalsCount() const;
  // Deliberately not the numbering of AddValue: index 0 is reported as the
  // open interval below bounds[0] and index N as the one above bounds[N-1];
  // open ends are -/+1.7976931348623157e+308.
  void GetIntervalBounds(std::size_t index, double &low, double &high) const;
  double GetAverageValue(std::size_t index) const;
  double GetWeight(std::size_t index) const;
  // weights[index] / totalWeight (a fraction, not divided by the width); 0.0
  // unless totalWeight > 0.
  double GetDensity(std::size_t index) const;
  // Cumulative weight of intervals 0..index over the total; 0.0 unless
  // totalWeight > 0.
  double GetDistribution(std::size_t index) const;
  double GetMinValue() const;
  double GetMaxValue() const;
  double GetTotalWeight() const;
  // Weighted mean of the interval averages; 0.0 unless totalWeight > 0.
  double GetAverageValue() const;
  // Spread of the interval averages around the mean, weighted; spread inside
  // an interval does not count. Without positive total weight, the root of
  // the plain sum. The name is spelled so on purpose.
  double GetStandartDeviation() const;
};

// Decimal places (0 to 6) that the float needs when printed with six
// decimals: trailing zeros after the separator ("," or ".") are dropped.
KORMATH_API int GetFractionalDigits(float value);

#endif  // KORMATH_LINALG_HISTOGRAM_H
