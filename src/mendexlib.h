#pragma once

/// The one header that a host includes: everything the library exports.

#include "platform/containers/cell_pool.h"
#include "platform/containers/feature_pool.h"
#include "platform/containers/int_slist.h"
#include "platform/containers/page_arr.h"
#include "platform/containers/page_heap.h"
#include "platform/utilities/export.h"
