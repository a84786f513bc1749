#include "mesh_format.h"

#include "scene_file.h"
#include "scene_signature.h"

namespace {

struct FormatTraits {
  const char* name;
  const char* extension;
  const char* contents;
};

// By MeshFormat.
constexpr FormatTraits format_traits[] = {
    {"native", "mnx", "everything, to the bit: numbers, attributes, colours"},
    {"mesh file", "mes", "text, 4 decimals; numbers, up to four attributes, colours"},
    {"triangle file", "tri", "text, 5 decimals; normals as attributes"},
    {"binary STL", "stl", "single precision; three nodes a triangle"},
    {"ASCII STL", "ast", "text, 7 digits; three nodes a triangle"},
    {"KVX", "kvx", "to the bit; three nodes a triangle"},
    {"OBJ", "obj", "text; read in single precision; colours of vertices"},
    {"PLY", "ply", "binary; read in single precision; colours of vertices"},
    {"OFF", "off", "text; read in single precision; colours are written, not read"},
    {"3MF", "3mf", "text in a zip file; read in single precision; an object for each colour"},
    {"glTF", "gltf", "single precision; a part for each colour"},
    {"binary glTF", "glb", "single precision; a part for each colour"},
    {"COLLADA", "dae", "text, single precision; a part for each colour"},
    {"scene", "", "what the importer finds in it"},
};

const FormatTraits& traits_of(MeshFormat format) { return format_traits[static_cast<std::size_t>(format)]; }

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = lower(c);
  return result;
}

bool contains(const std::string& text, const char* word) { return text.find(word) != std::string::npos; }

std::string_view first_word(std::string_view text) {
  if (starts_with_byte_order_mark(text)) text.remove_prefix(byte_order_mark.size());
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_first_of(" \t\r\n", begin) - begin);
}

bool is_ascii_stl(std::string_view head) {
  const std::string text = lower(head);
  if (lower(first_word(head)) == "solid") return contains(text, "facet") || contains(text, "endsolid");
  const bool is_text = head.find('\0') == std::string_view::npos;
  return is_text && contains(text, "vertex") && contains(text, "endfacet");
}

bool starts_with(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

// Skips lines up to one with an asterisk as its second character, as the reader does; what follows it begins with a number.
bool is_triangle_file(std::string_view head) {
  if (head.find('\0') != std::string_view::npos) return false;
  const std::size_t star = head.size() > 1 && head[1] == '*' ? 0 : head.find("\n *");
  return star != std::string_view::npos && contains(std::string(head.substr(0, 4096)), "TRIANGLE BLOCK");
}

bool is_mesh_file(std::string_view head) {
  if (head.find('\0') != std::string_view::npos) return false;
  const std::string text(head);
  return contains(text, "NODES,FORMAT=") && (starts_with(head, "$INIT") || contains(text, "ELEMENTS,TYPE=") || starts_with(head, "N"));
}

}  // namespace

bool is_available(MeshFormat format) { return !is_scene(format) || has_scene_importer(); }

const char* name_of(MeshFormat format) { return traits_of(format).name; }

const char* extension_of(MeshFormat format) { return traits_of(format).extension; }

int decimals_of(MeshFormat format) {
  return format == MeshFormat::triangle_file ? 5 : (format == MeshFormat::mesh_file ? 4 : 0);
}

const char* contents_of(MeshFormat format) { return traits_of(format).contents; }

std::string extension_in(const std::string& path) {
  const std::size_t name = path.rfind('/') + 1;  // 0 without a slash
  const std::size_t dot = path.rfind('.');
  return dot == std::string::npos || dot < name ? "" : lower(path.substr(dot + 1));
}

std::optional<MeshFormat> format_of_extension(const std::string& path) {
  const std::string extension = extension_in(path);
  for (const MeshFormat format : all_formats) {
    if (extension == extension_of(format) && is_available(format)) return format;
  }
  return {};
}

std::string writable_extensions() {
  std::string text;
  for (const MeshFormat format : all_formats) {
    if (is_available(format)) text += (text.empty() ? "." : ", .") + std::string(extension_of(format));
  }
  return text;
}

std::uint32_t promised_facets(std::string_view head) {
  std::uint32_t count = 0;
  for (std::size_t k = 0; k < 4; ++k) count |= std::uint32_t{static_cast<unsigned char>(head[80 + k])} << (8 * k);
  return count;
}

// A file whose name is that of a scene; STL and the library's own formats are told by their content alone.
static std::optional<MeshFormat> scene_of_name(const std::string& path) {
  const std::optional<MeshFormat> format = format_of_extension(path);
  if (format) return is_scene(*format) ? format : std::nullopt;
  if (is_scene_extension(extension_in(path))) return MeshFormat::other_scene;
  return {};
}

std::optional<MeshFormat> format_of_file(const FileFacts& file) {
  const std::string_view head = file.head;
  if (starts_with(head, "MENDEX native file")) return MeshFormat::native;
  if (starts_with(head, "KVX\r\n\x1a\n")) return MeshFormat::kvx;
  if (is_mesh_file(head)) return MeshFormat::mesh_file;
  if (is_triangle_file(head)) return MeshFormat::triangle_file;
  const bool has_header = head.size() >= binary_stl_header_bytes;
  if (has_header && file.size &&
      *file.size == binary_stl_header_bytes + binary_stl_facet_bytes * std::uint64_t{promised_facets(head)}) {
    return MeshFormat::binary_stl;
  }
  if (const std::optional<MeshFormat> scene = scene_of_signature(head)) return scene;
  if (is_ascii_stl(head)) return MeshFormat::ascii_stl;
  if (const std::optional<MeshFormat> scene = scene_of_name(file.path)) return scene;
  // A text of another kind: the four bytes of a plausible count would have to hold a zero.
  if (!has_header || head.find('\0') == std::string_view::npos) return {};
  return MeshFormat::binary_stl;
}
