// The initialisation records and the life of a handle, up to the resource files.
#include <gtest/gtest.h>

#include <functional>

#include "support/captured_log.h"
#include "support/test_handle.h"

namespace lumora::test {
namespace {

using Texts = std::vector<std::string>;

TEST(Version, IsTheNumberHostsCheck) { EXPECT_EQ(getFilterVersion(), 81010u); }

// An initialisation as a host would put it together, through either function.
struct HostInit {
  FilterHandle* handle = nullptr;
  FilterHandle** variable = &handle;
  FilterInitParamApp app{};
  bool nullParam = false;

  HostInit() { app.pcResourceDir = "/no/such/directory/"; }

  std::uint32_t run(bool throughApp) {
    if (throughApp) return filterInit_APP(variable, nullParam ? nullptr : &app);
    FilterInitParam plain{app.eMode, app.eDirection, {}, app.width, app.height, app.pstAllocator};
    const std::uint32_t status = filterInit(variable, nullParam ? nullptr : &plain);
    app.pstAllocator = plain.pstAllocator;
    return status;
  }
};

struct Fault {
  const char* message;
  std::function<void(HostInit&)> apply;
};

TEST(InitialisationChecks, LogTheVersionAndTheFirstOfTwoFaults) {
  static FilterAllocator noRelease{TestAllocator().record()->allocate, nullptr};
  const Fault faults[] = {
      {"[%s] phHandle is NULL!\n", [](HostInit& i) { i.variable = nullptr; }},
      {"[%s] pstParamInit is NULL!\n", [](HostInit& i) { i.nullParam = true; }},
      {"[%s] \nmalloc or free function is NULL!",
       [](HostInit& i) { i.app.pstAllocator = &noRelease; }},
      {"[%s] direction is not correct!\n", [](HostInit& i) { i.app.eDirection = 4; }},
      {"[%s] eMode is not correct!\n", [](HostInit& i) { i.app.eMode = 9; }},
      {"[%s] width or height is not correct!\n", [](HostInit& i) { i.app.width = 87; }},
  };
  for (const Fault& first : faults) {
    for (const Fault* second = &first; second != std::end(faults); ++second) {
      for (const bool throughApp : {false, true}) {
        SCOPED_TRACE(testing::Message() << first.message << " before " << second->message);
        HostInit init;
        second->apply(init);
        first.apply(init);
        const CapturedLog log;
        EXPECT_EQ(init.run(throughApp), 256u);
        EXPECT_EQ(log.errors(), Texts{first.message});
        const CapturedLog::Line version = log.lines().at(0);
        EXPECT_EQ(version.priority, 4);
        EXPECT_EQ(version.tag, "filter");
        EXPECT_EQ(version.text,
                  "[FILTER_LOG] Filter Version: __LumoraVideo-3.2.81.10__Mar 13 2017__gcc__ \n");
        EXPECT_EQ(init.handle, nullptr);
      }
    }
  }
}

TEST(InitialisationChecks, KnowTheModesAndSizesOfHandles) {
  // Accepted settings get as far as the missing pack.
  const auto statusOf = [](std::uint32_t mode, std::uint32_t width, std::uint32_t height) {
    HostInit init;
    init.app.eMode = mode;
    init.app.width = width;
    init.app.height = height;
    return init.run(true);
  };
  for (const std::uint32_t mode : {1u, 2u, 3u, 4u, 9u, 10u, 11u, 12u}) {
    EXPECT_EQ(statusOf(mode, 0, 0), 256u) << mode;
  }
  for (const std::uint32_t mode :
       {0u, 5u, 6u, 7u, 8u, 13u, 14u, 15u, 16u, 17u, 20u, 256u, 0xFFFFFFFFu}) {
    EXPECT_EQ(statusOf(mode, 0, 0), 1024u) << mode;
  }
  EXPECT_EQ(statusOf(0, 88, 20000), 1024u);
  const std::pair<std::uint32_t, std::uint32_t> refused[] = {{0, 100}, {100, 0},    {87, 88},
                                                             {88, 87}, {20001, 88}, {88, 20001}};
  for (const auto& [width, height] : refused) EXPECT_EQ(statusOf(0, width, height), 256u);
}

// Each function hands out a pair of its own, always the same one, even when a later check fails.
TEST(Initialisation, WritesTheDefaultAllocatorBack) {
  FilterAllocator* pairs[2] = {};
  for (const bool throughApp : {false, true}) {
    for (int round = 0; round < 2; ++round) {
      HostInit init;
      init.app.eDirection = 7;
      EXPECT_EQ(init.run(throughApp), 256u);
      ASSERT_NE(init.app.pstAllocator, nullptr);
      EXPECT_TRUE(round == 0 || init.app.pstAllocator == pairs[throughApp]);
      pairs[throughApp] = init.app.pstAllocator;
    }
    void* const block = pairs[throughApp]->allocate(100, "Lumora_Filters", 0);
    ASSERT_NE(block, nullptr);
    pairs[throughApp]->release(block, "Lumora_Filters", 0);
  }
  EXPECT_NE(pairs[0], pairs[1]);
}

TEST(Destruction, GivesTheBlockBackThroughItsOwnAllocator) {
  TestAllocator allocator;
  TestHandle handle(allocator, {});
  EXPECT_EQ(allocator.liveBlocks(), 1);
  EXPECT_EQ(filterDestroy(&handle.variable()), 0u);
  EXPECT_EQ(handle.get(), nullptr);
  EXPECT_TRUE(allocator.balanced());
  EXPECT_EQ(filterDestroy(&handle.variable()), 0u);
  EXPECT_EQ(filterDestroy(nullptr), 0u);
  EXPECT_TRUE(allocator.balanced());
}

}  // namespace
}  // namespace lumora::test
