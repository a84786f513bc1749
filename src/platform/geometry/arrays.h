#pragma once

#include "platform/containers/page_arr.h"
#include "platform/geometry/colour.h"
#include "platform/geometry/link.h"
#include "platform/geometry/point2.h"
#include "platform/geometry/point3.h"
#include "platform/geometry/triangle.h"
#include "platform/geometry/vector3.h"

// Paged arrays of geometric values.
using giPoint3coPageArr = coPageArr<giPoint3>;
using giPoint2coPageArr = coPageArr<giPoint2>;
using giVector3coPageArr = coPageArr<giVector3>;
using giColourcoPageArr = coPageArr<giColour>;
using giTrianglecoPageArr = coPageArr<giTriangle>;
using giLinkcoPageArr = coPageArr<giLink>;
