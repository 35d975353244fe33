// A handle of the library for one look at one picture size (or at any), with its failures in words.
#pragma once

#include <cstdint>
#include <string>

#include "host/result.h"
#include "host/settings.h"
#include "lumora/filters.h"
#include "modes/modes.h"

namespace lumora::host {

struct Size {
  unsigned width = 0;
  unsigned height = 0;

  bool operator==(const Size&) const = default;
};

// kArgument for pictures that the mode does not take: sides beyond the limits, odd sides of NV21
// and NV12 pictures, NV pictures for a mode of RGBA alone.
Result checkPicture(const ModeFacts& mode, std::uint32_t format, Size size);

// What the status of a call and the lines that the library has logged in it amount to. Lines count
// even with status 0, which the mosaic has whatever happens inside.
Result explain(std::uint32_t status);

class Session {
 public:
  Session() = default;
  ~Session() { close(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // resourceDir: prefix of the two resource files, ending in "/". With a size the look's textures
  // are prepared for pictures of that size; others work too, more slowly. allocator: null for the C
  // heap, otherwise borrowed as long as the session is open. An open session is closed first.
  Result open(const ModeFacts& mode, const std::string& resourceDir, Size size = {},
              int direction = 0, FilterAllocator* allocator = nullptr);
  // As open(), but keeps an open session that is prepared for the same.
  Result prepare(const ModeFacts& mode, const std::string& resourceDir, Size size, int direction);
  void close();
  bool isOpen() const { return handle_ != nullptr; }

  // Rewrites the picture. Calls must not overlap.
  Result apply(const ModeFacts& mode, const Settings& settings, const FilterImage& picture);

 private:
  // What tells one handle from another.
  struct Purpose {
    std::uint32_t texturedMode = LUMORA_MODE_ANY;
    Size size;
    int direction = 0;
    std::string resourceDir;

    bool operator==(const Purpose&) const = default;
  };
  static Purpose purposeOf(const ModeFacts& mode, const std::string& resourceDir, Size size,
                           int direction);

  FilterHandle* handle_ = nullptr;
  Purpose purpose_;
};

}  // namespace lumora::host
