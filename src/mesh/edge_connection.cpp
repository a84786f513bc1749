#include "mesh/edge_connection.h"

int trEdgeConnection::triangles(intcoPageArr& list) const {
  intcoSet::coIterator it(triangles_);
  while (++it) list[list.count()] = it();
  return list.count();
}

int trEdgeConnection::co_hash() const {
  int hash = start_node_ ^ end_node_ ^ triangles_.count();
  intcoSet::coIterator it(triangles_);
  while (++it) hash ^= it();
  return hash;
}
