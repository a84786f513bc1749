#include "section_output.h"

#include <filesystem>

#include "arguments.h"
#include "failure.h"
#include "interruption.h"
#include "safe_output.h"

SectionFormat section_format_of(const std::string& path, std::size_t heights) {
  if (path.empty()) return SectionFormat::none;
  const std::string extension = std::filesystem::path(path).extension().string();
  if (extension == ".svg") return SectionFormat::svg;
  if (extension == ".json") return SectionFormat::json;
  if (extension != ".pic") {
    throw Failure(ExitCode::wrong_usage, "cannot tell the format of '" + path + "': sections are written as .pic, .svg or .json");
  }
  if (heights != 1) throw Failure(ExitCode::wrong_usage, "a .pic file takes one height; .svg and .json take several");
  return SectionFormat::picture;
}

void write_sections(Session& session, const std::string& path, const SectionDrawing& drawing) {
  const SectionFormat format = section_format_of(path, drawing.cuts.size());
  session.messages.set_file(path);
  session.progress.begin("writing " + path);
  SafeOutput output(path);
  std::FILE* const file = output.stream();
  if (format == SectionFormat::picture) {
    trSection section(&session.mesh);
    section.section(axis_of(drawing.axis), drawing.cuts.front().at);
    section.write_pic(file);
  } else {
    format == SectionFormat::svg ? write_svg(file, drawing) : write_json(file, drawing);
    std::fclose(file);
  }
  Interruption::check();
  output.check();
  output.commit();
}
