#include "platform/common/workplane.h"

#include "platform/common/workplane_list.h"

namespace {

// Initialised before any code runs, and never destroyed.
union InvalidWorkplane {
  constexpr InvalidWorkplane() : plane() {}
  ~InvalidWorkplane() {}
  ccWorkplane plane;
};

InvalidWorkplane invalid_workplane;

}  // namespace

const ccWorkplane& ccWorkplaneList::g_invalid_workplane = invalid_workplane.plane;
