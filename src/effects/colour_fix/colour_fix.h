// Colour fix: keeps the colours near one hue and turns everything else grey. RGBA only.
#pragma once

#include <cstdint>

#include "lumora/filters.h"
#include "platform/picture.h"
#include "platform/status.h"

namespace lumora {

// Bytes of working memory.
std::uint64_t colourFixBytes(const Picture& picture, const FixColorParam& param);

// On the calling thread, or on four stripes of whole row pairs, each with its share of the mask's
// row pairs; the last stripe takes an odd last row. kBadArgument when the mask's width or height is
// below 1 or its stride below its width, with the picture untouched; kThreadFailed leaves the
// stripes of the missing workers untouched.
Status FilterFixColor(const Picture& picture, const FixColorParam& param, std::uint8_t* work,
                      Threads threads);

}  // namespace lumora
