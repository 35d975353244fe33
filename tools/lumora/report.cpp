#include "report.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

#include "errors.h"

namespace lumora::tool {
namespace {

using Json = nlohmann::ordered_json;

// Names need not be UTF-8, which JSON is: other bytes become U+FFFD.
std::string lineOf(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

double rounded(double value) { return std::round(value * 1000) / 1000; }

}  // namespace

Report::Report(const ReportSettings& settings, std::vector<std::string> looks)
    : settings_(settings), looks_(std::move(looks)) {
  if (settings.json || settings.dryRun) listing_ = std::make_unique<Output>("-");
}

std::string Report::jsonLine(const PlannedPicture& picture, const char* state,
                             const PictureResult& result) const {
  Json json{{"input", picture.input},
            {"output", picture.output},
            {"look", looks_.at(picture.look)},
            {"state", state}};
  if (result.width > 0) {
    json["width"] = result.width;
    json["height"] = result.height;
  }
  if (result.bytes > 0) {
    json["bytes"] = result.bytes;
    json["ms"] = {{"decode", rounded(result.decodeMs)},
                  {"filter", rounded(result.filterMs)},
                  {"encode", rounded(result.encodeMs)}};
  }
  json["warnings"] = Json::array();
  if (!result.warning.empty()) json["warnings"].push_back(result.warning);
  json["error"] = result.error.empty() ? Json(nullptr) : Json(result.error);
  return lineOf(json);
}

Outcome Report::describe(const PlannedPicture& picture, const PictureResult& result) const {
  Outcome outcome;
  outcome.failed = !result.error.empty();
  const char* const good = settings_.dryRun ? "planned" : "done";
  if (settings_.json) {
    outcome.listing = jsonLine(picture, outcome.failed ? "failed" : good, result);
  } else if (settings_.dryRun && !outcome.failed) {
    outcome.listing = text(picture.input, " -> ", picture.output, '\n');
  }
  if (outcome.failed) {
    outcome.report = text("lumora: ", result.error, '\n');
    return outcome;
  }
  if (!result.warning.empty()) {
    outcome.report = text("lumora: ", picture.input, ": ", result.warning, '\n');
  }
  if (settings_.verbose) {
    outcome.report += text("lumora: ", picture.input, " -> ", picture.output, '\n');
  }
  return outcome;
}

void Report::tell(const Outcome& outcome, Progress& progress) {
  ++total_;
  failed_ += outcome.failed ? 1 : 0;
  if (listing_) listing_->write(outcome.listing.data(), outcome.listing.size());
  progress.print(outcome.report);
}

void Report::tellSkipped(const std::vector<PlannedPicture>& skipped) {
  if (!settings_.json) return;
  for (const PlannedPicture& picture : skipped) {
    const std::string line = jsonLine(picture, "skipped", {});
    listing_->write(line.data(), line.size());
  }
}

void Report::tellSummary(std::size_t skipped, Progress& progress) {
  if (settings_.verbose && skipped > 0) {
    progress.print(text("lumora: ", skipped, " left out, their output exists\n"));
  }
  if (failed_ > 0 && total_ > 1) {
    progress.print(text("lumora: ", failed_, " of ", total_, " pictures failed\n"));
  }
  if (!listing_) return;
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start_;
  const std::string line =
      settings_.json
          ? lineOf({{"summary",
                     {{"pictures", total_ + skipped},
                      {settings_.dryRun ? "planned" : "done", total_ - failed_},
                      {"skipped", skipped},
                      {"failed", failed_},
                      {"seconds", rounded(seconds.count())}}}})
          : text(total_ - failed_, " to do, ", skipped, " left out, ", failed_, " impossible\n");
  listing_->finish(line.data(), line.size());
}

int Report::exitCode(std::size_t skipped) const {
  if (failed_ == 0) return kExitDone;
  return failed_ == total_ && total_ > 1 && skipped == 0 ? kExitNoPicture : kExitPictureFailed;
}

}  // namespace lumora::tool
