// The inputs that are kept for the fuzz targets: seeds and those of former faults. Their folders lie beside the targets.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "build_paths.h"
#include "format_input.h"

namespace {

// Hands every file of both folders of the target to `fault_of` and returns how many there were.
int replay(const std::string& target, const std::function<const char*(const std::uint8_t*, std::size_t)>& fault_of) {
  int replayed = 0;
  for (const char* folder : {"seeds", "regressions"}) {
    for (const auto& entry : std::filesystem::directory_iterator(std::string(MENDEX_SOURCE_DIR "/fuzz/") + folder + "/" + target)) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string bytes((std::istreambuf_iterator<char>(file)), {});
      testing::internal::CaptureStderr();
      const char* fault = fault_of(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      testing::internal::GetCapturedStderr();
      EXPECT_EQ(fault, nullptr) << entry.path() << ": " << fault;
      ++replayed;
    }
  }
  return replayed;
}

int replay(const std::string& target, StlReader read) {
  return replay(target, [=](const std::uint8_t* data, std::size_t size) { return fault_of_stl_input(StlInput(data, size), read); });
}

int replay(const std::string& target, FuzzedFormat format) {
  return replay(target, [=](const std::uint8_t* data, std::size_t size) { return fault_of_format_input(format, FormatInput(data, size)); });
}

}  // namespace

TEST(FuzzReplay, StlBinary) { EXPECT_GE(replay("stl_binary", &trTriRead::read_stl), 10); }

TEST(FuzzReplay, StlAscii) { EXPECT_GE(replay("stl_ascii", &trTriRead::read_ast), 10); }

TEST(FuzzReplay, Native) { EXPECT_GE(replay("native", FuzzedFormat::native), 5); }

TEST(FuzzReplay, Triangle) { EXPECT_GE(replay("triangle", FuzzedFormat::triangle), 5); }

TEST(FuzzReplay, Mesh) { EXPECT_GE(replay("mesh", FuzzedFormat::mesh), 5); }

TEST(FuzzReplay, Kvx) { EXPECT_GE(replay("kvx", FuzzedFormat::kvx), 5); }
