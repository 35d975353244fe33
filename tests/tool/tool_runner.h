// Runs the tool in a folder of its own.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace lumora::test {

using Bytes = std::vector<std::uint8_t>;

struct ToolResult {
  int exitCode = -1;  // -1 when a signal ended it
  int signal = 0;
  Bytes standardOutput;
  std::string standardError;

  std::string outputText() const;
};

// Every test gets an empty folder, and the tool runs with it as its working folder.
class ToolTest : public testing::Test {
 protected:
  ToolTest();
  ~ToolTest() override;

  std::string pathOf(const std::string& name) const { return folder_ + "/" + name; }
  void writeFile(const std::string& name, const void* bytes, std::size_t count) const;
  void writeFile(const std::string& name, const Bytes& bytes) const;
  Bytes readFile(const std::string& name) const;
  // Names in the folder, sorted.
  std::vector<std::string> listFolder(const std::string& name = ".") const;

  // Without an input file standard input is empty.
  ToolResult run(const std::vector<std::string>& arguments,
                 const std::string& inputFile = {}) const;
  // A shell command in the folder; $LUMORA is the tool.
  ToolResult runShell(const std::string& command) const;
  // Starts the tool with its standard input at the end of a pipe; the write end goes to inputPipe.
  pid_t start(const std::vector<std::string>& arguments, int& inputPipe) const;

 private:
  ToolResult execute(const std::vector<std::string>& command, const std::string& inputFile) const;

  std::string folder_;
  std::string logs_;  // what the runs print goes here, not into the folder
};

}  // namespace lumora::test
