#ifndef KORMATH_EXAMPLES_REGISTRATION_SVG_PLOT_H
#define KORMATH_EXAMPLES_REGISTRATION_SVG_PLOT_H

// A convergence plot: RMS residue per iteration, one line per pair, on a
// logarithmic axis.

#include <string>
#include <vector>

namespace reg {

struct PlotSeries {
  std::string label;
  std::vector<double> values;  // one per iteration, from iteration 1
};

// Writes the plot; false when the file cannot be written.
bool WriteConvergenceSvg(std::string const &path, std::vector<PlotSeries> const &series);

}  // namespace reg

#endif  // KORMATH_EXAMPLES_REGISTRATION_SVG_PLOT_H
