// Handles are independent: what hosts do with different ones at the same time, and on which thread
// they destroy them, changes nothing. Made for ThreadSanitizer; the bytes are compared everywhere.
#include <gtest/gtest.h>

#include <latch>
#include <string_view>
#include <thread>

#include "looks/texture/film_ageing.h"
#include "resources/pack_directory.h"
#include "support/captured_log.h"
#include "support/mode_calls.h"

namespace lumora::test {
namespace {

constexpr int kHosts = 3;

// A host of its own, with the library's default allocator, which all hosts may use at once.
class Host {
 public:
  explicit Host(const std::string& directory, std::uint32_t width) {
    FilterInitParamApp param{};
    param.width = width;
    param.height = width == 0 ? 0 : 170;
    param.pcResourceDir = directory.c_str();
    EXPECT_EQ(filterInit_APP(&handle_, &param), 0u);
  }

  // The results of every mode in a row.
  std::vector<std::uint8_t> results() const {
    setFilmSeed(4711);
    std::vector<std::uint8_t> all;
    for (ModeCall call : allModeCalls()) {
      call.strength = 9;
      call.onCaller = call.mode % 2 == 0;
      TestPicture picture(call.format, 230, 170);  // large enough for the film's marks
      EXPECT_EQ(run(call, handle_, picture.image()), 0u) << describe(call);
      all.insert(all.end(), picture.data(), picture.data() + picture.bytes());
    }
    setFilmSeed({});
    return all;
  }
  std::uint32_t destroy() { return filterDestroy(&handle_); }

 private:
  FilterHandle* handle_ = nullptr;
};

// Runs f(number) on several threads that start together.
template <class F>
void onThreads(F f) {
  std::latch start(kHosts);
  std::vector<std::thread> threads;
  for (int i = 0; i < kHosts; ++i) {
    threads.emplace_back([&start, f, i] {
      start.arrive_and_wait();
      f(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// A tuning document whose encoding is guessed, and remembered for all hosts.
constexpr std::string_view kTuning =
    "<?xml version='1.0' encoding='sjis'?>\n<Config><filterA><param1>0 16 32 48 64 80 96 112 128 "
    "144 "
    "160 176 192 208 224 240 255</param1></filterA></Config>\n                                     "
    "                                                                                    ";
static_assert(kTuning.size() >= 200);

class Threads : public testing::Test {
 protected:
  Threads() { ResourceDirectory::write(directory_.tuning(), kTuning); }
  const PackDirectory directory_;
  const CapturedLog log_;
};

TEST_F(Threads, HostsThatDoEverythingAtOnceGetTheSameBytes) {
  const std::string directory = directory_.path();
  const std::uint32_t widths[kHosts] = {230, 0, 120};
  std::vector<std::uint8_t> alone[kHosts];
  for (int i = 0; i < kHosts; ++i) {
    Host host(directory, widths[i]);
    alone[i] = host.results();
    host.destroy();
  }
  onThreads([&](int i) {
    Host host(directory, widths[i]);
    EXPECT_TRUE(host.results() == alone[i]) << "host " << i;
    host.destroy();
  });
}

TEST_F(Threads, AHandleIsDestroyedOnAnotherThread) {
  const std::string directory = directory_.path();
  std::vector<std::unique_ptr<Host>> hosts(kHosts);
  onThreads([&](int i) { hosts[i] = std::make_unique<Host>(directory, 94); });
  onThreads([&](int i) {
    EXPECT_EQ(hosts[(i + 1) % kHosts]->destroy(), 0u);
    EXPECT_EQ(hosts[(i + 1) % kHosts]->destroy(), 0u) << "nothing is left to destroy";
  });
}

}  // namespace
}  // namespace lumora::test
