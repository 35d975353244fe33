// The settings of a call as people give them, and the library's call record that they amount to for
// one picture. Names, ranges and defaults are those of the facts of the modes.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "host/result.h"
#include "lumora/filters.h"
#include "modes/modes.h"

namespace lumora::host {

struct Point {
  int x = 0;
  int y = 0;
};

struct Rectangle {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

struct Rings {
  int inner = 0;
  int outer = 0;
};

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
};

// One byte a sample, rows packed.
struct Mask {
  std::vector<std::uint8_t> samples;
  int width = 0;
  int height = 0;
};

// Positions are pixels of the picture. What is not set gets a value that suits the picture.
struct Settings {
  int strength = LUMORA_FULL_STRENGTH;
  int direction = kSettings[kDirection].standard;
  bool singleThread = false;
  // Of the aged film's marks; without one they lie elsewhere at every call.
  std::optional<std::uint32_t> seed;
  std::optional<Rectangle> rectangle;
  std::optional<int> block;
  std::optional<Point> centre;
  std::optional<Rings> radius;
  std::optional<std::pair<Point, Point>> band;
  int core = kSettings[kCore].standard;
  std::optional<Colour> colour;
  std::optional<Point> pick;  // on RGBA pictures: the colour at this place instead
  int tolerance = kSettings[kTolerance].standard;
  Mask mask;
};

// Gives a setting its numbers, as many as the facts say; a colour has three, 0..255, the mask none.
// kArgument with what is wrong, in the setting's own words, and the settings as they were.
Result give(Settings& settings, Setting setting, const std::vector<int>& numbers);

// What has to be given beside the look: colour fix needs one colour, by value or by place.
Result checkComplete(const ModeFacts& mode, const Settings& settings);

// A fresh record for one call on the picture: the library rewrites the strength in it. The mask
// stays borrowed from the settings. kArgument where the settings do not fit the picture.
Result makeRecord(const ModeFacts& mode, const Settings& settings, const FilterImage& picture,
                  FilterAlbumParam& record);

}  // namespace lumora::host
