// One use of a plug-in: a mode for pictures of one size.
#pragma once

#include <cstdint>
#include <memory>

#include "plugins/frei0r/parameters.h"

#define LUMORA_FREI0R_API __attribute__((visibility("default")))

namespace lumora::frei0r {

LUMORA_FREI0R_API void describe(std::uint32_t mode, f0r_plugin_info_t& info);
// Leaves the record alone where the mode has no such parameter.
LUMORA_FREI0R_API void describeParameter(std::uint32_t mode, int index, f0r_param_info_t& info);

class LUMORA_FREI0R_API Effect {
 public:
  // Null, with a line on standard error, when the library refuses: frei0r has no other way to say
  // why.
  static std::unique_ptr<Effect> make(std::uint32_t mode, unsigned width, unsigned height);
  ~Effect();

  void set(int index, const void* value);
  void get(int index, void* value) const;
  // Both are packed RGBA of the size. Pictures that no look takes, and such as the library fails
  // on, are passed on unchanged.
  void update(const std::uint32_t* in, std::uint32_t* out);

 private:
  Effect(const ModeFacts& mode, host::Size size) : mode_(mode), size_(size) {}
  host::Result prepare(int direction);
  host::Result filter(std::uint32_t* pixels);

  const ModeFacts& mode_;
  host::Size size_;
  Parameters parameters_;
  host::Session session_;
  bool hasComplained_ = false;
};

}  // namespace lumora::frei0r
