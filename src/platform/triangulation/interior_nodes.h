#pragma once

#include "platform/triangulation/at2_plane.h"
#include "platform/triangulation/planar_mesh.h"
#include "platform/triangulation/spacing_field.h"
#include "platform/triangulation/work_meter.h"

/// The most interior nodes that are made.
constexpr double max_interior_nodes = 1e7;

/// Inserts grid points into the inside of the mesh where the local spacing is the full one and the boundary not near.
/// Those that a walk does not find inside, or finds on a node, are left out. False when the work shall stop.
bool insert_grid_points(PlanarMesh& mesh, const SpacingField& field, const std::vector<giPoint2>& points,
                        WorkMeter& meter);

/// Inserts circumcentres until no triangle inside is too large for the local spacing, but for those whose centre is
/// beyond an edge of the boundary or too near one (L. P. Chew, Guaranteed-quality triangular meshes, 1989). Every node
/// inserted is farther from all it sees than it lets triangles be wide, so the process ends.
at2PlaneError refine_triangles(PlanarMesh& mesh, const SpacingField& field, WorkMeter& meter);

/// Moves nodes from `first` on towards the middle of their neighbours where that makes the sharpest angle around them
/// less sharp, a few rounds. None comes nearer to the boundary than half the local spacing, nor to another node than
/// that where it was not as near before. False when the work shall stop.
bool smooth_nodes(PlanarMesh& mesh, const SpacingField& field, int first, WorkMeter& meter);
