// Files and messages do not depend on the locale of the process or of the stream.

#include <gtest/gtest.h>

#include <locale>

#include "formats/stl_files.h"
#include "support/comma_locale.h"

namespace {

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
