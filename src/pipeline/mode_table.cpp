#include "pipeline/mode_table.h"

#include <algorithm>
#include <array>

#include "looks/looks.h"
#include "pipeline/routes.h"

namespace lumora {
namespace {

constexpr ModeRow look(std::uint32_t mode, const Look& (*look)()) {
  const ModeFacts* const facts = findModeFacts(mode);
  const auto routed = [&](Route route, const char* routine = "FilterProcess") {
    return ModeRow{route, look, routine, {}, facts};
  };
  switch (mode) {
    case LUMORA_MODE_LAODIANYING: return routed(routeLaodianying);
    case LUMORA_MODE_LIANGHONG: return routed(routeLianghong);
    case LUMORA_MODE_MEISHIMENGHUAN: return routed(routeGlow, "FilterMeishimenghuan_");
    default: return routed(facts->texture ? routeTextureLook : routeLook);
  }
}
#define LUMORA_LOOK_ROW_(mode, constant) look(mode, constant),
constexpr ModeRow kLooks[] = {LUMORA_FOR_EACH_LOOK(LUMORA_LOOK_ROW_)};

constexpr ModeRow effect(std::uint32_t mode, Route route, RoutineNames names) {
  return {route, nullptr, "", names, findModeFacts(mode)};
}
// Two of the effects' routines go by one name in either thread form.
constexpr ModeRow kEffects[] = {
    effect(LUMORA_MODE_MOSAIC, routeMosaic, {}),
    effect(LUMORA_MODE_COLOUR_FIX, routeColourFix,
           {"FilterFixColor_RGBA", "FilterFixColor_multiThread", "FilterFixColor_RGBA",
            "FilterFixColor_multiThread"}),
    effect(LUMORA_MODE_BLUR, routeBlur,
           {"FilterBlur_RGBA", "FilterBlur_NV21_NV12_multiThread", "FilterBlur_RGBA",
            "FilterBlur_NV21_NV12"}),
    effect(LUMORA_MODE_TILT_SHIFT, routeTiltShift,
           {"FilterTiltshift_RGBA_multiThread", "FilterTiltshift_NV21_NV12_multiThread",
            "FilterTiltshift_RGBA", "FilterTiltshift_NV21_NV12"}),
};

// Row i is mode i + 1.
constexpr auto byMode() {
  std::array<ModeRow, kModeCount> rows{};
  for (const ModeRow& row : kLooks) rows[row.facts->number - 1] = row;
  for (const ModeRow& row : kEffects) rows[row.facts->number - 1] = row;
  return rows;
}
constexpr auto kRows = byMode();
static_assert(std::all_of(kRows.begin(), kRows.end(),
                          [](const ModeRow& row) { return row.route != nullptr; }),
              "a mode is neither in src/looks/looks.h nor among the effects");

}  // namespace

const ModeRow* findMode(std::uint32_t mode) {
  return findModeFacts(mode) != nullptr ? &kRows[mode - 1] : nullptr;
}

}  // namespace lumora
