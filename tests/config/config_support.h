// What the tests of documents share: files, a heap that counts and fails, trees as text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "config/xml_node.h"
#include "config/xml_status.h"

namespace lumora::test {

// A file that holds these bytes and goes away with its owner.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string_view bytes);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const char* path() const { return path_.c_str(); }
  void rewrite(std::string_view bytes) const;

 private:
  std::string path_;
};

// The document heap while it lives: counts blocks and refuses some. One at a time, one thread.
class CountingHeap {
 public:
  CountingHeap();
  ~CountingHeap();
  CountingHeap(const CountingHeap&) = delete;
  CountingHeap& operator=(const CountingHeap&) = delete;

  // Refuses the n-th request from now on (1 is the next), and with `allAfter` all that follow.
  void failAt(int n, bool allAfter = false);
  bool hasFailed() const;
  int liveBlocks() const;
};

// A document with a declaration around this Config content, long enough to be read from a file.
std::string document(std::string_view configContent);
std::string paddedTo(std::size_t bytes, std::string text);

// The tree as text: `?` for a declaration, name, then in brackets all items in document order:
// @name=value, "text", opener content closer, children. The node above the outermost ones is
// nameless; the empty node is `empty`.
std::string dump(const XmlNode& node);

}  // namespace lumora::test
