// Who may include whom, and what the explicit lists of the build promise: no source is forgotten, no public header is
// missing from the installed tree.

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "build_paths.h"

namespace {

const std::string root = MENDEX_SOURCE_DIR;

std::string folder_of(const std::string& name) {
  const std::size_t slash = name.rfind('/');
  return slash == std::string::npos ? std::string() : name.substr(0, slash);
}

std::string file_name_of(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string read_text(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// One file of the project as the checks see it.
struct SourceFile {
  std::string path;                   // relative to the root, for example "src/mesh/node.h"
  std::vector<std::string> includes;  // what its include lines name, quotes and brackets stripped
  int line_count = 0;

  // The part of the path below `src/`, or nothing for files elsewhere.
  std::string name_in_src() const { return path.compare(0, 4, "src/") == 0 ? path.substr(4) : std::string(); }
  // The folder below `src/` ("platform/spatial"), empty for the umbrella header and for files elsewhere.
  std::string folder_in_src() const { return folder_of(name_in_src()); }
  bool is_header() const { return path.size() > 2 && path.compare(path.size() - 2, 2, ".h") == 0; }
};

bool is_source_name(const std::filesystem::path& path) { return path.extension() == ".h" || path.extension() == ".cpp"; }

// What an include line names, or nothing for any other line.
std::string include_of(const std::string& line) {
  if (line.find("include") == std::string::npos) return {};
  static const std::regex include(R"([ \t]*#[ \t]*include[ \t]*[<"]([^>"]*)[>"].*)");
  std::smatch parts;
  return std::regex_match(line, parts, include) ? parts[1].str() : std::string();
}

SourceFile parse_source(const std::string& path, const std::string& text) {
  SourceFile file;
  file.path = path;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line); ++file.line_count) {
    if (std::string name = include_of(line); !name.empty()) file.includes.push_back(std::move(name));
  }
  return file;
}

// All .h and .cpp files below the given folders of the project, in the order of their paths.
std::vector<SourceFile> read_sources(const std::vector<std::string>& folders) {
  namespace fs = std::filesystem;
  std::vector<SourceFile> files;
  for (const std::string& folder : folders) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(fs::path(root) / folder)) {
      if (!entry.is_regular_file() || !is_source_name(entry.path())) continue;
      const std::string path = entry.path().lexically_relative(root).generic_string();
      files.push_back(parse_source(path, read_text(entry.path().string())));
    }
  }
  std::sort(files.begin(), files.end(), [](const SourceFile& a, const SourceFile& b) { return a.path < b.path; });
  return files;
}

const std::string umbrella = "mendexlib.h";
const std::string undo_header = "undo/undo.h";
// Headers that take seconds to compile, and who may include them.
const std::map<std::string, std::set<std::string>> costly_headers = {
    {"CLI/CLI.hpp", {"apps/mendex/command_line.cpp", "apps/mendex/verb_options.cpp", "tests/apps/batch_probe.cpp"}},
    {"nlohmann/json.hpp", {"apps/mendex/json_values.cpp", "tests/support/json_document.cpp"}},
};

// Each folder and the rungs directly under it; what lies further down follows.
const std::map<std::string, std::vector<std::string>> rungs = {
    {"platform/utilities", {}},
    {"platform/containers", {"platform/utilities"}},
    {"platform/geometry", {"platform/containers"}},
    {"platform/common", {"platform/geometry"}},
    {"platform/spatial", {"platform/common"}},
    {"platform/digitiser", {"platform/spatial"}},
    {"platform/surface", {"platform/digitiser"}},
    {"platform/triangulation", {"platform/surface"}},
    {"platform/kvx", {"platform/triangulation"}},
    {"progress", {"platform/kvx"}},
    {"mesh", {"progress"}},
    {"undo", {"mesh"}},
    {"formats", {"mesh"}},
    {"analysis", {"mesh"}},
    {"boundaries", {"undo", "formats", "analysis"}},
    {"control", {"boundaries"}},
};

bool reaches(const std::string& upper, const std::string& lower) {
  if (upper == lower) return true;
  for (const std::string& next : rungs.at(upper)) {
    if (reaches(next, lower)) return true;
  }
  return false;
}

