// A configuration document and the values in it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "config/xml_node.h"
#include "config/xml_status.h"

namespace lumora {

class ConfigDocument {
 public:
  ConfigDocument() = default;
  ConfigDocument(const ConfigDocument&) = delete;
  ConfigDocument& operator=(const ConfigDocument&) = delete;

  // A file that is missing, short, unreadable or malformed loads as an empty Config element. False:
  // the name is longer than 255 characters, or there was no memory even for that element. Loading
  // the file that is already held keeps the tree.
  [[nodiscard]] bool load(const char* fileName);

  // How reading the file went, whatever was loaded in its place.
  const XmlOutcome& fileOutcome() const { return fileOutcome_; }

  // The element at "/name/name/...", each name without regard to case; the empty node when there is
  // none or the path has more than 254 characters.
  XmlNode findByPath(const char* path) const;

  // The number that the element's first text begins with, or the default.
  std::int32_t readInt(const char* path, std::int32_t defaultValue) const;

  // Read up to `count` numbers of the element's first text; the entries behind the last number read
  // stay as they were. False: no such element, or one without text. `numbersRead` may be null.
  bool readUInt32List(const char* path, std::uint32_t* out, int count,
                      int* numbersRead = nullptr) const;
  bool readInt32List(const char* path, std::int32_t* out, int count,
                     int* numbersRead = nullptr) const;
  bool readInt16List(const char* path, std::int16_t* out, int count,
                     int* numbersRead = nullptr) const;

 private:
  static constexpr std::size_t kPathBytes = 256;

  template <class T>
  bool readList(const char* path, T* out, int count, int* numbersRead) const;

  XmlNode root_;
  char loadedPath_[kPathBytes] = "";
  XmlOutcome fileOutcome_;
};

}  // namespace lumora
