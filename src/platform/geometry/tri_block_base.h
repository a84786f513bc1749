#pragma once

#include "platform/containers/feature_pool.h"
#include "platform/geometry/arrays.h"
#include "platform/geometry/box2.h"
#include "platform/geometry/box3.h"
#include "platform/utilities/export.h"

class intcoSet;

// Pages of 4096 entries for the arrays that grow with a mesh.
constexpr int gi_mesh_page_shift = 12;

/// Points with a cached bounding box.
struct giBoxArrPoint3 {
  giPoint3coPageArr points{gi_mesh_page_shift, 5, 10};
  giBox3 box;
  int box_stale = 1;
};
/// Points of the plane with a cached bounding box.
struct giBoxArrPoint2 {
  giPoint2coPageArr points{gi_mesh_page_shift, 5, 10};
  giBox2 box;
  int box_stale = 1;
};
struct giTriangleArr {
  giTrianglecoPageArr triangles{gi_mesh_page_shift, 5, 10};
};
struct giNormalArr {
  giVector3coPageArr normals{gi_mesh_page_shift, 5, 10};
};
struct giLinkArr {
  giLinkcoPageArr links{gi_mesh_page_shift, 5, 10};
};

/// Node coordinates, by node number.
class MENDEX_EXPORT giNodeXYZ : public coFeature<giNodeXYZ, giBoxArrPoint3> {};
/// Triangles, by element number.
class MENDEX_EXPORT giTriArrcoFeature : public coFeature<giTriArrcoFeature, giTriangleArr> {};
/// Node normals, by node number.
class MENDEX_EXPORT giNormArrcoFeature : public coFeature<giNormArrcoFeature, giNormalArr> {};
/// Points of the plane, one for each node, by node number.
class MENDEX_EXPORT giBoxArrPoint2coFeature : public coFeature<giBoxArrPoint2coFeature, giBoxArrPoint2> {};
/// Triangle colours as a host keeps them, by element number.
class MENDEX_EXPORT giTriCols : public coFeature<giTriCols, giColourcoPageArr> {};

/// Neighbours of triangles, by element number: a snapshot that later edits do not touch.
class MENDEX_EXPORT giLinkArrcoFeature : public coFeature<giLinkArrcoFeature, giLinkArr> {};

/// A bag of mesh data under the feature types that all geometry code knows. A host's own blocks count from 0; the library's
/// triangle block counts from 1 and reserves slot 0.
class MENDEX_EXPORT giTriBlock : public coFeaturePool {
 public:
  /// Deletes triangles without renumbering any other, in the block's own way, for example one that can be taken back.
  /// @return whether the block has such a way; when not, nothing was done and the triangles are its holder's to take out
  virtual int delete_in_place(const intcoSet& triangles);
};

inline int giTriBlock::delete_in_place(const intcoSet&) { return 0; }

using giBoxArrPoint3coFeature = giNodeXYZ;
using giColourcoPageArrcoFeature = giTriCols;
