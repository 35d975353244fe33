// The two files of a resource directory.
#pragma once

namespace lumora {

inline constexpr const char* kPackName = "mixIm.dat";
inline constexpr const char* kTuningName = "filter.xml";

}  // namespace lumora
