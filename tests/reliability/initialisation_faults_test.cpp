// Every step of an initialisation fails once: steps of reading both files, requests for memory,
// blocks of the document's tree, starts of workers; and both files shrink while they are read.
#include <gtest/gtest.h>

#include <functional>

#include "config/config_support.h"
#include "config/tuning_text.h"
#include "platform/regular_file.h"
#include "support/captured_log.h"
#include "support/mode_calls.h"
#include "support/resource_directory.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

// What happens at the n-th step of reading; the two files are read one after the other.
struct {
  int until = 0;
  std::function<void()> happens;
} step;

bool countStep(RegularFile::Step) {
  if (--step.until != 0) return false;
  if (!step.happens) return true;
  step.happens();
  return false;
}

const Knots* straightCurves(const TuningBlock&) {
  static const Knots kCurves[3] = {
      {{0, 16, 32, 48, 64, 80, 96, 112, 128, 144, 160, 176, 192, 208, 224, 240, 255}}};
  return kCurves;
}

class InitialisationFaults : public testing::TestWithParam<std::uint32_t> {
 protected:
  InitialisationFaults() {
    ResourceDirectory::write(directory_.pack(), noisyPack());
    writeTuning();
    RegularFile::setFault(countStep);
    arm(0);
    EXPECT_EQ(initialise(), 0u);
    good_ = contents();
    destroy();
    std::filesystem::remove(directory_.tuning());
    EXPECT_EQ(initialise(), 0u);
    untuned_ = contents();
    destroy();
    EXPECT_FALSE(good_ == untuned_) << "the document is worth reading";
    writeTuning();
  }
  ~InitialisationFaults() override { RegularFile::setFault(nullptr); }

  void writeTuning() const {
    ResourceDirectory::write(directory_.tuning(), tuningDocument(straightCurves));
  }
  static void arm(int n, std::function<void()> happens = nullptr) {
    step = {n, std::move(happens)};
  }

  std::uint32_t initialise() {
    log_.clear();
    const std::string path = directory_.path();
    FilterInitParamApp param{};
    param.eDirection = 3;
    param.width = GetParam();
    param.height = GetParam();
    param.pcResourceDir = path.c_str();
    param.pstAllocator = allocator_.record();
    return filterInit_APP(&handle_, &param);
  }
  void destroy() {
    filterDestroy(&handle_);
    EXPECT_TRUE(allocator_.balanced());
    EXPECT_EQ(heap_.liveBlocks(), 0);
  }

  // From the header on, without the scratch planes, which nobody fills.
  Bytes contents() const {
    const FilterHandleView view(handle_);
    Bytes bytes(view.header().bytes, view.plane(kScratchPlane));
    const std::uint8_t* end = view.blotch() + view.smallTextures().bytes();
    bytes.insert(bytes.end(), const_cast<const std::uint8_t*>(view.plane(kPlaneCount - 1)), end);
    return bytes;
  }
  // Nothing of the failure stays: the next initialisation is as good as the first.
  void expectGoodAgain() {
    arm(0);
    ASSERT_EQ(initialise(), 0u);
    EXPECT_TRUE(contents() == good_);
    EXPECT_TRUE(log_.errors().empty());
    destroy();
  }
  // A pack that cannot be read is an error; without a document every look has its own values.
  void expectRefusedOrBuiltIn(std::uint32_t status) {
    if (status == LUMORA_OK) {
      ASSERT_NE(handle_, nullptr);
      EXPECT_TRUE(contents() == untuned_ || contents() == good_);
      EXPECT_TRUE(log_.errors().empty());
    } else {
      EXPECT_EQ(status, LUMORA_BAD_RESOURCE);
      EXPECT_EQ(handle_, nullptr);
      EXPECT_EQ(log_.errors().size(), 2u) << "the reason, and that there is no handle";
    }
  }

  ResourceDirectory directory_;
  TestAllocator allocator_;
  CountingHeap heap_;
  CapturedLog log_;
  FilterHandle* handle_ = nullptr;
  Bytes good_;
  Bytes untuned_;
};

