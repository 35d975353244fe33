// Which look, how strong, and the settings of the modes that have some; and the library's call
// record that they amount to for one picture.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lumora/filters.h"
#include "modes.h"
#include "options.h"

namespace lumora::tool {

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

// What is not set gets a value that suits the picture.
struct LookSettings {
  const Mode* mode = nullptr;
  int strength = 16;
  int direction = 0;
  bool singleThread = false;
  std::optional<Rectangle> rectangle;
  std::optional<int> block;
  std::optional<Point> centre;
  std::optional<Rings> radius;
  std::optional<std::pair<Point, Point>> band;
  int core = 16;
  std::optional<Colour> colour;
  std::optional<Point> pick;
  int tolerance = 20;
  std::string maskFile;
  Mask mask;
  // The mode that a given option belongs to, with the option's name.
  std::vector<std::pair<unsigned, const char*>> modeOptions;
};

int parseStrength(const std::string& value);

OptionGroup lookOptions(LookSettings& settings);
OptionGroup modeOptions(LookSettings& settings);
// The options that only this mode takes, to be listed.
std::vector<Option> optionsOf(const Mode& mode);

// What only the whole command line shows: a look is named, and every option belongs to it.
void checkLookSettings(const LookSettings& settings);

// A fresh record for one call on the picture: the library rewrites the strength in it. The mask
// stays borrowed from the settings. Throws a PictureError where the settings do not fit.
FilterAlbumParam recordFor(const LookSettings& settings, const FilterImage& picture);

}  // namespace lumora::tool
