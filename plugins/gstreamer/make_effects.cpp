// Writes one effect description per mode into a folder: what Cheese and other camera programs of
// GNOME list as effects.
//   make_effects FOLDER
#include <cstdio>
#include <fstream>
#include <string>

#include "modes/modes.h"

namespace {

bool write(const std::string& folder, const lumora::ModeFacts& mode) {
  const std::string name = mode.name;
  std::ofstream file(folder + "/lumora-" + name + ".effect");
  // RGBA, because the library takes NV12 as full-range BT.601, which camera programs seldom have.
  file << "[Effect]\nName=Lumora " << name << "\nComment=" << mode.summary
       << "\nPipelineDescription=videoconvert ! video/x-raw,format=RGBA ! lumorafilter look="
       << name << " ! videoconvert\n";
  file.close();
  return !file.fail();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: make_effects FOLDER\n", stderr);
    return 2;
  }
  for (const lumora::ModeFacts& mode : lumora::kModes) {
    if (write(argv[1], mode)) continue;
    std::fprintf(stderr, "%s: cannot be written to\n", argv[1]);
    return 1;
  }
  return 0;
}
