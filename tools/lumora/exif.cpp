#include "exif.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace lumora::tool {
namespace {

constexpr std::string_view kWord("Exif\0\0", 6);
constexpr std::size_t kHeaderBytes = 8;
constexpr std::size_t kEntryBytes = 12;
constexpr std::size_t kInlineBytes = 4;
constexpr unsigned kMostEntries = 1000;
constexpr std::size_t kLongestValue = 8192;
// A JPEG has room for 65533 bytes with the thumbnail, which is far smaller than the rest.
constexpr std::size_t kLongestBlock = 45000;
constexpr std::size_t kLongestShortValue = 200;
constexpr std::uint16_t kLongType = 4;

// Of a field's type, by its number; 0 is no type.
constexpr unsigned kTypeBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
// The numbers that a value consists of, which is what the byte order goes by.
constexpr unsigned kNumberBytes[] = {0, 1, 1, 2, 4, 4, 1, 1, 2, 4, 4, 4, 8};

struct TagRange {
  std::uint16_t first, last;
};

// Names, dates, rights, titles; not the layout of the pixels.
constexpr TagRange kPictureTags[] = {{0x010E, 0x0110}, {0x0131, 0x0132}, {0x013B, 0x013C},
                                     {0x4746, 0x4746}, {0x4749, 0x4749}, {0x8298, 0x8298},
                                     {0x9C9B, 0x9C9F}};
// All of the standard but the maker note (927C), the picture's size and the pointers.
constexpr TagRange kCameraTags[] = {
    {0x829A, 0x829A}, {0x829D, 0x829D}, {0x8822, 0x8824}, {0x8827, 0x8828}, {0x8830, 0x8835},
    {0x9000, 0x9000}, {0x9003, 0x9004}, {0x9010, 0x9012}, {0x9101, 0x9102}, {0x9201, 0x920A},
    {0x9214, 0x9214}, {0x9286, 0x9286}, {0x9290, 0x9292}, {0x9400, 0x9405}, {0xA000, 0xA001},
    {0xA004, 0xA004}, {0xA20B, 0xA20C}, {0xA20E, 0xA210}, {0xA214, 0xA217}, {0xA300, 0xA302},
    {0xA401, 0xA40C}, {0xA420, 0xA420}, {0xA430, 0xA435}, {0xA460, 0xA462}, {0xA500, 0xA500}};
constexpr TagRange kPositionTags[] = {{0x0000, 0x001F}};
constexpr TagRange kInterchangeTags[] = {{0x0001, 0x0002}};

struct DirectoryKind {
  const TagRange* first;
  const TagRange* last;
};
constexpr DirectoryKind kKinds[] = {{std::begin(kPictureTags), std::end(kPictureTags)},
                                    {std::begin(kCameraTags), std::end(kCameraTags)},
                                    {std::begin(kPositionTags), std::end(kPositionTags)},
                                    {std::begin(kInterchangeTags), std::end(kInterchangeTags)}};

// Directories within directories: where each is pointed to from.
struct Pointer {
  int from;
  std::uint16_t tag;
  int to;
};
constexpr Pointer kPointers[] = {{0, 0x8769, 1}, {0, 0x8825, 2}, {1, 0xA005, 3}};

bool isKnown(int directory, std::uint16_t tag) {
  const DirectoryKind& kind = kKinds[directory];
  return std::any_of(kind.first, kind.last,
                     [tag](TagRange range) { return tag >= range.first && tag <= range.last; });
}

// A JPEG in a field for words or numbers.
bool isPicture(const Bytes& value) {
  constexpr std::uint8_t kStart[] = {0xFF, 0xD8, 0xFF};
  return std::search(value.begin(), value.end(), std::begin(kStart), std::end(kStart)) !=
         value.end();
}

void put16(Bytes& bytes, std::size_t number) {
  bytes.push_back(static_cast<std::uint8_t>(number));
  bytes.push_back(static_cast<std::uint8_t>(number >> 8));
}

void put32(Bytes& bytes, std::size_t number) {
  put16(bytes, number);
  put16(bytes, number >> 16);
}

// A directory's entry as it stands in the file.
struct Entry {
  std::uint16_t tag;
  std::uint16_t type;
  std::uint32_t count;
  std::array<std::uint8_t, kInlineBytes> place;  // the value, or its offset if it is longer
};

class TiffReader {
 public:
  explicit TiffReader(const Exif::Reader& read) : read_(read) {
    std::uint8_t header[kHeaderBytes];
    if (!read_(0, header, sizeof header)) return;
    isBigEndian_ = header[0] == 'M';
    if (std::memcmp(header, isBigEndian_ ? "MM\0*" : "II*\0", 4) == 0) first_ = get32(header + 4);
  }

