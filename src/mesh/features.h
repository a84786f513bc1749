#pragma once

#include "mesh/node.h"
#include "mesh/node_data.h"
#include "mesh/tri_data.h"
#include "platform/geometry/tri_block_base.h"

using trNodecoPageArr = coPageArr<trNode>;

struct trNodeArr {
  trNodecoPageArr nodes{gi_mesh_page_shift, 5, 10};
};

/// The node records of a block, by node number.
class MENDEX_EXPORT trNodeArrCopycoFeature : public coFeature<trNodeArrCopycoFeature, trNodeArr> {};
/// The node attributes of a block; present only while it has any.
class MENDEX_EXPORT trNodeDataBlockcoFeature : public coFeature<trNodeDataBlockcoFeature, trNodeDataBlock> {};
/// The element colours of a block; present once a colour was set.
class MENDEX_EXPORT trTriDataBlockcoFeature : public coFeature<trTriDataBlockcoFeature, trTriDataBlock> {};
