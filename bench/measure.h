// Timing of an operation against a reference pass of the same process.
#pragma once

#include <cstdint>
#include <functional>

namespace lumora::bench {

struct Figures {
  std::uint32_t status;  // of the first call that failed, else 0; the rest is then meaningless
  double seconds;        // median of the operation
  double bestSeconds;
  double referenceSeconds;  // median of the reference
  double ratio;             // median over the rounds of operation / reference
  double leastRatio;        // of one round
  double mostRatio;
  double bestRatio;  // fastest operation / fastest reference
};

// What happens in every round, in this order.
struct Round {
  std::function<void()> restore;             // untimed; may be empty
  std::function<void()> reference;           // timed
  std::function<std::uint32_t()> operation;  // timed; returns a status
};

// Rounds per measurement at least; short ones get more.
void setLeastRounds(int rounds);
int leastRounds();

// Times by the calling thread's processor time, which a busy machine distorts less. It knows
// nothing of other threads.
void useProcessorTime();
bool usesProcessorTime();

// Alternates reference and operation, after one untimed round that warms up.
Figures measure(const Round& round);

}  // namespace lumora::bench
