// Y4M, the uncompressed video of pipes: a line about the stream, and before every frame a line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "words.h"

namespace lumora::tool {

inline constexpr std::string_view kY4mMark = "YUV4MPEG2";
inline constexpr std::string_view kY4mFrameMark = "FRAME";
// Longer ones are no Y4M.
inline constexpr std::size_t kLongestY4mLine = 4096;

struct Y4mStream {
  Size size;
  bool hasFullRange = false;  // levels of 0..255, which the looks are made for
};

// Of a stream's first line. Throws a PictureError, without the stream's name, for what is no
// progressive 4:2:0 of eight bits with even sides.
Y4mStream parseY4mHeader(std::string_view line);

// Y4M has a plane of Cb and one of Cr, the looks take pairs (nv12). `pairs` is the count of both.
void pairChroma(const std::uint8_t* planes, std::uint8_t* chroma, std::size_t pairs);
void splitChroma(const std::uint8_t* chroma, std::uint8_t* planes, std::size_t pairs);

}  // namespace lumora::tool
