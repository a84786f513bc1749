#pragma once

#include "platform/utilities/export.h"

/// What a triangle block reports its edits to while a record is attached to it.
///
/// Each call comes before the change and names one entity; an entity touched twice is reported twice. A number at or beyond the
/// block's count says that the entity is about to be made.
class MENDEX_EXPORT trUndo {
 public:
  virtual ~trUndo();
  virtual void store_node(int n) = 0;
  virtual void store_element(int e) = 0;
};
