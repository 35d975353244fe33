// FUGU: aged print: contrast in red, flat blue.
#include "looks/colour/curve_look.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// R, G, B: plain, then strong
constexpr BuiltInCurves kCurves{
    3,
    {
        {{1, 1, 6, 16, 30, 49, 72, 98, 126, 152, 176, 197, 215, 230, 241, 249, 252}},
        {{10, 16, 26, 39, 55, 73, 92, 113, 133, 153, 172, 189, 205, 218, 229, 236, 240}},
        {{61, 66, 73, 81, 91, 100, 111, 121, 132, 142, 152, 162, 171, 178, 184, 189, 191}},
    },
    {
        {{1, 1, 1, 1, 5, 17, 40, 75, 123, 164, 197, 220, 235, 244, 249, 251, 251}},
        {{14, 16, 22, 32, 46, 65, 87, 114, 139, 164, 185, 202, 216, 225, 231, 234, 236}},
        {{89, 92, 96, 101, 108, 114, 120, 127, 135, 141, 147, 153, 159, 163, 167, 169, 170}},
    }};

}  // namespace

const Look kFugu = makeCurveLook<kCurves>();

}  // namespace lumora::HWY_NAMESPACE
