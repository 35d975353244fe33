#include "y4m.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "errors.h"

namespace lumora::tool {
namespace {

// They differ in where chroma is sampled, which no look asks for.
constexpr std::string_view kSamplings[] = {"420", "420jpeg", "420mpeg2", "420paldv"};

unsigned sideOf(std::string_view digits) {
  unsigned side = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stopped, error] = std::from_chars(digits.data(), end, side);
  if (error != std::errc() || stopped != end || side == 0) {
    throw PictureError(text("its Y4M header has the side '", digits, "'"));
  }
  return side;
}

void takeTag(Y4mStream& stream, std::string_view tag) {
  const std::string_view value = tag.substr(1);
  switch (tag.front()) {
    case 'W': stream.size.width = sideOf(value); break;
    case 'H': stream.size.height = sideOf(value); break;
    case 'C':
      if (std::find(std::begin(kSamplings), std::end(kSamplings), value) == std::end(kSamplings)) {
        throw PictureError(
            text("is Y4M of the kind C", value, "; only 4:2:0 of eight bits is taken (C420)"));
      }
      break;
    case 'I':
      if (value != "p" && value != "?") {
        throw PictureError("is interlaced; make whole frames of it first");
      }
      break;
    case 'X': stream.hasFullRange |= tag == "XCOLORRANGE=FULL"; break;
    default: break;
  }
}

}  // namespace

Y4mStream parseY4mHeader(std::string_view line) {
  Y4mStream stream;
  std::string_view rest = line;
  for (bool isMark = true; !rest.empty(); isMark = false) {
    const std::size_t end = std::min(rest.find(' '), rest.size());
    if (isMark && rest.substr(0, end) != kY4mMark) throw PictureError("is no Y4M");
    if (!isMark && end > 0) takeTag(stream, rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  const Size size = stream.size;
  if (size.width == 0 || size.height == 0) throw PictureError("its Y4M header tells no size");
  if (size.width % 2 != 0 || size.height % 2 != 0) {
    throw PictureError(text("is ", size.width, " x ", size.height, "; 4:2:0 needs even sides"));
  }
  return stream;
}

void pairChroma(const std::uint8_t* planes, std::uint8_t* chroma, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i) {
    chroma[2 * i] = planes[i];
    chroma[2 * i + 1] = planes[pairs + i];
  }
}

void splitChroma(const std::uint8_t* chroma, std::uint8_t* planes, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i) {
    planes[i] = chroma[2 * i];
    planes[pairs + i] = chroma[2 * i + 1];
  }
}

}  // namespace lumora::tool
