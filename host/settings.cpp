#include "host/settings.h"

#include <algorithm>

namespace lumora::host {
namespace {

std::string number(int value) { return std::to_string(value); }

std::string size(const FilterImage& picture) {
  return std::to_string(picture.width) + " x " + std::to_string(picture.height) + " pixels";
}

Result outside(const std::string& what, const FilterImage& picture) {
  return trouble(Trouble::kArgument, what + " the picture of " + size(picture));
}

int even(int value) { return value & ~1; }

Result giveRectangle(Settings& settings, const std::vector<int>& n) {
  for (const int value : n) {
    if (value < 0 || value % 2 != 0) {
      return trouble(Trouble::kArgument,
                     "rect has the number " + number(value) + ", which is odd or below 0");
    }
  }
  for (const int side : {n[2], n[3]}) {
    if (side < LUMORA_SHORTEST_MOSAIC_SIDE || side > LUMORA_LONGEST_MOSAIC_SIDE) {
      return trouble(Trouble::kArgument,
                     "width and height must be " + number(LUMORA_SHORTEST_MOSAIC_SIDE) + ".." +
                         number(LUMORA_LONGEST_MOSAIC_SIDE) + ", not " + number(side));
    }
  }
  settings.rectangle = {n[0], n[1], n[2], n[3]};
  return {};
}

Result giveColour(Settings& settings, const std::vector<int>& n) {
  for (const int value : n) {
    if (value < 0 || value > 255) {
      return trouble(Trouble::kArgument,
                     "colour has the number " + number(value) + ", which is outside 0..255");
    }
  }
  settings.colour = {static_cast<std::uint8_t>(n[0]), static_cast<std::uint8_t>(n[1]),
                     static_cast<std::uint8_t>(n[2])};
  return {};
}

Result giveRings(Settings& settings, const std::vector<int>& n) {
  if (n[0] < 0 || n[1] < n[0]) {
    return trouble(Trouble::kArgument, "radius: 0 <= INNER <= OUTER does not hold for " +
                                           number(n[0]) + " and " + number(n[1]));
  }
  settings.radius = {n[0], n[1]};
  return {};
}

// The middle half of the picture, within the sides that a mosaic may have.
Rectangle defaultRectangle(int width, int height) {
  const int w = even(std::min(width / 2, int{LUMORA_LONGEST_MOSAIC_SIDE}));
  const int h = even(std::min(height / 2, int{LUMORA_LONGEST_MOSAIC_SIDE}));
  return {even((width - w) / 2), even((height - h) / 2), w, h};
}

Result fillMosaic(const Settings& settings, const FilterImage& picture,
                  FilterProcessParam& record) {
  const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
  const Rectangle r = settings.rectangle.value_or(defaultRectangle(width, height));
  if (r.width > width - r.x || r.height > height - r.y) {
    return outside("the rectangle " + number(r.x) + ',' + number(r.y) + ',' + number(r.width) +
                       ',' + number(r.height) + " (rect) reaches beyond",
                   picture);
  }
  const int shorter = std::min(r.width, r.height);
  const int block =
      settings.block.value_or(std::max(int{LUMORA_SHORTEST_MOSAIC_SIDE}, shorter / 12));
  if (block > shorter) {
    return trouble(Trouble::kArgument, "blocks of " + number(block) +
                                           " pixels (block) do not fit into a rectangle of " +
                                           number(r.width) + " x " + number(r.height) + " pixels");
  }
  record.rectX = r.x;
  record.rectY = r.y;
  record.rectWidth = r.width;
  record.rectHeight = r.height;
  record.mosaicSize = block;
  return {};
}

BlurParam circleFor(const Settings& settings, int width, int height) {
  const Point centre = settings.centre.value_or(Point{width / 2, height / 2});
  const int shorter = std::min(width, height);
  const Rings radius = settings.radius.value_or(Rings{shorter / 4, shorter / 2});
  return {centre.x, centre.y, radius.inner, radius.outer};
}

// By default a level band across the lower middle, where a scene's subject tends to stand.
TiltShiftParam bandFor(const Settings& settings, int width, int height) {
  const auto [a, b] = settings.band.value_or(
      std::pair{Point{width / 2, height * 2 / 5}, Point{width / 2, height * 4 / 5}});
  return {a.x, a.y, b.x, b.y, settings.core};
}

// The mean of up to 5 x 5 pixels, so that noise does not pick the hue.
Result pickColour(const FilterImage& picture, Point at, Colour& colour) {
  const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
  if (at.x < 0 || at.y < 0 || at.x >= width || at.y >= height) {
    return outside("the point " + number(at.x) + ',' + number(at.y) + " (pick) is outside",
                   picture);
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
  colour = {static_cast<std::uint8_t>(sums[0] / count), static_cast<std::uint8_t>(sums[1] / count),
            static_cast<std::uint8_t>(sums[2] / count)};
  return {};
}

Result fillColour(const Settings& settings, const FilterImage& picture, FixColorParam& record) {
  Colour colour = settings.colour.value_or(Colour{});
  if (settings.pick) {
    if (Result picked = pickColour(picture, *settings.pick, colour); !picked) return picked;
  }
  record.red = colour.red;
  record.green = colour.green;
  record.blue = colour.blue;
  record.tolerance = static_cast<std::uint8_t>(settings.tolerance);
  if (settings.mask.samples.empty()) return {};
  record.mask = settings.mask.samples.data();
  record.maskWidth = record.maskStride = settings.mask.width;
  record.maskHeight = settings.mask.height;
  return {};
}

}  // namespace

Result give(Settings& settings, Setting setting, const std::vector<int>& n) {
  const SettingFacts& facts = kSettings[setting];
  const std::size_t expected = setting == kColour ? 3 : static_cast<std::size_t>(facts.numbers);
  if (n.size() != expected) {
    return trouble(Trouble::kArgument, std::string(facts.name) + " takes " +
                                           std::to_string(expected) + " numbers: " + facts.value);
  }
  if (expected == 1 && (n[0] < facts.lowest || n[0] > facts.highest)) {
    return trouble(Trouble::kArgument, number(n[0]) + " is outside " + number(facts.lowest) + ".." +
                                           number(facts.highest) + " of " + facts.name);
  }
  switch (setting) {
    case kDirection: settings.direction = n[0]; break;
    case kRect: return giveRectangle(settings, n);
    case kBlock: settings.block = n[0]; break;
    case kColour: return giveColour(settings, n);
    case kPick: settings.pick = {n[0], n[1]}; break;
    case kTolerance: settings.tolerance = n[0]; break;
    case kCentre: settings.centre = {n[0], n[1]}; break;
    case kRadius: return giveRings(settings, n);
    case kBand: settings.band = {{n[0], n[1]}, {n[2], n[3]}}; break;
    case kCore: settings.core = n[0]; break;
    default: break;
  }
  return {};
}

Result checkComplete(const ModeFacts& mode, const Settings& settings) {
  if (!mode.reads(kColour) || settings.colour.has_value() != settings.pick.has_value()) return {};
  return trouble(Trouble::kArgument,
                 std::string(mode.name) + " needs the colour to keep: either colour or pick");
}

Result makeRecord(const ModeFacts& mode, const Settings& settings, const FilterImage& picture,
                  FilterAlbumParam& record) {
  const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
  record = {};
  record.stProcess.eMode = mode.number;
  record.stProcess.eDirection = static_cast<std::uint32_t>(settings.direction);
  record.stProcess.effectRatio = settings.strength;
  record.stProcess.singleThread = settings.singleThread;
  if (mode.reads(kRect)) return fillMosaic(settings, picture, record.stProcess);
  if (mode.reads(kColour)) return fillColour(settings, picture, record.stFixColor);
  if (mode.reads(kCentre)) record.stBlur = circleFor(settings, width, height);
  if (mode.reads(kBand)) record.stTiltShift = bandFor(settings, width, height);
  return {};
}

}  // namespace lumora::host
