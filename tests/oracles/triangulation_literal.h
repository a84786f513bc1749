#pragma once

#include <string>
#include <vector>

#include "support/plane_area.h"

/// What is wrong with a finished triangulation, as words; empty when all is well: each edge given is the side of one
/// triangle in its direction, every other side has its opposite, all nodes are used, triangles turn counter-clockwise
/// and have the area of the loops to 1e-9 and the number that Euler's formula asks for, and across no side that was not
/// given lies the next node in the circle. Exact for integers below 2^10.
std::string triangulation_fault(const PlaneArea& area);

/// What is wrong with where interior nodes lie, by the definition of the local spacing, each against every edge; empty
/// when all is well.
std::string spacing_fault(const PlaneArea& area);

double loop_area(const PlaneArea& area);
/// In degrees, of all triangles.
double sharpest_angle(const PlaneArea& area);

/// What the triangulator must say to loops of points with small integer coordinates, found by comparing everything with
/// everything.
struct ExpectedErrors {
  at2PlaneError error = at2_success;
  at2PlaneError or_else = at2_success;  // where edges touch and others cross, either may be met first
};
ExpectedErrors expected_errors(const PlaneArea& area);
