#include "mesh_format.h"

namespace {

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

}  // namespace

const char* name_of(MeshFormat format) { return format == MeshFormat::binary_stl ? "binary STL" : "ASCII STL"; }

std::optional<MeshFormat> format_of_extension(const std::string& path) {
  const std::size_t name = path.rfind('/') + 1;  // 0 without a slash
  const std::size_t dot = path.rfind('.');
  if (dot == std::string::npos || dot < name) return {};
  const std::string extension = lower(path.substr(dot));
  if (extension == ".stl") return MeshFormat::binary_stl;
  if (extension == ".ast") return MeshFormat::ascii_stl;
  return {};
}

const char* writable_extensions() { return ".stl (binary STL) and .ast (ASCII STL)"; }

std::uint32_t promised_facets(std::string_view head) {
  std::uint32_t count = 0;
  for (std::size_t k = 0; k < 4; ++k) count |= std::uint32_t{static_cast<unsigned char>(head[80 + k])} << (8 * k);
  return count;
}

std::optional<MeshFormat> format_of_content(std::string_view head, std::optional<std::uint64_t> size) {
  const bool has_header = head.size() >= binary_stl_header_bytes;
  if (has_header && size &&
      *size == binary_stl_header_bytes + binary_stl_facet_bytes * std::uint64_t{promised_facets(head)}) {
    return MeshFormat::binary_stl;
  }
  if (is_ascii_stl(head)) return MeshFormat::ascii_stl;
  // A text of another kind: the four bytes of a plausible count would have to hold a zero.
  if (!has_header || head.find('\0') == std::string_view::npos) return {};
  return MeshFormat::binary_stl;
}
