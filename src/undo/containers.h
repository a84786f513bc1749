#pragma once

#include "platform/containers/dyn_arr.h"
#include "platform/containers/owning_ptr.h"
#include "platform/containers/page_arr.h"

class trUndo;
class trUndoElement;
class trUndoNode;

// Containers of the journal's own types.
using trUndoElementcoPageArr = coPageArr<trUndoElement>;
using trUndoElementcoPageArrcoIterator = coPageArrcoIterator<trUndoElement>;
using trUndoNodecoPageArr = coPageArr<trUndoNode>;
using trUndoNodecoPageArrcoIterator = coPageArrcoIterator<trUndoNode>;
using trUndocoDynArrPrgcoPrg = coPrg<trUndo>;
using trUndocoDynArrPrgcoPrgcoDynArr = coDynArr<trUndocoDynArrPrgcoPrg>;
using trUndocoDynArrPrgcoPrgcoDynArrcoIterator = coDynArrcoIterator<trUndocoDynArrPrgcoPrg>;
