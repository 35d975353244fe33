// lumora sample: a picture to try the looks on.
#include "commands.h"
#include "errors.h"
#include "filter.h"
#include "formats.h"
#include "image_library.h"
#include "options.h"
#include "output.h"
#include "photograph.h"
#include "scene/sample_scene.h"

namespace lumora::tool {

int sampleCommand(int argc, char** argv) {
  Size size{1600, 1200};
  bool force = false;
  const auto operands = readCommandLine(
      {"lumora sample [--size WxH] [--force] OUT",
       "Draws the sample scene, a lake on a summer afternoon: a picture to try the looks on.\n",
       {{"Options",
         {{"size", 0, "WxH", "pixels; default 1600x1200",
           [&size](const std::string& v) { size = parseSize(v); }},
          forceOption(force)}}},
       "  lumora sample scene.jpg\n"},
      argc, argv);
  if (!operands) return kExitDone;
  if (operands->size() != 1) throw UsageError("one output picture is needed");
  const std::string& path = operands->front();
  const std::string suffix = requireWritableName(path);
  requirePictureSize(size);

  startImageLibrary(argv[0], false);
  Output output(path, {.force = force});
  std::vector<std::uint8_t> scene = drawSampleScene(size);
  const auto rgba =
      vips::VImage::new_from_memory(scene.data(), scene.size(), static_cast<int>(size.width),
                                    static_cast<int>(size.height), 4, VIPS_FORMAT_UCHAR);
  const std::vector<std::uint8_t> file = encode(fromRgba(rgba, false), {}, suffix, kDefaultQuality);
  output.finish(file.data(), file.size());
  return kExitDone;
}

}  // namespace lumora::tool
