// The process calls: their checks and the order of them, write-backs, memory, threads.
#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "pipeline/mode_table.h"
#include "support/captured_log.h"
#include "support/mode_calls.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* kOutside = "[%s] Rect region is out of picture, Error!\n";
constexpr const char* kOddSide = "[%s] width or height of region is cannot div by 2!\n";
constexpr const char* kOddStart =
    "[%s] the start possition of Rect region is cannot div by 2! Error!\n";
constexpr const char* kSmall = "[%s] the size of region is too small, Error!\n";
constexpr const char* kBig = "[%s] the size of region is too big, Error!\n";
constexpr const char* kBlock = "[%s] the size of mosaic block is out of range, Error!\n";

// A call as a host would put it together; faults change it.
struct HostCall {
  FilterHandle* handle;
  FilterImage image;
  FilterAlbumParam album{};
  bool nullImage = false;
  bool nullParam = false;

  HostCall(const TestHandle& testHandle, const FilterImage& picture, std::uint32_t mode,
           int strength = 16)
      : handle(testHandle.get()), image(picture) {
    album.stProcess.eMode = mode;
    album.stProcess.effectRatio = strength;
  }
  FilterProcessParam& param() { return album.stProcess; }
  std::uint32_t process() {
    return filterProcess(handle, nullImage ? nullptr : &image, nullParam ? nullptr : &param());
  }
  std::uint32_t processForAlbum() {
    return filterProcess_for_album(handle, nullImage ? nullptr : &image,
                                   nullParam ? nullptr : &album);
  }
};

struct Fault {
  const char* message;
  std::uint32_t status;
  std::function<void(HostCall&)> apply;
};

// The faults of each scene in the order in which the call must find them.
struct Scene {
  const char* name;
  std::uint32_t mode;
  std::uint32_t format;
  bool throughAlbum;
  bool throughProcess;
  std::vector<Fault> faults;
};

std::vector<Fault> recordFaults() {
  return {
      {"[%s] pstImage is NULL!\n", 256, [](HostCall& c) { c.nullImage = true; }},
      {"[%s] pstParam is NULL!\n", 256, [](HostCall& c) { c.nullParam = true; }},
      {"[%s] direction is not correct!\n", 256, [](HostCall& c) { c.param().eDirection = 4; }},
      {"[%s] width or height is not correct!\n", 256, [](HostCall& c) { c.image.height = 20001; }},
      {"[%s] initialization error!\n", 512, [](HostCall& c) { c.handle = nullptr; }},
      {"[%s] picData error!\n", 512, [](HostCall& c) { c.image.picData = nullptr; }},
      {"[%s] effectRatio error\xA3\xA1\n", 256, [](HostCall& c) { c.param().effectRatio = -1; }},
  };
}

