#pragma once

#include "platform/containers/page_arr.h"

// Paged arrays of plain values.
using intcoPageArr = coPageArr<int>;
using doublecoPageArr = coPageArr<double>;
using intcoPageArrcoIterator = coPageArrcoIterator<int>;
using doublecoPageArrcoIterator = coPageArrcoIterator<double>;
