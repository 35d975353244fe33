#include "plugins/frei0r/parameters.h"

#include <algorithm>
#include <cmath>

namespace lumora::frei0r {
namespace {

using plugin::kShares;

constexpr Setting kStrength = kSettingCount;

constexpr std::array kOwnParameters{
    Parameter{"strength", F0R_PARAM_DOUBLE, kStrengthValue, kStrength,
              "0.5 is the full effect; every look has its own way below and above"},
    Parameter{"direction", F0R_PARAM_DOUBLE, kDirectionValue, kDirection,
              "how the camera was held, as a share of a turn: 0, 0.25, 0.5 or 0.75"},
    Parameter{"colour", F0R_PARAM_COLOR, kRedValue, kColour, "the colour that stays"},
    Parameter{"tolerance", F0R_PARAM_DOUBLE, kToleranceValue, kTolerance,
              "how far a hue may be off and keep its colour"},
    Parameter{"core", F0R_PARAM_DOUBLE, kCoreValue, kCore, "entirely sharp share of the band"},
};

// Those, then the shares.
constexpr auto kParameters = [] {
  std::array<Parameter, kOwnParameters.size() + kShares.size()> all{};
  auto* const shares = std::ranges::copy(kOwnParameters, all.begin()).out;
  for (int i = 0; i < plugin::kShareCount; ++i) {
    shares[i] = {kShares[i].name, F0R_PARAM_DOUBLE, i, kShares[i].setting, kShares[i].help};
  }
  return all;
}();

bool has(const ModeFacts& mode, const Parameter& parameter) {
  if (parameter.setting == kStrength) return mode.strength != StrengthUse::kUnused;
  return mode.reads(parameter.setting);
}

double within(double value, double lowest, double highest) {
  return std::clamp(value, lowest, highest);
}

int countOf(int type) { return type == F0R_PARAM_COLOR ? 3 : 1; }

}  // namespace

int parameterCount(const ModeFacts& mode) {
  return static_cast<int>(std::ranges::count_if(
      kParameters, [&mode](const Parameter& parameter) { return has(mode, parameter); }));
}

const Parameter* findParameter(const ModeFacts& mode, int index) {
  for (const Parameter& parameter : kParameters) {
    if (has(mode, parameter) && index-- == 0) return &parameter;
  }
  return nullptr;
}

Parameters::Parameters() {
  std::ranges::copy(plugin::standardShares(), values_.begin());
  values_[kStrengthValue] = 0.5;
  values_[kDirectionValue] = 0;
  values_[kToleranceValue] = kSettings[kTolerance].standard / 255.0;
  values_[kCoreValue] = kSettings[kCore].standard / double{LUMORA_STRONGEST};
  values_[kRedValue] = 1;
  values_[kGreenValue] = values_[kBlueValue] = 0;
}

void Parameters::set(const Parameter& parameter, const void* value) {
  const bool isColour = parameter.type == F0R_PARAM_COLOR;
  for (int i = 0; i < countOf(parameter.type); ++i) {
    const double number =
        isColour ? static_cast<const float*>(value)[i] : static_cast<const double*>(value)[i];
    const int at = parameter.firstValue + i;
    const bool isShare = at < plugin::kShareCount;
    if (std::isnan(number)) continue;
    values_[at] =
        isShare ? within(number, kShares[at].lowest, kShares[at].highest) : within(number, 0, 1);
  }
}

void Parameters::get(const Parameter& parameter, void* value) const {
  for (int i = 0; i < countOf(parameter.type); ++i) {
    const double number = values_[parameter.firstValue + i];
    if (parameter.type == F0R_PARAM_COLOR) {
      static_cast<float*>(value)[i] = static_cast<float>(number);
    } else {
      static_cast<double*>(value)[i] = number;
    }
  }
}

host::Settings Parameters::settings(host::Size picture) const {
  const auto scaled = [this](Value value, int full) {
    return static_cast<int>(std::lround(values_[value] * full));
  };
  const auto level = [&](Value value) { return static_cast<std::uint8_t>(scaled(value, 255)); };
  host::Settings settings;
  settings.strength = scaled(kStrengthValue, LUMORA_STRONGEST);
  settings.direction = std::min(3, static_cast<int>(values_[kDirectionValue] * 4));
  settings.tolerance = scaled(kToleranceValue, 255);
  settings.core = scaled(kCoreValue, LUMORA_STRONGEST);
  settings.colour = {level(kRedValue), level(kGreenValue), level(kBlueValue)};
  plugin::Shares shares;
  std::copy_n(values_.begin(), shares.size(), shares.begin());
  plugin::place(settings, shares, picture);
  return settings;
}

}  // namespace lumora::frei0r
