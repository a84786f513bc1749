#pragma once

#include "platform/geometry/point3.h"

/// Height over longest edge of a triangle, the root taken at the end; the largest double when the longest edge is zero.
double aspect_literal(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2);

/// Whether p0-p3 is the better diagonal of the quadrilateral, step by step.
int check_dela_literal(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2, const giPoint3& p3);
