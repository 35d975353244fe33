// lumora: the picture filters on the command line.
#include <array>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "commands.h"
#include "decoding_process.h"
#include "errors.h"
#include "lumora/filters.h"
#include "standard_descriptors.h"
#include "temporary_files.h"
#include "words.h"

namespace lumora::tool {
namespace {

struct Command {
  const char* name;
  const char* summary;
  int (*run)(int argc, char** argv);
};

constexpr std::array kCommands = {
    Command{"apply", "give photographs a look", applyCommand},
    Command{"bench", "time every look on this machine", benchCommand},
    Command{"frame", "give raw camera frames a look, from a file or a pipe", frameCommand},
    Command{"gallery", "draw one sheet of a photograph under all looks", galleryCommand},
    Command{"looks", "list the looks and what they do", looksCommand},
    Command{"lut", "write looks as tables of colours for other programs", lutCommand},
    Command{"pack", "make, check and show texture packs", packCommand},
    Command{"sample", "draw the sample scene", sampleCommand},
    Command{"tune", "write and check tuning documents", tuneCommand},
};

void printOverview(std::ostream& out) {
  out << "Usage: lumora COMMAND [options]\n\n"
         "Picture filters for photographs and camera frames.\n\nCommands:\n";
  for (const Command& command : kCommands) {
    out << "  " << command.name << std::string(10 - std::strlen(command.name), ' ')
        << command.summary << '\n';
  }
  out << "\n'lumora COMMAND --help' tells more; 'lumora --version' names the version.\n\n"
         "Examples:\n"
         "  lumora apply --look heibai photo.jpg grey.jpg\n"
         "  lumora frame --look moran --format nv21 --size 1280x720 < in.nv21 > out.nv21\n\n"
         "Exit codes: 0 all done, 1 a picture failed (the others are done), 2 the command line is\n"
         "wrong, 3 the texture pack or tuning document is missing or malformed, 4 all of several\n"
         "pictures failed.\n";
}

const Command& findCommand(const std::string& name) {
  std::vector<std::string> names;
  for (const Command& command : kCommands) {
    if (name == command.name) return command;
    names.emplace_back(command.name);
  }
  const bool isOption = name.starts_with('-');
  throw UsageError(text("there is no ", isOption ? "option" : "command", " '", name, "'",
                        didYouMean(name, names)));
}

int run(int argc, char** argv, std::string& context) {
  const std::string first = argc > 1 ? argv[1] : "";
  if (first == "--help" || first == "-h" || first == "help") {
    printOverview(std::cout);
    return kExitDone;
  }
  if (first == "--version") {
    std::cout << "lumora " LUMORA_VERSION ", filters " << getFilterVersion() << '\n';
    return kExitDone;
  }
  if (first.empty()) {
    printOverview(std::cerr);
    return kExitUsage;
  }
  const Command& command = findCommand(first);
  context += text(' ', command.name);
  return command.run(argc - 1, argv + 1);
}

int fail(int code, const std::string& message) {
  std::cerr << "lumora: " << message << '\n';
  return code;
}

}  // namespace
}  // namespace lumora::tool

int main(int argc, char** argv) {
  using namespace lumora::tool;
  std::string context = "lumora";
  try {
    occupyStandardDescriptors();
    if (isDecodingProcess(argc, argv)) return decodeStandardInput(argc, argv);
    removeTemporariesOnInterrupt();
    const int code = run(argc, argv, context);
    finishListing();
    return code;
  } catch (const UsageError& error) {
    return fail(kExitUsage, text(error.what(), "\n'", context, " --help' tells more."));
  } catch (const ResourceError& error) {
    return fail(kExitResources, error.what());
  } catch (const std::bad_alloc&) {
    return fail(kExitPictureFailed, "not enough memory");
  } catch (const std::exception& error) {
    return fail(kExitPictureFailed, error.what());
  }
}
