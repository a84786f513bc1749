#include "architecture/source_tree.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace {

const std::string src_prefix = "src/";

bool is_source_name(const std::filesystem::path& path) { return path.extension() == ".h" || path.extension() == ".cpp"; }

// What an include line names, or nothing for any other line.
std::string include_of(const std::string& line) {
  const std::string blanks = " \t";
  const std::string word = "include";
  const std::size_t hash = line.find_first_not_of(blanks);
  if (hash == std::string::npos || line[hash] != '#') return {};
  const std::size_t begin = line.find_first_not_of(blanks, hash + 1);
  if (begin == std::string::npos || line.compare(begin, word.size(), word) != 0) return {};
  const std::size_t open = line.find_first_not_of(blanks, begin + word.size());
  if (open == std::string::npos || (line[open] != '<' && line[open] != '"')) return {};
  const std::size_t close = line.find_first_of(">\"", open + 1);
  return close == std::string::npos ? std::string() : line.substr(open + 1, close - open - 1);
}

}  // namespace

std::string SourceFile::name_in_src() const {
  return path.compare(0, src_prefix.size(), src_prefix) == 0 ? path.substr(src_prefix.size()) : std::string();
}

std::string SourceFile::folder_in_src() const {
  const std::string name = name_in_src();
  const std::size_t slash = name.rfind('/');
  return slash == std::string::npos ? std::string() : name.substr(0, slash);
}

bool SourceFile::is_header() const { return path.size() > 2 && path.compare(path.size() - 2, 2, ".h") == 0; }

SourceFile parse_source(const std::string& path, const std::string& text) {
  SourceFile file;
  file.path = path;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line); ++file.line_count) {
    if (std::string name = include_of(line); !name.empty()) file.includes.push_back(std::move(name));
  }
  return file;
}

std::vector<SourceFile> read_sources(const std::string& root, const std::vector<std::string>& folders) {
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

std::string read_text(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}
