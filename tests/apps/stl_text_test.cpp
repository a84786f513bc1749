// ASCII STL as other programs write it. The library's reader takes "facet" and "vertex" for keywords wherever they
// stand; the program must read every facet all the same.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <thread>

#include "apps/process.h"
#include "apps/test_files.h"
#include "solid_name_filter.h"

namespace {

int triangles_in(const std::string& path) {
  const ProcessResult result = run_mendex({"info", "--json", path});
  if (result.exit_code != 0) return -result.exit_code;
  const auto report = nlohmann::json::parse(result.output);
  EXPECT_TRUE(report["complete"]) << result.errors;
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

std::string filtered(const std::string& text, const std::vector<std::size_t>& cuts) {
  SolidNameFilter filter;
  std::string out;
  std::size_t from = 0;
  for (const std::size_t cut : cuts) {
    filter.add(text.data() + from, cut - from, out);
    from = cut;
  }
  filter.add(text.data() + from, text.size() - from, out);
  filter.finish(out);
  return out;
}

std::vector<std::string> words_of(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

}  // namespace

TEST(AsciiStl, ReadsEveryFacetOfOddFiles) {
  const std::string five = facets(5);
  const std::vector<std::pair<const char*, std::string>> cases = {
      {"plain", "solid\n" + five + "endsolid\n"},
      {"keyword in the name", "solid facet of a name\n" + five + "endsolid facet of a name\n"},
      {"only keywords in the name", "solid vertex facet endfacet\n" + five + "endsolid vertex"},
      {"name of 300 characters",
       "solid " + std::string(99, 'x') + " facet " + std::string(200, 'y') + " vertex\n" + five},
      {"upper case", in_upper_case("solid facet x\n" + five + "endsolid facet x\n")},
      {"carriage returns only", "solid facet x\r" + facets(5, "\r") + "endsolid facet x\r"},
      {"both", "solid facet x\r\n" + facets(5, "\r\n") + "endsolid"},
      {"no end of the last line", "solid\n" + five.substr(0, five.size() - 1)},
      {"byte order mark", "\xEF\xBB\xBFsolid facet x\n" + five + "endsolid\n"},
      {"blanks before", " \t\r\n solid facet x\n" + five + "endsolid\n"},
      {"several solids",
       "solid facet 1\n" + facets(2) + "endsolid facet 1\nsolid vertex 2\n" + facets(3) + "endsolid vertex 2\n"},
      {"all on one line", on_one_line("solid facet of a name " + five + "endsolid facet of a name")},
      {"no solid at all", five},
      {"no facets before 64 KiB", "solid\n" + std::string(70000, '\n') + "endsolid"},
  };
  const TestFolder folder;
  for (const auto& [what, text] : cases) {
    const int expected = std::string(what) == "no facets before 64 KiB" ? -3 : 5;
    EXPECT_EQ(triangles_in(folder.write("odd.stl", text)), expected) << what;
  }
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
  const std::vector<std::string> words = {"solid", "endsolid", "Solid",           "facet",  "FACET",  "normal",
                                          "outer", "vertex",   "endfacet",        "solids", "xsolid", "endsolidx",
                                          "s",     "e",        "solidsolidsolid", "1.5"};
  const std::string separators = "  \n\r\t";
  std::mt19937 random(5);
  int with_names = 0;
  for (int round = 0; round < 500; ++round) {
    std::string text;
    std::vector<std::string> expected;
    bool in_name = false, after_facet = false;
    for (int k = 0; k < 40; ++k) {
      const std::string word = words[random() % words.size()];
      const char separator = separators[random() % separators.size()];
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
    const std::vector<std::string> whole = words_of(filtered(text, {}));
    ASSERT_EQ(whole, expected) << text;
    std::vector<std::size_t> cuts;
    for (std::size_t at = 0; at < text.size(); ++at) {
      if (random() % 4 == 0) cuts.push_back(at);
    }
    ASSERT_EQ(words_of(filtered(text, cuts)), expected) << text;
  }
  EXPECT_GT(with_names, 1000);
}
