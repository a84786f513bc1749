// ASCII STL as other programs write it. The library's reader takes "facet" and "vertex" for keywords wherever they
// stand; the program must read every facet all the same.

#include <sys/stat.h>

#include <fstream>
#include <sstream>
#include <thread>

#include "apps/reports.h"
#include "solid_name_filter.h"
#include "support/random.h"

namespace {

int triangles_in(const std::string& path) {
  const ProcessResult result = run_mendex({"info", "--json", path});
  if (result.exit_code != 0) return -result.exit_code;
  const Json report = Json::parse(result.output);
  EXPECT_EQ(report["complete"], true) << result.errors;
  return report["elements"].get<int>();
}

std::string facets(int n, const std::string& line_end = "\n") {
  std::string text;
  for (const FacetCorners& corners : some_facets(n)) text += ascii_facet(corners, line_end);
  return text;
}

std::string in_upper_case(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

std::string on_one_line(std::string text) {
  for (char& c : text) c = c == '\n' ? ' ' : c;
  return text;
}

// What the filter leaves, added in pieces of a size at most, as words.
Arguments words_left(const std::string& text, Random& random, int most) {
  SolidNameFilter filter;
  std::string out;
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t size = std::min(text.size() - from, static_cast<std::size_t>(random.between(0, most)));
    filter.add(text.data() + from, size, out);
    from += size;
  }
  filter.finish(out);
  std::istringstream stream(out);
  return {std::istream_iterator<std::string>(stream), {}};
}

}  // namespace

TEST(AsciiStl, ReadsEveryFacetOfOddFiles) {
  const std::string five = facets(5);
  const std::string cases[] = {
      "solid\n" + five + "endsolid\n",
      "solid facet of a name\n" + five + "endsolid facet of a name\n",
      "solid vertex facet endfacet\n" + five + "endsolid vertex",
      "solid " + std::string(99, 'x') + " facet " + std::string(200, 'y') + " vertex\n" + five,
      in_upper_case("solid facet x\n" + five + "endsolid facet x\n"),
      "solid facet x\r" + facets(5, "\r") + "endsolid facet x\r",
      "solid facet x\r\n" + facets(5, "\r\n") + "endsolid",
      "solid\n" + five.substr(0, five.size() - 1),  // the last line does not end
      "\xEF\xBB\xBFsolid facet x\n" + five + "endsolid\n",
      " \t\r\n solid facet x\n" + five + "endsolid\n",
      "solid facet 1\n" + facets(2) + "endsolid facet 1\nsolid vertex 2\n" + facets(3) + "endsolid vertex 2\n",
      on_one_line("solid facet of a name " + five + "endsolid facet of a name"),
      five,
  };
  const TestFolder folder;
  for (const std::string& text : cases) EXPECT_EQ(triangles_in(folder.write("odd.stl", text)), 5) << text;
  EXPECT_EQ(triangles_in(folder.write("odd.stl", "solid\n" + std::string(70000, '\n') + "endsolid")), -3) << "no facets before 64 KiB";
}

// Facet counts far beyond one buffer, so that names and keywords fall across the ends of the pieces that are read.
TEST(AsciiStl, ReadsLargeFilesWithManyNames) {
  std::string text;
  for (int k = 0; k < 800; ++k)
    text += "solid facet " + std::string(static_cast<std::size_t>(k) % 130, 'v') + " vertex\n" + facets(5) +
            "endsolid facet\n";
  const TestFolder folder;
  EXPECT_GT(text.size(), 400000u);
  EXPECT_EQ(triangles_in(folder.write("many.stl", text)), 4000);
}

// What decides is the content: a binary file may begin with "solid", and may even hold the word "facet" in its header.
TEST(StlFormat, IsToldByContent) {
  const TestFolder folder;
  const std::string honest = binary_stl(some_facets(4), "solid facet normal endsolid");
  EXPECT_EQ(triangles_in(folder.write("a.ast", honest)), 4);
  EXPECT_EQ(triangles_in(folder.write("b.stl", binary_stl(some_facets(4), "solid x") + "y")), 4);  // one byte too many
}

// Pipes have no size and cannot be rewound.
TEST(StlFormat, PipesAreReadLikeFiles) {
  const TestFolder folder;
  const std::string pipe = folder.path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& contents : {binary_stl(some_facets(9000)), "solid facet x\n" + facets(9000) + "endsolid"}) {
    std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << contents; });
    EXPECT_EQ(triangles_in(pipe), 9000);
    writer.join();
  }
}

// However the text is cut into pieces, the same comes out, and it is the text less the names.
TEST(SolidNameFilter, DoesNotDependOnHowTheTextIsCut) {
  const char* const words[] = {"solid", "endsolid", "Solid", "facet", "FACET", "normal", "outer", "vertex",
                               "endfacet", "solids", "xsolid", "endsolidx", "s", "e", "solidsolidsolid", "1.5"};
  const std::string separators = "  \n\r\t";
  Random random(5);
  int with_names = 0;
  for (int round = 0; round < 500; ++round) {
    std::string text;
    Arguments expected;
    bool in_name = false, after_facet = false;
    for (int k = 0; k < 40; ++k) {
      const std::string word = words[random.below(16)];
      const char separator = separators[static_cast<std::size_t>(random.below(5))];
      text += word + separator;
      const bool opens = in_upper_case(word) == "SOLID" || word == "endsolid";
      const bool is_facet = in_upper_case(word) == "FACET";
      if (!in_name) {
        expected.push_back(word);
        in_name = opens;
        with_names += opens;
        after_facet = false;
      } else if (after_facet && (word == "normal" || word == "outer")) {
        expected.insert(expected.end(), {"facet", word});
        in_name = false;
      } else {
        after_facet = is_facet;
      }
      if (separator == '\n' || separator == '\r') in_name = false;
    }
    for (const int most : {10000, 7}) ASSERT_EQ(words_left(text, random, most), expected) << text;
  }
  EXPECT_GT(with_names, 1000);
}
