#include "tool_runner.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace lumora::test {
namespace {

namespace fs = std::filesystem;

std::string makeFolder() {
  std::string name = testing::TempDir() + "lumora-test-XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) std::abort();
  return name;
}

Bytes bytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void replaceDescriptor(int target, int source) {
  if (source < 0 || ::dup2(source, target) < 0) ::_exit(126);
}

[[noreturn]] void become(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  ::execv(arguments[0], arguments.data());
  ::_exit(127);
}

}  // namespace

std::string ToolResult::outputText() const {
  return {standardOutput.begin(), standardOutput.end()};
}

ToolTest::ToolTest() : folder_(makeFolder()), logs_(makeFolder()) {
  ::setenv("LUMORA", LUMORA_TOOL, 1);
}

ToolTest::~ToolTest() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
  fs::remove_all(logs_, ignored);
}

void ToolTest::writeFile(const std::string& name, const void* bytes, std::size_t count) const {
  std::ofstream file(pathOf(name), std::ios::binary);
  file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
  ASSERT_TRUE(file.flush()) << name;
}

void ToolTest::writeFile(const std::string& name, const Bytes& bytes) const {
  writeFile(name, bytes.data(), bytes.size());
}

Bytes ToolTest::readFile(const std::string& name) const { return bytesOf(pathOf(name)); }

std::vector<std::string> ToolTest::listFolder(const std::string& name) const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(pathOf(name))) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

ToolResult ToolTest::run(const std::vector<std::string>& arguments,
                         const std::string& inputFile) const {
  std::vector<std::string> command = {LUMORA_TOOL};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return execute(command, inputFile.empty() ? "/dev/null" : pathOf(inputFile));
}

ToolResult ToolTest::runShell(const std::string& command) const {
  return execute({"/bin/sh", "-c", command}, "/dev/null");
}

ToolResult ToolTest::execute(const std::vector<std::string>& command,
                             const std::string& inputFile) const {
  const std::string outputLog = logs_ + "/output";
  const std::string errorLog = logs_ + "/error";
  const pid_t child = ::fork();
  if (child == 0) {
    constexpr int kCreate = O_WRONLY | O_CREAT | O_TRUNC;
    replaceDescriptor(STDIN_FILENO, ::open(inputFile.c_str(), O_RDONLY));
    replaceDescriptor(STDOUT_FILENO, ::open(outputLog.c_str(), kCreate, 0600));
    replaceDescriptor(STDERR_FILENO, ::open(errorLog.c_str(), kCreate, 0600));
    if (::chdir(folder_.c_str()) != 0) ::_exit(126);
    become(command);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  ToolResult result;
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  result.standardOutput = bytesOf(outputLog);
  const Bytes error = bytesOf(errorLog);
  result.standardError.assign(error.begin(), error.end());
  return result;
}

pid_t ToolTest::start(const std::vector<std::string>& arguments, int& inputPipe) const {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return -1;
  std::vector<std::string> command = {LUMORA_TOOL};
  command.insert(command.end(), arguments.begin(), arguments.end());
  const pid_t child = ::fork();
  if (child == 0) {
    // Where the tests run in the background interrupts are ignored, and so the tool would.
    ::signal(SIGINT, SIG_DFL);
    replaceDescriptor(STDIN_FILENO, ends[0]);
    if (::chdir(folder_.c_str()) != 0) ::_exit(126);
    become(command);
  }
  ::close(ends[0]);
  inputPipe = ends[1];
  return child;
}

}  // namespace lumora::test
