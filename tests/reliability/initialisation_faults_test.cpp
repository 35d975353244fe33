// Initialisations that fail: every step of reading both files, every request for memory, block of
// the document's tree and start of a worker fails once, both files shrink while they are read, and
// packs are refused.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/stripe_runner.h"
#include "resources/pack_directory.h"
#include "support/captured_log.h"
#include "support/counting_heap.h"
#include "support/file_faults.h"
#include "support/mode_calls.h"
#include "support/thread_faults.h"
#include "tuning_text/tuning_text.h"

namespace lumora::test {
namespace {

using Messages = std::vector<std::string>;

constexpr const char* kCannotOpen = "[%s] \ninput for mixIm.dat is invalid!";
constexpr const char* kSeekError = "[%s] \n.dat file fseek error!";
constexpr const char* kSizeError = "[%s] \n.dat file size error!";
constexpr const char* kReadError = "[%s] \n.dat file load failed!";
constexpr const char* kHeaderError = "[%s] \n.dat file error!";
constexpr const char* kMarkError = "[%s] \n.dat file is wrong!";
constexpr const char* kFailed = "[%s] initialize failed!\n";

const Knots* straightCurves(const TuningBlock&) {
  static const Knots kCurves[3] = {
      {{0, 16, 32, 48, 64, 80, 96, 112, 128, 144, 160, 176, 192, 208, 224, 240, 255}}};
  return kCurves;
}

class InitialisationFaults : public testing::TestWithParam<std::uint32_t> {
 protected:
  InitialisationFaults() {
    untuned_ = goodContents();
    writeTuning();
    good_ = goodContents();
    EXPECT_FALSE(good_ == untuned_) << "the document is worth reading";
  }

  void writeTuning() const {
    ResourceDirectory::write(directory_.tuning(), tuningDocument(straightCurves));
  }

