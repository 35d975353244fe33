#include "memory_budget.h"

#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <vips/vips8>

#include "errors.h"
#include "formats.h"
#include "image_library.h"
#include "picture_file.h"
#include "png_chunks.h"
#include "words.h"

namespace lumora::tool {
namespace {

// More than any machine has: such a picture is alone.
constexpr std::uint64_t kAllMemory = std::uint64_t{1} << 60;

// What the process takes without any picture, and every further thread with its handle.
constexpr std::uint64_t kFirstThread = std::uint64_t{48} << 20;
constexpr std::uint64_t kFurtherThread = std::uint64_t{14} << 20;

// Bytes for a pixel when the most is in memory: the most that was measured of pictures of 3 and 12
// million pixels, plain, interlaced and of 16 bits, and a tenth. AVIF and HEIC count twice, here
// and in the process that decodes them.
unsigned bytesForReading(FormatKind kind) {
  const bool isHeif = kind == FormatKind::kAvif || kind == FormatKind::kHeic;
  return isHeif ? 26 : 13;
}

unsigned bytesForWriting(FormatKind kind) {
  const bool isHeif = kind == FormatKind::kAvif || kind == FormatKind::kHeic;
  return isHeif ? 33 : 12;
}

std::uint64_t pixelsIn(const PictureFile& file) {
  if (file.format().kind == FormatKind::kPng) requireFewTexts(file);
  return explaining("", [&] {
    const vips::VImage header = file.image();
    return static_cast<std::uint64_t>(header.width()) * static_cast<unsigned>(header.height());
  });
}

}  // namespace

std::uint64_t parseMemory(const std::string& value) {
  const std::string units = "kmgt";
  const auto unit = value.empty() ? units.npos : units.find(lowerCase(value).back());
  if (unit == units.npos) throw UsageError(text("'", value, "' is not of the form 512M or 2G"));
  const int number = parseInteger(value.substr(0, value.size() - 1), 1, 1'000'000);
  return static_cast<std::uint64_t>(number) << (10 * (unit + 1));
}

std::uint64_t memoryFor(const std::string& input, const std::string& outputFormat) {
  std::error_code missing;
  if (!std::filesystem::is_regular_file(input, missing)) return kAllMemory;
  try {
    const PictureFile file(input);
    const Format* const written = findWrittenFormat(outputFormat);
    const FormatKind output = written != nullptr ? written->kind : file.format().kind;
    return pixelsIn(file) * std::max(bytesForReading(file.format().kind), bytesForWriting(output));
  } catch (const PictureError&) {
    return kAllMemory;  // the run says what is wrong with it
  }
}

MemoryBudget::MemoryBudget(std::uint64_t bytes, std::size_t threads)
    : limit_(bytes - std::min(bytes, kFirstThread + (threads - 1) * kFurtherThread)) {
  // The memory of a picture that is done goes back at once.
  ::mallopt(M_MMAP_THRESHOLD, 1 << 20);
}

MemoryBudget::Lease::Lease(MemoryBudget& budget, std::uint64_t bytes)
    : budget_(budget), bytes_(bytes) {
  std::unique_lock lock(budget_.mutex_);
  const std::uint64_t ticket = budget_.nextTicket_++;
  budget_.changed_.wait(lock, [&] {
    const bool fits = budget_.leases_ == 0 ||
                      (bytes_ <= budget_.limit_ && budget_.taken_ <= budget_.limit_ - bytes_);
    return budget_.served_ == ticket && fits;
  });
  ++budget_.served_;
  ++budget_.leases_;
  budget_.taken_ += bytes_;
  budget_.changed_.notify_all();
}

MemoryBudget::Lease::~Lease() {
  const std::lock_guard lock(budget_.mutex_);
  --budget_.leases_;
  budget_.taken_ -= bytes_;
  budget_.changed_.notify_all();
}

}  // namespace lumora::tool
