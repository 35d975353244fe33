// What the tests of the plug-ins share; each program includes it once.
#pragma once

#include <gtest/gtest.h>
#include <sys/time.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "host/session.h"

// The film look draws its marks from the time of day: it stands still, for the modules too.
extern "C" __attribute__((visibility("default"))) int gettimeofday(timeval* now, void*) noexcept {
  *now = {1234, 5678};
  return 0;
}

namespace lumora::test {

using Bytes = std::vector<std::uint8_t>;

inline Bytes noise(std::size_t count) {
  Bytes bytes(count);
  std::uint32_t state = 99;
  for (std::uint8_t& byte : bytes) {
    state = state * 1664525u + 1013904223u;
    byte = static_cast<std::uint8_t>(state >> 24);
  }
  return bytes;
}

// Rewrites the picture as the library does by itself.
inline void filterByLibrary(host::Session& session, const ModeFacts& mode, host::Settings settings,
                            const FilterImage& picture) {
  settings.singleThread = true;
  const host::Result opened =
      session.prepare(mode, LUMORA_BUILD_DIRECTORY "/", host::Size{picture.width, picture.height},
                      settings.direction);
  EXPECT_TRUE(opened) << opened.message;
  const host::Result applied = session.apply(mode, settings, picture);
  EXPECT_TRUE(applied) << applied.message;
}

// Shares as a host gives them, and what they amount to in a picture of 400 x 200.
struct ShareCase {
  std::uint32_t mode;
  std::vector<std::pair<const char*, double>> given;
  host::Settings expected;
};

inline std::vector<ShareCase> shareCases() {
  std::vector<ShareCase> cases{
      {LUMORA_MODE_MOSAIC,
       {{"rect-x", 0.1},
        {"rect-y", 0.2},
        {"rect-width", 0.5},
        {"rect-height", 0.25},
        {"block", 0.2}},
       {}},
      // Beyond the picture's edge: moved back into it.
      {LUMORA_MODE_MOSAIC, {{"rect-x", 1}, {"rect-width", 0.25}, {"block", 0}}, {}},
      {LUMORA_MODE_BLUR,
       {{"centre-x", -0.5}, {"centre-y", 2}, {"inner-radius", 2}, {"outer-radius", 0.5}},
       {}},
      {LUMORA_MODE_BLUR, {{"centre-x", 0.25}, {"inner-radius", 0.1}}, {}},
      {LUMORA_MODE_TILT_SHIFT,
       {{"band-x1", 0.1}, {"band-y1", 0}, {"band-x2", 0.6}, {"band-y2", 1}},
       {}}};
  cases[0].expected.rectangle = {40, 40, 200, 50};
  cases[0].expected.block = 10;
  cases[1].expected.rectangle = {300, 50, 100, 100};
  cases[1].expected.block = 8;
  cases[2].expected.centre = {-200, 400};
  cases[2].expected.radius = {400, 400};
  cases[3].expected.centre = {100, 100};
  cases[3].expected.radius = {20, 100};
  cases[4].expected.band = {{40, 0}, {240, 200}};
  return cases;
}

}  // namespace lumora::test
