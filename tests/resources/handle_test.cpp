// What initialisations put into a handle, byte by byte, against plain loops over the pack.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "resources/filter_init.h"
#include "support/captured_log.h"
#include "support/resource_directory.h"
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

class Handle : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    pack_ = new Bytes(noisyPack());
    directory_ = new ResourceDirectory;
    ResourceDirectory::write(directory_->pack(), *pack_);
  }
  static void TearDownTestSuite() {
    delete directory_;
    delete pack_;
  }
  ~Handle() override {
    filterDestroy(&handle_);
    EXPECT_TRUE(allocator_.balanced());
  }

  Status make(const Request& r) {
    filterDestroy(&handle_);
    allocator_.clearRequests();
    const std::string directory = directory_->path();
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
  const Bytes& pack() const { return *pack_; }

  void expectHeader(const Request& r, int width, int height, int prepared) {
    const Bytes expected = {
        static_cast<std::uint8_t>(width >> 8), static_cast<std::uint8_t>(width & 255),
        static_cast<std::uint8_t>(height >> 8), static_cast<std::uint8_t>(height & 255),
        static_cast<std::uint8_t>(r.direction), static_cast<std::uint8_t>(r.mode & 255),
        static_cast<std::uint8_t>(prepared),
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

 private:
  static inline Bytes* pack_;
  static inline ResourceDirectory* directory_;
};

int stepOf(int srcCount, int dstCount) {
  return static_cast<int>(static_cast<float>(srcCount * 1024) / static_cast<float>(dstCount));
}

Bytes stretched(const std::uint8_t* src, int srcSide, int bytesPerPixel, int width, int height) {
  const int stepX = stepOf(srcSide, width);
  const int stepY = stepOf(srcSide, height);
  Bytes dst;
  dst.reserve(static_cast<std::size_t>(width) * height * bytesPerPixel);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int pixel = (y * stepY >> 10) * srcSide + (x * stepX >> 10);
      for (int c = 0; c < bytesPerPixel; ++c) dst.push_back(src[pixel * bytesPerPixel + c]);
    }
  }
  return dst;
}

Bytes nearest(const std::uint8_t* src, int srcWidth, int srcHeight, int width, int height) {
  const float ratioX = static_cast<float>(srcWidth) / static_cast<float>(width);
  const float ratioY = static_cast<float>(srcHeight) / static_cast<float>(height);
  Bytes dst;
  for (int y = 0; y < height; ++y) {
    const int row = static_cast<int>(static_cast<float>(y) * ratioY) * srcWidth;
    for (int x = 0; x < width; ++x) {
      dst.push_back(src[row + static_cast<int>(static_cast<float>(x) * ratioX)]);
    }
  }
  return dst;
}

TEST_F(Handle, UnsizedHoldsTheTexturesAsStored) {
  const Request r = {0, 2, 0, 0};
  ASSERT_EQ(make(r), Status::kOk);
  EXPECT_EQ(allocator_.requests(), (std::vector<std::uint32_t>{kPackRequest, kUnsizedRequest}));
  EXPECT_EQ(allocator_.liveBlocks(), 1);
  expectHeader(r, 1024, 1024, 0);
  const auto image = pack().begin() + 16;
  expectBytes(0, Bytes(image, image + 10 * kGray), "planes 0 to 9");
  expectBytes(13 * kGray, Bytes(image + 10 * kGray, pack().end()), "plane 13, small textures");
}

// Planes 4 to 9 in the order of the pack's slots 4 to 9, and the mode whose texture each holds.
constexpr int kPlaneModes[10] = {5, 6, 6, 6, 7, 8, 13, 14, 15, 16};

struct SmallSizes {
  int a, b, c, d;
};

class SizedHandle : public Handle, public testing::WithParamInterface<Request> {
 protected:
  bool holds(int mode) const {
    const std::uint32_t kept = GetParam().mode & 255;
    return kept == 0 || kept == static_cast<std::uint32_t>(mode);
  }
};

