// The command line of `lumora apply`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "apply_plan.h"
#include "colours.h"
#include "look_settings.h"
#include "options.h"
#include "photograph.h"
#include "report.h"
#include "resources.h"

namespace lumora::tool {

struct ApplySettings {
  LookSettings look;               // without its mode
  std::vector<const Mode*> modes;  // all that are to be applied
  std::string lutFile;             // in place of looks
  ResourceSettings resources;
  PlanSettings plan;
  ReportSettings report;
  std::string listFile;  // of further inputs; empty for none
  bool isListNullSeparated = false;
  int jobs = 1;
  std::optional<std::uint64_t> memory;  // bytes that pictures may take
  int quality = kDefaultQuality;
  ProfileUse profile = ProfileUse::kToSrgb;
  bool strip = false;
};

CommandLine applyCommandLine(ApplySettings& settings);

}  // namespace lumora::tool
