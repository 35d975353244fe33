// Every request for memory and every start of a worker fails once, in every mode, format, form and
// path of textures. After each: status and messages, memory, threads, picture and handle.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <thread>

#include "platform/stripe_runner.h"
#include "support/captured_log.h"
#include "support/mode_calls.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

constexpr PixelSize kPicture = {94, 90};
constexpr std::size_t kExtraStride = 3;
constexpr int kWeakStrength = 5;  // below 16 the room for a copy can be refused too

int threadsOfThisProcess() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return static_cast<int>(std::distance(begin(tasks), end(tasks)));
}

// Sanitizers start a thread of their own together with the first one.
int threadsAtRest() {
  std::thread([] {}).join();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  return threadsOfThisProcess();
}

// A joined thread may stay listed for a moment.
bool threadsReturnTo(int count) {
  for (int attempt = 0; attempt < 1000; ++attempt) {
    if (threadsOfThisProcess() <= count) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return false;
}

bool mentions(const std::vector<std::string>& messages, const char* text) {
  return std::any_of(messages.begin(), messages.end(),
                     [text](const std::string& m) { return m.find(text) != std::string::npos; });
}

// What a call leaves alone in its handle: all but the scratch planes and the film's marks.
Bytes keptContents(const FilterHandleView& view) {
  Bytes bytes(view.header().bytes, view.plane(kScratchPlane));
  bytes.insert(bytes.end(), view.plane(kPlaneCount - 1), view.blotch());
  return bytes;
}

class Faults : public testing::TestWithParam<TexturePath> {
 protected:
  // Calls f with every call that has something to do with this path.
  template <class F>
  void forEachCall(bool onCaller, F f) {
    for (ModeCall call : allModeCalls()) {
      if (kReduced && call.format == PixelFormat::kNv21) continue;
      call.path = GetParam();
      call.onCaller = onCaller;
      if (call.path != TexturePath::kPrepared && !usesTexturePlanes(call.mode)) continue;
      for (call.variant = 0; call.variant < variantsOf(call.mode); ++call.variant) {
        SCOPED_TRACE(describe(call));
        f(call);
        EXPECT_TRUE(keptContents(handle_.view()) == kept_);
      }
    }
  }

  struct Outcome {
    std::uint32_t status;
    Bytes picture;
    std::vector<std::string> errors;
  };
  Outcome outcomeOf(ModeCall call, int strength) {
    call.strength = strength;
    marks_.restore();
    allocator_.clearRequests();
    TestPicture picture(call.format, kPicture.width, kPicture.height, kExtraStride);
    const CapturedLog log;
    const std::uint32_t status = run(call, handle_.get(), picture.image());
    EXPECT_TRUE(picture.keepsBorders(untouched(call.format), keepsAlpha(call.mode)));
    EXPECT_EQ(allocator_.liveBlocks(), 1) << "the handle alone";
    EXPECT_TRUE(threadsReturnTo(threads_));
    return {status, picture.snapshot(), log.errors()};
  }
  // With the starts of the mask failing.
  Outcome outcomeOf(const ModeCall& call, int strength, std::uint64_t faults) {
    const ThreadFaults injected(faults);
    return outcomeOf(call, strength);
  }
  static Bytes untouched(PixelFormat format) {
    return TestPicture(format, kPicture.width, kPicture.height, kExtraStride).snapshot();
  }

  void expectGood(const ModeCall& call, const Outcome& good) {
    const Outcome again = outcomeOf(call, kWeakStrength);
    EXPECT_EQ(again.status, 0u);
    EXPECT_TRUE(again.errors.empty());
    EXPECT_TRUE(again.picture == good.picture) << "the handle is as usable as before";
  }

  TestAllocator allocator_;
  TestHandle handle_{allocator_, handleLayout(GetParam(), kPicture)};
  const SavedMarks marks_{handle_.view()};
  const Bytes kept_ = keptContents(handle_.view());
  const int threads_ = threadsAtRest();
};

// A mosaic is made all the same: a picture is never said to be covered and is not.
TEST_P(Faults, ARequestThatFailsLeavesThePictureAlone) {
  int cases = 0;
  const auto failEveryRequest = [&](const ModeCall& call) {
    const Outcome good = outcomeOf(call, kWeakStrength, 0);
    EXPECT_EQ(ThreadFaults::startCount() > 0, !call.onCaller);
    const int requests = static_cast<int>(allocator_.requests().size());
    ASSERT_EQ(good.status, 0u);
    for (int n = 1; n <= requests; ++n, ++cases) {
      SCOPED_TRACE(testing::Message() << "request " << n << " of " << requests);
      allocator_.failAt(n);
      const Outcome bad = outcomeOf(call, kWeakStrength);
      const bool isMade = call.mode == LUMORA_MODE_MOSAIC && n > 1;  // the copy is the first one
      EXPECT_EQ(bad.status, isMade ? 0u : 512u);
      EXPECT_TRUE(mentions(bad.errors, "alloc")) << "the memory message";
      EXPECT_FALSE(mentions(bad.errors, "pthread"));
      EXPECT_TRUE(bad.picture == (isMade ? good.picture : untouched(call.format)));
      expectGood(call, good);
    }
  };
  forEachCall(false, failEveryRequest);
  forEachCall(true, failEveryRequest);
  RecordProperty("cases", cases);
  EXPECT_GT(cases, 0);
}

// Bytes of a call that lost workers are untouched, done or, of the film, not blended, never
// anything else. (The glow comes from a step before the one that lost its worker.)
bool isMixOf(const Bytes& bytes, const Bytes& a, const Bytes& b, const Bytes& c) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] != a[i] && bytes[i] != b[i] && bytes[i] != c[i]) return false;
  }
  return true;
}

