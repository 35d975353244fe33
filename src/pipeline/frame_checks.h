// The checks of a process call, each with its message and status.
#pragma once

#include "lumora/filters.h"
#include "pipeline/call.h"
#include "platform/status.h"

namespace lumora {

// Everything up to the strength: records, direction, size, handle, picture address, mode of the
// handle, strength range. In this order; the first failure wins.
Status checkRecords(FilterHandle* handle, const FilterImage* image,
                    const FilterProcessParam* param);

// Modes that need the album call, or its extra settings.
Status checkAlbumMode(const FilterImage& image, const FilterProcessParam& param,
                      const FilterAlbumParam* album);

// The rectangle of mode 17 and its block size. Fills rect when all is well.
Status checkMosaic(const FilterImage& image, const FilterProcessParam& param, MosaicRect& rect);

// Evenness and stride of the format.
Status checkFormat(const FilterImage& image);

}  // namespace lumora