std::vector<Scene> scenes() {
  std::vector<Scene> all;
  const Fault rgbaStride = {"[%s] width or stride error!\n", 256,
                            [](HostCall& c) { c.image.stride = 4 * 2100 - 1; }};
  const Fault unknownFormat = {"[%s] fomat error!\n", 256,
                               [](HostCall& c) { c.image.eFormat = 4; }};

  Scene look{"look", 12, LUMORA_FORMAT_RGBA, true, true, recordFaults()};
  look.faults.insert(look.faults.end() - 1,
                     {"[%s] eMode error!\n", 256, [](HostCall& c) { c.param().eMode = 13; }});
  look.faults.push_back(rgbaStride);
  all.push_back(look);

  Scene refused{
      "album mode in the camera call", 12, LUMORA_FORMAT_RGBA, false, true, recordFaults()};
  refused.faults.push_back(
      {"[%s] Current interface do not support Tiltshift\xA1\xA2"
       "Blur and fixColor. Please use new interface: "
       "filterProcess_for_album()!\n",
       256, [](HostCall& c) { c.param().eMode = 19; }});
  refused.faults.push_back(unknownFormat);
  all.push_back(refused);

  Scene nv{"NV picture", 12, LUMORA_FORMAT_NV21, true, true, recordFaults()};
  nv.faults.push_back(
      {"[%s] width or height error!\n", 256, [](HostCall& c) { c.image.width = 2099; }});
  nv.faults.push_back(
      {"[%s] width or stride error!\n", 256, [](HostCall& c) { c.image.stride = -8400; }});
  all.push_back(nv);
  nv.format = LUMORA_FORMAT_NV12;
  all.push_back(nv);

  Scene mosaic{"mosaic", 17, LUMORA_FORMAT_RGBA, true, true, recordFaults()};
  const Fault mosaicFaults[] = {
      {kOutside, 512, [](HostCall& c) { c.param().rectX = INT32_MAX; }},
      {kOddSide, 256, [](HostCall& c) { c.param().rectWidth = 7; }},
      {kOddStart, 512, [](HostCall& c) { c.param().rectY = 1; }},
      {kSmall, 512, [](HostCall& c) { c.param().rectHeight = 6; }},
      {kBig, 512, [](HostCall& c) { c.param().rectWidth = 2002; }},
      {kBlock, 512, [](HostCall& c) { c.param().mosaicSize = 7; }},
  };
  mosaic.faults.insert(mosaic.faults.end(), std::begin(mosaicFaults), std::end(mosaicFaults));
  mosaic.faults.push_back(unknownFormat);
  all.push_back(mosaic);

  Scene tilt{"tilt-shift", 20, LUMORA_FORMAT_RGBA, true, false, recordFaults()};
  tilt.faults.push_back({"[%s] TiltShitf param error\xA3\xA1\n", 256,
                         [](HostCall& c) { c.album.stTiltShift.core = -1; }});
  tilt.faults.push_back(unknownFormat);
  all.push_back(tilt);

  Scene colourFix{"colour fix", 18, LUMORA_FORMAT_RGBA, true, false, recordFaults()};
  colourFix.faults.push_back({"[%s] FixColor param error\xA3\xA1Only suport RGBA format!\n", 256,
                              [](HostCall& c) { c.image.eFormat = LUMORA_FORMAT_NV12; }});
  colourFix.faults.push_back(rgbaStride);
  all.push_back(colourFix);
  return all;
}

// With a handle made for one texture look.
class FrameEntry : public testing::Test {
 protected:
  TestAllocator allocator_;
  const TestHandle handle_{allocator_, {.mode = LUMORA_MODE_HUDSON}};
};
using FrameChecks = FrameEntry;
using Strength = FrameEntry;

// With two faults at once the one that comes first in the order wins, in both calls.
TEST_F(FrameChecks, FindTheFirstOfTwoFaults) {
  std::uint8_t neverTouched = 0;
  for (const Scene& scene : scenes()) {
    const bool isRgba = scene.format == LUMORA_FORMAT_RGBA;
    const FilterImage image{scene.format, &neverTouched, 2100, 2100, isRgba ? 8400 : 2100};
    for (std::size_t i = 0; i < scene.faults.size(); ++i) {
      for (std::size_t j = i; j < scene.faults.size(); ++j) {
        SCOPED_TRACE(testing::Message() << scene.name << ", faults " << i << " and " << j);
        HostCall call(handle_, image, scene.mode);
        call.param().rectWidth = call.param().rectHeight = 16;
        call.param().mosaicSize = 8;
        scene.faults[j].apply(call);
        scene.faults[i].apply(call);
        for (const bool album : {false, true}) {
          if (album ? !scene.throughAlbum : !scene.throughProcess) continue;
          const CapturedLog log;
          HostCall copy = call;
          EXPECT_EQ(album ? copy.processForAlbum() : copy.process(), scene.faults[i].status);
          EXPECT_EQ(log.errors(), Texts{scene.faults[i].message});
        }
      }
    }
  }
  EXPECT_TRUE(allocator_.requests().empty());
}

