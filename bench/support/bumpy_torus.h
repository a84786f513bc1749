#pragma once

#include <cstddef>

#include "support/buffer.h"

enum class FacetOrder { ordered, shuffled };

/// A closed surface as a triangle soup: nine single-precision coordinates a facet, seen from outside counterclockwise.
struct Soup {
  std::size_t facets = 0;
  std::size_t vertices = 0;    ///< distinct points: half as many as facets, each met by six facets
  double shortest_edge = 0.0;  ///< model units
  Buffer<float> corners;
};

/// A torus of major radius 10 with bumps and ripples on its tube, so that no two edges are alike and no coordinate
/// repeats by symmetry.
///
/// Ordered facets follow the tube strip by strip, so neighbours are near in the file; shuffled ones are in a random
/// order that is the same in every run, so every corner is met far from where it was met before.
/// @param facets  an even number of at least 18 that is twice a product of two numbers from 3 up
Soup bumpy_torus(std::size_t facets, FacetOrder order);
