#pragma once

#include "platform/common/undo_history_data.h"
#include "platform/geometry/workplane3.h"

/// A workplane as hosts keep it; its origin is invalid by default, and it then maps nothing.
class MENDEX_EXPORT ccWorkplane : public ccUndoHistoryData {
 public:
  constexpr ccWorkplane() = default;
  explicit ccWorkplane(const giWorkplane3& axes) : axes_(axes) {}

  const giWorkplane3& workplane() const { return axes_; }
  void set_workplane(const giWorkplane3& axes) { axes_ = axes; }

 private:
  giWorkplane3 axes_;
};
