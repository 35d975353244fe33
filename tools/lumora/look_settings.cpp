#include "look_settings.h"

#include <algorithm>
#include <climits>

#include "errors.h"
#include "words.h"

namespace lumora::tool {
namespace {

constexpr int kLongestMosaicSide = 2000;
constexpr int kShortestMosaicSide = 8;

int even(int value) { return value & ~1; }

Rectangle parseRectangle(const std::string& value) {
  const std::vector<int> n = parseIntegers(value, ',', 4, "X,Y,WIDTH,HEIGHT");
  for (const int number : n) {
    if (number < 0 || number % 2 != 0) {
      throw UsageError(text("'", value, "' has a number that is odd or below 0"));
    }
  }
  for (const int side : {n[2], n[3]}) {
    if (side < kShortestMosaicSide || side > kLongestMosaicSide) {
      throw UsageError(text("width and height must be ", kShortestMosaicSide, "..",
                            kLongestMosaicSide, ", not ", side));
    }
  }
  return {n[0], n[1], n[2], n[3]};
}

Point parsePoint(const std::string& value) {
  const std::vector<int> n = parseIntegers(value, ',', 2, "X,Y");
  return {n[0], n[1]};
}

Rings parseRings(const std::string& value) {
  const std::vector<int> n = parseIntegers(value, ',', 2, "INNER,OUTER");
  if (n[0] < 0 || n[1] < n[0]) {
    throw UsageError(text("'", value, "': 0 <= INNER <= OUTER does not hold"));
  }
  return {n[0], n[1]};
}

std::pair<Point, Point> parseBand(const std::string& value) {
  const std::vector<int> n = parseIntegers(value, ',', 4, "X1,Y1,X2,Y2");
  return {{n[0], n[1]}, {n[2], n[3]}};
}

Colour parseColour(const std::string& value) {
  const std::string digits = value.starts_with('#') ? value.substr(1) : value;
  if (digits.size() != 6 || digits.find_first_not_of("0123456789abcdefABCDEF") != digits.npos) {
    throw UsageError(text("'", value, "' is not a colour of the form '#rrggbb'"));
  }
  const unsigned long rgb = std::stoul(digits, nullptr, 16);
  return {static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8),
          static_cast<std::uint8_t>(rgb)};
}

// The middle half of the picture, within the sides that a mosaic may have.
Rectangle defaultRectangle(int width, int height) {
  const int w = even(std::min(width / 2, kLongestMosaicSide));
  const int h = even(std::min(height / 2, kLongestMosaicSide));
  return {even((width - w) / 2), even((height - h) / 2), w, h};
}

void fillMosaic(const LookSettings& settings, int width, int height, FilterProcessParam& record) {
  const Rectangle r = settings.rectangle.value_or(defaultRectangle(width, height));
  if (r.width > width - r.x || r.height > height - r.y) {
    throw PictureError(text("the rectangle ", r.x, ',', r.y, ',', r.width, ',', r.height,
                            " (--rect) reaches beyond the picture of ", width, " x ", height,
                            " pixels"));
  }
  const int shorter = std::min(r.width, r.height);
  const int block = settings.block.value_or(std::max(kShortestMosaicSide, shorter / 12));
  if (block > shorter) {
    throw PictureError(text("blocks of ", block,
                            " pixels (--block) do not fit into a rectangle of ", r.width, " x ",
                            r.height, " pixels"));
  }
  record.rectX = r.x;
  record.rectY = r.y;
  record.rectWidth = r.width;
  record.rectHeight = r.height;
  record.mosaicSize = block;
}

BlurParam circleFor(const LookSettings& settings, int width, int height) {
  const Point centre = settings.centre.value_or(Point{width / 2, height / 2});
  const int shorter = std::min(width, height);
  const Rings radius = settings.radius.value_or(Rings{shorter / 4, shorter / 2});
  return {centre.x, centre.y, radius.inner, radius.outer};
}

// By default a level band across the lower middle, where a scene's subject tends to stand.
TiltShiftParam bandFor(const LookSettings& settings, int width, int height) {
  const auto [a, b] = settings.band.value_or(
      std::pair{Point{width / 2, height * 2 / 5}, Point{width / 2, height * 4 / 5}});
  return {a.x, a.y, b.x, b.y, settings.core};
}

// The mean of up to 5 x 5 pixels, so that noise does not pick the hue.
Colour pickColour(const FilterImage& picture, Point at) {
  const int width = static_cast<int>(picture.width);
  const int height = static_cast<int>(picture.height);
  if (at.x < 0 || at.y < 0 || at.x >= width || at.y >= height) {
    throw PictureError(text("the point ", at.x, ',', at.y, " (--pick) is outside the picture of ",
                            width, " x ", height, " pixels"));
  }
  int sums[3] = {};
  int count = 0;
  for (int y = std::max(at.y - 2, 0); y <= std::min(at.y + 2, height - 1); ++y) {
    for (int x = std::max(at.x - 2, 0); x <= std::min(at.x + 2, width - 1); ++x, ++count) {
      const std::uint8_t* pixel =
          picture.picData + static_cast<std::ptrdiff_t>(y) * picture.stride + 4 * x;
      for (int channel = 0; channel < 3; ++channel) sums[channel] += pixel[channel];
    }
  }
  return {static_cast<std::uint8_t>(sums[0] / count), static_cast<std::uint8_t>(sums[1] / count),
          static_cast<std::uint8_t>(sums[2] / count)};
}

FixColorParam colourFor(const LookSettings& settings, const FilterImage& picture) {
  const Colour colour =
      settings.pick ? pickColour(picture, *settings.pick) : settings.colour.value_or(Colour{});
  FixColorParam record{};
  record.red = colour.red;
  record.green = colour.green;
  record.blue = colour.blue;
  record.tolerance = static_cast<std::uint8_t>(settings.tolerance);
  if (settings.mask.samples.empty()) return record;
  record.mask = settings.mask.samples.data();
  record.maskWidth = record.maskStride = settings.mask.width;
  record.maskHeight = settings.mask.height;
  return record;
}

const char* nameOf(unsigned mode) { return modes()[mode - 1].name; }

// An option of one mode, which no other mode takes.
struct ModeOption {
  unsigned mode;
  Option option;
};

std::vector<ModeOption> modeOptionTable(LookSettings& s) {
  return {
      {LUMORA_MODE_LIANGHONG,
       {"direction", 0, "0..3",
        "how the camera was held, in quarter turns; the light\n"
        "leak turns with it; default 0",
        [&s](const std::string& v) { s.direction = parseInteger(v, 0, 3); }}},
      {LUMORA_MODE_MOSAIC,
       {"rect", 0, "X,Y,W,H",
        "the rectangle, even numbers, sides 8..2000;\n"
        "default: the middle half of the picture",
        [&s](const std::string& v) { s.rectangle = parseRectangle(v); }}},
      {LUMORA_MODE_MOSAIC,
       {"block", 0, "N",
        "edge of one block, 8..2000; default: a twelfth of the\n"
        "rectangle's shorter side, at least 8",
        [&s](const std::string& v) { s.block = parseInteger(v, 8, 2000); }}},
      {LUMORA_MODE_COLOUR_FIX,
       {"colour", 0, "'#rrggbb'", "the colour that stays",
        [&s](const std::string& v) { s.colour = parseColour(v); }}},
      {LUMORA_MODE_COLOUR_FIX,
       {"pick", 0, "X,Y", "take the colour from this place of the picture",
        [&s](const std::string& v) { s.pick = parsePoint(v); }}},
      {LUMORA_MODE_COLOUR_FIX,
       {"tolerance", 0, "0..255", "how far a hue may be off (of 255); default 20",
        [&s](const std::string& v) { s.tolerance = parseInteger(v, 0, 255); }}},
      {LUMORA_MODE_COLOUR_FIX,
       {"mask", 0, "FILE", "picture that is not black where colour may stay", keep(s.maskFile)}},
      {LUMORA_MODE_BLUR,
       {"centre", 0, "X,Y", "the sharp circle's centre; default: the middle",
        [&s](const std::string& v) { s.centre = parsePoint(v); }}},
      {LUMORA_MODE_BLUR,
       {"radius", 0, "INNER,OUTER",
        "sharp up to INNER, fully blurred from OUTER on;\n"
        "default: a quarter and half of the shorter side",
        [&s](const std::string& v) { s.radius = parseRings(v); }}},
      {LUMORA_MODE_TILT_SHIFT,
       {"band", 0, "X1,Y1,X2,Y2",
        "two points on the edges of the sharp band,\n"
        "which stands at right angles on the line between them;\n"
        "default: level, from 2/5 to 4/5 of the height",
        [&s](const std::string& v) { s.band = parseBand(v); }}},
      {LUMORA_MODE_TILT_SHIFT,
       {"core", 0, "0..32", "entirely sharp share of the band, in 1/32; default 16",
        [&s](const std::string& v) { s.core = parseInteger(v, 0, 32); }}},
  };
}

}  // namespace

