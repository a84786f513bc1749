#include <cstdio>

#include "mesh_reader.h"
#include "mesh_writer.h"
#include "verbs.h"

MeshFormat output_format(const std::string& path) {
  if (const std::optional<MeshFormat> format = format_of_extension(path)) return *format;
  throw Failure(ExitCode::wrong_usage,
                path + ": cannot tell the format from the name; supported are " + writable_extensions());
}

ExitCode run_convert(Session& session, const ConvertOptions& options) {
  const MeshFormat format = output_format(options.output);
  ReadRequest request{options.input, false, options.keeps_attributes, options.first_facet, options.last_facet};
  const ReadOutcome read = read_mesh(session, request);
  for (const std::string& path : options.appended) read_mesh(session, ReadRequest{path, true, options.keeps_attributes});
  const int triangles = session.mesh.valid_elements();
  write_mesh(session,
             {options.output, format, options.is_positive, options.input, options.is_renumbered, options.is_smooth});
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
    std::printf("  .%-5s %-14s %s\n", extension_of(format), name_of(format), contents_of(format));
  }
  std::printf("Each is read and written. The format of a file that is read is told by its content, of one that is\n"
              "written by its name.\n");
  return ExitCode::done;
}
