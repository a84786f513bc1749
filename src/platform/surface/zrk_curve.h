#pragma once

#include <memory>

#include "platform/containers/page_arr.h"

class zrkCurve3;

/// A curve in space, shared by all who hold it.
using zrkCurvePtr3 = std::shared_ptr<zrkCurve3>;
using zrkCurvePtr3coPageArr = coPageArr<zrkCurvePtr3>;
