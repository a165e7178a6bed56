// SPDX-License-Identifier: MIT

#include "tests/end_to_end/Program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>

namespace quillforth::tests {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kDeadline{30};

void CloseDescriptor(int& descriptor) {
  if (descriptor >= 0) ::close(descriptor);
  descriptor = -1;
}

int InputWith(const std::string& text) {
  const int file = ::memfd_create("input", MFD_CLOEXEC);
  if (::pwrite(file, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size())) std::abort();
  return file;
}

std::vector<std::string> Environment(const std::map<std::string, std::string>& replaced) {
  std::vector<std::string> entries;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text(*entry);
    if (!replaced.contains(text.substr(0, text.find('=')))) entries.push_back(text);
  }
  for (const auto& [name, value] : replaced) entries.push_back(name + '=' + value);
  return entries;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

Program::Program(const Setup& setup) {
  std::vector<std::string> words = setup.wrapper;
  words.emplace_back(QUILLFORTH_CLI);
  words.insert(words.end(), setup.arguments.begin(), setup.arguments.end());
  // All memory is taken before the fork: this process has threads.
  std::vector<std::string> entries = Environment(setup.environment);
  const std::vector<char*> arguments = Pointers(words);
  const std::vector<char*> environment = Pointers(entries);
  int outputs[2] = {-1, -1};
  int errors[2] = {-1, -1};
  const int input = InputWith(setup.input);
  if (setup.columns > 0) {
    const winsize size{24, static_cast<unsigned short>(setup.columns), 0, 0};
    process_ = ::forkpty(&output_, nullptr, nullptr, &size);
  } else {
    if (::pipe2(outputs, O_CLOEXEC) != 0 || ::pipe2(errors, O_CLOEXEC) != 0) std::abort();
    process_ = ::fork();
  }
  if (process_ == 0) {
    if (setup.columns == 0) {
      ::setsid();  // nobody to ask
      ::dup2(input, STDIN_FILENO);
      ::dup2(outputs[1], STDOUT_FILENO);
      ::dup2(errors[1], STDERR_FILENO);
    }
    std::signal(SIGPIPE, SIG_DFL);
    ::execvpe(arguments[0], arguments.data(), environment.data());
    ::_exit(127);
  }
  ::close(input);
  if (setup.columns > 0) return;
  ::close(outputs[1]);
  ::close(errors[1]);
  output_ = outputs[0];
  errors_ = errors[0];
}

Program::~Program() {
  if (isRunning()) {
    signal(SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
  CloseDescriptor(output_);
  CloseDescriptor(errors_);
}

bool Program::readSome(int milliseconds) {
  pollfd entries[] = {{output_, POLLIN, 0}, {errors_, POLLIN, 0}};
  if (::poll(entries, 2, milliseconds) <= 0) return output_ >= 0 || errors_ >= 0;
  const auto take = [](const pollfd& entry, int& descriptor, std::string& text) {
    if (entry.revents == 0) return;
    char bytes[65536];
    const ssize_t length = ::read(descriptor, bytes, sizeof bytes);
    if (length > 0) {
      text.append(bytes, static_cast<std::size_t>(length));
    } else {
      CloseDescriptor(descriptor);
    }
  };
  take(entries[0], output_, outcome_.output);
  take(entries[1], errors_, outcome_.errors);
  return output_ >= 0 || errors_ >= 0;
}

bool Program::waitFor(const std::function<bool(const std::string&)>& condition) {
  const auto deadline = Clock::now() + kDeadline;
  while (!condition(outcome_.output)) {
    if (Clock::now() > deadline || !readSome(20)) return condition(outcome_.output);
  }
  return true;
}

bool Program::waitForOutput(std::string_view text) {
  return waitFor([text](const std::string& output) { return output.find(text) != std::string::npos; });
}

void Program::signal(int number) const {
  ::kill(process_, number);
}

void Program::type(std::string_view text) const {
  if (::write(output_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) std::abort();
}

void Program::resize(int columns) const {
  const winsize size{24, static_cast<unsigned short>(columns), 0, 0};
  ::ioctl(output_, TIOCSWINSZ, &size);
}

void Program::closeOutput() {
  CloseDescriptor(output_);
}

Outcome Program::wait() {
  const auto deadline = Clock::now() + kDeadline;
  while (readSome(50)) {
    if (Clock::now() > deadline) signal(SIGKILL);
  }
  int status = 0;
  ::waitpid(process_, &status, 0);
  process_ = -1;
  outcome_.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
  return outcome_;
}

}  // namespace quillforth::tests
