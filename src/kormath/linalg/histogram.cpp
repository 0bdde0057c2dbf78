#include <kormath/linalg/histogram.h>

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr double kLargestDouble = 1.7976931348623157e+308;

}  // namespace

MHistogram::MHistogram() : totalWeight(0.0), minValue(kLargestDouble), maxValue(-kLargestDouble) {}

void MHistogram::SetIntervals(double min, double max, std::size_t count) {
  bounds.resize(count);
  const double step = count > 1 ? (max - min) / static_cast<double>(count - 1) : 0.0;
  for (std::size_t i = 0; i < count; ++i) bounds[i] = static_cast<double>(i) * step + min;
  averages.resize(count + 1);
  weights.resize(count + 1);
  ClearValues();
}

void MHistogram::SetIntervals(const std::vector<double> &newBounds) {
  bounds = newBounds;
  averages.resize(bounds.size() + 1);
  weights.resize(bounds.size() + 1);
  ClearValues();
}

void MHistogram::AddValue(double value, double weight) {
  if (weight <= 0.0) return;
  std::size_t low = 0;
  std::size_t high = bounds.size();
  while (low < high) {
    const std::size_t mid = (low + high) / 2;
    if (value > bounds[mid]) {
      low = mid + 1;
    } else {
      high = mid;
    }
  }
  const std::size_t i = low < bounds.size() ? low + 1 : 0;
  averages[i] = (weights[i] * averages[i] + value * weight) / (weights[i] + weight);
  weights[i] += weight;
  totalWeight += weight;
  if (value < minValue) minValue = value;
  if (value > maxValue) maxValue = value;
}

void MHistogram::ClearValues() {
  for (double &w : weights) w = 0.0;
  for (double &a : averages) a = 0.0;
  totalWeight = 0.0;
  minValue = kLargestDouble;
  maxValue = -kLargestDouble;
}

std::size_t MHistogram::GetIntervalsCount() const { return weights.size(); }

void MHistogram::GetIntervalBounds(std::size_t index, double &low, double &high) const {
  const std::size_t n = bounds.size();
  low = (index == 0 || index > n) ? -kLargestDouble : bounds[index - 1];
  high = index >= n ? kLargestDouble : bounds[index];
}

double MHistogram::GetAverageValue(std::size_t index) const { return averages[index]; }
double MHistogram::GetWeight(std::size_t index) const { return weights[index]; }

double MHistogram::GetDensity(std::size_t index) const {
  if (!(totalWeight > 0.0)) return 0.0;
  return weights[index] / totalWeight;
}

double MHistogram::GetDistribution(std::size_t index) const {
  if (!(totalWeight > 0.0)) return 0.0;
  double sum = 0.0;
  for (std::size_t i = 0; i <= index; ++i) sum += weights[i];
  return sum / totalWeight;
}

double MHistogram::GetMinValue() const { return minValue; }
double MHistogram::GetMaxValue() const { return maxValue; }
double MHistogram::GetTotalWeight() const { return totalWeight; }

double MHistogram::GetAverageValue() const {
  if (!(totalWeight > 0.0)) return 0.0;
  double sum = 0.0;
  for (std::size_t i = 0; i < weights.size(); ++i) sum += averages[i] * weights[i];
  return sum / totalWeight;
}

double MHistogram::GetStandartDeviation() const {
  const double mean = GetAverageValue();
  double s = 0.0;
  for (std::size_t i = 0; i < weights.size(); ++i) {
    const double d = averages[i] - mean;
    s += d * d * weights[i];
  }
  if (totalWeight > 0.0) return std::sqrt(s / totalWeight);
  return std::sqrt(s);
}

int GetFractionalDigits(float value) {
  char format[16];
  std::snprintf(format, sizeof format, "%%.%df", 6);
  char text[64];
  std::snprintf(text, sizeof text, format, static_cast<double>(value));
  const int n = static_cast<int>(std::strlen(text));
  int separator = -1;
  for (int i = 0; i < n; ++i) {
    if (text[i] == ',' || text[i] == '.') {
      separator = i;
      break;
    }
  }
  if (separator < 0 || n < 1) return 0;
  int last = n - 1;
  while (last > separator && text[last] == '0') --last;
  return last - separator;
}