// One step too far at every edge, in a picture of which nothing may be touched.
TEST_F(FrameChecks, RefuseAMosaicAtEachOfItsEdges) {
  static constexpr struct {
    std::int32_t x, y, width, height, block;
    const char* message;
  } kCases[] = {
      {-2, 0, 16, 16, 8, kOutside},
      {0, -2, 16, 16, 8, kOutside},
      {2086, 0, 16, 16, 8, kOutside},
      {0, 2086, 16, 16, 8, kOutside},
      {INT32_MIN, 0, 16, 16, 8, kOutside},
      {0, 8, 16, INT32_MAX, 8, kOutside},
      {0, 0, 15, 16, 8, kOddSide},
      {0, 0, 16, 15, 8, kOddSide},
      {1, 0, 16, 16, 8, kOddStart},
      {0, 1, 16, 16, 8, kOddStart},
      {0, 0, 6, 16, 8, kSmall},
      {0, 0, 16, 6, 8, kSmall},
      {0, 0, INT32_MIN, 16, 8, kSmall},
      {0, 0, 16, -16, 8, kSmall},
      {0, 0, 2002, 16, 8, kBig},
      {0, 0, 16, 2002, 8, kBig},
      {0, 0, 16, 16, 7, kBlock},
      {0, 0, 16, 14, 15, kBlock},
      {0, 0, 14, 16, 15, kBlock},
      {0, 0, 16, 16, INT32_MIN, kBlock},
  };
  std::uint8_t neverTouched = 0;
  for (const auto& given : kCases) {
    const CapturedLog log;
    HostCall call(handle_, {LUMORA_FORMAT_RGBA, &neverTouched, 2100, 2100, 8400}, 17);
    FilterProcessParam& param = call.param();
    std::tie(param.rectX, param.rectY) = std::tie(given.x, given.y);
    std::tie(param.rectWidth, param.rectHeight) = std::tie(given.width, given.height);
    param.mosaicSize = given.block;
    EXPECT_EQ(call.process(), given.message == kOddSide ? 256u : 512u);
    EXPECT_EQ(log.errors(), Texts{given.message});
  }
}

TEST_F(FrameChecks, AcceptTheLimitsOfEveryRange) {
  TestPicture picture(PixelFormat::kRgba, 88, 88);
  for (const std::uint32_t mode : {1u, 12u, 17u}) {
    HostCall call(handle_, picture.image(), mode, 32);
    call.param().rectWidth = call.param().rectHeight = 8;
    call.param().mosaicSize = 8;
    call.param().eDirection = 3;
    EXPECT_EQ(call.process(), 0u) << "a handle for one texture look refuses mode " << mode;
  }
  for (const std::uint32_t side : {0u, 87u, 20001u, UINT32_MAX}) {
    HostCall call(handle_, picture.image(), 12);
    call.image.width = side;
    EXPECT_EQ(call.process(), 256u) << side;
  }
}

TEST_F(FrameChecks, RefuseUnknownModesAfterTheCopy) {
  const TestPicture picture(PixelFormat::kNv12, 88, 88), before(picture);
  for (const std::uint32_t mode : {0u, kModeCount + 1, 4000000000u}) {
    const CapturedLog log;
    HostCall call(handle_, picture.image(), mode, 3);
    call.param().singleThread = 1;
    EXPECT_EQ(call.process(), 256u);
    EXPECT_EQ(log.errors(), (Texts{"[%s] mode error!\n", "[%s] process failed!\n"}));
  }
  EXPECT_EQ(allocator_.requests().size(), 3u);
  EXPECT_EQ(allocator_.liveBlocks(), 1) << "the handle alone";
  EXPECT_EQ(picture.difference(before), kNone);
}

struct StrengthCase {
  int given;
  int rewritten;
  bool copied;
};

TEST_F(Strength, IsRewrittenAndDecidesAboutTheCopy) {
  const StrengthCase cases[] = {{0, 8, true},   {1, 8, true},    {8, 12, true},   {12, 14, true},
                                {15, 15, true}, {16, 16, false}, {17, 17, false}, {32, 32, false}};
  for (const StrengthCase& s : cases) {
    for (const PixelFormat format : kFormats) {
      TestPicture picture(format, 90, 88, 7);
      allocator_.clearRequests();
      HostCall call(handle_, picture.image(), 12, s.given);
      ASSERT_EQ(call.process(), 0u);
      EXPECT_EQ(call.param().effectRatio, s.rewritten);
      const auto request = static_cast<std::uint32_t>(picture.bytes() + 16);
      EXPECT_EQ(allocator_.requests(),
                s.copied ? std::vector<std::uint32_t>{request} : std::vector<std::uint32_t>{});
      EXPECT_EQ(allocator_.liveBlocks(), 1) << "the handle alone";
    }
  }
}

// The camera's call rewrites it before it refuses the mode; in the album's it is the blur level.
TEST_F(Strength, OfBlurIsItsLevelInTheAlbumCallAlone) {
  const TestPicture picture(PixelFormat::kRgba, 90, 88);
  for (const std::uint32_t mode : {LUMORA_MODE_BLUR, LUMORA_MODE_TILT_SHIFT}) {
    HostCall camera(handle_, picture.image(), mode, 3), album(handle_, picture.image(), mode, 3);
    EXPECT_EQ(camera.process(), 256u);
    EXPECT_EQ(camera.param().effectRatio, 9);
    EXPECT_EQ(album.processForAlbum(), 0u);
    EXPECT_EQ(album.param().effectRatio, 3);
  }
}

