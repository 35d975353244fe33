// What filterProcess and filterProcess_for_album share: the checks in their order, the room
// for a copy, the dispatch.
#pragma once

#include "lumora/filters.h"
#include "platform/status.h"

namespace lumora {

// album is null for filterProcess; otherwise param is its stProcess.
Status processFrame(FilterHandle* handle, const FilterImage* image, FilterProcessParam* param,
                    const FilterAlbumParam* album);

}  // namespace lumora
