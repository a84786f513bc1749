#include "support/files.h"

#include <stdlib.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

#include "support/check.h"

namespace fs = std::filesystem;

File open_file(const fs::path& path, const char* mode) {
  File file(std::fopen(path.c_str(), mode));
  if (!file) throw std::runtime_error("cannot open " + path.string());
  return file;
}

Buffer<char> load_file(const fs::path& path) {
  Buffer<char> bytes(fs::file_size(path));
  const File file = open_file(path, "rb");
  require(std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size(), "short read of " + path.string());
  return bytes;
}

ScratchFolder::ScratchFolder() {
  const fs::path memory = "/dev/shm";
  const fs::path parent = access(memory.c_str(), W_OK) == 0 ? memory : fs::temp_directory_path();
  std::string name = (parent / "mendex_bench_XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make a folder in " + parent.string());
  path_ = name;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}
