#ifndef KORMATH_PLATFORM_FILE_H
#define KORMATH_PLATFORM_FILE_H

// The host's file class: a binary file read and written in arrays of float
// and 32-bit integers. `long` items are stored as 32-bit little-endian
// integers whatever the width of long on the platform; a value outside the
// 32-bit range is truncated to its low 32 bits.

#include <kormath/export.h>

#include <cstddef>
#include <cstdio>

class KORMATH_API MFile {
 public:
  enum Mode { READ_MODE, WRITE_MODE, APPEND_MODE };

  MFile() = default;
  // Opens at once; IsOpen() tells whether that worked.
  MFile(const char *path, Mode mode);
  ~MFile();
  MFile(const MFile &) = delete;
  MFile &operator=(const MFile &) = delete;

  // Opens a file, closing any file held before. Returns false, and holds no
  // file, when the file is missing or cannot be written.
  bool Open(const char *path, Mode mode);
  void Close();
  bool IsOpen() const { return file_ != nullptr; }

  // Each returns the number of items transferred: fewer than `count` at the
  // end of the file or on an error, 0 when no file is open.
  std::size_t READ(float *buffer, std::size_t count);
  std::size_t READ(long *buffer, std::size_t count);
  std::size_t WRITE(const float *buffer, std::size_t count);
  std::size_t WRITE(const long *buffer, std::size_t count);

 private:
  std::FILE *file_ = nullptr;
};

#endif  // KORMATH_PLATFORM_FILE_H
