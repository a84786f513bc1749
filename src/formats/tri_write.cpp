#include "formats/tri_write.h"

trTriWrite::trTriWrite(const trTriBlock* mesh_in, std::FILE* file_in, double scale_in)
    : mesh(mesh_in), file(file_in), scale(scale_in) {}

trTriWrite::~trTriWrite() {
  if (file != nullptr) std::fclose(file);
}
