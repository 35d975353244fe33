#include "platform/stripe_runner.h"

#include <pthread.h>

#include <algorithm>

#include "platform/log.h"

namespace lumora {
namespace {

Stripes splitUnits(std::int64_t units, std::int64_t unitSize) {
  Stripes stripes;
  std::int64_t first = 0;
  for (int k = 0; k < kStripeCount; ++k) {
    const std::int64_t count = (units / kStripeCount + (k < units % kStripeCount)) * unitSize;
    stripes[k] = {first, count};
    first += count;
  }
  return stripes;
}

}  // namespace

Stripes splitRows(std::int64_t rows) { return splitUnits(rows, 1); }

Stripes splitRowPairs(std::int64_t rows) { return splitUnits(rows / 2, 2); }

Stripes splitBytes(std::int64_t bytes) {
  const std::int64_t quarter = bytes / kStripeCount;
  return {{{0, quarter},
           {quarter, quarter},
           {2 * quarter, quarter},
           {3 * quarter, bytes - 3 * quarter}}};
}

Stripes splitRoundedUp(std::int64_t rows) {
  const std::int64_t share = (rows + kStripeCount - 1) / kStripeCount;
  Stripes stripes;
  for (int k = 0; k < kStripeCount; ++k) {
    const std::int64_t first = std::min(k * share, rows);
    const std::int64_t end = k == kStripeCount - 1 ? rows : std::min(first + share, rows);
    stripes[k] = {first, end - first};
  }
  return stripes;
}

Status StripeRunner::runWorkers(void* (*enter)(void*),
                                const std::array<void*, kStripeCount>& arguments,
                                [[maybe_unused]] const char* failureFormat) {
#if defined(__wasm__)
  for (void* const argument : arguments) enter(argument);
  return Status::kOk;
#else
  std::array<pthread_t, kStripeCount> threads;
  std::array<bool, kStripeCount> started;
  for (int k = 0; k < kStripeCount; ++k) {
    started[k] = pthread_create(&threads[k], nullptr, enter, arguments[k]) == 0;
  }

  const bool allStarted = std::all_of(started.begin(), started.end(), [](bool s) { return s; });
  if (!allStarted) logError(failureFormat);
  for (int k = 0; k < kStripeCount; ++k) {
    if (started[k]) {
      pthread_join(threads[k], nullptr);
    } else {
      logError("[%s]  Error threadID = %d!", k);
    }
  }
  return allStarted ? Status::kOk : Status::kThreadFailed;
#endif
}

}  // namespace lumora