bool starts_with(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

class LadderCheck {
 public:
  explicit LadderCheck(const std::vector<SourceFile>& files) {
    for (const SourceFile& file : files) {
      if (const std::string name = file.name_in_src(); !name.empty()) library_names_.insert(name);
    }
  }

  void check(const SourceFile& file) {
    for (const std::string& include : file.includes) {
      if (starts_with(file.path, "src/")) {
        check_library(file, include);
      } else if (library_names_.count(include) != 0 && include != umbrella && !starts_with(file.path, "tests/")) {
        report(file, include, "hosts include nothing of the library but " + umbrella);
      } else if (const auto users = costly_headers.find(include); users != costly_headers.end() && users->second.count(file.path) == 0) {
        report(file, include, "it takes long to compile; another header stands for it");
      }
    }
  }

  std::vector<std::string> take_faults() { return std::move(faults_); }

 private:
  void check_library(const SourceFile& file, const std::string& include) {
    if (starts_with(include, "Eigen/")) return check_eigen(file, include);
    if (library_names_.count(include) == 0) return check_foreign(file, include);
    const std::string from = file.folder_in_src();
    if (include == umbrella) return report(file, include, "the umbrella header is for hosts");
    if (file.name_in_src() == umbrella) return;
    if (rungs.count(from) == 0) return report(file, include, "the folder " + from + " has no place on the ladder");
    if (from == "mesh" && include == undo_header && !file.is_header()) return check_knot(file, include);
    const std::string to = folder_of(include);
    if (rungs.count(to) == 0) return report(file, include, "the folder " + to + " has no place on the ladder");
    if (!reaches(from, to)) report(file, include, to + " is not below " + from);
  }

  void check_knot(const SourceFile& file, const std::string& include) {
    if (knot_.empty()) {
      knot_ = file.path;
    } else if (knot_ != file.path) {
      report(file, include, "only one source of mesh may, and that is " + knot_);
    }
  }

  void check_eigen(const SourceFile& file, const std::string& include) {
    const std::string folder = file.folder_in_src();
    if (file.is_header()) return report(file, include, "a header must not pass Eigen on to hosts");
    if (folder != "platform/surface" && folder != "platform/common") report(file, include, "Eigen is for fitting only");
  }

  // The standard library's headers have neither folder nor ending, C's and the system's have no place below our
  // folders.
  void check_foreign(const SourceFile& file, const std::string& include) {
    const bool system_header = starts_with(include, "sys/") || include.find('/') == std::string::npos;
    const bool own_name_without_folder = library_names_.count(file.folder_in_src() + "/" + include) != 0;
    if (!system_header || own_name_without_folder) {
      report(file, include, "there is no such file below src; paths are relative to src");
    }
  }

  void report(const SourceFile& file, const std::string& include, const std::string& why) {
    faults_.push_back(file.path + " includes " + include + ": " + why);
  }

  std::set<std::string> library_names_;
  std::string knot_;  // the one source of mesh/ that was seen to include the journal
  std::vector<std::string> faults_;
};

// The include lines that break the rules on who may include whom, each as a sentence; empty when all arrows point
// downwards.
//
// - A folder of the library includes itself and the folders below it, by paths relative to `src/`.
// - One source file of `mesh/`, no header, may include `undo/undo.h`.
// - Nothing in the library includes the umbrella header.
// - Eigen is named only by sources of the plane fit and the surface fitter.
// - Programs and examples include `mendexlib.h` of the library, and their own headers.
// - Few sources of the program and the tests include headers that take long to compile.
std::vector<std::string> ladder_faults(const std::vector<SourceFile>& files) {
  LadderCheck check(files);
  for (const SourceFile& file : files) check.check(file);
  return check.take_faults();
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

// A small tree in which every arrow points downwards; each case adds one file to it.
std::vector<SourceFile> sound_tree() {
  return {
      parse_source("src/platform/utilities/export.h", "#pragma once\n"),
      parse_source("src/platform/geometry/point3.h", "#include \"platform/utilities/export.h\"\n"),
      parse_source("src/progress/break_handler.h", "#include \"platform/utilities/export.h\"\n"),
      parse_source("src/mesh/tri_block.h", "#include <vector>\n#include \"progress/break_handler.h\"\nclass trUndo;\n"),
      parse_source("src/mesh/journal.cpp", "#include \"mesh/tri_block.h\"\n#include \"undo/undo.h\"\n"),
      parse_source("src/undo/undo.h", "#include \"mesh/tri_block.h\"\n"),
      parse_source("src/formats/tri_read.h", "#include \"mesh/tri_block.h\"\n"),
      parse_source("src/analysis/sick.cpp", "#include \"mesh/tri_block.h\"\n"),
      parse_source("src/boundaries/cycle_array.h", "#include \"undo/undo.h\"\n#include \"formats/tri_read.h\"\n"),
      parse_source("src/mendexlib.h", "#include \"boundaries/cycle_array.h\"\n"),
      parse_source("apps/mendex/command_line.cpp", "#include <mendexlib.h>\n#include <CLI/CLI.hpp>\n#include \"report.h\"\n"),
      parse_source("apps/mendex/json_values.cpp", "#include <nlohmann/json.hpp>\n"),
      parse_source("tests/mesh/node_test.cpp", "#include \"mesh/tri_block.h\"\n"),
  };
}

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
  for (const SourceFile& file : read_sources({"src"})) includes[file.name_in_src()] = file.includes;
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

// The project's own files. The minimum guards against a check that looks at nothing, say because a folder was renamed.
TEST(IncludeLadder, EveryArrowOfTheProjectPointsDownwards) {
  const std::vector<SourceFile> files = read_sources({"src", "apps", "examples", "tests"});
  std::size_t includes = 0;
  for (const SourceFile& file : files) includes += file.includes.size();
  EXPECT_GE(files.size(), 10u);
  EXPECT_GE(includes, 30u);
  EXPECT_EQ(joined(ladder_faults(files)), "");
}

TEST(IncludeLadder, ReportsEveryWrongIncludeOnce) {
  const std::pair<const char*, const char*> cases[] = {
      {"src/mesh/node.cpp", "#include \"formats/tri_read.h\""},
      {"src/mesh/node.h", "#include \"undo/undo.h\""},
      {"src/mesh/node.cpp", "#include \"undo/undo.h\""},  // the second source of mesh
      {"src/analysis/thin.cpp", "  #  include \"undo/undo.h\"  // note"},
      {"src/platform/surface/fit.cpp", "#include \"progress/break_handler.h\""},
      {"src/platform/utilities/ut.h", "#include \"platform/geometry/point3.h\""},
      {"src/progress/report.cpp", "#include <mesh/tri_block.h>"},
      {"src/boundaries/fill.cpp", "#include \"mendexlib.h\""},
      {"src/mesh/node.cpp", "#include \"tri_block.h\""},
      {"src/mesh/node.cpp", "#include \"../mesh/tri_block.h\""},
      {"src/mesh/node.cpp", "#include <nlohmann/json.hpp>"},
      {"src/platform/surface/fit.h", "#include <Eigen/Dense>"},
      {"src/mesh/node.cpp", "#include <Eigen/Dense>"},
      {"src/extras/fit.cpp", "#include \"mesh/tri_block.h\""},
      {"apps/mendex/weld.cpp", "#include \"mesh/tri_block.h\""},
      {"apps/mendex/weld.cpp", "#include <CLI/CLI.hpp>"},
      {"apps/mendex/weld.cpp", "#include <nlohmann/json.hpp>"},
      {"tests/apps/weld_test.cpp", "#include <nlohmann/json.hpp>"},
      {"examples/weld.cpp", "#include <mesh/tri_block.h>"},
  };
  EXPECT_EQ(joined(ladder_faults(sound_tree())), "");
  for (const auto& [path, line] : cases) {
    std::vector<SourceFile> files = sound_tree();
    files.push_back(parse_source(path, std::string("#include <vector>\n") + line + "\n"));
    const std::vector<std::string> faults = ladder_faults(files);
    ASSERT_EQ(faults.size(), 1u) << path << ": " << line << "\n" << joined(faults);
    EXPECT_EQ(faults[0].find(std::string(path) + " includes "), 0u) << faults[0];
  }
}

// There is no globbing: a source that its folder's build file does not name is silently not compiled, a test silently not run.
TEST(ProjectFiles, EverySourceIsOnTheListOfItsFolder) {
  int checked = 0;
  for (const SourceFile& file : read_sources({"src", "apps", "tests", "bench", "fuzz", "examples"})) {
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
  for (const SourceFile& file : read_sources({"src", "apps"})) {
    EXPECT_LE(file.line_count, file.is_header() ? header_limit : source_limit) << file.path << " has grown too long";
  }
}
