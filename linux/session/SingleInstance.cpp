// SPDX-License-Identifier: MIT

#include "linux/session/SingleInstance.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <thread>

namespace quillforth::platform {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kPause(20);  // between two looks at an instance that starts or ends

struct Folder {
  std::string path;
  FileDescriptor descriptor;
};

bool IsOwnFolder(int descriptor, mode_t forbidden) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
         (status.st_mode & forbidden) == 0;
}

FileDescriptor OpenFolder(const std::string& path) {
  return FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

FileDescriptor MakePrivateFolder(const std::string& path) {
  ::mkdir(path.c_str(), S_IRWXU);
  FileDescriptor folder = OpenFolder(path);
  return folder.isOpen() && IsOwnFolder(folder.get(), S_IRWXG | S_IRWXO) ? std::move(folder)
                                                                         : FileDescriptor();
}

std::optional<Folder> MeetingFolder() {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime != nullptr && *runtime == '/') {
    const FileDescriptor parent = OpenFolder(runtime);
    std::string path = std::string(runtime) + "/quillforth";
    if (parent.isOpen() && IsOwnFolder(parent.get(), S_IWGRP | S_IWOTH)) {
      FileDescriptor folder = MakePrivateFolder(path);
      if (folder.isOpen()) return Folder{std::move(path), std::move(folder)};
    }
  }
  std::string path = "/tmp/quillforth-" + std::to_string(::geteuid());
  FileDescriptor folder = MakePrivateFolder(path);
  if (!folder.isOpen()) return std::nullopt;
  return Folder{std::move(path), std::move(folder)};
}

// Waits for `events` until `end`.
bool WaitFor(int descriptor, short events, Clock::time_point end) {
  while (true) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    if (left <= 0) return false;
    pollfd waiting{.fd = descriptor, .events = events, .revents = 0};
    const int found = ::poll(&waiting, 1, static_cast<int>(left));
    if (found > 0) return true;
    if (found < 0 && errno != EINTR) return false;
  }
}

FileDescriptor Connect(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof(address.sun_path)) return FileDescriptor();
  std::memcpy(address.sun_path, path.data(), path.size());
  FileDescriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const auto* generic = reinterpret_cast<const sockaddr*>(&address);
  if (::connect(connection.get(), generic, sizeof(address)) != 0) connection.reset();
  return connection;
}

bool SendAll(int connection, std::string_view bytes, Clock::time_point end) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent > 0) bytes.remove_prefix(static_cast<std::size_t>(sent));
    if (sent < 0 && errno != EAGAIN && errno != EINTR) return false;
    if (sent < 0 && !WaitFor(connection, POLLOUT, end)) return false;
  }
  return true;
}

// True once a whole line has come.
bool ReceiveLine(int connection, Clock::time_point end) {
  std::array<char, 64> bytes{};
  while (WaitFor(connection, POLLIN, end)) {
    const ssize_t received = ::recv(connection, bytes.data(), bytes.size(), 0);
    if (received == 0 || (received < 0 && errno != EAGAIN && errno != EINTR)) return false;
    if (received > 0 && std::memchr(bytes.data(), '\n', static_cast<std::size_t>(received)) != nullptr)
      return true;
  }
  return false;
}

bool IsAnswered(const std::string& socketPath, std::string_view line, Clock::time_point end) {
  const FileDescriptor connection = Connect(socketPath);
  return connection.isOpen() && SendAll(connection.get(), std::string(line) + '\n', end) &&
         ReceiveLine(connection.get(), end);
}

}  // namespace

struct SingleInstance::MeetingPlace {
  FileDescriptor folder;
  FileDescriptor lock;
  std::string socketPath;
};

std::optional<SingleInstance::MeetingPlace> SingleInstance::meetingPlace() {
  std::optional<Folder> folder = MeetingFolder();
  if (!folder) return std::nullopt;
  constexpr int kFlags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  FileDescriptor lock(::openat(folder->descriptor.get(), "lock", kFlags, S_IRUSR | S_IWUSR));
  std::string socketPath = folder->path + "/socket";
  if (!lock.isOpen() || socketPath.size() >= sizeof(sockaddr_un::sun_path)) return std::nullopt;
  return MeetingPlace{std::move(folder->descriptor), std::move(lock), std::move(socketPath)};
}

bool SingleInstance::takeLock(MeetingPlace& place) {
  if (::flock(place.lock.get(), LOCK_EX | LOCK_NB) != 0) return false;
  ::unlinkat(place.folder.get(), "socket", 0);
  lock_ = std::move(place.lock);
  socketPath_ = std::move(place.socketPath);
  return true;
}

SingleInstance::Outcome SingleInstance::beginAlone() {
  std::optional<MeetingPlace> place = meetingPlace();
  if (!place) return Outcome::noFolder;
  return takeLock(*place) ? Outcome::isFirst : Outcome::noAnswer;
}

SingleInstance::Outcome SingleInstance::begin(std::string_view line, std::chrono::milliseconds patience) {
  std::optional<MeetingPlace> place = meetingPlace();
  if (!place) return Outcome::noFolder;
  for (const auto end = Clock::now() + patience; Clock::now() < end; std::this_thread::sleep_for(kPause)) {
    if (takeLock(*place)) return Outcome::isFirst;
    if (IsAnswered(place->socketPath, line, end)) {
      lock_ = std::move(place->lock);
      return Outcome::handedOver;
    }
  }
  return Outcome::noAnswer;
}

void SingleInstance::waitForEnd() const {
  while (::flock(lock_.get(), LOCK_SH) != 0 && errno == EINTR) {
  }
  ::flock(lock_.get(), LOCK_UN);
}

}  // namespace quillforth::platform
