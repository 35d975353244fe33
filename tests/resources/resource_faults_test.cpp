// Resource files, memory and threads that fail an initialisation: status, messages, and whose the
// handle is afterwards.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "config/xml_memory.h"
#include "platform/regular_file.h"
#include "resources/filter_init.h"
#include "support/captured_log.h"
#include "support/resource_directory.h"
#include "support/test_allocator.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

using Messages = std::vector<std::string>;

constexpr const char* kCannotOpen = "[%s] \ninput for mixIm.dat is invalid!";
constexpr const char* kSeekError = "[%s] \n.dat file fseek error!";
constexpr const char* kSizeError = "[%s] \n.dat file size error!";
constexpr const char* kReadError = "[%s] \n.dat file load failed!";
constexpr const char* kHeaderError = "[%s] \n.dat file error!";
constexpr const char* kMarkError = "[%s] \n.dat file is wrong!";
constexpr const char* kNoMemory = "[%s] \ncan't malloc enough memory!";

class ResourceFaults : public testing::Test {
 protected:
  ResourceFaults() { setHandle(untouched()); }
  ~ResourceFaults() override { EXPECT_TRUE(allocator_.balanced()); }

  // A value of the handle variable that no initialisation makes.
  FilterHandle* untouched() { return reinterpret_cast<FilterHandle*>(&allocator_); }
  void setHandle(FilterHandle* handle) { handle_ = handle; }

  Status makeUnsized(const char* directory) {
    setHandle(untouched());
    log_.clear();
    allocator_.clearRequests();
    return FilterInitUnsized(0, 0, &handle_, *allocator_.record(), directory);
  }
  Status makeUnsized() { return makeUnsized(directory_.path().c_str()); }
  Status makeSized() {
    setHandle(untouched());
    return FilterInitSized(0, 88, 88, 0, &handle_, *allocator_.record(), directory_.path().c_str());
  }

  // The bytes of a handle of 88 x 88, which has no marks, from its first 16-byte boundary on.
  Bytes contents() const {
    const auto address = reinterpret_cast<std::uintptr_t>(handle_);
    const auto* const base = reinterpret_cast<const std::uint8_t*>((address + 15) / 16 * 16);
    return {base, base + 32 + 4096 + 14 * 88 * 88};
  }

  void expectBadPack(const char* message) {
    EXPECT_EQ(makeUnsized(), Status::kBadResource);
    EXPECT_EQ(log_.errors(), Messages{message});
    EXPECT_EQ(handle_, untouched());
    EXPECT_EQ(allocator_.liveBlocks(), 0);
  }

  ResourceDirectory directory_;
  TestAllocator allocator_;
  CapturedLog log_;
  FilterHandle* handle_;
};

TEST_F(ResourceFaults, APackOfAnotherSizeIsRefusedBeforeAnyRequest) {
  Bytes pack = noisyPack();
  for (const std::size_t bytes : {pack.size() - 1, pack.size() + 1, std::size_t{0}}) {
    pack.resize(bytes);
    ResourceDirectory::write(directory_.pack(), pack);
    expectBadPack(kSizeError);
    EXPECT_TRUE(allocator_.requests().empty());
  }
}

TEST_F(ResourceFaults, OnlyRegularFilesOpen) {
  const auto replaceBy = [this](auto make) {
    std::filesystem::remove_all(directory_.pack());
    make(directory_.pack());
    expectBadPack(kCannotOpen);
  };
  replaceBy([](const auto&) {});  // missing
  replaceBy([](const auto& path) { std::filesystem::create_directory(path); });
  replaceBy([](const auto& path) { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); });
  replaceBy([](const auto& path) { std::filesystem::create_symlink("/dev/zero", path); });
  replaceBy([](const auto& path) { std::filesystem::create_symlink("nowhere", path); });
}

TEST_F(ResourceFaults, TheBuiltInPackHasAMessageOfItsOwn) {
  if (std::filesystem::exists("/system/etc/camera/filter/mixIm.dat")) GTEST_SKIP();
  EXPECT_EQ(makeUnsized(nullptr), Status::kBadResource);
  EXPECT_EQ(log_.errors(), Messages{"[%s] \nmixIm.dat open failed!"});
}

TEST_F(ResourceFaults, CheckedHeaderBytesMustBeRight) {
  const Bytes good = noisyPack();
  for (int i = 0; i < 16; ++i) {
    SCOPED_TRACE(i);
    Bytes pack = good;
    pack[i] = static_cast<std::uint8_t>(pack[i] + 1);
    ResourceDirectory::write(directory_.pack(), pack);
    if (i < 4) {
      expectBadPack(kHeaderError);
    } else if (i >= 10) {
      expectBadPack(kMarkError);
    } else {
      EXPECT_EQ(makeUnsized(), Status::kOk);
      filterDestroy(&handle_);
    }
  }
}

