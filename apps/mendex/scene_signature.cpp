#include "scene_signature.h"

#include "scene_file.h"

namespace {

bool contains(std::string_view text, std::string_view word) { return text.find(word) != std::string_view::npos; }

bool starts_with(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

std::string_view without_blanks(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  return begin == std::string_view::npos ? std::string_view() : text.substr(begin);
}

std::string_view first_word_of(std::string_view line) { return line.substr(0, line.find_first_of(" \t\r\n")); }

bool is_one_of(std::string_view word, std::initializer_list<std::string_view> words) {
  for (const std::string_view w : words) {
    if (w == word) return true;
  }
  return false;
}

// Lines of the format's keywords and comments only, among them a vertex. The last line may be cut short.
bool is_obj(std::string_view head) {
  constexpr int lines_to_see = 100;
  if (contains(head, std::string_view("\0", 1))) return false;
  bool has_vertex = false;
  for (int line = 0; line < lines_to_see; ++line) {
    head = without_blanks(head);
    const std::size_t end = head.find('\n');
    if (end == std::string_view::npos) break;
    const std::string_view word = first_word_of(head);
    if (word.empty() || (word[0] != '#' && !is_one_of(word, {"v", "vn", "vt", "vp", "f", "l", "p", "o", "g", "s", "mtllib", "usemtl"}))) {
      return false;
    }
    has_vertex |= word == "v";
    head.remove_prefix(end);
  }
  return has_vertex;
}

std::optional<MeshFormat> signature_of(std::string_view head) {
  if (starts_with(head, "ply\n") || starts_with(head, "ply\r")) return MeshFormat::ply;
  if (starts_with(head, "glTF")) return MeshFormat::glb;
  if (starts_with(head, "PK\x03\x04")) {
    if (contains(head, "3D/") || contains(head, "[Content_Types].xml")) return MeshFormat::three_mf;
    return {};
  }
  if (starts_with(head, "Kaydara FBX Binary")) return MeshFormat::other_scene;
  if (starts_with(head, byte_order_mark)) head.remove_prefix(byte_order_mark.size());
  const std::string_view text = without_blanks(head);
  if (is_one_of(first_word_of(text), {"OFF", "COFF", "NOFF", "CNOFF"})) return MeshFormat::off;
  if (starts_with(text, "<") && contains(text, "<COLLADA")) return MeshFormat::collada;
  if (starts_with(text, "{") && contains(text, "\"asset\"") && contains(text, "\"version\"")) return MeshFormat::gltf;
  if (is_obj(text)) return MeshFormat::obj;
  return {};
}

}  // namespace

std::optional<MeshFormat> scene_of_signature(std::string_view head) {
  if (!has_scene_importer()) return {};
  return signature_of(head);
}
