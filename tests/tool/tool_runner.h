// Runs the tool in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/resource_directory.h"
#include "support/test_picture.h"

namespace lumora::test {

using Words = std::vector<std::string>;
// Arguments of the tool, and what it shall say of them.
using Refusals = std::vector<std::pair<std::string, std::string>>;

struct ToolResult {
  int exitCode = -1;  // -1 when a signal ended it
  std::string output;
  std::string error;
};

// Whether the words stand in the text.
testing::AssertionResult says(const std::string& text, const std::string& words);

// Every test gets an empty folder, and the tool runs with it as its working folder. Arguments are
// words for the shell, so that redirections and quotes work as a user knows them.
class ToolTest : public testing::Test {
 protected:
  ToolTest();

  std::string pathOf(const std::string& name) const { return folder_.path() + name; }
  void writeFile(const std::string& name, std::string_view content) const {
    ResourceDirectory::write(pathOf(name), content);
  }
  void writeFile(const std::string& name, const Bytes& content) const {
    ResourceDirectory::write(pathOf(name), content);
  }
  Bytes readFile(const std::string& name) const;
  // Names in the folder, sorted.
  Words listFolder(const std::string& name = ".") const;
  // Every file in the folder and those below it, with its content.
  std::map<std::string, Bytes> filesIn(const std::string& name) const;

  // Standard input is empty where the command does not redirect it; 'lumora' is the tool.
  ToolResult runShell(const std::string& command) const;
  ToolResult run(const std::string& arguments) const {
    return runShell("exec lumora " + arguments);
  }
  // These expect that all goes well and without a word of complaint; they return what is put out.
  std::string shell(const std::string& command) const;
  std::string succeed(const std::string& arguments) const {
    return shell("exec lumora " + arguments);
  }
  // Expects that nothing is put out and these words are said.
  void refuse(int exitCode, const std::string& arguments, const std::string& said) const;
  // Starts the tool and sends it the signal when it is far enough, which has to end it.
  void interrupt(const std::string& arguments, const std::function<bool()>& isFarEnough,
                 int signal = SIGINT) const;

 private:
  ResourceDirectory folder_;
  ResourceDirectory logs_;  // what the runs print goes here, not into the folder
};

}  // namespace lumora::test
