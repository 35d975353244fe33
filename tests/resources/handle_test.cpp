// What initialisations put into a handle, byte by byte, against plain loops over the pack.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "resources/filter_init.h"
#include "resources/pack_directory.h"
#include "resources/resample_reference.h"
#include "support/captured_log.h"
#include "support/test_allocator.h"

namespace lumora::test {
namespace {

constexpr std::uint32_t kPackRequest = 11535868;
constexpr std::uint32_t kUnsizedRequest = 14685716;
constexpr std::size_t kGray = 1024 * 1024;

struct Request {
  std::uint32_t mode, direction;
  int width, height;  // 0: unsized
};

const Bytes& pack() { return PackDirectory::packBytes(); }

class Handle : public testing::Test {
 protected:
  ~Handle() override {
    filterDestroy(&handle_);
    EXPECT_TRUE(allocator_.balanced());
  }

  Status make(const Request& r) {
    filterDestroy(&handle_);
    allocator_.clearRequests();
    static const PackDirectory kDirectory;
    const std::string directory = kDirectory.path();
    if (r.width == 0) {
      return FilterInitUnsized(r.mode, r.direction, &handle_, *allocator_.record(),
                               directory.c_str());
    }
    return FilterInitSized(r.mode, r.width, r.height, r.direction, &handle_, *allocator_.record(),
                           directory.c_str());
  }

  // The handle's bytes from its first 16-byte boundary on.
  const std::uint8_t* base() const {
    const auto address = reinterpret_cast<std::uintptr_t>(handle_);
    return reinterpret_cast<const std::uint8_t*>((address + 15) / 16 * 16);
  }
  const std::uint8_t* header() const { return base() + 16; }
  const std::uint8_t* params() const { return base() + 32; }
  const std::uint8_t* textures() const { return base() + 32 + 4096; }

  void expectHeader(const Request& r, int width, int height, int prepared) {
    const Bytes expected = {toByte(width >> 8), toByte(width & 255), toByte(height >> 8),
                            toByte(height & 255), toByte(r.direction), toByte(r.mode & 255),
                            toByte(prepared),
                            // Carried over from the pack.
                            14, 15, 16, 1, 4, 1, 1, 0, 4};
    EXPECT_EQ(Bytes(header(), header() + 16), expected);
    EXPECT_EQ(std::memcmp(base(), allocator_.record(), sizeof(FilterAllocator)), 0);
  }
  void expectBytes(std::size_t offset, const Bytes& expected, const char* what) const {
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), textures() + offset)) << what;
  }

  TestAllocator allocator_;
  FilterHandle* handle_ = nullptr;
};

TEST_F(Handle, UnsizedHoldsTheTexturesAsStored) {
  const Request r = {0, 2, 0, 0};
  ASSERT_EQ(make(r), Status::kOk);
  EXPECT_EQ(allocator_.requests(), (std::vector<std::uint32_t>{kPackRequest, kUnsizedRequest}));
  EXPECT_EQ(allocator_.liveBlocks(), 1);
  expectHeader(r, 1024, 1024, 0);
  const auto image = pack().begin() + 16;
  expectBytes(0, Bytes(image, image + 10 * kGray), "planes 0 to 9");
  expectBytes(13 * kGray, Bytes(image + 10 * kGray, pack().end()), "plane 13, small textures");
  EXPECT_EQ(Bytes(params() + 244, params() + 249), (Bytes{0, 255, 230, 172, 0})) << "tuning";
}

// Planes 4 to 9 in the order of the pack's slots 4 to 9, and the mode whose texture each holds.
constexpr int kPlaneModes[10] = {5, 6, 6, 6, 7, 8, 13, 14, 15, 16};

class SizedHandle : public Handle, public testing::WithParamInterface<Request> {
 protected:
  bool holds(int mode) const {
    const std::uint32_t kept = GetParam().mode & 255;
    return kept == 0 || kept == static_cast<std::uint32_t>(mode);
  }
  // Fresh blocks of the test's allocator hold 0xA5, in their first megabytes.
  void expectUntouched(std::size_t offset, std::size_t count) const {
    const bool filled = TestAllocator::fillsBlocks() && offset + count < 4'000'000;
    if (filled) expectBytes(offset, Bytes(count, 0xA5), "not for this mode");
  }
};