int parseStrength(const std::string& value) {
  const int strength = parseInteger(value, INT_MIN, INT_MAX);
  if (strength >= 0 && strength <= 32) return strength;
  throw UsageError(text(strength, " is outside 0..32 (0 half effect, 16 full, 17..32 stronger)"));
}

OptionGroup lookOptions(LookSettings& s) {
  return {
      "Look",
      {{"look", 'l', "NAME|MODE", "the look, by name or number; 'lumora looks' lists them",
        [&s](const std::string& v) { s.mode = &findMode(v); }},
       {"strength", 's', "0..32",
        "0 half effect, 16 full effect (the default), 17..32\n"
        "stronger; for blur and tilt-shift the width of the blur,\n"
        "0 for none",
        [&s](const std::string& v) { s.strength = parseStrength(v); }},
       {"single-thread", 0, nullptr, "filter without starting threads", raise(s.singleThread)}}};
}

OptionGroup modeOptions(LookSettings& s) {
  OptionGroup group{"Settings of single looks (positions in pixels of the upright picture)", {}};
  for (auto& [owner, option] : modeOptionTable(s)) {
    option.help = text(nameOf(owner), ": ", option.help);
    option.accept = [&s, mode = owner, name = option.name,
                     accept = option.accept](const std::string& v) {
      s.modeOptions.emplace_back(mode, name);
      accept(v);
    };
    group.options.push_back(std::move(option));
  }
  return group;
}

