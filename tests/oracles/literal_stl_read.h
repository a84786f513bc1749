#pragma once

#include "formats/tri_read.h"
#include "platform/geometry/point3.h"

/// The STL readers step by step: one stream call for every value or character, one primitive edit for every node and element. Slow.
class LiteralStlRead : private trTriRead {
 public:
  LiteralStlRead(trTriBlock* mesh, std::FILE* file, int append, int read_node_data);

  int read_stl(int start, int stop);
  int read_ast(int start, int stop);

 private:
  enum Kind { vertex, facet, endfacet, other };

  Kind next_word();
  bool search(Kind sought);
  bool read_facet(giPoint3* corners);
  void begin();

  bool ended_ = false;
};
