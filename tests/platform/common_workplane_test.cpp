#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "platform/common/workplane_list.h"
#include "platform/surface/zrk_surf.h"

namespace {

// A host's global objects may take the shared workplane while they are made and while they are destroyed.
struct GlobalUser {
  GlobalUser() : invalid_at_start(ccWorkplaneList::g_invalid_workplane.workplane().origin().invalid()) {}
  ~GlobalUser() {
    if (!ccWorkplaneList::g_invalid_workplane.workplane().origin().invalid()) std::abort();
  }
  bool invalid_at_start;
};
const GlobalUser global_user;

TEST(Workplane, TheInvalidWorkplaneServesGlobalObjects) {
  EXPECT_TRUE(global_user.invalid_at_start);
  EXPECT_TRUE(ccWorkplaneList::g_invalid_workplane.workplane().origin().invalid());
}

TEST(Workplane, HoldsItsAxesAndIsUndoHistoryData) {
  ccWorkplane plane;
  EXPECT_TRUE(plane.workplane().origin().invalid());
  plane.set_workplane(giWorkplane3(giPoint3(1, 2, 3), giUnitVec3(gi_y_axis), giUnitVec3(gi_x_axis)));
  const std::unique_ptr<ccUndoHistoryData> kept = std::make_unique<ccWorkplane>(plane);
  plane = ccWorkplane();
  EXPECT_TRUE(plane.workplane().origin().invalid());
  const auto* copy = dynamic_cast<const ccWorkplane*>(kept.get());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->workplane().origin(), giPoint3(1, 2, 3));
  EXPECT_EQ(copy->workplane().x_axis(), giUnitVec3(gi_y_axis));
}

class PlaneSurface : public zrkSurf {
 public:
  explicit PlaneSurface(int& alive) : alive_(alive) { ++alive_; }
  ~PlaneSurface() override { --alive_; }
  int closest_point(const giPoint3& p, giPoint3& q) const override {
    q = giPoint3(p.x, p.y, 0.0);
    return 0;
  }
  int project(const giPoint3& p, const giVector3& direction, giPoint3& q) const override {
    if (direction.z() == 0.0) return 1;
    q = p - (p.z / direction.z()) * direction;
    return 0;
  }

 private:
  int& alive_;
};

// A surface is let go through the base class, by whichever owner comes last.
TEST(Surface, IsSharedThroughItsBase) {
  int alive = 0;
  zrkSurfPtr surface = std::make_shared<PlaneSurface>(alive);
  std::unique_ptr<zrkSurf> owned(new PlaneSurface(alive));
  EXPECT_EQ(alive, 2);
  giPoint3 q;
  EXPECT_EQ(surface->project(giPoint3(1, 1, 2), giVector3(1, 0, 1), q), 0);
  EXPECT_EQ(q, giPoint3(-1, 1, 0));
  surface.reset();
  owned.reset();
  EXPECT_EQ(alive, 0);
}

}  // namespace