  // Of the first directory; 0 where there is no such file.
  std::uint32_t first() const { return first_; }
  bool isBigEndian() const { return isBigEndian_; }

  std::vector<Entry> entries(std::uint32_t offset) const {
    std::vector<Entry> all;
    std::uint8_t bytes[kEntryBytes];
    if (!read_(offset, bytes, 2)) return all;
    const unsigned count = std::min(get16(bytes), kMostEntries);
    for (unsigned i = 0; i < count; ++i) {
      if (!read_(std::uint64_t{offset} + 2 + i * kEntryBytes, bytes, kEntryBytes)) break;
      Entry entry{static_cast<std::uint16_t>(get16(bytes)),
                  static_cast<std::uint16_t>(get16(bytes + 2)),
                  get32(bytes + 4),
                  {}};
      std::copy_n(bytes + 8, kInlineBytes, entry.place.begin());
      all.push_back(entry);
    }
    return all;
  }

  std::uint32_t offsetIn(const Entry& entry) const { return get32(entry.place.data()); }

  // In little-endian order; nothing for what is empty, long, or of no known type.
  std::optional<Bytes> value(const Entry& entry) const {
    if (entry.type >= std::size(kTypeBytes)) return std::nullopt;
    // At most 2^32 numbers of 8 bytes.
    const std::uint64_t size = std::uint64_t{entry.count} * kTypeBytes[entry.type];
    if (size == 0 || size > kLongestValue) return std::nullopt;
    Bytes bytes(entry.place.begin(), entry.place.end());
    bytes.resize(size);
    if (size > kInlineBytes && !read_(offsetIn(entry), bytes.data(), size)) return std::nullopt;
    const unsigned number = kNumberBytes[entry.type];
    for (auto at = bytes.begin(); isBigEndian_ && at != bytes.end(); at += number) {
      std::reverse(at, at + number);
    }
    return bytes;
  }

 private:
  std::uint32_t get16(const std::uint8_t* b) const {
    return isBigEndian_ ? b[0] << 8 | b[1] : b[1] << 8 | b[0];
  }
  std::uint32_t get32(const std::uint8_t* b) const {
    return isBigEndian_ ? get16(b) << 16 | get16(b + 2) : get16(b + 2) << 16 | get16(b);
  }

  const Exif::Reader& read_;
  bool isBigEndian_ = false;
  std::uint32_t first_ = 0;
};

Exif::Reader readerOf(const Bytes& bytes, std::size_t start = 0) {
  return [&bytes, start](std::uint64_t offset, void* to, std::size_t count) {
    const std::size_t size = bytes.size() - start;
    if (offset > size || count > size - offset) return false;
    std::memcpy(to, bytes.data() + start + offset, count);
    return true;
  };
}

void alignEven(Bytes& bytes) { bytes.resize(bytes.size() + bytes.size() % 2); }

// Writes long values behind the bytes; the entries can then stand anywhere.
Entry writeValue(Bytes& bytes, const ExifField& field) {
  Entry entry{field.tag, field.type, field.count, {}};
  if (field.value.size() <= kInlineBytes) {
    std::copy(field.value.begin(), field.value.end(), entry.place.begin());
    return entry;
  }
  alignEven(bytes);
  Bytes offset;
  put32(offset, bytes.size());
  std::copy(offset.begin(), offset.end(), entry.place.begin());
  bytes.insert(bytes.end(), field.value.begin(), field.value.end());
  return entry;
}

// What is already there stays.
void add(Bytes& bytes, std::vector<Entry>& entries, const ExifField& field) {
  const bool isThere = std::any_of(entries.begin(), entries.end(),
                                   [&](const Entry& entry) { return entry.tag == field.tag; });
  if (!isThere) entries.push_back(writeValue(bytes, field));
}

// Returns the directory's offset.
std::uint32_t writeDirectory(Bytes& bytes, std::vector<Entry> entries) {
  std::stable_sort(entries.begin(), entries.end(),
                   [](const Entry& a, const Entry& b) { return a.tag < b.tag; });
  alignEven(bytes);
  const auto offset = static_cast<std::uint32_t>(bytes.size());
  put16(bytes, entries.size());
  for (const Entry& entry : entries) {
    put16(bytes, entry.tag);
    put16(bytes, entry.type);
    put32(bytes, entry.count);
    bytes.insert(bytes.end(), entry.place.begin(), entry.place.end());
  }
  put32(bytes, 0);  // no directory follows
  return offset;
}

Entry pointerTo(std::uint16_t tag, std::uint32_t offset) {
  Bytes place;
  put32(place, offset);
  return {tag, kLongType, 1, {place[0], place[1], place[2], place[3]}};
}

}  // namespace

