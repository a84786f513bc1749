// Programs as a whole, from file to file: `mendex weld` beside admesh, and `mendex repair`. Only those that are there take part.
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "measure.h"
#include "support/check.h"
#include "support/child.h"
#include "support/cut_torus.h"
#include "support/meshes.h"
#include "support/stl_bytes.h"

namespace fs = std::filesystem;

namespace {

fs::path mendex() { return beside_this_program("../apps/mendex/mendex"); }

bool is_installed(const std::string& program) {
  std::istringstream folders(std::getenv("PATH") != nullptr ? std::getenv("PATH") : "");
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (fs::exists(fs::path(folder) / program)) return true;
  }
  return false;
}

fs::path output_of(const Model& model) { return model.side_file("out.stl"); }

Cost run(const Model& model, const std::vector<std::string>& words) {
  fs::remove(output_of(model));
  return cost_of_program(words);
}

Cost time_weld(const Model& model) {
  const Cost cost = run(model, {mendex(), "weld", model.binary_file(), "-o", output_of(model)});
  require(fs::file_size(output_of(model)) == stl_file_bytes(model.facets()), "size of the written file");
  return cost;
}

// --exact pairs equal edges and nothing else; admesh then writes binary STL, as mendex does.
Cost time_admesh(const Model& model) {
  const Cost cost = run(model, {"admesh", "--exact", "--write-binary-stl=" + output_of(model).string(), model.binary_file()});
  require(fs::file_size(output_of(model)) == stl_file_bytes(model.facets()), "size of the written file");
  return cost;
}

Cost time_repair(const Model& model) {
  const Cost cost = run(model, {mendex(), "repair", model.binary_file(), "-o", output_of(model)});
  require(fs::file_size(output_of(model)) == stl_file_bytes(model.facets()), "size of the written file");
  return cost;
}

// Strips whose seams do not match, as loose facets.
Cost time_repair_strips(const Model& model) {
  const fs::path input = model.side_file("strips.stl");
  if (!fs::exists(input)) write_binary_stl(input, soup_of(flat_of(*cut_torus(model).block)));
  const Cost cost = run(model, {mendex(), "repair", input, "-o", output_of(model)});
  require(fs::file_size(output_of(model)) > stl_file_bytes(model.facets()), "size of the written file");
  return cost;
}

}  // namespace

void add_program_measures(std::vector<Measure>& list) {
  if (!fs::exists(mendex())) return;
  list.push_back({"weld_file", "flat_parse", time_weld});
  list.push_back({"repair_file", "weld_file", time_repair});
  list.push_back({"repair_strips_file", "weld_file", time_repair_strips});
  if (is_installed("admesh")) list.push_back({"weld_file by admesh", "", time_admesh, "weld_file"});
}
