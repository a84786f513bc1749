#include "formats/tri_read.h"

#include "formats/entity_limit.h"
#include "mesh/tri_block.h"
#include "progress/message.h"

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

// Where elements share nodes, making all element lists at once on their first use takes less time than keeping them from the start.
void trTriRead::leave_lists_for_later() {
  if (!append) mesh->elements_referenced = 0;
}

int trTriRead::reset_node_data_size(int n) {
  if (append) {
    reconcile_appended_data(n);
  } else if (!read_node_data) {
    if (n != 0) print_message(" Ignoring node atrributes.");
  } else if (n < 1) {
    print_message(" New triangles have no node attributes.");
  } else {
    mesh->set_node_data_size(n);
    print_message(" Reading ", n, " attributes per node.");
  }
  return mesh->node_data_size();
}

void trTriRead::reconcile_appended_data(int n) {
  const int current = mesh->node_data_size();
  if (n == current) {
    if (current != 0) print_message(" Preserving node data (", current, " attributes per node).");
    return;
  }
  if (n > current) {
    print_message(" Ignoring ", n - current, " additional attributes per node.");
    return;
  }
  mesh->set_node_data_size(n);
  print_message(" Insufficient node data in new triangles.");
  if (n != 0) {
    print_message(" There are now only ", n, " attributes per node.");
  } else {
    print_message(" Node attributes have been deleted.");
  }
}
