// The file of a picture, opened so that no kind of file can hold up or fill up the process.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vips/vips8>

#include "formats.h"

namespace lumora::tool {

// Throws a PictureError without the file's name in it.
void requireReadableFile(const std::string& path);

// A regular file stays open, as a rule; what comes through a pipe or from a device is taken into
// memory, up to a limit, as far as it begins like a picture.
class PictureFile {
 public:
  // "-" is standard input. A pipe by name that nobody opens for writing within some seconds is
  // given up; a writer that is there is waited for. Throws a PictureError without the file's name
  // in it.
  explicit PictureFile(const std::string& path);
  PictureFile(const PictureFile&) = delete;
  PictureFile& operator=(const PictureFile&) = delete;
  ~PictureFile();

  const Format& format() const { return *format_; }
  // Its header is read; the pixels are decoded as they are asked for, once and from top to bottom,
  // also when this object is gone. Throws a VError.
  vips::VImage image() const;
  // A descriptor of all its bytes, which becomes the caller's; negative by errno.
  int duplicate() const;
  // False where the file does not have these bytes.
  bool read(std::uint64_t offset, void* bytes, std::size_t count) const;

 private:
  void open(const std::string& path);
  void takeStream();
  vips::VSource source() const;

  struct BlobRelease {
    void operator()(VipsBlob* blob) const { vips_area_unref(VIPS_AREA(blob)); }
  };

  int descriptor_ = -1;
  std::unique_ptr<VipsBlob, BlobRelease> stream_;  // in place of the descriptor
  const Format* format_ = nullptr;
};

}  // namespace lumora::tool
