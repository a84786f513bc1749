// The mesh handed to a host in the arrays that all geometry code knows.

#include "mesh/tri_block.h"
#include "mesh/memory_guard.h"
#include "progress/progress.h"

void trTriBlock::get_giTriBlock(giTriBlock& out) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { get_giTriBlock(out); });
  if (valid_nodes() != node_count() - 1 || valid_elements() != element_count() - 1) renumber();
  if (tr_interrupt()) return;
  give_nodes(out);
  give_elements(out);
  give_colours(out);
}

void trTriBlock::give_nodes(giTriBlock& out) const {
  giNodeXYZ points;
  out.check_out(points);
  giBoxArrPoint3& host = *points.data();
  for (int i = 1; i < node_count(); ++i) host.points[host.points.count()] = point(i);
  host.box_stale = 1;
  if (normals_built && normals_ != nullptr) {
    giNormArrcoFeature normals;
    out.check_out(normals);
    giVector3coPageArr& list = normals.data()->normals;
    for (int i = 1; i < node_count(); ++i) list[list.count()] = normals_->at(i);
  }
  giBoxArrPoint2coFeature own;
  if (!find(own)) return;
  giBoxArrPoint2coFeature planar;
  out.check_out(planar);
  giPoint2coPageArr& list = planar.data()->points;
  for (int i = 1; i < own.data()->points.count(); ++i) list[list.count()] = own.data()->points.at(i);
  planar.data()->box_stale = 1;
}

void trTriBlock::give_elements(giTriBlock& out) const {
  giTriArrcoFeature triangles;
  out.check_out(triangles);
  giTrianglecoPageArr& list = triangles.data()->triangles;
  for (int e = 1; e < element_count(); ++e) {
    const trElement& t = element(e);
    giTriangle& given = list[list.count()];
    for (int k = 0; k < 3; ++k) given[k] = t[k] - 1;
  }
}

// A host without colours in its mesh gets no array of them.
void trTriBlock::give_colours(giTriBlock& out) const {
  giTriCols colours;
  for (int e = 1; e < element_count(); ++e) {
    const int colour = get_element_colour(e);
    if (colour == NO_COLOUR) continue;
    if (!colours.valid()) {
      out.check_out(colours);
      colours.data()->expand(element_count() - 1);
    }
    (*colours.data())[e - 1] = tr_decode_colour(colour);
  }
}
