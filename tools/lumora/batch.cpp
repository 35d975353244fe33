#include "batch.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>

#include "image_library.h"

namespace lumora::tool {
namespace {

class Batch {
 public:
  Batch(std::size_t jobs, Progress& progress, const Teller& tell)
      : outcomes_(jobs), progress_(progress), tell_(tell) {}

  // Takes jobs until none is left.
  void work(const Worker& worker) {
    try {
      for (std::size_t job = next_++; job < outcomes_.size(); job = next_++) {
        accept(job, worker(job));
      }
    } catch (...) {
      const std::lock_guard lock(mutex_);
      if (!error_) error_ = std::current_exception();
      next_ = outcomes_.size();
    }
  }

  void rethrowError() const {
    if (error_) std::rethrow_exception(error_);
  }

 private:
  void accept(std::size_t job, Outcome outcome) {
    const std::lock_guard lock(mutex_);
    outcomes_[job] = std::move(outcome);
    progress_.countOne();
    for (; reported_ < outcomes_.size() && outcomes_[reported_]; ++reported_) {
      tell_(*outcomes_[reported_]);
      *outcomes_[reported_] = {};
    }
  }

  std::atomic<std::size_t> next_{0};
  std::mutex mutex_;
  std::vector<std::optional<Outcome>> outcomes_;  // of the jobs that are done
  std::size_t reported_ = 0;                      // the jobs before this one
  std::exception_ptr error_;
  Progress& progress_;
  const Teller& tell_;
};

}  // namespace

void runBatch(std::size_t jobs, const std::vector<Worker>& workers, Progress& progress,
              const Teller& tell) {
  Batch batch(jobs, progress, tell);
  {
    std::vector<std::jthread> threads;
    try {
      for (std::size_t i = 1; i < workers.size(); ++i) {
        threads.emplace_back([&batch, &worker = workers[i]] {
          batch.work(worker);
          leaveImageLibrary();
        });
      }
    } catch (const std::system_error&) {
      // No more threads are to be had; those that there are do the work.
    }
    batch.work(workers.front());
  }
  batch.rethrowError();
}

}  // namespace lumora::tool
