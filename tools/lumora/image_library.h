// libvips as a whole: its start, its threads and its complaints.
#pragma once

#include <mutex>
#include <shared_mutex>
#include <string>
#include <vips/vips8>

#include "errors.h"

namespace lumora::tool {

// Starts libvips for `jobs` threads of ours. Its warnings are shown only when verbose.
void startImageLibrary(const char* program, bool verbose, int jobs = 1);
// At the end of every thread that has used it, but the first.
void leaveImageLibrary();

// The first line of libvips's complaints about a fault; the others repeat it from further out.
std::string takeImageComplaint();

// Complaints of all threads go into one buffer. A step runs beside those of other threads, or alone
// with the buffer empty.
bool hasSeveralImageThreads();
std::shared_lock<std::shared_mutex> workBesideOthers();
std::unique_lock<std::shared_mutex> workAlone();

// Does a step that uses libvips; if it fails, a PictureError puts `what` in front of the reason. To
// learn the reason among several threads the step is done again, alone.
template <class Step>
auto explaining(const std::string& what, Step step) {
  if (hasSeveralImageThreads()) {
    try {
      const auto lock = workBesideOthers();
      return step();
    } catch (const vips::VError&) {
    }
  }
  const auto lock = workAlone();
  try {
    return step();
  } catch (const vips::VError&) {
    throw PictureError(text(what, ": ", takeImageComplaint()));
  }
}

}  // namespace lumora::tool
