// lumora frame: raw camera frames through a pipe.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iostream>

#include "commands.h"
#include "errors.h"
#include "filter.h"
#include "frame_format.h"
#include "image_library.h"
#include "output.h"
#include "photograph.h"
#include "standard_descriptors.h"

namespace lumora::tool {
namespace {

struct FrameSettings {
  LookSettings look;
  ResourceSettings resources;
  const FrameFormat* format = nullptr;
  Size size;
  int strideBytes = 0;  // 0: as the width needs
  bool force = false;
  bool verbose = false;
};

CommandLine commandLine(FrameSettings& s) {
  return {
      "lumora frame --look NAME --format FORMAT --size WxH [options] [IN [OUT]]",
      "Gives raw frames a look: one frame or many in a row, from a file or standard input, to a\n"
      "file or standard output ('-', the default). A frame is its rows of --stride bytes; nv21 "
      "and\n"
      "nv12 have half as many rows of chroma pairs directly behind.\n",
      {lookOptions(s.look),
       modeOptions(s.look),
       {"Frames",
        {{"format", 'f', "nv21|nv12|rgba", "how the pixels are stored",
          [&s](const std::string& v) { s.format = &findFrameFormat(v); }},
         {"size", 0, "WxH",
          text("pixels, ", LUMORA_SHORTEST_SIDE, " to ", LUMORA_LONGEST_SIDE,
               " on either side; even for nv21 and nv12"),
          [&s](const std::string& v) { s.size = parseSize(v); }},
         {"stride", 0, "N", "bytes from row to row; default: width, for rgba 4 x width",
          [&s](const std::string& v) { s.strideBytes = parseInteger(v, 1, INT32_MAX); }},
         forceOption(s.force),
         {"verbose", 'v', nullptr, "show what is done and the library's log", raise(s.verbose)}}},
       resourceOptions(s.resources)},
      "  lumora frame --look moran --format nv21 --size 1280x720 < in.nv21 > out.nv21\n"
      "\nA whole video, with its sound; size and rate (-r) are those that ffprobe tells:\n"
      "  ffmpeg -v error -i in.mp4 -vf scale=out_color_matrix=bt601:out_range=pc \\\n"
      "      -pix_fmt nv12 -f rawvideo - |\n"
      "    lumora frame --look xpro2 --format nv12 --size 1920x1080 |\n"
      "    ffmpeg -v error -f rawvideo -pix_fmt nv12 -s 1920x1080 -r 25 -i - -i in.mp4 \\\n"
      "      -map 0:v -map '1:a?' -c:a copy -colorspace bt709 -vf \\\n"
      "      scale=in_color_matrix=bt601:in_range=pc:out_color_matrix=bt709:out_range=tv \\\n"
      "      out.mp4\n"};
}

void checkSettings(FrameSettings& settings) {
  settleLook(settings.look);
  if (settings.format == nullptr) throw UsageError("--format is needed: nv21, nv12 or rgba");
  if (settings.size.width == 0) throw UsageError("--size is needed, for example --size 1280x720");
  requireFrame(*settings.look.mode, settings.format->format, settings.size);
  const auto rowBytes = static_cast<int>(settings.size.width * settings.format->bytesPerPixel);
  if (settings.strideBytes == 0) settings.strideBytes = rowBytes;
  if (settings.strideBytes < rowBytes) {
    throw UsageError(
        text("--stride ", settings.strideBytes, " is less than the ", rowBytes, " bytes of a row"));
  }
}

std::size_t frameBytes(const FrameSettings& settings) {
  const std::size_t plane = static_cast<std::size_t>(settings.strideBytes) * settings.size.height;
  return settings.format->hasChromaPlane ? plane + plane / 2 : plane;
}

class Input {
 public:
  explicit Input(const std::string& path) : name_(path == "-" ? "standard input" : path) {
    if (path != "-") descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor_ < 0) fail();
  }

  // Less than count only at the end.
  std::size_t read(std::uint8_t* destination, std::size_t count) {
    std::size_t done = 0;
    while (done < count) {
      const ssize_t got = ::read(descriptor_, destination + done, count - done);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) fail();
      if (got == 0) break;
      done += static_cast<std::size_t>(got);
    }
    return done;
  }

  const std::string& name() const { return name_; }

 private:
  [[noreturn]] void fail() const {
    throw PictureError(text(name_, ": cannot be read: ", std::strerror(errno)));
  }

  std::string name_;
  int descriptor_ = STDIN_FILENO;
};

// Returns the count of frames.
std::uint64_t filterFrames(const FrameSettings& settings, Input& input, Filter& filter,
                           Output& output) {
  const FrameFormat& format = *settings.format;
  std::vector<std::uint8_t> frame(frameBytes(settings));
  const FilterImage image{format.format, frame.data(), settings.size.width, settings.size.height,
                          settings.strideBytes};
  LookSettings look = settings.look;
  for (std::uint64_t count = 0;; ++count) {
    const std::size_t got = input.read(frame.data(), frame.size());
    if (got == 0 && count > 0) return count;
    if (got == 0) throw PictureError(text(input.name(), ": is empty"));
    if (got < frame.size()) {
      throw PictureError(text(input.name(), ": frame ", count + 1, " is cut short: ", got, " of ",
                              frame.size(), " bytes; do --size, --stride and --format fit?"));
    }
    filter.apply(look, image);
    if (look.values.seed)
      ++*look.values.seed;  // marks that stay where they are do not look like film
    output.write(frame.data(), frame.size());
  }
}

}  // namespace

int frameCommand(int argc, char** argv) {
  FrameSettings settings;
  const auto operands = readCommandLine(commandLine(settings), argc, argv);
  if (!operands) return kExitDone;
  checkSettings(settings);
  if (operands->size() > 2) throw UsageError("at most one input and one output can be named");
  const std::string inputPath = operands->empty() ? "-" : operands->front();
  const std::string outputPath = operands->size() < 2 ? "-" : operands->back();

  if (settings.verbose) showLibraryLog();
  requireOtherFile(inputPath, outputPath);
  takeStandardOutput(settings.verbose);
  if (!settings.look.maskFile.empty()) {
    startImageLibrary(argv[0], settings.verbose);
    loadMask(settings.look);
  }
  Input input(inputPath);
  Filter filter(settings.resources, settings.look, settings.size);
  Output output(outputPath, {.force = settings.force});
  const std::uint64_t frames = filterFrames(settings, input, filter, output);
  output.commit();
  if (settings.verbose) std::cerr << "lumora: " << frames << " frames\n";
  return kExitDone;
}

}  // namespace lumora::tool
