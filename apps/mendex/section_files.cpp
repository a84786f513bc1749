#include "section_files.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "json_values.h"

namespace {

// The shortest text that reads back as the same number, whatever the locale; null where JSON knows none.
void put_number(std::FILE* file, double value) {
  if (!std::isfinite(value)) {
    std::fputs("null", file);
    return;
  }
  char text[32];
  const char* const end = std::to_chars(text, text + sizeof text, value + 0.0).ptr;
  std::fwrite(text, 1, static_cast<std::size_t>(end - text), file);
}

std::string text_of(double value) {
  char text[32];
  return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

std::string escaped(const std::string& text) {
  std::string escaped;
  for (const char c : valid_utf8(text)) {
    switch (c) {
      case '&': escaped += "&amp;"; break;
      case '<': escaped += "&lt;"; break;
      case '>': escaped += "&gt;"; break;
      default: escaped += static_cast<unsigned char>(c) < ' ' ? '?' : c;
    }
  }
  return escaped;
}

// Which axes of the model run to the right and up.
struct View {
  gi_Axis right, up;

  explicit View(char axis) : right(axis == 'x' ? gi_y_axis : gi_x_axis), up(axis == 'z' ? gi_y_axis : gi_z_axis) {}
};

// What the picture shows: upward coordinates negated.
struct Frame {
  double left = HUGE_VAL, right = -HUGE_VAL, top = HUGE_VAL, bottom = -HUGE_VAL;
  double corner_right = 0.0, corner_up = 0.0;  // where coordinates count from

  void show(double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) return;
    left = std::min(left, x);
    right = std::max(right, x);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
  }
  double size() const { return std::max(right - left, bottom - top); }
};

Frame frame_of(const SectionDrawing& drawing, const View& view) {
  Frame frame;
  for (const SectionAt& cut : drawing.cuts) {
    for (const SectionLine& line : cut.lines) {
      for (const giPoint3& p : line.points) frame.show(p[view.right], -p[view.up]);
    }
  }
  if (frame.left > frame.right) frame.show(0.0, 0.0);
  // Viewers reckon with seven digits.
  constexpr double far = 1000.0;
  if (std::max({std::fabs(frame.left), std::fabs(frame.right), std::fabs(frame.top), std::fabs(frame.bottom)}) > far * frame.size()) {
    frame.corner_right = frame.left;
    frame.corner_up = -frame.bottom;
    frame.right -= frame.left;
    frame.top -= frame.bottom;
    frame.left = frame.bottom = 0.0;
  }
  return frame;
}

void put_svg_head(std::FILE* file, const SectionDrawing& drawing, const View& view, const Frame& frame) {
  const double size = frame.size() > 0.0 ? frame.size() : 1.0;
  const double margin = 0.03 * size;
  const double width = frame.right - frame.left + 2 * margin, height = frame.bottom - frame.top + 2 * margin;
  const double pixels = 1000.0 / std::max(width, height);
  const auto in_pixels = [pixels](double length) { return text_of(std::max(1.0, std::round(pixels * length))); };
  std::fprintf(file, "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%s\" height=\"%s\" viewBox=\"%s %s %s %s\">\n", in_pixels(width).c_str(),
               in_pixels(height).c_str(), text_of(frame.left - margin).c_str(), text_of(frame.top - margin).c_str(), text_of(width).c_str(),
               text_of(height).c_str());
  std::fprintf(file, "<title>%s</title>\n", escaped(drawing.model).c_str());
  std::fprintf(file, "<desc>Cuts across %c; %c to the right, %c up", drawing.axis, "xyz"[view.right], "xyz"[view.up]);
  if (frame.corner_right != 0.0 || frame.corner_up != 0.0) {
    std::fprintf(file, ", counted from %s, %s", text_of(frame.corner_right).c_str(), text_of(frame.corner_up).c_str());
  }
  std::fprintf(file, "</desc>\n<g fill=\"none\" stroke-width=\"%s\" stroke-linejoin=\"round\">\n", text_of(0.002 * size).c_str());
}

void put_path(std::FILE* file, const SectionLine& line, const View& view, const Frame& frame) {
  const char* command = "<path d=\"M";
  for (const giPoint3& p : line.points) {
    const double x = p[view.right] - frame.corner_right, y = frame.corner_up - p[view.up];
    if (!std::isfinite(x) || !std::isfinite(y)) continue;
    std::fputs(command, file);
    put_number(file, x);
    std::fputc(' ', file);
    put_number(file, y);
    command = "L";
  }
  if (*command == 'L') std::fputs(line.is_closed ? "Z\"/>\n" : "\"/>\n", file);
}

void put_points(std::FILE* file, const SectionLine& line) {
  const char* separator = "[";
  for (const giPoint3& p : line.points) {
    std::fputs(separator, file);
    std::fputc('[', file);
    put_number(file, p.x);
    std::fputc(',', file);
    put_number(file, p.y);
    std::fputc(',', file);
    put_number(file, p.z);
    std::fputc(']', file);
    separator = ",";
  }
  std::fputc(']', file);
}

}  // namespace

void write_svg(std::FILE* file, const SectionDrawing& drawing) {
  const View view(drawing.axis);
  const Frame frame = frame_of(drawing, view);
  put_svg_head(file, drawing, view, frame);
  for (std::size_t k = 0; k < drawing.cuts.size(); ++k) {
    const SectionAt& cut = drawing.cuts[k];
    // From blue to red, as a map of heights is coloured.
    const double hue = drawing.cuts.size() < 2 ? 220.0 : 220.0 * (1.0 - static_cast<double>(k) / static_cast<double>(drawing.cuts.size() - 1));
    std::fprintf(file, "<g stroke=\"hsl(%d,80%%,40%%)\"><title>%c = %s</title>\n", static_cast<int>(hue), drawing.axis, text_of(cut.at).c_str());
    for (const SectionLine& line : cut.lines) put_path(file, line, view, frame);
    std::fputs("</g>\n", file);
  }
  std::fputs("</g>\n</svg>\n", file);
}

void write_json(std::FILE* file, const SectionDrawing& drawing) {
  std::fprintf(file, "{\"file\":%s,\"axis\":\"%c\",\"sections\":[", line_of(drawing.model).c_str(), drawing.axis);
  const char* before_cut = "";
  for (const SectionAt& cut : drawing.cuts) {
    std::fprintf(file, "%s\n {\"at\":%s,\"polylines\":[", before_cut, text_of(cut.at).c_str());
    before_cut = ",";
    const char* before_line = "";
    for (const SectionLine& line : cut.lines) {
      std::fprintf(file, "%s\n  {\"closed\":%s,\"length\":", before_line, line.is_closed ? "true" : "false");
      put_number(file, line.length);
      std::fputs(",\"points\":", file);
      put_points(file, line);
      std::fputc('}', file);
      before_line = ",";
    }
    std::fputs("]}", file);
  }
  std::fputs("]}\n", file);
}
