// Files and messages do not depend on the locale of the process or of the stream.

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <locale>

#include "formats/stl_files.h"

namespace {

// Sets a locale whose decimal point is a comma, for as long as it lives; none may be installed.
class CommaLocale {
 public:
  CommaLocale() : former_(std::setlocale(LC_ALL, nullptr)) {
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "it_IT.UTF-8"}) is_set_ = is_set_ || std::setlocale(LC_ALL, name);
    if (!is_set_) is_set_ = set_compiled_locale();
    is_set_ = is_set_ && *std::localeconv()->decimal_point == ',';
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;
  ~CommaLocale() { std::setlocale(LC_ALL, former_.c_str()); }

  bool is_set() const { return is_set_; }

 private:
  // Where the definitions are installed, the locale itself can be made.
  static bool set_compiled_locale() {
    const std::string folder = testing::TempDir() + "mendex_locales";
    const std::string command = "mkdir -p " + folder + " && localedef -i de_DE -f UTF-8 " + folder + "/de_DE.UTF-8 >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0) return false;
    setenv("LOCPATH", folder.c_str(), 1);
    const bool is_set = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    unsetenv("LOCPATH");
    return is_set;
  }

  std::string former_;
  bool is_set_ = false;
};

// Groups digits as "1.000.000".
class Grouping : public std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

}  // namespace

TEST(StlLocale, ACommaAsDecimalPointChangesNothing) {
  const std::string text = "facet vertex 1.5 2.5e1 -3.25 vertex 4 5 6 vertex 7 8 9.0625 endfacet";
  trTriBlock plain;
  read_ascii(plain, text);
  const std::string ascii = written_ascii(plain).bytes;
  const std::string long_number = "facet vertex 1." + std::string(2000, '5') + " 1,5";
  const std::string told = read_ascii(plain, long_number).out;

  const CommaLocale locale;
  if (!locale.is_set()) GTEST_SKIP() << "no locale with a comma as decimal point is installed or can be made";
  trTriBlock mesh;
  EXPECT_EQ(read_ascii(mesh, text).result, 1);
  EXPECT_EQ(mesh.point(1).x, 1.5);
  EXPECT_EQ(mesh.point(1).y, 25.0);
  EXPECT_EQ(mesh.point(3).z, 9.0625);
  EXPECT_EQ(written_ascii(mesh).bytes, ascii);
  EXPECT_EQ(read_ascii(mesh, long_number).out, told);
}

TEST(StlLocale, NumbersInMessagesAreNotGrouped) {
  trTriBlock mesh;
  CapturedOutput out;
  out.stream.imbue(std::locale(std::locale::classic(), new Grouping));
  const std::string bytes = binary_stl(1234, 2000);
  {
    trTriRead reader(&mesh, stream_on(bytes), 0, 0);
    EXPECT_EQ(reader.read_stl(1, 0), 0);
  }
  EXPECT_EQ(out.text(), " sample\n** Error reading element 1235 **\n");
}
