// A gallery host: pictures of any size through one handle, binary PPM files in and out.
//
//   gallery_host RESOURCE_DIR/ MODE STRENGTH IN.ppm OUT.ppm
#include <lumora/filters.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Photo {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<std::uint8_t> rgba;
};

// A handle that destroys itself. A handle without a size serves pictures of every size.
struct HandleDeleter {
  void operator()(FilterHandle* handle) const { filterDestroy(&handle); }
};
using Handle = std::unique_ptr<FilterHandle, HandleDeleter>;

Handle openFilters(const char* resourceDir) {
  FilterInitParamApp init{};
  init.pcResourceDir = resourceDir;
  FilterHandle* handle = nullptr;
  if (filterInit_APP(&handle, &init) != LUMORA_OK) filterDestroy(&handle);
  return Handle(handle);
}

bool readPpm(const char* path, Photo& photo) {
  std::ifstream file(path, std::ios::binary);
  std::string magic;
  int deepest = 0;
  file >> magic >> photo.width >> photo.height >> deepest;
  file.get();
  // The library takes 88 to 20000 pixels a side.
  if (!file || magic != "P6" || deepest != 255 || photo.width > 20000 || photo.height > 20000) {
    return false;
  }
  const std::size_t pixels = std::size_t{photo.width} * photo.height;
  std::vector<char> rgb(3 * pixels);
  file.read(rgb.data(), static_cast<std::streamsize>(rgb.size()));
  photo.rgba.assign(4 * pixels, 255);
  for (std::size_t i = 0; i < pixels; ++i) std::copy_n(&rgb[3 * i], 3, &photo.rgba[4 * i]);
  return bool(file);
}

bool writePpm(const char* path, const Photo& photo) {
  std::ofstream file(path, std::ios::binary);
  file << "P6\n" << photo.width << " " << photo.height << "\n255\n";
  for (std::size_t i = 0; i < photo.rgba.size(); i += 4) {
    file.write(reinterpret_cast<const char*>(&photo.rgba[i]), 3);
  }
  return bool(file.flush());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) {
    std::cerr << "usage: gallery_host RESOURCE_DIR/ MODE STRENGTH IN.ppm OUT.ppm\n";
    return 2;
  }
  Photo photo;
  if (!readPpm(argv[4], photo)) {
    std::cerr << argv[4] << ": not an 8-bit binary PPM of up to 20000 pixels a side\n";
    return 1;
  }
  const Handle handle = openFilters(argv[1]);
  if (!handle) return 1;

  FilterImage image{LUMORA_FORMAT_RGBA, photo.rgba.data(), photo.width, photo.height,
                    static_cast<std::int32_t>(4 * photo.width)};
  FilterAlbumParam param{};
  param.stProcess.eMode = static_cast<std::uint32_t>(std::atoi(argv[2]));
  param.stProcess.effectRatio = std::atoi(argv[3]);
  // Settings for the modes that need some: a sharp circle, a sharp band, red kept.
  const auto w = static_cast<std::int32_t>(photo.width),
             h = static_cast<std::int32_t>(photo.height);
  param.stBlur = {w / 2, h / 2, h / 4, h / 2};
  param.stTiltShift = {0, h / 3, 0, 2 * h / 3, 16};
  param.stFixColor = {200, 30, 30, 24, nullptr, 0, 0, 0};

  const std::uint32_t status = filterProcess_for_album(handle.get(), &image, &param);
  if (status != LUMORA_OK) {
    std::cerr << "mode " << argv[2] << " failed with status " << status << "\n";
    return 1;
  }
  return writePpm(argv[5], photo) ? 0 : 1;
}
