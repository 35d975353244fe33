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
#include "y4m.h"

namespace lumora::tool {
namespace {

struct FrameSettings {
  LookSettings look;
  ResourceSettings resources;
  const FrameFormat* format = nullptr;  // null: Y4M
  bool isY4m = false;
  Size size;
  int strideBytes = 0;  // 0: as the width needs
  bool force = false;
  bool verbose = false;
};

CommandLine commandLine(FrameSettings& s) {
  return {
      "lumora frame --look NAME [options] [IN [OUT]]\n"
      "lumora frame --look NAME --format FORMAT --size WxH [options] [IN [OUT]]",
      "Gives raw frames a look: one frame or many in a row, from a file or standard input, to a\n"
      "file or standard output ('-', the default). Y4M streams, which begin with their size, are\n"
      "taken as they are: progressive 4:2:0 of eight bits, full range. Of other frames --format\n"
      "and --size tell the form: rows of --stride bytes, and for nv21 and nv12 half as many rows\n"
      "of chroma pairs directly behind.\n",
      {lookOptions(s.look),
       modeOptions(s.look),
       {"Frames",
        {{"format", 'f', "nv21|nv12|rgba", "how the pixels are stored; default: as Y4M has them",
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
      "\nA whole video, with its sound:\n"
      "  ffmpeg -v error -i in.mp4 -vf scale=out_color_matrix=bt601:out_range=pc \\\n"
      "      -pix_fmt yuv420p -f yuv4mpegpipe - |\n"
      "    lumora frame --look xpro2 |\n"
      "    ffmpeg -v error -i - -i in.mp4 \\\n"
      "      -map 0:v -map '1:a?' -c:a copy -colorspace bt709 -vf \\\n"
      "      scale=in_color_matrix=bt601:in_range=pc:out_color_matrix=bt709:out_range=tv \\\n"
      "      out.mp4\n"};
}

void settleStride(FrameSettings& settings) {
  const auto rowBytes = static_cast<int>(settings.size.width * settings.format->bytesPerPixel);
  if (settings.strideBytes == 0) settings.strideBytes = rowBytes;
  if (settings.strideBytes < rowBytes) {
    throw UsageError(
        text("--stride ", settings.strideBytes, " is less than the ", rowBytes, " bytes of a row"));
  }
}

void checkSettings(FrameSettings& settings) {
  settleLook(settings.look);
  settings.isY4m = settings.format == nullptr;
  if (settings.isY4m) {
    if (settings.size.width == 0 && settings.strideBytes == 0) return;
    throw UsageError("--size and --stride need --format nv21, nv12 or rgba; Y4M has its own");
  }
  if (settings.size.width == 0) throw UsageError("--size is needed, for example --size 1280x720");
  requireFrame(*settings.look.mode, settings.format->format, settings.size);
  settleStride(settings);
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

  // With its line break; empty at the end.
  std::string readLine(std::size_t longest) {
    std::string line;
    for (char next = 0; next != '\n' && readOne(next);) {
      line += next;
      if (line.size() > longest) throw PictureError(name_ + ": is no Y4M");
    }
    return line;
  }

  const std::string& name() const { return name_; }

 private:
  // The few bytes of a line; frames are read directly.
  bool readOne(char& byte) { return read(reinterpret_cast<std::uint8_t*>(&byte), 1) == 1; }

  [[noreturn]] void fail() const {
    throw PictureError(text(name_, ": cannot be read: ", std::strerror(errno)));
  }

  std::string name_;
  int descriptor_ = STDIN_FILENO;
};

// Where frames come from and go to, in one of two forms.
class FrameStream {
 public:
  FrameStream(Input& input, Output& output, const FrameSettings& settings)
      : input_(input),
        output_(output),
        isY4m_(settings.isY4m),
        bytes_(frameBytes(settings)),
        pairs_(std::size_t{settings.size.width} * settings.size.height / 4),
        planes_(isY4m_ ? 2 * pairs_ : 0) {}

  std::size_t frameSize() const { return bytes_; }

  // False at the end.
  bool read(std::uint8_t* frame) {
    ++number_;
    if (isY4m_ && !readMark()) return false;
    const std::size_t luma = bytes_ - planes_.size();
    std::size_t got = input_.read(frame, luma);
    if (isY4m_) {
      got += input_.read(planes_.data(), planes_.size());
      pairChroma(planes_.data(), frame + luma, pairs_);
    } else if (got == 0) {
      if (number_ == 1) throw PictureError(text(input_.name(), ": is empty"));
      return false;
    }
    if (got == bytes_) return true;
    throw PictureError(text(input_.name(), ": frame ", number_, " is cut short: ", got, " of ",
                            bytes_, " bytes",
                            isY4m_ ? "" : "; do --size, --stride and --format fit?"));
  }

  void write(const std::uint8_t* frame) {
    if (!isY4m_) return output_.write(frame, bytes_);
    const std::size_t luma = bytes_ - planes_.size();
    splitChroma(frame + luma, planes_.data(), pairs_);
    output_.write(mark_.data(), mark_.size());
    output_.write(frame, luma);
    output_.write(planes_.data(), planes_.size());
  }

 private:
  bool readMark() {
    mark_ = input_.readLine(kLongestY4mLine);
    if (mark_.empty()) return false;
    if (mark_.substr(0, mark_.find_first_of(" \n")) == kY4mFrameMark) return true;
    throw PictureError(text(input_.name(), ": has no frame where the ", number_, ". should be"));
  }

  Input& input_;
  Output& output_;
  const bool isY4m_;
  const std::size_t bytes_;  // of a frame
  const std::size_t pairs_;
  std::vector<std::uint8_t> planes_;
  std::string mark_;
  std::uint64_t number_ = 0;
};

// Returns the count of frames.
std::uint64_t filterFrames(const FrameSettings& settings, FrameStream& stream, Filter& filter) {
  std::vector<std::uint8_t> frame(stream.frameSize());
  const FilterImage image{settings.format->format, frame.data(), settings.size.width,
                          settings.size.height, settings.strideBytes};
  LookSettings look = settings.look;
  std::uint64_t count = 0;
  for (; stream.read(frame.data()); ++count) {
    filter.apply(look, image);
    if (look.values.seed)
      ++*look.values.seed;  // marks that stay where they are do not look like film
    stream.write(frame.data());
  }
  return count;
}

// Reads the stream's first line, which then is the output's, and settles what it tells.
std::string readY4mHeader(FrameSettings& settings, Input& input) {
  const std::string line = input.readLine(kLongestY4mLine);
  try {
    if (line.empty()) throw PictureError("is empty");
    if (!line.starts_with(kY4mMark)) {
      throw PictureError("is no Y4M; --format nv21, nv12 or rgba and --size tell of other frames");
    }
    const Y4mStream stream = parseY4mHeader(line.substr(0, line.find('\n')));
    requirePictureSize(stream.size);
    if (!stream.hasFullRange) {
      std::cerr << "lumora: " << input.name()
                << ": does not say that its levels are full range; looks take them so\n";
    }
    settings.size = stream.size;
  } catch (const PictureError& error) {
    throw PictureError(text(input.name(), ": ", error.what()));
  }
  settings.format = &findFrameFormat("nv12");
  requireFrame(*settings.look.mode, settings.format->format, settings.size);
  settings.strideBytes = static_cast<int>(settings.size.width);
  return line;
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
  const std::string header = settings.isY4m ? readY4mHeader(settings, input) : std::string();
  Filter filter(settings.resources, settings.look, settings.size);
  Output output(outputPath, {.force = settings.force});
  output.write(header.data(), header.size());
  FrameStream stream(input, output, settings);
  const std::uint64_t frames = filterFrames(settings, stream, filter);
  output.commit();
  if (settings.verbose) std::cerr << "lumora: " << frames << " frames\n";
  return kExitDone;
}

}  // namespace lumora::tool
