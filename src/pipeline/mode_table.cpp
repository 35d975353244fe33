#include "pipeline/mode_table.h"

#include <array>

#include "looks/colour/colour_looks.h"
#include "looks/texture/texture_looks.h"
#include "pipeline/routes.h"

namespace lumora {
namespace {

constexpr ModeRow look(const Look& (*look)(), Route route = routeLook,
                       const char* routine = "FilterProcess") {
  return {route, look, routine, {}};
}
constexpr ModeRow effect(Route route, RoutineNames names) { return {route, nullptr, "", names}; }

// In the order of the facts. Two of the effects' routines go by one name in either thread form.
constexpr std::array kRows{
    look(kMoran),
    look(kRixi),
    look(kFugu),
    look(kValencia),
    look(kLaodianying, routeLaodianying),
    look(kLianghong, routeLianghong),
    look(kYunduan, routeTextureLook),
    look(kEarlybird, routeTextureLook),
    look(kNuanyangyang),
    look(kTianmeikeren),
    look(kMeishimenghuan, routeGlow, "FilterMeishimenghuan_"),
    look(kHeibai),
    look(kXpro2, routeTextureLook),
    look(kHudson, routeTextureLook),
    look(kMyfair, routeTextureLook),
    look(kLofi, routeTextureLook),
    effect(routeMosaic, {}),
    effect(routeColourFix, {"FilterFixColor_RGBA", "FilterFixColor_multiThread",
                            "FilterFixColor_RGBA", "FilterFixColor_multiThread"}),
    effect(routeBlur, {"FilterBlur_RGBA", "FilterBlur_NV21_NV12_multiThread", "FilterBlur_RGBA",
                       "FilterBlur_NV21_NV12"}),
    effect(routeTiltShift,
           {"FilterTiltshift_RGBA_multiThread", "FilterTiltshift_NV21_NV12_multiThread",
            "FilterTiltshift_RGBA", "FilterTiltshift_NV21_NV12"}),
};
static_assert(kRows.size() == kModeCount);

constexpr auto joined() {
  auto rows = kRows;
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].facts = &kModes[i];
  return rows;
}
constexpr auto kJoinedRows = joined();

}  // namespace

const ModeRow* findMode(std::uint32_t mode) {
  return findModeFacts(mode) != nullptr ? &kJoinedRows[mode - 1] : nullptr;
}

}  // namespace lumora
