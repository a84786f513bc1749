#include "architecture/include_ladder.h"

#include <map>
#include <set>

namespace {

const std::string umbrella = "mendexlib.h";
const std::string undo_header = "undo/undo.h";

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

std::string folder_of(const std::string& name) {
  const std::size_t slash = name.rfind('/');
  return slash == std::string::npos ? std::string() : name.substr(0, slash);
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
      } else if (library_names_.count(include) != 0 && include != umbrella) {
        report(file, include, "hosts include nothing of the library but " + umbrella);
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

  // The standard library's headers have neither folder nor ending, C's and the system's have no place below our folders.
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

}  // namespace

std::vector<std::string> ladder_faults(const std::vector<SourceFile>& files) {
  LadderCheck check(files);
  for (const SourceFile& file : files) check.check(file);
  return check.take_faults();
}
