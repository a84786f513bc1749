#pragma once

#include "platform/containers/dyn_arr.h"
#include "platform/containers/page_arr.h"

using intcoPageArr = coPageArr<int>;
using intcoPageArrcoIterator = coPageArrcoIterator<int>;
using doublecoPageArr = coPageArr<double>;
using doublecoPageArrcoIterator = coPageArrcoIterator<double>;
using intcoDynArr = coDynArr<int>;
using intcoDynArrcoIterator = coDynArrcoIterator<int>;
