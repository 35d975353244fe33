#include "image_library.h"

#include <string_view>

#include "formats.h"

namespace lumora::tool {
namespace {

bool severalThreads = false;
std::shared_mutex gate;
std::mutex turnstile;  // held by who waits to be alone, so that newcomers wait behind

// Everything that reads files is shut, whatever the build of the library has, and only the formats
// of the table are opened again. What stays shut reads no file under any name.
void shutOtherLoaders() {
  vips_block_untrusted_set(TRUE);
  vips_operation_block_set("VipsForeignLoad", TRUE);
  for (const Format& format : formats()) vips_operation_block_set(format.loaderClass, FALSE);
}

}  // namespace

void startImageLibrary(const char* program, bool verbose, int jobs) {
  if (vips_init(program) != 0) {
    throw PictureError("libvips does not start: " + takeImageComplaint());
  }
  shutOtherLoaders();
  // Every picture is used once; the cache would only hold on to it.
  vips_cache_set_max(0);
  severalThreads = jobs > 1;
  // Several pictures at a time keep the processors busy by themselves.
  if (severalThreads) vips_concurrency_set(1);
  if (verbose) return;
  const auto silence = [](const char*, GLogLevelFlags, const char*, void*) {};
  g_log_set_handler("VIPS", static_cast<GLogLevelFlags>(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_INFO),
                    silence, nullptr);
}

void leaveImageLibrary() { vips_thread_shutdown(); }

std::string takeImageComplaint() {
  std::string_view all = vips_error_buffer();
  // libheif asks what lies behind a file's end, which is no fault but leaves a complaint.
  const std::size_t second = all.find('\n') + 1;
  if (all.starts_with("source: bad seek") && second > 0 && second < all.size()) {
    all.remove_prefix(second);
  }
  std::string line(all.substr(0, all.find('\n')));
  vips_error_clear();
  return line;
}

bool hasSeveralImageThreads() { return severalThreads; }

std::shared_lock<std::shared_mutex> workBesideOthers() {
  const std::lock_guard wait(turnstile);
  return std::shared_lock(gate);
}

std::unique_lock<std::shared_mutex> workAlone() {
  const std::lock_guard wait(turnstile);
  std::unique_lock alone(gate);
  vips_error_clear();
  return alone;
}

}  // namespace lumora::tool
