#include "tool_runner.h"

#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace lumora::test {
namespace {

template <class Content>
Content contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

testing::AssertionResult says(const std::string& text, const std::string& words) {
  const bool isIn = text.find(words) != text.npos;
  return testing::AssertionResult(isIn)
         << "'" << words << (isIn ? "' is in: " : "' is not in: ") << text;
}

ToolTest::ToolTest() {
  static const std::string path = LUMORA_TOOL_FOLDER ":" + std::string(::getenv("PATH"));
  ::setenv("PATH", path.c_str(), 1);
}

Bytes ToolTest::readFile(const std::string& name) const { return contentOf<Bytes>(pathOf(name)); }

Words ToolTest::listFolder(const std::string& name) const {
  Words names;
  for (const auto& entry : std::filesystem::directory_iterator(pathOf(name))) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::map<std::string, Bytes> ToolTest::filesIn(const std::string& name) const {
  std::map<std::string, Bytes> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(pathOf(name))) {
    if (!entry.is_regular_file()) continue;
    const std::string path = std::filesystem::relative(entry.path(), pathOf(name)).string();
    files[path] = readFile(name + '/' + path);
  }
  return files;
}

ToolResult ToolTest::runShell(const std::string& command) const {
  const std::string output = logs_.path() + "output", error = logs_.path() + "error";
  const std::string inFolder = "cd '" + folder_.path() + "' && { " + command + "\n} </dev/null";
  const int status = std::system((inFolder + " >'" + output + "' 2>'" + error + "'").c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf<std::string>(output),
          contentOf<std::string>(error)};
}

std::string ToolTest::shell(const std::string& command) const {
  const ToolResult result = runShell(command);
  EXPECT_EQ(result.exitCode, 0) << command;
  EXPECT_EQ(result.error, "") << command;
  return result.output;
}

void ToolTest::refuse(int exitCode, const std::string& arguments, const std::string& said) const {
  const ToolResult result = run(arguments);
  EXPECT_EQ(result.exitCode, exitCode) << "lumora " << arguments;
  EXPECT_EQ(result.output, "") << "lumora " << arguments;
  EXPECT_TRUE(says(result.error, said)) << "lumora " << arguments;
  // The library's status numbers mean nothing to a user.
  EXPECT_FALSE(says(result.error, "status")) << "lumora " << arguments;
}

void ToolTest::interrupt(const std::string& arguments, const std::function<bool()>& isFarEnough,
                         int signal) const {
  const std::string command = "cd '" + folder_.path() + "' && exec lumora " + arguments;
  const pid_t tool = ::fork();
  if (tool == 0) {
    // Where the tests run in the background interrupts are ignored, and so the tool would.
    ::signal(signal, SIG_DFL);
    const rlimit noCoreFile{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCoreFile);
    ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    ::_exit(127);
  }
  int status = 0;
  while (!isFarEnough()) {
    ASSERT_EQ(::waitpid(tool, &status, WNOHANG), 0) << "it has ended by itself";
    ::usleep(1000);
  }
  ASSERT_EQ(::kill(tool, signal), 0);
  ASSERT_EQ(::waitpid(tool, &status, 0), tool);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << strsignal(signal);
}

}  // namespace lumora::test
