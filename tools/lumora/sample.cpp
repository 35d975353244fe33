// lumora sample: a picture to try the looks on.
#include "commands.h"
#include "errors.h"
#include "filter.h"
#include "image_library.h"
#include "options.h"
#include "output.h"
#include "photograph.h"
#include "scene/sample_scene.h"

namespace lumora::tool {

int sampleCommand(int argc, char** argv) {
  Size size{1600, 1200};
  const auto operands = readCommandLine(
      {"lumora sample [--size WxH] OUT",
       "Draws the sample scene, a lake on a summer afternoon: a picture to try the looks on.\n",
       {{"Options",
         {{"size", 0, "WxH", "pixels; default 1600x1200",
           [&size](const std::string& v) { size = parseSize(v); }}}}},
       "  lumora sample scene.jpg\n"},
      argc, argv);
  if (!operands) return kExitDone;
  if (operands->size() != 1) throw UsageError("one output picture is needed");
  const std::string& path = operands->front();
  const std::string suffix = requireWritableName(path);
  requirePictureSize(size);

  startImageLibrary(argv[0], false);
  const Photograph scene = Photograph::fromPixels(drawSampleScene(size), size);
  Output output(path);
  const std::vector<std::uint8_t> file = scene.encode(suffix, kDefaultQuality);
  output.write(file.data(), file.size());
  output.commit();
  return kExitDone;
}

}  // namespace lumora::tool