Exif Exif::fromTiff(const Reader& read) {
  const TiffReader reader(read);
  Exif exif;
  std::array<std::uint32_t, kDirectoryCount> offsets{reader.first()};
  std::size_t total = 0;
  // Pointers lead from a directory to later ones only.
  for (int d = 0; d < kDirectoryCount; ++d) {
    if (offsets[d] == 0) continue;
    std::vector<ExifField>& fields = exif.directories_[d];
    for (const Entry& entry : reader.entries(offsets[d])) {
      for (const Pointer& pointer : kPointers) {
        if (pointer.from == d && pointer.tag == entry.tag) {
          offsets[pointer.to] = reader.offsetIn(entry);
        }
      }
      const bool isTaken = std::any_of(fields.begin(), fields.end(), [&](const ExifField& field) {
        return field.tag == entry.tag;
      });
      if (isTaken || !isKnown(d, entry.tag)) continue;
      std::optional<Bytes> value = reader.value(entry);
      if (!value || isPicture(*value) || total + value->size() > kLongestBlock) continue;
      total += value->size();
      fields.push_back({entry.tag, entry.type, entry.count, *std::move(value)});
    }
    std::sort(fields.begin(), fields.end(),
              [](const ExifField& a, const ExifField& b) { return a.tag < b.tag; });
  }
  return exif;
}

Exif Exif::fromBlock(const Bytes& block) {
  const bool hasWord =
      block.size() > kWord.size() && std::memcmp(block.data(), kWord.data(), kWord.size()) == 0;
  return fromTiff(readerOf(block, hasWord ? kWord.size() : 0));
}

bool Exif::isEmpty() const {
  return std::all_of(directories_.begin(), directories_.end(),
                     [](const auto& fields) { return fields.empty(); });
}

void Exif::keepShortFields() {
  for (std::vector<ExifField>& fields : directories_) {
    std::erase_if(fields,
                  [](const ExifField& field) { return field.value.size() > kLongestShortValue; });
  }
}

Bytes Exif::toBlock() const {
  if (isEmpty()) return {};
  Bytes tiff{'I', 'I', '*', 0, 0, 0, 0, 0};
  addTo(tiff);
  Bytes block(kWord.begin(), kWord.end());
  block.insert(block.end(), tiff.begin(), tiff.end());
  return block;
}

void Exif::addTo(Bytes& tiff, const std::vector<ExifField>& others) const {
  std::array<std::vector<Entry>, kDirectoryCount> entries;
  {
    const Reader read = readerOf(tiff);
    const TiffReader reader(read);
    if (reader.first() != 0) entries[kPicture] = reader.entries(reader.first());
  }
  for (int d = kDirectoryCount - 1; d >= 0; --d) {
    for (const ExifField& field : directories_[d]) add(tiff, entries[d], field);
    if (d == kPicture) {
      for (const ExifField& field : others) add(tiff, entries[d], field);
    }
    if (entries[d].empty()) continue;
    const std::uint32_t offset = writeDirectory(tiff, entries[d]);
    for (const Pointer& pointer : kPointers) {
      if (pointer.to == d) entries[pointer.from].push_back(pointerTo(pointer.tag, offset));
    }
    if (d != kPicture) continue;
    Bytes first;
    put32(first, offset);
    std::copy(first.begin(), first.end(), tiff.begin() + 4);
  }
}

}  // namespace lumora::tool
