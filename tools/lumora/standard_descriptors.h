// Standard input, output and error, and the other descriptors that have names under /dev and /proc.
#pragma once

#include <optional>
#include <string>

namespace lumora::tool {

// Call it first: files must not get the numbers of standard streams that were closed. Reading from
// and writing to such a stream stays an error.
void occupyStandardDescriptors();

// Sets the real standard output aside for picture data. From then on descriptor 1, where the
// library prints, leads to standard error or, unless verbose, nowhere. A reader of ours that goes
// away is from now on a failure to write, not the end of the process.
void takeStandardOutput(bool verbose);

// At the end: throws a PictureError unless all that std::cout was given has arrived. Where standard
// output was set aside nothing was, and the library's lines do not matter.
void finishListing();

// The descriptor of this process that the path names: "-" is the real standard output, and so are
// /dev/stdout, /proc/self/fd/1 and links to them; /dev/fd/5 is 5. Nothing for other paths.
std::optional<int> outputDescriptorOf(const std::string& path);

}  // namespace lumora::tool
