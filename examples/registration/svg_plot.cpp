#include "svg_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace reg {

namespace {

std::string EscapeXml(std::string const &text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '&':
        out += "&amp;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

}  // namespace

bool WriteConvergenceSvg(std::string const &path, std::vector<PlotSeries> const &series) {
  const double width = 720.0, height = 420.0, left = 70.0, right = 190.0, top = 30.0, bottom = 50.0;
  const char *colours[] = {"#1f77b4", "#ff7f0e", "#2ca02c", "#d62728", "#9467bd", "#8c564b", "#e377c2", "#7f7f7f"};
  std::size_t maxIter = 1;
  double lo = 1e300, hi = -1e300;
  for (auto const &s : series) {
    maxIter = std::max(maxIter, s.values.size());
    for (double v : s.values) {
      if (v > 0.0) {
        lo = std::min(lo, std::log10(v));
        hi = std::max(hi, std::log10(v));
      }
    }
  }
  if (lo > hi) lo = hi = 0.0;
  lo = std::floor(lo);
  hi = std::max(std::ceil(hi), lo + 1.0);
  const double plotW = width - left - right, plotH = height - top - bottom;
  auto px = [&](double i) { return left + plotW * (maxIter > 1 ? (i - 1.0) / static_cast<double>(maxIter - 1) : 0.5); };
  auto py = [&](double v) { return top + plotH * (hi - std::log10(v)) / (hi - lo); };

  std::FILE *f = std::fopen(path.c_str(), "w");
  if (f == nullptr) return false;
  std::fprintf(f,
               "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%g\" height=\"%g\" font-family=\"sans-serif\" "
               "font-size=\"12\">\n",
               width, height);
  std::fprintf(f, "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n");
  std::fprintf(f, "<text x=\"%g\" y=\"18\">RMS residue of the inliers per iteration</text>\n", left);
  std::fprintf(f, "<rect x=\"%g\" y=\"%g\" width=\"%g\" height=\"%g\" fill=\"none\" stroke=\"black\"/>\n", left, top,
               plotW, plotH);
  for (double e = lo; e <= hi + 0.5; e += 1.0) {
    const double y = top + plotH * (hi - e) / (hi - lo);
    std::fprintf(f, "<line x1=\"%g\" y1=\"%g\" x2=\"%g\" y2=\"%g\" stroke=\"#ddd\"/>\n", left, y, left + plotW, y);
    std::fprintf(f, "<text x=\"%g\" y=\"%g\" text-anchor=\"end\">1e%+d</text>\n", left - 6, y + 4, static_cast<int>(e));
  }
  for (std::size_t i = 1; i <= maxIter; i += std::max<std::size_t>(1, maxIter / 10)) {
    std::fprintf(f, "<text x=\"%g\" y=\"%g\" text-anchor=\"middle\">%zu</text>\n", px(static_cast<double>(i)),
                 top + plotH + 16, i);
  }
  std::fprintf(f, "<text x=\"%g\" y=\"%g\" text-anchor=\"middle\">iteration</text>\n", left + plotW / 2, height - 10);
  for (std::size_t k = 0; k < series.size(); ++k) {
    const char *c = colours[k % 8];
    std::fprintf(f, "<polyline fill=\"none\" stroke=\"%s\" stroke-width=\"1.5\" points=\"", c);
    for (std::size_t i = 0; i < series[k].values.size(); ++i) {
      if (series[k].values[i] > 0.0) {
        std::fprintf(f, "%.2f,%.2f ", px(static_cast<double>(i + 1)), py(series[k].values[i]));
      }
    }
    std::fprintf(f, "\"/>\n");
    const double ly = top + 14.0 + 18.0 * static_cast<double>(k);
    std::fprintf(f, "<line x1=\"%g\" y1=\"%g\" x2=\"%g\" y2=\"%g\" stroke=\"%s\" stroke-width=\"2\"/>\n",
                 left + plotW + 12, ly - 4, left + plotW + 32, ly - 4, c);
    std::fprintf(f, "<text x=\"%g\" y=\"%g\">%s</text>\n", left + plotW + 38, ly, EscapeXml(series[k].label).c_str());
  }
  std::fprintf(f, "</svg>\n");
  const bool ok = std::ferror(f) == 0;
  return std::fclose(f) == 0 && ok;
}

}  // namespace reg
