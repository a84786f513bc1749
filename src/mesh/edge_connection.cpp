#include "mesh/edge_connection.h"

trEdgeConnection::trEdgeConnection(const trEdgeConnection& other)
    : start_node_(other.start_node_), end_node_(other.end_node_), triangles_(utCopy(), other.triangles_) {}

trEdgeConnection& trEdgeConnection::operator=(const trEdgeConnection& other) {
  if (this == &other) return *this;
  start_node_ = other.start_node_;
  end_node_ = other.end_node_;
  triangles_.become(utCopy(), other.triangles_);
  return *this;
}

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
