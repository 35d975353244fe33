// The images of the default pack. Each painter fills one image of the pack's size.
#pragma once

#include <cstdint>

namespace lumora::paint {

// Light falling off from the middle of the frame to its corners.
void paintVignette(std::uint8_t* dst);  // EARLYBIRD
void paintEdgeBurn(std::uint8_t* dst);  // XPRO2: dark edges are high values
void paintLamp(std::uint8_t* dst);      // HUDSON
void paintDusk(std::uint8_t* dst);      // MYFAIR
void paintFalloff(std::uint8_t* dst);   // LOFI

// Faint clouds about the neutral grey 128.
void paintClouds(std::uint8_t* dst);

// Light that fell through a camera's seam, three bytes a pixel: from the left edge for direction 0,
// and that picture turned clockwise by direction quarter turns for the others, so that it comes
// from the top, right and bottom edge.
void paintLeak(std::uint8_t* dst, int direction);

// Worn film: an uneven print with scratches, its grain and dust, and two marks that are stamped on
// the picture.
void paintShade(std::uint8_t* dst);
void paintGrain(std::uint8_t* dst);
void paintBlotch(std::uint8_t* dst);
void paintSpeck(std::uint8_t* dst);

}  // namespace lumora::paint
