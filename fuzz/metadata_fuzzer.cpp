// The tool's own readers of metadata, on any bytes: what they give is bounded, read again the same,
// and free of what they take out.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "embedded_pictures.h"
#include "exif.h"
#include "fuzz_check.h"

namespace lumora::fuzz {
namespace {

using tool::Bytes;
using tool::Exif;

constexpr std::size_t kJpegSegmentBytes = 65000;

Exif exifOf(const Bytes& tiff) {
  return Exif::fromTiff([&tiff](std::uint64_t offset, void* bytes, std::size_t count) {
    if (offset > tiff.size() || count > tiff.size() - offset) return false;
    std::copy_n(tiff.begin() + static_cast<std::ptrdiff_t>(offset), count,
                static_cast<std::uint8_t*>(bytes));
    return true;
  });
}

void checkExif(const Bytes& input) {
  Exif exif = Exif::fromBlock(input);
  const Bytes block = exif.toBlock();
  FUZZ_CHECK(block.size() < kJpegSegmentBytes);
  FUZZ_CHECK(exif.isEmpty() == block.empty());
  FUZZ_CHECK(Exif::fromBlock(block).toBlock() == block);
  // Beside a field of the file's own, as the image library leaves it.
  Bytes tiff{'I', 'I', '*', 0, 8, 0, 0, 0, 1, 0, 0, 1, 3, 0, 1, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0};
  exif.addTo(tiff);
  FUZZ_CHECK(exifOf(tiff).toBlock() == block);
  exif.keepShortFields();
  FUZZ_CHECK(exif.toBlock().size() <= block.size());
}

void checkTexts(const Bytes& input) {
  const Bytes xmp = tool::xmpWithoutPictures(input);
  FUZZ_CHECK(!tool::holdsPicture({reinterpret_cast<const char*>(xmp.data()), xmp.size()}));
  const Bytes iptc = tool::iptcWithoutPictures(input);
  FUZZ_CHECK(iptc.size() <= input.size());
  FUZZ_CHECK(tool::iptcWithoutPictures(iptc) == iptc);
  FUZZ_CHECK(tool::iptcWithoutPictures(tool::iptcForJpeg(iptc)) == iptc);
}

}  // namespace
}  // namespace lumora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::uint8_t> input(data, data + size);
  lumora::fuzz::checkExif(input);
  lumora::fuzz::checkTexts(input);
  return 0;
}
