#include "tuning_text/tuning_text.h"

namespace lumora {
namespace {

std::string element(const std::string& name, const std::string& content) {
  return "    <" + name + ">" + content + "</" + name + ">\n";
}

std::string paramName(int param) { return "param" + std::to_string(param); }

std::string curveText(const Knots& knots) {
  std::string text;
  for (const std::uint8_t knot : knots.at) {
    if (!text.empty()) text += ' ';
    text += std::to_string(knot);
  }
  return text;
}

std::string keysOf(const TuningBlock& block, const Knots* curves) {
  std::string keys;
  for (int i = 0; i < block.curveCount; ++i) {
    keys += element(paramName(i + 1), curveText(curves[i]));
  }
  for (int i = 0; i < block.scalarCount; ++i) {
    const ScalarKey& scalar = block.scalars[i];
    keys += element(paramName(scalar.param), std::to_string(scalar.defaultValue));
  }
  return keys;
}

std::string groupOf(const TuningBlock& block, BuiltInCurvesOf builtInCurvesOf) {
  const std::string name = std::string("filter") + block.letter;
  const std::string look = std::string("  <!-- ") + capitals(modeOf(block).name).text;
  if (block.rampsStoredCurvesOnly) {
    return look + " (" + name +
           ") is left out: above strength 16 this look ramps stored curves only,\n"
           "       so its own curves, once stored here, would give other pictures. -->\n";
  }
  const Knots* const curves = block.curveCount > 0 ? builtInCurvesOf(block) : nullptr;
  return look + " -->\n  <" + name + ">\n" + keysOf(block, curves) + "  </" + name + ">\n";
}

std::string keyText(const TuningBlock& block, const BlockReport& report) {
  return keyPath(block, report.param).text;
}

std::string missingKey(const TuningReport& report, const std::string& key) {
  if (!report.hasConfig) {
    return "missing key " + key +
           ": there is no element /Config (it needs an XML declaration before it)";
  }
  return "missing key " + key;
}

std::string fallingCurve(const std::string& key, int knot) {
  return "falling curve: knot " + std::to_string(knot) + " of " + key + " is below knot " +
         std::to_string(knot - 1);
}

std::string scalarOutOfRange(const TuningBlock& block, int value) {
  return std::string("scalar out of range: /Config/filter") + block.letter + " has " +
         block.rule->valueText + " = " + std::to_string(value) + ", not " +
         block.rule->acceptedText;
}

}  // namespace

std::string tuningDocument(BuiltInCurvesOf builtInCurvesOf) {
  std::string document =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!-- Tuning of the looks. A curve is the outputs (0..255) at the inputs 0, 16, 32, ..., "
      "256;\n"
      "     it must not fall. A look whose group is missing or wrong keeps its built-in values. "
      "-->\n"
      "<Config>\n";
  for (const TuningBlock& block : kTuningBlocks) document += groupOf(block, builtInCurvesOf);
  return document + "</Config>\n";
}

std::string describeDocument(const TuningReport& report) {
  const XmlOutcome& outcome = report.document;
  std::string text = keepsDocument(outcome.status) ? "read" : "discarded";
  if (outcome.status == XmlStatus::kNoError) return text;
  text += std::string(": ") + describeStatus(outcome.status);
  if (outcome.line > 0) {
    text +=
        " at line " + std::to_string(outcome.line) + ", column " + std::to_string(outcome.column);
  }
  return text;
}

std::string describeBlock(const TuningReport& report, int block) {
  const TuningBlock& description = kTuningBlocks[block];
  const BlockReport& result = report.blocks[block];
  if (result.state == BlockState::kInUse) return "in use";
  if (!keepsDocument(report.document.status)) return "document " + describeDocument(report);
  const std::string key = keyText(description, result);
  switch (result.state) {
    case BlockState::kMissingKey: return missingKey(report, key);
    case BlockState::kTooFewNumbers:
      return "too few numbers: " + key + " holds " + std::to_string(result.number) + " of " +
             std::to_string(kKnotCount);
    case BlockState::kFallingCurve: return fallingCurve(key, result.number);
    default: return scalarOutOfRange(description, result.number);
  }
}

const char* describeStatus(XmlStatus status) {
  switch (status) {
    case XmlStatus::kNoError: return "no error";
    case XmlStatus::kMissingEndTag: return "an end tag is missing";
    case XmlStatus::kNoElement: return "there is no element";
    case XmlStatus::kEmptyFile: return "the file has less than 200 bytes or cannot be read";
    case XmlStatus::kMissingTagName: return "a tag has no name";
    case XmlStatus::kMissingEndTagName: return "an end tag has no name";
    case XmlStatus::kUnmatchedEndTag: return "an end tag matches no open element";
    case XmlStatus::kUnclosedSection: return "a comment or other section is not closed";
    case XmlStatus::kUnexpectedToken: return "unexpected characters inside a tag";
    case XmlStatus::kNoText: return "memory is exhausted";
    case XmlStatus::kFileNotFound: return "the file cannot be opened";
    case XmlStatus::kUnknownEntity: return "an unknown or unfinished character entity";
    case XmlStatus::kCharacterTooLarge: return "a character code above 255";
  }
  return "an unknown status";
}

}  // namespace lumora
