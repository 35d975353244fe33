// A host that cancels its thread in a call: the call runs to its end with everything it started,
// and the thread ends behind it.
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

#include "resources/pack_directory.h"
#include "support/captured_log.h"
#include "support/mode_calls.h"

namespace lumora::test {
namespace {

struct CancelledHost {
  const std::function<std::uint32_t()>* call;
  std::uint32_t status = 12345;
  bool goesOn = false;
};

void* runCancelled(void* argument) {
  auto* const host = static_cast<CancelledHost*>(argument);
  pthread_cancel(pthread_self());  // waits for the next function that may end the thread
  host->status = (*host->call)();
  pthread_testcancel();
  host->goesOn = true;
  return nullptr;
}

// The status of a call on a thread that is cancelled when it enters.
std::uint32_t statusWhenCancelled(const std::function<std::uint32_t()>& call) {
  CancelledHost host{&call};
  pthread_t thread;
  EXPECT_EQ(pthread_create(&thread, nullptr, runCancelled, &host), 0);
  void* end = nullptr;
  EXPECT_EQ(pthread_join(thread, &end), 0);
  EXPECT_EQ(end, PTHREAD_CANCELED);
  EXPECT_FALSE(host.goesOn);
  return host.status;
}

TEST(Cancellation, WaitsUntilTheCallReturns) {
  constexpr PixelSize kPicture = {94, 90};
  const CapturedLog log;
  TestAllocator allocator;
  const TestHandle handle(allocator, handleLayout(TexturePath::kOtherSize, kPicture));
  for (ModeCall call : allModeCalls()) {
    SCOPED_TRACE(describe(call));
    call.strength = 5;
    const TestPicture picture(call.format, kPicture.width, kPicture.height), expected(picture);
    ASSERT_EQ(run(call, handle.get(), expected.image()), 0u);
    EXPECT_EQ(statusWhenCancelled([&] { return run(call, handle.get(), picture.image()); }), 0u);
    EXPECT_EQ(picture.difference(expected), kNone);
    EXPECT_EQ(allocator.liveBlocks(), 1) << "the handle alone";
  }
}

TEST(Cancellation, WaitsForInitialisationAndEnd) {
  const CapturedLog log;
  const PackDirectory directory;
  TestAllocator allocator;
  FilterHandle* handle = nullptr;
  EXPECT_EQ(statusWhenCancelled([&] {
              FilterInitParamApp param{};
              const std::string path = directory.path();
              param.width = param.height = 100;
              param.pcResourceDir = path.c_str();
              param.pstAllocator = allocator.record();
              return filterInit_APP(&handle, &param);
            }),
            0u);
  EXPECT_EQ(allocator.liveBlocks(), 1);
  EXPECT_EQ(statusWhenCancelled([&] { return filterDestroy(&handle); }), 0u);
  EXPECT_TRUE(allocator.balanced());
}

// A host that does not want to be cancelled is not.
TEST(Cancellation, StaysOffWhereItWasOff) {
  int before = 0;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before);
  filterDestroy(nullptr);
  int after = PTHREAD_CANCEL_ENABLE;
  pthread_setcancelstate(before, &after);
  EXPECT_EQ(after, PTHREAD_CANCEL_DISABLE);
}

}  // namespace
}  // namespace lumora::test
