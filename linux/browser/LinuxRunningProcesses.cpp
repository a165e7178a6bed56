// SPDX-License-Identifier: MIT

#include "linux/browser/LinuxRunningProcesses.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <string>
#include <string_view>

#include "linux/files/Directory.h"

namespace quillforth::platform {

namespace {

using common::FourCC;
using common::FourCharCode;

struct Program {
  std::string_view name;
  FourCharCode creator;
};

constexpr std::array kPrograms{
    Program{"firefox", FourCC("MOZB")},       Program{"firefox-esr", FourCC("MOZB")},
    Program{"firefox-bin", FourCC("MOZB")},   Program{"chrome", FourCC("rimZ")},
    Program{"chromium", FourCC("rimZ")},      Program{"chromium-browser", FourCC("rimZ")},
    Program{"msedge", FourCC("rimZ")},        Program{"brave", FourCC("rimZ")},
    Program{"brave-browser", FourCC("rimZ")}, Program{"vivaldi", FourCC("rimZ")},
    Program{"vivaldi-bin", FourCC("rimZ")},   Program{"opera", FourCC("OPRA")},
    Program{"epiphany", FourCC("sfri")},      Program{"epiphany-browser", FourCC("sfri")},
};

// 0 for no browser. The link ends in " (deleted)" once the program has been replaced by an update.
FourCharCode CreatorOfExecutable(std::string_view path) {
  constexpr std::string_view kDeleted = " (deleted)";
  if (path.ends_with(kDeleted)) path.remove_suffix(kDeleted.size());
  path.remove_prefix(path.rfind('/') + 1);
  const auto* found = std::find_if(kPrograms.begin(), kPrograms.end(),
                                   [path](const Program& program) { return program.name == path; });
  return found == kPrograms.end() ? 0 : found->creator;
}

// 0 for a process of someone else, one that has ended, and one that is no browser.
FourCharCode CreatorOfProcess(int processes, const std::string& processID) {
  struct stat status {};
  if (::fstatat(processes, processID.c_str(), &status, 0) != 0 || status.st_uid != ::geteuid()) return 0;
  std::array<char, PATH_MAX> path{};
  const ssize_t length = ::readlinkat(processes, (processID + "/exe").c_str(), path.data(), path.size());
  return length <= 0 ? 0 : CreatorOfExecutable({path.data(), static_cast<std::size_t>(length)});
}

}  // namespace

std::vector<RunningProcess> LinuxRunningProcesses::runningProcesses() {
  std::vector<RunningProcess> running;
  const Directory processes = OpenDirectory(AT_FDCWD, "/proc");
  if (!processes) return running;
  while (const dirent* entry = ::readdir(processes.get())) {
    const std::string name = entry->d_name;
    std::int64_t processID = 0;
    const auto parsed = std::from_chars(name.data(), name.data() + name.size(), processID);
    if (parsed.ec != std::errc() || parsed.ptr != name.data() + name.size()) continue;
    const FourCharCode creator = CreatorOfProcess(::dirfd(processes.get()), name);
    if (creator != 0) running.push_back({kApplicationFileType, creator, processID});
  }
  return running;
}

}  // namespace quillforth::platform
