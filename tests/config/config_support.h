// What the tests of documents share: files, and trees as text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "config/xml_node.h"
#include "support/resource_directory.h"

namespace lumora::test {

// A file that holds these bytes and goes away with its owner.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string_view bytes) { rewrite(bytes); }

  const char* path() const { return path_.c_str(); }
  void rewrite(std::string_view bytes) const { ResourceDirectory::write(path_, bytes); }

 private:
  ResourceDirectory directory_;
  std::string path_ = directory_.tuning();
};

// A document with a declaration around this Config content, long enough to be read from a file.
std::string document(std::string_view configContent);
std::string paddedTo(std::size_t bytes, std::string text);

// The tree as text: `?` for a declaration, name, then in brackets all items in document order:
// @name=value, "text", opener content closer, children. The node above the outermost ones is
// nameless; the empty node is `empty`.
std::string dump(const XmlNode& node);

}  // namespace lumora::test
