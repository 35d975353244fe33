// The parameters of a plug-in in frei0r's conventions (numbers from 0 to 1, colours, positions),
// and the settings that they amount to.
#pragma once

#include <array>

#include "modes/modes.h"
#include "plugins/common/shares.h"
#include "plugins/frei0r/frei0r_header.h"

namespace lumora::frei0r {

// The numbers that parameters consist of: the shares, then these.
enum Value : std::uint8_t {
  kStrengthValue = plugin::kShareCount,
  kDirectionValue,
  kToleranceValue,
  kCoreValue,
  kRedValue,
  kGreenValue,
  kBlueValue,
  kValueCount
};

struct Parameter {
  const char* name;
  int type;         // F0R_PARAM_DOUBLE or _COLOR
  int firstValue;   // a colour has three of them
  Setting setting;  // that it belongs to; kSettingCount for the strength
  const char* explanation;
};

int parameterCount(const ModeFacts& mode);
// Null for an index that the mode has no parameter for.
const Parameter* findParameter(const ModeFacts& mode, int index);

class Parameters {
 public:
  Parameters();

  // Numbers that are none leave the old ones.
  void set(const Parameter& parameter, const void* value);
  void get(const Parameter& parameter, void* value) const;
  host::Settings settings(host::Size picture) const;

 private:
  std::array<double, kValueCount> values_;
};

}  // namespace lumora::frei0r
