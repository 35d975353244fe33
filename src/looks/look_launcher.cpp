#include "looks/look.h"
#include "pipeline/stripe_runner.h"

namespace lumora {
namespace {

LookJob jobForRows(const Look& look, const Picture& picture, const LookInputs& inputs,
                   Stripe stripe) {
  const auto firstRow = static_cast<std::ptrdiff_t>(stripe.first);
  LookJob job{};
  job.widthPixels = picture.widthPixels;
  job.rows = static_cast<int>(stripe.count);
  job.strideBytes = picture.strideBytes;
  job.pixels = picture.row(firstRow);
  if (!picture.isRgba()) job.chroma = picture.chroma() + firstRow / 2 * picture.strideBytes;
  if (inputs.texture != nullptr) {
    job.texture =
        inputs.texture + firstRow * picture.widthPixels * std::ptrdiff_t{look.textureBytesPerPixel};
  }
  job.block = inputs.block;
  job.ratio = inputs.ratio;
  return job;
}

struct StripeJob {
  RunForm run;
  LookJob job;
};

}  // namespace

Status runLook(const Look& look, const Picture& picture, const LookInputs& inputs,
               Threads threads) {
  const RunForm run = look.runForm(picture.format);
  if (threads == Threads::kCaller) {
    run(jobForRows(look, picture, inputs, {0, picture.heightRows}));
    return Status::kOk;
  }
  const Stripes stripes =
      picture.isRgba() ? splitRows(picture.heightRows) : splitRowPairs(picture.heightRows);
  std::array<StripeJob, kStripeCount> jobs;
  for (int k = 0; k < kStripeCount; ++k) {
    jobs[k] = {run, jobForRows(look, picture, inputs, stripes[k])};
  }
  return StripeRunner::run<StripeJob>([](const StripeJob& stripe) { stripe.run(stripe.job); },
                                      jobs);
}

}  // namespace lumora
