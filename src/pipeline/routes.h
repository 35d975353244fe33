// How the modes run: each route takes a checked call and the row of its mode, obtains the textures
// and working memory that the call needs, runs the look or effect, and logs its failure.
#pragma once

#include "pipeline/mode_table.h"

namespace lumora {

// A look without a texture.
Status routeLook(const Call& call, const ModeRow& row);

// The row's block in the handle's tuning parameters, or null.
const std::uint8_t* tuningBlock(const Call& call, const ModeRow& row);

// Runs the row's look with a texture (null for none) and logs its failure.
Status runModeLook(const Call& call, const ModeRow& row, const std::uint8_t* texture);

// Hands a status on and logs the row's failure message when it is one.
Status reported(const Call& call, const ModeRow& row, Status status);

}  // namespace lumora
