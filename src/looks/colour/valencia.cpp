// VALENCIA: soft and warm, with lifted shadows.
#include "looks/colour/curve_look.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// R, G, B: plain, then strong
constexpr BuiltInCurves kCurves{
    3,
    {
        {{20, 38, 57, 77, 97, 116, 133, 148, 163, 177, 189, 200, 209, 218, 226, 234, 242}},
        {{0, 13, 32, 53, 74, 95, 116, 136, 156, 174, 189, 202, 213, 224, 235, 246, 255}},
        {{21, 38, 54, 71, 87, 105, 121, 136, 149, 162, 175, 188, 198, 208, 218, 228, 237}},
    },
    {
        {{43, 65, 90, 117, 144, 167, 185, 198, 207, 213, 218, 222, 225, 228, 232, 236, 240}},
        {{0, 14, 34, 62, 94, 128, 156, 179, 195, 206, 216, 222, 228, 234, 240, 247, 254}},
        {{40, 53, 66, 79, 92, 104, 115, 124, 133, 139, 144, 149, 156, 163, 174, 190, 212}},
    }};

}  // namespace

const Look kValencia = makeCurveLook<kCurves>();

}  // namespace lumora::HWY_NAMESPACE
