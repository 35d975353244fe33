// Tuning values as text for people. For tools and tests; the library itself never writes any.
#pragma once

#include <string>

#include "config/filter_params.h"

namespace lumora {

// The curves that a look uses while its block is not in use, as many as the block has.
using BuiltInCurvesOf = const Knots* (*)(const TuningBlock& block);

// A document with the built-in values of every look. Loading it gives the same pictures as having
// none; the two looks for which that cannot hold are left out, and a comment says why.
std::string tuningDocument(BuiltInCurvesOf builtInCurvesOf);

// What became of the document: "read", or why not, with line and column.
std::string describeDocument(const TuningReport& report);

// What became of a block: "in use", or the reason why the look keeps its built-in values.
std::string describeBlock(const TuningReport& report, int block);

// A sentence for a status, without a full stop.
const char* describeStatus(XmlStatus status);

}  // namespace lumora
