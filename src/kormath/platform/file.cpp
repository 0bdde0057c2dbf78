#include <kormath/platform/file.h>

#include <cstdint>
#include <cstring>

MFile::MFile(const char *path, Mode mode) { Open(path, mode); }

MFile::~MFile() { Close(); }

bool MFile::Open(const char *path, Mode mode) {
  Close();
  const char *flags = mode == READ_MODE ? "rb" : (mode == WRITE_MODE ? "wb" : "ab");
  file_ = path ? std::fopen(path, flags) : nullptr;
  return file_ != nullptr;
}

void MFile::Close() {
  if (file_ != nullptr) {
    std::fclose(file_);
    file_ = nullptr;
  }
}

namespace {
void EncodeLE32(std::uint32_t v, unsigned char *out) {
  for (int i = 0; i < 4; ++i) out[i] = static_cast<unsigned char>((v >> (8 * i)) & 0xFFu);
}
std::uint32_t DecodeLE32(const unsigned char *in) {
  std::uint32_t v = 0;
  for (int i = 0; i < 4; ++i) v |= static_cast<std::uint32_t>(in[i]) << (8 * i);
  return v;
}
}  // namespace

std::size_t MFile::READ(float *buffer, std::size_t count) {
  if (file_ == nullptr) return 0;
  std::size_t n = 0;
  unsigned char bytes[4];
  while (n < count && std::fread(bytes, 1, 4, file_) == 4) {
    const std::uint32_t bits = DecodeLE32(bytes);
    std::memcpy(&buffer[n], &bits, sizeof(float));
    ++n;
  }
  return n;
}

std::size_t MFile::READ(long *buffer, std::size_t count) {
  if (file_ == nullptr) return 0;
  std::size_t n = 0;
  unsigned char bytes[4];
  while (n < count && std::fread(bytes, 1, 4, file_) == 4) {
    buffer[n] = static_cast<long>(static_cast<std::int32_t>(DecodeLE32(bytes)));
    ++n;
  }
  return n;
}

std::size_t MFile::WRITE(const float *buffer, std::size_t count) {
  if (file_ == nullptr) return 0;
  std::size_t n = 0;
  unsigned char bytes[4];
  for (; n < count; ++n) {
    std::uint32_t bits;
    std::memcpy(&bits, &buffer[n], sizeof(float));
    EncodeLE32(bits, bytes);
    if (std::fwrite(bytes, 1, 4, file_) != 4) break;
  }
  return n;
}

std::size_t MFile::WRITE(const long *buffer, std::size_t count) {
  if (file_ == nullptr) return 0;
  std::size_t n = 0;
  unsigned char bytes[4];
  for (; n < count; ++n) {
    EncodeLE32(static_cast<std::uint32_t>(static_cast<std::int32_t>(buffer[n])), bytes);
    if (std::fwrite(bytes, 1, 4, file_) != 4) break;
  }
  return n;
}
