#include "scene_polygon_files.h"

#include "text_bytes.h"

namespace {

// Text and bytes on their way to a stream.
class Output {
 public:
  explicit Output(std::FILE* stream) : stream_(stream) {}

  Output& text(const char* words) {
    bytes_ += words;
    return *this;
  }
  // The shortest digits that read back to the same value, behind a blank.
  template <class T>
  Output& number(T value) {
    bytes_ += ' ';
    append_number(bytes_, value);
    return *this;
  }
  Output& end_line() {
    bytes_ += '\n';
    return pass_on();
  }
  // The value as little-endian bytes, which is how the machine keeps it.
  template <class T>
  Output& raw(T value) {
    append_raw(bytes_, value);
    return *this;
  }
  Output& pass_on() {
    if (bytes_.size() >= piece_bytes) flush();
    return *this;
  }
  bool finish() {
    flush();
    return is_sound_;
  }

 private:
  static constexpr std::size_t piece_bytes = 64 * 1024;

  void flush() {
    is_sound_ = is_sound_ && std::fwrite(bytes_.data(), 1, bytes_.size(), stream_) == bytes_.size();
    bytes_.clear();
  }

  std::FILE* stream_;
  std::string bytes_;
  bool is_sound_ = true;
};

// The colour of each vertex, all of whose triangles have the same one; white where none does.
std::vector<giColour> colours_of_vertices(const SceneMesh& mesh) {
  std::vector<giColour> list(mesh.points.size(), tr_decode_colour(NO_COLOUR));
  for (std::size_t k = 0; k < mesh.triangles.size(); ++k) {
    for (const int corner : mesh.triangles[k]) list[static_cast<std::size_t>(corner)] = tr_decode_colour(mesh.colours[k]);
  }
  return list;
}

float part_of_one(std::uint8_t component) { return static_cast<float>(component) / 255.0f; }

}  // namespace

bool write_obj(const SceneMesh& mesh, std::FILE* stream) {
  Output out(stream);
  out.text("# written by mendex").end_line();
  const std::vector<giColour> colours = mesh.colours.empty() ? std::vector<giColour>() : colours_of_vertices(mesh);
  for (std::size_t k = 0; k < mesh.points.size(); ++k) {
    out.text("v");
    for (const double x : mesh.points[k]) out.number(x);
    if (!colours.empty()) {
      const giColour& c = colours[k];
      out.number(part_of_one(c.red())).number(part_of_one(c.green())).number(part_of_one(c.blue()));
    }
    out.end_line();
  }
  for (const std::array<int, 3>& t : mesh.triangles) {
    out.text("f").number(t[0] + 1).number(t[1] + 1).number(t[2] + 1).end_line();
  }
  return out.finish();
}

bool write_ply(const SceneMesh& mesh, std::FILE* stream) {
  Output out(stream);
  out.text("ply\nformat binary_little_endian 1.0\ncomment written by mendex\nelement vertex");
  out.number(mesh.points.size()).text("\nproperty double x\nproperty double y\nproperty double z\n");
  const std::vector<giColour> colours = mesh.colours.empty() ? std::vector<giColour>() : colours_of_vertices(mesh);
  if (!colours.empty()) {
    out.text("property uchar red\nproperty uchar green\nproperty uchar blue\nproperty uchar alpha\n");
  }
  out.text("element face").number(mesh.triangles.size()).text("\nproperty list uchar int vertex_indices\nend_header\n");
  for (std::size_t k = 0; k < mesh.points.size(); ++k) {
    for (const double x : mesh.points[k]) out.raw(x);
    if (!colours.empty()) {
      const giColour& c = colours[k];
      out.raw(c.red()).raw(c.green()).raw(c.blue()).raw(c.alpha());
    }
    out.pass_on();
  }
  constexpr unsigned char corners = 3;
  for (const std::array<int, 3>& t : mesh.triangles) out.raw(corners).raw(t[0]).raw(t[1]).raw(t[2]).pass_on();
  return out.finish();
}

bool write_off(const SceneMesh& mesh, std::FILE* stream) {
  Output out(stream);
  out.text("OFF\n").number(mesh.points.size()).number(mesh.triangles.size()).number(0).end_line();
  for (const std::array<double, 3>& p : mesh.points) out.number(p[0]).number(p[1]).number(p[2]).end_line();
  for (std::size_t k = 0; k < mesh.triangles.size(); ++k) {
    const std::array<int, 3>& t = mesh.triangles[k];
    out.text("3").number(t[0]).number(t[1]).number(t[2]);
    if (!mesh.colours.empty() && mesh.colours[k] != NO_COLOUR) {
      const giColour c = tr_decode_colour(mesh.colours[k]);
      for (const std::uint8_t component : {c.red(), c.green(), c.blue(), c.alpha()}) out.number(int{component});
    }
    out.end_line();
  }
  return out.finish();
}
