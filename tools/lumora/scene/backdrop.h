// The far part of the sample scene: sky, balloons, mountains and boat houses.
#pragma once

#include "scene/painting.h"

namespace lumora::tool {

// The scene is laid out on 1600 x 1200 units; the lake begins at this height.
inline constexpr double kShore = 640;
inline constexpr double kSunX = 430;
inline constexpr double kSunY = 262;

// What stands above the water line, for the picture and for its reflection in the lake.
Rgb landscape(double x, double y);

}  // namespace lumora::tool
