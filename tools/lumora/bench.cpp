// lumora bench: how long the looks take on this machine.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>

#include "commands.h"
#include "errors.h"
#include "example_settings.h"
#include "filter.h"
#include "frame_format.h"
#include "image_library.h"
#include "output.h"
#include "photograph.h"

namespace lumora::tool {
namespace {

struct BenchSettings {
  ResourceSettings resources;
  std::vector<const Mode*> looks;
  const FrameFormat* format = &findFrameFormat("rgba");
  int strength = 16;
  int rounds = 9;
  bool singleThread = false;
  bool json = false;
};

struct Timing {
  double look;   // seconds, median
  double limit;  // the same of a pass that does nothing but rewrite the bytes
};

CommandLine commandLine(BenchSettings& s) {
  return {
      "lumora bench [options] PHOTO",
      "Times every look on a photograph: milliseconds, pixels per second, and how many times the\n"
      "in-place limit that is. The limit is one thread's pass that XORs every byte of the same\n"
      "picture in place; both are timed in turn and the middle of several rounds counts. Looks\n"
      "have the settings that 'lumora gallery' gives them; decoding and encoding do not count.\n"
      "For developers of the looks there is another program, lumora-bench, in the source's\n"
      "folder bench: it measures single steps and checks them against targets.\n",
      {{"Measurement",
        {{"looks", 'l', "NAME,...", "these looks only",
          [&s](const std::string& v) {
            s.looks.clear();
            for (const std::string& name : splitAtCommas(v)) s.looks.push_back(&findMode(name));
          }},
         {"strength", 's', "0..32", "default 16",
          [&s](const std::string& v) { s.strength = parseStrength(v); }},
         {"format", 'f', "rgba|nv21|nv12", "turn the photograph into such a frame; default rgba",
          [&s](const std::string& v) { s.format = &findFrameFormat(v); }},
         {"rounds", 0, "N", "how often every look is timed; default 9",
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

template <class Step>
double secondsOf(Step step) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  step();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double medianOf(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

class Bench {
 public:
  Bench(const BenchSettings& settings, Photograph& photograph)
      : settings_(settings), size_(photograph.size()) {
    const std::uint8_t* const pixels = photograph.image().picData;
    rgba_.assign(pixels, pixels + std::size_t{4} * size_.width * size_.height);
    rgbaSize_ = size_;
    frame_ = frameOf(rgba_, *settings.format, size_);
  }

  Timing time(const Mode& mode) const {
    const LookSettings look =
        exampleSettings(mode, settings_.strength, settings_.singleThread, rgba_, rgbaSize_);
    Filter filter(settings_.resources, look, size_);
    std::vector<std::uint8_t> work = frame_;
    const FilterImage picture{
        settings_.format->format, work.data(), size_.width, size_.height,
        static_cast<std::int32_t>(size_.width * settings_.format->bytesPerPixel)};
    std::vector<double> looks, limits;
    // The first round warms up.
    for (int round = -1; round < settings_.rounds; ++round) {
      // Either finds the picture in the same state, in the cache as far as it fits.
      std::memcpy(work.data(), frame_.data(), frame_.size());
      const double limit = secondsOf([&] { xorBytes(work); });
      std::memcpy(work.data(), frame_.data(), frame_.size());
      const double seconds = secondsOf([&] { filter.apply(look, picture); });
      if (round < 0) continue;
      limits.push_back(limit);
      looks.push_back(seconds);
    }
    return {medianOf(looks), medianOf(limits)};
  }

  Size size() const { return size_; }

 private:
  const BenchSettings& settings_;
  std::vector<std::uint8_t> rgba_;
  std::vector<std::uint8_t> frame_;
  Size size_;  // of the frame
  Size rgbaSize_;
};

template <class... Values>
std::string formatted(const char* format, Values... values) {
  char line[256];
  std::snprintf(line, sizeof line, format, values...);
  return line;
}

// Rows leave as soon as they are known.
class Table {
 public:
  Table(const BenchSettings& settings, Size size, int standardOutput)
      : json_(settings.json), pixels_(1.0 * size.width * size.height), output_(standardOutput) {
    const char* threads = settings.singleThread ? "one thread" : "four threads";
    print(json_ ? formatted("{\"width\": %u, \"height\": %u, \"format\": \"%s\", \"strength\": %d, "
                            "\"rounds\": %d, \"threads\": %d,\n \"looks\": [",
                            size.width, size.height, settings.format->name, settings.strength,
                            settings.rounds, settings.singleThread ? 1 : 4)
                : formatted("%u x %u pixels, %s, strength %d, %s\n\n%-16s %10s %12s %8s\n",
                            size.width, size.height, settings.format->name, settings.strength,
                            threads, "Look", "ms", "Mpixel/s", "x limit"));
  }

  void add(const Mode& mode, const Timing& timing) {
    const double pixelsPerSecond = pixels_ / timing.look;
    limits_.push_back(timing.limit);
    print(json_
              ? formatted("%s\n  {\"mode\": %u, \"look\": \"%s\", \"ms\": %.4f, \"limit_ms\": "
                          "%.4f, \"pixels_per_second\": %.0f, \"times_limit\": %.3f}",
                          limits_.size() > 1 ? "," : "", mode.number, mode.name, 1e3 * timing.look,
                          1e3 * timing.limit, pixelsPerSecond, timing.look / timing.limit)
              : formatted("%-16s %10.3f %12.1f %8.2f\n", mode.name, 1e3 * timing.look,
                          pixelsPerSecond / 1e6, timing.look / timing.limit));
  }

  void finish() {
    const double limit = medianOf(limits_);
    print(json_ ? "\n]}\n"
                : formatted("%-16s %10.3f %12.1f %8.2f\n", "in-place limit", 1e3 * limit,
                            pixels_ / limit / 1e6, 1.0));
    output_.commit();
  }

 private:
  void print(const std::string& line) { output_.write(line.data(), line.size()); }

  const bool json_;
  const double pixels_;
  std::vector<double> limits_;
  Output output_;
};

// All that the format allows, or the named ones.
std::vector<const Mode*> chosenLooks(const BenchSettings& settings, Size size) {
  std::vector<const Mode*> looks = settings.looks;
  if (looks.empty()) {
    for (const Mode& mode : modes()) {
      if (!mode.rgbaOnly || !settings.format->hasChromaPlane) looks.push_back(&mode);
    }
  }
  for (const Mode* mode : looks) requireFrame(*mode, settings.format->format, size);
  return looks;
}

}  // namespace

int benchCommand(int argc, char** argv) {
  BenchSettings settings;
  const auto operands = readCommandLine(commandLine(settings), argc, argv);
  if (!operands) return kExitDone;
  if (operands->size() != 1) throw UsageError("one photograph is needed");

  startImageLibrary(argv[0], false);
  // The library writes lines of its own there.
  const int standardOutput = takeStandardOutput(false);
  try {
    Photograph photograph = Photograph::read(operands->front());
    const Bench bench(settings, photograph);
    const auto looks = chosenLooks(settings, bench.size());
    Table table(settings, bench.size(), standardOutput);
    for (const Mode* mode : looks) table.add(*mode, bench.time(*mode));
    table.finish();
  } catch (const PictureError& error) {
    throw PictureError(text(operands->front(), ": ", error.what()));
  }
  return kExitDone;
}

}  // namespace lumora::tool
