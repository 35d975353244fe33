// Memory of the document tree: the C heap, whose every answer may be "no".
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <type_traits>
#include <utility>

namespace lumora {

// Owns one block of characters, which is malloc's.
class XmlText {
 public:
  XmlText() = default;
  explicit XmlText(char* block) : block_(block) {}
  XmlText(XmlText&& other) noexcept : block_(other.release()) {}
  XmlText& operator=(XmlText&& other) noexcept {
    std::swap(block_, other.block_);
    return *this;
  }
  ~XmlText() { std::free(block_); }

  // A block of that size, or null.
  static XmlText ofSize(std::size_t bytes);
  // A terminated copy, or null.
  static XmlText copyOf(std::string_view text);

  explicit operator bool() const { return block_ != nullptr; }
  char* get() const { return block_; }
  char* release() { return std::exchange(block_, nullptr); }

 private:
  char* block_ = nullptr;
};

// An array of plain elements that grows by doubling. What the elements point to belongs to whoever
// keeps the array.
template <class T>
class XmlArray {
  static_assert(std::is_trivially_copyable_v<T>, "elements move with the block");

 public:
  // An item's place in its element is stored as four times its index plus its kind, in 31 bits.
  static constexpr int kMaxCount = std::numeric_limits<std::int32_t>::max() / 4;

  XmlArray() = default;
  XmlArray(const XmlArray&) = delete;
  XmlArray& operator=(const XmlArray&) = delete;
  ~XmlArray() { std::free(elements_); }

  int count() const { return count_; }
  T* begin() const { return elements_; }
  T* end() const { return elements_ + count_; }
  T& operator[](int index) const { return elements_[index]; }

  // Makes room behind the last element. False: no memory, and nothing has changed.
  [[nodiscard]] bool reserve(std::size_t more) {
    if (more > static_cast<std::size_t>(kMaxCount - count_)) return false;
    const int needed = count_ + static_cast<int>(more);
    return needed <= capacity_ || grow(needed);
  }
  // Only with room reserved.
  void add(const T& element) { elements_[count_++] = element; }
  [[nodiscard]] bool append(const T& element) {
    if (!reserve(1)) return false;
    add(element);
    return true;
  }
  T removeLast() { return elements_[--count_]; }
  // Hands the block over and starts anew.
  T* release() {
    count_ = capacity_ = 0;
    return std::exchange(elements_, nullptr);
  }

 private:
  // Common heaps hand out no smaller block, and most elements of a document need no larger one:
  // a document nested a million deep has a million arrays of one child.
  static constexpr int kFirstCount = static_cast<int>((24 + sizeof(T) - 1) / sizeof(T));

  bool grow(int needed) {
    std::int64_t capacity = capacity_ == 0 ? kFirstCount : 2 * std::int64_t{capacity_};
    if (capacity < needed) capacity = needed;
    if (capacity > kMaxCount) capacity = kMaxCount;
    const auto bytes = static_cast<std::uint64_t>(capacity) * sizeof(T);
    if (bytes > std::numeric_limits<std::size_t>::max() / 2) return false;
    void* block = std::realloc(elements_, static_cast<std::size_t>(bytes));
    if (block == nullptr) return false;
    elements_ = static_cast<T*>(block);
    capacity_ = static_cast<int>(capacity);
    return true;
  }

  T* elements_ = nullptr;
  std::int32_t count_ = 0;
  std::int32_t capacity_ = 0;
};

}  // namespace lumora
