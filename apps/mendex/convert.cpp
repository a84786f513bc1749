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
  const ReadOutcome read = read_mesh(session, options.input);
  const int triangles = session.mesh.valid_elements();
  write_mesh(session, {options.output, format, false, options.input});
  session.progress.erase();
  if (session.is_quiet) return ExitCode::done;
  std::printf("%s (%s) -> %s (%s): %d triangles\n", printable(options.input).c_str(), name_of(read.format),
              printable(options.output).c_str(), name_of(format), triangles);
  return ExitCode::done;
}
