#include "undo/undo.h"

trUndo::~trUndo() = default;
