#include "pipeline/mode_table.h"

#include <array>

#include "looks/colour/colour_looks.h"
#include "looks/texture/texture_looks.h"
#include "pipeline/routes.h"

namespace lumora {
namespace {

#define LUMORA_MESSAGES(rgba, nv21, nv12) \
  { "[%s] " rgba " failed!\n", "[%s] " nv21 " failed!\n", "[%s] " nv12 " failed!\n" }
// The looks are reported under their dispatcher's name.
#define LUMORA_LOOK_MESSAGES(name) \
  LUMORA_MESSAGES("FilterProcessRGBA " name, "FilterProcessNV21 " name, "FilterProcessNV12 " name)

#define LUMORA_TEXTURE_LOOK(name, route, look, plane)        \
  {                                                          \
    name, route, look, plane, LUMORA_LOOK_MESSAGES(name), {} \
  }
#define LUMORA_LOOK(name, look) LUMORA_TEXTURE_LOOK(name, routeLook, look, kNoPlane)

constexpr ModeRow kNone{};

constexpr FormatMessages kGlowFailure = LUMORA_MESSAGES("FilterMeishimenghuan_RGBA MEISHIMENGHUAN",
                                                        "FilterMeishimenghuan_NV21 MEISHIMENGHUAN",
                                                        "FilterMeishimenghuan_NV12 MEISHIMENGHUAN");
constexpr FormatMessages kColourFixFailure = LUMORA_MESSAGES(
    "FilterFixColor_RGBA", "FilterFixColor_multiThread", "FilterFixColor_multiThread");

constexpr std::array<ModeRow, kModeCount + 1> kModes{{
    kNone,
    LUMORA_LOOK("MORAN", kMoran),
    LUMORA_LOOK("RIXI", kRixi),
    LUMORA_LOOK("FUGU", kFugu),
    LUMORA_LOOK("VALENCIA", kValencia),
    LUMORA_TEXTURE_LOOK("LAODIANYING", routeLaodianying, kLaodianying, 0),
    LUMORA_TEXTURE_LOOK("LIANGHONG", routeLianghong, kLianghong, 1),
    LUMORA_TEXTURE_LOOK("YUNDUAN", routeTextureLook, kYunduan, 4),
    LUMORA_TEXTURE_LOOK("EARLYBIRD", routeTextureLook, kEarlybird, 5),
    LUMORA_LOOK("NUANYANGYANG", kNuanyangyang),
    LUMORA_LOOK("TIANMEIKEREN", kTianmeikeren),
    {"MEISHIMENGHUAN", routeGlow, kMeishimenghuan, kNoPlane, kGlowFailure, kGlowFailure},
    LUMORA_LOOK("HEIBAI", kHeibai),
    LUMORA_TEXTURE_LOOK("XPRO2", routeTextureLook, kXpro2, 6),
    LUMORA_TEXTURE_LOOK("HUDSON", routeTextureLook, kHudson, 7),
    LUMORA_TEXTURE_LOOK("MYFAIR", routeTextureLook, kMyfair, 8),
    LUMORA_TEXTURE_LOOK("LOFI", routeTextureLook, kLofi, 9),
    {"mosaic", routeMosaic, nullptr, kNoPlane, {}, {}},
    {"colour fix", routeColourFix, nullptr, kNoPlane, kColourFixFailure, kColourFixFailure},
    {"blur", routeBlur, nullptr, kNoPlane,
     LUMORA_MESSAGES("FilterBlur_RGBA", "FilterBlur_NV21_NV12_multiThread",
                     "FilterBlur_NV21_NV12_multiThread"),
     LUMORA_MESSAGES("FilterBlur_RGBA", "FilterBlur_NV21_NV12", "FilterBlur_NV21_NV12")},
    {"tilt-shift", routeTiltShift, nullptr, kNoPlane,
     LUMORA_MESSAGES("FilterTiltshift_RGBA_multiThread", "FilterTiltshift_NV21_NV12_multiThread",
                     "FilterTiltshift_NV21_NV12_multiThread"),
     LUMORA_MESSAGES("FilterTiltshift_RGBA", "FilterTiltshift_NV21_NV12",
                     "FilterTiltshift_NV21_NV12")},
}};

#undef LUMORA_TEXTURE_LOOK
#undef LUMORA_LOOK
#undef LUMORA_LOOK_MESSAGES
#undef LUMORA_MESSAGES

}  // namespace

const ModeRow* findMode(std::uint32_t mode) {
  if (mode > kModeCount || kModes[mode].route == nullptr) return nullptr;
  return &kModes[mode];
}

}  // namespace lumora
