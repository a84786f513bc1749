#include "formats/tri_read.h"

#include "mesh/tri_block.h"

trTriRead::trTriRead(trTriBlock* mesh_in, std::FILE* file_in, int append_in, int read_node_data_in)
    : mesh(mesh_in), file(file_in), append(append_in), read_node_data(read_node_data_in) {}

trTriRead::~trTriRead() {
  if (file != nullptr) std::fclose(file);
}

void trTriRead::begin_replacing_or_appending() {
  if (append) {
    mesh->alter(1);
  } else {
    mesh->clear();
  }
}
