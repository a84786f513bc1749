#pragma once

#include "platform/containers/dyn_arr.h"
#include "platform/containers/number_arrays.h"
#include "platform/containers/owning_ptr.h"
#include "platform/containers/page_arr.h"

class trCycle;
class trCycleRep;

/// Node numbers along one chain of a section.
using trSectionBoundary = intcoPageArr;

// Containers of the boundaries' own types.
using trCyclecoPageArr = coPageArr<trCycle>;
using trCyclecoPageArrcoIterator = coPageArrcoIterator<trCycle>;
using trCycleRepcoPageArr = coPageArr<trCycleRep>;
using trCycleRepcoPageArrcoIterator = coPageArrcoIterator<trCycleRep>;
using trSectionBoundarycoDynArrPrgcoPrg = coPrg<trSectionBoundary>;
using trSectionBoundarycoDynArrPrgcoPrgcoDynArr = coDynArr<trSectionBoundarycoDynArrPrgcoPrg>;
using trSectionBoundarycoDynArrPrgcoPrgcoDynArrcoIterator = coDynArrcoIterator<trSectionBoundarycoDynArrPrgcoPrg>;
