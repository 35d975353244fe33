// Writes the default texture pack: lumora-make-pack FILE
#include <cstdint>
#include <cstdio>

#include "default_pack/default_pack.h"
#include "resources/texture_pack.h"

namespace {

std::uint8_t pack[lumora::kPackBytes];

bool writePack(const char* path) {
  std::FILE* file = std::fopen(path, "wb");
  if (file == nullptr) return false;
  const bool written = std::fwrite(pack, 1, sizeof pack, file) == sizeof pack;
  return std::fclose(file) == 0 && written;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: lumora-make-pack FILE\n");
    return 2;
  }
  lumora::drawDefaultPack(pack);
  if (!writePack(argv[1])) {
    std::perror(argv[1]);
    std::remove(argv[1]);
    return 1;
  }
  return 0;
}
