#include "formats/tri_write.h"

trTriWrite::trTriWrite(const trTriBlock* mesh_block, std::FILE* stream, double coordinate_scale)
    : mesh(mesh_block), file(stream), scale(coordinate_scale) {}

trTriWrite::~trTriWrite() {
  if (file != nullptr) std::fclose(file);
}
