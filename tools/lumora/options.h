// Options as data: the parser, the help texts and the suggestions for mistyped names all read the
// same tables.
#pragma once

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace lumora::tool {

struct Option {
  const char* name;      // long name, without "--"
  char letter;           // short name; 0 for none
  const char* argument;  // what the help calls the value; null for a switch
  std::string help;      // line breaks continue in the help's own column
  // Takes the value (empty for a switch). A UsageError gets the option's name put in front.
  std::function<void(const std::string& value)> accept;
};

struct OptionGroup {
  const char* title;
  std::vector<Option> options;
};

struct CommandLine {
  const char* usage;        // one line per form, without "Usage:"
  const char* description;  // whole lines
  std::vector<OptionGroup> groups;
  const char* examples;  // whole lines; may be null
};

// Reads the options and returns the operands, or nothing when help was asked for and given.
// argv[0] is the command's name.
std::optional<std::vector<std::string>> readCommandLine(const CommandLine& line, int argc,
                                                        char** argv);

// The option's lines of a help text.
void printOption(std::ostream& out, const Option& option);

// --force, of the commands that write one file or one set of files.
Option forceOption(bool& force);

// An accept function that sets a flag.
std::function<void(const std::string&)> raise(bool& flag);
// An accept function that keeps the value as it is.
std::function<void(const std::string&)> keep(std::string& value);

}  // namespace lumora::tool
