// What a run of `lumora apply` is to do: which picture becomes which file. It is settled before
// the first picture is touched, so that it does not depend on the order in which they get ready.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "shard.h"

namespace lumora::tool {

struct PlanSettings {
  std::string outputFolder;  // without it the operands are one input and one output
  std::string suffix;        // put behind the file's own name
  std::string format;        // suffix of the file format; empty: as the output or input is named
  bool recursive = false;    // take the pictures in folders
  bool inPlace = false;      // the operands are inputs and outputs
  std::string backupSuffix;  // what the originals are then called; empty: they are gone
  bool force = false;        // replace outputs that exist
  bool skipExisting = false;
  std::vector<std::string> otherInputs;  // files that are read beside the pictures
  std::vector<std::string> looks;        // of several, outputs have the name in theirs
  Shard shard;
};

struct PlannedPicture {
  std::string input;
  std::string output;
  std::string format;   // empty: the name asks for none that can be written; the input's for "-"
  std::string refusal;  // why nothing can be done; empty when it can
  std::string backup;   // the name that the original keeps; empty for none
  std::string name;     // below the operand that it comes from: what shares are made by
  std::size_t look = 0;
};

struct Plan {
  std::vector<PlannedPicture> pictures;
  std::vector<PlannedPicture> skipped;  // their output exists
};

// `listed` are the names of a list, or null where there is none. Throws a UsageError when the
// operands do not fit the settings.
Plan planPictures(const PlanSettings& settings, const std::vector<std::string>& operands,
                  const std::vector<std::string>* listed);

}  // namespace lumora::tool