int fullStrength(const ModeCall& call) { return isLevel(call) ? kWeakStrength : 16; }

TEST_P(Faults, AWorkerThatDoesNotStartIsReportedAndTheOthersJoined) {
  int cases = 0;
  forEachCall(false, [&](const ModeCall& call) {
    const bool isBlendedApart = call.mode == LUMORA_MODE_LAODIANYING;
    const Outcome full = outcomeOf(call, isBlendedApart ? 16 : kWeakStrength);
    const Outcome good = outcomeOf(call, kWeakStrength, 0);
    const int starts = ThreadFaults::startCount();
    ASSERT_GT(starts, 0);
    ASSERT_LT(starts, 63) << "more than the faults can tell apart";
    for (int k = 0; k < starts; ++k) {
      for (const std::uint64_t faults : {std::uint64_t{1} << k, ~std::uint64_t{0} << k}) {
        SCOPED_TRACE(testing::Message() << "start " << k << " of " << starts);
        ++cases;
        const Outcome bad = outcomeOf(call, kWeakStrength, faults);
        // A glow that lost a worker is left out or has gaps, and the curves behind it decide; a
        // mosaic is made all the same.
        const bool isMosaic = call.mode == LUMORA_MODE_MOSAIC;
        const bool lastStepDecides = call.mode == LUMORA_MODE_MEISHIMENGHUAN;
        const bool lastStepFails = faults >> (ThreadFaults::startCount() - kStripeCount) != 0;
        EXPECT_EQ(bad.status, isMosaic || (lastStepDecides && !lastStepFails) ? 0u : 4096u);
        EXPECT_TRUE(!isMosaic || bad.picture == good.picture);
        EXPECT_TRUE(mentions(bad.errors, "pthread_create error!"));
        EXPECT_TRUE(mentions(bad.errors, "Error threadID = %d!"));
        EXPECT_FALSE(mentions(bad.errors, "alloc"));
        if (call.mode != LUMORA_MODE_MEISHIMENGHUAN) {
          EXPECT_TRUE(isMixOf(bad.picture, untouched(call.format), good.picture, full.picture));
        }
      }
      expectGood(call, good);
    }
  });
  RecordProperty("cases", cases);
  EXPECT_GT(cases, 0);
}

struct LastStep {
  Bytes full, none;            // with all of its workers, and without any
  std::vector<Bytes> lacking;  // without one of them
};

// Every row that the step changes is one worker's alone, and they divide the rows in their order,
// of NV pictures those of either plane.
void expectDividedRows(const LastStep& step, std::size_t stride) {
  std::ptrdiff_t previous = 0;
  for (std::size_t row = 0; row * stride < step.full.size(); ++row) {
    const auto differs = [&](const Bytes& a, const Bytes& b) {
      return std::memcmp(a.data() + row * stride, b.data() + row * stride, stride) != 0;
    };
    if (!differs(step.full, step.none)) continue;
    const auto isLacking = [&](const Bytes& picture) { return differs(picture, step.full); };
    const auto owner = std::find_if(step.lacking.begin(), step.lacking.end(), isLacking);
    ASSERT_EQ(std::count_if(step.lacking.begin(), step.lacking.end(), isLacking), 1) << row;
    ASSERT_FALSE(differs(*owner, step.none)) << row;
    const std::ptrdiff_t worker = owner - step.lacking.begin();
    ASSERT_TRUE(worker >= previous || row == static_cast<std::size_t>(kPicture.height)) << row;
    previous = worker;
  }
  EXPECT_EQ(previous, kStripeCount - 1);
}

TEST_P(Faults, AMissingWorkerLeavesOutItsOwnRows) {
  forEachCall(false, [&](const ModeCall& call) {
    const Bytes before = untouched(call.format);
    const int strength = fullStrength(call);
    LastStep step{outcomeOf(call, strength, 0).picture, {}, {}};
    const int first = ThreadFaults::startCount() - kStripeCount;
    step.none = outcomeOf(call, strength, ~std::uint64_t{0} << first).picture;
    for (int k = 0; k < kStripeCount; ++k) {
      step.lacking.push_back(outcomeOf(call, strength, std::uint64_t{1} << (first + k)).picture);
    }
    if (call.mode == LUMORA_MODE_MOSAIC) {  // whose rows are made good
      EXPECT_TRUE(step.none == step.full && step.full != before);
      for (const Bytes& picture : step.lacking) EXPECT_TRUE(picture == step.full);
      return;
    }
    const int pixelBytes = call.format == PixelFormat::kRgba ? 4 : 1;
    expectDividedRows(step, static_cast<std::size_t>(kPicture.width * pixelBytes) + kExtraStride);
    if (call.mode == LUMORA_MODE_MEISHIMENGHUAN) return;
    EXPECT_TRUE(step.none == before);
    EXPECT_TRUE(outcomeOf(call, strength, 1).picture == before || first == 0);
  });
}

INSTANTIATE_TEST_SUITE_P(Paths, Faults, testing::ValuesIn(kTexturePaths), [](const auto& p) {
  return p.param == TexturePath::kOtherSize ? "OtherSize" : pathName(p.param);
});

}  // namespace
}  // namespace lumora::test
