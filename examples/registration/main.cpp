// kormath_register: rigid registration of several point sets with the
// KorMath registration kit, the way a planning application drives it.
//
//   kormath_register [--out DIR] [--root K] [FILE...]
//
// FILEs are ASCII XYZ or ASCII PLY point sets, roughly pre-aligned (the
// closest-point iterations refine a placement, they do not search for one).
// Without FILEs the program registers an embedded default: four partial,
// noisy, displaced views of one smooth closed surface, and reports the error
// against their known ground truth. With --out it writes the registered sets
// as PLY and a convergence plot as SVG into DIR.
//
// Bad input (missing or malformed file, too few points, degenerate sets)
// gives a one-line error naming the file and line, exit status 1, and no
// output files.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <kormath/kormath.h>

#include "demo_data.h"
#include "pair_registration.h"
#include "point_io.h"
#include "svg_plot.h"

namespace {

using reg::InputError;
using reg::PointSet;

constexpr std::uint64_t kDemoSeed = 20240917;
constexpr std::size_t kMinimumPoints = 20;
// A set whose points lie within this fraction of its extent from one line is
// degenerate: a rigid fit cannot fix its rotation.
constexpr double kCollinearFraction = 1e-6;

struct Options {
  std::string outDir;
  std::uint64_t root = 0;
  std::vector<std::string> files;
};

struct InputSet {
  std::string name;  // file name or view name
  PointSet points;
};

[[noreturn]] void Fail(std::string const &message) {
  std::fprintf(stderr, "kormath_register: error: %s\n", message.c_str());
  std::exit(1);
}

Options ParseArguments(int argc, char **argv) {
  Options o;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--help" || a == "-h") {
      std::printf("usage: kormath_register [--out DIR] [--root K] [FILE.xyz|FILE.ply ...]\n");
      std::exit(0);
    } else if (a == "--out" && i + 1 < argc) {
      o.outDir = argv[++i];
    } else if (a == "--root" && i + 1 < argc) {
      char *end = nullptr;
      const std::string v = argv[++i];
      const unsigned long long r = std::strtoull(v.c_str(), &end, 10);
      if (v.empty() || *end != '\0') Fail("--root needs a set number, found \"" + v + "\"");
      o.root = r;
    } else if (!a.empty() && a[0] == '-') {
      Fail("unknown option \"" + a + "\" (try --help)");
    } else {
      o.files.push_back(a);
    }
  }
  return o;
}

// Rejects sets with too few points, or whose points are coincident or lie
// on one line.
void CheckSet(InputSet const &set) {
  if (set.points.size() < kMinimumPoints) {
    throw InputError(set.name, 0,
                     "only " + std::to_string(set.points.size()) + " points, at least " +
                         std::to_string(kMinimumPoints) + " are needed");
  }
  MMPoint3d<double> centre;
  for (auto const &p : set.points) centre += p;
  centre /= static_cast<double>(set.points.size());
  MMPoint3d<double> far = centre;
  for (auto const &p : set.points) {
    if ((p - centre).Length() > (far - centre).Length()) far = p;
  }
  const double extent = (far - centre).Length();
  MMPoint3d<double> axis = far - centre;
  double offLine = 0.0;
  if (axis.Normalise()) {
    for (auto const &p : set.points) offLine = std::max(offLine, (p - centre).Cross(axis).Length());
  }
  if (offLine <= kCollinearFraction * extent) {
    throw InputError(set.name, 0, "degenerate point set: all points are coincident or on one line");
  }
}

double RotationAngleDegrees(MMTransformMatrix const &m) {
  const double trace = m.GetElement(0, 0) + m.GetElement(1, 1) + m.GetElement(2, 2);
  return std::acos(std::max(-1.0, std::min(1.0, (trace - 1.0) * 0.5))) * 180.0 / 3.141592653589793;
}

void PrintPlacement(std::string const &name, MMTransformMatrix const &m) {
  std::printf("  %s: rotation %.4f deg, translation (%.4f, %.4f, %.4f)\n", name.c_str(), RotationAngleDegrees(m),
              m.GetElement(0, 3), m.GetElement(1, 3), m.GetElement(2, 3));
  for (unsigned short r = 0; r < 3; ++r) {
    std::printf("    [% .9f % .9f % .9f | % 10.5f]\n", m.GetElement(r, 0), m.GetElement(r, 1), m.GetElement(r, 2),
                m.GetElement(r, 3));
  }
}