TEST_P(SizedHandle, HoldsTheTexturesStretched) {
  const Request& r = GetParam();
  const int w = r.width, h = r.height, s = (w + h) / 2;
  const SmallSizes small = {s * 48 / 3000, s * 27 / 3000, s * 17 / 3000, (w + h) / 500};
  const std::size_t plane = static_cast<std::size_t>(w) * h;
  const std::size_t marks = small.a * small.b + small.c * small.d;
  ASSERT_EQ(make(r), Status::kOk);
  EXPECT_EQ(allocator_.requests(),
            (std::vector<std::uint32_t>{
                kPackRequest, static_cast<std::uint32_t>(14 * plane + 4112 + marks + 40)}));
  expectHeader(r, w, h, 1);

  const std::uint8_t* const slots = pack().data() + 16;
  for (int k = 0; k < 10; ++k) {
    if (holds(kPlaneModes[k]) && kPlaneModes[k] != 6) {
      SCOPED_TRACE(k);
      expectBytes(k * plane, stretched(slots + k * kGray, 1024, 1, w, h), "plane");
    }
  }
  if (holds(6)) {
    const std::uint8_t* const leak = pack().data() + 1048592 + r.direction * 786432;
    expectBytes(plane, stretched(leak, 512, 3, w, h), "planes 1 to 3");
  }
  if (holds(5)) {
    expectBytes(13 * plane, nearest(slots + 10 * kGray, 1024, 1024, w, h), "plane 13");
    expectBytes(14 * plane, nearest(pack().data() + 11534352, 48, 27, small.a, small.b), "small 1");
    expectBytes(14 * plane + small.a * small.b,
                nearest(pack().data() + 11535648, 17, 12, small.c, small.d), "small 2");
  }
}
INSTANTIATE_TEST_SUITE_P(Sizes, SizedHandle,
                         testing::Values(Request{0, 0, 1920, 1080}, Request{0, 1, 88, 88},
                                         Request{0, 2, 333, 1001}, Request{0, 3, 1025, 127},
                                         Request{6, 2, 640, 480}, Request{5, 0, 1280, 720},
                                         Request{256, 0, 89, 90}, Request{264, 1, 91, 88}),
                         [](const auto& item) {
                           const Request& r = item.param;
                           return "mode" + std::to_string(r.mode) + "direction" +
                                  std::to_string(r.direction) + "_" + std::to_string(r.width) +
                                  "x" + std::to_string(r.height);
                         });

TEST_F(Handle, AFullHighDefinitionHandleTakes29Megabytes) {
  ASSERT_EQ(make({0, 0, 1920, 1080}), Status::kOk);
  EXPECT_EQ(allocator_.requests().back(), 29034912u);
}

// Fresh blocks of the test's allocator hold 0xA5.
TEST_F(Handle, OnlyTheModesTexturesArePrepared) {
  if (!TestAllocator::fillsBlocks()) GTEST_SKIP() << "looks at bytes that nobody wrote";
  const std::size_t plane = 88 * 90;
  const auto untouched = [&](int k) {
    return Bytes(textures() + k * plane, textures() + (k + 1) * plane) == Bytes(plane, 0xA5);
  };
  ASSERT_EQ(make({8, 0, 88, 90}), Status::kOk);
  for (int k = 0; k < 14; ++k) EXPECT_EQ(untouched(k), k != 5) << k;
  ASSERT_EQ(make({17, 0, 88, 90}), Status::kOk);
  for (int k = 0; k < 14; ++k) EXPECT_TRUE(untouched(k)) << k;
  ASSERT_EQ(make({0, 0, 88, 90}), Status::kOk);
  for (int k = 0; k < 14; ++k) EXPECT_EQ(untouched(k), k >= 10 && k < 13) << k;
}

TEST_F(Handle, TooLargeForTheAllocatorIsExhaustedMemory) {
  FilterHandle* handle = reinterpret_cast<FilterHandle*>(&allocator_);
  const CapturedLog log;
  ResourceDirectory directory;
  ResourceDirectory::write(directory.pack(), pack());
  EXPECT_EQ(
      FilterInitSized(0, 20000, 20000, 0, &handle, *allocator_.record(), directory.path().c_str()),
      Status::kNoMemory);
  EXPECT_EQ(handle, nullptr);
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
    expectBytes(4 * 88 * 88, stretched(pack().data() + 16 + 4 * kGray, 1024, 1, 88, 88), "plane 4");
  }
}

// Tuning values come from the directory's filter.xml; without one, the built-in ones.
TEST_F(Handle, TuningIsReadFromTheSameDirectory) {
  ASSERT_EQ(make({0, 0, 88, 88}), Status::kOk);
  EXPECT_EQ(Bytes(params() + 244, params() + 249), (Bytes{0, 255, 230, 172, 0}));

  ResourceDirectory directory;
  ResourceDirectory::write(directory.pack(), pack());
  ResourceDirectory::write(directory.tuning(),
                           "<?xml version=\"1.0\"?>\n<Config><filterE><param1>10</param1>"
                           "<param2>20</param2></filterE></Config>\n" +
                               std::string(200, ' '));
  filterDestroy(&handle_);
  ASSERT_EQ(FilterInitUnsized(0, 0, &handle_, *allocator_.record(), directory.path().c_str()),
            Status::kOk);
  EXPECT_EQ(Bytes(params() + 244, params() + 249), (Bytes{0, 10, 20, 172, 0}));
}

}  // namespace
}  // namespace lumora::test