TEST_F(ResourceFaults, TheDirectoryIsAPrefixOfBoundedLength) {
  ResourceDirectory::write(directory_.pack(), noisyPack());
  // Without its slash the names are glued to the directory's own.
  std::string path = directory_.path();
  path.pop_back();
  EXPECT_EQ(makeUnsized(path.c_str()), Status::kBadResource);
  EXPECT_EQ(log_.errors(), Messages{kCannotOpen});

  // The longest directory names the same place in a long-winded way.
  while (path.size() < 245) path += "/";
  EXPECT_EQ(makeUnsized(path.c_str()), Status::kOk);
  filterDestroy(&handle_);
  for (const std::size_t length : {246, 247, 255, 256, 4000, 100000}) {
    path.resize(length, '/');
    EXPECT_EQ(makeUnsized(path.c_str()), Status::kBadResource) << length;
    EXPECT_EQ(log_.errors(), Messages{kCannotOpen});
    EXPECT_EQ(handle_, untouched());
  }
}

TEST_F(ResourceFaults, EveryRequestMayFail) {
  ResourceDirectory::write(directory_.pack(), noisyPack());
  int n = 1;
  for (;; ++n) {
    allocator_.failAt(n);
    const Status status = n % 2 == 1 ? makeSized() : makeUnsized();
    if (status == Status::kOk) break;
    EXPECT_EQ(status, Status::kNoMemory);
    EXPECT_EQ(log_.errors(), Messages{kNoMemory});
    EXPECT_EQ(handle_, n == 1 ? untouched() : nullptr) << n;
    EXPECT_EQ(allocator_.liveBlocks(), 0);
    log_.clear();
  }
  EXPECT_EQ(n, 3);
  filterDestroy(&handle_);
}

// Fails the step of this number, counted from 0.
int failingStep = 0;
bool failStep(RegularFile::Step) { return failingStep-- == 0; }

TEST_F(ResourceFaults, EveryStepOfReadingThePackMayFail) {
  ResourceDirectory::write(directory_.pack(), noisyPack());
  const char* const kMessages[] = {kCannotOpen, kSeekError, kSizeError, kSeekError, kReadError};
  RegularFile::setFault(failStep);
  for (int step = 0; step < 5; ++step) {
    SCOPED_TRACE(step);
    failingStep = step;
    expectBadPack(kMessages[step]);
  }
  // No further step belongs to the pack, and the tuning document may fail.
  failingStep = 5;
  EXPECT_EQ(makeUnsized(), Status::kOk);
  filterDestroy(&handle_);
  RegularFile::setFault(nullptr);
}

// The tuning document's tree is built on the C heap. Without any of it, the host gets a handle with
// built-in tuning and black textures.
TEST_F(ResourceFaults, NoHeapForTheTuningDocumentLeavesADefinedHandle) {
  ResourceDirectory::write(directory_.pack(), noisyPack());
  const XmlHeap exhausted = {[](void*, std::size_t) -> void* { return nullptr; }, [](void*) {}};
  setXmlHeap(&exhausted);
  EXPECT_EQ(makeSized(), Status::kBadResource);
  setXmlHeap(nullptr);
  EXPECT_EQ(log_.errors(),
            (Messages{"[%s] xml file read failed!\n", "[%s] \ninput for filter.xml is invalid!"}));
  EXPECT_EQ(allocator_.liveBlocks(), 1);
  const Bytes handle = contents();
  EXPECT_EQ(Bytes(handle.begin() + 32, handle.begin() + 32 + 4096), Bytes(4096, 1));
  EXPECT_EQ(Bytes(handle.begin() + 32 + 4096, handle.end()), Bytes(14 * 88 * 88, 0));
  filterDestroy(&handle_);
}

// Every texture has four workers. The host gets the handle.
TEST_F(ResourceFaults, AMissingWorkerIsReportedForItsTexture) {
  ResourceDirectory::write(directory_.pack(), noisyPack());
  const ThreadFaults faults(1u << 1 | 1u << 11);  // in the first and the third texture
  EXPECT_EQ(makeSized(), Status::kThreadFailed);
  EXPECT_EQ(ThreadFaults::startCount(), 8 * 4);
  const std::string start = "[%s] \npthread_create error!", worker = "[%s]  Error threadID = %d!";
  EXPECT_EQ(log_.errors(), (Messages{start, worker, start, worker}));
  EXPECT_EQ(log_.lines()[1].text, "[FILTER_LOG]  Error threadID = 1!");
  EXPECT_EQ(log_.lines()[3].text, "[FILTER_LOG]  Error threadID = 3!");
  filterDestroy(&handle_);
}

}  // namespace
}  // namespace lumora::test
