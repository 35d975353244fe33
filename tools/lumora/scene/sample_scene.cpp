#include "scene/sample_scene.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "scene/backdrop.h"
#include "scene/painting.h"

namespace lumora::tool {
namespace {

constexpr double kSceneWidth = 1600;
constexpr double kSceneHeight = 1200;

Rgb water(double x, double y) {
  const double depth = (y - kShore) / (kSceneHeight - kShore);  // 0 at the far shore
  const double fineness = 1 / (0.06 + depth);
  const double wave = cloudNoise(x * 0.0035 * fineness, y * 0.028 * fineness, 3, 51) - 0.5;
  const double swell = cloudNoise(x * 0.002, y * 0.015, 2, 52) - 0.5;
  const double tilt = (wave + 0.5 * swell) * (14 + 260 * depth);
  const double mirrored = kShore - (y - kShore) * 1.12 + tilt * 0.9;
  const Rgb reflection = landscape(x + tilt * 0.35, std::min(mirrored, kShore));

  const Rgb deep{0.09, 0.27, 0.34};
  Rgb colour = mix(reflection * 0.94, deep, 0.18 + 0.42 * ramp(0, 0.6, depth));
  colour = colour * (1 + 0.55 * wave);

  // The sun's road.
  const double road = (x - kSunX) / (26 + 190 * depth);
  const double glitter = ramp(0.04, 0.16, wave) / (1 + road * road * road * road);
  return mix(colour, {1.0, 0.95, 0.80}, 0.85 * glitter * ramp(0, 0.03, depth));
}

void layBoat(Rgb& colour, double x, double y) {
  const double dx = (x - 1190) / 118;
  const double dy = y - 838;
  if (std::abs(dx) > 1.1 || dy < -70 || dy > 90) return;
  const double sheer = -14 + 10 * (1 - dx * dx) - 12 * dx;  // the upper edge, higher at the bow
  const double keel = 26 - 30 * dx * dx * dx * dx;
  const double shadow = std::abs(dy - 34) - 12 * (1 - dx * dx);
  lay(colour, colour * 0.55, shadow, 10);
  const double inside =
      std::max(std::abs(dy - sheer) - 9 * (1 - dx * dx), std::abs(dx) * 118 - 108);
  lay(colour, {0.42, 0.28, 0.17}, inside);
  const double hull = std::max({sheer + 3 - dy, dy - keel, std::abs(dx) * 118 - 116 + dy * 0.25});
  const double board = 0.9 + 0.1 * ramp(0.2, 0.4, (dy - sheer) / 11 - floorOf((dy - sheer) / 11));
  lay(colour, Rgb{0.80, 0.15, 0.13} * (board * (1.05 - 0.012 * dy)), hull);
  lay(colour, {0.97, 0.95, 0.90}, std::max(std::abs(dy - sheer - 5) - 2.6, hull));
}

// Two people on the meadow's edge, seen from behind.
struct Person {
  double x, feet, height;
  Rgb skin, hair, shirt, trousers;
};

constexpr std::array kPeople = {
    Person{588,
           1032,
           176,
           {0.87, 0.65, 0.53},
           {0.35, 0.20, 0.11},
           {0.93, 0.91, 0.86},
           {0.20, 0.29, 0.45}},
    Person{668,
           1040,
           160,
           {0.50, 0.33, 0.24},
           {0.10, 0.08, 0.08},
           {0.90, 0.55, 0.12},
           {0.42, 0.44, 0.40}},
};

void layPerson(Rgb& colour, const Person& person, double x, double y) {
  const double scale = person.height / 100;
  const double px = (x - person.x) / scale;  // 100 units tall, feet at 0
  const double py = (y - person.feet) / scale;
  if (std::abs(px) > 90 || py < -110 || py > 30) return;
  const auto layPart = [&](Rgb paint, double edge) {
    const double light = 1.05 - 0.011 * px;  // the sun stands on the left
    lay(colour, paint * light, edge * scale);
  };
  lay(colour, colour * 0.55, limb(px, py, 4, 1, 60, 14, 6) * scale, 8);
  for (const double side : {-1.0, 1.0}) {
    layPart(person.trousers, limb(px, py, side * 5, -46, side * 6, -3, 5.2));
    layPart(person.skin, limb(px, py, side * 13, -74, side * 17, -42, 3.2));
    layPart(person.shirt, limb(px, py, side * 11, -78, side * 14.5, -62, 4.2));
  }
  layPart(person.shirt, limb(px, py, 0, -76, 0, -50, 10.5));
  layPart(person.skin, limb(px, py, 0, -90, 0, -84, 3.6));
  layPart(person.skin, distance(px, (py + 93) * 0.88) - 7);
  layPart(person.hair, std::max(distance(px, (py + 94) * 0.86) - 7.6, py + 90));
}

double meadowEdge(double x) {
  return 1010 - 0.000062 * (x - 760) * (x - 760) + 26 * (cloudNoise(x * 0.006, 0, 3, 61) - 0.5) -
         12 * cloudNoise(x * 0.09, 3, 2, 62);
}

// Flowers stand on a jittered grid whose cells grow towards the viewer.
void layFlowers(Rgb& colour, double x, double y, double edge) {
  static constexpr std::array kPetals = {Rgb{0.86, 0.15, 0.12}, Rgb{0.97, 0.82, 0.20},
                                         Rgb{0.97, 0.95, 0.95}, Rgb{0.56, 0.36, 0.72}};
  const double near = clamp01((y - edge) / 260);
  const double cell = near < 0.3 ? 16 : near < 0.65 ? 24 : 36;
  const auto cx = floorOf(x / cell);
  const auto cy = floorOf(y / cell);
  const double patch = noise(x * 0.006, y * 0.012, 71);
  if (paint::uniform(cx, cy, 72) > ramp(0.36, 0.72, patch) * 0.62 || near < 0.05) return;
  const double dx = x - (cx + 0.3 + 0.4 * paint::uniform(cx, cy, 73)) * cell;
  const double dy = y - (cy + 0.3 + 0.4 * paint::uniform(cx, cy, 74)) * cell;
  const double radius = cell * (0.13 + 0.12 * paint::uniform(cx, cy, 75));
  const Rgb petals = kPetals[hash(cx, cy, 76) % kPetals.size()];
  const double flower = distance(dx, dy * 1.35) - radius;
  lay(colour, petals * (1.02 - 0.35 * clamp01(0.5 + dy / radius)), flower);
  lay(colour, {0.35, 0.24, 0.10}, distance(dx, dy * 1.35) - radius * 0.32);
}

void layMeadow(Rgb& colour, double x, double y) {
  const double edge = meadowEdge(x);
  if (y < edge - 2) return;
  const double near = clamp01((y - edge) / 260);
  const double blades = cloudNoise(x * (0.34 - 0.20 * near), y * (0.07 - 0.035 * near), 3, 63);
  const double patch = cloudNoise(x * 0.008, y * 0.02, 3, 64);
  Rgb grass = mix({0.16, 0.30, 0.09}, {0.55, 0.66, 0.24}, clamp01(0.5 + 2.1 * (blades - 0.5)));
  grass = mix(grass, {0.66, 0.62, 0.30}, 0.5 * ramp(0.5, 0.75, patch));
  grass = grass * (1.08 - 0.36 * near);
  lay(colour, grass, edge - y);
  layFlowers(colour, x, y, edge);
}

// A tree at the right edge frames the view: a leaning trunk and a crown of leaves.
void layTree(Rgb& colour, double x, double y) {
  if (x < 1180) return;
  const double lean = 1508 + 0.00009 * (y - 1100) * (y - 1100);
  const double half = 21 + ramp(950, 1130, y) * 26 - ramp(700, 200, y) * 9;
  const double bark = cloudNoise(x * 0.11, y * 0.022, 4, 81);
  const double side = (x - lean) / half;
  const Rgb trunk =
      mix({0.17, 0.12, 0.09}, {0.55, 0.43, 0.31}, clamp01(0.42 - 0.45 * side + 1.3 * (bark - 0.5)));
  lay(colour, trunk, std::max({std::abs(x - lean) - half, y - 1128 - 10 * side * side, 120 - y}));

  const double spread = distance((x - 1560) / 330, (y - 130) / 330);
  if (spread > 1.35) return;
  const double bough = cloudNoise(x * 0.0085, y * 0.0105, 4, 82);
  const double leaves = cloudNoise(x * 0.058, y * 0.066, 3, 83);
  const double density = 1.02 - spread + 1.15 * (bough - 0.5) + 0.85 * (leaves - 0.5);
  const double light =
      clamp01(0.45 + 2.4 * (leaves - 0.5) + 1.2 * (bough - 0.5) - (x - 1480) * 0.0011);
  const Rgb leaf = mix({0.07, 0.15, 0.06}, {0.56, 0.66, 0.20}, light);
  colour = mix(colour, leaf, ramp(0.0, 0.055, density));
}

Rgb sceneAt(double x, double y) {
  Rgb colour = y < kShore ? landscape(x, y) : water(x, y);
  if (y > kShore - 2) layBoat(colour, x, y);
  layMeadow(colour, x, y);
  for (const Person& person : kPeople) layPerson(colour, person, x, y);
  layTree(colour, x, y);
  return colour;
}

// A little grain, as a camera would add, keeps smooth parts from banding.
std::uint8_t toByte(double value, double grain) {
  return static_cast<std::uint8_t>(clamp01(value) * 251 + 2 + grain + 0.5);
}

}  // namespace

std::vector<std::uint8_t> drawSampleScene(Size size) {
  std::vector<std::uint8_t> pixels;
  pixels.reserve(std::size_t{4} * size.width * size.height);
  for (unsigned row = 0; row < size.height; ++row) {
    const double y = (row + 0.5) * kSceneHeight / size.height;
    for (unsigned column = 0; column < size.width; ++column) {
      const double x = (column + 0.5) * kSceneWidth / size.width;
      const Rgb colour = sceneAt(x, y);
      const auto c = static_cast<std::int32_t>(column);
      const auto r = static_cast<std::int32_t>(row);
      const double grain = paint::uniform(c, r, 91) + paint::uniform(c, r, 92) - 1;
      for (const double value : {colour.r, colour.g, colour.b}) {
        pixels.push_back(toByte(value, 1.6 * grain));
      }
      pixels.push_back(255);
    }
  }
  return pixels;
}

}  // namespace lumora::tool
