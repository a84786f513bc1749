#include <charconv>
#include <cstdio>
#include <memory>
#include <optional>

#include "command_line.h"
#include "mesh_reader.h"
#include "mesh_writer.h"
#include "scene_file.h"
#include "verbs.h"

MeshFormat output_format(const std::string& path) {
  if (const std::optional<MeshFormat> format = format_of_extension(path)) return *format;
  throw Failure(ExitCode::wrong_usage,
                path + ": cannot tell the format from the name; supported are " + writable_extensions());
}

namespace {

struct ConvertOptions {
  std::string input;
  std::string output;
  std::vector<std::string> appended;  // further files, added to the mesh one after the other
  bool is_renumbered = false;
  bool keeps_attributes = false;
  bool is_positive = false;
  std::string smooth;
  std::string stl_range;
};

struct FacetRange {
  int first = 1;
  int last = 0;  // 0: up to the end
};

// "5:", "5:20"; the second not below the first.
std::optional<FacetRange> facet_range_in(const std::string& text) {
  FacetRange range;
  const char* const end = text.data() + text.size();
  std::from_chars_result result = std::from_chars(text.data(), end, range.first);
  if (result.ec != std::errc() || range.first < 1 || result.ptr == end || *result.ptr != ':') return std::nullopt;
  const char* const last = result.ptr + 1;
  if (last == end) return range;
  result = std::from_chars(last, end, range.last);
  if (result.ec != std::errc() || result.ptr != end || range.last < range.first) return std::nullopt;
  return range;
}

std::string range_problem(const std::string& text) {
  return facet_range_in(text) ? "" : "'" + text + "' is not a range such as 5:20";
}

ExitCode run_convert(Session& session, const ConvertOptions& options) {
  const MeshFormat format = output_format(options.output);
  const FacetRange range = facet_range_in(options.stl_range).value_or(FacetRange{});
  const ReadRequest request{options.input, false, options.keeps_attributes, range.first, range.last};
  const ReadOutcome read = read_mesh(session, request);
  for (const std::string& path : options.appended) read_mesh(session, ReadRequest{path, true, options.keeps_attributes});
  const int triangles = session.mesh.valid_elements();
  write_mesh(session,
             {options.output, format, options.is_positive, options.input, options.is_renumbered, options.smooth != "off"});
  session.progress.erase();
  if (session.is_quiet) return ExitCode::done;
  const std::string others =
      options.appended.empty() ? "" : " and " + std::to_string(options.appended.size()) + " more";
  std::printf("%s (%s)%s -> %s (%s): %d triangles\n", printable(options.input).c_str(), name_of(read.format),
              others.c_str(), printable(options.output).c_str(), name_of(format), triangles);
  return ExitCode::done;
}

ExitCode run_formats() {
  for (const MeshFormat format : all_formats) {
    if (is_available(format)) std::printf("  .%-5s %-14s %s\n", extension_of(format), name_of(format), contents_of(format));
  }
  std::printf("Each is read and written. The format of a file that is read is told by its content, of one that is\n"
              "written by its name.\n");
  if (has_scene_importer()) {
    std::printf("Read only, by their names: 3ds, amf, dxf, fbx, lwo, x, x3d and others that the importer of scenes knows.\n");
  } else {
    std::printf("This build has no importer of scenes, and lacks .obj, .ply, .off, .3mf, .gltf, .glb and .dae.\n");
  }
  return ExitCode::done;
}

}  // namespace

void add_convert_verb(CommandLine& line) {
  const auto options = std::make_shared<ConvertOptions>();
  const VerbOptions verb = line.add_verb("convert", "Convert between mesh formats; see mendex formats",
                                         [options](Session& session) { return run_convert(session, *options); });
  verb.add_option("IN", options->input, "File to read").required().type_name("PATH");
  verb.add_option("OUT", options->output, "File to write, in the format of its name").required().type_name("PATH");
  verb.add_option("--append", options->appended, "A further file to add to the mesh; may be given again").type_name("PATH");
  verb.add_flag("--renumber", options->is_renumbered, "Number nodes and elements anew, without gaps (.mnx, .mes)");
  verb.add_flag("--preserve", options->keeps_attributes, "Keep the node attributes that files have");
  verb.add_option("--smooth", options->smooth, "Triangle files: shared vertices with averaged normals, or three vertices\n"
                  "a triangle with its own normal")
      .one_of({"on", "off"})
      .type_name("on|off")
      .show_default("on");
  verb.add_option("--stl-range", options->stl_range, "Of IN, an STL file, only the triangles A to B, counted from 1;\n"
                  "B may be left out")
      .check(range_problem)
      .type_name("A:B");
  verb.add_flag("--positive", options->is_positive, "STL: move the model, by round amounts, to where no coordinate is negative");
  line.set_notes(verb,
                 "What a format cannot hold is lost: mendex formats tells what each keeps.",
                 "mendex convert part.stl part.mnx");
}

void add_formats_verb(CommandLine& line) {
  const VerbOptions verb = line.add_verb("formats", "Tell what can be read and written", [](Session&) { return run_formats(); });
  line.set_notes(verb, "", "mendex formats");
}
