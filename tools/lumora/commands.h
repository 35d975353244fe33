// The subcommands. Each takes its own arguments (argv[0] is its name) and returns an exit code;
// errors leave as exceptions of errors.h.
#pragma once

namespace lumora::tool {

int applyCommand(int argc, char** argv);
int benchCommand(int argc, char** argv);
int frameCommand(int argc, char** argv);
int galleryCommand(int argc, char** argv);
int looksCommand(int argc, char** argv);
int lutCommand(int argc, char** argv);
int packCommand(int argc, char** argv);
int sampleCommand(int argc, char** argv);
int tuneCommand(int argc, char** argv);

}  // namespace lumora::tool
