// Images of red, green, blue and alpha in memory of their own, as looks take them.
#pragma once

#include <vips/vips8>

#include "lumora/filters.h"

namespace lumora::tool {

// The pixels of an image of eight bits, with or without alpha: packed red, green, blue and alpha.
// They are computed on the calling thread, from top to bottom.
vips::VImage toRgba(const vips::VImage& image);
// The same pixels as looks take them, to be rewritten. Borrowed from the image.
FilterImage pixelsOf(const vips::VImage& rgba);
// Such pixels as an image again, sRGB with or without their alpha.
vips::VImage fromRgba(const vips::VImage& rgba, bool withAlpha);

// The colours of such pixels, with the header and the metadata of another image of their size. They
// can be read once and from top to bottom; what has been read gives its memory back.
vips::VImage consumeRgba(const vips::VImage& rgba, const vips::VImage& fields);

}  // namespace lumora::tool
