#pragma once

#include "platform/utilities/export.h"

/// Base of data that a host may keep in its own undo history.
class MENDEX_EXPORT ccUndoHistoryData {
 public:
  constexpr ccUndoHistoryData() = default;
  ccUndoHistoryData(const ccUndoHistoryData&) = default;
  ccUndoHistoryData& operator=(const ccUndoHistoryData&) = default;
  virtual ~ccUndoHistoryData();
};
