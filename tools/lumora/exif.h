// EXIF facts, apart from any file: taken from an EXIF block or a TIFF file, both of which are
// directories of numbered fields, and put into either.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace lumora::tool {

using Bytes = std::vector<std::uint8_t>;

// One field with its value in little-endian order.
struct ExifField {
  std::uint16_t tag;
  std::uint16_t type;
  std::uint32_t count;
  Bytes value;
};

class Exif {
 public:
  // Copies bytes at an offset; false where there are none.
  using Reader = std::function<bool(std::uint64_t offset, void* bytes, std::size_t count)>;

  // The known fields of a directory tree that begins with a TIFF header. What is damaged or long is
  // left out; thumbnails, maker notes and what only belongs to the file's own pixels are not known.
  static Exif fromTiff(const Reader& read);
  // The same of an EXIF block, with or without the word in front.
  static Exif fromBlock(const Bytes& block);

  bool isEmpty() const;
  // Leaves the short fields, none of which could hold a picture.
  void keepShortFields();
  // Empty where there is no field.
  Bytes toBlock() const;
  // Adds the fields, and others, to the first directory of a little-endian TIFF file.
  void addTo(Bytes& tiff, const std::vector<ExifField>& others = {}) const;

 private:
  enum Directory { kPicture, kCamera, kPosition, kInterchange, kDirectoryCount };

  std::array<std::vector<ExifField>, kDirectoryCount> directories_;
};

}  // namespace lumora::tool
