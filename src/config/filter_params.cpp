#include "config/filter_params.h"

#include <cstring>

#include "config/config_document.h"
#include "platform/log.h"

namespace lumora {
namespace {

// As the document has them, so that a curve is compared before its knots lose their high bits.
struct WideKnots {
  std::uint32_t at[kKnotCount];
};

// 0 for a curve that falls nowhere.
int firstFallingKnot(const WideKnots& knots) {
  for (int k = 1; k < kKnotCount; ++k) {
    if (knots.at[k] < knots.at[k - 1]) return k;
  }
  return 0;
}

BlockReport readCurve(const ConfigDocument& document, const TuningBlock& block, int param,
                      WideKnots& knots) {
  int count = 0;
  if (!document.readUInt32List(keyPath(block, param).text, knots.at, kKnotCount, &count)) {
    return {BlockState::kMissingKey, param, 0};
  }
  if (count < kKnotCount) return {BlockState::kTooFewNumbers, param, count};
  const int fall = firstFallingKnot(knots);
  if (fall > 0) return {BlockState::kFallingCurve, param, fall};
  return {BlockState::kInUse, param, 0};
}

// A knot is stored as its low eight bits.
ToneCurve storedForm(const WideKnots& wide) {
  Knots knots;
  for (int k = 0; k < kKnotCount; ++k) knots.at[k] = static_cast<std::uint8_t>(wide.at[k]);
  return ToneCurve::of(knots);
}

// One bad curve rejects them all, and then nothing is stored.
BlockReport readCurves(const ConfigDocument& document, const TuningBlock& block,
                       std::uint8_t* params) {
  ToneCurve curves[3];
  for (int i = 0; i < block.curveCount; ++i) {
    WideKnots knots;
    const BlockReport report = readCurve(document, block, i + 1, knots);
    if (report.state != BlockState::kInUse) return report;
    curves[i] = storedForm(knots);
  }
  std::memcpy(params + block.curveOffset(), curves, block.curveCount * sizeof(ToneCurve));
  return {BlockState::kInUse, 0, 0};
}

// A scalar is stored as its low eight bits, whether or not the block comes into use.
void readScalars(const ConfigDocument& document, const TuningBlock& block, std::uint8_t* scalars) {
  for (int i = 0; i < block.scalarCount; ++i) {
    const ScalarKey& key = block.scalars[i];
    const std::int32_t value = document.readInt(keyPath(block, key.param).text, key.defaultValue);
    scalars[i] = static_cast<std::uint8_t>(value);
  }
}

BlockReport readBlock(const ConfigDocument& document, const TuningBlock& block,
                      std::uint8_t* params) {
  std::uint8_t* const scalars = params + block.scalarOffset();
  readScalars(document, block, scalars);
  BlockReport report = readCurves(document, block, params);
  if (report.state == BlockState::kInUse && block.rule != nullptr) {
    const int value = block.rule->value(scalars);
    if (!block.rule->accepts(value)) report = {BlockState::kScalarOutOfRange, 0, value};
  }
  params[block.offset] = report.state == BlockState::kInUse ? 0 : 1;
  return report;
}

}  // namespace

Status readFilterParams(std::uint8_t* params, const char* fileName) {
  TuningReport ignored;
  return readFilterParams(params, fileName, ignored);
}

Status readFilterParams(std::uint8_t* params, const char* fileName, TuningReport& report) {
  std::memset(params, 1, sizeof(FilterParams));
  ConfigDocument document;
  if (!document.load(fileName)) {
    return fail(Status::kBadResource, "[%s] xml file read failed!\n");
  }
  report.document = document.fileOutcome();
  report.hasConfig = !document.findByPath("/Config").isEmpty();
  for (int i = 0; i < kTuningBlockCount; ++i) {
    report.blocks[i] = readBlock(document, kTuningBlocks[i], params);
  }
  return Status::kOk;
}

}  // namespace lumora