TEST_P(SizedHandle, HoldsItsModesTexturesStretched) {
  const Request& r = GetParam();
  const int w = r.width, h = r.height, s = (w + h) / 2;
  const Sizes blotch = {48, 27, s * 48 / 3000, s * 27 / 3000};
  const Sizes speck = {17, 12, s * 17 / 3000, (w + h) / 500};
  const std::size_t plane = static_cast<std::size_t>(w) * h;
  const std::size_t blotchBytes = blotch.dstWidth * blotch.dstHeight;
  const std::size_t marks = blotchBytes + speck.dstWidth * speck.dstHeight;
  ASSERT_EQ(make(r), Status::kOk);
  EXPECT_EQ(allocator_.requests(),
            (std::vector<std::uint32_t>{
                kPackRequest, static_cast<std::uint32_t>(14 * plane + 4112 + marks + 40)}));
  expectHeader(r, w, h, 1);

  const Sizes whole = {1024, 1024, w, h};
  const std::uint8_t* const slots = pack().data() + 16;
  for (int k = 0; k < 10; ++k) {
    SCOPED_TRACE(k);
    if (!holds(kPlaneModes[k])) {
      expectUntouched(k * plane, plane);
    } else if (kPlaneModes[k] != 6) {
      expectBytes(k * plane, resampled(slots + k * kGray, whole, 1, fixedPointPosition), "plane");
    }
  }
  expectUntouched(10 * plane, 3 * plane);  // working memory
  if (holds(6)) {
    const std::uint8_t* const leak = pack().data() + 1048592 + r.direction * 786432;
    expectBytes(plane, resampled(leak, {512, 512, w, h}, 3, fixedPointPosition), "planes 1 to 3");
  }
  if (!holds(5)) {
    expectUntouched(13 * plane, plane + marks);
  } else {
    const std::uint8_t* const small = slots + 11 * kGray;
    expectBytes(13 * plane, resampled(slots + 10 * kGray, whole, 1, floatingPosition), "plane 13");
    expectBytes(14 * plane, resampled(small, blotch, 1, floatingPosition), "blotch");
    expectBytes(14 * plane + blotchBytes, resampled(small + 48 * 27, speck, 1, floatingPosition),
                "speck");
  }
}
INSTANTIATE_TEST_SUITE_P(Sizes, SizedHandle,
                         testing::Values(Request{0, 0, 1920, 1080}, Request{0, 1, 88, 88},
                                         Request{0, 2, 333, 1166}, Request{0, 3, 1025, 127},
                                         Request{6, 2, 640, 480}, Request{5, 0, 1280, 720},
                                         Request{8, 0, 88, 90}, Request{17, 0, 88, 90},
                                         Request{256, 0, 89, 90}, Request{264, 1, 91, 88}),
                         [](const auto& item) {
                           const Request& r = item.param;
                           return "mode" + std::to_string(r.mode) + "direction" +
                                  std::to_string(r.direction) + "_" + std::to_string(r.width) +
                                  "x" + std::to_string(r.height);
                         });

TEST_F(Handle, TooLargeForTheAllocatorIsExhaustedMemory) {
  const CapturedLog log;
  EXPECT_EQ(make({0, 0, 20000, 20000}), Status::kNoMemory);
  EXPECT_EQ(handle_, nullptr);
  EXPECT_EQ(allocator_.requests(), std::vector<std::uint32_t>{kPackRequest});
  EXPECT_EQ(log.errors(), std::vector<std::string>{"[%s] \ncan't malloc enough memory!"});
}

// The exported functions refuse such a direction; the handle stays the host's.
TEST_F(Handle, ADirectionAboveThreeLeavesADefinedHandle) {
  const CapturedLog log;
  EXPECT_EQ(make({0, 4, 88, 88}), Status::kBadArgument);
  EXPECT_EQ(log.errors(), std::vector<std::string>{"[%s] \ndirection error!"});
  ASSERT_NE(handle_, nullptr);
  EXPECT_EQ(allocator_.liveBlocks(), 1);
  expectHeader({0, 0, 88, 88}, 88, 88, 1);
  EXPECT_EQ(Bytes(params(), textures()), Bytes(4096, 1));
  EXPECT_EQ(Bytes(textures(), textures() + 14 * 88 * 88), Bytes(14 * 88 * 88, 0));
}

// The block may start anywhere; everything is found from its first 16-byte boundary.
TEST_F(Handle, WorksAtEveryMisalignment) {
  for (std::uint32_t offset = 0; offset < 16; ++offset) {
    allocator_.setMisalignment(offset);
    ASSERT_EQ(make({7, 0, 88, 88}), Status::kOk);
    expectHeader({7, 0, 88, 88}, 88, 88, 1);
    const std::uint8_t* const clouds = pack().data() + 16 + 4 * kGray;
    expectBytes(4 * 88 * 88, resampled(clouds, {1024, 1024, 88, 88}, 1, fixedPointPosition),
                "clouds");
  }
}

}  // namespace
}  // namespace lumora::test
