// What the explicit lists of the build promise: no source is forgotten, no public header is missing from the installed tree.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "architecture/source_tree.h"
#include "build_paths.h"

namespace {

const std::string root = MENDEX_SOURCE_DIR;

std::string folder_of(const std::string& path) { return path.substr(0, path.rfind('/')); }
std::string file_name_of(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// The words of a build file, comments and parentheses stripped.
std::set<std::string> words_of(const std::string& build_file) {
  std::istringstream lines(read_text(build_file));
  std::set<std::string> words;
  for (std::string line; std::getline(lines, line);) {
    line = line.substr(0, line.find('#'));
    std::replace_if(line.begin(), line.end(), [](char c) { return c == '(' || c == ')'; }, ' ');
    std::istringstream parts(line);
    for (std::string word; parts >> word;) words.insert(word);
  }
  return words;
}

// What the folder's build file names between `mendex_public_headers(` and the closing parenthesis.
std::set<std::string> public_headers() {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root + "/src")) {
    if (entry.path().filename() != "CMakeLists.txt") continue;
    const std::string text = read_text(entry.path().string());
    const std::string folder = entry.path().parent_path().lexically_relative(root + "/src").generic_string();
    const std::string opening = "mendex_public_headers(";
    for (std::size_t at = text.find(opening); at != std::string::npos; at = text.find(opening, at + 1)) {
      const std::size_t begin = at + opening.size();
      std::istringstream parts(text.substr(begin, text.find(')', begin) - begin));
      for (std::string name; parts >> name;) names.insert(folder == "." ? name : folder + "/" + name);
    }
  }
  return names;
}

std::set<std::string> reached_from_umbrella() {
  std::map<std::string, std::vector<std::string>> includes;
  for (const SourceFile& file : read_sources(root, {"src"})) includes[file.name_in_src()] = file.includes;
  std::set<std::string> reached = {"mendexlib.h"};
  std::vector<std::string> open = {"mendexlib.h"};
  while (!open.empty()) {
    const std::string name = open.back();
    open.pop_back();
    for (const std::string& include : includes[name]) {
      if (includes.count(include) != 0 && reached.insert(include).second) open.push_back(include);
    }
  }
  return reached;
}

}  // namespace

// There is no globbing: a source that its folder's build file does not name is silently not compiled, a test silently not run.
TEST(ProjectFiles, EverySourceIsOnTheListOfItsFolder) {
  int checked = 0;
  for (const SourceFile& file : read_sources(root, {"src", "apps", "tests", "bench", "fuzz", "examples"})) {
    if (file.is_header()) continue;
    const std::string folder = root + "/" + folder_of(file.path);
    if (!std::filesystem::exists(folder + "/CMakeLists.txt")) continue;
    const std::set<std::string> words = words_of(folder + "/CMakeLists.txt");
    const std::string name = file_name_of(file.path);
    const std::string stem = name.substr(0, name.rfind('.'));
    const bool listed = words.count(name) != 0 || words.count(stem) != 0 ||
                        (stem.compare(0, 5, "fuzz_") == 0 && words.count(stem.substr(5)) != 0);
    EXPECT_TRUE(listed) << file.path << " is not named in the CMakeLists.txt beside it";
    ++checked;
  }
  EXPECT_GE(checked, 10);
}

// A host that has only the installed tree must be able to include the umbrella header, and nothing is installed that it cannot
// reach through it.
TEST(ProjectFiles, PublicHeadersAreThoseThatTheUmbrellaReaches) {
  EXPECT_EQ(public_headers(), reached_from_umbrella());
}

TEST(ProjectFiles, HeadersAndSourcesStayReadable) {
  // "About 300" and "about 500" lines, with a tenth of grace.
  const int header_limit = 330;
  const int source_limit = 550;
  for (const SourceFile& file : read_sources(root, {"src", "apps"})) {
    EXPECT_LE(file.line_count, file.is_header() ? header_limit : source_limit) << file.path << " has grown too long";
  }
}
