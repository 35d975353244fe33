// The texture pack and the tuning document: where they are, and how the library gets to see them.
#pragma once

#include <memory>
#include <string>

#include "config/filter_params.h"
#include "options.h"

namespace lumora::tool {

struct ResourceSettings {
  std::string directory;  // --resources; empty: found by itself
  std::string tuning;     // --params; empty: the directory's own filter.xml
};

// What becomes of a tuning document that somebody names. Throws a ResourceError for one that the
// library would ignore. `name` is what the errors call it.
TuningReport readTuning(const std::string& path, const std::string& name);

OptionGroup resourceOptions(ResourceSettings& settings);

// What initialisation takes as its directory. The library knows one short directory that holds both
// files under fixed names; where that does not fit the settings, a private directory of links does,
// for as long as this object lives.
class Resources {
 public:
  explicit Resources(const ResourceSettings& settings);

  const char* prefix() const { return prefix_.c_str(); }
  // Why initialisation refused the files.
  [[noreturn]] void explainRefusal(const std::string& libraryMessage) const;

 private:
  void linkPrivately(const std::string& tuning);

  std::string directory_;
  std::string prefix_;
  std::shared_ptr<const std::string> privateFolder_;  // removed with its last owner
};

}  // namespace lumora::tool
