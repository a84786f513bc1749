#include "batch_inputs.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <set>

#include "failure.h"
#include "mesh_format.h"
#include "messages.h"
#include "scene_file.h"

namespace {

namespace fs = std::filesystem;

// A file and the folders between it and the folder that was given.
struct FoundFile {
  std::string path;
  fs::path below;
};

bool is_mesh_name(const fs::path& path) {
  return path.filename().native()[0] != '.' && (format_of_extension(path.native()) || is_scene_extension(extension_in(path.native())));
}

[[noreturn]] void fail_to_read(const std::string& path, const std::string& why) {
  throw Failure(ExitCode::cannot_read, path + ": cannot be read: " + why);
}

template <class Iterator>
std::vector<FoundFile> files_below(const fs::path& folder, Iterator at, const std::error_code& error) {
  std::vector<FoundFile> found;
  std::error_code ignored;
  std::error_code step = error;
  for (; !step && at != Iterator(); at.increment(step)) {
    if (!is_mesh_name(at->path()) || !at->is_regular_file(ignored)) continue;
    found.push_back({at->path().native(), at->path().parent_path().lexically_relative(folder)});
  }
  if (step) fail_to_read(folder.native(), step.message());
  std::sort(found.begin(), found.end(), [](const FoundFile& a, const FoundFile& b) { return a.path < b.path; });
  return found;
}

std::vector<FoundFile> files_in(const fs::path& folder, bool is_recursive) {
  std::error_code error;
  if (!is_recursive) return files_below(folder, fs::directory_iterator(folder, error), error);
  return files_below(folder, fs::recursive_directory_iterator(folder, fs::directory_options::skip_permission_denied, error), error);
}

std::vector<std::string> lines_of(std::istream& stream) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> names_in_list(const std::string& path) {
  if (path == "-") return lines_of(std::cin);
  std::error_code ignored;
  if (fs::is_directory(path, ignored)) fail_to_read(path, std::strerror(EISDIR));
  std::ifstream file(path);
  if (!file) fail_to_read(path, std::strerror(errno));
  const std::vector<std::string> lines = lines_of(file);
  if (file.bad()) fail_to_read(path, "reading broke off");
  return lines;
}

void add_files(std::vector<FoundFile>& found, const std::string& name, bool is_recursive) {
  std::error_code ignored;
  if (!fs::is_directory(name, ignored)) {
    found.push_back({name, {}});
    return;
  }
  const std::vector<FoundFile> files = files_in(name, is_recursive);
  found.insert(found.end(), files.begin(), files.end());
}

std::vector<FoundFile> find_files(const BatchFiles& files) {
  std::vector<FoundFile> found;
  for (const std::string& input : files.inputs) {
    if (input[0] != '@') {
      add_files(found, input, files.is_recursive);
    } else {
      for (const std::string& name : names_in_list(input.substr(1))) add_files(found, name, files.is_recursive);
    }
  }
  return found;
}

std::string output_of(const FoundFile& file, const BatchFiles& files) {
  const fs::path input(file.path);
  const std::string extension = format_of_extension(file.path) ? input.extension().native() : ".stl";
  const fs::path folder = files.output_folder.empty() ? input.parent_path() : files.output_folder / file.below;
  return (folder / (input.stem().native() + files.suffix + extension)).lexically_normal().native();
}

// The same for all names of a file, whether it is there yet or not.
std::string identity_of(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  const fs::path real = fs::weakly_canonical(absolute, error);
  return (error ? absolute.lexically_normal() : real).native();
}

void refuse_collisions(const std::vector<BatchJob>& jobs) {
  std::map<std::string, const BatchJob*> by_output;
  for (const BatchJob& job : jobs) {
    const auto [place, is_new] = by_output.emplace(identity_of(job.output), &job);
    if (!is_new) {
      throw Failure(ExitCode::wrong_usage, "'" + place->second->input + "' and '" + job.input + "' would both be written to '" + job.output + "'");
    }
  }
  for (const BatchJob& job : jobs) {
    const auto place = by_output.find(identity_of(job.input));
    if (place == by_output.end() || place->second == &job) continue;
    throw Failure(ExitCode::wrong_usage, "'" + place->second->input + "' would be written to '" + job.input + "', which is an input itself");
  }
}

}  // namespace

std::vector<BatchJob> find_jobs(const BatchFiles& files, BatchWriting writing) {
  if (writing == BatchWriting::new_files && files.output_folder.empty() && files.suffix.empty()) {
    throw Failure(ExitCode::wrong_usage, "several files need --out-dir or --suffix, which say where the results go");
  }
  if (files.suffix.find('/') != std::string::npos) throw Failure(ExitCode::wrong_usage, "--suffix is part of a name and holds no slash");
  std::vector<BatchJob> jobs;
  for (const FoundFile& file : find_files(files)) {
    jobs.push_back({file.path, writing == BatchWriting::in_place ? file.path : output_of(file, files)});
  }
  if (jobs.empty()) throw Failure(ExitCode::wrong_usage, "there is no mesh file among the inputs");
  if (writing != BatchWriting::nothing) {
    refuse_collisions(jobs);
  } else {
    for (BatchJob& job : jobs) job.output.clear();
  }
  return jobs;
}

void make_folders(const std::vector<BatchJob>& jobs) {
  std::set<fs::path> folders;
  for (const BatchJob& job : jobs) folders.insert(fs::path(job.output).parent_path());
  for (const fs::path& folder : folders) {
    std::error_code error;
    if (!folder.empty()) fs::create_directories(folder, error);
    if (error) throw Failure(ExitCode::cannot_write, folder.native() + ": cannot be made: " + error.message());
  }
}
