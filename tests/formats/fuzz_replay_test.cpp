// The inputs that are kept for the fuzz targets: seeds and those of former faults. Their folders lie beside the targets.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "stl_input.h"

namespace {

// Replays every file of both folders of the target and returns how many there were.
int replay(const std::string& target, StlReader read) {
  int replayed = 0;
  for (const char* folder : {"seeds", "regressions"}) {
    for (const auto& entry : std::filesystem::directory_iterator(std::string(MENDEX_SOURCE_DIR "/fuzz/") + folder + "/" + target)) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string bytes((std::istreambuf_iterator<char>(file)), {});
      testing::internal::CaptureStderr();
      const char* fault = fault_of_stl_input(StlInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()), read);
      testing::internal::GetCapturedStderr();
      EXPECT_EQ(fault, nullptr) << entry.path() << ": " << fault;
      ++replayed;
    }
  }
  return replayed;
}

}  // namespace

TEST(FuzzReplay, StlBinary) { EXPECT_GE(replay("stl_binary", &trTriRead::read_stl), 10); }

TEST(FuzzReplay, StlAscii) { EXPECT_GE(replay("stl_ascii", &trTriRead::read_ast), 10); }
