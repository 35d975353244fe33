// AVIF and HEIC pixels are decoded in a process of their own: how large the coded picture is, and
// what it takes, only its decoder learns. What the file's header promises is the limit.
#pragma once

#include <vips/vips8>

#include "picture_file.h"

namespace lumora::tool {

// `header` is the file's, with no pixel decoded; the result is that picture in memory. Throws a
// PictureError without the file's name in it.
vips::VImage decodeApart(const vips::VImage& header, const PictureFile& file);

// The other side: whether a command line comes from decodeApart, and its work, which gives the exit
// code: standard input's picture becomes standard output's samples, or the reason why not.
bool isDecodingProcess(int argc, char** argv);
int decodeStandardInput(int argc, char** argv);

}  // namespace lumora::tool
