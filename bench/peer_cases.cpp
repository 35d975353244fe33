#include "cases.h"
#include "peers.h"

#include <algorithm>
#include <cmath>

namespace lumora::bench {
namespace {

void fillTable(std::uint8_t (&table)[256], double gamma) {
  for (int i = 0; i < 256; ++i) {
    table[i] = static_cast<std::uint8_t>(std::lround(255 * std::pow(i / 255.0, gamma)));
  }
}

}  // namespace

const ChannelTables& channelTables() {
  static const ChannelTables tables = [] {
    ChannelTables made;
    fillTable(made.r, 0.8);
    fillTable(made.g, 0.85);
    fillTable(made.b, 0.75);
    return made;
  }();
  return tables;
}

Size mosaicRect(Size picture) {
  return {std::min(picture.width, 2000), std::min(picture.height, 2000)};
}

void addPeerCase(const char* library, const char* work, Format format, MakePeerWork make) {
  for (const Size size : kSizes) {
    const std::string name =
        std::string("peer/") + library + "/" + work + "/" + format.name + "/" + size.name();
    addCase(name, isTargetSize(size), [=] {
      const auto picture = std::make_shared<TestPicture>(format, size);
      return Subject{pictureRound(picture,
                                  [run = make(*picture)] {
                                    run();
                                    return std::uint32_t{0};
                                  }),
                     size.pixels()};
    });
  }
}

void addPeerCases() {
#if defined(LUMORA_PEER_FFMPEG)
  addFfmpegCases();
#endif
#if defined(LUMORA_PEER_LIBYUV)
  addLibyuvCases();
#endif
#if defined(LUMORA_PEER_OPENCV)
  addOpenCvCases();
#endif
}

}  // namespace lumora::bench
