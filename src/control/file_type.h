#pragma once

/// The file formats, in the order in which they are tried and listed; the last stands for none.
enum trFileType {
  tr_native_file,
  tr_mesh_file,
  tr_triangle_file,
  tr_stl_file,
  tr_ascii_stl_file,
  tr_kvx_file,
  tr_unknown_file
};
