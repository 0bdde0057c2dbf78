#include "point_io.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace reg {

InputError::InputError(std::string const &file, long line, std::string const &message)
    : std::runtime_error(file + (line > 0 ? ":" + std::to_string(line) : std::string()) + ": " + message) {}

namespace {

std::vector<std::string> Tokens(std::string const &line) {
  std::istringstream in(line);
  std::vector<std::string> out;
  std::string t;
  while (in >> t) out.push_back(t);
  return out;
}

// A finite number that spans the whole token.
bool ParseNumber(std::string const &token, double &value) {
  char *end = nullptr;
  errno = 0;
  value = std::strtod(token.c_str(), &end);
  return end != token.c_str() && *end == '\0' && errno != ERANGE && std::isfinite(value);
}

bool EndsWith(std::string const &s, std::string const &suffix) {
  if (s.size() < suffix.size()) return false;
  for (std::size_t i = 0; i < suffix.size(); ++i) {
    const char c = s[s.size() - suffix.size() + i];
    if (std::tolower(static_cast<unsigned char>(c)) != suffix[i]) return false;
  }
  return true;
}

std::string StripCarriageReturn(std::string line) {
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

PointSet ReadXyz(std::istream &in, std::string const &path) {
  PointSet points;
  std::string line;
  long number = 0;
  while (std::getline(in, line)) {
    ++number;
    const std::vector<std::string> t = Tokens(StripCarriageReturn(line));
    if (t.empty() || t[0][0] == '#') continue;
    double v[3];
    if (t.size() != 3 || !ParseNumber(t[0], v[0]) || !ParseNumber(t[1], v[1]) || !ParseNumber(t[2], v[2])) {
      throw InputError(path, number, "expected three numbers, found \"" + StripCarriageReturn(line) + "\"");
    }
    points.emplace_back(v[0], v[1], v[2]);
  }
  return points;
}

PointSet ReadPly(std::istream &in, std::string const &path) {
  std::string line;
  long number = 0;
  auto next = [&]() -> bool {
    if (!std::getline(in, line)) return false;
    ++number;
    line = StripCarriageReturn(line);
    return true;
  };
  if (!next() || line != "ply") throw InputError(path, 1, "not a PLY file (first line must be \"ply\")");
  // Header: elements in order, each with its property count.
  struct Element {
    std::string name;
    long count;
    std::vector<std::string> properties;
  };
  std::vector<Element> elements;
  bool ascii = false;
  for (;;) {
    if (!next()) throw InputError(path, number, "PLY header has no end_header");
    const std::vector<std::string> t = Tokens(line);
    if (t.empty() || t[0] == "comment" || t[0] == "obj_info") continue;
    if (t[0] == "end_header") break;
    if (t[0] == "format") {
      if (t.size() < 2 || t[1] != "ascii") throw InputError(path, number, "only ASCII PLY is supported");
      ascii = true;
    } else if (t[0] == "element") {
      double count = 0.0;
      if (t.size() != 3 || !ParseNumber(t[2], count) || count < 0 || count != std::floor(count)) {
        throw InputError(path, number, "malformed element line");
      }
      elements.push_back({t[1], static_cast<long>(count), {}});
    } else if (t[0] == "property") {
      if (elements.empty() || t.size() < 3) throw InputError(path, number, "malformed property line");
      elements.back().properties.push_back(t[1] == "list" ? std::string("list") : t.back());
    } else {
      throw InputError(path, number, "unknown PLY header line \"" + line + "\"");
    }
  }
  if (!ascii) throw InputError(path, number, "PLY header has no ASCII format line");
  PointSet points;
  for (Element const &e : elements) {
    int xyz[3] = {-1, -1, -1};
    bool hasList = false;
    for (std::size_t p = 0; p < e.properties.size(); ++p) {
      if (e.properties[p] == "x") xyz[0] = static_cast<int>(p);
      if (e.properties[p] == "y") xyz[1] = static_cast<int>(p);
      if (e.properties[p] == "z") xyz[2] = static_cast<int>(p);
      if (e.properties[p] == "list") hasList = true;
    }
    const bool vertex = e.name == "vertex";
    if (vertex && (xyz[0] < 0 || xyz[1] < 0 || xyz[2] < 0 || hasList)) {
      throw InputError(path, 0, "PLY vertex element needs scalar properties x, y and z");
    }
    for (long i = 0; i < e.count; ++i) {
      if (!next()) throw InputError(path, number + 1, "file ends before all " + e.name + " lines were read");
      if (!vertex) continue;  // faces and other elements are skipped
      const std::vector<std::string> t = Tokens(line);
      std::vector<double> values(t.size());
      bool ok = t.size() == e.properties.size();
      for (std::size_t k = 0; ok && k < t.size(); ++k) ok = ParseNumber(t[k], values[k]);
      if (!ok) {
        throw InputError(path, number,
                         "expected " + std::to_string(e.properties.size()) + " numbers, found \"" + line + "\"");
      }
      points.emplace_back(values[static_cast<std::size_t>(xyz[0])], values[static_cast<std::size_t>(xyz[1])],
                          values[static_cast<std::size_t>(xyz[2])]);
    }
  }
  return points;
}

}  // namespace

PointSet ReadPointFile(std::string const &path) {
  std::ifstream in(path);
  if (!in) throw InputError(path, 0, "cannot open file");
  return EndsWith(path, ".ply") ? ReadPly(in, path) : ReadXyz(in, path);
}

bool WritePly(std::string const &path, PointSet const &points, std::string const &comment) {
  std::FILE *f = std::fopen(path.c_str(), "w");
  if (f == nullptr) return false;
  std::fprintf(f, "ply\nformat ascii 1.0\ncomment %s\nelement vertex %zu\n", comment.c_str(), points.size());
  std::fprintf(f, "property double x\nproperty double y\nproperty double z\nend_header\n");
  for (auto const &p : points) std::fprintf(f, "%.17g %.17g %.17g\n", p.x, p.y, p.z);
  const bool ok = std::ferror(f) == 0;
  return std::fclose(f) == 0 && ok;
}

}  // namespace reg
