// The example of the README: reads a binary STL file, makes one node of coincident ones, writes it back.
#include <mendexlib.h>

int main(int, char** names) {
  trTriBlock mesh;
  trTriRead(&mesh, std::fopen(names[1], "rb"), 0, 0).read_stl(1, 0);  // from the first triangle to the last
  mesh.unduplicate_nodes(1e-6);                                       // nodes closer than this become one
  return trTriWrite(&mesh, std::fopen(names[2], "wb"), 1.0).write_stl(0) ? 0 : 1;
}
