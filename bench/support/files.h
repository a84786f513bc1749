#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "support/buffer.h"

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Opens a file or ends the run.
File open_file(const std::filesystem::path& path, const char* mode);

/// The whole file in memory.
Buffer<char> load_file(const std::filesystem::path& path);

/// A folder of its own that goes with the object, in memory-backed storage where there is some, so that a disk has no
/// say in the times.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};
