#pragma once

#include "platform/common/binary_flags.h"
#include "platform/containers/feature_pool.h"
#include "platform/utilities/export.h"

/// A mask over the triangles of a host's pool, by triangle number from 0: triangles whose bit is set are not handed over.
class MENDEX_EXPORT pmTriMaskArrcoFeature : public coFeature<pmTriMaskArrcoFeature, ccBinaryFlags> {};