// These weaken their own steps, and the film's marks lie elsewhere in every call.
bool isBlended(std::uint32_t mode) {
  return mode <= LUMORA_MODE_MOSAIC && mode != LUMORA_MODE_MEISHIMENGHUAN &&
         mode != LUMORA_MODE_LAODIANYING;
}

// The blended result is the mix of the full one and the untouched picture; through the album call
// and on one thread as well.
TEST_F(Strength, BlendsTheLookWithTheUntouchedPicture) {
  const TestHandle handle(allocator_, handleLayout(TexturePath::kPrepared, {90, 88}));
  for (ModeCall call : allModeCalls()) {
    if (!isBlended(call.mode)) continue;
    for (const int strength : {0, 5, 15}) {
      SCOPED_TRACE(testing::Message() << modeName(call) << " at " << strength);
      const TestPicture untouched(call.format, 90, 88, 9), weak(untouched);
      TestPicture full(untouched);
      call.strength = 16;
      ASSERT_EQ(run(call, handle.get(), full.image()), 0u);
      call.strength = strength;
      ASSERT_EQ(run(call, handle.get(), weak.image()), 0u);
      full.mixIn(untouched, strength / 2 + 8);
      EXPECT_EQ(weak.difference(full), kNone);
      const TestPicture single(untouched);
      FilterAlbumParam param = paramFor(call, {90, 88});
      param.stProcess.singleThread = -1;
      const FilterImage image = single.image();
      const ThreadFaults none(0);
      ASSERT_EQ(filterProcess_for_album(handle.get(), &image, &param), 0u);
      EXPECT_EQ(single.difference(full), kNone);
      EXPECT_EQ(ThreadFaults::startCount(), 0);
    }
  }
}

// The film alone mixes in a copy; the others ask for its room, which hosts reckon with, and leave
// it to itself.
TEST_F(Strength, TouchesTheRoomForACopyOnlyWhereOneIsNeeded) {
  if (!TestAllocator::fillsBlocks()) GTEST_SKIP() << "blocks are not filled";
  const TestHandle handle(allocator_, handleLayout(TexturePath::kPrepared, {90, 88}));
  for (ModeCall call : allModeCalls()) {
    if (!isBlended(call.mode) && call.mode != LUMORA_MODE_LAODIANYING) continue;
    for (const bool onCaller : {false, true}) {
      SCOPED_TRACE(testing::Message() << modeName(call) << (onCaller ? " on the caller" : ""));
      call.strength = 8;
      call.onCaller = onCaller;
      const TestPicture picture(call.format, 90, 88);
      const std::size_t before = allocator_.untouched().size();
      ASSERT_EQ(run(call, handle.get(), picture.image()), 0u);
      ASSERT_GT(allocator_.untouched().size(), before);
      // The copy is asked for first and given back last.
      EXPECT_EQ(allocator_.untouched().back(), call.mode != LUMORA_MODE_LAODIANYING);
    }
  }
}

TEST_F(FrameEntry, TakesAByteCountBeyondTheAllocatorsSizeForExhaustedMemory) {
  std::uint8_t neverTouched = 0;
  for (const std::uint32_t format : {LUMORA_FORMAT_RGBA, LUMORA_FORMAT_NV12}) {
    for (const std::int32_t stride : {INT32_MAX, 214749}) {
      HostCall call(handle_, {format, &neverTouched, 88, 20000, stride}, 12, 0);
      EXPECT_EQ(call.process(), 512u);
    }
  }
  EXPECT_TRUE(allocator_.requests().empty());
}

TEST_F(FrameEntry, PrintsTwoLinesAroundTheFourThreadedNv12Step) {
  for (const PixelFormat format : kFormats) {
    for (const int singleThread : {0, 1}) {
      TestPicture picture(format, 88, 88);
      HostCall call(handle_, picture.image(), 12);
      call.param().singleThread = singleThread;
      testing::internal::CaptureStdout();
      call.process();
      const bool traced = format == PixelFormat::kNv12 && singleThread == 0;
      EXPECT_EQ(testing::internal::GetCapturedStdout(),
                traced ? "Before FilterProcessNV12_multiThred!\n"
                         "After FilterProcessNV12_multiThred!\n"
                       : "");
    }
  }
}

}  // namespace
}  // namespace lumora::test
