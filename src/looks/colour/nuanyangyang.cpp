// NUANYANGYANG: strong warm light.
#include "looks/colour/curve_look.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// R, G, B: plain, then strong
constexpr BuiltInCurves kCurves{
    3,
    {
        {{5, 66, 103, 134, 157, 178, 196, 211, 222, 229, 235, 240, 244, 247, 250, 252, 253}},
        {{3, 38, 80, 109, 134, 153, 172, 188, 201, 212, 220, 228, 235, 241, 245, 247, 248}},
        {{27, 57, 81, 100, 117, 132, 148, 163, 175, 186, 195, 204, 212, 219, 226, 232, 237}},
    },
    {
        {{7, 140, 187, 205, 219, 228, 236, 241, 245, 247, 249, 251, 252, 252, 253, 254, 254}},
        {{4, 111, 160, 184, 202, 214, 224, 230, 236, 240, 243, 246, 248, 250, 251, 251, 252}},
        {{39, 118, 150, 167, 182, 193, 203, 211, 219, 223, 228, 232, 235, 238, 241, 243, 245}},
    }};

}  // namespace

const Look kNuanyangyang = makeCurveLook<kCurves>();

}  // namespace lumora::HWY_NAMESPACE