std::string FileStem(std::string const &name) { return std::filesystem::path(name).stem().string(); }

// Writes all outputs under temporary names first and renames them at the
// end, so that a failure leaves nothing behind.
void WriteOutputs(std::string const &dir, std::vector<InputSet> const &sets, std::vector<PointSet> const &placed,
                  std::vector<reg::PlotSeries> const &plot) {
  namespace fs = std::filesystem;
  std::error_code ec;
  const bool created = !fs::exists(dir, ec) && fs::create_directories(dir, ec);
  if (!fs::is_directory(dir, ec)) Fail(dir + ": cannot create output folder");
  std::vector<std::pair<std::string, std::string>> files;  // temporary, final
  bool ok = true;
  for (std::size_t k = 0; k < sets.size() && ok; ++k) {
    if (placed[k].empty()) continue;
    const std::string final =
        (fs::path(dir) / ("registered_" + std::to_string(k) + "_" + FileStem(sets[k].name) + ".ply")).string();
    files.emplace_back(final + ".part", final);
    ok = reg::WritePly(files.back().first, placed[k], "registered by kormath_register from " + sets[k].name);
  }
  if (ok) {
    const std::string final = (fs::path(dir) / "convergence.svg").string();
    files.emplace_back(final + ".part", final);
    ok = reg::WriteConvergenceSvg(files.back().first, plot);
  }
  for (auto const &f : files) {
    if (ok) {
      fs::rename(f.first, f.second, ec);
      ok = !ec;
    }
  }
  if (!ok) {
    for (auto const &f : files) {
      fs::remove(f.first, ec);
      fs::remove(f.second, ec);
    }
    if (created) fs::remove(dir, ec);
    Fail(dir + ": cannot write the output files");
  }
  std::printf("\nwrote %zu files to %s\n", files.size(), dir.c_str());
}

}  // namespace

