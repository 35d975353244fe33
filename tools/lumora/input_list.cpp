#include "input_list.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <string_view>
#include <unordered_set>

#include "errors.h"

namespace lumora::tool {
namespace {

// Some millions of names; a device that never ends shall not take all memory.
constexpr std::size_t kLongestList = std::size_t{256} << 20;

class ListFile {
 public:
  explicit ListFile(const std::string& path)
      : name_(path == "-" ? "standard input" : path),
        descriptor_(path == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                : ::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) refuse(errno == ENOENT ? "there is no such file" : std::strerror(errno));
  }
  ListFile(const ListFile&) = delete;
  ListFile& operator=(const ListFile&) = delete;
  ~ListFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  std::string content() const {
    std::string all;
    char part[1 << 16];
    while (true) {
      const ssize_t got = ::read(descriptor_, part, sizeof part);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) refuse(std::strerror(errno));
      if (got == 0) return all;
      all.append(part, static_cast<std::size_t>(got));
      if (all.size() > kLongestList) refuse("is longer than any list of files");
    }
  }

  [[noreturn]] void refuse(const std::string& reason) const {
    throw UsageError(text("--files-from: ", name_, ": ", reason));
  }

 private:
  std::string name_;
  int descriptor_;
};

}  // namespace

InputList readInputList(const std::string& path, bool isNullSeparated) {
  const ListFile file(path);
  const std::string content = file.content();
  InputList list;
  std::unordered_set<std::string_view> known;
  std::string_view rest = content;
  for (std::size_t number = 1; !rest.empty(); ++number) {
    const std::size_t end = std::min(rest.find(isNullSeparated ? '\0' : '\n'), rest.size());
    const std::string_view name = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (name.empty()) continue;
    if (name.find('\0') != name.npos) {
      file.refuse(text("line ", number, " holds a NUL; lists that NULs divide take --null"));
    }
    if (name.size() >= PATH_MAX) file.refuse(text("entry ", number, " is too long for a name"));
    if (known.insert(name).second) {
      list.names.emplace_back(name);
    } else {
      ++list.doubled;
    }
  }
  return list;
}

}  // namespace lumora::tool
