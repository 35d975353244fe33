// RIXI: a sunny day: brighter, shadows lifted toward blue.
#include "looks/colour/curve_look.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// R, G, B: plain, then strong
constexpr BuiltInCurves kCurves{
    3,
    {
        {{17, 32, 49, 66, 85, 104, 121, 136, 149, 161, 172, 183, 191, 199, 207, 212, 217}},
        {{18, 36, 56, 78, 99, 118, 135, 150, 163, 175, 187, 197, 206, 215, 223, 231, 238}},
        {{29, 46, 62, 81, 102, 123, 140, 155, 170, 183, 195, 208, 219, 230, 240, 249, 253}},
    },
    {
        {{33, 49, 67, 87, 109, 129, 143, 155, 164, 173, 180, 187, 191, 195, 199, 201, 204}},
        {{39, 62, 89, 116, 138, 155, 168, 180, 189, 196, 203, 209, 214, 219, 223, 227, 230}},
        {{59, 79, 99, 124, 146, 165, 180, 191, 203, 213, 221, 230, 237, 243, 249, 251, 252}},
    }};

}  // namespace

const Look kRixi = makeCurveLook<kCurves>();

}  // namespace lumora::HWY_NAMESPACE
