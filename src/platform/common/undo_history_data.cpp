#include "platform/common/undo_history_data.h"

ccUndoHistoryData::~ccUndoHistoryData() = default;
