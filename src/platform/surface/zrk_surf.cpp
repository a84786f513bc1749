#include "platform/surface/zrk_surf.h"

zrkSurf::~zrkSurf() = default;