  // A value of the handle variable that no initialisation makes.
  FilterHandle* untouched() { return reinterpret_cast<FilterHandle*>(&allocator_); }
  std::uint32_t initialise(const char* directory) {
    log_.clear();
    allocator_.clearRequests();
    handle_ = untouched();
    FilterInitParamApp param{};
    param.eDirection = 3;
    param.width = GetParam();
    param.height = GetParam();
    param.pcResourceDir = directory;
    param.pstAllocator = allocator_.record();
    return filterInit_APP(&handle_, &param);
  }
  std::uint32_t initialise() { return initialise(directory_.path().c_str()); }
  void destroy() {
    if (handle_ == untouched()) handle_ = nullptr;
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
  // The header, built-in values for every look and black textures.
  Bytes blankContents() const {
    Bytes bytes(good_.size(), 0);
    std::fill_n(std::copy_n(good_.begin(), sizeof(TextureHeader), bytes.begin()),
                kFilterParamsBytes, std::uint8_t{1});
    return bytes;
  }
  Bytes goodContents() {
    EXPECT_EQ(initialise(), LUMORA_OK);
    EXPECT_TRUE(log_.errors().empty());
    const Bytes bytes = contents();
    destroy();
    return bytes;
  }
  // Nothing of the failure stays: the next initialisation is as good as the first.
  void expectGoodAgain() {
    files_.failAt(0);
    EXPECT_TRUE(goodContents() == good_);
  }
  void expectRefused(std::uint32_t status, const char* reason) {
    EXPECT_EQ(status, LUMORA_BAD_RESOURCE);
    EXPECT_EQ(log_.errors(), (Messages{reason, kFailed}));
    EXPECT_EQ(handle_, untouched());
    EXPECT_EQ(allocator_.liveBlocks(), 0);
  }

  PackDirectory directory_;
  TestAllocator allocator_;
  CountingHeap heap_;
  FileFaults files_;  // the two files are read one after the other
  CapturedLog log_;
  FilterHandle* handle_ = nullptr;
  Bytes good_;
  Bytes untuned_;
};

TEST_P(InitialisationFaults, EveryStepOfReadingFails) {
  const char* const reasons[] = {kCannotOpen, kSeekError, kSizeError, kSeekError, kReadError};
  constexpr int kPackSteps = 5;
  int n = 1;
  for (bool over = false; !over; ++n) {
    SCOPED_TRACE(n);
    files_.failAt(n);
    const std::uint32_t status = initialise();
    over = !files_.hasHappened();
    if (n <= kPackSteps) {
      expectRefused(status, reasons[n - 1]);
    } else {
      // Without a document every look has its own values. Where its encoding cannot be guessed, the
      // last one will do.
      EXPECT_EQ(status, LUMORA_OK);
      EXPECT_TRUE(contents() == (over || n == kPackSteps + 1 ? good_ : untuned_));
      EXPECT_TRUE(log_.errors().empty());
    }
    destroy();
    expectGoodAgain();
  }
  EXPECT_EQ(n - 2, kPackSteps + 7) << "open and read, then open, seek, position, seek and read";
  RecordProperty("cases", n - 2);
}

TEST_P(InitialisationFaults, FilesShrinkBetweenAnyTwoSteps) {
  int cases = 0;
  const auto shrinkAtEveryStep = [&](const std::filesystem::path& file, std::uintmax_t rest,
                                     auto restore) {
    bool over = false;
    for (int n = 1; !over; ++n, ++cases) {
      SCOPED_TRACE(testing::Message() << file << " to " << rest << " bytes at step " << n);
      files_.happenAt(n, [&] { std::filesystem::resize_file(file, rest); });
      const std::uint32_t status = initialise();
      over = !files_.hasHappened();
      if (status == LUMORA_OK) {
        EXPECT_TRUE(contents() == untuned_ || contents() == good_);
        EXPECT_TRUE(log_.errors().empty());
      } else {
        expectRefused(status, n <= 2 ? kSizeError : kReadError);
      }
      destroy();
      restore();
    }
  };
  constexpr std::size_t kMissing = 9, kRest = kPackBytes - kMissing;
  shrinkAtEveryStep(directory_.pack(), kRest, [this] { directory_.restorePack(kRest, kMissing); });
  for (const std::uintmax_t bytes : {0, 1, 250, 5000}) {
    shrinkAtEveryStep(directory_.tuning(), bytes, [this] { writeTuning(); });
  }
  RecordProperty("cases", cases);
}

// No document takes more memory than a phone has to spare: larger ones count as none.
TEST_P(InitialisationFaults, ADocumentHasALimit) {
  constexpr std::uintmax_t kLimit = 16 << 20;
  for (const std::uintmax_t bytes : {kLimit, kLimit + 1, kLimit << 10}) {
    std::filesystem::resize_file(directory_.tuning(), bytes);  // zeros, which end the text
    EXPECT_TRUE(goodContents() == (bytes > kLimit ? untuned_ : good_)) << bytes;
  }
}

// Nothing takes more memory for its bytes than elements of one character in each other: a record, a
// name and a list of one child for every three bytes.
TEST_P(InitialisationFaults, ADocumentTakesSomeSeventyTimesItsBytesAtMost) {
  const auto peakOf = [this](std::string_view piece) {
    constexpr std::size_t kBytes = 300'000;
    std::string text;
    while (text.size() < kBytes) text += piece;
    ResourceDirectory::write(directory_.tuning(), text);
    heap_.failAt(0);
    EXPECT_EQ(initialise(), LUMORA_OK);
    destroy();
    return static_cast<double>(heap_.peakBytes()) / static_cast<double>(text.size());
  };
  for (const char* piece :
       {"<a>", "<a/>", "<a>1", "<a b=''>", "<a 1>", "<?a>", "<a><![CDATA[]]>"}) {
    EXPECT_LE(peakOf(piece), 72) << piece;
  }
  const double worst = peakOf("<a>");
  RecordProperty("times_its_bytes", std::to_string(worst));
  if (sizeof(void*) == 8) {
    EXPECT_GT(worst, 50) << "what the documentation says is not far off";
  }
}

// Without memory for the document there is none; without memory even for an empty one in its place
// the initialisation fails, with a handle that only waits for its end.
TEST_P(InitialisationFaults, EveryBlockOfTheDocumentFails) {
  const Messages reasons = {"[%s] xml file read failed!\n",
                            "[%s] \ninput for filter.xml is invalid!", kFailed};
  int cases = 0;
  for (const bool allAfter : {false, true}) {
    bool over = false;
    for (int n = 1; !over; n += n < 20 ? 1 : 17, ++cases) {
      SCOPED_TRACE(n);
      heap_.failAt(n, allAfter);
      const std::uint32_t status = initialise();
      over = !heap_.hasFailed();
      const bool refused = allAfter && !over;
      EXPECT_EQ(status, refused ? LUMORA_BAD_RESOURCE : LUMORA_OK);
      EXPECT_EQ(log_.errors(), refused ? reasons : Messages{});
      ASSERT_EQ(allocator_.liveBlocks(), 1);
      EXPECT_TRUE(contents() == (over ? good_ : refused ? blankContents() : untuned_));
      destroy();
    }
    heap_.failAt(0);
    expectGoodAgain();
  }
  RecordProperty("cases", cases);
}

TEST_P(InitialisationFaults, EveryRequestFails) {
  for (int n = 1; n <= 2; ++n) {
    SCOPED_TRACE(n);
    allocator_.failAt(n);
    EXPECT_EQ(initialise(), LUMORA_BAD_STATE);
    EXPECT_EQ(log_.errors(), (Messages{"[%s] \ncan't malloc enough memory!", kFailed}));
    EXPECT_EQ(handle_, n == 1 ? untouched() : nullptr) << "the pack's block, then the handle's";
    EXPECT_EQ(allocator_.liveBlocks(), 0);
    destroy();
    expectGoodAgain();
    EXPECT_EQ(allocator_.requests().size(), 2u);
  }
  RecordProperty("cases", 2);
}

// Every texture has its workers. What one leaves out is made good, and the host gets the handle.
TEST_P(InitialisationFaults, EveryWorkerFails) {
  const int starts = GetParam() == 0 ? 0 : 8 * kStripeCount;
  for (int k = 0; k < starts; ++k) {
    SCOPED_TRACE(k);
    {
      const ThreadFaults faults(std::uint64_t{1} << k);
      EXPECT_EQ(initialise(), LUMORA_THREAD_FAILED);
      EXPECT_EQ(ThreadFaults::startCount(), starts);
    }
    EXPECT_EQ(log_.errors(),
              (Messages{"[%s] \npthread_create error!", "[%s]  Error threadID = %d!", kFailed}));
    EXPECT_EQ(log_.lines().at(2).text,
              "[FILTER_LOG]  Error threadID = " + std::to_string(k % kStripeCount) + "!");
    ASSERT_EQ(allocator_.liveBlocks(), 1);
    EXPECT_TRUE(contents() == good_);
    destroy();
    expectGoodAgain();
  }
  const ThreadFaults none(0);
  expectGoodAgain();
  EXPECT_EQ(ThreadFaults::startCount(), starts);
  RecordProperty("cases", starts);
}

TEST_P(InitialisationFaults, APackOfAnotherSizeIsRefusedBeforeAnyRequest) {
  for (const std::uintmax_t bytes : {kPackBytes - 1, kPackBytes + 1, 0u}) {
    std::filesystem::resize_file(directory_.pack(), bytes);
    expectRefused(initialise(), kSizeError);
    EXPECT_TRUE(allocator_.requests().empty());
  }
}

TEST_P(InitialisationFaults, CheckedHeaderBytesOfThePackMustBeRight) {
  for (std::size_t i = 0; i < kPackHeaderBytes; ++i) {
    SCOPED_TRACE(i);
    directory_.overwritePack(i, {toByte(PackDirectory::packBytes()[i] + 1)});
    const std::uint32_t status = initialise();
    if (i < 4 || i >= 10) {
      expectRefused(status, i < 4 ? kHeaderError : kMarkError);
    } else {
      EXPECT_EQ(status, LUMORA_OK);
    }
    destroy();
    directory_.restorePack(i, 1);
  }
}

TEST_P(InitialisationFaults, OnlyRegularFilesOpen) {
  const auto replaceBy = [this](auto make) {
    std::filesystem::remove_all(directory_.pack());
    make(directory_.pack());
    expectRefused(initialise(), kCannotOpen);
  };
  replaceBy([](const auto&) {});  // missing
  replaceBy([](const auto& path) { std::filesystem::create_directory(path); });
  replaceBy([](const auto& path) { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); });
  replaceBy([](const auto& path) { std::filesystem::create_symlink("/dev/zero", path); });
  replaceBy([](const auto& path) { std::filesystem::create_symlink("nowhere", path); });
}

TEST_P(InitialisationFaults, TheBuiltInPackHasAMessageOfItsOwn) {
  if (std::filesystem::exists("/system/etc/camera/filter/mixIm.dat")) GTEST_SKIP();
  expectRefused(initialise(nullptr), "[%s] \nmixIm.dat open failed!");
}

TEST_P(InitialisationFaults, TheDirectoryIsAPrefixOfBoundedLength) {
  // Without its slash the names are glued to the directory's own.
  std::string path = directory_.path();
  path.pop_back();
  expectRefused(initialise(path.c_str()), kCannotOpen);

  // The longest directory names the same place in a long-winded way.
  path.resize(245, '/');
  EXPECT_EQ(initialise(path.c_str()), LUMORA_OK);
  destroy();
  for (const std::size_t length : {246, 247, 255, 256, 4000, 100000}) {
    path.resize(length, '/');
    expectRefused(initialise(path.c_str()), kCannotOpen);
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, InitialisationFaults, testing::Values(0u, 96u));

}  // namespace
}  // namespace lumora::test