std::vector<Option> optionsOf(const Mode& mode) {
  LookSettings unused;
  std::vector<Option> options;
  for (auto& [owner, option] : modeOptionTable(unused)) {
    if (owner != mode.number) continue;
    option.accept = nullptr;
    options.push_back(std::move(option));
  }
  return options;
}

void checkLookSettings(const LookSettings& settings) {
  if (settings.mode == nullptr) {
    throw UsageError("no look is named; use --look NAME ('lumora looks' lists them)");
  }
  for (const auto& [mode, option] : settings.modeOptions) {
    if (mode != settings.mode->number) {
      throw UsageError(
          text("--", option, " belongs to the look ", nameOf(mode), ", not ", settings.mode->name));
    }
  }
  if (settings.mode->number == LUMORA_MODE_COLOUR_FIX &&
      settings.colour.has_value() == settings.pick.has_value()) {
    throw UsageError(
        "colour-fix needs the colour to keep: either --colour '#rrggbb' or --pick X,Y");
  }
}

FilterAlbumParam recordFor(const LookSettings& settings, const FilterImage& picture) {
  const int width = static_cast<int>(picture.width);
  const int height = static_cast<int>(picture.height);
  FilterAlbumParam record{};
  record.stProcess.eMode = settings.mode->number;
  record.stProcess.eDirection = static_cast<std::uint32_t>(settings.direction);
  record.stProcess.effectRatio = settings.strength;
  record.stProcess.singleThread = settings.singleThread;
  switch (settings.mode->number) {
    case LUMORA_MODE_MOSAIC: fillMosaic(settings, width, height, record.stProcess); break;
    case LUMORA_MODE_COLOUR_FIX: record.stFixColor = colourFor(settings, picture); break;
    case LUMORA_MODE_BLUR: record.stBlur = circleFor(settings, width, height); break;
    case LUMORA_MODE_TILT_SHIFT: record.stTiltShift = bandFor(settings, width, height); break;
    default: break;
  }
  return record;
}

}  // namespace lumora::tool
