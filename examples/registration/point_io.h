#ifndef KORMATH_EXAMPLES_REGISTRATION_POINT_IO_H
#define KORMATH_EXAMPLES_REGISTRATION_POINT_IO_H

// Reading and writing point sets: ASCII XYZ and ASCII PLY.

#include <stdexcept>
#include <string>
#include <vector>

#include <kormath/kormath.h>

namespace reg {

using PointSet = std::vector<MMPoint3d<double>>;

// A problem with an input: names the file and, when known, the line.
class InputError : public std::runtime_error {
 public:
  InputError(std::string const &file, long line, std::string const &message);
};

// Reads a point set. XYZ: one point per line as three numbers separated by
// white space; blank lines and lines starting with '#' are skipped. PLY:
// ASCII format with a vertex element whose properties include x, y and z.
// The format is chosen by the extension (.ply, anything else is XYZ).
// Throws InputError for a missing file, a line that is not three numbers
// (or a PLY vertex line of the wrong shape), or a non-finite coordinate.
PointSet ReadPointFile(std::string const &path);

// Writes an ASCII PLY file with the points as vertices; false on failure.
bool WritePly(std::string const &path, PointSet const &points, std::string const &comment);

}  // namespace reg

#endif  // KORMATH_EXAMPLES_REGISTRATION_POINT_IO_H
