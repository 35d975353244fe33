// A resource directory that initialisations accept.
#pragma once

#include "support/resource_directory.h"

namespace lumora::test {

// Holds a pack full of noise, and no tuning document.
class PackDirectory : public ResourceDirectory {
 public:
  PackDirectory() { write(pack(), noisyPack()); }
};

}  // namespace lumora::test
