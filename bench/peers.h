// Other libraries on the nearest equivalents of our classes of work. A case's name says "peer", the
// library, the work, the format and the size, in this order. Rounding differs from ours; only time
// is compared. All run on one thread.
#pragma once

#include <functional>

#include "pictures.h"

namespace lumora::bench {

// Prepares buffers and tables for a picture and returns the work on it.
using MakePeerWork = std::function<void()> (*)(const TestPicture& picture);

void addPeerCase(const char* library, const char* work, Format format, MakePeerWork make);

// Each in a file of its own, built where its library is present.
void addFfmpegCases();
void addLibyuvCases();
void addOpenCvCases();

// Three tables of 256 entries, a curve for each channel.
struct ChannelTables {
  std::uint8_t r[256];
  std::uint8_t g[256];
  std::uint8_t b[256];
};
const ChannelTables& channelTables();

// The channel mix that colour-matrix work uses, in 1/128, rows R, G, B.
inline constexpr int kChannelMix[3][3] = {{148, -12, 1}, {37, 115, -13}, {47, 18, 70}};

inline constexpr double kBlendShare = 12.0 / 16;  // of the filtered picture
inline constexpr double kBlurSigma = 4.56;        // of blur level 3 at 4000 x 3000
inline constexpr int kShrink = 4;                 // by which that level shrinks the picture
inline constexpr int kMosaicBlock = 16;
inline constexpr Size kTextureSize{1024, 1024};  // what nearest resizing starts from

// The rectangle that mosaic work covers, at the picture's origin.
Size mosaicRect(Size picture);

}  // namespace lumora::bench
