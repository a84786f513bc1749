#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// First the library's own formats, then scenes: those that a separate importer reads, see scene_file.h. `other_scene` stands for all
/// that the importer reads beside the named ones; it is not written.
enum class MeshFormat { native, mesh_file, triangle_file, binary_stl, ascii_stl, kvx, obj, ply, off, three_mf, gltf, glb, collada, other_scene };

/// Those with an extension of their own, which are also written.
constexpr MeshFormat all_formats[] = {MeshFormat::native, MeshFormat::mesh_file, MeshFormat::triangle_file, MeshFormat::binary_stl,
                                      MeshFormat::ascii_stl, MeshFormat::kvx, MeshFormat::obj, MeshFormat::ply, MeshFormat::off,
                                      MeshFormat::three_mf, MeshFormat::gltf, MeshFormat::glb, MeshFormat::collada};

constexpr bool is_scene(MeshFormat format) { return format >= MeshFormat::obj; }

/// Whether this build reads and writes the format.
bool is_available(MeshFormat format);

/// For people: "binary STL".
const char* name_of(MeshFormat format);

/// Without the dot: "stl".
const char* extension_of(MeshFormat format);

/// Decimals of the coordinates in a file of the format; 0 where they are kept to the bit or in relation to their size.
int decimals_of(MeshFormat format);

/// What a file of the format keeps of a mesh, in a few words.
const char* contents_of(MeshFormat format);

/// What follows the last dot of a file's name, in lower case; empty without one.
std::string extension_in(const std::string& path);

/// The format that a file's name asks for by its extension, in any case; none when the program cannot write it.
std::optional<MeshFormat> format_of_extension(const std::string& path);

/// The extensions that can be written, with dots.
std::string writable_extensions();

/// How much of a file's start `format_of_file` wants to see.
constexpr std::size_t sniffed_bytes = 64 * 1024;

/// What is known of a file before it is read.
struct FileFacts {
  std::string_view head;               // its first bytes
  std::optional<std::uint64_t> size;   // of the whole file where it is known
  std::string path;
};

/// The format of a file, told by its content: many binary files begin with "solid", and many files named .stl are text. Only of
/// scenes without a signature the name decides.
/// @return  none when it is no mesh in one of the formats
std::optional<MeshFormat> format_of_file(const FileFacts& file);

/// What some editors put before UTF-8 text.
constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
inline bool starts_with_byte_order_mark(std::string_view text) {
  return text.substr(0, byte_order_mark.size()) == byte_order_mark;
}

constexpr std::uint64_t binary_stl_header_bytes = 84;
constexpr std::uint64_t binary_stl_facet_bytes = 50;

/// The facet count that the header of a binary STL file promises; `head` holds at least the header.
std::uint32_t promised_facets(std::string_view head);
