// The exported functions.
#include <pthread.h>

#include "api/init_checks.h"
#include "api/record_layout.h"
#include "lumora/filters.h"
#include "pipeline/frame_entry.h"
#include "platform/log.h"
#include "resources/filter_init.h"
#include "resources/handle_layout.h"

namespace lumora {
namespace {

constexpr std::uint32_t kVersionNumber = 81010;

void logVersion() {
  __android_log_print(kLogInfo, kLogTag, "[%s] Filter Version: __%s__%s__%s__ \n", kLogName,
                      "LumoraVideo-3.2.81.10", "Mar 13 2017", "gcc");
}

Status runInitialisation(FilterHandle** handle, const InitRequest& request) {
  if (request.width == 0) {
    return FilterInitUnsized(request.mode, request.direction, handle, *request.allocator,
                             request.resourceDir);
  }
  return FilterInitSized(request.mode, request.width, request.height, request.direction, handle,
                         *request.allocator, request.resourceDir);
}

std::uint32_t initialise(FilterHandle** handle, const InitRequest& request) {
  Status status = checkInitRequest(request);
  if (status == Status::kOk) {
    status = runInitialisation(handle, request);
    if (status != Status::kOk || *handle == nullptr) logError("[%s] initialize failed!\n");
  }
  return static_cast<std::uint32_t>(status);
}

// A cancelled thread would leave its workers at the host's picture and its blocks to nobody, so
// cancellation waits until the call returns. Android's threads cannot be cancelled.
template <class Work>
std::uint32_t uncancelled(Work work) {
#if defined(__ANDROID__)
  return work();
#else
  int before = 0;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before);
  const std::uint32_t status = work();
  pthread_setcancelstate(before, nullptr);
  return status;
#endif
}

// Null addresses are refused before the record is looked at.
template <class Param>
bool checkArguments(FilterHandle** handle, const Param* param) {
  if (handle == nullptr) {
    logError("[%s] phHandle is NULL!\n");
  } else if (param == nullptr) {
    logError("[%s] pstParamInit is NULL!\n");
  }
  return handle != nullptr && param != nullptr;
}

}  // namespace
}  // namespace lumora

using namespace lumora;

std::uint32_t getFilterVersion(void) { return kVersionNumber; }

std::uint32_t filterInit(FilterHandle** phHandle, FilterInitParam* pstParamInit) {
  static FilterAllocator defaultAllocator = makeDefaultAllocator();
  return uncancelled([=]() -> std::uint32_t {
    logVersion();
    if (!checkArguments(phHandle, pstParamInit)) return LUMORA_BAD_ARGUMENT;
    return initialise(
        phHandle, {pstParamInit->eMode, pstParamInit->eDirection, pstParamInit->width,
                   pstParamInit->height, pstParamInit->pstAllocator, defaultAllocator, nullptr});
  });
}

std::uint32_t filterInit_APP(FilterHandle** phHandle, FilterInitParamApp* pstParamInit) {
  static FilterAllocator defaultAllocator = makeDefaultAllocator();
  return uncancelled([=]() -> std::uint32_t {
    logVersion();
    if (!checkArguments(phHandle, pstParamInit)) return LUMORA_BAD_ARGUMENT;
    return initialise(phHandle, {pstParamInit->eMode, pstParamInit->eDirection, pstParamInit->width,
                                 pstParamInit->height, pstParamInit->pstAllocator, defaultAllocator,
                                 pstParamInit->pcResourceDir});
  });
}

std::uint32_t filterDestroy(FilterHandle** phHandle) {
  return uncancelled([=]() -> std::uint32_t {
    if (phHandle != nullptr && *phHandle != nullptr) {
      // The allocator is part of the block that it takes back.
      const FilterAllocator allocator = FilterHandleView(*phHandle).allocator();
      allocator.release(*phHandle, kAllocationTag, 0);
      *phHandle = nullptr;
    }
    return LUMORA_OK;
  });
}

std::uint32_t filterProcess(FilterHandle* handle, const FilterImage* pstImage,
                            FilterProcessParam* pstParam) {
  return uncancelled([=] {
    return static_cast<std::uint32_t>(processFrame(handle, pstImage, pstParam, nullptr));
  });
}

std::uint32_t filterProcess_for_album(FilterHandle* handle, const FilterImage* pstImage,
                                      FilterAlbumParam* pstParam) {
  FilterProcessParam* const process = pstParam != nullptr ? &pstParam->stProcess : nullptr;
  return uncancelled([=] {
    return static_cast<std::uint32_t>(processFrame(handle, pstImage, process, pstParam));
  });
}
