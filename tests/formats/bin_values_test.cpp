// The binary primitives: layout of every type, what a short transfer leaves behind.

#include <gtest/gtest.h>

#include <cstdlib>

#include "formats/bin_read.h"
#include "formats/bin_write.h"
#include "formats/stl_files.h"

namespace {

std::string written(const std::function<void(trBinWrite&)>& write) {
  char* buffer = nullptr;
  std::size_t size = 0;
  std::FILE* file = open_memstream(&buffer, &size);
  trBinWrite out(file);
  write(out);
  EXPECT_EQ(out.error, 0);
  std::fclose(file);
  const std::string bytes(buffer, size);
  std::free(buffer);
  return bytes;
}

}  // namespace

TEST(BinValues, StandLeastSignificantByteFirst) {
  EXPECT_EQ(written([](trBinWrite& out) { out.write_char('\x81'); }), "\x81");
  EXPECT_EQ(written([](trBinWrite& out) { out.write_ushort(0xfedc); }), "\xdc\xfe");
  EXPECT_EQ(written([](trBinWrite& out) { out.write_int(-2); }), "\xfe\xff\xff\xff");
  EXPECT_EQ(written([](trBinWrite& out) { out.write_ulong(0xfedcba98u); }), "\x98\xba\xdc\xfe");
  EXPECT_EQ(written([](trBinWrite& out) { out.write_float(-1.5f); }), std::string("\0\0\xc0\xbf", 4));
  EXPECT_EQ(written([](trBinWrite& out) { out.write_double(-1.5); }), std::string("\0\0\0\0\0\0\xf8\xbf", 8));
  EXPECT_EQ(written([](trBinWrite& out) { EXPECT_EQ(out.b_write("abc", 2), 0); }), "ab");
}

TEST(BinValues, ComeBackAsTheyWereWritten) {
  const std::string bytes = written([](trBinWrite& out) {
    out.write_char('\x81');
    out.write_ushort(0xfedc);
    out.write_int(-123456789);
    out.write_ulong(0xfedcba98u);
    out.write_float(-1e-45f);
    out.write_double(-5e-324);
    out.b_write("tail", 4);
  });
  EXPECT_EQ(bytes.size(), 27u);
  std::FILE* file = stream_on(bytes);
  trBinRead in(file);
  EXPECT_EQ(in.read_char(), '\x81');
  EXPECT_EQ(in.read_ushort(), 0xfedc);
  EXPECT_EQ(in.read_int(), -123456789);
  EXPECT_EQ(in.read_ulong(), 0xfedcba98u);
  EXPECT_EQ(in.read_float(), -1e-45f);
  EXPECT_EQ(in.read_double(), -5e-324);
  char tail[4];
  EXPECT_EQ(in.b_read(tail, 4), 0);
  EXPECT_EQ(std::string(tail, 4), "tail");
  EXPECT_EQ(in.error, 0);
  std::fclose(file);
}

// One byte short of each type, all bits set: what came must not show in the value.
TEST(BinValues, AShortReadYieldsZeroAndSetsAnErrorThatStays) {
  const auto check = [](int bytes_there, const std::function<double(trBinRead&)>& read) {
    const std::string bytes(static_cast<std::size_t>(bytes_there), '\xff');
    std::FILE* file = stream_on(bytes);
    trBinRead in(file);
    EXPECT_EQ(read(in), 0.0);
    EXPECT_EQ(in.error, 1);
    std::rewind(file);
    in.b_read(nullptr, 0);
    EXPECT_EQ(in.error, 1) << "a transfer that succeeds must not clear it";
    std::fclose(file);
  };
  check(0, [](trBinRead& in) { return in.read_char(); });
  check(1, [](trBinRead& in) { return in.read_ushort(); });
  check(3, [](trBinRead& in) { return in.read_int(); });
  check(3, [](trBinRead& in) { return in.read_ulong(); });
  check(3, [](trBinRead& in) { return in.read_float(); });
  check(7, [](trBinRead& in) { return in.read_double(); });
  char room[4];
  check(3, [&](trBinRead& in) { return in.b_read(room, 4) != 0 ? 0.0 : 1.0; });
}

TEST(BinValues, AShortWriteSetsAnErrorThatStays) {
  std::FILE* full = std::fopen("/dev/full", "wb");
  if (full == nullptr) GTEST_SKIP() << "no /dev/full here";
  std::setvbuf(full, nullptr, _IONBF, 0);
  trBinWrite out(full);
  out.write_int(1);
  EXPECT_EQ(out.error, 1);
  EXPECT_NE(out.b_write("abc", 3), 0);
  EXPECT_EQ(out.b_write("abc", 0), 0);
  EXPECT_EQ(out.error, 1);
  std::fclose(full);
}