int main(int argc, char **argv) {
  const Options options = ParseArguments(argc, argv);

  // Input: files, or the embedded default with its ground truth.
  std::vector<InputSet> inputs;
  std::vector<MMTransformMatrix> truth;  // demo only: displacement of each view
  try {
    if (options.files.empty()) {
      for (auto &v : reg::MakeDemoViews(kDemoSeed)) {
        inputs.push_back({v.name, v.points});
        truth.push_back(v.displacement);
      }
      std::printf("embedded default: %zu views of a bumpy ellipsoid (seed %llu)\n", inputs.size(),
                  static_cast<unsigned long long>(kDemoSeed));
    } else {
      if (options.files.size() < 2) Fail("need at least two point sets, found " + std::to_string(options.files.size()));
      for (auto const &f : options.files) inputs.push_back({f, reg::ReadPointFile(f)});
    }
    for (auto const &s : inputs) CheckSet(s);
  } catch (InputError const &e) {
    Fail(e.what());
  }
  const std::size_t n = inputs.size();
  if (options.root >= n) Fail("--root " + std::to_string(options.root) + " is not below the number of sets");

  // The sets, their resolutions and locators.
  std::vector<MRegistered3DPoints> sets(n);
  std::vector<double> resolution(n);
  std::vector<std::unique_ptr<MKDTreePointLocator>> locators;
  for (std::size_t k = 0; k < n; ++k) {
    sets[k].GetPoints() = inputs[k].points;
    sets[k].SetName(std::wstring(inputs[k].name.begin(), inputs[k].name.end()));
    resolution[k] = sets[k].EstimateSampleResolution();
    if (!(resolution[k] > 0.0)) Fail(inputs[k].name + ": degenerate point set: no sample spacing (duplicate points?)");
    locators.push_back(std::make_unique<MKDTreePointLocator>());
    locators.back()->BuildLocator(inputs[k].points);
    std::printf("set %zu  %-24s %7zu points, resolution %.4f\n", k, inputs[k].name.c_str(), inputs[k].points.size(),
                resolution[k]);
  }

  // Every pair: align j onto i.
  const reg::PairSettings settings;
  MDataArray2D<MRegistrationCostInfo> costs(n);
  MDataArray2D<MMTransformMatrix> relative(n);
  std::vector<reg::PlotSeries> plot;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) {
      const reg::PairResult r = reg::RegisterPair(*locators[i], resolution[i], sets[j], settings);
      std::printf("\npair %zu <- %zu (%s onto %s)\n  iter  matched  inliers   median res.   RMS\n", i, j,
                  inputs[j].name.c_str(), inputs[i].name.c_str());
      reg::PlotSeries series{std::to_string(i) + " <- " + std::to_string(j), {}};
      for (std::size_t k = 0; k < r.history.size(); ++k) {
        // Long runs: the first ten iterations, every tenth, and the last.
        auto const &h = r.history[k];
        if (k < 10 || h.iteration % 10 == 0 || k + 1 == r.history.size()) {
          std::printf("  %4d  %7zu  %7zu  %12.6f  %10.6f\n", h.iteration, h.matched, h.inliers, h.median, h.rms);
        }
        series.values.push_back(h.rms);
      }
      plot.push_back(series);
      if (r.cost.GetInfiniteCost()) {
        std::printf("  too little overlap: no edge\n");
      } else {
        std::printf("  %s, outliers %llu of %llu, total error %.4f\n", r.converged ? "converged" : "iteration limit",
                    static_cast<unsigned long long>(r.cost.GetNumberOfOutliers()),
                    static_cast<unsigned long long>(r.cost.GetSampleSize()), r.cost.GetTotalError());
      }
      costs(i, j) = r.cost;
      costs(j, i) = r.cost;
      relative(j, i) = r.movingToFixed;  // places j in the frame of i
      MMTransformMatrix inverse(r.movingToFixed);
      inverse.Invert();
      relative(i, j) = inverse;
    }
  }

  // The tree from the root, and one placement per set.
  MRegistered3DPointsTree tree;
  tree.Build(costs, relative, std::vector<MMTransformMatrix>(n), options.root);
  if (tree.GetRoot() == KorMathRegistration::kNoIndex) Fail("no pair of sets overlaps enough to register");
  tree.UpdateWcsTransforms();
  std::printf("\nregistration tree (root %llu)\n", static_cast<unsigned long long>(tree.GetRoot()));
  for (std::size_t k = 0; k < n; ++k) {
    auto const &node = tree.GetNode(k);
    if (k == tree.GetRoot()) continue;
    if (node.index == KorMathRegistration::kNoIndex) {
      Fail(inputs[k].name + ": overlaps no other set enough to be placed");
    }
    std::printf("  %llu -> %zu  outliers %llu, error %.4f\n", static_cast<unsigned long long>(tree.GetParent(k)), k,
                static_cast<unsigned long long>(node.cost.GetNumberOfOutliers()), node.cost.GetTotalError());
  }
  std::printf("\nfinal placements (into the frame of set %llu)\n", static_cast<unsigned long long>(tree.GetRoot()));
  std::vector<PointSet> placed(n);
  for (std::size_t k = 0; k < n; ++k) {
    MMTransformMatrix const &wcs = tree.GetNode(k).wcsTransform;
    PrintPlacement(inputs[k].name, wcs);
    MRegistered3DPoints moved(sets[k]);
    moved.SetTransform(wcs);
    moved.ApplyTransform();
    placed[k] = moved.GetPoints();
  }

  // Ground truth of the default: set k belongs at root_displacement * displacement_k^-1.
  if (!truth.empty()) {
    std::printf("\nagainst the ground truth\n");
    double worstPoint = 0.0, worstAngle = 0.0, sumSquares = 0.0;
    std::size_t count = 0;
    for (std::size_t k = 0; k < n; ++k) {
      MMTransformMatrix expected(truth[k]);
      expected.Invert();
      expected.PreMultiply(truth[tree.GetRoot()]);
      for (std::size_t i = 0; i < inputs[k].points.size(); ++i) {
        MMPoint3d<double> want;
        expected.Transform(want, inputs[k].points[i], false);
        const double e = (placed[k][i] - want).Length();
        worstPoint = std::max(worstPoint, e);
        sumSquares += e * e;
        ++count;
      }
      MMTransformMatrix difference(tree.GetNode(k).wcsTransform);
      MMTransformMatrix back(expected);
      back.Invert();
      difference.PreMultiply(back);
      worstAngle = std::max(worstAngle, RotationAngleDegrees(difference));
      std::printf("  %s: rotation error %.6f deg\n", inputs[k].name.c_str(), RotationAngleDegrees(difference));
    }
    std::printf("ground-truth error: rms %.6f mm, max %.6f mm, max rotation %.6f deg\n",
                std::sqrt(sumSquares / static_cast<double>(count)), worstPoint, worstAngle);
  }

  if (!options.outDir.empty()) WriteOutputs(options.outDir, inputs, placed, plot);
  return 0;
}
