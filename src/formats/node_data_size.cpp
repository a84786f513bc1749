#include "formats/message.h"
#include "formats/tri_read.h"
#include "mesh/tri_block.h"

namespace {

void match_existing_attributes(trTriBlock& mesh, int n) {
  const int current = mesh.node_data_size();
  if (n == current) {
    if (current != 0) print_message(" Preserving node data (", current, " attributes per node).");
  } else if (n > current) {
    print_message(" Ignoring ", n - current, " additional attributes per node.");
  } else {
    mesh.set_node_data_size(n);
    print_message(" Insufficient node data in new triangles.");
    if (n != 0) {
      print_message(" There are now only ", n, " attributes per node.");
    } else {
      print_message(" Node attributes have been deleted.");
    }
  }
}

void take_over_attributes(trTriBlock& mesh, int n) {
  if (n < 1) {
    print_message(" New triangles have no node attributes.");
  } else {
    mesh.set_node_data_size(n);
    print_message(" Reading ", n, " attributes per node.");
  }
}

}  // namespace

int trTriRead::reset_node_data_size(int n) {
  if (append) {
    match_existing_attributes(*mesh, n);
  } else if (read_node_data) {
    take_over_attributes(*mesh, n);
  } else if (n != 0) {
    print_message(" Ignoring node atrributes.");
  }
  return mesh->node_data_size();
}
