// The host's side of the measured calls: memory, resource files, handles and the log.
#pragma once

#include <cstdint>
#include <string>

#include "lumora/filters.h"
#include "pictures.h"

namespace lumora::bench {

// kReusing keeps released blocks and hands them out again, as a camera host does; kDefault is the
// library's own pair (malloc and free).
enum class Memory { kReusing, kDefault };

// Null for the default pair.
FilterAllocator* allocatorOf(Memory memory);
// Requests that the reusing allocator has had so far.
std::int64_t reusedRequests();

// Takes the texture pack from this directory. Without it, or where it has none, a pack of noise
// with a valid header is written to a temporary directory.
void setResourceDirectory(std::string directory);
const std::string& resourceDirectory();

// A handle for every mode, kept until the process ends: with textures prepared at the size, or at
// no size. Throws std::runtime_error with the log line when it is refused.
FilterHandle* preparedHandle(Size size, Memory memory);
FilterHandle* unsizedHandle(Memory memory);

// Status of an initialisation whose handle is destroyed at once. Size {0, 0} for an unsized one.
std::uint32_t initialiseOnce(std::uint32_t mode, Size size, Memory memory);

// The first message that the library logged since clearLog.
void clearLog();
std::string firstLogLine();

}  // namespace lumora::bench
