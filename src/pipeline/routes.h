// How the modes run: each route takes a checked call and the row of its mode, obtains the textures
// and working memory that the call needs, runs the look or effect, and logs its failure.
#pragma once

#include "pipeline/mode_table.h"

namespace lumora {

// A look without a texture.
Status routeLook(const Call& call, const ModeRow& row);
// Looks with a grey texture: the handle's own where it has the picture's size, otherwise one
// stretched for the call.
Status routeTextureLook(const Call& call, const ModeRow& row);
// The same with a texture of three bytes a pixel, of which the pack holds one per direction.
Status routeLianghong(const Call& call, const ModeRow& row);
// Ages the picture with grain and marks, then tints it under the shade texture.
Status routeLaodianying(const Call& call, const ModeRow& row);
// The mosaic, which cannot fail.
Status routeMosaic(const Call& call, const ModeRow& row);
// Colour fix, RGBA only.
Status routeColourFix(const Call& call, const ModeRow& row);
// MEISHIMENGHUAN, which needs scratch memory: the handle's or a buffer of the call's.
Status routeGlow(const Call& call, const ModeRow& row);
// The focus effects, which obtain their own memory.
Status routeBlur(const Call& call, const ModeRow& row);
Status routeTiltShift(const Call& call, const ModeRow& row);

// The mode's block in the handle's tuning parameters, or null.
const std::uint8_t* tuningBlock(const Call& call);

// Runs the row's look with a texture (none if empty) and logs its failure.
Status runModeLook(const Call& call, const ModeRow& row, const TextureSource& texture);

// Logs that a working buffer of so many bytes was refused.
Status outOfMemory(const Call& call, std::int64_t bytes);

// Hands a status on and logs the row's failure message when it is one.
Status reported(const Call& call, const ModeRow& row, Status status);

}  // namespace lumora
