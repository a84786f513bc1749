#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

enum class MeshFormat { native, mesh_file, triangle_file, binary_stl, ascii_stl, kvx };

constexpr MeshFormat all_formats[] = {MeshFormat::native,     MeshFormat::mesh_file, MeshFormat::triangle_file,
                                      MeshFormat::binary_stl, MeshFormat::ascii_stl, MeshFormat::kvx};

/// For people: "binary STL".
const char* name_of(MeshFormat format);

/// Without the dot: "stl".
const char* extension_of(MeshFormat format);

/// Decimals of the coordinates in a file of the format; 0 where they are kept to the bit or in relation to their size.
int decimals_of(MeshFormat format);

/// What a file of the format keeps of a mesh, in a few words.
const char* contents_of(MeshFormat format);

/// The format that a file's name asks for by its extension, in any case; none when the program cannot write it.
std::optional<MeshFormat> format_of_extension(const std::string& path);

/// The extensions that can be written, with dots.
std::string writable_extensions();

/// How much of a file's start `format_of_content` wants to see.
constexpr std::size_t sniffed_bytes = 64 * 1024;

/// The format of a file that begins with `head`, told by its content alone: many binary files begin with "solid", and
/// many files named .stl are text.
/// @param size  size of the whole file where it is known
/// @return      none when it is no mesh in one of the formats
std::optional<MeshFormat> format_of_content(std::string_view head, std::optional<std::uint64_t> size);

/// What some editors put before UTF-8 text.
constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
inline bool starts_with_byte_order_mark(std::string_view text) {
  return text.substr(0, byte_order_mark.size()) == byte_order_mark;
}

constexpr std::uint64_t binary_stl_header_bytes = 84;
constexpr std::uint64_t binary_stl_facet_bytes = 50;

/// The facet count that the header of a binary STL file promises; `head` holds at least the header.
std::uint32_t promised_facets(std::string_view head);