TEST_P(InitialisationFaults, EveryStepOfReadingFails) {
  int n = 1, refused = 0;
  for (;; ++n) {
    SCOPED_TRACE(n);
    arm(n);
    const std::uint32_t status = initialise();
    const bool over = step.until > 0;
    refused += status != LUMORA_OK;
    expectRefusedOrBuiltIn(status);
    destroy();
    if (over) break;
    expectGoodAgain();
  }
  EXPECT_EQ(refused, 5) << "open, seek, position, seek and read of the pack";
  EXPECT_GT(n, 10) << "the document has such steps, too";
  RecordProperty("cases", n - 1);
}

TEST_P(InitialisationFaults, FilesShrinkBetweenAnyTwoSteps) {
  int cases = 0;
  const auto shrinkAtEveryStep = [&](const std::filesystem::path& file, int rest, auto restore) {
    for (int n = 1, over = 0; over == 0; ++n, ++cases) {
      SCOPED_TRACE(testing::Message() << file << " to " << rest << " bytes at step " << n);
      arm(n, [&] { std::filesystem::resize_file(file, static_cast<std::uintmax_t>(rest)); });
      expectRefusedOrBuiltIn(initialise());
      over = step.until > 0;
      destroy();
      restore();
    }
  };
  const std::vector<std::uint8_t> pack = noisyPack();
  shrinkAtEveryStep(directory_.pack(), static_cast<int>(pack.size()) - 9, [&] {
    std::ofstream(directory_.pack(), std::ios::in | std::ios::binary | std::ios::ate)
        .write(reinterpret_cast<const char*>(&*(pack.end() - 9)), 9);
  });
  for (const int rest : {0, 1, 250, 5000}) {
    shrinkAtEveryStep(directory_.tuning(), rest, [this] { writeTuning(); });
  }
  RecordProperty("cases", cases);
}

// No document takes more memory than a phone has to spare: larger ones count as none.
TEST_P(InitialisationFaults, ADocumentHasALimit) {
  constexpr std::uintmax_t kLimit = 16 << 20;
  for (const std::uintmax_t bytes : {kLimit, kLimit + 1, kLimit << 10}) {
    std::filesystem::resize_file(directory_.tuning(), bytes);  // zeros, which end the text
    EXPECT_EQ(initialise(), 0u);
    EXPECT_TRUE(contents() == (bytes > kLimit ? untuned_ : good_)) << bytes;
    destroy();
  }
}

// Without memory for the document there is none; without memory even for an empty one in its place
// the initialisation fails, with a handle that only waits for its end.
TEST_P(InitialisationFaults, EveryBlockOfTheDocumentFails) {
  int cases = 0;
  for (const bool allAfter : {false, true}) {
    for (int n = 1, over = 0; over == 0; n += n < 20 ? 1 : 17, ++cases) {
      SCOPED_TRACE(n);
      heap_.failAt(n, allAfter);
      const std::uint32_t status = initialise();
      over = !heap_.hasFailed();
      const bool refused = allAfter && over == 0;
      EXPECT_EQ(status, refused ? LUMORA_BAD_RESOURCE : LUMORA_OK);
      ASSERT_NE(handle_, nullptr);
      if (!refused) {
        EXPECT_TRUE(contents() == (over != 0 ? good_ : untuned_));
      }
      destroy();
    }
    heap_.failAt(0);
    expectGoodAgain();
  }
  RecordProperty("cases", cases);
}

TEST_P(InitialisationFaults, EveryRequestAndEveryWorkerFails) {
  for (int n = 1; n <= 2; ++n) {
    allocator_.failAt(n);
    EXPECT_EQ(initialise(), LUMORA_BAD_STATE);
    EXPECT_EQ(handle_, nullptr);
    destroy();
    expectGoodAgain();
  }
  int starts = 1;
  for (int k = 0; k < starts; ++k) {
    {
      const ThreadFaults faults(std::uint64_t{1} << k);
      const std::uint32_t status = initialise();
      starts = ThreadFaults::startCount();
      EXPECT_EQ(status, starts > 0 ? LUMORA_THREAD_FAILED : LUMORA_OK);
    }
    ASSERT_NE(handle_, nullptr);
    EXPECT_TRUE(contents() == good_) << "what a worker left out has been made good";
    destroy();
    expectGoodAgain();
  }
  EXPECT_EQ(starts, GetParam() == 0 ? 0 : 8 * kStripeCount);
  RecordProperty("cases", 2 + starts);
}

INSTANTIATE_TEST_SUITE_P(Sizes, InitialisationFaults, testing::Values(0u, 96u));

}  // namespace
}  // namespace lumora::test
