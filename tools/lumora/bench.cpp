// lumora bench: how long the looks take on this machine.
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "bench/measure.h"
#include "commands.h"
#include "errors.h"
#include "example_settings.h"
#include "filter.h"
#include "frame_format.h"
#include "image_library.h"
#include "output.h"
#include "photograph.h"
#include "standard_descriptors.h"

namespace lumora::tool {
namespace {

using Json = nlohmann::ordered_json;

struct BenchSettings {
  ResourceSettings resources;
  std::vector<const Mode*> looks;
  const FrameFormat* format = &findFrameFormat("rgba");
  Strength strength;
  int rounds = 9;
  bool singleThread = false;
  bool json = false;
};

CommandLine commandLine(BenchSettings& s) {
  return {
      "lumora bench [options] PHOTO",
      "Times every look on a photograph: milliseconds, pixels per second, and how many times the\n"
      "in-place limit that is. The limit is one thread's pass that XORs every byte of the same\n"
      "picture in place; both are timed in turn and the middle of several rounds counts; --json\n"
      "also has the least and the most of a round. Looks have the settings that 'lumora gallery'\n"
      "gives them; decoding and encoding do not count.\n"
      "For developers of the looks there is another program, lumora-bench, in the source's\n"
      "folder bench: it measures single steps and checks them against targets.\n",
      {{"Measurement",
        {{"looks", 'l', "NAME,...", "these looks only",
          [&s](const std::string& v) {
            s.looks.clear();
            for (const std::string& name : splitAtCommas(v)) s.looks.push_back(&findMode(name));
          }},
         {"strength", 's', "0..32|P%", "default 16, which is 100%",
          [&s](const std::string& v) { s.strength = parseStrength(v); }},
         {"format", 'f', "rgba|nv21|nv12", "turn the photograph into such a frame; default rgba",
          [&s](const std::string& v) { s.format = &findFrameFormat(v); }},
         {"rounds", 0, "N", "how often every look is timed at least; default 9",
          [&s](const std::string& v) { s.rounds = parseInteger(v, 1, 10000); }},
         {"single-thread", 0, nullptr, "filter without starting threads", raise(s.singleThread)},
         {"json", 0, nullptr, "the figures as a JSON object", raise(s.json)}}},
       resourceOptions(s.resources)},
      "  lumora bench photo.jpg\n"
      "  lumora bench --looks heibai,lofi --format nv21 --single-thread --rounds 50 photo.jpg\n"};
}

void xorBytes(std::vector<std::uint8_t>& bytes) {
  for (std::uint8_t& byte : bytes) byte ^= 255;
}

// Of the look, against a pass that does nothing but rewrite the frame's bytes.
bench::Figures measureLook(const BenchSettings& settings, const Mode& mode,
                           const FilterImage& picture, const std::vector<std::uint8_t>& frame) {
  const Size size = frameSize(picture, *settings.format);
  const LookSettings look =
      exampleSettings(mode, settings.strength.levelOn(&mode), settings.singleThread, picture);
  Filter filter(settings.resources, look, size);
  std::vector<std::uint8_t> work = frame;
  const FilterImage image{settings.format->format, work.data(), size.width, size.height,
                          static_cast<std::int32_t>(size.width * settings.format->bytesPerPixel)};
  return bench::measure({[&] { std::memcpy(work.data(), frame.data(), frame.size()); },
                         [&] { xorBytes(work); },
                         [&] {
                           filter.apply(look, image);
                           return std::uint32_t{LUMORA_OK};
                         }});
}

template <class... Values>
std::string formatted(const char* format, Values... values) {
  char line[256];
  std::snprintf(line, sizeof line, format, values...);
  return line;
}

struct Row {
  const Mode* mode;
  bench::Figures figures;
};

std::string asText(double pixels, const char* name, double seconds, double timesLimit) {
  return formatted("%-16s %10.3f %12.1f %8.2f\n", name, 1e3 * seconds, pixels / seconds / 1e6,
                   timesLimit);
}

std::string heading(const BenchSettings& settings, Size size) {
  return formatted("%u x %u pixels, %s, strength %s, %s\n\n%-16s %10s %12s %8s\n", size.width,
                   size.height, settings.format->name, settings.strength.name().c_str(),
                   settings.singleThread ? "one thread" : "four threads", "Look", "ms", "Mpixel/s",
                   "x limit");
}

Json asJson(const BenchSettings& settings, Size size, const std::vector<Row>& rows) {
  const double pixels = 1.0 * size.width * size.height;
  Json looks = Json::array();
  for (const auto& [mode, figures] : rows) {
    looks.push_back({{"mode", mode->number},
                     {"look", mode->name},
                     {"ms", 1e3 * figures.seconds},
                     {"limit_ms", 1e3 * figures.referenceSeconds},
                     {"pixels_per_second", pixels / figures.seconds},
                     {"times_limit", figures.ratio},
                     {"times_limit_least", figures.leastRatio},
                     {"times_limit_most", figures.mostRatio}});
  }
  return {{"width", size.width},
          {"height", size.height},
          {"format", settings.format->name},
          {"strength", settings.strength.isPercent ? Json(settings.strength.name())
                                                   : Json(settings.strength.number)},
          {"rounds", settings.rounds},
          {"threads", settings.singleThread ? 1 : 4},
          {"looks", looks}};
}

// All that the format allows, or the named ones.
std::vector<const Mode*> chosenLooks(const BenchSettings& settings, Size size) {
  std::vector<const Mode*> looks = settings.looks;
  if (looks.empty()) {
    for (const Mode& mode : kModes) {
      if (!mode.rgbaOnly || !settings.format->hasChromaPlane) looks.push_back(&mode);
    }
  }
  for (const Mode* mode : looks) requireFrame(*mode, settings.format->format, size);
  return looks;
}

// Rows of the table leave as soon as they are known.
void runBench(const BenchSettings& settings, const FilterImage& picture) {
  const Size size = frameSize(picture, *settings.format);
  const auto looks = chosenLooks(settings, size);
  const std::vector<std::uint8_t> frame = frameOf(picture, *settings.format);
  Output output("-");
  const auto print = [&](const std::string& lines) { output.write(lines.data(), lines.size()); };
  if (!settings.json) print(heading(settings, size));
  const double pixels = 1.0 * size.width * size.height;
  std::vector<Row> rows;
  for (const Mode* mode : looks) {
    const bench::Figures figures = measureLook(settings, *mode, picture, frame);
    rows.push_back({mode, figures});
    if (!settings.json) print(asText(pixels, mode->name, figures.seconds, figures.ratio));
  }
  print(settings.json ? asJson(settings, size, rows).dump(2) + '\n'
                      : asText(pixels, "in-place limit", rows.front().figures.referenceSeconds, 1));
  output.commit();
}

}  // namespace

int benchCommand(int argc, char** argv) {
  BenchSettings settings;
  const auto operands = readCommandLine(commandLine(settings), argc, argv);
  if (!operands) return kExitDone;
  if (operands->size() != 1) throw UsageError("one photograph is needed");
  bench::setLeastRounds(settings.rounds);

  startImageLibrary(argv[0], false);
  // The library writes lines of its own there.
  takeStandardOutput(false);
  try {
    Photograph photograph = Photograph::read(operands->front());
    runBench(settings, photograph.pixels());
  } catch (const PictureError& error) {
    throw PictureError(text(operands->front(), ": ", error.what()));
  }
  return kExitDone;
}

}  // namespace lumora::tool
