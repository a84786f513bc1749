#pragma once

#include <mendexlib.h>

/// The controller, with what a host needs that edits its mesh beside the actions.
class HostControl : public trControl {
 public:
  /// To be called after such an edit: defect lists go stale.
  using trControl::triangle_update;
};
