#pragma once

#include "mesh/edge_connection.h"
#include "mesh/features.h"
#include "mesh/pair.h"
#include "mesh/tri_block.h"
#include "platform/containers/number_arrays.h"
#include "platform/containers/owning_ptr.h"
#include "platform/containers/set.h"
#include "platform/containers/shared_ptr.h"

// Containers of the mesh's own types.
using trNodecoPageArrcoIterator = coPageArrcoIterator<trNode>;
using trNodeDataTuplecoPageArrcoIterator = coPageArrcoIterator<trNodeDataTuple>;
using trEdgeConnectioncoPageArr = coPageArr<trEdgeConnection>;
using trEdgeConnectioncoPageArrcoIterator = coPageArrcoIterator<trEdgeConnection>;
using trEdgeConnectioncoSet = coSet<trEdgeConnection>;
using trTriBlockcoPrg = coPrg<trTriBlock>;
using trTriBlockcoPrf = coPrf<trTriBlock>;
using trPaircoPageArr = coPageArr<trPair>;
using trPaircoPageArrcoIterator = coPageArrcoIterator<trPair>;
