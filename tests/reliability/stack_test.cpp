// No call takes more stack than the header says, on the host's thread or on a worker.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

#include "platform/stripe_runner.h"
#include "resources/pack_directory.h"
#include "support/captured_log.h"
#include "support/mode_calls.h"
#include "support/thread_faults.h"
#include "tuning_text/tuning_text.h"

namespace lumora::test {
namespace {

constexpr std::size_t kMostStack = 24 * 1024;

// Memory for the stack of one thread at a time, which shows how far down it was ever used.
class PaintedStack {
 public:
  PaintedStack() {
    std::fill_n(lowest_, kBytes, kPaint);
    run([] {});
    threadItself_ = bytesBelowTop();
  }

  int start(pthread_t* thread, void* (*enter)(void*), void* argument) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, lowest_, kBytes);
    const int error = startThread(thread, &attributes, enter, argument);
    pthread_attr_destroy(&attributes);
    return error;
  }
  void run(const std::function<void()>& work) {
    const auto enter = [](void* argument) -> void* {
      (*static_cast<const std::function<void()>*>(argument))();
      return nullptr;
    };
    pthread_t thread;
    ASSERT_EQ(start(&thread, enter, const_cast<std::function<void()>*>(&work)), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
  }
  // Without what the system puts there for any thread.
  std::size_t used() const { return bytesBelowTop() - threadItself_; }

 private:
  std::size_t bytesBelowTop() const {
    const auto isPaint = [](std::uint8_t v) { return v == kPaint; };
    return static_cast<std::size_t>(lowest_ + kBytes -
                                    std::find_if_not(lowest_, lowest_ + kBytes, isPaint));
  }

  static constexpr std::size_t kBytes = 256 * 1024;
  static constexpr std::uint8_t kPaint = 0x5C;
  const std::unique_ptr<std::uint8_t[]> memory_{new std::uint8_t[kBytes + 4096]};
  std::uint8_t* const lowest_ =
      memory_.get() + (4096 - reinterpret_cast<std::uintptr_t>(memory_.get()) % 4096);
  std::size_t threadItself_;
};

// The host's thread and, in turn, the workers of every step.
struct Stacks {
  PaintedStack host;
  PaintedStack workers[kStripeCount];
  int next = 0;
};
Stacks* stacks = nullptr;

int startOnPaint(pthread_t* thread, const pthread_attr_t*, void* (*enter)(void*), void* argument) {
  return stacks->workers[stacks->next++ % kStripeCount].start(thread, enter, argument);
}

class Stack : public testing::Test {
 protected:
  Stack() {
    stacks = &stacks_;
    replaceThreadStart(startOnPaint);
  }
  ~Stack() override {
    replaceThreadStart(nullptr);
    RecordProperty("host_thread_bytes", static_cast<int>(hostBytes_));
    RecordProperty("worker_bytes", static_cast<int>(workerBytes_));
  }

  void expectWithinBounds(const std::function<std::uint32_t()>& call) {
    stacks_.host.run([&] { EXPECT_EQ(call(), 0u); });
    hostBytes_ = stacks_.host.used();
    for (const PaintedStack& worker : stacks_.workers) {
      workerBytes_ = std::max(workerBytes_, worker.used());
    }
    ASSERT_LE(hostBytes_, kMostStack);
    ASSERT_LE(workerBytes_, kMostStack);
  }

  const CapturedLog log_;
  TestAllocator allocator_;
  Stacks stacks_;
  std::size_t hostBytes_ = 0;
  std::size_t workerBytes_ = 0;
};

TEST_F(Stack, OfEveryCallIsBounded) {
  constexpr PixelSize kPicture = {524, 362};  // large enough for the blurs of large pictures
  for (const TexturePath path : kTexturePaths) {
    const TestHandle handle(allocator_, handleLayout(path, kPicture));
    for (ModeCall call : allModeCalls()) {
      if (path != TexturePath::kPrepared && !usesTexturePlanes(call.mode)) continue;
      call.path = path;
      for (const int level : supportedLevels()) {
        for (call.variant = 0; call.variant < variantsOf(call.mode); ++call.variant) {
          for (call.strength = 5; call.strength <= 25; call.strength += 20) {
            const ForcedLevel forced(level);
            call.onCaller = !call.onCaller;
            SCOPED_TRACE(describe(call));
            const TestPicture picture(call.format, kPicture.width, kPicture.height);
            expectWithinBounds([&] { return run(call, handle.get(), picture.image()); });
          }
        }
      }
    }
  }
}

TEST_F(Stack, OfInitialisationsIsBounded) {
  const PackDirectory directory;
  const std::string path = directory.path();
  ResourceDirectory::write(directory.tuning(), tuningDocument([](const TuningBlock&) {
                             static const Knots kCurves[3] = {};
                             return &kCurves[0];
                           }));
  for (const std::uint32_t side : {0u, 100u, 1300u}) {
    FilterHandle* handle = nullptr;
    FilterInitParamApp param{};
    param.width = param.height = side;
    param.pcResourceDir = path.c_str();
    param.pstAllocator = allocator_.record();
    expectWithinBounds([&] { return filterInit_APP(&handle, &param); });
    expectWithinBounds([&] { return filterDestroy(&handle); });
  }
}

}  // namespace
}  // namespace lumora::test
