#pragma once

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <vector>

/// Binary values on their way to a stream, in chunks. Errors of the stream are not told.
class OutBytes {
 public:
  explicit OutBytes(std::FILE* file) : file_(file), buffer_(chunk_bytes) {}
  OutBytes(const OutBytes&) = delete;
  OutBytes& operator=(const OutBytes&) = delete;
  ~OutBytes() { flush(); }

  template <class T>
  OutBytes& put(T value) {
    if (filled_ + sizeof value > chunk_bytes) flush();
    std::memcpy(buffer_.data() + filled_, &value, sizeof value);
    filled_ += sizeof value;
    return *this;
  }
  OutBytes& put(const char* bytes, std::size_t count) {
    for (std::size_t k = 0; k < count; ++k) put(bytes[k]);
    return *this;
  }
  void flush() {
    if (file_ != nullptr && filled_ != 0) std::fwrite(buffer_.data(), 1, filled_, file_);
    filled_ = 0;
  }

 private:
  static constexpr std::size_t chunk_bytes = std::size_t{64} << 10;

  std::FILE* file_;
  std::vector<char> buffer_;
  std::size_t filled_ = 0;
};
