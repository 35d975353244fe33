#include "progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string_view>

#include "errors.h"

namespace lumora::tool {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr Seconds kBetweenDrawings{0.1};
constexpr const char* kEraseLine = "\r\033[K";

bool isTerminal() {
  const char* kind = std::getenv("TERM");
  return ::isatty(STDERR_FILENO) == 1 && kind != nullptr && std::string_view(kind) != "dumb";
}

std::size_t terminalColumns() {
  winsize size{};
  const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : 80;
}

// "45 s", "3:05 min" or "2:10 h"
std::string duration(double seconds) {
  const auto whole = static_cast<unsigned long>(seconds + 0.5);
  if (whole < 60) return text(whole, " s");
  const unsigned long unit = whole < 3600 ? 1 : 60;
  const unsigned long minor = whole / unit % 60;
  return text(whole / unit / 60, minor < 10 ? ":0" : ":", minor, unit == 1 ? " min" : " h");
}

std::string figures(std::size_t done, std::size_t total, double seconds) {
  std::ostringstream line;
  line << ' ' << done << '/' << total;
  if (done == 0 || seconds <= 0) return line.str();
  const double perSecond = static_cast<double>(done) / seconds;
  line << "  " << std::fixed << std::setprecision(1) << perSecond << " pictures/s  ";
  if (done == total) {
    line << "in " << duration(seconds);
  } else {
    line << duration(static_cast<double>(total - done) / perSecond) << " left";
  }
  return line.str();
}

std::string bar(std::size_t done, std::size_t total, std::size_t columns) {
  const std::size_t inside = std::clamp<std::size_t>(columns, 12, 42) - 2;
  const std::size_t filled = inside * done / total;
  return text('[', std::string(filled, '='), std::string(inside - filled, ' '), ']');
}

}  // namespace

Progress::Progress(std::size_t total, bool wanted)
    : total_(total), shown_(wanted && total > 0 && isTerminal()) {
  if (shown_) draw();
}

Progress::~Progress() {
  if (!shown_) return;
  draw();
  std::cerr << '\n';
}

void Progress::countOne() {
  ++done_;
  if (shown_ && Clock::now() - lastDrawn_ >= kBetweenDrawings) draw();
}

void Progress::print(const std::string& lines) {
  if (lines.empty()) return;
  std::cerr << (shown_ ? kEraseLine + lines : lines);
  if (shown_) draw();
}

void Progress::draw() {
  lastDrawn_ = Clock::now();
  const std::string right = figures(done_, total_, Seconds(lastDrawn_ - start_).count());
  const std::size_t columns = terminalColumns() - 1;
  const std::string left =
      columns > right.size() + 12 ? bar(done_, total_, columns - right.size()) : std::string();
  std::cerr << text(kEraseLine, left, right.substr(0, columns));
}

}  // namespace lumora::tool
