// The formats of pictures: one table that recognising, reading, writing, the folders' pictures and
// the help are made from.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vips/vips8>

namespace lumora::tool {

enum class FormatKind { kJpeg, kPng, kWebp, kTiff, kAvif, kHeic, kGif };

struct Format {
  FormatKind kind;
  const char* name;
  std::span<const char* const> suffixes;
  // By the file's first bytes, kRecognisedBytes where it has as many.
  bool (*recognises)(std::string_view start);
  vips::VImage (*load)(vips::VSource source, vips::VOption* options);
  const char* loaderClass;   // of the image library
  const char* saverOptions;  // null: is not written
  bool hasQuality;
  bool hasAlpha;
  bool hidesSize = false;  // the coded picture may be larger than the file's header says
};

inline constexpr std::size_t kRecognisedBytes = 16;

std::span<const Format> formats();
// Null where no format is recognised.
const Format* recogniseFormat(std::string_view start);
// Of a name's suffix, in any case: null where it belongs to no format that is written.
const Format* findWrittenFormat(const std::string& suffix);

// "JPEG, PNG, ...": all that are read.
std::string readableFormats();
// ".jpg, .jpeg, .png, ...": all that are written.
std::string writableSuffixes();
bool isWritableSuffix(const std::string& suffix);
// Whether files named so tend to be pictures: which ones to take from a folder.
bool isPictureSuffix(const std::string& suffix);
// The suffix of a picture to be written. Throws a UsageError that names the path.
std::string requireWritableName(const std::string& path);

}  // namespace lumora::tool
