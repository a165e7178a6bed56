// SPDX-License-Identifier: MIT
//
// Sorting a folder of many items against a bare loop of renameat2 over the same names, in one run.
//
//   aggregate_benchmark [--rounds N] FOLDER...
//
// Works in a new folder below each FOLDER (one on tmpfs and one on a disk tell most) and removes it. Prints a
// line for each: its name, then in seconds the wall and processor time of the bare loop, those of sorting,
// and the wall time for a folder in which nothing is left to do; the best of the rounds.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <iostream>
#include <limits>
#include <string>
#include <vector>

#include "fileops/AggregateFolder.h"
#include "linux/files/LinuxFolder.h"

namespace {

using namespace quillforth;

constexpr int kItems = 100'000;
constexpr int kExtensions = 20;

void Require(bool condition, const char* what) {
  if (condition) return;
  std::perror(what);
  std::exit(2);
}

class ErrorLog final : public platform::SystemLog {
 public:
  void log(const QString& message) override { std::cerr << message.toStdString() << '\n'; }
};

std::string ItemName(int i, const char* separator) {
  return "picture-" + std::to_string(i) + separator + "ext" + std::to_string(i % kExtensions);
}

void Fill(const std::string& folder, const char* separator) {
  std::filesystem::create_directories(folder);
  for (int i = 0; i < kItems; ++i) {
    const int file =
        ::open((folder + '/' + ItemName(i, separator)).c_str(), O_CREAT | O_EXCL | O_WRONLY, 0666);
    Require(file >= 0, "create");
    ::close(file);
  }
}

struct Cost {
  double seconds = std::numeric_limits<double>::max();
  double cpu = std::numeric_limits<double>::max();
};

Cost Least(const Cost& a, const Cost& b) {
  return {std::min(a.seconds, b.seconds), std::min(a.cpu, b.cpu)};
}

double Now(clockid_t clock) {
  timespec now{};
  ::clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

Cost CostOf(const std::function<void()>& work) {
  const Cost start{Now(CLOCK_MONOTONIC), Now(CLOCK_PROCESS_CPUTIME_ID)};
  work();
  return {Now(CLOCK_MONOTONIC) - start.seconds, Now(CLOCK_PROCESS_CPUTIME_ID) - start.cpu};
}

std::vector<std::string> NamesInOrder(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    names.push_back(entry.path().filename());
  return names;
}

// The names, their order and the subfolders are all there before the clock starts.
Cost BareLoop(const std::string& folder) {
  Fill(folder, ".");
  const std::vector<std::string> names = NamesInOrder(folder);
  const int from = ::open(folder.c_str(), O_PATH | O_DIRECTORY);
  std::vector<int> subfolders;
  for (int i = 0; i < kExtensions; ++i) {
    const std::string name = "ext" + std::to_string(i);
    Require(::mkdirat(from, name.c_str(), 0777) == 0, "mkdirat");
    subfolders.push_back(::openat(from, name.c_str(), O_PATH | O_DIRECTORY));
  }
  std::vector<int> targets;
  for (const std::string& name : names) {
    targets.push_back(subfolders[static_cast<std::size_t>(std::stoi(name.substr(name.rfind("ext") + 3)))]);
  }
  const Cost cost = CostOf([&] {
    for (std::size_t i = 0; i < names.size(); ++i) {
      const char* name = names[i].c_str();
      Require(::renameat2(from, name, targets[i], name, RENAME_NOREPLACE) == 0, "renameat2");
    }
  });
  for (const int subfolder : subfolders) ::close(subfolder);
  ::close(from);
  std::filesystem::remove_all(folder);
  return cost;
}

// `separator` "." makes items to move, "-" items to leave.
Cost Aggregation(const std::string& folder, const char* separator) {
  Fill(folder, separator);
  platform::LinuxFolderAccess folders;
  ErrorLog log;
  fileops::AggregationResult result;
  const Cost cost = CostOf([&] {
    result = fileops::AggregateFolder({folders, log}, QString::fromStdString(folder));
  });
  Require(result.status == 0 && result.left == 0 && result.moved == (*separator == '.' ? kItems : 0),
          "aggregate");
  std::filesystem::remove_all(folder);
  return cost;
}

void MeasureIn(const std::string& parent, int rounds) {
  std::string folder = std::filesystem::absolute(parent) / "aggregate-XXXXXX";
  Require(::mkdtemp(folder.data()) != nullptr, "mkdtemp");
  Cost bare;
  Cost ours;
  Cost sorted;
  for (int round = 0; round < rounds; ++round) {
    bare = Least(bare, BareLoop(folder + "/bare"));
    ours = Least(ours, Aggregation(folder + "/ours", "."));
    sorted = Least(sorted, Aggregation(folder + "/sorted", "-"));
  }
  std::filesystem::remove_all(folder);
  std::printf("%s %.3f %.3f %.3f %.3f %.3f\n", parent.c_str(), bare.seconds, bare.cpu, ours.seconds, ours.cpu,
              sorted.seconds);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  int rounds = 3;
  if (arguments.size() > 2 && arguments[0] == "--rounds") {
    rounds = std::max(1, std::atoi(arguments[1].c_str()));
    arguments.erase(arguments.begin(), arguments.begin() + 2);
  }
  if (arguments.empty()) {
    std::fputs("usage: aggregate_benchmark [--rounds N] FOLDER...\n", stderr);
    return 2;
  }
  for (const std::string& parent : arguments) MeasureIn(parent, rounds);
  return 0;
}
