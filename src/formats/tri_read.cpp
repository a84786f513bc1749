#include "formats/tri_read.h"

#include <ostream>

#include "mesh/tri_block.h"
#include "progress/output.h"

trTriRead::trTriRead(trTriBlock* mesh_block, std::FILE* stream, int append_to, int keep_node_data)
    : mesh(mesh_block), file(stream), append(append_to), read_node_data(keep_node_data) {}

trTriRead::~trTriRead() {
  if (file != nullptr) std::fclose(file);
}

void trTriRead::begin_reading() {
  if (append) {
    mesh->alter(1);
  } else {
    mesh->clear();
  }
}

int trTriRead::reset_node_data_size(int n) {
  std::ostream& out = tr_out();
  if (append) {
    reconcile_appended_data(n);
  } else if (!read_node_data) {
    if (n != 0) out << tr_brnknls(" Ignoring node atrributes.") << '\n';
  } else if (n < 1) {
    out << tr_brnknls(" New triangles have no node attributes.") << '\n';
  } else {
    mesh->set_node_data_size(n);
    out << tr_brnknls(" Reading ") << n << tr_brnknls(" attributes per node.") << '\n';
  }
  return mesh->node_data_size();
}

void trTriRead::reconcile_appended_data(int n) {
  std::ostream& out = tr_out();
  const int current = mesh->node_data_size();
  if (n == current) {
    if (current != 0) out << tr_brnknls(" Preserving node data (") << current << tr_brnknls(" attributes per node).") << '\n';
    return;
  }
  if (n > current) {
    out << tr_brnknls(" Ignoring ") << n - current << tr_brnknls(" additional attributes per node.") << '\n';
    return;
  }
  mesh->set_node_data_size(n);
  out << tr_brnknls(" Insufficient node data in new triangles.") << '\n';
  if (n != 0) {
    out << tr_brnknls(" There are now only ") << n << tr_brnknls(" attributes per node.") << '\n';
  } else {
    out << tr_brnknls(" Node attributes have been deleted.") << '\n';
  }
}
