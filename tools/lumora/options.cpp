#include "options.h"

#include <getopt.h>

#include <algorithm>
#include <iostream>
#include <sstream>

#include "errors.h"
#include "words.h"

namespace lumora::tool {
namespace {

constexpr int kFirstLongCode = 256;  // above every letter
constexpr std::size_t kHelpColumn = 28;

std::vector<Option> allOptions(const CommandLine& line, bool& helpAsked) {
  std::vector<Option> all;
  for (const OptionGroup& group : line.groups) {
    all.insert(all.end(), group.options.begin(), group.options.end());
  }
  all.push_back({"help", 'h', nullptr, "", raise(helpAsked)});
  return all;
}

struct GetoptTables {
  std::string letters = ":";  // a missing value is told apart from an unknown option
  std::vector<option> names;
};

GetoptTables getoptTables(const std::vector<Option>& options) {
  GetoptTables tables;
  for (std::size_t i = 0; i < options.size(); ++i) {
    const int argument = options[i].argument ? required_argument : no_argument;
    tables.names.push_back(
        {options[i].name, argument, nullptr, kFirstLongCode + static_cast<int>(i)});
    if (options[i].letter == 0) continue;
    tables.letters += options[i].letter;
    if (options[i].argument) tables.letters += ':';
  }
  tables.names.push_back({nullptr, 0, nullptr, 0});
  return tables;
}

[[noreturn]] void refuseUnknown(const std::vector<Option>& options, const std::string& typed) {
  const std::string name = typed.substr(0, typed.find('='));
  std::vector<std::string> known;
  for (const Option& option : options) known.push_back(std::string("--") + option.name);
  const bool ambiguous =
      name.size() > 2 && std::count_if(known.begin(), known.end(), [&](const std::string& k) {
                           return k.starts_with(name);
                         }) > 1;
  if (ambiguous) throw UsageError(text("option '", name, "' could be several; write it in full"));
  throw UsageError(text("unknown option '", name, "'", didYouMean(name, known)));
}

const Option& optionOf(const std::vector<Option>& options, int code) {
  if (code >= kFirstLongCode) return options[static_cast<std::size_t>(code - kFirstLongCode)];
  return *std::find_if(options.begin(), options.end(),
                       [code](const Option& option) { return option.letter == code; });
}

void acceptValue(const Option& option, const char* value) {
  try {
    option.accept(value ? value : "");
  } catch (const UsageError& error) {
    throw UsageError(text("--", option.name, ": ", error.what()));
  }
}

void printHelp(std::ostream& out, const CommandLine& line) {
  std::istringstream forms(line.usage);
  const char* lead = "Usage: ";
  for (std::string form; std::getline(forms, form); lead = "       ") out << lead << form << '\n';
  out << '\n' << line.description;
  for (const OptionGroup& group : line.groups) {
    out << '\n' << group.title << ":\n";
    for (const Option& option : group.options) printOption(out, option);
  }
  if (line.groups.empty()) out << '\n';
  printOption(out, {"help", 'h', nullptr, "show this text", {}});
  if (line.examples) out << "\nExamples:\n" << line.examples;
}

}  // namespace

void printOption(std::ostream& out, const Option& option) {
  std::string left = option.letter ? text("  -", option.letter, ", --") : "      --";
  left += option.name;
  if (option.argument) left += text(' ', option.argument);
  if (left.size() + 2 > kHelpColumn) {
    out << left << '\n';
    left.clear();
  }
  std::istringstream lines(option.help);
  for (std::string help; std::getline(lines, help); left.clear()) {
    out << left << std::string(kHelpColumn - left.size(), ' ') << help << '\n';
  }
}

std::optional<std::vector<std::string>> readCommandLine(const CommandLine& line, int argc,
                                                        char** argv) {
  bool helpAsked = false;
  const std::vector<Option> options = allOptions(line, helpAsked);
  const GetoptTables tables = getoptTables(options);

  opterr = 0;
  optind = 1;
  int code;
  while ((code = getopt_long(argc, argv, tables.letters.c_str(), tables.names.data(), nullptr)) !=
         -1) {
    if (code == '?') {
      const bool isLetter = optopt > 0 && optopt < kFirstLongCode;
      if (isLetter) throw UsageError(text("unknown option '-", static_cast<char>(optopt), "'"));
      if (optopt >= kFirstLongCode) {
        throw UsageError(text("option '--", optionOf(options, optopt).name, "' takes no value"));
      }
      refuseUnknown(options, argv[optind - 1]);
    }
    if (code == ':') {
      const Option& option = optionOf(options, optopt);
      throw UsageError(text("option '--", option.name, "' needs a value: ", option.argument));
    }
    acceptValue(optionOf(options, code), optarg);
    if (helpAsked) {
      printHelp(std::cout, line);
      return std::nullopt;
    }
  }
  return std::vector<std::string>(argv + optind, argv + argc);
}

Option forceOption(bool& force) {
  return {"force", 0, nullptr, "replace what exists under the output's name", raise(force)};
}

std::function<void(const std::string&)> raise(bool& flag) {
  return [&flag](const std::string&) { flag = true; };
}

std::function<void(const std::string&)> keep(std::string& value) {
  return [&value](const std::string& given) { value = given; };
}

}  // namespace lumora::tool
