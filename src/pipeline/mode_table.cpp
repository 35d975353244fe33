#include "pipeline/mode_table.h"

#include <array>

#include "looks/colour/colour_looks.h"
#include "pipeline/routes.h"

namespace lumora {
namespace {

#define LUMORA_MESSAGES(rgba, nv21, nv12) \
  { "[%s] " rgba " failed!\n", "[%s] " nv21 " failed!\n", "[%s] " nv12 " failed!\n" }
// The looks are reported under their dispatcher's name.
#define LUMORA_LOOK_MESSAGES(name) \
  LUMORA_MESSAGES("FilterProcessRGBA " name, "FilterProcessNV21 " name, "FilterProcessNV12 " name)

#define LUMORA_LOOK(name, look, block)                                     \
  {                                                                        \
    name, routeLook, look, kNoPlane, block, LUMORA_LOOK_MESSAGES(name), {} \
  }

constexpr ModeRow kNone{};

constexpr std::array<ModeRow, kModeCount + 1> kModes{{
    kNone,
    LUMORA_LOOK("MORAN", kMoran, 0),
    LUMORA_LOOK("RIXI", kRixi, 25),
    LUMORA_LOOK("FUGU", kFugu, 98),
    LUMORA_LOOK("VALENCIA", kValencia, 171),
    kNone,
    kNone,
    kNone,
    kNone,
    LUMORA_LOOK("NUANYANGYANG", kNuanyangyang, 322),
    LUMORA_LOOK("TIANMEIKEREN", kTianmeikeren, 395),
    kNone,
    LUMORA_LOOK("HEIBAI", kHeibai, kNoBlock),
    kNone,
    kNone,
    kNone,
    kNone,
    kNone,
    kNone,
    kNone,
    kNone,
}};

#undef LUMORA_LOOK
#undef LUMORA_LOOK_MESSAGES
#undef LUMORA_MESSAGES

}  // namespace

const ModeRow* findMode(std::uint32_t mode) {
  if (mode > kModeCount || kModes[mode].route == nullptr) return nullptr;
  return &kModes[mode];
}

}  // namespace lumora
