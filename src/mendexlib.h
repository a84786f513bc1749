#pragma once

/// The one header that a host includes: everything the library exports.

#include "platform/containers/base_set.h"
#include "platform/containers/buffer_guard.h"
#include "platform/containers/cell_pool.h"
#include "platform/containers/dyn_arr.h"
#include "platform/containers/feature_pool.h"
#include "platform/containers/hash.h"
#include "platform/containers/int_set.h"
#include "platform/containers/int_slist.h"
#include "platform/containers/int_slots.h"
#include "platform/containers/int_table.h"
#include "platform/containers/number_arrays.h"
#include "platform/containers/owning_ptr.h"
#include "platform/containers/page_arr.h"
#include "platform/containers/page_heap.h"
#include "platform/containers/set.h"
#include "platform/containers/shared_ptr.h"
#include "platform/containers/sort.h"
#include "platform/utilities/export.h"
